#include "scene/LeveledInstances.h"

#include "library/Icosphere.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Vek::Chart::Scene {

namespace {

using Library::ObjModel;
using Point = Types::Vector3_Base<double>;

/// How far an edge may lie within the sphere.
double Flatness(const Library::Icosphere& p_sphere) {
  double longest = 0;
  const auto grow = [&](std::uint32_t p_from, std::uint32_t p_to) {
    longest = std::max(longest, Length(p_sphere.positions[p_to] - p_sphere.positions[p_from]));
  };
  for (std::size_t i = 0; i < p_sphere.indices.size(); i += 3) {
    const std::uint32_t* const corner = p_sphere.indices.data() + i;
    grow(corner[0], corner[1]);
    grow(corner[1], corner[2]);
    grow(corner[2], corner[0]);
  }
  return 1 - std::sqrt(1 - longest * longest / 4);
}

ObjModel ModelOf(const Library::Icosphere& p_sphere) {
  ObjModel model;
  for (const Point& point : p_sphere.positions)
    model.Vertices()->push_back(
        Ogl::Vec3<float>{static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z)});
  model.SetNormals(boost::make_shared<ObjModel::VertexArray>(*model.Vertices()));
  model.DefaultGroup()->indices = p_sphere.indices;
  model.SetPrimitiveType(Ogl::VertexBuffer::Triangles);
  return model;
}

} // namespace

std::vector<ModelLevel> CoarseSpheres(Library::ModelCache& p_cache) {
  constexpr double Error = 0.2;
  constexpr unsigned int Levels = 3;
  Types::BoundingBox_Base<double> unit;
  unit += Point(-1, -1, -1);
  unit += Point(1, 1, 1);
  std::vector<ModelLevel> levels;
  for (unsigned int i = 0; i < Levels; ++i) {
    const Library::Icosphere sphere(i);
    Mesh mesh = MeshOf(p_cache, p_cache.Register(ModelOf(sphere)));
    mesh.box = unit; // that of the sphere, which some have no corners on
    // An instance's size is the diagonal of its box.
    levels.push_back({mesh, Error / Flatness(sphere) * Length(unit.Extent())});
  }
  return levels;
}

LeveledInstances::LeveledInstances(std::vector<Instance> p_instances)
    : _instances(std::move(p_instances)) {}

void LeveledInstances::Draw(Utility::Scoped<Rgl>& p_gl, InstancePainter& p_painter,
                            const std::vector<ModelLevel>& p_levels, const View& p_view,
                            const Library::ColorMap& p_colors) {
  std::vector<std::size_t> levelOf;
  for (const Instance& instance : _instances) {
    const double pixels = instance.size * p_view.camera.PixelsPerUnit(instance.place, p_view.viewport);
    const auto fine = std::find_if(p_levels.begin(), p_levels.end() - 1,
                                   [pixels](const ModelLevel& p_level) { return pixels <= p_level.mostPixels; });
    levelOf.push_back(static_cast<std::size_t>(fine - p_levels.begin()));
  }
  Take(levelOf, p_levels.size());
  for (std::size_t i = 0; i < p_levels.size(); ++i)
    p_painter.Draw(p_gl, p_levels[i].mesh, _levels[i], p_colors);
}

void LeveledInstances::DrawDepths(Utility::Scoped<Rgl>& p_gl, InstancePainter& p_painter,
                                  const std::vector<ModelLevel>& p_levels) {
  if (_levels.size() != p_levels.size())
    Take(std::vector<std::size_t>(_instances.size(), p_levels.size() - 1), p_levels.size());
  for (std::size_t i = 0; i < p_levels.size(); ++i)
    p_painter.DrawDepths(p_gl, p_levels[i].mesh, _levels[i]);
}

void LeveledInstances::Take(const std::vector<std::size_t>& p_levelOf, std::size_t p_count) {
  if (_levels.size() == p_count && _levelOf == p_levelOf)
    return; // as in the picture before
  std::vector<std::vector<Instance>> parts(p_count);
  for (std::size_t i = 0; i < _instances.size(); ++i)
    parts[p_levelOf[i]].push_back(_instances[i]);
  _levels.clear();
  for (std::vector<Instance>& part : parts)
    _levels.emplace_back(std::move(part));
  _levelOf = p_levelOf;
}

} // namespace Vek::Chart::Scene
