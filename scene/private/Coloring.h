#pragma once

#include "scene/Array.h"
#include "scene/ValueScale.h"
#include "scene/private/RoundRange.h"

#include "library/ColorMap.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <QColor>
#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// What a colour bar shows.
struct ColorKey {
  QString title;
  std::vector<QColor> colors; ///< from low to high, opaque
  Range range;
  bool logarithmic = false;
  Range all;               ///< true extremes; empty if there are no values
  bool hasBelow = false;   ///< values below the range
  bool hasAbove = false;   ///< values above it
  bool hasMissing = false; ///< and they have a colour
  QColor missing;
  std::vector<double> levels;    ///< all values that there are; empty for a whole range
  std::vector<double> opacities; ///< along the colours; empty if opaque

  /// Whether both can share a colour bar: title, map, range, levels and opacities are equal.
  bool Matches(const ColorKey& p_other) const;
  /// Takes in what only the other one has: extremes and missing values.
  void Merge(const ColorKey& p_other);
};

/// How a plot gets its colours: by values and a colour map, or one colour for all.
class Coloring {
public:
  using Opacities = std::function<std::vector<double>(const std::vector<double>&, const ValueScale&)>;

  void SetColor(const QColor& p_color);
  void SetValues(const std::vector<double>& p_values);
  /// As SetValues, for plots that draw `Values` and `Placed` alone: values that floats would round together, or could
  /// not hold, are kept relative to the middle of all or to a power of two, as is the scale.
  void SetPlacedValues(const std::vector<double>& p_values);
  /// For values that the plot keeps itself: all in brief, and the positive ones.
  void SetSummaries(const ValueSummary& p_all, const ValueSummary& p_positive);
  /// The only values that there are, which the ticks of the colour bar name; none for a whole range.
  void SetLevels(std::vector<double> p_levels) { _levels = std::move(p_levels); }
  /// The opacities of values on a scale, for the colour bar.
  void SetOpacities(Opacities p_opacity) { _opacities = std::move(p_opacity); }
  void SetMap(std::vector<QColor> p_colors);
  void SetRange(double p_low, double p_high);
  /// The extremes of all values, of which those here are a share. Until SetColor.
  void SetExtremes(const Range& p_all);
  void FindRange() { _range.reset(); }
  void SetLogarithmic(bool p_logarithmic);
  void SetTitle(const QString& p_title) { _title = p_title; }
  /// Of what the values are until SetTitle is called with a title.
  void SetDefaultTitle(const QString& p_title) { _defaultTitle = p_title; }
  void SetMissing(const QColor& p_color) { _missing = p_color; }
  void SetOpacity(double p_opacity);

  /// What is drawn with `Scale`.
  const std::vector<float>& Values() const { return _values; }
  /// Another value on that scale.
  float Placed(double p_value) const { return static_cast<float>((p_value - _middle) * _factor); }
  /// The value that a number on that scale stands for.
  double ValueOf(float p_placed) const { return static_cast<double>(p_placed) / _factor + _middle; }
  std::size_t MissingCount() const { return _linear.missing; }
  /// The values of the first and the last colour.
  Range EffectiveRange() const { return _range ? *_range : DefaultRange(Summary(), _logarithmic); }
  /// What parts draw values with.
  ValueScale Scale() const;
  /// The colour map of the scope's context.
  const Library::ColorMap& Map(Utility::Scoped<Rgl>& p_gl) const;
  bool HasValues() const { return _hasValues; }
  /// For a colour bar; empty without values.
  std::optional<ColorKey> Key() const;
  /// The colour of a plot without values, opaque; of others the middle of the map.
  QColor Sample() const;
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _map.Release(p_gl); }

private:
  const ValueSummary& Summary() const { return _logarithmic ? _positive : _linear; }
  void SetSummaries(ValueSummary p_linear, ValueSummary p_positive, bool p_hasValues);
  void FindPlace(const Range& p_all);

  bool _hasValues = false;
  std::vector<float> _values;
  double _middle = 0, _factor = 1; ///< a value is drawn as (value - middle) * factor
  std::vector<double> _levels;
  Opacities _opacities;
  std::optional<Range> _extremes;  ///< of all values, where these are a share
  ValueSummary _linear, _positive; ///< of the values before they are rounded to float
  QColor _color;
  std::vector<QColor> _colors; ///< of the map; viridis if empty
  std::optional<Range> _range;
  bool _logarithmic = false;
  double _opacity = 1;
  QString _title, _defaultTitle;
  QColor _missing{128, 128, 128};
  Ogl::PerContext<Library::ColorMap> _map;
};

} // namespace Vek::Chart::Scene::Private
