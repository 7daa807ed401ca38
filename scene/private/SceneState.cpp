#include "scene/private/SceneState.h"

#include "scene/private/FlatState.h"

#include "platform/debug/Check.h"

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
  boost::shared_ptr<void> state = PlainState(p_gl, RGL_TRANSFORM_BIT | RGL_VIEWPORT_BIT);
  const Rgl& gl = *p_gl;
  gl.Disable(RGL_BLEND);
  gl.Enable(RGL_DEPTH_TEST);
  gl.DepthMask(true);
  gl.DepthFunc(RGL_LESS);
  gl.DepthRange(0, 1);
  gl.ColorMask(true, true, true, true);
  gl.Viewport(p_viewport);
  return state;
}

} // namespace Vek::Chart::Scene::Private
