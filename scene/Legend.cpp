#include "scene/Legend.h"

#include "scene/private/Elided.h"
#include "scene/private/LegendShapes.h"

#include <algorithm>
#include <cmath>
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

/// An entry in a column.
struct Row {
  const Legend::Entry* entry; ///< null for the line that counts what is left out
  QString text;
  double height; ///< in points
};

struct Column {
  std::vector<Row> rows;
  double width = 0; ///< of the widest name, in points
};

/// Makes the columns at most `p_width` wide without marks and gaps: of the last ones, some are left out if not even
/// `p_least` is left for each, and then those that are wider than their share get one width.
void Narrow(std::vector<Column>& p_columns, double p_width, double p_gap, double p_least) {
  double least = -p_gap;
  std::size_t count = 0;
  for (; count < p_columns.size(); ++count) {
    least += std::min(p_columns[count].width, p_least) + p_gap;
    if (count > 0 && least > p_width)
      break;
  }
  if (count < p_columns.size()) {
    std::size_t more = 1;
    for (std::size_t i = count; i < p_columns.size(); ++i)
      more += p_columns[i].rows.size();
    p_columns.resize(count);
    Row& last = p_columns.back().rows.back();
    last = {nullptr, QStringLiteral("\u2026 %1 more").arg(more), last.height};
  }
  std::vector<double> widths;
  for (const Column& column : p_columns)
    widths.push_back(column.width);
  std::sort(widths.begin(), widths.end());
  double room = p_width - p_gap * static_cast<double>(count - 1), share = 0;
  for (std::size_t i = 0; i < count; ++i) {
    share = std::max(room / static_cast<double>(count - i), p_least);
    room -= std::min(widths[i], share);
  }
  for (Column& column : p_columns)
    column.width = std::min(column.width, share);
}

} // namespace

LegendBlock Legend::Layout(double p_height, const Theme& p_theme, double p_pointSize) const {
  return Layout(p_height, HUGE_VAL, p_theme, p_pointSize);
}

LegendBlock Legend::Layout(double p_height, double p_width, const Theme& p_theme, double p_pointSize) const {
  if (!(p_height > 0))
    throw std::invalid_argument("A legend needs a height above 0, got " + std::to_string(p_height));
  constexpr double LeastWidth = 8; // of a name, in heights of letters
  LegendBlock block(p_pointSize);
  const TextStyle style = p_theme.SmallStyle();
  const double gap = style.size / 2, mark = MarkWidth * style.size + gap;
  block.Add(LegendBlock::String{title, {0, 0}, {0, 1}, p_theme.BodyStyle()});
  const double top = title.isEmpty() ? 0 : block.Bounds().bottom - gap / 2;
  std::vector<Column> columns;
  double bottom = top, overhang = 0;
  for (const Entry& entry : entries) {
    if (entry.name.isEmpty())
      continue;
    const QSizeF size = TextRenderer::Size(entry.name, style, p_pointSize);
    const double height = std::max(size.height(), style.size) * 1.25;
    if (columns.empty() || (bottom < top && bottom - height < -p_height)) {
      columns.emplace_back();
      bottom = top;
    }
    columns.back().rows.push_back({&entry, entry.name, height});
    columns.back().width = std::max(columns.back().width, size.width());
    bottom -= height;
    if (entry.mark == Mark::Line) // half of the width beyond its ends
      overhang = std::max(overhang, entry.width / 2);
  }
  if (!columns.empty())
    Narrow(columns, p_width - mark - overhang, 2 * gap + mark, LeastWidth * style.size);
  double left = 0;
  for (const Column& column : columns) {
    double y = top;
    for (const Row& row : column.rows) {
      const double middle = y - row.height / 2;
      if (row.entry != nullptr)
        AddMark(block, *row.entry, {left + MarkWidth * style.size / 2, middle}, style.size);
      const QString text =
          row.entry != nullptr ? Private::Elided(row.text, column.width, style, p_pointSize) : row.text;
      block.Add(LegendBlock::String{text, {left + mark, middle}, {0, 0.5}, style});
      y -= row.height;
    }
    left += mark + column.width + 2 * gap;
  }
  return block;
}

} // namespace Vek::Chart::Scene
