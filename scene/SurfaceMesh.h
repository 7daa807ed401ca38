#pragma once

#include "scene/Array.h"
#include "scene/Export.h"

#include "platform/ogl/VertexData.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene {

/// The triangles of a height field, with normals, values and coarser levels of detail.
///
/// Grid: heights at all combinations of the positions along two axes of two nodes at least, which ascend or descend,
/// evenly or not. Heights are listed row by row, x fastest: node (i, j) is number i + nx · j. A height that is not
/// finite is a hole.
///
/// Scene: a node with position p lies at (p − origin) · scale, computed in double and rounded to float. The scale
/// stretches components, for example heights ("height × 50"); normals are those of the stretched surface.
///
/// Vertices: one a node, in the order of the nodes, so that the index of a vertex is that of its node. Normals are of
/// unit length and point up (z above 0). They follow from central differences of second order for uneven distances;
/// on borders and beside holes, from the difference with the neighbour that is there. Values are for colouring, the
/// heights unless others are given. A missing node has the lowest height, the normal 0 0 1, the value NaN and no
/// triangle.
///
/// Triangles: two a cell, counter-clockwise seen from above, divided from node (i, j) to node (i + 1, j + 1). A
/// cell with one missing node keeps the triangle of the three others. Level n takes every 2^n-th node, and the last one
/// of each axis; all levels share the vertices.
///
/// Errors: std::invalid_argument for axes that are not in order or not finite, for wrong numbers of heights or values,
/// for more than 2^32 nodes, for a scale in x or y that is 0, for a scale or an origin that is not finite, and for a
/// halo that leaves less than two rows or columns.
///
/// \snippet SceneFieldSnippets.cpp SurfaceMesh
/// \image html parts/SurfaceMesh.png
/// \ingroup plots
struct VEK_SCENE_API SurfaceMesh {
  /// A position or a normal.
  using Vector = Types::Vector3_Base<float>;

  /// How a surface is made.
  struct Options {
    Types::Vector3_Base<double> origin;         ///< subtracted from positions, in double
    Types::Vector3_Base<double> scale{1, 1, 1}; ///< multiplies positions after that
    std::size_t levels = 1;                     ///< at most; levels end where both axes have two nodes. 0 counts as 1.
    /// Rows and columns at each border that count for normals but are left out of the mesh: the nodes of neighbouring
    /// tiles, or of the other end of a periodic field.
    std::size_t halo = 0;
  };

  SurfaceMesh() = default; ///< empty
  /// With heights as values.
  SurfaceMesh(const Array1& p_x, const Array1& p_y, const Array1& p_heights)
      : SurfaceMesh(p_x, p_y, p_heights, Array1(), Options()) {}
  /// `p_values` has as many numbers as `p_heights`, or none: the heights are the values then.
  SurfaceMesh(const Array1& p_x, const Array1& p_y, const Array1& p_heights, const Array1& p_values,
              const Options& p_options);

  std::size_t columns = 0;                        ///< nodes along x, without the halo
  std::size_t rows = 0;                           ///< nodes along y, without the halo
  std::vector<Vector> positions;                  ///< columns · rows, in units of the scene
  std::vector<Vector> normals;                    ///< as many
  std::vector<float> values;                      ///< as many
  std::vector<std::vector<unsigned int>> indices; ///< three a triangle, one list a level, the finest first
  Types::BoundingBox_Base<double> bounds;         ///< of the nodes that are not missing, in units of the scene
  std::size_t missing = 0;                        ///< nodes without a height, halo excluded

  /// Triangles for GL, one record a level, which share positions, normals and values (as texture coordinates of one
  /// component). A level without triangles has no vertices. The arrays move into the records: `positions`, `normals`,
  /// `values` and `indices` are empty afterwards.
  std::vector<Ogl::VertexData> TakeData();
};

} // namespace Vek::Chart::Scene
