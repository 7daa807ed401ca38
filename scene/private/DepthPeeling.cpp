#include "scene/private/DepthPeeling.h"

#include "scene/private/FlatState.h"
#include "scene/private/VertexStream.h"

#include "platform/ogl/Guard.h"

namespace Vek::Chart::Scene::Private {

namespace {

using Library::RenderTexture;

/// Clears the current frame buffer to transparent black and the far plane.
void Clear(const Rgl& p_gl) {
  p_gl.ColorMask(true, true, true, true);
  p_gl.ClearColor(0, 0, 0, 0);
  p_gl.ClearDepth(1);
  p_gl.Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
}

/// Copies the depths of another target to the current frame buffer.
void CopyDepths(Utility::Scoped<Rgl>& p_gl, const RenderTexture& p_from, Types::Size p_size) {
  int drawn = 0;
  p_gl->GetIntegerv(RGL_DRAW_FRAMEBUFFER_BINDING, &drawn);
  const boost::shared_ptr<void> read = p_from.BindForRead(p_gl);
  p_gl->BindFramebuffer(RGL_DRAW_FRAMEBUFFER, static_cast<unsigned int>(drawn));
  p_gl->BlitFramebuffer(0, 0, p_size.width, p_size.height, 0, 0, p_size.width, p_size.height, RGL_DEPTH_BUFFER_BIT,
                        RGL_NEAREST);
}

/// Whether a drawing passes the depth test anywhere; true where GL makes no query.
bool HasFragments(const Rgl& p_gl, const std::function<void()>& p_draw) {
  unsigned int query = 0, count = 1;
  p_gl.GenQueries(1, &query);
  if (query == 0) {
    p_draw();
    return true;
  }
  {
    const auto counting = Ogl::MakeGuard([gl = p_gl.Functions()] { gl->EndQuery(RGL_SAMPLES_PASSED); });
    p_gl.BeginQuery(RGL_SAMPLES_PASSED, query);
    p_draw();
  }
  p_gl.GetQueryObjectuiv(query, RGL_QUERY_RESULT, &count);
  p_gl.DeleteQueries(1, &query);
  return count != 0;
}

} // namespace

void CopyDepths(const Rgl& p_gl, unsigned int p_from, const Types::Viewport<0>& p_viewport) {
  int read = 0;
  p_gl.GetIntegerv(RGL_READ_FRAMEBUFFER_BINDING, &read);
  p_gl.BindFramebuffer(RGL_READ_FRAMEBUFFER, p_from);
  const int left = static_cast<int>(p_viewport.x), bottom = static_cast<int>(p_viewport.y);
  const int width = static_cast<int>(p_viewport.width), height = static_cast<int>(p_viewport.height);
  p_gl.BlitFramebuffer(left, bottom, left + width, bottom + height, 0, 0, width, height, RGL_DEPTH_BUFFER_BIT,
                       RGL_NEAREST);
  p_gl.BindFramebuffer(RGL_READ_FRAMEBUFFER, static_cast<unsigned int>(read));
}

bool DepthPeeling::Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                        const std::function<void()>& p_drawOpaque, const std::function<void(const PeelPass*)>& p_draw) {
  const Types::Size size(static_cast<int>(p_viewport.width), static_cast<int>(p_viewport.height));
  if (!(size == _size))
    _targets.clear();
  _size = size;
  const auto state =
      p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_TEXTURE_BIT);
  p_gl->Disable(RGL_SCISSOR_TEST); // the host's, in pixels of its frame buffer
  p_gl->Disable(RGL_DITHER);
  p_gl->Disable(RGL_BLEND);
  if (_targets.empty())
    _targets.emplace_back(size);
  {
    const auto bound = _targets[0].BindForDraw(p_gl);
    if (!bound || !_targets[0].Complete())
      return false;
    Clear(*p_gl);
    p_gl->ColorMask(false, false, false, false);
    p_drawOpaque();
    p_gl->ColorMask(true, true, true, true);
  }
  std::size_t count = 0;
  while (count < MostLayers && DrawLayer(p_gl, count, p_draw))
    ++count;
  if (!_targets.back().Complete() && count == 0)
    return false;
  Blend(p_gl, p_viewport, count);
  return true;
}

/// False for an empty layer.
bool DepthPeeling::DrawLayer(Utility::Scoped<Rgl>& p_gl, std::size_t p_layer,
                             const std::function<void(const PeelPass*)>& p_draw) {
  if (_targets.size() < p_layer + 2)
    _targets.emplace_back(_size);
  const auto bound = _targets[p_layer + 1].BindForDraw(p_gl);
  if (!bound || !_targets[p_layer + 1].Complete())
    return false;
  Clear(*p_gl);
  CopyDepths(p_gl, _targets[0], _size);
  const PeelPass pass{_size, p_layer};
  if (p_layer > 0) {
    p_gl->ActiveTexture(PeelPass::Unit);
    p_gl->Bind(_targets[p_layer].DepthTexture(p_gl), Rgl::Sampler2D);
    p_gl->ActiveTexture(RGL_TEXTURE0);
  }
  return HasFragments(*p_gl, [&] { p_draw(p_layer > 0 ? &pass : nullptr); });
}

void DepthPeeling::Blend(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, std::size_t p_count) const {
  const auto state = FlatState(p_gl);
  const auto matrices = p_gl->PixelProjection(p_viewport);
  const VertexStream rectangle(*p_gl, VertexStream::Rectangle(0, 0, _size.width, _size.height),
                               VertexStream::TexCoords);
  for (std::size_t layer = p_count; layer-- > 0;) {
    _targets[layer + 1].BindColor(p_gl, RGL_TEXTURE0);
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, static_cast<int>(RGL_REPLACE));
    rectangle.Draw(RGL_QUADS);
  }
}

} // namespace Vek::Chart::Scene::Private
