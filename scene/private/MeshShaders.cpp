#include "scene/private/MeshShaders.h"

#include "scene/private/PeelShader.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Vek::Chart::Scene {

void ValueScale::Check() const {
  const bool valid = std::isfinite(lower) && std::isfinite(upper) && lower < upper && (!logarithmic || lower > 0);
  if (!valid)
    throw std::invalid_argument(std::string("ValueScale: expected finite, ascending limits") +
                                (logarithmic ? " above 0" : "") + ", got " + std::to_string(lower) + " and " +
                                std::to_string(upper));
}

namespace Private {

float StoredValue(float p_value) {
  return std::isnan(p_value) ? MissingValue : std::clamp(p_value, -LargestValue, LargestValue);
}

const char* const ColorText = R"(
uniform sampler2D colors;
uniform int painting;    // 0: by value, 1: by colour, 2: by texture
uniform int logarithmic;
uniform float lower;     // the value of the first colour, or its logarithm
uniform float factor;    // 1 / (upper - lower)
uniform vec4 below;
uniform vec4 above;
uniform vec4 unknown;    // the colour of missing values
uniform vec4 tint;       // of the texture

vec4 ColorOfValue() {
  if (missing > 0.0)
    return unknown;
  if (logarithmic != 0 && value <= 0.0)
    return below;
  float share = ((logarithmic != 0 ? log(value) : value) - lower) * factor;
  return share < 0.0 ? below : share > 1.0 ? above : texture2D(colors, vec2(share, 0.5));
}

vec4 PlainColor() {
  return painting == 1 ? own : painting == 2 ? texture2D(colors, own.xy) * tint : ColorOfValue();
}
)";

const char* const LightText = R"(
#ifndef POSITION
#define POSITION position
#define NORMAL normal
#endif
uniform int lighting;    // 0: none, 1: by normals, 2: by faces, 4: by normals towards the eye

vec4 Lit(vec4 color) {
  if (lighting == 0)
    return color;
  vec3 face = cross(dFdx(POSITION), dFdy(POSITION)); // towards the eye
  vec3 n = normalize(lighting == 2 ? face : lighting == 4 || gl_FrontFacing ? NORMAL : -NORMAL);
  vec3 l = normalize(gl_LightSource[0].position.xyz);
  vec3 h = normalize(l - normalize(POSITION));
  float facing = max(dot(n, l), 0.0);
  vec3 gloss = vec3(0.0);
  if (facing > 0.0)
    gloss = gl_LightSource[0].specular.rgb * pow(max(dot(n, h), 0.0), gl_FrontMaterial.shininess);
  vec3 shade = gl_LightModel.ambient.rgb + gl_LightSource[0].diffuse.rgb * facing;
  return vec4(color.rgb * shade + gloss, color.a);
}
)";

std::string LitColorText(const MeshShading& p_shading) {
  constexpr const char* Main = R"(
void main() {
  vec4 color = PlainColor();
  if (color.a == 0.0)
    discard;
  gl_FragColor = Lit(color);
  if (peeled != 0 && IsPeeled()) // after the derivatives
    discard;
}
)";
  const std::string coloring =
      WithConstant(WithConstant(ColorText, "painting", p_shading.painting), "logarithmic", p_shading.isLogarithmic);
  return "#version 120\n" + std::string(MeshVaryings) + PeelText + coloring +
         WithConstant(LightText, "lighting", p_shading.lighting) +
         "const int peeled = " + std::to_string(p_shading.isPeeled ? 1 : 0) + ";\n" + Main;
}

std::string WithConstant(std::string p_text, const std::string& p_uniform, int p_number) {
  const std::string declaration = "uniform int " + p_uniform + ';';
  if (const std::size_t at = p_text.find(declaration); at != std::string::npos)
    p_text.replace(at, declaration.size(), "const int " + p_uniform + " = " + std::to_string(p_number) + ';');
  return p_text;
}

Lighting LightingOf(const GpuMesh& p_mesh) {
  switch (p_mesh.Primitive()) {
  case Ogl::VertexBuffer::Triangles:
  case Ogl::VertexBuffer::TriangleStrip:
  case Ogl::VertexBuffer::Quads:
  case Ogl::VertexBuffer::QuadStrip:
    return p_mesh.HasNormals() ? ByNormals : ByFaces;
  default:
    return Unlit;
  }
}

void SetColorUniforms(Utility::Scoped<Rgl>& p_gl, const Ogl::ShaderProgram& p_program, Painting p_painting,
                      const Library::ColorMap& p_colors, const ValueScale& p_scale, const PeelPass* p_pass) {
  const double lower = p_scale.logarithmic ? std::log(p_scale.lower) : p_scale.lower;
  const double upper = p_scale.logarithmic ? std::log(p_scale.upper) : p_scale.upper;
  p_program.SetUniform(p_gl, "colors", 0);
  p_program.SetUniform(p_gl, "painting", p_painting);
  p_program.SetUniform(p_gl, "logarithmic", p_scale.logarithmic ? 1 : 0);
  p_program.SetUniform(p_gl, "lower", static_cast<float>(lower));
  p_program.SetUniform(p_gl, "factor", static_cast<float>(1 / (upper - lower)));
  p_program.SetUniform(p_gl, "below", p_scale.below.isValid() ? p_scale.below : p_colors.Color(0.0));
  p_program.SetUniform(p_gl, "above", p_scale.above.isValid() ? p_scale.above : p_colors.Color(1.0));
  p_program.SetUniform(p_gl, "unknown", p_scale.missing);
  SetPeelUniforms(p_gl, p_program, p_pass);
}

} // namespace Private
} // namespace Vek::Chart::Scene
