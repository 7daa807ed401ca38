#include "scene/InstancedMesh.h"

#include "scene/DepthShader.h"
#include "scene/private/GpuArray.h"
#include "scene/private/InstanceArrays.h"
#include "scene/private/InstanceSorting.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshShaders.h"

#include "library/Icosphere.h"
#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using namespace Private;
using Point = Types::Vector3_Base<double>;
using Types::Matrix3;
using Record = Ogl::Vec3<float>;

constexpr const char* Signature =
    "void __cdecl Vek::Chart::Scene::InstancedMesh::Draw(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> "
    "&) const";

// Locations that no fixed attribute of a mesh has: not position (0), normal (2), colours (3, 4) and texture coordinate
// 0 (8).
enum Location : unsigned int {
  PlaceLocation = 1,
  SizeLocation = 5,
  AxisXLocation = 6,
  AxisYLocation = 7,
  PaintLocation = 9
};

const char* const VertexText = R"(
attribute vec3 place;   // of the instance's origin
attribute float size;
attribute vec3 axis_x;  // of the rotated mesh
attribute vec3 axis_y;
attribute vec4 paint;   // a value, a colour or an id
uniform vec3 center;    // of the mesh
uniform float fit;      // scale of the mesh for an instance of size 1
uniform float least;    // least size at a distance of 1
uniform int sized;      // whether there are sizes
uniform int oriented;   // whether there are axes
uniform int painted;    // whether there are values, colours or ids
void main() {
  mat3 turn = oriented != 0 ? mat3(axis_x, axis_y, cross(axis_x, axis_y)) : mat3(1.0);
  float factor = sized != 0 ? size : 1.0;
  bool shown = place.x < 3.2e38 && factor > 0.0 && (oriented == 0 || dot(axis_x, axis_x) > 0.0);
  if (least > 0.0)
    factor = max(factor, least * (gl_ModelViewProjectionMatrix * vec4(place, 1.0)).w);
  vec4 world = vec4(place + turn * (gl_Vertex.xyz - center) * (fit * factor), 1.0);
  vec4 eye = gl_ModelViewMatrix * world;
  position = eye.xyz;
  normal = gl_NormalMatrix * (turn * gl_Normal);
  own = painted != 0 ? paint : vec4(0.0);
  missing = own.x > 3.2e38 ? 1.0 : 0.0;
  value = missing > 0.0 ? 0.0 : own.x;
  gl_ClipVertex = eye;
  gl_Position = shown ? gl_ProjectionMatrix * eye : vec4(2.0, 2.0, 2.0, 1.0); // all vertices beyond the far plane
}
)";

const char* const IdText = R"(#version 120
uniform float plot; // (number + 1) / 255
varying vec4 own;
void main() { gl_FragColor = vec4(own.rgb, plot); }
)";

Point ToPoint(const Record& p_record) {
  return {static_cast<double>(p_record.x), static_cast<double>(p_record.y), static_cast<double>(p_record.z)};
}

/// How far a level's mesh reaches from the position of an instance of size 1.
double Reach(const InstancedMesh::Level& p_level) {
  double reach = 0;
  const Types::BoundingBox_Base<double>& box = p_level.mesh.Bounds();
  if (box.Empty())
    return 0;
  for (const double x : {box.Min().x, box.Max().x})
    for (const double y : {box.Min().y, box.Max().y})
      for (const double z : {box.Min().z, box.Max().z})
        reach = std::max(reach, Length(Point(x, y, z) - p_level.origin));
  return reach * std::abs(p_level.scale);
}

double Reach(const std::vector<InstancedMesh::Level>& p_levels) {
  double reach = 0;
  for (const InstancedMesh::Level& level : p_levels)
    reach = std::max(reach, Reach(level));
  return reach;
}

} // namespace

/// The buffers and shaders of one context.
struct InstancedMesh::Buffers {
  GpuArray positions;
  GpuArray sizes;
  GpuArray axes;
  GpuArray paint;
  GpuArray ids;
  InstanceSorting sorting;
  std::optional<Ogl::ShaderProgram> colored;
  std::optional<Ogl::ShaderProgram> packed;
  std::optional<Ogl::ShaderProgram> numbered;
};

InstancedMesh::Level InstancedMesh::Level::Centered(GpuMesh p_mesh) {
  const Types::BoundingBox_Base<double> box = p_mesh.Bounds();
  const double diagonal = Length(box.Extent());
  Level level(std::move(p_mesh));
  level.origin = box.Center();
  level.scale = diagonal > 0 ? 1 / diagonal : 0;
  return level;
}

std::vector<InstancedMesh::Level> InstancedMesh::Spheres() {
  constexpr double Error = 0.2; // pixels
  constexpr unsigned int Divisions = 3;
  std::vector<Level> levels;
  for (unsigned int divisions = 0; divisions <= Divisions; ++divisions) {
    const Library::Icosphere sphere(divisions);
    GpuMesh::Arrays arrays;
    arrays.positions = sphere.positions;
    arrays.normals = sphere.positions;
    arrays.indices = sphere.indices;
    Level level{GpuMesh(arrays)};
    level.scale = 0.5;
    // The largest distance of an edge from the sphere, for a radius of 1.
    constexpr double Flatness[] = {0.1493, 0.0489, 0.0133};
    if (divisions < Divisions)
      level.mostPixels = 2 * Error / Flatness[divisions];
    levels.push_back(std::move(level));
  }
  return levels;
}

InstancedMesh::InstancedMesh(GpuMesh p_mesh, const Instances& p_instances) {
  std::vector<Level> levels;
  levels.emplace_back(std::move(p_mesh));
  *this = InstancedMesh(std::move(levels), p_instances);
}

InstancedMesh::InstancedMesh(std::vector<Level> p_levels, const Instances& p_instances)
    : _levels(std::move(p_levels))
    , _positions(Share(StoredPositions(p_instances.positions, p_instances.origin))) {
  UpdateSizes(p_instances.sizes);
  if (p_instances.directions.Count() != 0 && !p_instances.rotations.empty())
    throw std::invalid_argument("InstancedMesh: expected directions or rotations, got both");
  if (p_instances.rotations.empty())
    UpdateDirections(p_instances.directions, p_instances.up);
  else
    UpdateRotations(p_instances.rotations);
  UpdateValues(p_instances.values);
  UpdateColors(p_instances.colors);
  RequireLength("ids", p_instances.ids.size());
  _ids = Share(StoredIds(p_instances.ids, Count()));
}

void InstancedMesh::SetLevels(std::vector<Level> p_levels) {
  _levels = std::move(p_levels);
}

void InstancedMesh::RequireLength(const char* p_name, std::size_t p_count) const {
  if (p_count != 0)
    RequireCount(std::string("InstancedMesh: ") + p_name, p_count, Count());
}

void InstancedMesh::UpdatePositions(const Array3& p_positions, const Point& p_origin) {
  RequireCount("InstancedMesh: positions", p_positions.Count(), Count());
  _positions = Share(StoredPositions(p_positions, p_origin));
}

void InstancedMesh::UpdateSizes(const Array1& p_sizes) {
  RequireLength("sizes", p_sizes.Count());
  _sizes = Share(StoredSizes(p_sizes));
}

void InstancedMesh::UpdateDirections(const Array3& p_directions, const Point& p_up) {
  RequireLength("directions", p_directions.Count());
  _axes = Share(StoredDirections(p_directions, p_up));
  _undirected = CountUndirected(p_directions);
}

void InstancedMesh::UpdateRotations(const std::vector<Matrix3>& p_rotations) {
  RequireLength("rotations", p_rotations.size());
  _axes = Share(StoredRotations(p_rotations));
  _undirected = 0;
}

void InstancedMesh::UpdateValues(const Array1& p_values) {
  RequireLength("values", p_values.Count());
  _values = Share(StoredValues(p_values));
}

void InstancedMesh::UpdateColors(std::vector<Rgba> p_colors) {
  RequireLength("colours", p_colors.size());
  _colors = Share(std::move(p_colors));
}

Types::BoundingBox_Base<double> InstancedMesh::Bounds() const {
  const double reach = Reach(_levels);
  Types::BoundingBox_Base<double> bounds;
  for (std::size_t i = 0; i < Count(); ++i) {
    const Point position = ToPoint((*_positions)[i]);
    const double size = _sizes ? static_cast<double>((*_sizes)[i]) : 1;
    if ((*_positions)[i].x == MissingValue || !(size > 0) || (_axes && (*_axes)[i] == Axes{}))
      continue;
    bounds += position - Point(1, 1, 1) * (reach * size);
    bounds += position + Point(1, 1, 1) * (reach * size);
  }
  return bounds;
}

namespace {

/// The program that places instances and colours fragments by `p_fragmentText`; null, after a report, without one.
const Ogl::ShaderProgram* Made(std::optional<Ogl::ShaderProgram>& p_program, Utility::Scoped<Rgl>& p_gl,
                               const std::string& p_fragmentText) {
  if (!p_program || !p_program->Linked())
    p_program.emplace(p_gl, Private::MeshVaryings + std::string(VertexText), p_fragmentText,
                      std::vector<std::string>{"", "place", "", "", "", "size", "axis_x", "axis_y", "", "paint"});
  return p_program->Linked() ? &*p_program : nullptr;
}

/// Uploads an array in the order of the levels.
template <class T>
bool Upload(GpuArray& p_buffer, const Rgl& p_gl, const boost::shared_ptr<const std::vector<T>>& p_source,
            const std::vector<std::uint32_t>& p_order) {
  if (p_order.empty())
    return p_buffer.Update(p_gl, p_source, Signature);
  const auto gather = [&](void* p_to) {
    std::transform(p_order.begin(), p_order.end(), static_cast<T*>(p_to),
                   [&](std::uint32_t p_index) { return (*p_source)[p_index]; });
  };
  return p_buffer.Update(p_gl, p_source, gather, Signature);
}

} // namespace

/// Finds the levels, if asked for or not yet known, and uploads what changed and what `p_paint` paints with. False if
/// there is nothing to draw.
bool InstancedMesh::Prepare(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, Paint p_paint) const {
  InstanceSorting& sorting = p_buffers.sorting;
  if (p_paint == Paint::Colors || !sorting.Fits(_positions, _sizes, _levels.size())) {
    std::vector<double> mostPixels(_levels.size());
    std::transform(_levels.begin(), _levels.end(), mostPixels.begin(), [](const Level& p_l) { return p_l.mostPixels; });
    if (sorting.Update({_positions, _sizes, std::move(mostPixels), Projection::Of(p_gl)}))
      for (GpuArray* const buffer :
           {&p_buffers.positions, &p_buffers.sizes, &p_buffers.axes, &p_buffers.paint, &p_buffers.ids})
        buffer->Forget();
  }
  const std::vector<std::uint32_t>& order = sorting.Order();
  return Upload(p_buffers.positions, *p_gl, _positions, order) && Upload(p_buffers.sizes, *p_gl, _sizes, order) &&
         Upload(p_buffers.axes, *p_gl, _axes, order) &&
         (p_paint != Paint::Colors || (_colors ? Upload(p_buffers.paint, *p_gl, _colors, order)
                                               : Upload(p_buffers.paint, *p_gl, _values, order))) &&
         (p_paint != Paint::Ids || Upload(p_buffers.ids, *p_gl, _ids, order));
}

/// Draws the instances of each level that may be seen, with the program in use.
void InstancedMesh::DrawLevels(Utility::Scoped<Rgl>& p_gl, const Buffers& p_buffers, Paint p_paint,
                               const Ogl::ShaderProgram& p_program) const {
  const Projection projection = Projection::Of(p_gl);
  const GpuArray* const paint = p_paint == Paint::Colors ? &p_buffers.paint
                                : p_paint == Paint::Ids  ? &p_buffers.ids
                                                         : nullptr;
  const bool painted = paint != nullptr && *paint;
  const bool paintsBytes = p_paint == Paint::Ids || _colors != nullptr;
  p_program.SetUniform(p_gl, "sized", p_buffers.sizes ? 1 : 0);
  p_program.SetUniform(p_gl, "oriented", p_buffers.axes ? 1 : 0);
  p_program.SetUniform(p_gl, "painted", painted ? 1 : 0);
  p_program.SetUniform(p_gl, "least", static_cast<float>(projection.pixels > 0 ? _leastPixels / projection.pixels : 0));
  for (std::size_t i = 0; i < _levels.size(); ++i) {
    const Level& level = _levels[i];
    const InstanceSorting::Range& range = p_buffers.sorting.Ranges()[i];
    const Point reach = Point(1, 1, 1) * (Reach(level) * range.largest);
    if (range.count == 0 || range.box.Empty())
      continue;
    Types::BoundingBox_Base<double> box = range.box;
    box += range.box.Min() - reach;
    box += range.box.Max() + reach;
    if (!(_leastPixels > 0) && !projection.MayShow(box))
      continue;
    p_program.SetUniform(p_gl, "center", level.origin);
    p_program.SetUniform(p_gl, "fit", static_cast<float>(level.scale));
    p_program.SetUniform(p_gl, "lighting", LightingOf(level.mesh));
    std::vector<GpuMesh::InstanceAttribute> attributes;
    const auto add = [&](unsigned int p_location, const GpuArray& p_array, std::size_t p_record, std::size_t p_offset,
                         unsigned int p_components, bool p_bytes) {
      if (p_array)
        attributes.push_back({p_location, p_array.Storage(), range.first * p_record + p_offset,
                              static_cast<unsigned int>(p_record), p_components, p_bytes});
    };
    add(PlaceLocation, p_buffers.positions, sizeof(Record), 0, 3, false);
    add(SizeLocation, p_buffers.sizes, sizeof(float), 0, 1, false);
    add(AxisXLocation, p_buffers.axes, sizeof(Axes), 0, 3, false);
    add(AxisYLocation, p_buffers.axes, sizeof(Axes), sizeof(Axes) / 2, 3, false);
    if (painted)
      add(PaintLocation, *paint, sizeof(float), 0, paintsBytes ? 4 : 1, paintsBytes);
    level.mesh.DrawInstanced(p_gl, range.count, attributes);
  }
}

void InstancedMesh::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale,
                         const PeelPass* p_pass) const {
  p_scale.Check();
  if (Count() == 0 || _levels.empty())
    return;
  Buffers& buffers = _buffers.Get(p_gl);
  const Ogl::ShaderProgram* const program = Made(buffers.colored, p_gl, LitColorText());
  if (program == nullptr || !Prepare(p_gl, buffers, Paint::Colors))
    return;
  const auto map = p_colors.Bind(p_gl);
  const auto inUse = program->Use(p_gl);
  SetColorUniforms(p_gl, *program, _colors ? ByColor : ByValue, p_colors, p_scale, p_pass);
  DrawLevels(p_gl, buffers, Paint::Colors, *program);
}

void InstancedMesh::DrawDepths(Utility::Scoped<Rgl>& p_gl) const {
  if (Count() == 0 || _levels.empty())
    return;
  Buffers& buffers = _buffers.Get(p_gl);
  const Ogl::ShaderProgram* const program = Made(buffers.packed, p_gl, PackedDepthText());
  if (program == nullptr || !Prepare(p_gl, buffers, Paint::Depths))
    return;
  const auto inUse = program->Use(p_gl);
  DrawLevels(p_gl, buffers, Paint::Depths, *program);
}

void InstancedMesh::DrawIds(Utility::Scoped<Rgl>& p_gl, unsigned int p_plot) const {
  if (p_plot >= PickPass::MostPlots)
    throw std::invalid_argument("InstancedMesh: expected a plot below " + std::to_string(PickPass::MostPlots) +
                                ", got " + std::to_string(p_plot));
  if (Count() == 0 || _levels.empty())
    return;
  Buffers& buffers = _buffers.Get(p_gl);
  const Ogl::ShaderProgram* const program = Made(buffers.numbered, p_gl, IdText);
  if (program == nullptr || !Prepare(p_gl, buffers, Paint::Ids))
    return;
  const auto inUse = program->Use(p_gl);
  program->SetUniform(p_gl, "plot", static_cast<float>(p_plot + 1) / 255);
  DrawLevels(p_gl, buffers, Paint::Ids, *program);
}

void InstancedMesh::Draw(Utility::Scoped<Rgl>& p_gl, const PickPass& p_pass) const {
  if (p_pass.kind == PickPass::Ids)
    DrawIds(p_gl, p_pass.plot);
  else
    DrawDepths(p_gl);
}

void InstancedMesh::Release(const Utility::Scoped<Rgl>& p_gl) const {
  for (const Level& level : _levels)
    level.mesh.Release(p_gl);
  _buffers.Release(p_gl);
}

} // namespace Vek::Chart::Scene
