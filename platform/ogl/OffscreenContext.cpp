#include "platform/ogl/OffscreenContext.h"

#include "platform/ogl/Guard.h"
#include "platform/ogl/private/EglContext.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Ogl {
namespace {

std::string SizeText(Types::Size p_size) {
  return std::to_string(p_size.width) + " x " + std::to_string(p_size.height);
}

void CheckSize(const Rgl& p_gl, Types::Size p_size) {
  int limit = 0;
  p_gl.GetIntegerv(RGL_MAX_RENDERBUFFER_SIZE, &limit);
  if (p_size.width < 1 || p_size.height < 1 || p_size.width > limit || p_size.height > limit)
    throw std::runtime_error("No off-screen frame buffer of " + SizeText(p_size) + " pixels: each side must be 1 to " +
                             std::to_string(limit));
}

/// A frame-buffer object with the storage behind it.
struct Target {
  boost::shared_ptr<RenderBuffer> color;
  boost::shared_ptr<RenderBuffer> depthStencil;
  boost::shared_ptr<FrameBufferObject> frameBuffer;
};

boost::shared_ptr<RenderBuffer> MakeStorage(const Rgl& p_gl, GlEnum p_format, Types::Size p_size, int p_samples) {
  boost::shared_ptr<RenderBuffer> storage = p_gl.GenRenderBuffer();
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, storage->Name());
  p_gl.RenderbufferStorageMultisample(RGL_RENDERBUFFER, p_samples, p_format, p_size.width, p_size.height);
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, 0);
  return storage;
}

/// Binds the new frame buffer. Without `p_depth` it has colours only.
Target MakeTarget(const Rgl& p_gl, Types::Size p_size, int p_samples, bool p_depth) {
  Target target;
  target.color = MakeStorage(p_gl, RGL_RGBA8, p_size, p_samples);
  target.frameBuffer = p_gl.GenFrameBufferObject();
  p_gl.BindFramebuffer(RGL_FRAMEBUFFER, target.frameBuffer->Name());
  p_gl.FramebufferRenderbuffer(RGL_FRAMEBUFFER, RGL_COLOR_ATTACHMENT0, RGL_RENDERBUFFER, target.color->Name());
  if (p_depth) {
    target.depthStencil = MakeStorage(p_gl, RGL_DEPTH24_STENCIL8, p_size, p_samples);
    p_gl.FramebufferRenderbuffer(RGL_FRAMEBUFFER, RGL_DEPTH_STENCIL_ATTACHMENT, RGL_RENDERBUFFER,
                                 target.depthStencil->Name());
  }
  const GlEnum status = p_gl.CheckFramebufferStatus(RGL_FRAMEBUFFER);
  const GlEnum error = p_gl.GetError();
  if (status != RGL_FRAMEBUFFER_COMPLETE || error != RGL_NO_ERROR)
    throw std::runtime_error("No off-screen frame buffer of " + SizeText(p_size) + " pixels with " +
                             std::to_string(p_samples) + " samples: status " + std::to_string(status) + ", GL error " +
                             std::to_string(error) + "; a smaller size may work");
  return target;
}

} // namespace

struct VEK_HIDDEN OffscreenContext::State {
  explicit State(Types::Size p_size)
      : size(p_size)
      , handle(boost::make_shared<Rgl>(
            boost::shared_ptr<const GlFunctions>(&NativeGl(), [](const GlFunctions*) {}), [this] { egl.MakeCurrent(); },
            [this] { egl.Restore(); })) {}
  ~State() {
    // Whoever still holds the handle finds no context behind it.
    try {
      const boost::shared_ptr<void> current = egl.CurrentScope();
      multisampled = {};
      plain = {};
    } catch (const std::runtime_error&) {
      // EGL refuses the context: its objects go with it, and there is nothing to call.
    }
  }

  void MakeTargets(const Rgl& p_gl, int p_samples) {
    int mostSamples = 0;
    p_gl.GetIntegerv(RGL_MAX_SAMPLES, &mostSamples);
    const int samples = std::clamp(p_samples, 0, std::max(0, mostSamples));
    plain = MakeTarget(p_gl, size, 0, samples == 0);
    if (samples != 0)
      multisampled = MakeTarget(p_gl, size, samples, true);
  }
  /// Where everything is drawn.
  unsigned int FrameBufferName() const { return (multisampled.frameBuffer ? multisampled : plain).frameBuffer->Name(); }

  Types::Size size;
  EglContext egl;
  Utility::Unscoped<Rgl> handle;
  Target multisampled; // empty without multisampling
  Target plain;        // where samples are resolved to, if there are any
};

OffscreenContext::OffscreenContext(Types::Size p_size, int p_samples)
    : _state(std::make_unique<State>(p_size)) {
  const Utility::Scoped<Rgl> gl(_state->handle);
  CheckSize(*gl, p_size);
  if (!gl->Features().Supported(DeviceFeatures::FeatureFrameBufferObject))
    throw std::runtime_error("No off-screen frame buffer: " + Renderer() + " has no frame-buffer objects");
  _state->MakeTargets(*gl, p_samples);
  BindFrameBuffer();
}

OffscreenContext::~OffscreenContext() = default;

const Utility::Unscoped<Rgl>& OffscreenContext::Handle() const {
  return _state->handle;
}

Types::Size OffscreenContext::Size() const {
  return _state->size;
}

std::string OffscreenContext::Renderer() const {
  const Utility::Scoped<Rgl> gl(_state->handle);
  const unsigned char* const name = gl->GetString(RGL_RENDERER);
  return name == nullptr ? std::string() : reinterpret_cast<const char*>(name);
}

void OffscreenContext::BindFrameBuffer() {
  const Utility::Scoped<Rgl> gl(_state->handle);
  gl->BindFramebuffer(RGL_FRAMEBUFFER, _state->FrameBufferName());
  gl->Viewport(0, 0, _state->size.width, _state->size.height);
}

namespace {

/// Packs pixels tightly into client memory until the guard is released.
boost::shared_ptr<void> PlainPixelStore(const Rgl& p_gl) {
  int packBuffer = 0;
  p_gl.GetIntegerv(RGL_PIXEL_PACK_BUFFER_BINDING, &packBuffer);
  p_gl.PushClientAttrib(RGL_CLIENT_PIXEL_STORE_BIT);
  p_gl.BindBuffer(RGL_PIXEL_PACK_BUFFER, 0);
  p_gl.PixelStorei(RGL_PACK_ALIGNMENT, 4);
  for (const GlEnum parameter : {RGL_PACK_ROW_LENGTH, RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS, RGL_PACK_SWAP_BYTES})
    p_gl.PixelStorei(parameter, 0);
  return MakeGuard([gl = p_gl.Functions(), packBuffer] {
    gl->PopClientAttrib();
    gl->BindBuffer(RGL_PIXEL_PACK_BUFFER, static_cast<unsigned int>(packBuffer));
  });
}

/// The scissor test of the host would cut a copy between frame buffers.
void ResolveSamples(const Rgl& p_gl, const Target& p_from, const Target& p_to, Types::Size p_size) {
  const boost::shared_ptr<void> state = p_gl.PushAttribScope(RGL_ENABLE_BIT);
  p_gl.Disable(RGL_SCISSOR_TEST);
  p_gl.BindFramebuffer(RGL_READ_FRAMEBUFFER, p_from.frameBuffer->Name());
  p_gl.BindFramebuffer(RGL_DRAW_FRAMEBUFFER, p_to.frameBuffer->Name());
  p_gl.BlitFramebuffer(0, 0, p_size.width, p_size.height, 0, 0, p_size.width, p_size.height, RGL_COLOR_BUFFER_BIT,
                       RGL_NEAREST);
}

} // namespace

QImage OffscreenContext::Image() {
  const Utility::Scoped<Rgl> gl(_state->handle);
  const boost::shared_ptr<void> bindings = gl->BindScope(_state->plain.frameBuffer);
  if (_state->multisampled.frameBuffer) {
    ResolveSamples(*gl, _state->multisampled, _state->plain, _state->size);
    gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, _state->plain.frameBuffer->Name());
  }
  const boost::shared_ptr<void> pixelStore = PlainPixelStore(*gl);
  QImage image(_state->size.width, _state->size.height, QImage::Format_ARGB32);
  if (image.isNull())
    throw std::runtime_error("No memory for an image of " + SizeText(_state->size) + " pixels");
  gl->ReadPixels(0, 0, image.width(), image.height(), RGL_BGRA, RGL_UNSIGNED_INT_8_8_8_8_REV, image.bits());
  return image.mirrored();
}

} // namespace Vek::Chart::Ogl
