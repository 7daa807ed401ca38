#pragma once

#include "scene/Array.h"
#include "scene/Export.h"

#include "platform/ogl/VertexData.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/utility/Threads.h"

#include <vector>

namespace Vek::Chart::Scene {

/// The surfaces of a volume on which its values equal given levels, as triangles.
///
/// Grid: values at all combinations of the positions along three axes of two nodes at least, which ascend or descend,
/// evenly or not. Values are listed with x fastest, then y, then z: node (i, j, k) is number i + nx · (j + ny · k).
/// Values and levels are rounded to float. Values that are not finite are missing; the surface has a border at cells
/// with such a node, and at the sides of the grid.
///
/// Surface: by marching cubes (Lorensen and Cline, Marching cubes: a high resolution 3D surface construction algorithm,
/// 1987). Vertices lie where the surface crosses the edges between nodes, linearly interpolated. On a face whose
/// corners are above and below the level in turn, corners above are separated, in both cells of the face: the surface
/// has no holes. Each edge of a triangle belongs to exactly two triangles, which run along it in opposite directions,
/// or to one at a border. Values equal to the level count as above it, so that triangles at nodes of that value may
/// have no area.
///
/// Orientation: triangles are counter-clockwise seen from smaller values. Normals of unit length point there; they are
/// interpolated from the gradients at the nodes, in units of the scene. A normal is 0 0 0 where the gradient is.
///
/// Scene: a point p of the grid lies at (p − origin) · scale, computed in double and rounded to float.
///
/// Errors: std::invalid_argument for axes that are not in order or not finite, for a wrong number of values, for an
/// origin or a scale that is not finite, for a scale of 0, and for more than 2^32 vertices.
///
/// \snippet SceneFieldSnippets.cpp Isosurface
/// \image html parts/Isosurface.png
/// \ingroup plots
struct VEK_SCENE_API Isosurface {
  /// A position or a normal.
  using Vector = Types::Vector3_Base<float>;

  /// Where a surface lies in the scene.
  struct Options {
    Types::Vector3_Base<double> origin;         ///< subtracted from positions, in double
    Types::Vector3_Base<double> scale{1, 1, 1}; ///< multiplies positions after that; negative ones mirror
  };

  Isosurface() = default; ///< empty
  /// One level, in units of the axes.
  Isosurface(const Array1& p_x, const Array1& p_y, const Array1& p_z, const Array1& p_values, double p_level)
      : Isosurface(p_x, p_y, p_z, p_values, Array1::Constant(p_level, 1), Options()) {}
  /// Several levels, one after another in the arrays. The result does not depend on the number of threads; fewer than
  /// 100,000 nodes start none.
  Isosurface(const Array1& p_x, const Array1& p_y, const Array1& p_z, const Array1& p_values, const Array1& p_levels,
             const Options& p_options, Utility::Threads p_threads = {});

  std::vector<Vector> positions;          ///< in units of the scene
  std::vector<Vector> normals;            ///< one for each position
  std::vector<float> values;              ///< likewise: the level
  std::vector<unsigned int> indices;      ///< three a triangle
  Types::BoundingBox_Base<double> bounds; ///< of the positions

  /// Triangles for GL, with values as texture coordinates of one component. The arrays move out of this object.
  Ogl::VertexData TakeData();
};

} // namespace Vek::Chart::Scene
