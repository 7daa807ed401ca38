#pragma once

#include "scene/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/utility/Scope.h"

#include <boost/function.hpp>

#include <string>

namespace Vek::Chart::Scene {

/// The source of a fragment shader that writes the depth of each fragment, packed by DepthCodec::PreciseGlsl. It reads
/// no varyings, so that any vertex shader can be linked with it.
///
/// \ingroup picking
VEK_SCENE_API std::string PackedDepthText();

/// Draws depths packed into colours, as the callback of a TopMostFragmentDepthBuffer must: for everything that is
/// placed by GL's matrices and fixed vertex attributes (VertexData, GpuMesh, drawables, immediate mode). Drawings with
/// a vertex shader of their own link it with PackedDepthText.
///
/// Owns a shader program, which must be destroyed while its context is current. A failure to link is reported; nothing
/// is drawn then.
///
/// \snippet SceneMeshSnippets.cpp DepthShader
/// \ingroup picking
class VEK_SCENE_API DepthShader {
public:
  /// Compiles and links.
  explicit DepthShader(Utility::Scoped<Rgl>& p_gl);

  /// False if GL did not compile or link the shader.
  bool Linked() const { return _program.Linked(); }
  /// Calls `p_draw` under a DepthPass, which clears the current frame buffer, with the shader in use. Restores all
  /// state. Clears alone if the shader is not linked.
  void Draw(Utility::Scoped<Rgl>& p_gl, const boost::function<void()>& p_draw) const;

private:
  Ogl::ShaderProgram _program;
};

} // namespace Vek::Chart::Scene
