#include "scene/private/Neighbourhood.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene {

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double MostCells = 1e12; // from the origin; beyond, all positions share a cell
constexpr double Rounding = 1e-3;  // of a position in cells, at most

std::size_t HashOf(const std::array<std::int64_t, 3>& p_cell) {
  std::uint64_t hash = static_cast<std::uint64_t>(p_cell[0]) * 0x9e3779b97f4a7c15 +
                       static_cast<std::uint64_t>(p_cell[1]) * 0xc2b2ae3d27d4eb4f +
                       static_cast<std::uint64_t>(p_cell[2]) * 0x165667b19e3779f9;
  return static_cast<std::size_t>((hash ^ (hash >> 32)) * 0x9e3779b97f4a7c15 >> 32);
}

bool IsSame(const std::array<std::int64_t, 3>& p_a, const std::array<std::int64_t, 3>& p_b) {
  return p_a[0] == p_b[0] && p_a[1] == p_b[1] && p_a[2] == p_b[2];
}

std::int64_t Floor(double p_number) {
  const auto whole = static_cast<std::int64_t>(p_number);
  return whole - (p_number < static_cast<double>(whole) ? 1 : 0);
}

} // namespace

double SquareOf(double p_distance) {
  double square = p_distance * p_distance;
  while (square > 0 && std::sqrt(square) >= p_distance)
    square = std::nextafter(square, 0.0);
  while (std::sqrt(square) < p_distance)
    square = std::nextafter(square, Infinity);
  return square;
}

Neighbourhood::Chunk::Chunk(std::uint32_t p_next)
    : next(p_next) {
  x.fill(std::numeric_limits<double>::quiet_NaN());
  y = z = x;
}

Neighbourhood::Block::Block(const Cell& p_place)
    : place(p_place) {
  chunks.fill(None);
}

Neighbourhood::Neighbourhood(double p_reach)
    : _reachSquare(SquareOf(p_reach))
    , _cell(std::clamp((1 + Rounding) * p_reach, 1e-300, 1e300))
    , _perCell(1 / _cell) {
  Clear();
}

void Neighbourhood::Clear() {
  std::fill(_table.begin(), _table.end(), None);
  _blocks.clear();
  _chunks.clear();
  _last = 0;
  _low.fill(std::numeric_limits<std::int64_t>::max());
  _high.fill(std::numeric_limits<std::int64_t>::min());
}

void Neighbourhood::Add(const Point& p_point) {
  const Cell cell = CellOf(p_point);
  for (std::size_t i = 0; i < 3; ++i) {
    _low[i] = std::min(_low[i], cell[i]);
    _high[i] = std::max(_high[i], cell[i]);
  }
  std::uint32_t& first = BlockAt(PlaceOf(cell)).chunks[NumberIn(cell)];
  if (first == None || _chunks[first].used == ChunkSize) {
    _chunks.emplace_back(first);
    first = static_cast<std::uint32_t>(_chunks.size() - 1);
  }
  Chunk& chunk = _chunks[first];
  chunk.x[chunk.used] = p_point.x;
  chunk.y[chunk.used] = p_point.y;
  chunk.z[chunk.used] = p_point.z;
  ++chunk.used;
}

double Neighbourhood::NearestSquare(const Point& p_point, double p_enough) const {
  double least = _reachSquare;
  Search search{p_point, p_enough, CellOf(p_point), {}, {}, {}};
  const Cell& own = search.own;
  const std::array<double, 3> position{p_point.x, p_point.y, p_point.z};
  for (std::size_t i = 0; i < 3; ++i) {
    search.low[i] = std::max(own[i] - 1, _low[i]);
    search.high[i] = std::min(own[i] + 1, _high[i]);
    if (search.low[i] > search.high[i])
      return least;
    const double share = position[i] * _perCell - static_cast<double>(own[i]);
    const double below = std::max(0.0, share - Rounding) * _cell, above = std::max(0.0, 1 - Rounding - share) * _cell;
    search.gaps[i] = {below * below, 0, above * above};
  }
  // Most positions near to a point share its cell.
  const Cell ownPlace = PlaceOf(own);
  const Block* const ownBlock = Find(ownPlace);
  if (ownBlock != nullptr)
    least = NearestIn(ownBlock->chunks[NumberIn(own)], p_point, least);
  const Cell first = PlaceOf(search.low), last = PlaceOf(search.high);
  for (std::int64_t z = first[2]; z <= last[2]; ++z)
    for (std::int64_t y = first[1]; y <= last[1]; ++y)
      for (std::int64_t x = first[0]; x <= last[0]; ++x) {
        if (least < p_enough)
          return least;
        const Cell place{x, y, z};
        if (const Block* const block = IsSame(place, ownPlace) ? ownBlock : Find(place))
          least = NearestIn(*block, search, least);
      }
  return least;
}

double Neighbourhood::NearestIn(const Block& p_block, const Search& p_search, double p_least) const {
  Cell low, high;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::int64_t first = p_block.place[i] * BlockSide;
    low[i] = std::max(p_search.low[i], first);
    high[i] = std::min(p_search.high[i], first + BlockSide - 1);
  }
  const auto gap = [&](std::size_t p_axis, std::int64_t p_cell) {
    return p_search.gaps[p_axis][static_cast<std::size_t>(p_cell - p_search.own[p_axis] + 1)];
  };
  for (std::int64_t z = low[2]; z <= high[2]; ++z)
    for (std::int64_t y = low[1]; y <= high[1]; ++y) {
      const double gapYZ = gap(1, y) + gap(2, z);
      for (std::int64_t x = low[0]; x <= high[0]; ++x) {
        const Cell cell{x, y, z};
        const std::uint32_t chunk = p_block.chunks[NumberIn(cell)];
        if (chunk == None || gap(0, x) + gapYZ > p_least || IsSame(cell, p_search.own))
          continue;
        p_least = NearestIn(chunk, p_search.point, p_least);
        if (p_least < p_search.enough)
          return p_least;
      }
    }
  return p_least;
}

double Neighbourhood::NearestIn(std::uint32_t p_chunk, const Point& p_point, double p_least) const {
  std::array<double, ChunkSize> least, square;
  least.fill(p_least);
  for (std::uint32_t next = p_chunk; next != None; next = _chunks[next].next) {
    const Chunk& chunk = _chunks[next];
    for (std::size_t i = 0; i < ChunkSize; ++i) {
      const double x = chunk.x[i] - p_point.x, y = chunk.y[i] - p_point.y, z = chunk.z[i] - p_point.z;
      square[i] = x * x + y * y + z * z;
    }
    for (std::size_t i = 0; i < ChunkSize; ++i)
      least[i] = square[i] < least[i] ? square[i] : least[i];
  }
  for (std::size_t half = ChunkSize / 2; half > 0; half /= 2)
    for (std::size_t i = 0; i < half; ++i)
      least[i] = std::min(least[i], least[i + half]);
  return least[0];
}

Neighbourhood::Cell Neighbourhood::CellOf(const Point& p_point) const {
  const auto index = [this](double p_position) {
    const double cells = p_position * _perCell; // may be NaN
    return Floor(cells > -MostCells ? std::min(cells, MostCells) : -MostCells);
  };
  return {index(p_point.x), index(p_point.y), index(p_point.z)};
}

/// The place of a block in the table, or the free one that it would take.
std::size_t Neighbourhood::TablePlaceOf(const Cell& p_place) const {
  const std::size_t mask = _table.size() - 1;
  std::size_t entry = HashOf(p_place) & mask;
  while (_table[entry] != None && !IsSame(_blocks[_table[entry]].place, p_place))
    entry = (entry + 1) & mask;
  return entry;
}

/// Null where the block has no points.
const Neighbourhood::Block* Neighbourhood::Find(const Cell& p_place) const {
  const std::uint32_t number = _table[TablePlaceOf(p_place)];
  return number != None ? &_blocks[number] : nullptr;
}

Neighbourhood::Block& Neighbourhood::BlockAt(const Cell& p_place) {
  if (!_blocks.empty() && IsSame(_blocks[_last].place, p_place))
    return _blocks[_last];
  if (2 * _blocks.size() >= _table.size())
    Grow();
  std::uint32_t& number = _table[TablePlaceOf(p_place)];
  if (number == None) {
    number = static_cast<std::uint32_t>(_blocks.size());
    _blocks.emplace_back(p_place);
  }
  _last = number;
  return _blocks[number];
}

void Neighbourhood::Grow() {
  _table.assign(std::max<std::size_t>(64, 2 * _table.size()), None);
  for (std::size_t i = 0; i < _blocks.size(); ++i)
    _table[TablePlaceOf(_blocks[i].place)] = static_cast<std::uint32_t>(i);
}

Approach::Approach(const Neighbourhood& p_points, double p_distance)
    : _points(&p_points)
    , _distance(p_distance)
    , _square(SquareOf(p_distance)) {}

void Approach::Added(const Point& p_point) {
  const Point away = p_point - _looked;
  _freeSquare = std::min(_freeSquare, FreeSquare(Dot(away, away)));
}

bool Approach::Look(const Point& p_point) {
  const double nearest = _points->NearestSquare(p_point, _square);
  _looked = p_point;
  _freeSquare = FreeSquare(nearest);
  return nearest < _square;
}

double Approach::FreeSquare(double p_nearestSquare) const {
  // Rounding is far below a billionth where squares are neither tiny nor huge.
  constexpr double Least = 1e-280, Most = 1e280, Margin = 1e-9;
  const double free = std::sqrt(p_nearestSquare) * (1 - Margin) - _distance * (1 + Margin);
  const bool isExact = _square > Least && p_nearestSquare < Most && free * free > Least;
  return free > 0 && isExact ? free * free : 0;
}

} // namespace Vek::Chart::Scene
