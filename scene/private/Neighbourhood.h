#pragma once

#include "platform/types/Vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Vek::Chart::Scene {

/// The smallest number whose square root is at least `p_distance`. A sum of squares is below it exactly where its root
/// is below the distance, so that no root need be taken.
double SquareOf(double p_distance);

/// Points in the cells of a lattice, to find those near a position.
class Neighbourhood {
public:
  using Point = Types::Vector3_Base<double>;

  /// For distances up to `p_reach`.
  explicit Neighbourhood(double p_reach);

  void Add(const Point& p_point);
  void Add(const std::vector<Point>& p_line) {
    for (const Point& point : p_line)
      Add(point);
  }
  /// Keeps the memory.
  void Clear();

  /// The square of the distance to the nearest point; that of the reach where all are farther. Once a square is below
  /// `p_enough`, it may be returned instead.
  double NearestSquare(const Point& p_point, double p_enough) const;

private:
  // Points of a cell lie in a chain of chunks.
  static constexpr std::size_t ChunkSize = 4;
  static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();
  struct Chunk {
    std::array<double, ChunkSize> x, y, z; // unused ones are NaN, near to nothing
    std::uint32_t used = 0;
    std::uint32_t next;

    explicit Chunk(std::uint32_t p_next);
  };
  // Blocks of cells lie in a hash table, so that neighbouring cells are found together. Larger ones are 5 % faster, but
  // take 2 KiB for a point that is alone.
  static constexpr int BlockBits = 2;
  static constexpr std::int64_t BlockSide = 1 << BlockBits; // in cells
  using Cell = std::array<std::int64_t, 3>;
  struct Block {
    Cell place;
    std::array<std::uint32_t, std::size_t{1} << (3 * BlockBits)> chunks;

    explicit Block(const Cell& p_place);
  };

  /// For points in the cell of a position and in those beside it.
  struct Search {
    const Point& point;
    double enough;
    Cell own;
    Cell low, high;
    std::array<std::array<double, 3>, 3> gaps; // by axis: squares of the distances to the cells below, here and above
  };

  static Cell PlaceOf(const Cell& p_cell) {
    return {p_cell[0] >> BlockBits, p_cell[1] >> BlockBits, p_cell[2] >> BlockBits};
  }
  static std::size_t NumberIn(const Cell& p_cell) {
    constexpr std::int64_t Mask = BlockSide - 1;
    return static_cast<std::size_t>((((p_cell[2] & Mask) << BlockBits | (p_cell[1] & Mask)) << BlockBits) |
                                    (p_cell[0] & Mask));
  }
  Cell CellOf(const Point& p_point) const;
  std::size_t TablePlaceOf(const Cell& p_place) const;
  const Block* Find(const Cell& p_place) const;
  Block& BlockAt(const Cell& p_place);
  void Grow();
  double NearestIn(std::uint32_t p_chunk, const Point& p_point, double p_least) const;
  double NearestIn(const Block& p_block, const Search& p_search, double p_least) const;

  double _reachSquare;
  double _cell; // edge, a little longer than the reach: near points lie in the same cell and in those beside it
  double _perCell;
  Cell _low{}, _high{};              // cells with points lie between them
  std::vector<std::uint32_t> _table; // of blocks
  std::vector<Block> _blocks;
  std::uint32_t _last = 0; // block that a point was added to
  std::vector<Chunk> _chunks;
};

/// Whether a position that moves in small steps comes near to points. Most steps need no look at the points: as long as
/// the position has moved less than the nearest point was too far, none can be near.
class Approach {
public:
  using Point = Neighbourhood::Point;

  Approach(const Neighbourhood& p_points, double p_distance);

  /// Whether a point is nearer than the distance.
  bool IsNear(const Point& p_point) {
    const Point moved = p_point - _looked;
    return !(Dot(moved, moved) < _freeSquare) && Look(p_point);
  }
  /// Must be called when a point is added.
  void Added(const Point& p_point);

private:
  bool Look(const Point& p_point);
  double FreeSquare(double p_nearestSquare) const;

  const Neighbourhood* _points;
  double _distance;
  double _square;
  Point _looked;          // where the points were looked at last
  double _freeSquare = 0; // of the distance from there to which nothing is near
};

/// Keeps a line from coming near to its own earlier part. Points count once the line is two distances farther.
class OwnTrail {
public:
  using Point = Neighbourhood::Point;

  explicit OwnTrail(double p_distance)
      : _distance(p_distance)
      , _passed(2 * p_distance)
      , _approach(_passed, p_distance) {}
  OwnTrail(const OwnTrail&) = delete;
  OwnTrail& operator=(const OwnTrail&) = delete;

  /// Begins a line.
  void Clear() {
    _next = 0;
    _trail.clear();
    _passed.Clear();
    _approach = Approach(_passed, _distance);
  }
  /// Adds a point that counts at once.
  void Add(const Point& p_point) {
    _passed.Add(p_point);
    _approach.Added(p_point);
  }
  bool IsNear(const Point& p_point, double p_arc) {
    for (; _next < _trail.size() && p_arc - _trail[_next].arc > 2 * _distance; ++_next)
      Add(_trail[_next].position);
    if (_approach.IsNear(p_point))
      return true;
    _trail.push_back({p_point, p_arc});
    return false;
  }

private:
  struct Mark {
    Point position;
    double arc;
  };
  double _distance;
  std::size_t _next = 0;
  std::vector<Mark> _trail;
  Neighbourhood _passed;
  Approach _approach;
};

} // namespace Vek::Chart::Scene
