#include "scene/private/FrameDepths.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"
#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr const char* Signature = "bool Vek::Chart::Scene::Private::FrameDepths::Copy(class "
                                  "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int)";

/// A rectangle of the frame buffer.
struct Area {
  int x, y, width, height;
};

/// Reads from the draw frame buffer until the guard is released.
boost::shared_ptr<void> ReadFromDrawn(const Rgl& p_gl) {
  int drawn = 0, read = 0;
  p_gl.GetIntegerv(RGL_DRAW_FRAMEBUFFER_BINDING, &drawn);
  p_gl.GetIntegerv(RGL_READ_FRAMEBUFFER_BINDING, &read);
  p_gl.BindFramebuffer(RGL_READ_FRAMEBUFFER, static_cast<unsigned int>(drawn));
  return Ogl::MakeGuard(
      [gl = p_gl.Functions(), read] { gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, static_cast<unsigned int>(read)); });
}

/// Resolves the samples of the current frame buffer into one of its own, which is bound until the guard is released.
/// Empty where GL makes none. GL refuses the copy of depths with another format than 24 bits beside 8 of a stencil.
boost::shared_ptr<void> ReadFromResolved(const Rgl& p_gl, const Area& p_area) {
  const boost::shared_ptr<Ogl::FrameBufferObject> target = p_gl.GenFrameBufferObject();
  const boost::shared_ptr<Ogl::RenderBuffer> depths = p_gl.GenRenderBuffer();
  if (!target || !depths || target->Name() == 0 || depths->Name() == 0)
    return {};
  int drawn = 0, before = 0;
  p_gl.GetIntegerv(RGL_DRAW_FRAMEBUFFER_BINDING, &drawn);
  p_gl.GetIntegerv(RGL_RENDERBUFFER_BINDING, &before);
  const boost::shared_ptr<void> bound = p_gl.BindScope(target);
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, depths->Name());
  const int right = p_area.x + p_area.width, top = p_area.y + p_area.height;
  p_gl.RenderbufferStorageMultisample(RGL_RENDERBUFFER, 0, RGL_DEPTH24_STENCIL8, right, top);
  p_gl.FramebufferRenderbuffer(RGL_FRAMEBUFFER, RGL_DEPTH_STENCIL_ATTACHMENT, RGL_RENDERBUFFER, depths->Name());
  p_gl.BindRenderbuffer(RGL_RENDERBUFFER, static_cast<unsigned int>(before));
  p_gl.DrawBuffer(RGL_NONE);
  p_gl.ReadBuffer(RGL_NONE); // the frame buffer has no colours
  p_gl.BindFramebuffer(RGL_READ_FRAMEBUFFER, static_cast<unsigned int>(drawn));
  p_gl.BlitFramebuffer(p_area.x, p_area.y, right, top, p_area.x, p_area.y, right, top, RGL_DEPTH_BUFFER_BIT,
                       RGL_NEAREST);
  p_gl.BindFramebuffer(RGL_READ_FRAMEBUFFER, target->Name());
  return Ogl::MakeGuard([bound, target, depths] {});
}

} // namespace

bool FrameDepths::Copy(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) {
  if (_failed)
    return false;
  const Rgl& gl = *p_gl;
  gl.CheckError(std::string("before ") + Signature);
  std::array<int, 4> viewport{};
  gl.GetIntegerv(RGL_VIEWPORT, viewport.data());
  const Area area{viewport[0], viewport[1], std::max(viewport[2], 1), std::max(viewport[3], 1)};
  std::vector<float> depths(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height), 1.0F);
  {
    int samples = 0;
    gl.GetIntegerv(RGL_SAMPLE_BUFFERS, &samples);
    const boost::shared_ptr<void> read = samples > 0 ? ReadFromResolved(gl, area) : ReadFromDrawn(gl);
    const boost::shared_ptr<void> packing = Ogl::PackScope(gl);
    if (read)
      gl.ReadPixels(area.x, area.y, area.width, area.height, RGL_DEPTH_COMPONENT, RGL_FLOAT, depths.data());
    _failed = !read;
  }
  gl.ActiveTexture(p_unit);
  if (!_texture)
    _texture = gl.GenTexture();
  if (_failed || !_texture || !gl.CheckError(Signature)) {
    _failed = true;
    return false;
  }
  gl.Bind(_texture, Rgl::Sampler2D);
  for (const Ogl::GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
    gl.TexParameteri(RGL_TEXTURE_2D, filter, static_cast<int>(RGL_NEAREST));
  for (const Ogl::GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T})
    gl.TexParameteri(RGL_TEXTURE_2D, wrap, static_cast<int>(RGL_CLAMP_TO_EDGE));
  {
    const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(gl);
    gl.TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(RGL_LUMINANCE32F_ARB), area.width, area.height, 0, RGL_LUMINANCE,
                  RGL_FLOAT, depths.data());
  }
  _failed = !gl.CheckError(Signature);
  return !_failed;
}

} // namespace Vek::Chart::Scene::Private
