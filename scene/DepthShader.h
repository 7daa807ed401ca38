#pragma once

#include "scene/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/utility/Scope.h"

#include <boost/function.hpp>

#include <string>

namespace Vek::Chart::Scene {

/// A fragment shader that writes the depth of each fragment, packed by DepthCodec.
VEK_SCENE_API std::string PackedDepthText();

/// Draws a scene with the depth of each fragment packed into its colour, as the callback of a
/// TopMostFragmentDepthBuffer must:
///
///     const DepthShader shader(gl);
///     picker.GetDepthAt(gl, viewport, pixel, stamp,
///                       [&](DepthCodec::Encoding) { shader.Draw(gl, [&] { DrawMyMeshes(gl); }); }, result);
///
/// For meshes that are placed by fixed-function matrices; those with a vertex shader of their own link it with
/// PackedDepthText.
class VEK_SCENE_API DepthShader {
public:
  explicit DepthShader(Utility::Scoped<Rgl>& p_gl);

  /// Calls `p_draw` under a DepthPass, with the shader in use.
  void Draw(Utility::Scoped<Rgl>& p_gl, const boost::function<void()>& p_draw) const;

private:
  Ogl::ShaderProgram _program;
};

} // namespace Vek::Chart::Scene
