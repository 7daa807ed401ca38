#include "scene/private/FlatBatch.h"

#include "platform/types/ColorChannels.h"

#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

VertexStream::Vertex VertexAt(const FlatBatch::Position& p_position, const QColor& p_color) {
  const auto [red, green, blue, alpha] = Types::ColorChannels(p_color);
  VertexStream::Vertex vertex(p_position.x, p_position.y, 0);
  vertex.color = {static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue),
                  static_cast<float>(alpha)};
  return vertex;
}

} // namespace

FlatBatch::Run& FlatBatch::LastRun() {
  if (_runs.empty())
    _runs.push_back({nullptr, _vertices.size()});
  return _runs.back();
}

void FlatBatch::Add(const Position& p_a, const Position& p_b, const Position& p_c, const QColor& p_color) {
  Run& run = LastRun();
  _vertices.insert(_vertices.end(), {VertexAt(p_a, p_color), VertexAt(p_b, p_color), VertexAt(p_c, p_color)});
  run.end = _vertices.size();
}

void FlatBatch::Add(const std::array<Vertex, 4>& p_quad) {
  Run& run = LastRun();
  const auto& [a, b, c, d] = p_quad;
  _vertices.insert(_vertices.end(), {a, b, d, b, c, d});
  run.end = _vertices.size();
}

void FlatBatch::Add(const Quad& p_quad, const QColor& p_first, const QColor& p_last) {
  Add({VertexAt(p_quad[0], p_first), VertexAt(p_quad[1], p_first), VertexAt(p_quad[2], p_last),
       VertexAt(p_quad[3], p_last)});
}

void FlatBatch::Add(const Quad& p_quad, const QColor& p_color, const boost::shared_ptr<LetterPage>& p_page,
                    const QPoint& p_corner, const QSize& p_size) {
  Run& run = LastRun();
  if (!run.page) // what was only filled so far lies on any page
    run.page = p_page;
  else if (run.page != p_page)
    _runs.push_back({p_page, _vertices.size()});
  std::array<Vertex, 4> quad;
  for (std::size_t i = 0; i < quad.size(); ++i) {
    const bool isRight = i == 1 || i == 2, isUpper = i >= 2;
    quad[i] = VertexAt(p_quad[i], p_color);
    quad[i].texCoord = {static_cast<float>(p_corner.x() + (isRight ? p_size.width() : 0)),
                        static_cast<float>(p_corner.y() + (isUpper ? p_size.height() : 0)), 0};
  }
  Add(quad);
}

/// The vertices with texture coordinates in [0, 1].
std::vector<FlatBatch::Vertex> FlatBatch::TakeScaled() {
  std::size_t i = 0;
  for (const Run& run : _runs)
    for (; i < run.end; ++i)
      if (run.page) {
        _vertices[i].texCoord[0] /= static_cast<float>(run.page->Width());
        _vertices[i].texCoord[1] /= static_cast<float>(run.page->Height());
      }
  return std::exchange(_vertices, {});
}

void FlatBatch::Draw(Utility::Scoped<Rgl>& p_gl) {
  if (_vertices.empty())
    return;
  const std::vector<Vertex> vertices = TakeScaled();
  const std::vector<Run> runs = std::exchange(_runs, {});
  const VertexStream stream(*p_gl, vertices, VertexStream::TexCoords | VertexStream::Colors);
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
  p_gl->ActiveTexture(RGL_TEXTURE0);
  std::size_t begin = 0;
  for (const Run& run : runs) {
    if (!run.page || run.page->Bind(p_gl)) // otherwise there was a report
      stream.Draw(RGL_TRIANGLES, begin, run.end - begin);
    begin = run.end;
  }
}

} // namespace Vek::Chart::Scene::Private
