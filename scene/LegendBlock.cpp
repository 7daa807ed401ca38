#include "scene/LegendBlock.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene {

namespace {

using Position = LegendBlock::Position;

constexpr double Pi = 3.14159265358979323846;

Position Moved(const Position& p_position, const Position& p_by) {
  return {p_position.x + p_by.x, p_position.y + p_by.y};
}

std::vector<Position> Moved(std::vector<Position> p_positions, const Position& p_by) {
  for (Position& position : p_positions)
    position = Moved(position, p_by);
  return p_positions;
}

Canvas::Rect Moved(const Canvas::Rect& p_rect, const Position& p_by) {
  return {p_rect.left + p_by.x, p_rect.bottom + p_by.y, p_rect.right + p_by.x, p_rect.top + p_by.y};
}

/// The rectangle around positions, `p_margin` wider on all sides.
Canvas::Rect Around(const std::vector<Position>& p_positions, double p_margin) {
  Canvas::Rect rect{p_positions[0].x, p_positions[0].y, p_positions[0].x, p_positions[0].y};
  for (const Position& position : p_positions) {
    rect.left = std::min(rect.left, position.x);
    rect.right = std::max(rect.right, position.x);
    rect.bottom = std::min(rect.bottom, position.y);
    rect.top = std::max(rect.top, position.y);
  }
  return {rect.left - p_margin, rect.bottom - p_margin, rect.right + p_margin, rect.top + p_margin};
}

} // namespace

void LegendBlock::Extend(const Canvas::Rect& p_rect) {
  if (_isEmpty)
    _bounds = p_rect;
  _isEmpty = false;
  _bounds = {std::min(_bounds.left, p_rect.left), std::min(_bounds.bottom, p_rect.bottom),
             std::max(_bounds.right, p_rect.right), std::max(_bounds.top, p_rect.top)};
}

void LegendBlock::Add(Gradient p_gradient) {
  Extend(p_gradient.rect);
  _gradients.push_back(std::move(p_gradient));
}

void LegendBlock::Add(Shape p_shape) {
  if (p_shape.corners.empty())
    return;
  Extend(Around(p_shape.corners, 0));
  _shapes.push_back(std::move(p_shape));
}

void LegendBlock::Add(Line p_line) {
  if (p_line.positions.empty())
    return;
  Extend(Around(p_line.positions, p_line.width / 2));
  _lines.push_back(std::move(p_line));
}

void LegendBlock::Add(String p_string) {
  if (p_string.text.isEmpty())
    return;
  Extend(BoxOf(p_string));
  _strings.push_back(std::move(p_string));
}

void LegendBlock::Add(const LegendBlock& p_block, const Position& p_position) {
  if (!p_block._isEmpty)
    Extend(Moved(p_block._bounds, p_position));
  for (const Gradient& gradient : p_block._gradients)
    _gradients.push_back({Moved(gradient.rect, p_position), gradient.colors, gradient.isVertical});
  for (const Shape& shape : p_block._shapes)
    _shapes.push_back({Moved(shape.corners, p_position), shape.color});
  for (const Line& line : p_block._lines)
    _lines.push_back({Moved(line.positions, p_position), line.width, line.color});
  for (String string : p_block._strings) {
    string.position = Moved(string.position, p_position);
    _strings.push_back(std::move(string));
  }
}

Canvas::Rect LegendBlock::BoxOf(const String& p_string) const {
  const QSizeF size = TextRenderer::Size(p_string.text, p_string.style, _pointSize);
  const double sine = std::sin(p_string.rotation * Pi / 180), cosine = std::cos(p_string.rotation * Pi / 180);
  std::vector<Position> corners;
  for (const auto& [s, t] : {std::pair(0, 0), {1, 0}, {0, 1}, {1, 1}}) {
    const double x = (s - p_string.anchor.x) * size.width(), y = (t - p_string.anchor.y) * size.height();
    corners.push_back({p_string.position.x + x * cosine - y * sine, p_string.position.y + x * sine + y * cosine});
  }
  return Around(corners, 0);
}

void LegendBlock::Draw(Canvas& p_canvas, const Position& p_origin) const {
  for (const Gradient& gradient : _gradients)
    p_canvas.Bands(Moved(gradient.rect, p_origin), gradient.colors, gradient.isVertical);
  for (const Shape& shape : _shapes)
    p_canvas.Polygon(Moved(shape.corners, p_origin), shape.color);
  for (const Line& line : _lines)
    p_canvas.Polyline(Moved(line.positions, p_origin), line.width, line.color);
  for (const String& string : _strings)
    p_canvas.Text(string.text, Moved(string.position, p_origin), string.anchor, string.style, string.rotation);
}

} // namespace Vek::Chart::Scene
