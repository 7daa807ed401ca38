#pragma once

#include "scene/PeelPass.h"

#include "platform/ogl/ShaderProgram.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

namespace Vek::Chart::Scene::Private {

/// For fragment shaders: whether a fragment is not behind the layer of a PeelPass. A depth buffer of 24 bits rounds, by
/// less than 1.5 steps.
constexpr const char* PeelText = R"(
uniform sampler2D nearer; // depths of the layer in front
uniform vec3 layer;       // size of a texel; z: 1 if there is a layer
bool IsPeeled() {
  return layer.z > 0.0 && gl_FragCoord.z <= texture2D(nearer, gl_FragCoord.xy * layer.xy).r + 9.0e-8;
}
)";

/// Sets the uniforms of PeelText; null for no layer in front. The program must be current.
inline void SetPeelUniforms(Utility::Scoped<Rgl>& p_gl, const Ogl::ShaderProgram& p_program, const PeelPass* p_pass) {
  // Without a pass as well: a sampler must not share its unit with one of another type.
  p_program.SetUniform(p_gl, "nearer", static_cast<int>(PeelPass::Unit - RGL_TEXTURE0));
  const Types::Vector3_Base<double> none;
  p_program.SetUniform(
      p_gl, "layer",
      p_pass != nullptr ? Types::Vector3_Base<double>(1.0 / p_pass->size.width, 1.0 / p_pass->size.height, 1) : none);
}

} // namespace Vek::Chart::Scene::Private
