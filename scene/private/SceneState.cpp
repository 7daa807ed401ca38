#include "scene/private/SceneState.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"

namespace Vek::Chart::Scene::Private {

bool HasFixedFunctions(const Utility::Scoped<Rgl>& p_gl) {
  constexpr Ogl::GlEnum ProfileMask = 0x9126; // GL_CONTEXT_PROFILE_MASK
  constexpr int CoreProfile = 1;
  int profile = 0;
  if (p_gl->GlVersion() >= Utility::VersionNo(3, 2, 0))
    p_gl->GetIntegerv(ProfileMask, &profile);
  if ((profile & CoreProfile) == 0)
    return true;
  vekdebug::warn("Figure: a compatibility profile is needed, this context has a core profile");
  return false;
}

boost::shared_ptr<void> SceneState(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport) {
  const Rgl& gl = *p_gl;
  const boost::shared_ptr<void> attributes =
      gl.PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT |
                         RGL_LIGHTING_BIT | RGL_POLYGON_BIT | RGL_TEXTURE_BIT | RGL_TRANSFORM_BIT | RGL_VIEWPORT_BIT);
  int program = 0;
  const bool hasPrograms = gl.GlVersion() >= Utility::VersionNo(2, 0, 0);
  if (hasPrograms) {
    gl.GetIntegerv(RGL_CURRENT_PROGRAM, &program);
    gl.UseProgram(0);
  }
  gl.ActiveTexture(RGL_TEXTURE0);
  for (const Ogl::GlEnum off :
       {RGL_BLEND, RGL_FOG, RGL_STENCIL_TEST, RGL_CULL_FACE, RGL_ALPHA_TEST, RGL_COLOR_LOGIC_OP, RGL_TEXTURE_2D,
        RGL_TEXTURE_3D, RGL_TEXTURE_GEN_S, RGL_TEXTURE_GEN_T, RGL_POLYGON_STIPPLE, RGL_POLYGON_SMOOTH})
    gl.Disable(off);
  for (Ogl::GlEnum plane = 0; plane < 6; ++plane)
    gl.Disable(RGL_CLIP_PLANE0 + plane);
  gl.PolygonMode(RGL_FRONT_AND_BACK, RGL_FILL);
  gl.ShadeModel(RGL_SMOOTH);
  gl.Enable(RGL_DEPTH_TEST);
  gl.DepthMask(true);
  gl.DepthFunc(RGL_LESS);
  gl.DepthRange(0, 1);
  gl.ColorMask(true, true, true, true);
  gl.Viewport(p_viewport);
  return Ogl::MakeGuard([functions = gl.Functions(), attributes, hasPrograms, program] {
    if (hasPrograms)
      functions->UseProgram(static_cast<unsigned int>(program));
  });
}

} // namespace Vek::Chart::Scene::Private
