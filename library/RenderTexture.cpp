#include "library/RenderTexture.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"
#include "platform/ogl/PixelStore.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace Vek::Chart::Library {

namespace {

using Ogl::GlEnum;

/// How a colour format is kept in a texture, and read back as floats.
struct FormatRow {
  GlEnum internal;
  GlEnum internalSrgb;
  GlEnum type;
  GlEnum channels;
  std::size_t channelCount;
};
constexpr std::array<FormatRow, 4> Formats = {{
    {RGL_RGBA8, RGL_SRGB8_ALPHA8, RGL_UNSIGNED_BYTE, RGL_RGBA, 4},
    {RGL_RGBA16F, RGL_RGBA16F, RGL_FLOAT, RGL_RGBA, 4},
    {RGL_RGBA32F, RGL_RGBA32F, RGL_FLOAT, RGL_RGBA, 4},
    {RGL_R32F, RGL_R32F, RGL_FLOAT, RGL_RED, 1},
}};

std::string StatusName(GlEnum p_status) {
  switch (p_status) {
#define VEK_STATUS(p_name)                                                                                             \
  case RGL_##p_name:                                                                                                   \
    return "GL_" #p_name;
    VEK_STATUS(FRAMEBUFFER_UNDEFINED)
    VEK_STATUS(FRAMEBUFFER_INCOMPLETE_ATTACHMENT)
    VEK_STATUS(FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT)
    VEK_STATUS(FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER)
    VEK_STATUS(FRAMEBUFFER_INCOMPLETE_READ_BUFFER)
    VEK_STATUS(FRAMEBUFFER_UNSUPPORTED)
    VEK_STATUS(FRAMEBUFFER_INCOMPLETE_MULTISAMPLE)
#undef VEK_STATUS
  default:
    return "status " + std::to_string(p_status);
  }
}

bool CheckComplete(Utility::Scoped<Rgl>& p_gl, Types::Size p_size, int p_samples) {
  const GlEnum status = p_gl->CheckFramebufferStatus(RGL_FRAMEBUFFER);
  return VEK_ENSURE_TEXT(
      status == RGL_FRAMEBUFFER_COMPLETE,
      "status == RGL_FRAMEBUFFER_COMPLETE && \"" + StatusName(status) + ", " + std::to_string(p_size.width) + " x " +
          std::to_string(p_size.height) + ", " + std::to_string(p_samples) + " samples\"",
      "__cdecl Vek::Chart::Library::RenderTexture::RenderTexture(class Vek::Chart::Types::Size,enum "
      "Vek::Chart::Library::RenderTexture::ColorFormat,enum Vek::Chart::Library::RenderTexture::Space,int)");
}

/// Brings the texture of the active unit back. Not through the attribute stack: that would bring back the settings of
/// the bound textures as well, which may be ours.
boost::shared_ptr<void> TextureScope(Utility::Scoped<Rgl>& p_gl) {
  const boost::shared_ptr<Rgl> gl = p_gl.Handle().Object();
  int before = 0;
  gl->GetIntegerv(RGL_TEXTURE_BINDING_2D, &before);
  return Ogl::MakeGuard([gl, before] { gl->BindTexture(RGL_TEXTURE_2D, static_cast<unsigned int>(before)); });
}

void SetParameter(Utility::Scoped<Rgl>& p_gl, GlEnum p_name, GlEnum p_value) {
  p_gl->TexParameteri(RGL_TEXTURE_2D, p_name, static_cast<int>(p_value));
}

boost::shared_ptr<Ogl::Texture> MakeTexture(Utility::Scoped<Rgl>& p_gl, GlEnum p_filter) {
  const boost::shared_ptr<Ogl::Texture> texture = p_gl->GenTexture();
  p_gl->Bind(texture, Rgl::Sampler2D);
  SetParameter(p_gl, RGL_TEXTURE_MIN_FILTER, p_filter);
  SetParameter(p_gl, RGL_TEXTURE_MAG_FILTER, p_filter);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_S, RGL_CLAMP_TO_EDGE);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_T, RGL_CLAMP_TO_EDGE);
  SetParameter(p_gl, RGL_TEXTURE_MAX_LEVEL, 0);
  return texture;
}

boost::shared_ptr<Ogl::RenderBuffer> MakeSamples(Utility::Scoped<Rgl>& p_gl, Types::Size p_size, int p_samples,
                                                 GlEnum p_internal, GlEnum p_attachment) {
  int before = 0;
  p_gl->GetIntegerv(RGL_RENDERBUFFER_BINDING, &before);
  const boost::shared_ptr<Ogl::RenderBuffer> buffer = p_gl->GenRenderBuffer();
  p_gl->BindRenderbuffer(RGL_RENDERBUFFER, buffer->Name());
  p_gl->RenderbufferStorageMultisample(RGL_RENDERBUFFER, p_samples, p_internal, p_size.width, p_size.height);
  p_gl->FramebufferRenderbuffer(RGL_FRAMEBUFFER, p_attachment, RGL_RENDERBUFFER, buffer->Name());
  p_gl->BindRenderbuffer(RGL_RENDERBUFFER, static_cast<unsigned int>(before));
  return buffer;
}

} // namespace

struct VEK_HIDDEN RenderTexture::State {
  State(Types::Size p_size, ColorFormat p_format, Space p_space, int p_samples)
      : size(p_size)
      , format(Formats[p_format < Formats.size() ? p_format : Rgba8])
      , space(p_space)
      , samples(p_samples) {}

  const Types::Size size;
  const FormatRow format;
  const Space space;
  int samples; ///< as asked for; once made, as it is

  boost::shared_ptr<Ogl::Texture> color;
  boost::shared_ptr<Ogl::Texture> depth;
  boost::shared_ptr<Ogl::FrameBufferObject> target;
  boost::shared_ptr<Ogl::RenderBuffer> colorSamples; ///< these three only with samples
  boost::shared_ptr<Ogl::RenderBuffer> depthSamples;
  boost::shared_ptr<Ogl::FrameBufferObject> sampledTarget;
  bool complete = false; ///< whether there is anything to read

  GlEnum InternalFormat() const { return space == Srgb ? format.internalSrgb : format.internal; }
  /// Of a complete target.
  std::size_t Pixels() const { return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height); }

  void Make(Utility::Scoped<Rgl>& p_gl);
  void MakeTextures(Utility::Scoped<Rgl>& p_gl, bool p_fits);
  void MakeSampled(Utility::Scoped<Rgl>& p_gl);
  void Resolve(Utility::Scoped<Rgl>& p_gl);
  /// Makes the objects if need be, and brings the textures up to date.
  void Prepare(Utility::Scoped<Rgl>& p_gl) {
    Make(p_gl);
    Resolve(p_gl);
  }
};

void RenderTexture::State::Make(Utility::Scoped<Rgl>& p_gl) {
  if (target)
    return;
  // A texture of a size that GL refuses stays without an image, so that the frame buffer says what is the matter.
  const bool fits = size.width > 0 && size.height > 0 && std::max(size.width, size.height) <= p_gl->GetMaxTextureSize();
  MakeTextures(p_gl, fits);
  target = p_gl->GenFrameBufferObject();
  {
    const boost::shared_ptr<void> bound = p_gl->BindScope(target);
    p_gl->FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_COLOR_ATTACHMENT0, RGL_TEXTURE_2D, color->Name(), 0);
    p_gl->FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_DEPTH_STENCIL_ATTACHMENT, RGL_TEXTURE_2D, depth->Name(), 0);
    complete = CheckComplete(p_gl, size, 0) && fits;
  }
  if (complete)
    MakeSampled(p_gl);
}

void RenderTexture::State::MakeTextures(Utility::Scoped<Rgl>& p_gl, bool p_fits) {
  const boost::shared_ptr<void> texture = TextureScope(p_gl);
  const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl); // a bound pixel buffer would be read
  const auto allocate = [&](GlEnum p_internal, GlEnum p_format, GlEnum p_type) {
    if (p_fits)
      p_gl->TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(p_internal), size.width, size.height, 0, p_format, p_type,
                       nullptr);
  };
  color = MakeTexture(p_gl, RGL_LINEAR);
  allocate(InternalFormat(), format.channels, format.type);
  depth = MakeTexture(p_gl, RGL_NEAREST);
  allocate(RGL_DEPTH24_STENCIL8, RGL_DEPTH_STENCIL, RGL_UNSIGNED_INT_24_8);
}

void RenderTexture::State::MakeSampled(Utility::Scoped<Rgl>& p_gl) {
  int most = 0;
  if (samples > 0 && p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureMultisampleFrameBuffer))
    p_gl->GetIntegerv(RGL_MAX_SAMPLES, &most);
  samples = std::min(samples, most);
  if (samples <= 0)
    return;
  const boost::shared_ptr<Ogl::FrameBufferObject> sampled = p_gl->GenFrameBufferObject();
  const boost::shared_ptr<void> bound = p_gl->BindScope(sampled);
  colorSamples = MakeSamples(p_gl, size, samples, InternalFormat(), RGL_COLOR_ATTACHMENT0);
  depthSamples = MakeSamples(p_gl, size, samples, RGL_DEPTH24_STENCIL8, RGL_DEPTH_STENCIL_ATTACHMENT);
  if (CheckComplete(p_gl, size, samples)) {
    sampledTarget = sampled;
  } else {
    colorSamples.reset();
    depthSamples.reset();
  }
}

void RenderTexture::State::Resolve(Utility::Scoped<Rgl>& p_gl) {
  if (!sampledTarget)
    return;
  const boost::shared_ptr<void> bound = p_gl->BindScope(sampledTarget);
  const boost::shared_ptr<void> enables = p_gl->PushAttribScope(RGL_ENABLE_BIT);
  p_gl->Disable(RGL_SCISSOR_TEST); // it would cut the copy
  if (space == Srgb && p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureSrgbFrameBuffer))
    p_gl->Enable(RGL_FRAMEBUFFER_SRGB); // samples are averaged as light
  p_gl->BindFramebuffer(RGL_DRAW_FRAMEBUFFER, target->Name());
  p_gl->BlitFramebuffer(0, 0, size.width, size.height, 0, 0, size.width, size.height,
                        RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT, RGL_NEAREST);
}

RenderTexture::RenderTexture(Types::Size p_size, ColorFormat p_format, Space p_space, int p_samples)
    : _state(new State(p_size, p_format, p_space, p_samples)) {}

Types::Size RenderTexture::Size() const {
  return _state->size;
}

boost::shared_ptr<void> RenderTexture::BindForRead(Utility::Scoped<Rgl>& p_gl) const {
  _state->Prepare(p_gl);
  return p_gl->BindScope(_state->target);
}

boost::shared_ptr<void> RenderTexture::BindForDraw(Utility::Scoped<Rgl>& p_gl) const {
  _state->Make(p_gl);
  // Released in reverse: the frame buffer first, then the viewport.
  struct Bound {
    boost::shared_ptr<void> viewport;
    boost::shared_ptr<void> target;
  };
  const boost::shared_ptr<Bound> bound = boost::make_shared<Bound>();
  bound->viewport = p_gl->PushAttribScope(RGL_VIEWPORT_BIT);
  bound->target = p_gl->BindScope(_state->sampledTarget ? _state->sampledTarget : _state->target);
  p_gl->Viewport(
      Types::Viewport<0>(0, 0, static_cast<float>(_state->size.width), static_cast<float>(_state->size.height)));
  return bound;
}

boost::shared_ptr<Ogl::Texture> RenderTexture::ColorTexture(Utility::Scoped<Rgl>& p_gl) const {
  _state->Prepare(p_gl);
  return _state->color;
}

boost::shared_ptr<Ogl::Texture> RenderTexture::DepthTexture(Utility::Scoped<Rgl>& p_gl) const {
  _state->Prepare(p_gl);
  return _state->depth;
}

void RenderTexture::BindColor(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  _state->Prepare(p_gl);
  p_gl->ActiveTexture(p_unit);
  p_gl->Bind(_state->color, Rgl::Sampler2D);
  p_gl->Enable(RGL_TEXTURE_2D);
}

void RenderTexture::BindDepth(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  _state->Prepare(p_gl);
  p_gl->ActiveTexture(p_unit);
  p_gl->Bind(_state->depth, Rgl::Sampler2D);
  p_gl->Enable(RGL_TEXTURE_2D);
}

void RenderTexture::GenerateMips(Utility::Scoped<Rgl>& p_gl) const {
  _state->Prepare(p_gl);
  if (!_state->complete)
    return;
  const boost::shared_ptr<void> texture = TextureScope(p_gl);
  p_gl->Bind(_state->color, Rgl::Sampler2D);
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MAX_LEVEL, Mips().Levels() - 1);
  SetParameter(p_gl, RGL_TEXTURE_MIN_FILTER, RGL_LINEAR_MIPMAP_LINEAR);
  p_gl->GenerateMipmap(RGL_TEXTURE_2D);
}

QImage RenderTexture::ToImage(Utility::Scoped<Rgl>& p_gl) const {
  const boost::shared_ptr<void> bound = BindForRead(p_gl);
  if (!_state->complete)
    return {};
  QImage image(_state->size.width, _state->size.height, QImage::Format_RGBA8888);
  if (image.isNull()) // no memory
    return image;
  const boost::shared_ptr<void> packing = Ogl::PackScope(*p_gl);
  p_gl->ReadPixels(0, 0, image.width(), image.height(), RGL_RGBA, RGL_UNSIGNED_BYTE, image.bits());
  return image.mirrored().convertToFormat(QImage::Format_ARGB32);
}

std::vector<float> RenderTexture::ReadColors(Utility::Scoped<Rgl>& p_gl) const {
  return ReadFloats(p_gl, _state->format.channels, _state->format.channelCount);
}

std::vector<float> RenderTexture::ReadDepths(Utility::Scoped<Rgl>& p_gl) const {
  return ReadFloats(p_gl, RGL_DEPTH_COMPONENT, 1);
}

std::vector<float> RenderTexture::ReadFloats(Utility::Scoped<Rgl>& p_gl, Ogl::GlEnum p_format,
                                             std::size_t p_count) const {
  const boost::shared_ptr<void> bound = BindForRead(p_gl);
  if (!_state->complete)
    return {};
  std::vector<float> values(_state->Pixels() * p_count);
  const boost::shared_ptr<void> packing = Ogl::PackScope(*p_gl);
  p_gl->ReadPixels(0, 0, _state->size.width, _state->size.height, p_format, RGL_FLOAT, values.data());
  return values;
}

} // namespace Vek::Chart::Library
