#include "scene/DepthShader.h"

#include "library/DepthCodec.h"
#include "library/DepthPass.h"

namespace Vek::Chart::Scene {

std::string PackedDepthText() {
  return Library::DepthCodec::PreciseGlsl() + "void main() { gl_FragColor = EncodeDepth(gl_FragCoord.z); }\n";
}

DepthShader::DepthShader(Utility::Scoped<Rgl>& p_gl)
    : _program(p_gl, "void main() { gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex; gl_Position = ftransform(); }\n",
               PackedDepthText()) {}

void DepthShader::Draw(Utility::Scoped<Rgl>& p_gl, const boost::function<void()>& p_draw) const {
  const Library::DepthPass pass(p_gl);
  if (!Linked())
    return; // reported by the constructor
  const auto used = _program.Use(p_gl);
  p_draw();
}

} // namespace Vek::Chart::Scene
