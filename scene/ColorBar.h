#pragma once

#include "scene/Canvas.h"
#include "scene/Export.h"
#include "scene/LegendBlock.h"
#include "scene/Theme.h"
#include "scene/Ticks.h"
#include "scene/ValueScale.h"

#include "library/ColorMap.h"
#include "library/ColorScale.h"

#include <QColor>
#include <QImage>
#include <QString>

#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Vek::Chart::Scene {

/// A colour bar: the colours of a range of values with ticks and a title.
///
/// Shape: a vertical bar has its ticks on the right; its title stands above, or along the ticks if it is wide. A
/// horizontal bar has its ticks below and its title above. Titles longer than the bar have several lines. Where the
/// data go beyond the range (`least`, `largest`), the bar ends in a point of the colour of those values, with the
/// extreme beside its tip; where values are missing, a square of their colour is named. Classes of a ColorScale have
/// equal widths and ticks at their bounds.
///
/// Letters have the sizes of the theme at every size of the bar. A short bar has fewer ticks, at least two or none; of
/// two strings that would overlap, the tick's gives way to that of an extreme. A bar without strings at its ticks is
/// reported with each layout: "WARNING: ColorBar: no room for two ticks along 20 points ("Speed in m/s")", or passed to
/// `report` without the first word.
///
/// Values are positioned by the classes: value v of class i of n lies at the share (i + (v - Bounds()[i]) / (width of
/// the class)) / n of the colours; on a map with a logarithmic scale, at the share of logarithms.
///
/// Layout and drawing are separate: `Layout` measures and calls no GL. Throws std::invalid_argument for scales that
/// ValueScale::Check refuses; a ColorScale without valid classes makes an empty bar. A bar keeps no GL objects.
///
/// \snippet SceneLegendSnippets.cpp ColorBar
/// \image html parts/ColorBar.png
/// \ingroup legends
class VEK_SCENE_API ColorBar {
public:
  /// The direction of growing values.
  enum class Orientation {
    Vertical,   ///< upwards
    Horizontal, ///< to the right
  };

  /// Lengths in points.
  struct Metrics {
    double thickness = 16;     ///< of the bar, across
    double pointLength = 17;   ///< of a pointed end
    double pointGap = 0;       ///< between colours and pointed end
    double tick = 5;           ///< length of a tick with a string
    double minorTick = 3;      ///< length of one without
    double tickWidth = 1;      ///< of ticks
    double stringGap = 7;      ///< from the bar to strings at ticks
    double titleGap = 6;       ///< from the bar, or what stands beside it, to the title
    double titleShift = -1.75; ///< of the title's box to the right
    double edge = 1;           ///< width of the line around the bar; 0 for none
  };

  /// The colours of a map over a range.
  ColorBar(const Library::ColorMap& p_map, const ValueScale& p_scale);
  /// The classes of a scale.
  explicit ColorBar(const Library::ColorScale& p_scale);

  Orientation orientation = Orientation::Vertical;           ///< the direction of growing values
  QString title;                                             ///< with the unit: "Speed in m/s"
  double least = std::numeric_limits<double>::quiet_NaN();   ///< of the data; NaN if unknown
  double largest = std::numeric_limits<double>::quiet_NaN(); ///< of the data; NaN if unknown
  bool hasMissing = false;                                   ///< whether values are missing
  /// Opacities at even distances along the colours, 0 to 1: half of the bar's thickness, away from the ticks, shows the
  /// colours in these over the background. Empty for opaque colours.
  std::vector<double> opacities;
  QString missingName = QLatin1String("no data");            ///< beside the colour of missing values
  std::optional<Ticks> ticks;                                ///< own ticks; the strings that fit are drawn
  Metrics metrics;                                           ///< lengths
  std::function<void(const std::string&)> report{};          ///< takes reports; empty for vekdebug::warn

  /// The shapes of a bar of a length from end to end: points and the square of missing values included, strings that
  /// reach beyond excluded. The origin is the lower left corner of the colours.
  ///
  /// \param p_length in points
  /// \param p_theme fonts and colours
  /// \param p_pointSize pixels of a point, by which strings are measured
  LegendBlock Layout(double p_length, const Theme& p_theme, double p_pointSize = 1) const;

  /// The share of the colours' length at which a value lies, 0 to 1 within the range; NaN for NaN.
  double PositionOf(double p_value) const;
  /// If the lower end is pointed: values lie below the range.
  bool IsPointedBelow() const { return !_bounds.empty() && least < _bounds.front(); }
  /// If the upper end is pointed: values lie above the range.
  bool IsPointedAbove() const { return !_bounds.empty() && largest > _bounds.back(); }

private:
  struct Builder;
  Ticks TicksFor(std::size_t p_most) const;

  QImage _colors;              // one row
  std::vector<double> _bounds; // of the classes; two for a map
  bool _isLogarithmic = false;
  QColor _below;
  QColor _above;
  QColor _missing;
};

} // namespace Vek::Chart::Scene
