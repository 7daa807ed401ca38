#include "apps/gallery/FlowLines.h"

#include "library/VectorSymbol.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

using Point = Types::Vector3_Base<double>;

namespace {

/// Whether the straight piece from one point to another passes by a third one between them.
bool Covers(const SweepPoint& p_from, const SweepPoint& p_to, const SweepPoint& p_between) {
  constexpr double Error = 0.05; // of the width
  constexpr double ValueError = 0.01;
  const Point along = p_to.position - p_from.position;
  const Point way = p_between.position - p_from.position;
  const double share = std::clamp(Dot(way, along) / std::max(Dot(along, along), 1e-300), 0.0, 1.0);
  const auto at = [share](double p_a, double p_b) { return p_a + (p_b - p_a) * share; };
  return Length(way - along * share) <= Error * p_between.width &&
         std::abs(at(p_from.width, p_to.width) - p_between.width) <= Error * p_between.width &&
         std::abs(at(p_from.value, p_to.value) - p_between.value) <= ValueError;
}

} // namespace

std::vector<SweepPoint> Thinned(const std::vector<SweepPoint>& p_line) {
  constexpr std::size_t Longest = 32; // points in a piece
  std::vector<SweepPoint> thinned;
  std::size_t from = 0;
  for (std::size_t i = 0; i < p_line.size(); ++i) {
    const auto begin = p_line.begin() + static_cast<std::ptrdiff_t>(from);
    const std::size_t count = i - from; // to the point
    const bool straight =
        count > 0 && count < Longest && i + 1 < p_line.size() &&
        std::all_of(begin + 1, begin + static_cast<std::ptrdiff_t>(count) + 1,
                    [&](const SweepPoint& p_between) { return Covers(p_line[from], p_line[i + 1], p_between); });
    if (straight)
      continue;
    thinned.push_back(p_line[i]);
    from = i;
  }
  return thinned;
}

void ArrowHeads::AddAlong(const std::vector<SweepPoint>& p_line, double p_every, double p_size) {
  double arc = 0;
  double next = p_every / 2;
  for (std::size_t i = 1; i < p_line.size(); ++i) {
    const Point step = p_line[i].position - p_line[i - 1].position;
    arc += Length(step);
    if (arc < next)
      continue;
    Add(p_line[i], step, p_size);
    next = arc + p_every;
  }
}

void ArrowHeads::AddAtEnd(const std::vector<SweepPoint>& p_line, double p_size) {
  if (p_line.size() > 1)
    Add(p_line.back(), p_line.back().position - p_line[p_line.size() - 2].position, p_size);
}

void ArrowHeads::Add(const SweepPoint& p_point, const Point& p_direction, double p_size) {
  if (!(Length(p_direction) > 0))
    return;
  _positions.push_back(p_point.position);
  _rotations.push_back(Transported({}, Normalize(p_direction)));
  _sizes.push_back(p_point.width * p_size);
  _values.push_back(p_point.value);
  _mesh = {};
}

const std::vector<ArrowHeads::Glyph>& ArrowHeads::Glyphs() {
  static const std::vector<Glyph> Glyphs = {{Model::Symbol::ShapeArrowHead3D, 1}, {Model::Symbol::ShapeCone, 1},
                                            {Model::Symbol::ShapeArrow3D, 0.8},   {Model::Symbol::ShapeCylinder, 0.7},
                                            {Model::Symbol::ShapeSphere, 0.8},    {Model::Symbol::ShapeCube, 0.6}};
  return Glyphs;
}

void ArrowHeads::SetGlyph(std::size_t p_index) {
  if (p_index >= Glyphs().size())
    return;
  _glyph = Glyphs()[p_index];
  _mesh = {};
}

const Ogl::VertexData& ArrowHeads::Mesh() const {
  if (_positions.empty() || !_mesh.Vertices().Empty())
    return _mesh;
  Library::VectorSymbol::Instances instances;
  instances.count = _positions.size();
  instances.positions = _positions.data();
  instances.rotations = _rotations.data();
  instances.sizes = _sizes.data();
  instances.texCoords = _values.data();
  Library::VectorSymbol(_glyph.shape, 16).OrientShapes(instances, 0.5, _glyph.size, _mesh);
  return _mesh;
}

void DrawColored(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors,
                 const std::vector<const Ogl::VertexData*>& p_meshes) {
  const auto bound = p_colors.Bind(p_gl);
  for (const Ogl::VertexData* mesh : p_meshes)
    if (!mesh->Vertices().Empty())
      mesh->Draw(p_gl);
}

} // namespace Vek::Chart::Gallery
