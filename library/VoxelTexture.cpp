#include "library/VoxelTexture.h"

#include "library/private/gl/TextureSettings.h"
#include "library/private/gl/TextureUpload.h"
#include "platform/debug/Check.h"
#include "platform/ogl/DeviceFeatures.h"
#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Library {

namespace {

using Ogl::GlEnum;

constexpr const char* Signature = "VoxelTexture::VoxelTexture";

/// How values become texels, by the number of channels.
struct TypeRow {
  GlEnum type;
  GlEnum internal[4];
  double scale;
};
constexpr GlEnum Formats[] = {RGL_LUMINANCE, RGL_LUMINANCE_ALPHA, RGL_RGB, RGL_RGBA};
constexpr TypeRow Types[] = {
    {RGL_UNSIGNED_BYTE, {RGL_LUMINANCE8, RGL_LUMINANCE8_ALPHA8, RGL_RGB8, RGL_RGBA8}, 255},
    {RGL_UNSIGNED_SHORT, {RGL_LUMINANCE16, RGL_LUMINANCE16_ALPHA16, RGL_RGB16, RGL_RGBA16}, 65535},
    {RGL_FLOAT, {RGL_LUMINANCE32F_ARB, RGL_LUMINANCE_ALPHA32F_ARB, RGL_RGB32F, RGL_RGBA32F}, 1},
};

std::string Text(const std::array<int, 3>& p_size) {
  return std::to_string(p_size[0]) + " x " + std::to_string(p_size[1]) + " x " + std::to_string(p_size[2]) + " voxels";
}

const VoxelTexture::Voxels& Checked(const VoxelTexture::Voxels& p_voxels) {
  const auto refuse = [](const std::string& p_expected, const std::string& p_found) {
    throw std::invalid_argument("VoxelTexture: expected " + p_expected + ", got " + p_found);
  };
  if (p_voxels.values == nullptr)
    refuse("values", "none");
  if (p_voxels.type < VoxelTexture::UInt8 || p_voxels.type > VoxelTexture::Float32)
    refuse("a type", std::to_string(p_voxels.type));
  if (p_voxels.channels < 1 || p_voxels.channels > 4)
    refuse("1 to 4 channels", std::to_string(p_voxels.channels));
  if (*std::min_element(p_voxels.size.begin(), p_voxels.size.end()) < 1)
    refuse("sizes of 1 or more", Text(p_voxels.size));
  return p_voxels;
}

} // namespace

VoxelTexture::VoxelTexture(const Voxels& p_voxels, Utility::Scoped<Rgl>& p_gl)
    : _size(Checked(p_voxels).size)
    , _valueScale(Types[p_voxels.type].scale) {
  int limit = 0;
  p_gl->GetIntegerv(RGL_MAX_3D_TEXTURE_SIZE, &limit);
  if (!VEK_ENSURE_TEXT(*std::max_element(_size.begin(), _size.end()) <= limit,
                       "largest <= GL_MAX_3D_TEXTURE_SIZE && \"" + Text(_size) + ", the limit is " +
                           std::to_string(limit) + "\"",
                       Signature))
    return;
  const boost::shared_ptr<Ogl::Texture> texture = Private::MakeTexture(p_gl, Rgl::Sampler3D, Signature);
  if (!texture)
    return;
  const TypeRow& row = Types[p_voxels.type];
  const int index = p_voxels.channels - 1;
  {
    const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
    p_gl->TexImage3D(RGL_TEXTURE_3D, 0, static_cast<int>(row.internal[index]), _size[0], _size[1], _size[2], 0,
                     Formats[index], row.type, p_voxels.values);
  }
  if (p_gl->CheckError(Signature))
    _handle = texture;
}

bool VoxelTexture::operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  if (!_handle)
    return false;
  p_gl->ActiveTexture(p_unit);
  p_gl->Bind(_handle, Rgl::Sampler3D);
  Private::Use3D(*p_gl, *this, wrapR);
  return true;
}

} // namespace Vek::Chart::Library
