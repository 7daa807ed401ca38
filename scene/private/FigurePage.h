#pragma once

#include "scene/ColorBar.h"
#include "scene/FigureLayout.h"
#include "scene/Theme.h"

#include <QSizeF>
#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// What stands around the scene of a figure.
struct PageContent {
  QString title, subtitle;
  std::vector<QString> notes;
  std::vector<ColorBar> bars;                     ///< any orientation
  std::vector<LegendBlock> keys;                  ///< below the bars
  std::function<void(const std::string&)> report; ///< takes what there is no room for
};

/// Places titles at the top, notes at the bottom, bars and keys on the right, or below the scene where the view is
/// tall, and leaves the rest to the scene. What there is no room for is left out and reported.
FigureLayout LayOutPage(const QSizeF& p_size, const PageContent& p_content, const Theme& p_theme, double p_pointSize);

/// The largest size of a key that has room on a page with other keys.
QSizeF RoomForKey(const QSizeF& p_size, const std::vector<LegendBlock>& p_others);

/// Moves legends below the scene up to the axes, which may leave room below them.
void CloseUp(FigureLayout& p_layout);

} // namespace Vek::Chart::Scene::Private
