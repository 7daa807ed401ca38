#include "library/ColorMap.h"

#include "library/NamedColors.h"
#include "library/private/gl/TextureSettings.h"
#include "library/private/gl/TextureUpload.h"
#include "platform/debug/Check.h"
#include "platform/types/ColorChannels.h"
#include "platform/types/Math.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Library {

namespace {

namespace Signature {
#define VEK_COLORS "const class std::vector<class QColor,class std::allocator<class QColor> > &"
#define VEK_DOUBLES "const class std::vector<double,class std::allocator<double> > &"
constexpr const char* Constructor = "__cdecl Vek::Chart::Library::ColorMap::ColorMap(" VEK_COLORS "," VEK_DOUBLES
                                    ",enum Vek::Chart::Library::ColorMap::Style)";
constexpr const char* CreateLinearMap = "void __cdecl Vek::Chart::Library::ColorMap::CreateLinearMap(" VEK_COLORS
                                        ",enum Vek::Chart::Library::ColorMap::Style)";
constexpr const char* CreateNonLinearMap = "void __cdecl Vek::Chart::Library::ColorMap::CreateNonLinearMap(" VEK_COLORS
                                           "," VEK_DOUBLES ",enum Vek::Chart::Library::ColorMap::Style,unsigned int)";
constexpr const char* Fill =
    "void __cdecl Vek::Chart::Library::`anonymous-namespace'::Fill(class QImage &," VEK_DOUBLES "," VEK_COLORS ")";
constexpr const char* FillInterpolated =
    "void __cdecl Vek::Chart::Library::`anonymous-namespace'::FillInterpolated(class QImage &," VEK_DOUBLES
    "," VEK_COLORS ")";
constexpr const char* Bind = "void __cdecl Vek::Chart::Library::ColorMap::operator ()(class "
                             "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int) const";
#undef VEK_COLORS
#undef VEK_DOUBLES
} // namespace Signature

unsigned int DefaultResolution(const std::vector<QColor>& p_colors) {
  return std::max(static_cast<unsigned int>(p_colors.size()),
                  static_cast<unsigned int>(ColorMap::GradientResolutionMax));
}

/// The number of texels of each weight. `p_resolution` is what was wished for and becomes their sum.
std::vector<double> ComputeDistribution(const std::vector<double>& p_weights, unsigned int& p_resolution) {
  double total = 0;
  for (const double weight : p_weights)
    total += weight;

  // With no texel left to share out, each weight has just the one that it gets in any case.
  const double unit = p_weights.size() < p_resolution ? total / static_cast<double>(p_resolution - p_weights.size())
                                                      : std::numeric_limits<double>::infinity();
  std::vector<double> distribution;
  distribution.reserve(p_weights.size());
  unsigned int sum = 0;
  for (const double weight : p_weights) {
    const double share =
        Types::Math::Clamp(std::floor(weight / unit + 0.5) + 1, 0.0, static_cast<double>(p_resolution));
    // Infinite weights, and weights that vanish when halved, have no share: infinity by infinity, zero by zero.
    const unsigned int count = std::isnan(share) ? 1u : static_cast<unsigned int>(share);
    distribution.push_back(count);
    sum += count;
  }
  p_resolution = sum;
  return distribution;
}

/// Red, green, blue and alpha as fractions.
using Fractions = std::array<double, 4>;

QColor BlendColors(const Fractions& p_a, const Fractions& p_b, double p_t) {
  const auto blend = [&](std::size_t p_i) { return p_a[p_i] * (1 - p_t) + p_b[p_i] * p_t; };
  return Types::ColorOfChannels({blend(0), blend(1), blend(2), blend(3)});
}

/// The texels of an ARGB32 image of one row, to be written from left to right and never past the end.
class TexelRow {
public:
  explicit TexelRow(QImage& p_image)
      : _next(reinterpret_cast<QRgb*>(p_image.scanLine(0)))
      , _end(_next + p_image.width()) {}

  /// As many of `p_count` texels as there is room for; they are the caller's to write.
  std::pair<QRgb*, QRgb*> Take(double p_count) {
    QRgb* const first = _next;
    _next += std::min(static_cast<std::ptrdiff_t>(p_count), _end - _next);
    return {first, _next};
  }

private:
  QRgb* _next;
  QRgb* _end;
};

void Fill(QImage& p_image, const std::vector<double>& p_distribution, const std::vector<QColor>& p_colors) {
  VEK_ENSURE(p_distribution.size() == p_colors.size(), Signature::Fill);
  TexelRow row(p_image);
  for (std::size_t i = 0; i < std::min(p_distribution.size(), p_colors.size()); ++i) {
    const auto [first, last] = row.Take(p_distribution[i]);
    std::fill(first, last, p_colors[i].rgba());
  }
}

void FillInterpolated(QImage& p_image, const std::vector<double>& p_distribution, const std::vector<QColor>& p_colors) {
  VEK_ENSURE(p_distribution.size() == p_colors.size(), Signature::FillInterpolated);
  VEK_ENSURE_TEXT(p_distribution.size() % 2 == 0, "p_distribution.size()%2 == 0", Signature::FillInterpolated);

  TexelRow row(p_image);
  for (std::size_t i = 0; i + 1 < std::min(p_distribution.size(), p_colors.size()); i += 2) {
    const double length = std::trunc(p_distribution[i] + p_distribution[i + 1]);
    const double step = length / p_image.width();
    const Fractions a = Types::ColorChannels(p_colors[i]), b = Types::ColorChannels(p_colors[i + 1]);
    const auto [first, last] = row.Take(length);
    for (QRgb* texel = first; texel != last; ++texel) {
      const double t = (static_cast<double>(texel - first) * step) / (length * step);
      *texel = BlendColors(a, b, t).rgba();
    }
  }
}

/// Every list entry but the outer ones twice, as the end of one segment and the start of the next.
template <class T>
std::vector<T> SegmentEnds(const std::vector<T>& p_list) {
  std::vector<T> ends;
  ends.reserve(2 * (p_list.size() - 1));
  for (std::size_t i = 0; i + 1 < p_list.size(); ++i) {
    ends.push_back(p_list[i]);
    ends.push_back(p_list[i + 1]);
  }
  return ends;
}

QColor Texel(const QImage& p_image, unsigned int p_x) {
  return QColor::fromRgba(reinterpret_cast<const QRgb*>(p_image.constScanLine(0))[p_x]);
}

} // namespace

ColorMap::ColorMap(const std::vector<QColor>& p_colors, const std::vector<double>& p_weightings,
                   ColorMap::Style p_style) {
  const std::size_t size = p_colors.size();
  VEK_ENSURE(size == p_weightings.size(), Signature::Constructor);

  std::vector<QColor> colors;
  std::vector<double> weightings;
  for (std::size_t i = 0; i < std::min(size, p_weightings.size()); ++i) {
    if (!(p_weightings[i] >= 0))
      vekdebug::warn(vekdebug::check_text("(p_weightings[i] >= 0) && \"Invalid color weight specified.\"",
                                          Signature::Constructor) +
                     " @line" + std::to_string(__LINE__));
    if (p_weightings[i] > 0) {
      colors.push_back(p_colors[i]);
      weightings.push_back(p_weightings[i]);
    }
  }
  if (colors.empty())
    CreateLinearMap(p_colors, p_style);
  else
    CreateNonLinearMap(colors, weightings, p_style);
}

ColorMap::ColorMap(const std::vector<QColor>& p_colors, ColorMap::Style p_style) {
  CreateLinearMap(p_colors, p_style);
}

ColorMap ColorMap::Named(const std::string& p_name, ColorMap::Style p_style) {
  const std::vector<std::string>& names = NamedColors::Names();
  if (std::find(names.begin(), names.end(), p_name) == names.end()) {
    std::string known;
    for (const std::string& name : names)
      known += (known.empty() ? "" : ", ") + name;
    throw std::invalid_argument("colour map \"" + p_name + "\" is unknown; known are " + known);
  }
  return ColorMap(NamedColors::Colors(p_name), p_style);
}

ColorMap::~ColorMap() = default;

void ColorMap::CreateLinearMap(const std::vector<QColor>& p_colors, ColorMap::Style p_style) {
  const int size = static_cast<int>(p_colors.size());
  VEK_ENSURE(size > 0, Signature::CreateLinearMap); // and once more by the builder below, which ends there
  CreateNonLinearMap(p_colors, std::vector<double>(p_colors.size(), 1.0), p_style);
}

void ColorMap::CreateNonLinearMap(const std::vector<QColor>& p_colors, const std::vector<double>& p_weightings,
                                  ColorMap::Style p_style) {
  CreateNonLinearMap(p_colors, p_weightings, p_style, DefaultResolution(p_colors));
}

void ColorMap::CreateNonLinearMap(const std::vector<QColor>& p_colors, const std::vector<double>& p_weightings,
                                  ColorMap::Style p_style, unsigned int p_resolution) {
  const int size = static_cast<int>(p_colors.size());
  VEK_ENSURE_TEXT(p_weightings.size() == p_colors.size(), "p_weightings.size() == size", Signature::CreateNonLinearMap);
  if (!VEK_ENSURE(size > 0, Signature::CreateNonLinearMap))
    return;

  _size = 1;
  _image = QImage(1, 1, QImage::Format_ARGB32);
  if (size == 1) {
    _image.fill(p_colors.front().rgba());
    return;
  }

  _weightings = p_weightings;
  _weightings.resize(p_colors.size(), 0.0);
  _size = p_resolution;
  const auto makeRow = [this] { return QImage(static_cast<int>(_size), 1, QImage::Format_ARGB32); };
  if (p_style == Interpolated) {
    std::vector<double> weights = SegmentEnds(_weightings);
    for (double& weight : weights)
      weight *= 0.5;
    const std::vector<double> distribution = ComputeDistribution(weights, _size);
    _image = makeRow();
    FillInterpolated(_image, distribution, SegmentEnds(p_colors));
  } else {
    const std::vector<double> distribution = ComputeDistribution(_weightings, _size);
    _image = makeRow();
    Fill(_image, distribution, p_colors);
  }

  // Smooth scaling hands out premultiplied colours, which would be read back too dark.
  if (_size > static_cast<unsigned int>(GradientResolutionMax))
    _image = _image.scaled(GradientResolutionMax, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                 .convertToFormat(QImage::Format_ARGB32);
  // 0 where an image could not be had; then there is nothing to look up either.
  _size = static_cast<unsigned int>(_image.width());
}

QColor ColorMap::Color(int p_index) const {
  return _size == 0 ? QColor(Qt::transparent) : Texel(_image, static_cast<unsigned int>(p_index) % _size);
}

QColor ColorMap::Color(double p_value) const {
  if (_size == 0)
    return Qt::transparent;
  const double value = Types::Math::Clamp(p_value, 0.0, 1.0);
  return Texel(_image, std::isnan(value) ? 0u : static_cast<unsigned int>(value * (_size - 1)));
}

void ColorMap::operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  p_gl->ActiveTexture(p_unit);
  if (_handle) {
    p_gl->Bind(_handle, Rgl::Sampler2D);
  } else {
    const bool fits = Private::FitsDevice(p_gl, Size(), 1, Signature::Bind);
    _handle = Private::MakeTexture(p_gl, fits ? _image : QImage(), RGL_RGBA, Signature::Bind);
    if (!_handle)
      return;
  }
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_WRAP_S, RGL_CLAMP_TO_EDGE);
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_WRAP_T, RGL_CLAMP_TO_EDGE);
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MIN_FILTER, RGL_NEAREST);
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MAG_FILTER, RGL_NEAREST);
  Private::SetOneLevel(*p_gl, RGL_TEXTURE_2D);
  Private::Enable2D(*p_gl);
  p_gl->Disable(RGL_TEXTURE_GEN_S);
  p_gl->Disable(RGL_TEXTURE_GEN_T);
}

boost::shared_ptr<void> ColorMap::Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit,
                                       Texture::Environment p_environment) const {
  const boost::shared_ptr<void> guard = p_gl->PushAttribScope(RGL_TEXTURE_BIT);
  (*this)(p_gl, p_unit);
  Private::SetEnvironment(*p_gl, p_environment);
  return guard;
}

std::vector<QColor> ColorMap::GenerateColorList(const std::vector<QColor>& p_colors, int p_count) {
  if (p_count <= 0)
    return {};
  const auto count = static_cast<std::size_t>(p_count);
  if (p_colors.empty())
    return std::vector<QColor>(count, Qt::white);
  if (count == p_colors.size())
    return p_colors;
  if (count == 1)
    return {p_colors.front()};

  // Output k lies at k × step / gaps along the list: `position` is what of that reaches past the colour `a`.
  const std::int64_t gaps = p_count - 1;
  const std::int64_t step = static_cast<std::int64_t>(p_colors.size()) - 1;
  auto a = p_colors.begin();
  auto b = p_colors.size() == 1 ? a : a + 1;
  std::int64_t position = 0;
  std::vector<QColor> result;
  result.reserve(count);
  for (std::size_t k = 0; k < count; ++k) {
    result.push_back(BlendColors(Types::ColorChannels(*a), Types::ColorChannels(*b),
                                 static_cast<double>(position) / static_cast<double>(gaps)));
    for (position += step; position >= gaps; position -= gaps) {
      a = b;
      if (b + 1 != p_colors.end())
        ++b;
    }
  }
  return result;
}

std::vector<double> ColorMap::GenerateWeightList(const std::vector<double>& p_weights, int p_count) {
  if (p_count <= 0)
    return {};
  const auto count = static_cast<std::size_t>(p_count);
  if (p_weights.empty())
    return std::vector<double>(count, 1.0);
  if (count == p_weights.size())
    return p_weights;

  // Every output is n / count inputs wide. `reached` is how far it reaches into input i, in parts of count.
  const auto n = static_cast<std::int64_t>(p_weights.size());
  const auto part = [p_count](std::int64_t p_parts) { return static_cast<double>(p_parts) / p_count; };
  std::int64_t reached = 0;
  std::size_t i = 0;
  std::vector<double> result;
  result.reserve(count);
  for (std::size_t k = 0; k < count; ++k) {
    reached += n;
    if (reached < p_count) {
      result.push_back(part(n) * p_weights[i]);
      continue;
    }
    double weight = part(n - reached + p_count) * p_weights[i++];
    for (reached -= p_count; reached >= p_count; reached -= p_count)
      weight += p_weights[i++];
    if (i < p_weights.size())
      weight += part(reached) * p_weights[i];
    result.push_back(weight);
  }
  return result;
}

} // namespace Vek::Chart::Library
