#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"

namespace Vek::Chart::Scene {

namespace Private {
struct MeshData;
}

/// Triangles between points of one's own: a simulated surface, a model of a file. Made by `Figure::Mesh`.
///
/// Elements are vertices; those that no triangle uses have no influence. Both sides are lit.
///
/// Normals are those of the file, or computed (see `Library::ComputeNormals`), in each case for the stretched or
/// logarithmic axes that the mesh is drawn with. Computed ones have an edge where triangles use different vertices at
/// one position.
///
/// Colours of a file: those of its vertices times the diffuse ones of its materials, where any of them is not the
/// default; and diffuse textures, repeated and with mip levels, times the diffuse colour. Both count until `ColorBy` or
/// `Color` is called. A texture that cannot be read is noted. Opacities of materials are not drawn. Other triangles
/// have one colour of the plot.
///
/// A triangle with a vertex that is not finite, outside of the figure's limits or not above 0 on a logarithmic axis is
/// left out; the figure notes those vertices.
///
/// \snippet SceneFigureSnippets.cpp MeshPlot
/// \image html parts/MeshPlot.png
/// \ingroup plots
class VEK_SCENE_API MeshPlot : public ColoredPlot<MeshPlot> {
public:
  /// Colours of the file again, the default where it has any.
  MeshPlot& ColorByFile();

  /// Replaces the positions by as many others; normals are computed from then on. Where vertices are missing before and
  /// after alike, indices are not uploaded.
  MeshPlot& UpdatePositions(const Array3& p_positions);

private:
  friend class Figure;
  explicit MeshPlot(Private::MeshData p_data);
};

} // namespace Vek::Chart::Scene
