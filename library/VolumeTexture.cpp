#include "library/VolumeTexture.h"

#include "library/private/gl/TextureSettings.h"
#include "library/private/gl/TextureUpload.h"
#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace Vek::Chart::Library {

namespace {

using Ogl::GlEnum;

namespace Signature {
constexpr const char* Constructor =
    "__cdecl Vek::Chart::Library::VolumeTexture::VolumeTexture(class boost::shared_ptr<class "
    "Vek::Chart::Library::VolumeImage const >,class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)";
constexpr const char* Upload = "void __cdecl Vek::Chart::Library::VolumeTexture::Upload(class "
                               "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &) const";
} // namespace Signature

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

} // namespace

VolumeTexture::VolumeTexture(boost::shared_ptr<const VolumeImage> p_image, Utility::Scoped<Rgl>& p_gl) {
  if (!VEK_CHECK_POINTER(p_image, Signature::Constructor))
    return;
  const int sizeS = p_image->Height(); // the fastest extent
  const int sizeT = p_image->Width();
  const int sizeR = p_image->Depth();
  if (!VEK_ENSURE_TEXT(sizeS > 0 && sizeT > 0 && sizeR > 0,
                       "sizeS > 0 && sizeT > 0 && sizeR > 0 && \"Invalid Volume Size\"", Signature::Constructor))
    return;
  _sizeS = sizeS;
  _sizeT = sizeT;
  _sizeR = sizeR;
  int limit = 0;
  p_gl->GetIntegerv(RGL_MAX_3D_TEXTURE_SIZE, &limit);
  if (limit < 1 && p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureVolumeTextures))
    limit = 1 << 16; // not answered: the upload will show whether the volume fits
  const int largest = std::max({sizeS, sizeT, sizeR});
  const FormatRow* const format = FormatOf(*p_image);
  if (VEK_ENSURE_TEXT(largest <= limit,
                      "largest <= GL_MAX_3D_TEXTURE_SIZE && \"" + std::to_string(sizeS) + " x " +
                          std::to_string(sizeT) + " x " + std::to_string(sizeR) + " voxels, the limit is " +
                          std::to_string(limit) + "\"",
                      Signature::Constructor) &&
      VEK_ENSURE(format, Signature::Constructor))
    _image = std::move(p_image);
}

void VolumeTexture::operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  p_gl->ActiveTexture(p_unit);
  if (_handle) {
    p_gl->Bind(_handle, Rgl::Sampler3D);
  } else {
    const boost::shared_ptr<Ogl::Texture> texture = Private::MakeTexture(p_gl, Rgl::Sampler3D, Signature::Upload);
    if (!texture || !Upload(p_gl))
      return;
    _handle = texture;
  }
  Private::Use3D(*p_gl, *this, wrapR);
}

bool VolumeTexture::Upload(Utility::Scoped<Rgl>& p_gl) const {
  const FormatRow* const format = _image ? FormatOf(*_image) : nullptr;
  if (format == nullptr) // the volume cannot be uploaded, or was changed since
    return true;
  // Each extent is below the device's limit, so that the product fits.
  const std::uint64_t bytes = static_cast<std::uint64_t>(_sizeS) * static_cast<std::uint64_t>(_sizeT) *
                              static_cast<std::uint64_t>(_sizeR) * format->voxelBytes;
  if (!VEK_ENSURE_TEXT(bytes <= _image->Bytes().size(), "bytes <= p_image->Bytes().size()", Signature::Upload))
    return true;
  {
    const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
    p_gl->TexImage3D(RGL_TEXTURE_3D, 0, static_cast<int>(sRgb ? format->internalSrgb : format->internal), _sizeS,
                     _sizeT, _sizeR, 0, format->format, format->type, _image->Bytes().data());
  }
  return p_gl->CheckError(Signature::Upload);
}

} // namespace Vek::Chart::Library
