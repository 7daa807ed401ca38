#include "library/ColorScale.h"

#include "library/private/color/ValueBuckets.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Vek::Chart::Library {

namespace {

namespace Signature {
#define VEK_SCALE "Vek::Chart::Library::ColorScale::"
#define VEK_COLORS "const class std::vector<class QColor,class std::allocator<class QColor> > &"
constexpr const char* FromRange = "__cdecl " VEK_SCALE "ColorScale(" VEK_COLORS ",double,double,enum " VEK_SCALE
                                  "Spacing,const struct " VEK_SCALE "Outside &)";
constexpr const char* FromBounds =
    "__cdecl " VEK_SCALE "ColorScale(" VEK_COLORS
    ",const class std::vector<double,class std::allocator<double> > &,const struct " VEK_SCALE "Outside &)";
constexpr const char* MapFloats = "void __cdecl " VEK_SCALE "Map(const float *,unsigned __int64,unsigned char *) const";
constexpr const char* MapDoubles =
    "void __cdecl " VEK_SCALE "Map(const double *,unsigned __int64,unsigned char *) const";
} // namespace Signature

std::uint32_t Packed(const QColor& p_color) {
  const QRgb rgba = p_color.rgba();
  const unsigned char bytes[] = {static_cast<unsigned char>(qRed(rgba)), static_cast<unsigned char>(qGreen(rgba)),
                                 static_cast<unsigned char>(qBlue(rgba)), static_cast<unsigned char>(qAlpha(rgba))};
  std::uint32_t packed;
  std::memcpy(&packed, bytes, sizeof packed);
  return packed;
}

QColor Unpacked(std::uint32_t p_packed) {
  unsigned char bytes[4];
  std::memcpy(bytes, &p_packed, sizeof bytes);
  return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

std::vector<QColor> Texels(const ColorMap& p_map) {
  std::vector<QColor> texels;
  for (int i = 0; i < p_map.Size(); ++i)
    texels.push_back(p_map.Color(i));
  return texels;
}

/// False for NaN and infinity, too. The list is not empty.
bool Ascend(const std::vector<double>& p_bounds) {
  const auto descent = [](double p_a, double p_b) { return !(p_a <= p_b); };
  return std::adjacent_find(p_bounds.begin(), p_bounds.end(), descent) == p_bounds.end() &&
         std::isfinite(p_bounds.front()) && std::isfinite(p_bounds.back());
}

/// Computed with more digits than double has, where the machine has them, so that a bound is rounded once.
double Bound(long double p_lower, long double p_upper, bool p_logarithmic, std::size_t p_index, std::size_t p_count) {
  const auto i = static_cast<long double>(p_index), n = static_cast<long double>(p_count);
  return static_cast<double>(p_logarithmic ? p_lower * std::pow(p_upper / p_lower, i / n)
                                           : (p_lower * (n - i) + p_upper * i) / n);
}

std::vector<double> EvenBounds(double p_lower, double p_upper, bool p_logarithmic, std::size_t p_count) {
  std::vector<double> bounds{p_lower};
  for (std::size_t i = 1; i < p_count; ++i)
    bounds.push_back(std::clamp(Bound(p_lower, p_upper, p_logarithmic, i, p_count), bounds.back(), p_upper));
  bounds.push_back(p_upper);
  return bounds;
}

/// The smallest T that is not below a number.
template <class T>
T RoundedUp(double p_number) {
  using Limits = std::numeric_limits<T>;
  if (p_number > Limits::max())
    return Limits::infinity();
  if (p_number < Limits::lowest())
    return Limits::lowest();
  const T nearest = static_cast<T>(p_number);
  return nearest < p_number ? std::nextafter(nearest, Limits::infinity()) : nearest;
}

/// The smallest T of each class, and the smallest T above all classes.
template <class T>
std::vector<T> Thresholds(const std::vector<double>& p_bounds) {
  std::vector<T> thresholds;
  for (const double bound : p_bounds)
    thresholds.push_back(RoundedUp<T>(bound));
  if (!thresholds.empty() && thresholds.back() == p_bounds.back()) // it belongs to the last class
    thresholds.back() = std::nextafter(thresholds.back(), std::numeric_limits<T>::infinity());
  return thresholds;
}

/// In the order of ValueBuckets: the colours of NaN, below, the classes, above. Without classes, the colour of NaN for
/// all.
std::vector<std::uint32_t> PackedColors(const std::vector<QColor>& p_colors, const ColorScale::Outside& p_outside) {
  const auto orElse = [](const QColor& p_color, const QColor& p_other) {
    return Packed(p_color.isValid() ? p_color : p_other);
  };
  const std::uint32_t nan = orElse(p_outside.nan, QColor(0, 0, 0, 0));
  if (p_colors.empty())
    return {nan, nan};
  std::vector<std::uint32_t> packed{nan, orElse(p_outside.below, p_colors.front())};
  for (const QColor& color : p_colors)
    packed.push_back(Packed(color));
  packed.push_back(orElse(p_outside.above, p_colors.back()));
  return packed;
}

} // namespace

struct ColorScale::Tables {
  Tables(std::vector<double> p_bounds, const std::vector<std::uint32_t>& p_colors, bool p_logarithmic)
      : bounds(std::move(p_bounds))
      , floats(Thresholds<float>(bounds), p_colors, p_logarithmic)
      , doubles(Thresholds<double>(bounds), p_colors, p_logarithmic)
      , outside{Unpacked(p_colors[1]), Unpacked(p_colors.back()), Unpacked(p_colors.front())} {
    for (std::size_t i = 2; i + 1 < p_colors.size(); ++i)
      colors.push_back(Unpacked(p_colors[i]));
  }

  std::vector<double> bounds;
  Private::ValueBuckets<float> floats;
  Private::ValueBuckets<double> doubles;
  std::vector<QColor> colors;
  Outside outside;
};

ColorScale::ColorScale(const std::vector<QColor>& p_colors, double p_lower, double p_upper, Spacing p_spacing,
                       const Outside& p_outside) {
  const bool logarithmic = p_spacing == Logarithmic;
  const bool valid = VEK_ENSURE(!p_colors.empty(), Signature::FromRange) &&
                     VEK_ENSURE(std::isfinite(p_lower) && std::isfinite(p_upper), Signature::FromRange) &&
                     VEK_ENSURE(p_lower < p_upper, Signature::FromRange) &&
                     (!logarithmic || VEK_ENSURE(p_lower > 0, Signature::FromRange));
  _tables = valid ? std::make_shared<const Tables>(EvenBounds(p_lower, p_upper, logarithmic, p_colors.size()),
                                                   PackedColors(p_colors, p_outside), logarithmic)
                  : std::make_shared<const Tables>(std::vector<double>(), PackedColors({}, p_outside), false);
}

ColorScale::ColorScale(const ColorMap& p_map, double p_lower, double p_upper, Spacing p_spacing,
                       const Outside& p_outside)
    : ColorScale(Texels(p_map), p_lower, p_upper, p_spacing, p_outside) {}

ColorScale::ColorScale(const std::vector<QColor>& p_colors, const std::vector<double>& p_bounds,
                       const Outside& p_outside) {
  const bool valid = VEK_ENSURE(!p_colors.empty(), Signature::FromBounds) &&
                     VEK_ENSURE(p_bounds.size() == p_colors.size() + 1, Signature::FromBounds) &&
                     VEK_ENSURE_TEXT(Ascend(p_bounds), "p_bounds[i] <= p_bounds[i + 1]", Signature::FromBounds);
  _tables = valid ? std::make_shared<const Tables>(p_bounds, PackedColors(p_colors, p_outside), false)
                  : std::make_shared<const Tables>(std::vector<double>(), PackedColors({}, p_outside), false);
}

ColorScale::~ColorScale() = default;

void ColorScale::Map(const float* p_values, std::size_t p_count, unsigned char* p_rgba) const {
  Map(p_values, p_count, p_rgba, Utility::Threads());
}

void ColorScale::Map(const double* p_values, std::size_t p_count, unsigned char* p_rgba) const {
  Map(p_values, p_count, p_rgba, Utility::Threads());
}

void ColorScale::Map(const float* p_values, std::size_t p_count, unsigned char* p_rgba,
                     Utility::Threads p_threads) const {
  if (VEK_ENSURE(p_count == 0 || (p_values != nullptr && p_rgba != nullptr), Signature::MapFloats))
    _tables->floats.Map(p_values, p_count, p_rgba, p_threads);
}

void ColorScale::Map(const double* p_values, std::size_t p_count, unsigned char* p_rgba,
                     Utility::Threads p_threads) const {
  if (VEK_ENSURE(p_count == 0 || (p_values != nullptr && p_rgba != nullptr), Signature::MapDoubles))
    _tables->doubles.Map(p_values, p_count, p_rgba, p_threads);
}

QColor ColorScale::Color(double p_value) const {
  return Unpacked(_tables->doubles.Color(p_value));
}

const std::vector<double>& ColorScale::Bounds() const {
  return _tables->bounds;
}

const std::vector<QColor>& ColorScale::Colors() const {
  return _tables->colors;
}

const ColorScale::Outside& ColorScale::OutsideColors() const {
  return _tables->outside;
}

} // namespace Vek::Chart::Library
