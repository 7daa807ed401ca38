#pragma once

#include <QColor>

/// The colours that all pictures share.
namespace Vek::Chart::Scene::Theme {

inline const QColor BackgroundTop(0x18212C);
inline const QColor BackgroundBottom(0x0B1017);
inline const QColor Title(0xF2F0EA);
inline const QColor Text(0xB9C2CC);
inline const QColor Faint(0x74808D);
inline const QColor Line(0x4A5664);

// Sizes of letters in points.
constexpr double TitleSize = 38;
constexpr double TextSize = 21;
constexpr double SmallSize = 18;

} // namespace Vek::Chart::Scene::Theme
