#pragma once

#include "scene/Export.h"
#include "scene/TextStyle.h"

#include <QColor>
#include <QString>

namespace Vek::Chart::Scene {

/// The colours, the font and the sizes of everything in a chart that is not data: background, titles, labels, axes.
///
/// Three themes are given; any field of them can be changed. In each of the three, the colours of letters have a
/// contrast of at least 4.5 : 1 to both colours of the background, the least that the Web Content Accessibility
/// Guidelines 2.1 (success criterion 1.4.3) ask of text, and lines one of at least 1.2 : 1 (grid) and 2 : 1 (axes).
/// Sizes are in points (see TextStyle).
///
/// \snippet SceneTextSnippets.cpp Theme
/// \image html parts/Theme.png
/// \ingroup legends
struct VEK_SCENE_API Theme {
  QColor backgroundTop{0xFF, 0xFF, 0xFF};    ///< the upper end of the background's gradient
  QColor backgroundBottom{0xFF, 0xFF, 0xFF}; ///< the lower end of the background's gradient
  QColor title{0x16, 0x1C, 0x24};            ///< letters of titles
  QColor text{0x36, 0x3F, 0x4A};             ///< letters of labels
  QColor faint{0x60, 0x69, 0x75};            ///< letters of remarks
  QColor line{0x8A, 0x93, 0x9E};             ///< axes, ticks and frames
  QColor grid{0xDD, 0xE1, 0xE6};             ///< grid lines
  QColor halo{0xFF, 0xFF, 0xFF, 0xD8};       ///< around letters that lie over data

  double titleSize = 20; ///< height of the font of titles
  double textSize = 14;  ///< height of the font of subtitles, titles of axes and of colour bars
  double smallSize = 12; ///< height of the font of labels at ticks

  QString family = QLatin1String("DejaVu Sans"); ///< of all letters; empty for the application's default font

  /// Dark letters on white, for windows and pages; the same as a default-constructed theme.
  static Theme Light();
  /// Light letters on dark blue, for screens.
  static Theme Dark();
  /// Black letters and darker, neutral lines on plain white, for paper.
  static Theme Print();

  /// Bold, in the size and colour of titles.
  TextStyle TitleStyle() const { return {titleSize, title, true, Qt::transparent, 0, family}; }
  /// In the size and colour of text.
  TextStyle BodyStyle() const { return {textSize, text, false, Qt::transparent, 0, family}; }
  /// In the small size and the colour of text.
  TextStyle SmallStyle() const { return {smallSize, text, false, Qt::transparent, 0, family}; }
  /// A style of letters that lie over data, with a halo of an eighth of their size.
  TextStyle WithHalo(TextStyle p_style) const;
};

/// Whether all fields are equal.
VEK_SCENE_API bool operator==(const Theme& p_a, const Theme& p_b);

} // namespace Vek::Chart::Scene
