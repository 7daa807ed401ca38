#pragma once

namespace Vek::Chart::Ogl {

/// Names what the indices of a vertex buffer describe.
struct VertexBuffer {
  /// The kind of primitive, and how indices make it up.
  enum PrimitiveType : unsigned int {
    Points = 0,         ///< one index a primitive
    LineSegments = 1,   ///< two indices a primitive
    LineStrip = 2,      ///< one line through all indices
    Triangles = 3,      ///< three indices a primitive
    TriangleStrip = 4,  ///< each index from the third on makes a triangle with the two before
    LinesAdjacency = 5, ///< four indices a primitive
    QuadStrip = 6,      ///< each pair from the second on makes a quad with the pair before
    Quads = 7,          ///< four indices a primitive
    Undecided = 8,      ///< not yet known
  };
};

} // namespace Vek::Chart::Ogl
