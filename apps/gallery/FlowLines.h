#pragma once

#include "scene/GpuMesh.h"
#include "scene/TubeMesh.h"

#include "library/ColorMap.h"

#include "platform/model/Symbol.h"
#include "platform/ogl/Rgl.h"

#include <vector>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// Arrow heads that tell which way lines run, as one layer of glyphs.
class ArrowHeads {
public:
  /// Heads at every `p_every` of a line's length, the first half as far from its start, `p_size` times as wide as the
  /// line is there. A line too short for any gets none.
  void AddAlong(const std::vector<TubeMesh::Point>& p_line, double p_every, double p_size);
  /// A head at the end of a line, pointing on.
  void AddAtEnd(const std::vector<TubeMesh::Point>& p_line, double p_size);

  /// The glyphs that a head can be; the first one is taken until another is set.
  struct Glyph {
    Model::Symbol::Shape shape;
    double size; ///< of a head, relative to the first one
  };
  static const std::vector<Glyph>& Glyphs();
  /// A number that is not in the list changes nothing.
  void SetGlyph(std::size_t p_index);

  /// Empty when there are no heads. Valid until a head is added or a glyph is set.
  const GpuMesh& Mesh() const;

private:
  void Add(const TubeMesh::Point& p_point, const Types::Vector3_Base<double>& p_direction, double p_size);

  std::vector<Types::Vector3_Base<double>> _positions;
  std::vector<Types::Matrix3> _rotations;
  std::vector<double> _sizes;
  std::vector<double> _values;
  Glyph _glyph = Glyphs().front();
  mutable GpuMesh _mesh; ///< empty when it is to be built
};

/// Draws meshes coloured by their texture coordinate; needs lighting (see DirectionalLight). Skips empty ones.
void DrawColored(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors,
                 const std::vector<const GpuMesh*>& p_meshes);

} // namespace Vek::Chart::Gallery
