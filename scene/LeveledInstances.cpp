#include "scene/LeveledInstances.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace Vek::Chart::Scene {

namespace {

using Library::ObjModel;
using Point = Types::Vector3_Base<double>;
using Triangle = std::array<std::uint32_t, 3>;

/// A sphere of radius 1 whose triangles are of even size, and its longest edge.
class Icosphere {
public:
  Icosphere() {
    const double g = (1 + std::sqrt(5.0)) / 2;
    for (const Point& corner : {Point(-1, g, 0),
                                {1, g, 0},
                                {-1, -g, 0},
                                {1, -g, 0},
                                {0, -1, g},
                                {0, 1, g},
                                {0, -1, -g},
                                {0, 1, -g},
                                {g, 0, -1},
                                {g, 0, 1},
                                {-g, 0, -1},
                                {-g, 0, 1}})
      _points.push_back(Normalize(corner));
  }

  /// Makes four triangles of each.
  void Divide() {
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> middles;
    const auto middle = [&](std::uint32_t p_a, std::uint32_t p_b) {
      const auto [place, added] =
          middles.try_emplace(std::minmax(p_a, p_b), static_cast<std::uint32_t>(_points.size()));
      if (added)
        _points.push_back(Normalize(_points[p_a] + _points[p_b]));
      return place->second;
    };
    std::vector<Triangle> divided;
    for (const auto& [a, b, c] : _triangles) {
      const std::uint32_t ab = middle(a, b);
      const std::uint32_t bc = middle(b, c);
      const std::uint32_t ca = middle(c, a);
      divided.insert(divided.end(), {{a, ab, ca}, {b, bc, ab}, {c, ca, bc}, {ab, bc, ca}});
    }
    _triangles = std::move(divided);
  }

  /// How far the outline may lie within the circle.
  double Flatness() const {
    double longest = 0;
    for (const auto& [a, b, c] : _triangles)
      for (const auto& [from, to] : {std::pair(a, b), {b, c}, {c, a}})
        longest = std::max(longest, Length(_points[to] - _points[from]));
    return 1 - std::sqrt(1 - longest * longest / 4);
  }

  ObjModel Model() const {
    ObjModel model;
    for (const Point& point : _points)
      model.Vertices()->push_back(
          Ogl::Vec3<float>{static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z)});
    model.SetNormals(boost::make_shared<ObjModel::VertexArray>(*model.Vertices()));
    for (const Triangle& triangle : _triangles)
      model.DefaultGroup()->indices.insert(model.DefaultGroup()->indices.end(), triangle.begin(), triangle.end());
    model.SetPrimitiveType(Ogl::VertexBuffer::Triangles);
    return model;
  }

private:
  std::vector<Point> _points;
  std::vector<Triangle> _triangles = {{0, 11, 5}, {0, 5, 1},  {0, 1, 7},   {0, 7, 10}, {0, 10, 11},
                                      {1, 5, 9},  {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
                                      {3, 9, 4},  {3, 4, 2},  {3, 2, 6},   {3, 6, 8},  {3, 8, 9},
                                      {4, 9, 5},  {2, 4, 11}, {6, 2, 10},  {8, 6, 7},  {9, 8, 1}};
};

} // namespace

std::vector<ModelLevel> CoarseSpheres(Library::ModelCache& p_cache) {
  constexpr double Error = 0.2;
  constexpr int Levels = 3;
  Types::BoundingBox_Base<double> unit;
  unit += Point(-1, -1, -1);
  unit += Point(1, 1, 1);
  Icosphere sphere;
  std::vector<ModelLevel> levels;
  for (int i = 0; i < Levels; ++i) {
    Mesh mesh = MeshOf(p_cache, p_cache.Register(sphere.Model()));
    mesh.box = unit; // that of the sphere, which some have no corners on
    // An instance's size is the diagonal of its box.
    levels.push_back({mesh, Error / sphere.Flatness() * Length(unit.Extent())});
    sphere.Divide();
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
