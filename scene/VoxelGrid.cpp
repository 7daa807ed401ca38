#include "scene/VoxelGrid.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/PixelStore.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

namespace {

using Library::VolumeImage;
using Ogl::GlEnum;
using Point = VoxelGrid::Point;
using Box = VoxelGrid::Box;
using Sizes = VoxelGrid::Sizes;

constexpr double Missing = std::numeric_limits<double>::quiet_NaN();
constexpr const char* Signature = "bool Vek::Chart::Scene::VoxelGrid::Bind(class "
                                  "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int,enum "
                                  "Vek::Chart::Scene::VoxelGrid::Filter) const";

std::string Text(const Sizes& p_sizes) {
  return std::to_string(p_sizes[0]) + " x " + std::to_string(p_sizes[1]) + " x " + std::to_string(p_sizes[2]);
}

/// The number of voxels. Throws for sizes that have none, or more than can be addressed.
std::size_t CountOf(const Sizes& p_sizes) {
  constexpr std::size_t Most = std::numeric_limits<std::size_t>::max() / (2 * sizeof(float));
  std::size_t count = 1;
  for (const int size : p_sizes) {
    if (size < 1 || count > Most / static_cast<std::size_t>(size))
      throw std::invalid_argument("VoxelGrid: expected sizes from 1 on, got " + Text(p_sizes));
    count *= static_cast<std::size_t>(size);
  }
  return count;
}

const Box& Checked(const Box& p_box) {
  const Point size = p_box.Extent();
  const bool finite = std::isfinite(size.x) && std::isfinite(size.y) && std::isfinite(size.z);
  if (!finite || !(size.x > 0 && size.y > 0 && size.z > 0))
    throw std::invalid_argument("VoxelGrid: expected a finite box with an extent along x, y and z");
  return p_box;
}

/// Two texels of an axis and the weight of the second one, as GL's linear filter takes them for a coordinate.
struct Neighbours {
  int first, second;
  double weight;
};
Neighbours NeighboursOf(double p_coordinate, int p_size) {
  const double at = std::clamp(p_coordinate * p_size - 0.5, 0.0, p_size - 1.0);
  const int first = static_cast<int>(at);
  return {first, std::min(first + 1, p_size - 1), at - first};
}

int NearestOf(double p_coordinate, int p_size) {
  return static_cast<int>(std::clamp(std::floor(p_coordinate * p_size), 0.0, p_size - 1.0));
}

} // namespace

/// What all copies of a grid share.
class VoxelGrid::Voxels {
public:
  Voxels(const Array1& p_values, const Sizes& p_sizes, const Box& p_box, Layers p_layers)
      : sizes(p_sizes)
      , box(Checked(p_box))
      , layers(p_layers) {
    RequireCount("VoxelGrid: values", p_values.Count(), CountOf(p_sizes));
    _floats = FloatValues(p_values);
    for (float& value : _floats)
      if (!std::isfinite(value))
        value = std::numeric_limits<float>::quiet_NaN();
    FindRange();
  }

  Voxels(boost::shared_ptr<const VolumeImage> p_image, const Box& p_box, Layers p_layers, ZeroVoxels p_zeros)
      : sizes(SizesOf(p_image.get()))
      , box(Checked(p_box))
      , layers(p_layers)
      , _image(std::move(p_image))
      , _zerosAreMissing(p_zeros == ZeroVoxels::AreMissing) {
    const std::size_t channel = _image->Precision().Value() == VolumeImage::Precision8 ? 1 : sizeof(float);
    const std::size_t bytes = CountOf(sizes) * channel;
    if (_image->Bytes().size() < bytes)
      throw std::invalid_argument("VoxelGrid: expected an image of " + std::to_string(bytes) + " bytes for " +
                                  Text(sizes) + " voxels, got " + std::to_string(_image->Bytes().size()));
    _bytes = channel == 1;
    FindRange();
  }

  double Value(std::size_t p_index) const {
    if (_bytes) {
      const unsigned char byte = _image->Bytes()[p_index];
      return byte == 0 && _zerosAreMissing ? Missing : byte / 255.0;
    }
    const float value = FloatAt(p_index);
    return !std::isfinite(value) || (value == 0 && _zerosAreMissing) ? Missing : static_cast<double>(value);
  }
  std::size_t Index(int p_i, int p_j, int p_k) const {
    const auto i = static_cast<std::size_t>(p_i), j = static_cast<std::size_t>(p_j), k = static_cast<std::size_t>(p_k);
    return i + static_cast<std::size_t>(sizes[0]) * (j + static_cast<std::size_t>(sizes[1]) * k);
  }

  bool Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, Filter p_filter) const {
    Texture& texture = _textures.Get(p_gl);
    if (!texture.tried) {
      texture.tried = true;
      p_gl->ActiveTexture(p_unit);
      texture.name = Upload(p_gl);
    }
    if (!texture.name)
      return false;
    p_gl->ActiveTexture(p_unit);
    p_gl->Bind(texture.name, Rgl::Sampler3D);
    const int filter = static_cast<int>(p_filter == Filter::Nearest ? RGL_NEAREST : RGL_LINEAR);
    p_gl->TexParameteri(RGL_TEXTURE_3D, RGL_TEXTURE_MIN_FILTER, filter);
    p_gl->TexParameteri(RGL_TEXTURE_3D, RGL_TEXTURE_MAG_FILTER, filter);
    return true;
  }
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _textures.Release(p_gl); }

  const Sizes sizes;
  const Box box;
  const Layers layers;
  Types::MinMax_Base<double> range;
  bool hasMissing = false;

private:
  struct Texture {
    boost::shared_ptr<Ogl::Texture> name; ///< empty where the upload failed
    bool tried = false;
  };

  static Sizes SizesOf(const VolumeImage* p_image) {
    if (p_image == nullptr || !p_image->Valid())
      throw std::invalid_argument("VoxelGrid: expected an image with voxels, got none");
    if (p_image->Channels().Value() != 1)
      throw std::invalid_argument("VoxelGrid: expected an image of 1 channel, got " +
                                  std::to_string(p_image->Channels().Value()));
    return {p_image->Height(), p_image->Width(), p_image->Depth()};
  }

  float FloatAt(std::size_t p_index) const {
    if (!_image)
      return _floats[p_index];
    float value = 0;
    std::memcpy(&value, _image->Bytes().data() + p_index * sizeof(float), sizeof(float));
    return value;
  }

  void FindRange() {
    const std::size_t count = CountOf(sizes);
    for (std::size_t i = 0; i < count; ++i) {
      const double value = Value(i);
      range += value;
      hasMissing = hasMissing || std::isnan(value);
    }
  }

  /// The voxels as pairs of a value, 0 where it is missing, and a weight, 0 or `p_one`.
  template <class T>
  std::vector<T> Weighted(T p_one) const {
    const std::size_t count = CountOf(sizes);
    std::vector<T> texels(2 * count);
    for (std::size_t i = 0; i < count; ++i)
      if (const double value = Value(i); !std::isnan(value)) {
        if constexpr (std::is_same_v<T, float>)
          texels[2 * i] = FloatAt(i);
        else
          texels[2 * i] = _image->Bytes()[i];
        texels[2 * i + 1] = p_one;
      }
    return texels;
  }

  bool Fits(Utility::Scoped<Rgl>& p_gl) const {
    int limit = 0;
    p_gl->GetIntegerv(RGL_MAX_3D_TEXTURE_SIZE, &limit);
    return VEK_ENSURE_TEXT(*std::max_element(sizes.begin(), sizes.end()) <= limit,
                           "largest <= GL_MAX_3D_TEXTURE_SIZE && \"" + Text(sizes) + " voxels, the limit is " +
                               std::to_string(limit) + "\"",
                           Signature);
  }

  /// A new texture, bound on the active unit; empty after a report.
  boost::shared_ptr<Ogl::Texture> Upload(Utility::Scoped<Rgl>& p_gl) const {
    if (!Fits(p_gl))
      return {};
    p_gl->CheckError(std::string("before ") + Signature);
    const boost::shared_ptr<Ogl::Texture> texture = p_gl->GenTexture();
    if (!texture)
      return {};
    p_gl->Bind(texture, Rgl::Sampler3D);
    for (const GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T, RGL_TEXTURE_WRAP_R})
      p_gl->TexParameteri(RGL_TEXTURE_3D, wrap, static_cast<int>(RGL_CLAMP_TO_EDGE));
    p_gl->TexParameteri(RGL_TEXTURE_3D, RGL_TEXTURE_BASE_LEVEL, 0);
    p_gl->TexParameteri(RGL_TEXTURE_3D, RGL_TEXTURE_MAX_LEVEL, 0);
    if (_bytes && hasMissing)
      Store(p_gl, RGL_LUMINANCE8_ALPHA8, RGL_LUMINANCE_ALPHA, RGL_UNSIGNED_BYTE, Weighted<unsigned char>(255).data());
    else if (_bytes)
      Store(p_gl, RGL_LUMINANCE8, RGL_LUMINANCE, RGL_UNSIGNED_BYTE, _image->Bytes().data());
    else if (hasMissing)
      Store(p_gl, RGL_LUMINANCE_ALPHA32F_ARB, RGL_LUMINANCE_ALPHA, RGL_FLOAT, Weighted<float>(1).data());
    else
      Store(p_gl, RGL_LUMINANCE32F_ARB, RGL_LUMINANCE, RGL_FLOAT,
            _image ? static_cast<const void*>(_image->Bytes().data()) : _floats.data());
    return p_gl->CheckError(Signature) ? texture : nullptr;
  }

  void Store(Utility::Scoped<Rgl>& p_gl, GlEnum p_internal, GlEnum p_format, GlEnum p_type,
             const void* p_texels) const {
    const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
    p_gl->TexImage3D(RGL_TEXTURE_3D, 0, static_cast<int>(p_internal), sizes[0], sizes[1], sizes[2], 0, p_format, p_type,
                     p_texels);
  }

  std::vector<float> _floats; // without an image
  boost::shared_ptr<const VolumeImage> _image;
  bool _bytes = false; // whether the image has bytes
  bool _zerosAreMissing = false;
  Ogl::PerContext<Texture> _textures;
};

VoxelGrid::VoxelGrid(const Array1& p_values, const Sizes& p_sizes, const Box& p_box, Layers p_layers)
    : _voxels(boost::make_shared<const Voxels>(p_values, p_sizes, p_box, p_layers)) {}

VoxelGrid::VoxelGrid(boost::shared_ptr<const VolumeImage> p_image, const Box& p_box, Layers p_layers,
                     ZeroVoxels p_zeros)
    : _voxels(boost::make_shared<const Voxels>(std::move(p_image), p_box, p_layers, p_zeros)) {}

Box VoxelGrid::CellBounds(const Sizes& p_sizes, const Point& p_first, const Point& p_spacing) {
  const Point extent(p_spacing.x * p_sizes[0], p_spacing.y * p_sizes[1], p_spacing.z * p_sizes[2]);
  const Point low = p_first - p_spacing * 0.5;
  return {low, low + extent};
}

Box VoxelGrid::CubicBounds(const Sizes& p_sizes, double p_longest) {
  const Point voxels(p_sizes[0], p_sizes[1], p_sizes[2]);
  const Point size = voxels * (p_longest / std::max({voxels.x, voxels.y, voxels.z}));
  return {size * -0.5, size * 0.5};
}

const Sizes& VoxelGrid::Size() const {
  return _voxels->sizes;
}

const Box& VoxelGrid::Bounds() const {
  return _voxels->box;
}

Point VoxelGrid::VoxelSize() const {
  const Point extent = Bounds().Extent();
  return {extent.x / Size()[0], extent.y / Size()[1], extent.z / Size()[2]};
}

const Types::MinMax_Base<double>& VoxelGrid::Range() const {
  return _voxels->range;
}

bool VoxelGrid::HasMissing() const {
  return _voxels->hasMissing;
}

double VoxelGrid::Value(int p_i, int p_j, int p_k) const {
  const Sizes& n = Size();
  const bool inside = p_i >= 0 && p_j >= 0 && p_k >= 0 && p_i < n[0] && p_j < n[1] && p_k < n[2];
  return inside ? _voxels->Value(_voxels->Index(p_i, p_j, p_k)) : Missing;
}

double VoxelGrid::Sample(const Point& p_position, Filter p_filter) const {
  const Point at = TexCoord(p_position);
  if (!(at.x >= 0 && at.y >= 0 && at.z >= 0 && at.x <= 1 && at.y <= 1 && at.z <= 1))
    return Missing;
  const Sizes& n = Size();
  if (p_filter == Filter::Nearest)
    return Value(NearestOf(at.x, n[0]), NearestOf(at.y, n[1]), NearestOf(at.z, n[2]));
  const Neighbours x = NeighboursOf(at.x, n[0]), y = NeighboursOf(at.y, n[1]), z = NeighboursOf(at.z, n[2]);
  double sum = 0, weights = 0;
  for (int corner = 0; corner < 8; ++corner) {
    const bool i = (corner & 1) != 0, j = (corner & 2) != 0, k = (corner & 4) != 0;
    const double weight = (i ? x.weight : 1 - x.weight) * (j ? y.weight : 1 - y.weight) * (k ? z.weight : 1 - z.weight);
    const double value = Value(i ? x.second : x.first, j ? y.second : y.first, k ? z.second : z.first);
    if (!std::isnan(value)) {
      sum += weight * value;
      weights += weight;
    }
  }
  return weights >= 0.5 ? sum / weights : Missing;
}

Point VoxelGrid::NearestCenter(const Point& p_position) const {
  const Sizes& n = Size();
  const auto center = [](double p_share, int p_size) { return (NearestOf(p_share, p_size) + 0.5) / p_size; };
  const Point size = Bounds().Extent(), part = p_position - Bounds().Min();
  return Bounds().Min() + Point(size.x * center(part.x / size.x, n[0]), size.y * center(part.y / size.y, n[1]),
                                size.z * center(part.z / size.z, n[2]));
}

Point VoxelGrid::TexCoord(const Point& p_position) const {
  const Point part = p_position - Bounds().Min();
  const Point size = Bounds().Extent();
  const double up = part.z / size.z;
  return {part.x / size.x, part.y / size.y, _voxels->layers == Layers::Downwards ? 1 - up : up};
}

bool VoxelGrid::Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, Filter p_filter) const {
  return _voxels->Bind(p_gl, p_unit, p_filter);
}

void VoxelGrid::Release(const Utility::Scoped<Rgl>& p_gl) const {
  _voxels->Release(p_gl);
}

} // namespace Vek::Chart::Scene
