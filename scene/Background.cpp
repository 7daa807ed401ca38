#include "scene/Background.h"

#include "scene/Canvas.h"

namespace Vek::Chart::Scene {

void DrawBackground(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const Theme& p_theme) {
  const TextRenderer noText;
  Canvas canvas(p_gl, p_viewport, noText);
  {
    const auto state =
        p_gl->PushAttribScope(RGL_SCISSOR_BIT | RGL_ENABLE_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
    p_gl->Enable(RGL_SCISSOR_TEST);
    p_gl->Scissor(static_cast<int>(p_viewport.x), static_cast<int>(p_viewport.y), static_cast<int>(p_viewport.width),
                  static_cast<int>(p_viewport.height));
    p_gl->DepthMask(true);
    p_gl->StencilMask(~0U);
    p_gl->ClearDepth(1);
    p_gl->ClearStencil(0);
    p_gl->Clear(RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
  }
  canvas.Fill({0, 0, canvas.Width(), canvas.Height()}, p_theme.backgroundBottom, p_theme.backgroundTop);
}

} // namespace Vek::Chart::Scene
