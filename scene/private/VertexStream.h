#pragma once

#include "platform/ogl/BufferPool.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Vertices that differ from frame to frame, in a buffer of their own, bound to the fixed vertex attributes while the
/// object lives. Releasing it restores the client state and the current colour and texture coordinates, which arrays
/// leave undefined, and frees the buffer.
///
/// What stays the same from frame to frame is better kept in a GpuMesh.
///
/// Errors: a buffer that GL does not make or map is reported, and nothing is drawn.
class VertexStream {
public:
  /// Single precision, as GL takes it from an array and from glVertex3d alike.
  struct Vertex {
    std::array<float, 3> position{};
    std::array<float, 3> texCoord{};
    std::array<float, 4> color{}; ///< red, green, blue, alpha in [0, 1]

    Vertex() = default;
    /// At a position.
    Vertex(double p_x, double p_y, double p_z)
        : position{static_cast<float>(p_x), static_cast<float>(p_y), static_cast<float>(p_z)} {}
    /// At a point.
    explicit Vertex(const Types::Vector3_Base<double>& p_point)
        : Vertex(p_point.x, p_point.y, p_point.z) {}
  };
  /// The attributes beside positions that are read from the vertices; others have their current values.
  enum Attributes : unsigned int { Positions = 0, TexCoords = 1, Colors = 2 };

  /// A rectangle in the plane z = 0 as one of RGL_QUADS, with texture coordinates from (0, 0) at the lower left to
  /// (1, 1).
  static std::vector<Vertex> Rectangle(double p_left, double p_bottom, double p_right, double p_top);

  /// Uploads and binds the vertices. Texture coordinates are those of unit 0.
  VertexStream(const Rgl& p_gl, const std::vector<Vertex>& p_vertices, unsigned int p_attributes);

  /// Draws `p_count` vertices from `p_first` on, which must exist, as primitives of a mode of GL.
  void Draw(Ogl::GlEnum p_mode, std::size_t p_first, std::size_t p_count) const;
  /// Draws all vertices as primitives of a mode.
  void Draw(Ogl::GlEnum p_mode) const { Draw(p_mode, 0, _buffer.Count() / sizeof(Vertex)); }

private:
  const Rgl& _gl;
  Ogl::Buffer<unsigned char> _buffer; ///< empty without vertices and after a report
  boost::shared_ptr<void> _current;
  boost::shared_ptr<void> _arrays;
};

} // namespace Vek::Chart::Scene::Private
