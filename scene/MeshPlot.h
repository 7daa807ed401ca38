#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"

#include "platform/types/Vector.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene {

/// Triangles between points of one's own: a simulated surface, a model of a file. Made by `Figure::Mesh`.
///
/// Elements are vertices; those that no triangle uses have no influence. Normals are computed (see
/// `Library::ComputeNormals`), for the stretched or logarithmic axes that the mesh is drawn with; the surface has an
/// edge where triangles use different vertices at one position. Both sides are lit. Triangles without values or colour
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
  /// Replaces the positions by as many others. Where vertices are missing before and after alike, indices are not
  /// uploaded.
  MeshPlot& UpdatePositions(const Array3& p_positions);

private:
  friend class Figure;
  MeshPlot(std::vector<Types::Vector3_Base<double>> p_positions, std::vector<std::uint32_t> p_indices);
};

} // namespace Vek::Chart::Scene
