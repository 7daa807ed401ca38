#include "scene/private/FlatState.h"

#include "platform/ogl/Guard.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

/// On all units of the fixed functions; the first one is active afterwards.
void DisableTextures(const Rgl& p_gl) {
  const bool hasCubeMaps = p_gl.GlVersion() >= Utility::VersionNo(1, 3, 0);
  int units = 0;
  p_gl.GetIntegerv(RGL_MAX_TEXTURE_UNITS, &units);
  for (int unit = std::max(units, 1) - 1; unit >= 0; --unit) {
    p_gl.ActiveTexture(RGL_TEXTURE0 + static_cast<Ogl::GlEnum>(unit));
    for (const Ogl::GlEnum off : {RGL_TEXTURE_1D, RGL_TEXTURE_2D, RGL_TEXTURE_3D})
      p_gl.Disable(off);
    if (hasCubeMaps)
      p_gl.Disable(RGL_TEXTURE_CUBE_MAP);
  }
}

/// Arrays of generic attributes would replace those of the fixed functions.
boost::shared_ptr<void> FixedArrayScope(const Rgl& p_gl) {
  constexpr unsigned int Count = 16; // as many as every device has
  p_gl.PushClientAttrib(RGL_CLIENT_VERTEX_ARRAY_BIT);
  for (unsigned int attribute = 0; attribute < Count; ++attribute)
    p_gl.DisableVertexAttribArray(attribute);
  return Ogl::MakeGuard([gl = p_gl.Functions()] { gl->PopClientAttrib(); });
}

} // namespace

boost::shared_ptr<void> PlainState(Utility::Scoped<Rgl>& p_gl, unsigned int p_more) {
  const Rgl& gl = *p_gl;
  // Mesa (22.3) does not restore a colour that was set between two PushAttrib; the guard does it.
  std::array<double, 4> color{};
  gl.GetDoublev(RGL_CURRENT_COLOR, color.data());
  boost::shared_ptr<void> attributes =
      gl.PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT |
                         RGL_LIGHTING_BIT | RGL_POLYGON_BIT | RGL_TEXTURE_BIT | p_more);
  int program = 0;
  const bool programs = gl.GlVersion() >= Utility::VersionNo(2, 0, 0);
  boost::shared_ptr<void> arrays;
  if (programs) {
    arrays = FixedArrayScope(gl);
    gl.GetIntegerv(RGL_CURRENT_PROGRAM, &program);
    gl.UseProgram(0);
  }
  DisableTextures(gl);
  for (const Ogl::GlEnum off : {RGL_FOG, RGL_STENCIL_TEST, RGL_CULL_FACE, RGL_ALPHA_TEST, RGL_COLOR_LOGIC_OP,
                                RGL_TEXTURE_GEN_S, RGL_TEXTURE_GEN_T, RGL_POLYGON_STIPPLE, RGL_POLYGON_SMOOTH})
    gl.Disable(off);
  for (Ogl::GlEnum plane = 0; plane < 6; ++plane)
    gl.Disable(RGL_CLIP_PLANE0 + plane);
  gl.PolygonMode(RGL_FRONT_AND_BACK, RGL_FILL);
  gl.ShadeModel(RGL_SMOOTH);
  return Ogl::MakeGuard([gl = gl.Functions(), attributes = std::move(attributes), arrays = std::move(arrays), color,
                         programs, program]() mutable {
    if (programs)
      gl->UseProgram(static_cast<unsigned int>(program));
    arrays.reset();
    attributes.reset();
    gl->Color4d(color[0], color[1], color[2], color[3]);
  });
}

boost::shared_ptr<void> FlatState(Utility::Scoped<Rgl>& p_gl) {
  boost::shared_ptr<void> state = PlainState(p_gl);
  const Rgl& gl = *p_gl;
  gl.Disable(RGL_LIGHTING);
  gl.Disable(RGL_DEPTH_TEST);
  gl.Enable(RGL_BLEND);
  gl.BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
  if (gl.GlVersion() >= Utility::VersionNo(1, 4, 0)) // what is opaque stays opaque
    gl.BlendFuncSeparate(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA, RGL_ONE, RGL_ONE_MINUS_SRC_ALPHA);
  return state;
}

} // namespace Vek::Chart::Scene
