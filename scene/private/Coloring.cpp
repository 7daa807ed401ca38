#include "scene/private/Coloring.h"

#include "library/NamedColors.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

void RequireRange(double p_low, double p_high, bool p_logarithmic) {
  const bool isAscending = std::isfinite(p_low) && std::isfinite(p_high) && p_low < p_high;
  if (isAscending && !(p_logarithmic && p_low <= 0))
    return;
  std::ostringstream message;
  message.imbue(std::locale::classic());
  message << "ColorRange: expected finite, ascending limits" << (p_logarithmic ? " above 0" : "") << ", got " << p_low
          << " and " << p_high;
  throw std::invalid_argument(message.str());
}

/// The value at a share of the colours.
double ValueAt(const ValueScale& p_scale, double p_share) {
  if (p_scale.logarithmic)
    return std::exp(std::log(p_scale.lower) * (1 - p_share) + std::log(p_scale.upper) * p_share);
  return p_scale.lower * (1 - p_share) + p_scale.upper * p_share;
}

QColor Faded(QColor p_color, double p_opacity) {
  p_color.setAlphaF(p_color.alphaF() * p_opacity);
  return p_color;
}

} // namespace

bool ColorKey::Matches(const ColorKey& p_other) const {
  return title == p_other.title && colors == p_other.colors && range.min == p_other.range.min &&
         range.max == p_other.range.max && logarithmic == p_other.logarithmic && levels == p_other.levels &&
         opacities == p_other.opacities;
}

void ColorKey::Merge(const ColorKey& p_other) {
  all += p_other.all.min;
  all += p_other.all.max;
  hasBelow = hasBelow || p_other.hasBelow;
  hasAbove = hasAbove || p_other.hasAbove;
  if (!hasMissing && p_other.hasMissing)
    missing = p_other.missing;
  hasMissing = hasMissing || p_other.hasMissing;
}

void Coloring::SetColor(const QColor& p_color) {
  _extremes.reset();
  SetValues({});
  _color = p_color;
  _map.Reset();
}

void Coloring::SetValues(const std::vector<double>& p_values) {
  SetSummaries(Summarize(p_values, false), Summarize(p_values, true), !p_values.empty());
  _middle = 0;
  _factor = 1;
  _values.assign(p_values.begin(), p_values.end());
}

void Coloring::SetPlacedValues(const std::vector<double>& p_values) {
  const ValueSummary all = Summarize(p_values, false);
  FindPlace(all.all);
  SetSummaries(all, Summarize(p_values, true), !p_values.empty());
  _values.resize(p_values.size());
  std::transform(p_values.begin(), p_values.end(), _values.begin(), [this](double p_value) { return Placed(p_value); });
}

/// Floats of 24 bits leave 4096 steps for the colours where the middle is 4096 times the span.
void Coloring::FindPlace(const Range& p_all) {
  constexpr double MostSpans = 4096, Least = 1e-30, Largest = 1e37;
  _middle = 0;
  _factor = 1;
  if (p_all.Empty())
    return;
  const double least = p_all.min, largest = p_all.max;
  const double middle = least / 2 + largest / 2, span = largest - least;
  if (span > 0 && std::abs(middle) > MostSpans * span)
    _middle = middle;
  const double reach = std::max(std::abs(least - _middle), std::abs(largest - _middle));
  if (reach > 0 && (reach < Least || reach > Largest))
    _factor = std::ldexp(1.0, -std::max(std::ilogb(reach), -1000));
}

void Coloring::SetSummaries(const ValueSummary& p_all, const ValueSummary& p_positive) {
  SetSummaries(p_all, p_positive, true);
  _middle = 0;
  _factor = 1;
  _values = {};
}

void Coloring::SetSummaries(ValueSummary p_linear, ValueSummary p_positive, bool p_hasValues) {
  const bool hasValues = p_hasValues || _extremes;
  if (std::exchange(_hasValues, hasValues) != hasValues)
    _map.Reset();
  _linear = std::move(p_linear);
  _positive = std::move(p_positive);
  if (!_extremes)
    return;
  _linear.all = _linear.most = *_extremes;
  if (_extremes->min > 0)
    _positive.all = _positive.most = *_extremes;
}

void Coloring::SetExtremes(const Range& p_all) {
  _extremes = p_all;
  SetSummaries(_linear, _positive, _hasValues);
}

void Coloring::SetMap(std::vector<QColor> p_colors) {
  _colors = std::move(p_colors);
  _map.Reset();
}

void Coloring::SetRange(double p_low, double p_high) {
  RequireRange(p_low, p_high, _logarithmic);
  _range = Range(p_low, p_high);
}

void Coloring::SetLogarithmic(bool p_logarithmic) {
  if (_range)
    RequireRange(_range->min, _range->max, p_logarithmic);
  _logarithmic = p_logarithmic;
}

void Coloring::SetOpacity(double p_opacity) {
  _opacity = p_opacity;
  _map.Reset();
}

ValueScale Coloring::Scale() const {
  ValueScale scale;
  if (!_hasValues)
    return scale; // elements without values have the value 0: the only colour
  const Range range = EffectiveRange();
  // Around a middle far from 0, logarithms are straight; nothing around a negative one is above 0.
  const auto place = [this](double p_value) {
    return (!_logarithmic || _middle <= 0 ? p_value - _middle : _middle * std::log(p_value / _middle)) * _factor;
  };
  scale.lower = place(range.min);
  scale.upper = place(range.max);
  scale.logarithmic = _logarithmic && _middle == 0;
  scale.missing = Faded(_missing, _opacity);
  return scale;
}

const Library::ColorMap& Coloring::Map(Utility::Scoped<Rgl>& p_gl) const {
  return _map.Get(p_gl, [&] {
    std::vector<QColor> colors{_color};
    if (_hasValues)
      colors = _colors.empty() ? Library::NamedColors::Colors("viridis") : _colors;
    for (QColor& color : colors)
      color = Faded(color, _opacity);
    return Library::ColorMap(colors, Library::ColorMap::Interpolated);
  });
}

std::optional<ColorKey> Coloring::Key() const {
  if (!_hasValues)
    return {};
  ColorKey key;
  key.title = _title.isEmpty() ? _defaultTitle : _title;
  key.colors = _colors.empty() ? Library::NamedColors::Colors("viridis") : _colors;
  key.range = EffectiveRange();
  key.logarithmic = _logarithmic;
  key.all = Summary().all;
  if (_logarithmic && Summary().hasBelow)
    key.all += _linear.all.min; // with those that are not above 0
  key.hasBelow = Summary().hasBelow || Summary().all.min < key.range.min;
  key.hasAbove = Summary().hasAbove || Summary().all.max > key.range.max;
  key.hasMissing = Summary().missing != 0 && _missing.alpha() != 0;
  key.missing = _missing;
  key.levels = _levels;
  if (_opacities) {
    constexpr int Count = 256;
    const ValueScale scale = Scale();
    std::vector<double> values;
    for (int i = 0; i < Count; ++i)
      values.push_back(ValueAt(scale, (i + 0.5) / Count));
    key.opacities = _opacities(values, scale);
  }
  return key;
}

QColor Coloring::Sample() const {
  if (!_hasValues)
    return _color;
  const std::vector<QColor> colors = _colors.empty() ? Library::NamedColors::Colors("viridis") : _colors;
  return colors[colors.size() / 2];
}

} // namespace Vek::Chart::Scene::Private
