#include "scene/InstancedMesh.h"

#include "scene/private/FlatNormals.h"
#include "scene/private/InstanceArrays.h"
#include "scene/private/InstanceBuffers.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshBody.h"
#include "scene/private/MeshShaders.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using namespace Private;
using Point = Types::Vector3_Base<double>;
using Types::Matrix3;
using Record = Ogl::Vec3<float>;

Point ToPoint(const Record& p_record) {
  return {static_cast<double>(p_record.x), static_cast<double>(p_record.y), static_cast<double>(p_record.z)};
}

} // namespace

InstancedMesh::Level InstancedMesh::Level::Centered(GpuMesh p_mesh) {
  const Types::BoundingBox_Base<double> box = p_mesh.Bounds();
  const double diagonal = Length(box.Extent());
  Level level(std::move(p_mesh));
  level.origin = box.Center();
  level.scale = diagonal > 0 ? 1 / diagonal : 0;
  return level;
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
  if (!p_instances.ids.empty())
    _ids = Share(StoredIds(p_instances.ids, Count()));
  CompleteLevels();
}

void InstancedMesh::SetLevels(std::vector<Level> p_levels) {
  _levels = std::move(p_levels);
  CompleteLevels();
}

InstancedMesh::Body InstancedMesh::BodyOf(const Level& p_level) {
  const GpuMesh& mesh = p_level.mesh;
  const double scale = std::abs(p_level.scale);
  if (!mesh._positions) { // of a cache
    const Types::BoundingBox_Base<double>& box = mesh.Bounds();
    return box.Empty() ? Body() : Body{scale * (Length(box.Center() - p_level.origin) + Length(box.Extent()) / 2), 0};
  }
  const std::vector<std::uint32_t> none;
  const Triangles triangles{*mesh._positions, mesh._indices ? *mesh._indices : none, p_level.origin};
  Body body{scale * OuterRadius(triangles), 0};
  if (mesh.Primitive() == Ogl::VertexBuffer::Triangles && p_level.facing != Level::Facing::Outline)
    body.core = p_level.facing == Level::Facing::Rotated ? scale * EnclosedRadius(triangles)
                                                         : scale * std::min(1.0, CoveredRadius(triangles));
  return body;
}

namespace {

GpuMesh Square() {
  const std::vector<Point> corners{{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}}, normals(4, Point(0, 0, 1));
  GpuMesh::Arrays arrays;
  arrays.positions = corners;
  arrays.normals = normals;
  arrays.indices = {0, 1, 2, 0, 2, 3};
  return GpuMesh(arrays);
}

} // namespace

/// The mesh with the normals of triangles at their last vertices; empty if it does not have fewer vertices so.
GpuMesh InstancedMesh::FlatMesh(const Level& p_level) {
  constexpr std::size_t Most = 1024; // vertices of symbols
  const GpuMesh& mesh = p_level.mesh;
  GpuMesh flat;
  if (p_level.facing != Level::Facing::Rotated || mesh.Primitive() != Ogl::VertexBuffer::Triangles ||
      !mesh._positions || !mesh._normals || mesh.VertexCount() > Most)
    return flat;
  FlatTriangles triangles = FlatTriangles::Of(*mesh._positions, *mesh._normals,
                                              mesh._indices ? *mesh._indices : std::vector<std::uint32_t>());
  if (triangles.positions.empty() || triangles.positions.size() >= mesh.VertexCount())
    return flat;
  flat._bounds = mesh._bounds;
  flat._positions = Share(std::move(triangles.positions));
  flat._normals = flat._givenNormals = Share(std::move(triangles.normals));
  flat._indices = Share(std::move(triangles.indices));
  return flat;
}

/// Small meshes are repeated: GL draws a few large instances faster than many small ones.
void InstancedMesh::CompleteLevels() {
  constexpr std::size_t Vertices = 256; // of what is drawn as one instance
  if (_levels.size() > InstanceSelection::MostLevels)
    throw std::invalid_argument("InstancedMesh: levels: expected at most " +
                                std::to_string(InstanceSelection::MostLevels) + ", got " +
                                std::to_string(_levels.size()));
  if (std::any_of(_levels.begin(), _levels.end(),
                  [](const Level& p_level) { return p_level.facing == Level::Facing::Sphere; }))
    _squares = Square().Repeated(SquareCopies);
  _repeated.clear();
  _areFlat.clear();
  _copies.clear();
  _bodies.clear();
  for (const Level& level : _levels) {
    _bodies.push_back(BodyOf(level));
    const GpuMesh flat = FlatMesh(level), &mesh = flat.Empty() ? level.mesh : flat;
    const std::size_t vertices = std::max<std::size_t>(mesh.VertexCount(), 1);
    _areFlat.push_back(!flat.Empty());
    _repeated.push_back(mesh.Repeated(Vertices / vertices));
    _copies.push_back(std::max<std::size_t>(_repeated.back().VertexCount() / vertices, 1));
  }
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
  std::vector<float> directions = StoredDirections(p_directions);
  _undirected = CountUndirected(directions);
  _axes = Share(std::move(directions));
  _axisFloats = DirectionFloats;
  const double length = Length(p_up);
  _up = length > 0 && std::isfinite(length) ? p_up / length : Point();
}

void InstancedMesh::UpdateRotations(const std::vector<Matrix3>& p_rotations) {
  RequireLength("rotations", p_rotations.size());
  _axes = Share(StoredRotations(p_rotations));
  _axisFloats = RotationFloats;
  _undirected = 0;
}

void InstancedMesh::UpdateValues(const Array1& p_values) {
  RequireLength("values", p_values.Count());
  _values = Share(StoredValues(p_values));
}

void InstancedMesh::UpdateColors(std::vector<Rgba> p_colors) {
  RequireLength("colours", p_colors.size());
  _leastAlpha = 255;
  for (const Rgba& color : p_colors)
    _leastAlpha = std::min(_leastAlpha, color[3]);
  _colors = Share(std::move(p_colors));
}

Types::BoundingBox_Base<double> InstancedMesh::Bounds() const {
  double reach = 0;
  for (const Body& body : _bodies)
    reach = std::max(reach, body.reach);
  Types::BoundingBox_Base<double> bounds;
  for (std::size_t i = 0; i < Count(); ++i) {
    const Point position = ToPoint((*_positions)[i]);
    const double size = _sizes ? static_cast<double>((*_sizes)[i]) : 1;
    const float* const axis = _axes ? _axes->data() + i * _axisFloats : nullptr;
    if ((*_positions)[i].x == MissingValue || !(size > 0) ||
        (axis != nullptr && axis[0] == 0 && axis[1] == 0 && axis[2] == 0))
      continue;
    bounds += position - Point(1, 1, 1) * (reach * size);
    bounds += position + Point(1, 1, 1) * (reach * size);
  }
  return bounds;
}

void InstancedMesh::Release(const Utility::Scoped<Rgl>& p_gl) const {
  for (const Level& level : _levels)
    level.mesh.Release(p_gl);
  for (const GpuMesh& mesh : _repeated)
    mesh.Release(p_gl);
  _squares.Release(p_gl);
  _buffers.Release(p_gl);
}

} // namespace Vek::Chart::Scene
