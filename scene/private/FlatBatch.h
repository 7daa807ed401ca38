#pragma once

#include "scene/private/LetterPage.h"
#include "scene/private/VertexStream.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QColor>
#include <QPoint>
#include <QSize>

#include <array>
#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Triangles in pixels, filled or with letters, drawn in the order in which they were added: one upload, and one draw
/// call for each change of the page that letters lie on, of which a frame has few.
class FlatBatch {
public:
  /// In pixels from the lower left corner of the viewport.
  using Position = Types::Vector2_Base<double>;
  /// Corners in order. The diagonal is that which Mesa draws GL_QUADS with.
  using Quad = std::array<Position, 4>;

  /// Fills a triangle.
  void Add(const Position& p_a, const Position& p_b, const Position& p_c, const QColor& p_color);
  /// Fills a quad whose first two corners have another colour than the last two.
  void Add(const Quad& p_quad, const QColor& p_first, const QColor& p_last);
  /// A quad of one colour with the coverage of an image on a page, upright if its corners begin at the lower left.
  void Add(const Quad& p_quad, const QColor& p_color, const boost::shared_ptr<LetterPage>& p_page,
           const QPoint& p_corner, const QSize& p_size);

  /// Draws all in FlatState and forgets it. GL state is restored. What lies on a page for which GL makes no texture is
  /// left out with what was added between its letters.
  void Draw(Utility::Scoped<Rgl>& p_gl);

  /// Vertices that have yet to be drawn.
  std::size_t Size() const { return _vertices.size(); }

private:
  using Vertex = VertexStream::Vertex;
  /// Consecutive vertices whose letters lie on one page.
  struct Run {
    boost::shared_ptr<LetterPage> page; ///< null without letters
    std::size_t end;
  };

  Run& LastRun();
  void Add(const std::array<Vertex, 4>& p_quad);
  std::vector<Vertex> TakeScaled();

  std::vector<Vertex> _vertices; ///< texture coordinates in texels, whose pages grow
  std::vector<Run> _runs;
};

} // namespace Vek::Chart::Scene::Private
