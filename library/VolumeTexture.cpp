#include "library/VolumeTexture.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

namespace Vek::Chart::Library {

namespace {

using Ogl::GlEnum;

/// How the voxels of a volume become texels.
struct FormatRow {
  std::int32_t channels;
  VolumeImage::DataPrecision precision;
  std::uint64_t voxelBytes;
  GlEnum internal;
  GlEnum internalSrgb;
  GlEnum format;
  GlEnum type;
};
constexpr FormatRow Formats[] = {
    {1, VolumeImage::Precision8, 1, RGL_LUMINANCE8, RGL_LUMINANCE8, RGL_LUMINANCE, RGL_UNSIGNED_BYTE},
    {1, VolumeImage::Precision32F, 4, RGL_LUMINANCE32F_ARB, RGL_LUMINANCE32F_ARB, RGL_LUMINANCE, RGL_FLOAT},
    {4, VolumeImage::Precision8, 4, RGL_RGBA8, RGL_SRGB8_ALPHA8, RGL_RGBA, RGL_UNSIGNED_BYTE},
    {4, VolumeImage::Precision32F, 16, RGL_RGBA32F, RGL_RGBA32F, RGL_RGBA, RGL_FLOAT},
};

/// Null when the volume has none of these.
const FormatRow* FormatOf(const VolumeImage& p_image) {
  const auto found = std::find_if(std::begin(Formats), std::end(Formats), [&](const FormatRow& p_row) {
    return p_image.Channels().Value() == p_row.channels && p_image.Precision().Value() == p_row.precision;
  });
  return found == std::end(Formats) ? nullptr : found;
}

constexpr const char* ConstructorSignature =
    "__cdecl Vek::Chart::Library::VolumeTexture::VolumeTexture(class boost::shared_ptr<class "
    "Vek::Chart::Library::VolumeImage const >,class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)";

// The GL values of the settings, in the order of the enumerations.
constexpr GlEnum Filters[] = {RGL_NEAREST, RGL_LINEAR};
constexpr GlEnum Wraps[] = {RGL_CLAMP_TO_EDGE, RGL_REPEAT};
constexpr GlEnum Environments[] = {RGL_MODULATE, RGL_DECAL, RGL_REPLACE};

template <std::size_t Count>
void SetParameter(Utility::Scoped<Rgl>& p_gl, GlEnum p_name, const GlEnum (&p_values)[Count], std::uint32_t p_setting) {
  if (p_setting < Count)
    p_gl->TexParameteri(RGL_TEXTURE_3D, p_name, static_cast<int>(p_values[p_setting]));
}

} // namespace

VolumeTexture::VolumeTexture(boost::shared_ptr<const VolumeImage> p_image, Utility::Scoped<Rgl>& p_gl) {
  if (!VEK_CHECK_POINTER(p_image, ConstructorSignature))
    return;
  const int sizeS = p_image->Height(); // the fastest extent
  const int sizeT = p_image->Width();
  const int sizeR = p_image->Depth();
  if (!VEK_ENSURE_TEXT(sizeS > 0 && sizeT > 0 && sizeR > 0,
                       "sizeS > 0 && sizeT > 0 && sizeR > 0 && \"Invalid Volume Size\"", ConstructorSignature))
    return;
  _sizeS = sizeS;
  _sizeT = sizeT;
  _sizeR = sizeR;
  int limit = 0;
  p_gl->GetIntegerv(RGL_MAX_3D_TEXTURE_SIZE, &limit);
  const int largest = std::max({sizeS, sizeT, sizeR});
  const FormatRow* const format = FormatOf(*p_image);
  if (VEK_ENSURE_TEXT(largest <= limit,
                      "largest <= GL_MAX_3D_TEXTURE_SIZE && \"" + std::to_string(sizeS) + " x " +
                          std::to_string(sizeT) + " x " + std::to_string(sizeR) + " voxels, the limit is " +
                          std::to_string(limit) + "\"",
                      ConstructorSignature) &&
      VEK_ENSURE(format, ConstructorSignature))
    _image = std::move(p_image);
}

void VolumeTexture::operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  p_gl->ActiveTexture(p_unit);
  if (_handle) {
    p_gl->Bind(_handle, Rgl::Sampler3D);
  } else {
    _handle = p_gl->GenTexture();
    p_gl->Bind(_handle, Rgl::Sampler3D);
    if (_image)
      Upload(p_gl);
  }
  p_gl->TexParameteri(RGL_TEXTURE_3D, RGL_TEXTURE_BASE_LEVEL, 0);
  p_gl->TexParameteri(RGL_TEXTURE_3D, RGL_TEXTURE_MAX_LEVEL, 0);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_S, Wraps, wrapS);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_T, Wraps, wrapT);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_R, Wraps, wrapR);
  SetParameter(p_gl, RGL_TEXTURE_MIN_FILTER, Filters, minFilter);
  SetParameter(p_gl, RGL_TEXTURE_MAG_FILTER, Filters, magFilter);
  if (environment < std::size(Environments))
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, static_cast<int>(Environments[environment]));
  p_gl->Enable(RGL_TEXTURE_3D);
}

void VolumeTexture::Upload(Utility::Scoped<Rgl>& p_gl) const {
  const FormatRow* const format = FormatOf(*_image);
  if (format == nullptr) // it was changed since
    return;
  // Each extent is below the device's limit, so that the product fits.
  const std::uint64_t bytes = static_cast<std::uint64_t>(_sizeS) * static_cast<std::uint64_t>(_sizeT) *
                              static_cast<std::uint64_t>(_sizeR) * format->voxelBytes;
  if (!VEK_ENSURE_TEXT(
          bytes <= _image->Bytes().size(), "bytes <= p_image->Bytes().size()",
          "void __cdecl Vek::Chart::Library::VolumeTexture::Upload(class Vek::Chart::Utility::Scoped<class "
          "Vek::Chart::Ogl::Rgl> &) const"))
    return;
  const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
  p_gl->TexImage3D(RGL_TEXTURE_3D, 0, static_cast<int>(sRgb ? format->internalSrgb : format->internal), _sizeS, _sizeT,
                   _sizeR, 0, format->format, format->type, _image->Bytes().data());
}

} // namespace Vek::Chart::Library
