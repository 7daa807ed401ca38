#pragma once

namespace Vek::Chart::Ogl {

/// The kinds of primitive that the indices of a vertex buffer describe.
struct VertexBuffer {
  /// The kind of primitive.
  enum PrimitiveType : unsigned int {
    Points = 0,         ///< one index per primitive
    LineSegments = 1,   ///< two indices per primitive
    LineStrip = 2,      ///< one polyline through all indices
    Triangles = 3,      ///< three indices per primitive
    TriangleStrip = 4,  ///< each index from the third on forms a triangle with the two before
    LinesAdjacency = 5, ///< four indices per primitive
    QuadStrip = 6,      ///< each pair from the second on forms a quad with the pair before
    Quads = 7,          ///< four indices per primitive
    Undecided = 8,      ///< not set
  };
};

} // namespace Vek::Chart::Ogl
