#include "scene/private/TubeLevels.h"

#include "scene/private/MeshShaders.h"
#include "scene/private/TubePieces.h"

#include "platform/utility/Threads.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vek::Chart::Scene::Private {

namespace {

using Vector = TubeLevels::Vector;
using Station = TubeLevels::Station;

Vector PositionOf(const Station& p_station) {
  const auto& [x, y, z] = p_station.position;
  return {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
}

/// The quaternion of a rotation, the real part last. The largest component is found first, so that none is divided by
/// a small one (Shepperd, "Quaternion from rotation matrix", 1978).
std::array<float, 4> QuaternionOf(const Types::Matrix3& p_m) {
  const Vector &r0 = p_m.Row(0), &r1 = p_m.Row(1), &r2 = p_m.Row(2);
  const double w = r0.x + r1.y + r2.z, largest = std::max({r0.x, r1.y, r2.z, w});
  std::array<double, 4> q{};
  if (largest == w)
    q = {r2.y - r1.z, r0.z - r2.x, r1.x - r0.y, 1 + w};
  else if (largest == r0.x)
    q = {1 + r0.x - r1.y - r2.z, r0.y + r1.x, r0.z + r2.x, r2.y - r1.z};
  else if (largest == r1.y)
    q = {r0.y + r1.x, 1 - r0.x + r1.y - r2.z, r1.z + r2.y, r0.z - r2.x};
  else
    q = {r0.z + r2.x, r1.z + r2.y, 1 - r0.x - r1.y + r2.z, r1.x - r0.y};
  const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  std::array<float, 4> result{};
  std::transform(q.begin(), q.end(), result.begin(), [&](double p_q) { return static_cast<float>(p_q / length); });
  return result;
}

/// Where a station lies along the straight segment between two others: 0 to 1.
double ShareOf(const Vector& p_from, const Vector& p_to, const Vector& p_between) {
  const Vector along = p_to - p_from;
  return std::clamp(Dot(p_between - p_from, along) / std::max(Dot(along, along), 1e-300), 0.0, 1.0);
}

double Mixed(double p_a, double p_b, double p_share) {
  return p_a + (p_b - p_a) * p_share;
}

/// How far a station lies from a tube between two others.
double Deviation(const Station& p_from, const Station& p_to, const Station& p_between) {
  const Vector from = PositionOf(p_from), to = PositionOf(p_to), between = PositionOf(p_between);
  const double share = ShareOf(from, to, between);
  const double radius = Mixed(static_cast<double>(p_from.radius), static_cast<double>(p_to.radius), share);
  return Length(between - from - (to - from) * share) + std::abs(static_cast<double>(p_between.radius) - radius);
}

/// Calls p_call(level, first, last, between) for each station that a longer segment leaves out.
template <class Call>
void ForLeftOut(std::uint32_t p_first, std::uint32_t p_segments, Call&& p_call) {
  for (std::size_t level = 0; level < TubeLevels::Coarser; ++level) {
    const std::uint32_t step = TubeLevels::Steps[level + 1], end = p_first + p_segments;
    for (std::uint32_t from = p_first; from < end; from += step) {
      const std::uint32_t to = std::min(from + step, end);
      for (std::uint32_t between = from + 1; between < to; ++between)
        p_call(level, from, to, between);
    }
  }
}

} // namespace

void TubeLevels::Add(const std::vector<TubeMesh::Point>& p_line) {
  std::vector<TubeMesh::Point> numbered = p_line;
  for (TubeMesh::Point& point : numbered)
    point.value = _pointCount++;
  for (const std::vector<TubeStation>& piece : TubePieces(numbered, {0, 0, 1})) {
    const auto first = static_cast<std::uint32_t>(_stations.size());
    const auto segments = static_cast<std::uint32_t>(piece.size() - 1);
    for (const TubeStation& station : piece) {
      const Vector& p = station.point.position;
      _stations.push_back({{static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)},
                           static_cast<float>(station.point.width / 2),
                           QuaternionOf(station.frame)});
      _points.push_back(static_cast<std::uint32_t>(station.point.value));
    }
    for (std::uint32_t i = 0; i < segments; i += BlockSize)
      AddBlock(first + i, std::min<std::uint32_t>(BlockSize, segments - i));
    _caps.push_back({first, _lines, true});
    _caps.push_back({first + segments, _lines, false});
  }
  ++_lines;
}

void TubeLevels::Add(const std::vector<std::vector<TubeMesh::Point>>& p_lines) {
  constexpr std::size_t AtOnce = 64; // lines
  std::vector<TubeLevels> parts((p_lines.size() + AtOnce - 1) / AtOnce);
  Utility::RunBlocks(Utility::Threads::All(), parts.size(), [&](std::size_t p_part) {
    for (std::size_t i = p_part * AtOnce; i < std::min((p_part + 1) * AtOnce, p_lines.size()); ++i)
      parts[p_part].Add(p_lines[i]);
  });
  std::size_t stations = _stations.size();
  for (const TubeLevels& part : parts)
    stations += part._stations.size();
  _stations.reserve(stations);
  _points.reserve(stations);
  for (TubeLevels& part : parts) {
    Append(part);
    part = {};
  }
}

/// Adds the lines of another object behind those here.
void TubeLevels::Append(const TubeLevels& p_lines) {
  const auto stations = static_cast<std::uint32_t>(_stations.size());
  _stations.insert(_stations.end(), p_lines._stations.begin(), p_lines._stations.end());
  for (const std::uint32_t point : p_lines._points)
    _points.push_back(_pointCount + point);
  for (Block block : p_lines._blocks) {
    block.first += stations;
    block.line += _lines;
    _blocks.push_back(block);
  }
  for (const Cap& cap : p_lines._caps)
    _caps.push_back({cap.station + stations, cap.line + _lines, cap.isStart});
  _lines += p_lines._lines;
  _pointCount += p_lines._pointCount;
}

void TubeLevels::AddBlock(std::uint32_t p_first, std::uint32_t p_segments) {
  Block block;
  block.first = p_first;
  block.line = _lines;
  block.segments = p_segments;
  const std::uint32_t last = p_first + p_segments;
  Types::BoundingBox_Base<double> box;
  Vector sum;
  double length = 0;
  for (std::uint32_t i = p_first; i <= last; ++i) {
    box += PositionOf(_stations[i]);
    block.radius = std::max(block.radius, static_cast<double>(_stations[i].radius));
    if (i == last)
      continue;
    const Vector way = PositionOf(_stations[i + 1]) - PositionOf(_stations[i]);
    length += Length(way);
    sum += Normalize(way);
  }
  block.length = static_cast<float>(length);
  block.center = (box.Min() + box.Max()) / 2.0;
  block.reach = Length(box.Extent()) / 2 + block.radius;
  block.axis = Normalize(sum);
  double cosine = Length(block.axis) > 0 ? 1 : -1;
  for (std::uint32_t i = p_first; i < last; ++i)
    cosine = std::min(cosine, Dot(block.axis, Normalize(PositionOf(_stations[i + 1]) - PositionOf(_stations[i]))));
  block.spread = std::acos(std::clamp(cosine, -1.0, 1.0));
  ForLeftOut(
      p_first, p_segments, [&](std::size_t p_level, std::uint32_t p_from, std::uint32_t p_to, std::uint32_t p_i) {
        block.errors[p_level] = std::max(
            block.errors[p_level], static_cast<float>(Deviation(_stations[p_from], _stations[p_to], _stations[p_i])));
      });
  _blocks.push_back(block);
}

std::vector<TubeLevels::ValueErrors> TubeLevels::ErrorsOf(const std::vector<float>& p_values) const {
  std::vector<ValueErrors> errors(_blocks.size());
  constexpr std::size_t AtOnce = 256;
  const auto find = [&](std::size_t p_block) {
    const Block& block = _blocks[p_block];
    ValueErrors& ofBlock = errors[p_block];
    ForLeftOut(block.first, block.segments,
               [&](std::size_t p_level, std::uint32_t p_from, std::uint32_t p_to, std::uint32_t p_i) {
                 const auto value = [&](std::uint32_t p_station) { return static_cast<double>(p_values[p_station]); };
                 const auto isMissing = [&](std::uint32_t p_station) { return p_values[p_station] > LargestValue; };
                 float &linear = ofBlock.linear[p_level], &logarithmic = ofBlock.logarithmic[p_level];
                 const int missing = (isMissing(p_from) ? 1 : 0) + (isMissing(p_to) ? 1 : 0) + (isMissing(p_i) ? 1 : 0);
                 if (missing == 3)
                   return;
                 if (missing != 0) {
                   linear = logarithmic = std::numeric_limits<float>::infinity();
                   return;
                 }
                 const double share =
                     ShareOf(PositionOf(_stations[p_from]), PositionOf(_stations[p_to]), PositionOf(_stations[p_i]));
                 const double drawn = Mixed(value(p_from), value(p_to), share);
                 linear = std::max(linear, static_cast<float>(std::abs(value(p_i) - drawn)));
                 const bool arePositive = value(p_i) > 0 && drawn > 0;
                 const double ratio = arePositive ? std::abs(std::log(value(p_i) / drawn)) : HUGE_VAL;
                 if (arePositive || value(p_i) > 0 || drawn > 0) // all others have one colour
                   logarithmic = std::max(logarithmic, static_cast<float>(ratio));
               });
  };
  Utility::RunBlocks(Utility::Threads::All(), (_blocks.size() + AtOnce - 1) / AtOnce, [&](std::size_t p_part) {
    for (std::size_t i = p_part * AtOnce; i < std::min((p_part + 1) * AtOnce, _blocks.size()); ++i)
      find(i);
  });
  return errors;
}

std::uint32_t TubeLevels::Nearest(std::uint32_t p_station, const Vector& p_position) const {
  const auto block =
      std::lower_bound(_blocks.begin(), _blocks.end(), p_station, [](const Block& p_block, std::uint32_t p_number) {
        return p_block.first + p_block.segments < p_number;
      });
  if (block == _blocks.end())
    return p_station;
  std::uint32_t nearest = p_station;
  for (std::uint32_t i = std::min(block->first, p_station); i < p_station; ++i)
    if (Length(PositionOf(_stations[i]) - p_position) < Length(PositionOf(_stations[nearest]) - p_position))
      nearest = i;
  return nearest;
}

} // namespace Vek::Chart::Scene::Private
