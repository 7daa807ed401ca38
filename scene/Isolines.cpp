#include "scene/Isolines.h"

#include "scene/private/GridAxis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Vek::Chart::Scene {

namespace {

using Point = Isolines::Line::Vector;

/// The lines of one level. Corners and edges of a cell, the larger values being at the left of a line:
///
///     3 --2-- 2        A line enters through an edge from a corner above the level to one below, counter-clockwise
///     |       |        around the cell, and leaves through an edge from below to above. What leaves one cell enters
///     3       1        its neighbour, since they pass the shared edge in opposite directions.
///     |       |
///     0 --0-- 1
class LevelTracer {
public:
  LevelTracer(const std::vector<double>& p_x, const std::vector<double>& p_y, const std::vector<double>& p_values,
              double p_level, double p_z)
      : _x(p_x)
      , _y(p_y)
      , _values(p_values)
      , _level(p_level)
      , _z(p_z)
      , _mirrored((p_x[1] < p_x[0]) != (p_y[1] < p_y[0]))
      , _topSegments(p_x.size(), None) {}

  void Trace(std::vector<Isolines::Line>& p_lines) {
    FindSegments();
    for (const bool closed : {false, true})
      for (Segment& segment : _segments)
        if (!segment.isUsed && (closed || !segment.hasBefore))
          AddLine(segment, closed, p_lines);
  }

private:
  static constexpr std::size_t None = std::numeric_limits<std::size_t>::max();

  /// A line within a cell.
  struct Segment {
    std::size_t from, to; // edges: twice the node at their lower end, plus one for those along y
    std::size_t next = None;
    bool hasBefore = false;
    bool isUsed = false;
  };

  /// Visits the cells whose corners are not all on the same side of the level.
  void FindSegments() {
    const std::size_t columns = _x.size(), cells = columns - 1;
    std::vector<std::uint8_t> lower(columns), upper(columns), differs((cells + 7) / 8 * 8);
    const auto classify = [&](std::size_t p_row, std::vector<std::uint8_t>& p_above) {
      const double* const row = _values.data() + p_row * columns;
      for (std::size_t i = 0; i < columns; ++i)
        p_above[i] = row[i] >= _level ? 1 : 0;
    };
    classify(0, upper);
    for (std::size_t row = 0; row + 1 < _y.size(); ++row) {
      lower.swap(upper);
      classify(row + 1, upper);
      for (std::size_t i = 0; i < cells; ++i)
        differs[i] = (lower[i] ^ lower[i + 1]) | (lower[i] ^ upper[i]) | (lower[i] ^ upper[i + 1]);
      _leftSegment = None;
      for (std::size_t block = 0; block < cells; block += 8) {
        std::uint64_t any = 0;
        std::memcpy(&any, differs.data() + block, 8);
        for (std::size_t i = block; any != 0 && i < std::min(block + 8, cells); ++i)
          if (differs[i] != 0)
            VisitCell(i, row, {lower[i] != 0, lower[i + 1] != 0, upper[i + 1] != 0, upper[i] != 0});
      }
    }
  }

  void VisitCell(std::size_t p_column, std::size_t p_row, const std::array<bool, 4>& p_above) {
    const std::size_t columns = _x.size(), node = p_row * columns + p_column;
    const std::array<std::size_t, 4> edges = {2 * node, 2 * (node + 1) + 1, 2 * (node + columns), 2 * node + 1};
    const double center =
        _values[node] / 4 + _values[node + 1] / 4 + _values[node + columns] / 4 + _values[node + columns + 1] / 4;
    // Segments of the neighbours that end or start on the cell's edges; those that are visited later get this cell's.
    std::array<std::size_t, 4> others = {_topSegments[p_column], None, None, _leftSegment};
    _topSegments[p_column] = _leftSegment = None;
    if (std::isnan(center)) // a node is missing
      return;
    const auto isIn = [&](std::size_t p_edge) { return p_above[p_edge] && !p_above[(p_edge + 1) % 4]; };
    const auto isOut = [&](std::size_t p_edge) { return !p_above[p_edge] && p_above[(p_edge + 1) % 4]; };
    const bool connected = center >= _level;
    for (std::size_t in = 0; in < 4; ++in) {
      if (!isIn(in))
        continue;
      // In a saddle, the line bends around the corner above before the edge, or around the one below behind it.
      std::size_t out = (in + (connected ? 1 : 3)) % 4;
      while (!isOut(out))
        out = (out + 1) % 4;
      const auto [from, to] = _mirrored ? std::pair(out, in) : std::pair(in, out);
      const std::size_t index = _segments.size();
      _segments.push_back({edges[from], edges[to]});
      if (others[from] != None)
        Link(others[from], index);
      if (others[to] != None)
        Link(index, others[to]);
      for (const std::size_t edge : {from, to})
        if (edge == 1)
          _leftSegment = index;
        else if (edge == 2)
          _topSegments[p_column] = index;
    }
  }

  void Link(std::size_t p_before, std::size_t p_after) {
    _segments[p_before].next = p_after;
    _segments[p_after].hasBefore = true;
  }

  Point Crossing(std::size_t p_edge) const {
    const std::size_t node = p_edge / 2, column = node % _x.size(), row = node / _x.size();
    const bool alongY = p_edge % 2 == 1;
    const double first = _values[node], second = _values[node + (alongY ? _x.size() : 1)];
    const double share = std::clamp((_level - first) / (second - first), 0.0, 1.0);
    const auto between = [share](double p_a, double p_b) { return share < 1 ? p_a + share * (p_b - p_a) : p_b; };
    return {alongY ? _x[column] : between(_x[column], _x[column + 1]), alongY ? between(_y[row], _y[row + 1]) : _y[row],
            _z};
  }

  /// Lines through nodes have several crossings at the same position, of which one is kept.
  void AddLine(Segment& p_first, bool p_closed, std::vector<Isolines::Line>& p_lines) {
    Isolines::Line line{_level, p_closed, {Crossing(p_first.from)}};
    for (Segment* segment = &p_first;;) {
      segment->isUsed = true;
      const Point point = Crossing(segment->to);
      if (point != line.points.back())
        line.points.push_back(point);
      if (segment->next == None || _segments[segment->next].isUsed)
        break;
      segment = &_segments[segment->next];
    }
    if (line.points.size() > 1)
      p_lines.push_back(std::move(line));
  }

  const std::vector<double>& _x;
  const std::vector<double>& _y;
  const std::vector<double>& _values;
  double _level, _z;
  bool _mirrored; // the axes form a left-handed system
  std::vector<Segment> _segments;
  std::size_t _leftSegment = None;       // on the right edge of the cell before, if that was visited
  std::vector<std::size_t> _topSegments; // on the upper edges of the row below, likewise
};

} // namespace

double Isolines::Line::Length() const {
  double length = 0;
  for (std::size_t i = 1; i < points.size(); ++i)
    length += Types::Length(points[i] - points[i - 1]);
  return length;
}

Isolines::Isolines(const Array1& p_x, const Array1& p_y, const Array1& p_values)
    : _x(AxisNodes("Isolines: x", p_x, 2))
    , _y(AxisNodes("Isolines: y", p_y, 2)) {
  RequireCount("Isolines: values", p_values.Count(), NodeCount("Isolines", {_x.size(), _y.size(), 1}));
  _values = Values(p_values);
  _range = FiniteRange(_values);
  for (double& value : _values)
    if (!std::isfinite(value))
      value = std::numeric_limits<double>::quiet_NaN();
}

std::vector<Isolines::Line> Isolines::At(double p_level, double p_z) const {
  std::vector<Line> lines;
  if (p_level >= _range.min && p_level <= _range.max)
    LevelTracer(_x, _y, _values, p_level, p_z).Trace(lines);
  return lines;
}

std::vector<Isolines::Line> Isolines::AtAll(const Array1& p_levels) const {
  std::vector<Line> lines;
  for (const double level : Values(p_levels)) {
    const std::vector<Line> more = At(level);
    lines.insert(lines.end(), more.begin(), more.end());
  }
  return lines;
}

std::vector<Isolines::Line> Isolines::AtAll(const Array1& p_levels, double p_z) const {
  std::vector<Line> lines = AtAll(p_levels);
  for (Line& line : lines)
    for (Line::Vector& point : line.points)
      point.z = p_z;
  return lines;
}

} // namespace Vek::Chart::Scene
