#include "library/RenderTexture.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"

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
  GlEnum internal_srgb;
  GlEnum type;
  GlEnum channels;
  std::size_t channel_count;
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

void CheckComplete(Utility::Scoped<Rgl>& p_gl, Types::Size p_size, int p_samples) {
  const GlEnum status = p_gl->CheckFramebufferStatus(RGL_FRAMEBUFFER);
  VEK_ENSURE_TEXT(
      status == RGL_FRAMEBUFFER_COMPLETE,
      "status == RGL_FRAMEBUFFER_COMPLETE && \"" + StatusName(status) + ", " + std::to_string(p_size.width) + " x " +
          std::to_string(p_size.height) + ", " + std::to_string(p_samples) + " samples\"",
      "__cdecl Vek::Chart::Library::RenderTexture::RenderTexture(class Vek::Chart::Types::Size,enum "
      "Vek::Chart::Library::RenderTexture::ColorFormat,enum Vek::Chart::Library::RenderTexture::Space,int)");
}

boost::shared_ptr<Ogl::Texture> MakeTexture(Utility::Scoped<Rgl>& p_gl, Types::Size p_size, GlEnum p_internal,
                                            GlEnum p_format, GlEnum p_type, GlEnum p_filter) {
  const boost::shared_ptr<Ogl::Texture> texture = p_gl->GenTexture();
  p_gl->Bind(texture, Rgl::Sampler2D);
  p_gl->TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(p_internal), p_size.width, p_size.height, 0, p_format, p_type,
                   nullptr);
  for (const GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
    p_gl->TexParameteri(RGL_TEXTURE_2D, filter, static_cast<int>(p_filter));
  for (const GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T})
    p_gl->TexParameteri(RGL_TEXTURE_2D, wrap, static_cast<int>(RGL_CLAMP_TO_EDGE));
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MAX_LEVEL, 0);
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

/// Tight rows into memory of ours, whatever the host has set.
boost::shared_ptr<void> PackScope(Utility::Scoped<Rgl>& p_gl) {
  const boost::shared_ptr<Rgl> gl = p_gl.Handle().Object();
  gl->PushClientAttrib(RGL_CLIENT_PIXEL_STORE_BIT);
  gl->BindBuffer(RGL_PIXEL_PACK_BUFFER, 0);
  gl->PixelStorei(RGL_PACK_ALIGNMENT, 1);
  for (const GlEnum none : {RGL_PACK_ROW_LENGTH, RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS})
    gl->PixelStorei(none, 0);
  return Ogl::MakeGuard([gl] { gl->PopClientAttrib(); });
}

} // namespace

struct RenderTexture::State {
  Types::Size size;
  FormatRow format;
  Space space;
  int samples;

  boost::shared_ptr<Ogl::Texture> color;
  boost::shared_ptr<Ogl::Texture> depth;
  boost::shared_ptr<Ogl::FrameBufferObject> target;
  boost::shared_ptr<Ogl::RenderBuffer> color_samples; ///< these three only with samples
  boost::shared_ptr<Ogl::RenderBuffer> depth_samples;
  boost::shared_ptr<Ogl::FrameBufferObject> sampled_target;

  GlEnum InternalFormat() const { return space == Srgb ? format.internal_srgb : format.internal; }
  std::size_t Pixels() const {
    return static_cast<std::size_t>(std::max(size.width, 0)) * static_cast<std::size_t>(std::max(size.height, 0));
  }

  void Make(Utility::Scoped<Rgl>& p_gl);
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
  const boost::shared_ptr<void> textures = p_gl->PushAttribScope(RGL_TEXTURE_BIT);
  color = MakeTexture(p_gl, size, InternalFormat(), format.channels, format.type, RGL_LINEAR);
  depth = MakeTexture(p_gl, size, RGL_DEPTH24_STENCIL8, RGL_DEPTH_STENCIL, RGL_UNSIGNED_INT_24_8, RGL_NEAREST);
  target = p_gl->GenFrameBufferObject();
  {
    const boost::shared_ptr<void> bound = p_gl->BindScope(target);
    p_gl->FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_COLOR_ATTACHMENT0, RGL_TEXTURE_2D, color->Name(), 0);
    p_gl->FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_DEPTH_STENCIL_ATTACHMENT, RGL_TEXTURE_2D, depth->Name(), 0);
    CheckComplete(p_gl, size, 0);
  }
  MakeSampled(p_gl);
}

void RenderTexture::State::MakeSampled(Utility::Scoped<Rgl>& p_gl) {
  int most = 0;
  if (samples > 0 && p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureMultisampleFrameBuffer))
    p_gl->GetIntegerv(RGL_MAX_SAMPLES, &most);
  samples = std::min(samples, most);
  if (samples <= 0)
    return;
  sampled_target = p_gl->GenFrameBufferObject();
  const boost::shared_ptr<void> bound = p_gl->BindScope(sampled_target);
  color_samples = MakeSamples(p_gl, size, samples, InternalFormat(), RGL_COLOR_ATTACHMENT0);
  depth_samples = MakeSamples(p_gl, size, samples, RGL_DEPTH24_STENCIL8, RGL_DEPTH_STENCIL_ATTACHMENT);
  CheckComplete(p_gl, size, samples);
}

void RenderTexture::State::Resolve(Utility::Scoped<Rgl>& p_gl) {
  if (!sampled_target)
    return;
  const boost::shared_ptr<void> bound = p_gl->BindScope(sampled_target);
  const boost::shared_ptr<void> enables = p_gl->PushAttribScope(RGL_ENABLE_BIT);
  p_gl->Disable(RGL_SCISSOR_TEST); // it would cut the copy
  p_gl->BindFramebuffer(RGL_DRAW_FRAMEBUFFER, target->Name());
  p_gl->BlitFramebuffer(0, 0, size.width, size.height, 0, 0, size.width, size.height,
                        RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT, RGL_NEAREST);
}

RenderTexture::RenderTexture(Types::Size p_size, ColorFormat p_format, Space p_space, int p_samples)
    : _state(new State{
          p_size, Formats[p_format < Formats.size() ? p_format : Rgba8], p_space, p_samples, {}, {}, {}, {}, {}, {}}) {}

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
  bound->target = p_gl->BindScope(_state->sampled_target ? _state->sampled_target : _state->target);
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
  const boost::shared_ptr<void> textures = p_gl->PushAttribScope(RGL_TEXTURE_BIT);
  p_gl->Bind(_state->color, Rgl::Sampler2D);
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MAX_LEVEL, std::max(Mips().Levels() - 1, 0));
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MIN_FILTER, static_cast<int>(RGL_LINEAR_MIPMAP_LINEAR));
  p_gl->GenerateMipmap(RGL_TEXTURE_2D);
}

QImage RenderTexture::ToImage(Utility::Scoped<Rgl>& p_gl) const {
  const boost::shared_ptr<void> bound = BindForRead(p_gl);
  const boost::shared_ptr<void> packing = PackScope(p_gl);
  QImage image(_state->size.width, _state->size.height, QImage::Format_RGBA8888);
  if (image.isNull())
    return image;
  image.fill(0); // where GL reads nothing
  p_gl->ReadPixels(0, 0, _state->size.width, _state->size.height, RGL_RGBA, RGL_UNSIGNED_BYTE, image.bits());
  return image.mirrored().convertToFormat(QImage::Format_ARGB32);
}

std::vector<float> RenderTexture::ReadColors(Utility::Scoped<Rgl>& p_gl) const {
  const boost::shared_ptr<void> bound = BindForRead(p_gl);
  const boost::shared_ptr<void> packing = PackScope(p_gl);
  std::vector<float> values(_state->Pixels() * _state->format.channel_count);
  if (!values.empty())
    p_gl->ReadPixels(0, 0, _state->size.width, _state->size.height, _state->format.channels, RGL_FLOAT, values.data());
  return values;
}

std::vector<float> RenderTexture::ReadDepths(Utility::Scoped<Rgl>& p_gl) const {
  const boost::shared_ptr<void> bound = BindForRead(p_gl);
  const boost::shared_ptr<void> packing = PackScope(p_gl);
  std::vector<float> values(_state->Pixels());
  if (!values.empty())
    p_gl->ReadPixels(0, 0, _state->size.width, _state->size.height, RGL_DEPTH_COMPONENT, RGL_FLOAT, values.data());
  return values;
}

} // namespace Vek::Chart::Library
