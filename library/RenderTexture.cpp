#include "library/RenderTexture.h"

#include "library/private/gl/TextureSettings.h"
#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"
#include "platform/ogl/PixelStore.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace Vek::Chart::Library {

namespace {

#define VEK_SCOPE "(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &) const"
namespace Signature {
constexpr const char* Constructor =
    "__cdecl Vek::Chart::Library::RenderTexture::RenderTexture(class Vek::Chart::Types::Size,enum "
    "Vek::Chart::Library::RenderTexture::ColorFormat,enum Vek::Chart::Library::RenderTexture::Space,int)";
constexpr const char* ToImage = "class QImage __cdecl Vek::Chart::Library::RenderTexture::ToImage" VEK_SCOPE;
constexpr const char* ReadColors = "class std::vector<float,class std::allocator<float> > __cdecl "
                                   "Vek::Chart::Library::RenderTexture::ReadColors" VEK_SCOPE;
constexpr const char* ReadDepths = "class std::vector<float,class std::allocator<float> > __cdecl "
                                   "Vek::Chart::Library::RenderTexture::ReadDepths" VEK_SCOPE;
} // namespace Signature
#undef VEK_SCOPE

using Ogl::GlEnum;
using FrameBuffer = boost::shared_ptr<Ogl::FrameBufferObject>;
using RenderBuffer = boost::shared_ptr<Ogl::RenderBuffer>;
using Texture = boost::shared_ptr<Ogl::Texture>;
using Guard = boost::shared_ptr<void>;

/// Storage of a colour format, and the channels that are read back as floats.
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

bool CheckComplete(GlEnum p_status, Types::Size p_size, int p_samples) {
  return VEK_ENSURE_TEXT(p_status == RGL_FRAMEBUFFER_COMPLETE,
                         "status == RGL_FRAMEBUFFER_COMPLETE && \"" + StatusName(p_status) + ", " +
                             std::to_string(p_size.width) + " x " + std::to_string(p_size.height) + ", " +
                             std::to_string(p_samples) + " samples\"",
                         Signature::Constructor);
}

int Integer(const Rgl& p_gl, GlEnum p_name) {
  int value = 0;
  p_gl.GetIntegerv(p_name, &value);
  return value;
}

/// Restores the texture of the active unit. The attribute stack would restore the parameters of bound textures as well,
/// which may be those of this target.
Guard TextureScope(const Rgl& p_gl) {
  const auto before = static_cast<unsigned int>(Integer(p_gl, RGL_TEXTURE_BINDING_2D));
  return Ogl::MakeGuard([gl = p_gl.Functions(), before] { gl->BindTexture(RGL_TEXTURE_2D, before); });
}

void SetParameter(const Rgl& p_gl, GlEnum p_name, GlEnum p_value) {
  p_gl.TexParameteri(RGL_TEXTURE_2D, p_name, static_cast<int>(p_value));
}

/// A new texture, bound and without an image; empty where GL makes none.
Texture MakeTexture(const Rgl& p_gl, GlEnum p_filter) {
  Texture texture = p_gl.GenTexture();
  if (!texture)
    return texture;
  p_gl.Bind(texture, Rgl::Sampler2D);
  SetParameter(p_gl, RGL_TEXTURE_MIN_FILTER, p_filter);
  SetParameter(p_gl, RGL_TEXTURE_MAG_FILTER, p_filter);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_S, RGL_CLAMP_TO_EDGE);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_T, RGL_CLAMP_TO_EDGE);
  SetParameter(p_gl, RGL_TEXTURE_MAX_LEVEL, 0);
  return texture;
}

/// An image for the bound texture. Reports where GL makes none, and takes GL's error for it.
bool Allocate(const Rgl& p_gl, Types::Size p_size, GlEnum p_internal, GlEnum p_format, GlEnum p_type) {
  p_gl.TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(p_internal), p_size.width, p_size.height, 0, p_format, p_type,
                  nullptr);
  int width = 0;
  p_gl.GetTexLevelParameteriv(RGL_TEXTURE_2D, 0, RGL_TEXTURE_WIDTH, &width);
  if (width == p_size.width)
    return true;
  p_gl.CheckError(Signature::Constructor);
  return VEK_ENSURE(width == p_size.width, Signature::Constructor);
}

/// Multisampled storage, attached to the bound frame buffer; empty where GL makes none.
RenderBuffer MakeSamples(const Rgl& p_gl, Types::Size p_size, int p_samples, GlEnum p_internal, GlEnum p_attachment) {
  const auto before = static_cast<unsigned int>(Integer(p_gl, RGL_RENDERBUFFER_BINDING));
  RenderBuffer buffer = p_gl.GenRenderBuffer();
  if (!buffer)
    return buffer;
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, buffer->Name());
  p_gl.RenderbufferStorageMultisample(RGL_RENDERBUFFER, p_samples, p_internal, p_size.width, p_size.height);
  p_gl.FramebufferRenderbuffer(RGL_FRAMEBUFFER, p_attachment, RGL_RENDERBUFFER, buffer->Name());
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, before);
  return buffer;
}

/// The GL objects of a target. An object that GL did not make is empty.
struct Objects {
  Texture color;
  Texture depth;
  FrameBuffer frame;         ///< without images GL refuses to draw to it
  RenderBuffer colorSamples; ///< the last three only with samples
  RenderBuffer depthSamples;
  FrameBuffer sampledFrame;
  bool complete = false;
  bool refused = false; ///< empty, or too large for the device: not to be tried again
};

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
  const int samples;

  Objects objects;
  int drawing = 0;         ///< guards of BindForDraw that live
  bool unresolved = false; ///< drawn to since the samples were resolved
  bool mipped = false;     ///< the colour texture has levels
  bool stale = false;      ///< drawn to since the levels were made

  GlEnum InternalFormat() const { return space == Srgb ? format.internalSrgb : format.internal; }

  void Make(const Rgl& p_gl);
  bool MakeTextures(const Rgl& p_gl, Objects& p_objects) const;
  void MakeSampled(const Rgl& p_gl, Objects& p_objects) const;
  void Resolve(const Rgl& p_gl);
  void MakeMips(const Rgl& p_gl);

  /// Makes the objects if need be, and brings the textures up to date.
  void Prepare(const Rgl& p_gl) {
    Make(p_gl);
    Resolve(p_gl);
  }
  const Texture& Color(const Rgl& p_gl) {
    Prepare(p_gl);
    if (mipped && stale)
      MakeMips(p_gl);
    return objects.color;
  }
  const Texture& Depth(const Rgl& p_gl) {
    Prepare(p_gl);
    return objects.depth;
  }
  /// Empty where there is no frame buffer to bind.
  Guard BindFrame(const Rgl& p_gl) {
    Prepare(p_gl);
    return objects.frame ? p_gl.BindScope(objects.frame) : nullptr;
  }

  template <class Value>
  bool Read(const Rgl& p_gl, GlEnum p_format, GlEnum p_type, Value* p_to, const char* p_signature);
  std::vector<float> ReadFloats(const Rgl& p_gl, GlEnum p_format, std::size_t p_count, const char* p_signature);
};

void RenderTexture::State::Make(const Rgl& p_gl) {
  if (objects.complete || objects.refused)
    return;
  Objects made;
  const int limit = p_gl.GetMaxTextureSize();
  const bool fits = size.width > 0 && size.height > 0 && std::max(size.width, size.height) <= limit;
  const bool textures = fits && MakeTextures(p_gl, made);
  made.frame = p_gl.GenFrameBufferObject();
  if (made.frame && textures) {
    const Guard bound = p_gl.BindScope(made.frame);
    p_gl.FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_COLOR_ATTACHMENT0, RGL_TEXTURE_2D, made.color->Name(), 0);
    p_gl.FramebufferTexture2D(RGL_FRAMEBUFFER, RGL_DEPTH_STENCIL_ATTACHMENT, RGL_TEXTURE_2D, made.depth->Name(), 0);
    made.complete = CheckComplete(p_gl.CheckFramebufferStatus(RGL_FRAMEBUFFER), size, 0);
  } else if (made.frame && !fits) {
    CheckComplete(RGL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, size, 0);
    made.refused = limit > 0;
  }
  if (made.complete)
    MakeSampled(p_gl, made);
  objects = std::move(made);
}

bool RenderTexture::State::MakeTextures(const Rgl& p_gl, Objects& p_objects) const {
  const Guard texture = TextureScope(p_gl);
  const Guard unpacking = Ogl::UnpackScope(p_gl); // a bound pixel buffer would be read
  p_objects.color = MakeTexture(p_gl, RGL_LINEAR);
  if (!p_objects.color || !Allocate(p_gl, size, InternalFormat(), format.channels, format.type))
    return false;
  p_objects.depth = MakeTexture(p_gl, RGL_NEAREST);
  return p_objects.depth && Allocate(p_gl, size, RGL_DEPTH24_STENCIL8, RGL_DEPTH_STENCIL, RGL_UNSIGNED_INT_24_8);
}

void RenderTexture::State::MakeSampled(const Rgl& p_gl, Objects& p_objects) const {
  if (samples <= 0 || !p_gl.Features().Supported(Ogl::DeviceFeatures::FeatureMultisampleFrameBuffer))
    return;
  const int count = std::min(samples, Integer(p_gl, RGL_MAX_SAMPLES));
  const FrameBuffer frame = count > 0 ? p_gl.GenFrameBufferObject() : nullptr;
  if (!frame)
    return;
  const Guard bound = p_gl.BindScope(frame);
  const RenderBuffer color = MakeSamples(p_gl, size, count, InternalFormat(), RGL_COLOR_ATTACHMENT0);
  const RenderBuffer depth = MakeSamples(p_gl, size, count, RGL_DEPTH24_STENCIL8, RGL_DEPTH_STENCIL_ATTACHMENT);
  if (!color || !depth || !CheckComplete(p_gl.CheckFramebufferStatus(RGL_FRAMEBUFFER), size, count))
    return;
  p_objects.colorSamples = color;
  p_objects.depthSamples = depth;
  p_objects.sampledFrame = frame;
}

void RenderTexture::State::Resolve(const Rgl& p_gl) {
  if (!objects.sampledFrame || !unresolved)
    return;
  const Guard bound = p_gl.BindScope(objects.sampledFrame);
  const Guard enables = p_gl.PushAttribScope(RGL_ENABLE_BIT);
  p_gl.Disable(RGL_SCISSOR_TEST); // it would clip the copy
  if (space == Srgb && p_gl.Features().Supported(Ogl::DeviceFeatures::FeatureSrgbFrameBuffer))
    p_gl.Enable(RGL_FRAMEBUFFER_SRGB); // samples are averaged as linear light
  p_gl.BindFramebuffer(RGL_DRAW_FRAMEBUFFER, objects.frame->Name());
  p_gl.BlitFramebuffer(0, 0, size.width, size.height, 0, 0, size.width, size.height,
                       RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT, RGL_NEAREST);
  unresolved = drawing > 0;
}

void RenderTexture::State::MakeMips(const Rgl& p_gl) {
  const Guard texture = TextureScope(p_gl);
  p_gl.Bind(objects.color, Rgl::Sampler2D);
  p_gl.TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MAX_LEVEL, MipInfo(size).Levels() - 1);
  SetParameter(p_gl, RGL_TEXTURE_MIN_FILTER, RGL_LINEAR_MIPMAP_LINEAR);
  p_gl.GenerateMipmap(RGL_TEXTURE_2D);
  mipped = true;
  stale = drawing > 0;
}

/// Reads all pixels. Takes errors that are pending before, so that those found after belong to the read.
template <class Value>
bool RenderTexture::State::Read(const Rgl& p_gl, GlEnum p_format, GlEnum p_type, Value* p_to, const char* p_signature) {
  p_gl.CheckError(p_signature);
  {
    const Guard packing = Ogl::PackScope(p_gl);
    p_gl.ReadPixels(0, 0, size.width, size.height, p_format, p_type, p_to);
  }
  return p_gl.CheckError(p_signature);
}

std::vector<float> RenderTexture::State::ReadFloats(const Rgl& p_gl, GlEnum p_format, std::size_t p_count,
                                                    const char* p_signature) {
  const Guard bound = BindFrame(p_gl);
  if (!objects.complete)
    return {};
  std::vector<float> values(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * p_count);
  if (!Read(p_gl, p_format, RGL_FLOAT, values.data(), p_signature))
    values.clear();
  return values;
}

RenderTexture::RenderTexture(Types::Size p_size, ColorFormat p_format, Space p_space, int p_samples)
    : _state(new State(p_size, p_format, p_space, p_samples)) {}

Types::Size RenderTexture::Size() const {
  return _state->size;
}

bool RenderTexture::Complete() const {
  return _state->objects.complete;
}

boost::shared_ptr<void> RenderTexture::BindForRead(Utility::Scoped<Rgl>& p_gl) const {
  Guard bound = _state->BindFrame(*p_gl);
  _state->stale = true; // the caller may draw
  return bound;
}

boost::shared_ptr<void> RenderTexture::BindForDraw(Utility::Scoped<Rgl>& p_gl) const {
  /// Released in reverse: the frame buffer first, then the viewport.
  struct Bound {
    explicit Bound(const boost::shared_ptr<State>& p_state)
        : state(p_state) {
      ++state->drawing;
    }
    ~Bound() { --state->drawing; }
    boost::shared_ptr<State> state;
    Guard viewport;
    Guard frame;
  };
  State& state = *_state;
  state.Make(*p_gl);
  if (!state.objects.frame)
    return {};
  const boost::shared_ptr<Bound> bound = boost::make_shared<Bound>(_state);
  state.unresolved = state.stale = true;
  bound->viewport = p_gl->PushAttribScope(RGL_VIEWPORT_BIT);
  bound->frame = p_gl->BindScope(state.objects.sampledFrame ? state.objects.sampledFrame : state.objects.frame);
  p_gl->Viewport(Types::Viewport<0>(0, 0, static_cast<float>(state.size.width), static_cast<float>(state.size.height)));
  return bound;
}

boost::shared_ptr<Ogl::Texture> RenderTexture::ColorTexture(Utility::Scoped<Rgl>& p_gl) const {
  return _state->Color(*p_gl);
}

boost::shared_ptr<Ogl::Texture> RenderTexture::DepthTexture(Utility::Scoped<Rgl>& p_gl) const {
  return _state->Depth(*p_gl);
}

namespace {

void BindTexture(const Rgl& p_gl, unsigned int p_unit, const Texture& p_texture) {
  p_gl.ActiveTexture(p_unit);
  p_gl.BindTexture(RGL_TEXTURE_2D, p_texture ? p_texture->Name() : 0);
  Private::Enable2D(p_gl);
}

} // namespace

void RenderTexture::BindColor(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  BindTexture(*p_gl, p_unit, _state->Color(*p_gl));
}

void RenderTexture::BindDepth(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  BindTexture(*p_gl, p_unit, _state->Depth(*p_gl));
}

void RenderTexture::GenerateMips(Utility::Scoped<Rgl>& p_gl) const {
  _state->Prepare(*p_gl);
  if (_state->objects.complete)
    _state->MakeMips(*p_gl);
}

QImage RenderTexture::ToImage(Utility::Scoped<Rgl>& p_gl) const {
  const Guard bound = _state->BindFrame(*p_gl);
  if (!_state->objects.complete)
    return {};
  QImage image(_state->size.width, _state->size.height, QImage::Format_RGBA8888);
  if (!VEK_ENSURE(!image.isNull(), Signature::ToImage) || // no memory
      !_state->Read(*p_gl, RGL_RGBA, RGL_UNSIGNED_BYTE, image.bits(), Signature::ToImage))
    return {};
  return image.mirrored().convertToFormat(QImage::Format_ARGB32);
}

std::vector<float> RenderTexture::ReadColors(Utility::Scoped<Rgl>& p_gl) const {
  return _state->ReadFloats(*p_gl, _state->format.channels, _state->format.channelCount, Signature::ReadColors);
}

std::vector<float> RenderTexture::ReadDepths(Utility::Scoped<Rgl>& p_gl) const {
  return _state->ReadFloats(*p_gl, RGL_DEPTH_COMPONENT, 1, Signature::ReadDepths);
}

} // namespace Vek::Chart::Library
