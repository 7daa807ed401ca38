#include "scene/InstancedMesh.h"

#include "scene/DepthShader.h"

#include "platform/ogl/BufferPool.h"

#include <algorithm>

namespace Vek::Chart::Scene {

namespace {

using Types::Vector3_Base;
using Record = Ogl::Attribute<Ogl::Vec3<float>>;

// Locations that no fixed attribute (position 0, normal 2, colours 3 and 4, texture coordinates from 8 on) shares.
enum Location : unsigned int { PlaceLocation = 1, MeasureLocation = 5, AxisXLocation = 6, AxisYLocation = 7 };

const char* const VertexText = R"(#version 120
attribute vec3 place;   // of the instance's middle
attribute vec3 measure; // size, value
attribute vec3 axis_x;  // of the turned instance
attribute vec3 axis_y;
uniform vec3 center;    // of the model
uniform float fit;      // scale that makes the model one unit large
varying vec3 normal;
varying vec3 position;  // before the eye
varying float value;
void main() {
  mat3 turn = mat3(axis_x, axis_y, cross(axis_x, axis_y));
  vec4 world = vec4(place + turn * (gl_Vertex.xyz - center) * (fit * measure.x), 1.0);
  vec4 eye = gl_ModelViewMatrix * world;
  position = eye.xyz;
  normal = gl_NormalMatrix * (turn * gl_Normal);
  value = measure.y;
  gl_Position = gl_ProjectionMatrix * eye;
}
)";

const char* const FragmentText = R"(#version 120
uniform sampler2D colors;
uniform int surface; // 0: none, 1: with normals, 2: to be shaded face by face
varying vec3 normal;
varying vec3 position;
varying float value;
void main() {
  vec3 color = texture2D(colors, vec2(value, 0.5)).rgb;
  vec3 shade = vec3(1.0);
  vec3 gloss = vec3(0.0);
  if (surface != 0) {
    vec3 face = cross(dFdx(position), dFdy(position)); // towards the eye
    vec3 n = normalize(surface == 2 ? face : gl_FrontFacing ? normal : -normal);
    vec3 l = normalize(gl_LightSource[0].position.xyz);
    vec3 h = normalize(l - normalize(position));
    float facing = max(dot(n, l), 0.0);
    shade = gl_LightModel.ambient.rgb + gl_LightSource[0].diffuse.rgb * facing;
    if (facing > 0.0)
      gloss = gl_LightSource[0].specular.rgb * pow(max(dot(n, h), 0.0), gl_FrontMaterial.shininess);
  }
  gl_FragColor = vec4(color * shade + gloss, 1.0);
}
)";

Record ToRecord(const Vector3_Base<double>& p_vector) {
  return Ogl::Vec3<float>{static_cast<float>(p_vector.x), static_cast<float>(p_vector.y),
                          static_cast<float>(p_vector.z)};
}

/// How the shader is to light a model.
int SurfaceOf(const Mesh& p_model) {
  if (p_model.indices.type != Ogl::VertexBuffer::Triangles)
    return 0;
  return (p_model.vertices.attributes & Library::ModelCache::VertexBuffer::Normals) != 0 ? 1 : 2;
}

void DrawInstances(Utility::Scoped<Rgl>& p_gl, const Ogl::ShaderProgram& p_program, const Mesh& p_model,
                   InstanceBuffers& p_instances) {
  const double diagonal = Length(p_model.box.Extent());
  if (!p_program.Linked() || !(diagonal > 0))
    return;
  const auto inUse = p_program.Use(p_gl);
  p_program.SetUniform(p_gl, "colors", 0);
  p_program.SetUniform(p_gl, "center", p_model.box.Center());
  p_program.SetUniform(p_gl, "fit", static_cast<float>(1.0 / diagonal));
  p_program.SetUniform(p_gl, "surface", SurfaceOf(p_model));
  Ogl::BufferDraw draw = Library::ModelDraw({p_model.vertices, p_model.indices, p_model.box});
  draw.instanceAttributes = p_instances.Attributes(p_gl);
  draw.Draw(p_gl, p_instances.Count());
}

/// The program that places instances and gives each pixel what the text of a fragment shader says.
Ogl::ShaderProgram& Made(std::optional<Ogl::ShaderProgram>& p_program, Utility::Scoped<Rgl>& p_gl,
                         const std::string& p_fragmentText) {
  if (!p_program)
    p_program.emplace(p_gl, VertexText, p_fragmentText,
                      std::vector<std::string>{"", "place", "", "", "", "measure", "axis_x", "axis_y"});
  return *p_program;
}

} // namespace

const std::vector<Ogl::BufferDraw::InstanceAttribute>& InstanceBuffers::Attributes(Utility::Scoped<Rgl>& p_gl) {
  if (!_attributes.empty() || _instances.empty())
    return _attributes;
  const auto add = [&](Location p_location, auto p_recordOf) {
    const auto buffer = p_gl->GetBufferPool().CreateBuffer<Record>(_instances.size(), Ogl::BufferUsage::Default);
    const Ogl::BufferPool::WriteArray<Record> mapped(buffer, 0, _instances.size(), RGL_ARRAY_BUFFER);
    std::transform(_instances.begin(), _instances.begin() + static_cast<std::ptrdiff_t>(mapped.Count()), mapped.Data(),
                   p_recordOf);
    _attributes.push_back({p_location, buffer});
  };
  add(PlaceLocation, [](const Instance& p_i) { return ToRecord(p_i.place); });
  add(MeasureLocation, [](const Instance& p_i) { return ToRecord({p_i.size, p_i.value, 0}); });
  add(AxisXLocation, [](const Instance& p_i) { return ToRecord(p_i.turn * Vector3_Base<double>(1, 0, 0)); });
  add(AxisYLocation, [](const Instance& p_i) { return ToRecord(p_i.turn * Vector3_Base<double>(0, 1, 0)); });
  return _attributes;
}

Mesh MeshOf(const Library::SymbolRegistry& p_registry, Model::Symbol::Shape p_shape) {
  return {p_registry.GetVertexBuffer(p_shape), p_registry.GetIndexBuffer(p_shape), p_registry.GetBoundingBox(p_shape)};
}

Mesh MeshOf(const Library::ModelCache& p_cache, std::size_t p_id) {
  return {p_cache.GetVertexBuffer(p_id), p_cache.GetIndexBuffer(p_id), p_cache.GetBoundingBox(p_id)};
}

void InstancePainter::Draw(Utility::Scoped<Rgl>& p_gl, const Mesh& p_model, InstanceBuffers& p_instances,
                           const Library::ColorMap& p_colors) {
  const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
  p_colors(p_gl, RGL_TEXTURE0);
  DrawInstances(p_gl, Made(_colored, p_gl, FragmentText), p_model, p_instances);
}

void InstancePainter::DrawDepths(Utility::Scoped<Rgl>& p_gl, const Mesh& p_model, InstanceBuffers& p_instances) {
  DrawInstances(p_gl, Made(_packed, p_gl, PackedDepthText()), p_model, p_instances);
}

} // namespace Vek::Chart::Scene
