#include "examples/scene/DepthPass.h"

#include "library/DepthCodec.h"

namespace Vek::Chart::Gallery {

std::string PackedDepthText() {
  return Library::DepthCodec::PreciseGlsl() + "void main() { gl_FragColor = EncodeDepth(gl_FragCoord.z); }\n";
}

DepthPass::DepthPass(Utility::Scoped<Rgl>& p_gl)
    : _program(p_gl, "void main() { gl_Position = ftransform(); }\n", PackedDepthText()) {}

void DepthPass::Draw(Utility::Scoped<Rgl>& p_gl, const boost::function<void()>& p_draw) const {
  const auto state =
      p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_POLYGON_BIT);
  // A byte that is mixed, dithered or left out is another depth.
  for (const Ogl::GlEnum spoiler : {RGL_SCISSOR_TEST, RGL_BLEND, RGL_DITHER, RGL_MULTISAMPLE, RGL_ALPHA_TEST,
                                    RGL_STENCIL_TEST, RGL_FRAMEBUFFER_SRGB, RGL_POLYGON_STIPPLE, RGL_POLYGON_SMOOTH})
    p_gl->Disable(spoiler);
  p_gl->ColorMask(true, true, true, true);
  p_gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_FILL);
  p_gl->Enable(RGL_DEPTH_TEST);
  p_gl->DepthFunc(RGL_LESS);
  p_gl->DepthMask(true);
  p_gl->ClearColor(Qt::transparent);
  p_gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT); // again, now that no scissor cuts it
  const auto used = _program.Use(p_gl);
  p_draw();
}

} // namespace Vek::Chart::Gallery
