#include "scene/private/VoxelValues.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

using Library::VolumeImage;
using Ogl::GlEnum;
using Sizes = VoxelGrid::Sizes;

constexpr double Missing = std::numeric_limits<double>::quiet_NaN();
constexpr const char* Signature = "bool Vek::Chart::Scene::VoxelGrid::Bind(class "
                                  "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int,enum "
                                  "Vek::Chart::Scene::VoxelGrid::Filter) const";

std::string Text(const Sizes& p_sizes) {
  return std::to_string(p_sizes[0]) + " x " + std::to_string(p_sizes[1]) + " x " + std::to_string(p_sizes[2]);
}

Sizes SizesOf(const VolumeImage* p_image) {
  if (p_image == nullptr || !p_image->Valid())
    throw std::invalid_argument("VoxelGrid: expected an image with voxels, got none");
  if (p_image->Channels().Value() != 1)
    throw std::invalid_argument("VoxelGrid: expected an image of 1 channel, got " +
                                std::to_string(p_image->Channels().Value()));
  return {p_image->Height(), p_image->Width(), p_image->Depth()};
}

} // namespace

std::size_t VoxelCount(const Sizes& p_sizes) {
  constexpr std::size_t Most = std::numeric_limits<std::size_t>::max() / (2 * sizeof(float));
  std::size_t count = 1;
  for (const int size : p_sizes) {
    if (size < 1 || count > Most / static_cast<std::size_t>(size))
      throw std::invalid_argument("VoxelGrid: expected sizes from 1 on, got " + Text(p_sizes));
    count *= static_cast<std::size_t>(size);
  }
  return count;
}

VoxelValues::VoxelValues(std::vector<float> p_values, const Sizes& p_sizes)
    : sizes(p_sizes)
    , _floats(std::move(p_values)) {
  RequireCount("VoxelGrid: values", _floats.size(), VoxelCount(sizes));
  for (float& value : _floats)
    if (!std::isfinite(value))
      value = std::numeric_limits<float>::quiet_NaN();
  FindRange();
}

VoxelValues::VoxelValues(boost::shared_ptr<const VolumeImage> p_image, VoxelGrid::ZeroVoxels p_zeros)
    : sizes(SizesOf(p_image.get()))
    , _image(std::move(p_image))
    , _zerosAreMissing(p_zeros == VoxelGrid::ZeroVoxels::AreMissing) {
  const std::size_t channel = _image->Precision().Value() == VolumeImage::Precision8 ? 1 : sizeof(float);
  const std::size_t bytes = VoxelCount(sizes) * channel;
  if (_image->Bytes().size() < bytes)
    throw std::invalid_argument("VoxelGrid: expected an image of " + std::to_string(bytes) + " bytes for " +
                                Text(sizes) + " voxels, got " + std::to_string(_image->Bytes().size()));
  _bytes = channel == 1;
  FindRange();
}

std::size_t VoxelValues::Count() const {
  return VoxelCount(sizes);
}

double VoxelValues::Value(std::size_t p_index) const {
  if (_bytes) {
    const unsigned char byte = _image->Bytes()[p_index];
    return byte == 0 && _zerosAreMissing ? Missing : byte / 255.0;
  }
  const float value = FloatAt(p_index);
  return !std::isfinite(value) || (value == 0 && _zerosAreMissing) ? Missing : static_cast<double>(value);
}

float VoxelValues::FloatAt(std::size_t p_index) const {
  if (!_image)
    return _floats[p_index];
  float value = 0;
  std::memcpy(&value, _image->Bytes().data() + p_index * sizeof(float), sizeof(float));
  return value;
}

void VoxelValues::FindRange() {
  const std::size_t count = Count();
  for (std::size_t i = 0; i < count; ++i) {
    const double value = Value(i);
    range += value;
    missing += std::isnan(value) ? 1 : 0;
  }
}

bool VoxelValues::Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, Filter p_filter) const {
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

/// The voxels as pairs of a value, 0 where it is missing, and a weight, 0 or `p_one`.
template <class T>
std::vector<T> VoxelValues::Weighted(T p_one) const {
  const std::size_t count = Count();
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

bool VoxelValues::Fits(Utility::Scoped<Rgl>& p_gl) const {
  int limit = 0;
  p_gl->GetIntegerv(RGL_MAX_3D_TEXTURE_SIZE, &limit);
  return VEK_ENSURE_TEXT(*std::max_element(sizes.begin(), sizes.end()) <= limit,
                         "largest <= GL_MAX_3D_TEXTURE_SIZE && \"" + Text(sizes) + " voxels, the limit is " +
                             std::to_string(limit) + "\"",
                         Signature);
}

/// A new texture, bound on the active unit; empty after a report.
boost::shared_ptr<Ogl::Texture> VoxelValues::Upload(Utility::Scoped<Rgl>& p_gl) const {
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
  if (_bytes && missing != 0)
    Store(p_gl, RGL_LUMINANCE8_ALPHA8, RGL_LUMINANCE_ALPHA, RGL_UNSIGNED_BYTE, Weighted<unsigned char>(255).data());
  else if (_bytes)
    Store(p_gl, RGL_LUMINANCE8, RGL_LUMINANCE, RGL_UNSIGNED_BYTE, _image->Bytes().data());
  else if (missing != 0)
    Store(p_gl, RGL_LUMINANCE_ALPHA32F_ARB, RGL_LUMINANCE_ALPHA, RGL_FLOAT, Weighted<float>(1).data());
  else
    Store(p_gl, RGL_LUMINANCE32F_ARB, RGL_LUMINANCE, RGL_FLOAT,
          _image ? static_cast<const void*>(_image->Bytes().data()) : _floats.data());
  return p_gl->CheckError(Signature) ? texture : nullptr;
}

void VoxelValues::Store(Utility::Scoped<Rgl>& p_gl, GlEnum p_internal, GlEnum p_format, GlEnum p_type,
                        const void* p_texels) const {
  const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
  p_gl->TexImage3D(RGL_TEXTURE_3D, 0, static_cast<int>(p_internal), sizes[0], sizes[1], sizes[2], 0, p_format, p_type,
                   p_texels);
}

} // namespace Vek::Chart::Scene::Private
