#include "library/DepthPass.h"

namespace Vek::Chart::Library {

namespace {

/// What would discard, change or displace a packed depth.
constexpr Ogl::GlEnum Spoilers[] = {
    RGL_SCISSOR_TEST,
    RGL_ALPHA_TEST,
    RGL_STENCIL_TEST,
    RGL_BLEND,
    RGL_DITHER,
    RGL_COLOR_LOGIC_OP,
    RGL_MULTISAMPLE,
    RGL_POLYGON_SMOOTH,
    RGL_LINE_SMOOTH,
    RGL_POINT_SMOOTH,
    RGL_POLYGON_STIPPLE,
    RGL_LINE_STIPPLE,
    RGL_POLYGON_OFFSET_POINT,
    RGL_POLYGON_OFFSET_LINE,
    RGL_POLYGON_OFFSET_FILL,
    RGL_FOG,
    RGL_LIGHTING,
};

} // namespace

DepthPass::DepthPass(Utility::Scoped<Rgl>& p_gl)
    : _state(p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT |
                                   RGL_STENCIL_BUFFER_BIT | RGL_POLYGON_BIT | RGL_VIEWPORT_BIT)) {
  for (const Ogl::GlEnum spoiler : Spoilers)
    p_gl->Disable(spoiler);
  if (p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureSrgbFrameBuffer))
    p_gl->Disable(RGL_FRAMEBUFFER_SRGB);
  if (p_gl->GlVersion() >= Utility::VersionNo(3, 2, 0))
    p_gl->Disable(RGL_DEPTH_CLAMP);
  p_gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_FILL);
  p_gl->Enable(RGL_DEPTH_TEST);
  p_gl->DepthFunc(RGL_LESS);
  p_gl->DepthRange(0, 1);

  p_gl->ColorMask(true, true, true, true);
  p_gl->DepthMask(true);
  p_gl->StencilMask(~0U);
  p_gl->ClearColor(0, 0, 0, 0);
  p_gl->ClearDepth(1);
  p_gl->ClearStencil(0);
  p_gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
}

DepthPass::~DepthPass() = default;

} // namespace Vek::Chart::Library
