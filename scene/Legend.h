#pragma once

#include "scene/Canvas.h"
#include "scene/Export.h"
#include "scene/LegendBlock.h"
#include "scene/Theme.h"

#include <QColor>
#include <QString>

#include <vector>

namespace Vek::Chart::Scene {

/// The names of plots, each beside a mark in the colour of the plot.
///
/// Shape: entries stand below each other in their order, below the title if there is one; those that do not fit the
/// height continue in further columns. Letters have the sizes of the theme, whatever the height; each column has one
/// entry at least. Entries without a name are left out. Without entries the block is empty.
///
/// Where a width is given, names too long for their column have an ellipsis in the middle, down to eight heights of
/// letters. Entries that still have no room are left out, and the last line has their number: "… 12 more".
///
/// \snippet SceneLegendSnippets.cpp Legend
/// \image html parts/Legend.png
/// \ingroup legends
struct VEK_SCENE_API Legend {
  /// How a plot looks in its legend.
  enum class Mark {
    Line,  ///< a horizontal line
    Dot,   ///< a disk
    Patch, ///< a rectangle
    Glyph, ///< an outline of one's own; by default an arrow
  };

  /// A plot.
  struct Entry {
    QString name;                    ///< to the right of the mark
    Mark mark = Mark::Patch;         ///< left of the name
    QColor color = QColor(Qt::gray); ///< of the mark
    double width = 2;                ///< of a line, in points
    /// Of Mark::Glyph: polygons (see Canvas::Polygon) in a square from (-0.5, -0.5) to (0.5, 0.5), which is as high as
    /// the letters; none for an arrow to the right.
    std::vector<std::vector<Canvas::Position>> glyph = {};
  };

  std::vector<Entry> entries; ///< from top to bottom
  QString title;              ///< above the entries

  /// The shapes; the origin is the upper left corner. Columns are at most `p_height` points high if entries are lower.
  /// Throws std::invalid_argument unless the height is above 0.
  LegendBlock Layout(double p_height, const Theme& p_theme, double p_pointSize = 1) const;
  /// Likewise, at most `p_width` points wide if a mark and a short name are narrower.
  LegendBlock Layout(double p_height, double p_width, const Theme& p_theme, double p_pointSize) const;
};

} // namespace Vek::Chart::Scene
