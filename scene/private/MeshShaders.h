#pragma once

#include "scene/GpuMesh.h"
#include "scene/PeelPass.h"
#include "scene/ValueScale.h"

#include "library/ColorMap.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/utility/Scope.h"

#include <string>
#include <tuple>

namespace Vek::Chart::Scene::Private {

/// Stands for NaN among values in GPU memory, since shaders need not compare NaN as IEEE 754 does.
constexpr float MissingValue = 3.4e38F;
/// The largest value that is not missing.
constexpr float LargestValue = 3e38F;

/// A value as it is stored in GPU memory.
float StoredValue(float p_value);

/// What a vertex shader writes for LitColorText; comes behind the version.
constexpr const char* MeshVaryings = R"(
varying vec3 normal;   // in eye coordinates
varying vec3 position; // in eye coordinates
varying float value;
varying float missing; // above 0 for a missing value
varying vec4 own;      // the colour, or the texture coordinates, where it does not come from the map
)";

/// Part of LitColorText: `vec4 PlainColor()` of `value`, `missing` and `own`.
extern const char* const ColorText;
/// Part of LitColorText: `vec4 Lit(vec4 color)` by the macros POSITION and NORMAL, or `position` and `normal`.
extern const char* const LightText;

/// How LitColorText finds colours.
enum Painting : int { ByValue = 0, ByColor = 1, ByTexture = 2 };
/// How LitColorText lights a primitive.
enum Lighting : int {
  Unlit = 0,
  ByNormals = 1,   ///< on both sides
  ByFaces = 2,     ///< likewise
  ByShade = 3,     ///< vertices are lit; in InstanceShaders alone
  ByOneNormal = 4, ///< which points to the eye
};

/// What the fragments of a drawing have in common. It lies in the texts of shaders as constants, since rasterisers in
/// software work through both sides of each branch on a uniform.
struct MeshShading {
  Painting painting = ByValue;
  bool isLogarithmic = false; ///< the scale of values
  Lighting lighting = Unlit;
  bool isPeeled = false; ///< a layer in front is left out

  friend bool operator<(const MeshShading& p_a, const MeshShading& p_b) {
    return std::tie(p_a.painting, p_a.isLogarithmic, p_a.lighting, p_a.isPeeled) <
           std::tie(p_b.painting, p_b.isLogarithmic, p_b.lighting, p_b.isPeeled);
  }
};

/// A fragment shader that lights the colours of a map by GL's light 0.
std::string LitColorText(const MeshShading& p_shading);

/// A text with a constant in place of a uniform of type int.
std::string WithConstant(std::string p_text, const std::string& p_uniform, int p_number);

/// How a mesh is to be lit.
Lighting LightingOf(const GpuMesh& p_mesh);

/// Sets the uniforms of LitColorText. With a pass, fragments in front of its layer are left out.
/// The program must be current.
void SetColorUniforms(Utility::Scoped<Rgl>& p_gl, const Ogl::ShaderProgram& p_program, Painting p_painting,
                      const Library::ColorMap& p_colors, const ValueScale& p_scale, const PeelPass* p_pass = nullptr);

} // namespace Vek::Chart::Scene::Private
