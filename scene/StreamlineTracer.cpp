#include "scene/StreamlineTracer.h"

#include "scene/private/Integrator.h"
#include "scene/private/Neighbourhood.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Point = Types::Vector3_Base<double>;
using Private::Integrator;
using Private::IsCancelled;

void Require(bool p_holds, const char* p_expected) {
  if (!p_holds)
    throw std::invalid_argument(std::string("StreamlineTracer: expected ") + p_expected);
}

Streamline Joined(Streamline p_upstream, const Streamline& p_downstream) {
  std::reverse(p_upstream.begin(), p_upstream.end());
  if (!p_upstream.empty() && !p_downstream.empty())
    p_upstream.pop_back(); // the seed, which both have
  p_upstream.insert(p_upstream.end(), p_downstream.begin(), p_downstream.end());
  return p_upstream;
}

/// The lines of seeds, without those after one that was cancelled.
template <class Trace>
std::vector<Streamline> LinesOf(const std::vector<Point>& p_seeds, const StreamlineTracer::Options& p_options,
                                Utility::Threads p_threads, const Trace& p_trace) {
  constexpr std::size_t BlockSize = 16;
  std::vector<Streamline> lines(p_seeds.size());
  std::vector<std::size_t> ends((p_seeds.size() + BlockSize - 1) / BlockSize); // of the lines in each block
  Utility::RunBlocks(p_threads, ends.size(), [&](std::size_t p_block) {
    std::size_t& end = ends[p_block];
    end = p_block * BlockSize;
    for (const std::size_t last = std::min(end + BlockSize, lines.size()); end < last; ++end) {
      lines[end] = p_trace(p_seeds[end]);
      if (IsCancelled(p_options))
        return;
    }
  });
  std::size_t count = 0;
  for (std::size_t block = 0; block < ends.size() && count == block * BlockSize; ++block)
    count = ends[block];
  lines.resize(count);
  return lines;
}

/// Adds lines one by one that keep their distance from all others.
class SpacedLines {
public:
  SpacedLines(const StreamlineTracer::Field& p_field, const StreamlineTracer::Options& p_options,
              const StreamlineTracer::Spacing& p_spacing, std::vector<Streamline> p_before)
      : _field(p_field)
      , _options(p_options)
      , _spacing(Checked(p_spacing))
      , _seedSquare(SquareOf(p_spacing.seeds))
      , _others(p_spacing.seeds)
      , _own(p_spacing.lines)
      , _lines(std::move(p_before)) {
    for (const Streamline& line : _lines)
      _others.Add(line);
  }

  const std::vector<Streamline>& Lines() const { return _lines; }
  std::vector<Streamline> Take() { return std::move(_lines); }

  /// False where the seed is near to a line, or its own line too short.
  bool Add(const Point& p_seed) {
    if (_others.NearestSquare(p_seed, _seedSquare) < _seedSquare)
      return false;
    Streamline line = Trace(p_seed);
    if (line.size() < 2 || StreamlineTracer::ArcLength(line) < _spacing.shortest || IsCancelled(_options))
      return false;
    _others.Add(line);
    _lines.push_back(std::move(line));
    return true;
  }

private:
  static const StreamlineTracer::Spacing& Checked(const StreamlineTracer::Spacing& p_spacing) {
    Require(p_spacing.seeds > 0 && std::isfinite(p_spacing.seeds), "a distance of seeds above 0");
    Require(p_spacing.lines > 0 && p_spacing.lines <= p_spacing.seeds,
            "a distance of lines above 0, at most that of seeds");
    return p_spacing;
  }

  Streamline Trace(const Point& p_seed) {
    Approach upstreamOthers(_others, _spacing.lines), downstreamOthers = upstreamOthers;
    _own.Clear();
    const Streamline upstream = Integrator(_field, _options, -1).Trace(p_seed, [&](const Point& p_at, double p_arc) {
      return upstreamOthers.IsNear(p_at) || _own.IsNear(p_at, p_arc);
    });
    // The way downstream must not run into the one upstream either, but where both begin they are near each other.
    const double beginning = 2 * _spacing.seeds;
    _own.Clear();
    double arc = 0;
    std::size_t near = 1;
    for (std::size_t i = 1; i < upstream.size(); ++i) {
      arc += Length(upstream[i] - upstream[i - 1]);
      if (arc < beginning)
        near = i + 1;
      else
        _own.Add(upstream[i]);
    }
    std::size_t next = 1;
    const Streamline downstream = Integrator(_field, _options, 1).Trace(p_seed, [&](const Point& p_at, double p_arc) {
      for (; p_arc >= beginning && next < near; ++next)
        _own.Add(upstream[next]);
      return downstreamOthers.IsNear(p_at) || _own.IsNear(p_at, p_arc);
    });
    return Joined(upstream, downstream);
  }

  const StreamlineTracer::Field& _field;
  const StreamlineTracer::Options& _options;
  const StreamlineTracer::Spacing _spacing;
  double _seedSquare;
  Neighbourhood _others;
  OwnTrail _own;
  std::vector<Streamline> _lines;
};

/// Directions across a line, in which seeds are taken: along the layer, or around the line.
struct Sides {
  std::array<Point, 4> directions;
  std::size_t count;
};

Sides SidesOf(const Point& p_along, const Point& p_layer) {
  if (p_layer != Point()) {
    const Point side = Normalize(Cross(p_layer, p_along));
    return {{side, -side}, 2};
  }
  const Point axis = std::abs(p_along.z) < 0.9 * Length(p_along) ? Point(0, 0, 1) : Point(1, 0, 0);
  const Point side = Normalize(Cross(axis, p_along)), up = Normalize(Cross(p_along, side));
  return {{side, -side, up, -up}, 4};
}

/// Seeds beside a line, one set for every half of the distance along it.
void AddSeedsBeside(const Streamline& p_line, double p_distance, const Point& p_layer, std::deque<Point>& p_seeds) {
  double arc = p_distance;
  for (std::size_t i = 1; i < p_line.size(); ++i) {
    const Point along = p_line[i] - p_line[i - 1];
    arc += Length(along);
    if (arc < p_distance / 2)
      continue;
    arc = 0;
    const Sides sides = SidesOf(along, p_layer);
    for (std::size_t side = 0; side < sides.count; ++side) // rounding must not bring it nearer
      p_seeds.push_back(p_line[i] + sides.directions[side] * (p_distance * (1 + 1e-6)));
  }
}

/// The points of a lattice in the middle of a box.
class Lattice {
public:
  Lattice(const Types::BoundingBox_Base<double>& p_box, double p_step)
      : _center(p_box.Center())
      , _step(p_step) {
    const Point extent = p_box.Extent();
    double count = 1;
    for (std::size_t i = 0; i < 3; ++i) {
      const double steps = std::floor((i == 0 ? extent.x : i == 1 ? extent.y : extent.z) / p_step);
      count *= steps + 1;
      Require(count <= 1 << 24, "a box of 2^24 seeds at most");
      _counts[i] = static_cast<std::size_t>(steps) + 1;
    }
  }

  std::size_t Count() const { return _counts[0] * _counts[1] * _counts[2]; }
  Point At(std::size_t p_index) const {
    const auto offset = [this](std::size_t p_i, std::size_t p_count) {
      return (static_cast<double>(p_i) - static_cast<double>(p_count - 1) / 2) * _step;
    };
    return _center + Point(offset(p_index % _counts[0], _counts[0]),
                           offset(p_index / _counts[0] % _counts[1], _counts[1]),
                           offset(p_index / _counts[0] / _counts[1], _counts[2]));
  }

private:
  Point _center;
  double _step;
  std::array<std::size_t, 3> _counts{};
};

bool Contains(const Types::BoundingBox_Base<double>& p_box, const Point& p_point) {
  const Point& min = p_box.Min();
  const Point& max = p_box.Max();
  return p_point.x >= min.x && p_point.x <= max.x && p_point.y >= min.y && p_point.y <= max.y && p_point.z >= min.z &&
         p_point.z <= max.z;
}

/// The normal of a box that has no extent along one axis; else 0.
Point LayerNormal(const Point& p_extent) {
  return p_extent.z == 0 ? Point(0, 0, 1) : p_extent.y == 0 ? Point(0, 1, 0) : Point(p_extent.x == 0 ? 1 : 0, 0, 0);
}

StreamlineTracer::Field FieldOf(const VectorField& p_field) {
  const VectorField::Counts size = p_field.Size();
  const Point kept(size[0] > 1 ? 1 : 0, size[1] > 1 ? 1 : 0, size[2] > 1 ? 1 : 0);
  return [&p_field, kept](const Point& p_position, Point& p_vector) {
    if (!p_field.Sample(p_position, p_vector))
      return false;
    p_vector = {p_vector.x * kept.x, p_vector.y * kept.y, p_vector.z * kept.z};
    return true;
  };
}

} // namespace

StreamlineTracer::Options::Options(const VectorField& p_field) {
  const double cell = p_field.CellSize();
  length = 2 * Types::Length(p_field.Bounds().Extent());
  largestStep = cell / 2;
  smallestStep = cell * 1e-4;
  tolerance = cell * 1e-3;
  stagnation = 1e-6 * std::max(p_field.Speeds().max, 0.0);
}

StreamlineTracer::Spacing::Spacing(const VectorField& p_field) {
  const double diagonal = Types::Length(p_field.Bounds().Extent());
  seeds = diagonal > 0 ? diagonal / 40 : 1;
  lines = seeds / 2;
  shortest = 2 * seeds;
}

StreamlineTracer::StreamlineTracer(const VectorField& p_field)
    : StreamlineTracer(p_field, Options(p_field)) {}

StreamlineTracer::StreamlineTracer(const VectorField& p_field, const Options& p_options)
    : StreamlineTracer(FieldOf(p_field), p_options) {}

StreamlineTracer::StreamlineTracer(const Field& p_field, const Options& p_options)
    : _field(p_field)
    , _options(p_options) {
  Require(!_field.empty(), "a field, got an empty function");
  Require(_options.length >= 0 && std::isfinite(_options.length), "a finite length that is not negative");
  Require(_options.smallestStep > 0 && _options.smallestStep <= _options.largestStep &&
              std::isfinite(_options.largestStep),
          "steps above 0, the smallest one not above the largest one");
  Require(_options.tolerance > 0, "a tolerance above 0");
  Require(_options.stagnation >= 0, "a stagnation that is not negative");
}

Streamline StreamlineTracer::Downstream(const Vector& p_seed, const TerminationCriterion& p_terminates) const {
  return Integrator(_field, _options, 1).Trace(p_seed, p_terminates);
}

Streamline StreamlineTracer::Through(const Vector& p_seed, const TerminationCriterion& p_terminates) const {
  return Joined(Integrator(_field, _options, -1).Trace(p_seed, p_terminates),
                Integrator(_field, _options, 1).Trace(p_seed, p_terminates));
}

std::vector<Streamline> StreamlineTracer::Downstream(const std::vector<Vector>& p_seeds,
                                                     const TerminationCriterion& p_terminates,
                                                     Utility::Threads p_threads) const {
  return LinesOf(p_seeds, _options, p_threads, [&](const Vector& p_seed) { return Downstream(p_seed, p_terminates); });
}

std::vector<Streamline> StreamlineTracer::Through(const std::vector<Vector>& p_seeds,
                                                  const TerminationCriterion& p_terminates,
                                                  Utility::Threads p_threads) const {
  return LinesOf(p_seeds, _options, p_threads, [&](const Vector& p_seed) { return Through(p_seed, p_terminates); });
}

std::vector<Streamline> StreamlineTracer::Spaced(const std::vector<Vector>& p_seeds, const Spacing& p_spacing,
                                                 std::vector<Streamline> p_before) const {
  SpacedLines lines(_field, _options, p_spacing, std::move(p_before));
  for (const Vector& seed : p_seeds) {
    if (IsCancelled(_options))
      break;
    lines.Add(seed);
  }
  return lines.Take();
}

std::vector<Streamline> StreamlineTracer::Filled(const Types::BoundingBox_Base<double>& p_bounds,
                                                 const Spacing& p_spacing, std::vector<Streamline> p_before) const {
  SpacedLines lines(_field, _options, p_spacing, std::move(p_before));
  const Vector extent = p_bounds.Extent(), layer = LayerNormal(extent);
  Require(!p_bounds.Empty() && std::isfinite(Types::Length(extent)), "a finite box");
  std::deque<Vector> seeds;
  for (const Streamline& line : lines.Lines())
    AddSeedsBeside(line, p_spacing.seeds, layer, seeds);
  const Lattice lattice(p_bounds, p_spacing.seeds);
  seeds.push_back(p_bounds.Center());
  for (std::size_t next = 0; !IsCancelled(_options);) {
    while (seeds.empty() && next < lattice.Count())
      seeds.push_back(lattice.At(next++));
    if (seeds.empty())
      break;
    const Vector seed = seeds.front();
    seeds.pop_front();
    if (Contains(p_bounds, seed) && lines.Add(seed))
      AddSeedsBeside(lines.Lines().back(), p_spacing.seeds, layer, seeds);
  }
  return lines.Take();
}

double StreamlineTracer::ArcLength(const Streamline& p_line) {
  double length = 0;
  for (std::size_t i = 1; i < p_line.size(); ++i)
    length += Types::Length(p_line[i] - p_line[i - 1]);
  return length;
}

void StreamlineTracer::Shuffle(std::vector<Vector>& p_seeds, std::mt19937& p_random) {
  // Written out, since the standard's shuffle differs between libraries.
  for (std::size_t i = p_seeds.size(); i > 1; --i)
    std::swap(p_seeds[i - 1], p_seeds[p_random() % i]);
}

} // namespace Vek::Chart::Scene
