#include "scene/Legend.h"

#include "scene/private/LegendShapes.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

using Position = LegendBlock::Position;

constexpr double MarkWidth = 1.6; ///< in heights of letters

/// The mark of an entry about the middle of its place.
void AddMark(LegendBlock& p_block, const Legend::Entry& p_entry, const Position& p_middle, double p_size) {
  const double half = p_size * MarkWidth / 2;
  const auto polygon = [&](const std::vector<Position>& p_corners, double p_scale) {
    std::vector<Position> corners;
    for (const Position& corner : p_corners)
      corners.push_back({p_middle.x + p_scale * corner.x, p_middle.y + p_scale * corner.y});
    p_block.Add(LegendBlock::Shape{corners, p_entry.color});
  };
  switch (p_entry.mark) {
  case Legend::Mark::Line:
    p_block.Add(LegendBlock::Line{
        {{p_middle.x - half, p_middle.y}, {p_middle.x + half, p_middle.y}}, p_entry.width, p_entry.color});
    break;
  case Legend::Mark::Dot:
    p_block.Add(Private::Disk(p_middle, p_size * 0.3, p_entry.color));
    break;
  case Legend::Mark::Patch:
    polygon({{-half, -p_size * 0.35}, {half, -p_size * 0.35}, {half, p_size * 0.35}, {-half, p_size * 0.35}}, 1);
    break;
  case Legend::Mark::Glyph:
    for (const auto& corners : p_entry.glyph)
      polygon(corners, p_size);
    if (p_entry.glyph.empty())
      Private::AddArrow(p_block, {p_middle.x - half, p_middle.y}, 2 * half, p_size * 0.7, p_entry.color);
    break;
  }
}

} // namespace

LegendBlock Legend::Layout(double p_height, const Theme& p_theme, double p_pointSize) const {
  if (!(p_height > 0))
    throw std::invalid_argument("A legend needs a height above 0, got " + std::to_string(p_height));
  LegendBlock block(p_pointSize);
  const TextStyle style = p_theme.SmallStyle();
  const double gap = style.size / 2;
  block.Add(LegendBlock::String{title, {0, 0}, {0, 1}, p_theme.BodyStyle()});
  const double top = title.isEmpty() ? 0 : block.Bounds().bottom - gap / 2;
  double left = 0, y = top, right = 0;
  for (const Entry& entry : entries) {
    if (entry.name.isEmpty())
      continue;
    const QSizeF size = TextRenderer::Size(entry.name, style, p_pointSize);
    const double height = std::max(size.height(), style.size) * 1.25;
    if (y < top && y - height < -p_height) { // the next column
      left = right + 2 * gap;
      y = top;
    }
    const double middle = y - height / 2;
    AddMark(block, entry, {left + MarkWidth * style.size / 2, middle}, style.size);
    block.Add(LegendBlock::String{entry.name, {left + MarkWidth * style.size + gap, middle}, {0, 0.5}, style});
    right = std::max(right, left + MarkWidth * style.size + gap + size.width());
    y -= height;
  }
  return block;
}

} // namespace Vek::Chart::Scene
