#include "apps/gallery/FlowLines.h"

#include "library/VectorSymbol.h"

#include <cmath>

namespace Vek::Chart::Gallery {

using Point = Types::Vector3_Base<double>;

void ArrowHeads::AddAlong(const std::vector<TubeMesh::Point>& p_line, double p_every, double p_size) {
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

void ArrowHeads::AddAtEnd(const std::vector<TubeMesh::Point>& p_line, double p_size) {
  if (p_line.size() > 1)
    Add(p_line.back(), p_line.back().position - p_line[p_line.size() - 2].position, p_size);
}

void ArrowHeads::Add(const TubeMesh::Point& p_point, const Point& p_direction, double p_size) {
  if (!(Length(p_direction) > 0))
    return;
  _positions.push_back(p_point.position);
  _rotations.push_back(TubeMesh::Transported({}, Normalize(p_direction)));
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

const GpuMesh& ArrowHeads::Mesh() const {
  if (_positions.empty() || !_mesh.Empty())
    return _mesh;
  Library::VectorSymbol::Instances instances;
  instances.count = _positions.size();
  instances.positions = _positions.data();
  instances.rotations = _rotations.data();
  instances.sizes = _sizes.data();
  instances.texCoords = _values.data();
  Ogl::VertexData data;
  Library::VectorSymbol(_glyph.shape, 16).OrientShapes(instances, 0.5, _glyph.size, data);
  _mesh = GpuMesh(data);
  return _mesh;
}

void DrawColored(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors,
                 const std::vector<const GpuMesh*>& p_meshes) {
  const auto map = p_colors.Bind(p_gl);
  for (const GpuMesh* mesh : p_meshes)
    mesh->Draw(p_gl);
}

} // namespace Vek::Chart::Gallery
