#include "platform/ogl/OffscreenContext.h"

#include "platform/debug/Check.h"
#include "platform/ogl/GlDefaults.h"
#include "platform/ogl/PixelStore.h"
#include "platform/ogl/private/EglContext.h"
#include "platform/ogl/private/QuietReport.h"

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
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

/// An object without a name must not be bound: name 0 is the frame buffer of a window.
template <class Object>
boost::shared_ptr<Object> Required(boost::shared_ptr<Object> p_object, Types::Size p_size) {
  if (!p_object)
    throw std::runtime_error("No off-screen frame buffer of " + SizeText(p_size) +
                             " pixels: GL makes no object for it");
  return p_object;
}

boost::shared_ptr<RenderBuffer> MakeStorage(const Rgl& p_gl, GlEnum p_format, Types::Size p_size, int p_samples) {
  boost::shared_ptr<RenderBuffer> storage = Required(p_gl.GenRenderBuffer(), p_size);
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, storage->Name());
  p_gl.RenderbufferStorageMultisample(RGL_RENDERBUFFER, p_samples, p_format, p_size.width, p_size.height);
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, 0);
  return storage;
}

/// Makes a frame buffer and binds it. Without `p_depth` it has colours only.
Target MakeTarget(const Rgl& p_gl, Types::Size p_size, int p_samples, bool p_depth) {
  Target target;
  target.color = MakeStorage(p_gl, RGL_RGBA8, p_size, p_samples);
  target.frameBuffer = Required(p_gl.GenFrameBufferObject(), p_size);
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

constexpr bool IsDelete(std::string_view p_function) {
  return p_function.substr(0, 6) == "Delete";
}

/// The functions after the end of the context. They do nothing; late deletions are reported.
GlFunctions MakeEndedGl() {
  GlFunctions table;
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  table.p_name = [] p_parameters -> p_result {                                                                         \
    if constexpr (IsDelete(#p_name))                                                                                   \
      ReportQuietly([] { vekdebug::warn("OffscreenContext: gl" #p_name " after the end of the context"); });           \
    return GlDefaults().p_name p_arguments;                                                                            \
  };
#include "platform/ogl/GlFunctionList.h"
  table.DeleteQuadric = NativeGl().DeleteQuadric; // quadrics belong to no context
  return table;
}

/// A handle whose scopes make the context current while it exists.
Utility::Unscoped<Rgl> MakeHandle(const boost::weak_ptr<EglContext>& p_context) {
  const auto enter = [p_context] {
    if (const boost::shared_ptr<EglContext> context = p_context.lock())
      context->MakeCurrent();
    else
      vekdebug::warn("OffscreenContext: a scope was opened after the end of the context; its calls do nothing");
  };
  const auto leave = [p_context] {
    if (const boost::shared_ptr<EglContext> context = p_context.lock())
      context->Restore();
  };
  return Utility::Unscoped<Rgl>(boost::make_shared<Rgl>(boost::make_shared<GlFunctions>(NativeGl()), enter, leave));
}

} // namespace

struct VEK_HIDDEN OffscreenContext::State {
  explicit State(Types::Size p_size)
      : size(p_size) {}
  ~State() {
    try {
      const boost::shared_ptr<void> current = egl->CurrentScope();
      handle.Object()->FreeValues();
      multisampled = {};
      plain = {};
    } catch (...) {
      // The objects end with the context.
      ReportQuietly([] { vekdebug::warn("OffscreenContext: the context could not be made current at its end"); });
    }
    handle.Object()->EndContext(MakeEndedGl()); // for handles and objects that are still held
  }

  void MakeTargets(const Rgl& p_gl, int p_samples) {
    int mostSamples = 0;
    p_gl.GetIntegerv(RGL_MAX_SAMPLES, &mostSamples);
    const int samples = std::clamp(p_samples, 0, std::max(0, mostSamples));
    plain = MakeTarget(p_gl, size, 0, samples == 0);
    if (samples != 0)
      multisampled = MakeTarget(p_gl, size, samples, true);
  }
  /// The frame buffer that is drawn into.
  unsigned int FrameBufferName() const { return (multisampled.frameBuffer ? multisampled : plain).frameBuffer->Name(); }

  Types::Size size;
  boost::shared_ptr<EglContext> egl = boost::make_shared<EglContext>();
  Utility::Unscoped<Rgl> handle = MakeHandle(egl);
  Target multisampled; // empty without multisampling
  Target plain;        // samples are resolved into it
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

/// Copies all pixels; the scissor test of the host would cut the copy.
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
  gl->CheckError("before OffscreenContext::Image"); // not to be taken for errors of the reading
  const boost::shared_ptr<void> bindings = gl->BindScope(_state->plain.frameBuffer);
  if (_state->multisampled.frameBuffer) {
    ResolveSamples(*gl, _state->multisampled, _state->plain, _state->size);
    gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, _state->plain.frameBuffer->Name());
  }
  const boost::shared_ptr<void> pixelStore = PackScope(*gl);
  QImage image(_state->size.width, _state->size.height, QImage::Format_ARGB32);
  if (image.isNull())
    throw std::runtime_error("No memory for an image of " + SizeText(_state->size) + " pixels");
  image.fill(Qt::transparent); // what remains when the reading fails
  gl->ReadPixels(0, 0, image.width(), image.height(), RGL_BGRA, RGL_UNSIGNED_INT_8_8_8_8_REV, image.bits());
  gl->CheckError("OffscreenContext::Image");
  return image.mirrored();
}

} // namespace Vek::Chart::Ogl
