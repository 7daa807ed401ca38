#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Property.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/array.hpp>

namespace Vek::Chart::Library {

/// The cube from 0 to 1 in model units, filled by a 3-D texture. Every corner is sent with its own position as
/// three-dimensional texture coordinate, so that the bound texture fills the cube exactly. No normals. Faces run
/// counter-clockwise seen from outside.
///
/// Leaves the current texture coordinate of its unit changed.
///
/// \snippet DrawingSnippets.cpp TexturedCube
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API TexturedCube {
public:
  /// Four corners of the cube, in drawing order.
  class VEK_LIBRARY_API CubeFace {
  public:
    CubeFace() = default; ///< a face without corners
    /// A face of the corners with these indices.
    CubeFace(int p_a, int p_b, int p_c, int p_d)
        : indices(boost::array<int, 4>{{p_a, p_b, p_c, p_d}}) {}

    Types::Property<boost::array<int, 4>> indices; ///< into the cube's corners

    /// Draws one quad. A face without corners is reported and drawn at corner 0; an index out of range throws
    /// std::out_of_range.
    void operator()(Utility::Scoped<Rgl>& p_gl, const boost::array<Types::Vector3_Base<double>, 8>& p_corners,
                    Rgl::TexCoordIndex p_index);
  };

  /// The coordinates go to texture unit RGL_TEXTURE0 + p_index.
  explicit TexturedCube(Rgl::TexCoordIndex p_index);

  boost::array<Types::Vector3_Base<double>, 8> corners; ///< initially those of the unit cube
  boost::array<CubeFace, 6> faces;                      ///< outward, counter-clockwise
  Rgl::TexCoordIndex texCoordIndex;                     ///< the texture unit of the coordinates

  /// Draws all faces.
  void operator()(Utility::Scoped<Rgl>& p_gl);
};

} // namespace Vek::Chart::Library
