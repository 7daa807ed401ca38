#pragma once

namespace Vek::Chart::Ogl {

/// Names what the indices of a vertex buffer describe.
struct VertexBuffer {
  enum PrimitiveType : unsigned int {
    Points = 0,
    LineSegments = 1,
    LineStrip = 2,
    Triangles = 3,
    TriangleStrip = 4,
    LinesAdjacency = 5, ///< four indices a primitive
    QuadStrip = 6,
    Quads = 7,     ///< four indices a primitive
    Undecided = 8, ///< not yet known
  };
};

} // namespace Vek::Chart::Ogl
