#include "library/Intersect.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace Vek::Chart::Library {

namespace {

using boost::logic::indeterminate;
using boost::logic::tribool;
using Vector3 = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

constexpr double Epsilon = std::numeric_limits<double>::epsilon();

// Cuts the segment from p_start to p_end with the plane p_normal · p + p_d = 0. The point is written on a hit only.
tribool CutSegment(const Vector3& p_normal, double p_d, const Vector3& p_start, const Vector3& p_end,
                   Vector3& p_point) {
  const double denominator = Dot(p_normal, p_start - p_end);
  const double distance = Dot(p_normal, p_start) + p_d;
  if (std::abs(denominator) <= Epsilon) {
    if (std::abs(distance) <= Epsilon && std::abs(Dot(p_normal, p_end) + p_d) <= Epsilon)
      return indeterminate;
    return false;
  }
  const double t = distance / denominator;
  if (t < 0 || t > 1)
    return false;
  p_point = p_start + (p_end - p_start) * t;
  return true;
}

//        7-------6
//       /|      /|     The corners of a box by number: 0 has all minima,
//      4-------5 |     6 all maxima; x to the right, y to the back, z up.
//      | 3-----|-2
//      |/      |/
//      0-------1
using Corners = std::array<Vector3, 8>;

Corners CornersOf(const Box& p_box) {
  const Vector3& a = p_box.Min();
  const Vector3& b = p_box.Max();
  return {{{a.x, a.y, a.z},
           {b.x, a.y, a.z},
           {b.x, b.y, a.z},
           {a.x, b.y, a.z},
           {a.x, a.y, b.z},
           {b.x, a.y, b.z},
           {b.x, b.y, b.z},
           {a.x, b.y, b.z}}};
}

// For each front corner the numbers of all corners, in the order that the edges below refer to: the front corner, its
// three neighbours, the three neighbours of the opposite corner, the opposite corner.
using Sequence = std::array<unsigned char, 8>;
constexpr Sequence Sequences[8] = {{0, 1, 3, 4, 5, 2, 7, 6}, {1, 5, 2, 0, 4, 6, 3, 7}, {2, 3, 1, 6, 7, 0, 5, 4},
                                   {3, 7, 0, 2, 6, 4, 1, 5}, {4, 0, 7, 5, 1, 3, 6, 2}, {5, 4, 6, 1, 0, 7, 2, 3},
                                   {6, 2, 5, 7, 3, 1, 4, 0}, {7, 6, 4, 3, 2, 5, 0, 1}};

// The twelve edges in the order of their tests, by positions in a sequence, in six steps. The edges of a step lie on
// one path from the front corner to the opposite one; the last of them that is hit has the step's point.
struct Edge {
  unsigned char start;
  unsigned char end;
  unsigned char step;
};
constexpr std::size_t NumSteps = 6;
constexpr Edge Edges[] = {{1, 4, 0}, {0, 1, 0}, {4, 7, 0}, //
                          {1, 5, 1},                       //
                          {2, 5, 2}, {0, 2, 2}, {5, 7, 2}, //
                          {2, 6, 3},                       //
                          {3, 6, 4}, {0, 3, 4}, {6, 7, 4}, //
                          {3, 4, 5}};

// For each front corner: the corners of each edge, and the axis that it is parallel to.
struct PlacedEdge {
  unsigned char start;
  unsigned char end;
  unsigned char axis;
};
using PlacedEdges = std::array<std::array<PlacedEdge, std::size(Edges)>, 8>;

constexpr PlacedEdges MakePlacedEdges() {
  PlacedEdges edges{};
  for (std::size_t front = 0; front < 8; ++front)
    for (std::size_t i = 0; i < std::size(Edges); ++i) {
      const unsigned char start = Sequences[front][Edges[i].start];
      const unsigned char end = Sequences[front][Edges[i].end];
      const int difference = start ^ end; // of numbers that count round the lower face, then round the upper one
      edges[front][i] = {start, end, static_cast<unsigned char>(difference >= 4 ? 2 : difference >= 2 ? 1 : 0)};
    }
  return edges;
}
constexpr PlacedEdges EdgesFrom = MakePlacedEdges();

// For each front corner and each set of corners (bit i is corner i): the edges that lead into or out of the set, bit i
// for edge i.
using EdgeSets = std::array<std::array<std::uint16_t, 256>, 8>;

constexpr EdgeSets MakeCrossingEdges() {
  EdgeSets edges{};
  for (std::size_t front = 0; front < 8; ++front)
    for (unsigned set = 0; set < 256; ++set) {
      unsigned crossing = 0;
      unsigned bit = 1;
      for (const PlacedEdge& edge : EdgesFrom[front]) {
        crossing |= ((set >> edge.start ^ set >> edge.end) & 1) * bit;
        bit <<= 1;
      }
      edges[front][set] = static_cast<std::uint16_t>(crossing);
    }
  return edges;
}
constexpr EdgeSets CrossingEdges = MakeCrossingEdges();

// A box with the plane that cuts it; the distances of its corners have a sign.
struct BoxCut {
  Corners corners;
  double distances[8];
  Vector3 normal;
  double d;
};

// The products of a normal's components and a box's extremes: the terms of the dot products with its corners.
struct Products {
  double x0, x1;
  double y0, y1;
  double z0, z1;
};

Products ProductsOf(const Vector3& p_normal, const Box& p_box) {
  return {p_normal.x * p_box.Min().x, p_normal.x * p_box.Max().x, p_normal.y * p_box.Min().y,
          p_normal.y * p_box.Max().y, p_normal.z * p_box.Min().z, p_normal.z * p_box.Max().z};
}

// The plane's equation for each corner, (a·x + b·y) + c·z + d.
void MeasureDistances(const Box& p_box, BoxCut& p_cut) {
  const Products n = ProductsOf(p_cut.normal, p_box);
  p_cut.distances[0] = n.x0 + n.y0 + n.z0 + p_cut.d;
  p_cut.distances[1] = n.x1 + n.y0 + n.z0 + p_cut.d;
  p_cut.distances[2] = n.x1 + n.y1 + n.z0 + p_cut.d;
  p_cut.distances[3] = n.x0 + n.y1 + n.z0 + p_cut.d;
  p_cut.distances[4] = n.x0 + n.y0 + n.z1 + p_cut.d;
  p_cut.distances[5] = n.x1 + n.y0 + n.z1 + p_cut.d;
  p_cut.distances[6] = n.x1 + n.y1 + n.z1 + p_cut.d;
  p_cut.distances[7] = n.x0 + n.y1 + n.z1 + p_cut.d;
}

// The corner that is farthest in front, the first of several; no distance may be NaN.
std::size_t FrontCorner(const double (&p_distances)[8]) {
  std::size_t front[4];
  for (std::size_t i = 0; i < 4; ++i)
    front[i] = 2 * i + (p_distances[2 * i + 1] > p_distances[2 * i]);
  front[0] = p_distances[front[1]] > p_distances[front[0]] ? front[1] : front[0];
  front[2] = p_distances[front[3]] > p_distances[front[2]] ? front[3] : front[2];
  return p_distances[front[2]] > p_distances[front[0]] ? front[2] : front[0];
}

// The two functions below write the polygon to `p_points`, room for NumSteps, and return the number of its corners.

// The rule, for every box and plane, as documented.
std::size_t CutEdgeByEdge(const BoxCut& p_cut, Vector3* p_points) {
  bool behind = false;
  bool before = false;
  std::size_t front = 0;
  for (std::size_t i = 0; i < 8; ++i) {
    behind |= p_cut.distances[i] <= 0;
    before |= p_cut.distances[i] >= 0;
    if (p_cut.distances[i] > p_cut.distances[front])
      front = i;
  }
  if (!behind || !before)
    return 0;

  std::size_t count = 0;
  std::size_t lastStep = NumSteps;
  for (const Edge& edge : Edges) {
    const Vector3& start = p_cut.corners[Sequences[front][edge.start]];
    const Vector3& end = p_cut.corners[Sequences[front][edge.end]];
    Vector3 point;
    if (!static_cast<bool>(CutSegment(p_cut.normal, p_cut.d, start, end, point)))
      continue; // indeterminate too
    if (edge.step != lastStep)
      ++count;
    lastStep = edge.step;
    p_points[count - 1] = point;
  }
  return count;
}

// The same result, bit for bit, for corners that are all well off the plane: those behind it are given as a set, and
// their distances and the others' exceed all rounding errors and Epsilon.
//
// The divisor of the segment routine, n·(start − end), is then the difference of the distances but for an error that
// decides nothing. With both ends on one side the quotient is above 1 or below 0 (or the edge is parallel): a miss.
// With the ends on two sides it lies between 0 and 1: a hit. Seen from the front corner, which has the largest
// distance, no edge comes from behind the plane to before it, so that a step is hit once at most. What remains is the
// point. Its distance has been computed already, by the same operations, and across the edge start and end are equal:
// the terms that vanish there are left out, but for turning −0 into 0.
std::size_t CutBetweenCorners(const BoxCut& p_cut, unsigned p_behind, Vector3* p_points) {
  constexpr double Vector3::*Axes[] = {&Vector3::x, &Vector3::y, &Vector3::z};
  const std::size_t front = FrontCorner(p_cut.distances);
  std::size_t count = 0;
  for (unsigned edges = CrossingEdges[front][p_behind]; edges != 0; edges &= edges - 1) {
    const PlacedEdge& edge = EdgesFrom[front][__builtin_ctz(edges)];
    const auto axis = Axes[edge.axis];
    const Vector3& start = p_cut.corners[edge.start];
    const double length = p_cut.corners[edge.end].*axis - start.*axis;
    const double t = p_cut.distances[edge.start] / (p_cut.normal.*axis * -length);
    Vector3& point = p_points[count++];
    point = start + Vector3();
    point.*axis = start.*axis + length * t;
  }
  return count;
}

// The distance from the plane beyond which a corner's sign is certain. The errors of distances and divisors stay below
// 2^-48 times the sum of |d| and all coordinates. Infinite where sums might overflow, and for NaN.
double DecisiveDistance(const Box& p_box, double p_d) {
  const Vector3& a = p_box.Min();
  const Vector3& b = p_box.Max();
  const double scale = 1 + std::abs(p_d) + (std::abs(a.x) + std::abs(b.x)) + (std::abs(a.y) + std::abs(b.y)) +
                       (std::abs(a.z) + std::abs(b.z));
  return scale < 0x1p+1000 ? 0x1p-45 * scale : std::numeric_limits<double>::infinity();
}

// Whether the box lies on one side of the plane, farther off than all rounding errors of the rule, which are bounded by
// the products that it sums. Most misses end here, without the square root and the divisions of the unit normal. The
// limits exclude overflow, and underflow that matters, in the rule: the unit normal's components may underflow by
// 2^-1074 each, times coordinates of at most 2^300.
bool PassesBy(const Box& p_box, const Types::Plane& p_plane) {
  const Products n = ProductsOf(p_plane.Normal(), p_box);
  const Vector3& normal = p_plane.Normal();
  const Vector3& point = p_plane.Point();
  const double d = Dot(normal, point);
  const double lowest = std::min(n.x0, n.x1) + std::min(n.y0, n.y1) + std::min(n.z0, n.z1) - d;
  const double highest = std::max(n.x0, n.x1) + std::max(n.y0, n.y1) + std::max(n.z0, n.z1) - d;
  const double scale = (std::abs(normal.x * point.x) + std::abs(n.x0) + std::abs(n.x1)) +
                       (std::abs(normal.y * point.y) + std::abs(n.y0) + std::abs(n.y1)) +
                       (std::abs(normal.z * point.z) + std::abs(n.z0) + std::abs(n.z1));
  const auto sum = [](const Vector3& p_vector) {
    return std::abs(p_vector.x) + std::abs(p_vector.y) + std::abs(p_vector.z);
  };
  const double most = sum(p_box.Min()) + sum(p_box.Max()) + sum(point) + sum(normal);
  return std::max(lowest, -highest) > 0x1p-45 * scale && scale > 0x1p-200 && most < 0x1p+300;
}

} // namespace

tribool Intersect::Intersection(const Types::Plane& p_first, const Types::Plane& p_second,
                                Types::Line3_Base<double>& p_line) {
  const Vector3& n1 = p_first.Normal();
  const Vector3& n2 = p_second.Normal();
  const Vector3 direction = Cross(n1, n2);
  if (Epsilon > Dot(direction, direction))
    return false;

  // The single precision is part of the result.
  const auto a = static_cast<float>(Dot(n1, n1));
  const auto b = static_cast<float>(Dot(n1, n2));
  const auto c = static_cast<float>(Dot(n2, n2));
  const float determinant = c * a - b * b;
  const double d1 = p_first.Equation().w;
  const double d2 = p_second.Equation().w;
  const auto k1 = static_cast<float>((b * d2 - c * d1) / determinant);
  const auto k2 = static_cast<float>((b * d1 - a * d2) / determinant);
  p_line = {n1 * static_cast<double>(k1) + n2 * static_cast<double>(k2), direction};
  return true;
}

tribool Intersect::Intersection(const Types::Plane& p_plane, const Types::Ray_Base<double>& p_ray, Vector3& p_point) {
  return Intersection(p_plane, p_ray.origin, p_ray.origin + p_ray.direction, p_point);
}

tribool Intersect::Intersection(const Types::Plane& p_plane, const Vector3& p_start, const Vector3& p_end,
                                Vector3& p_point) {
  return CutSegment(p_plane.Normal(), p_plane.Equation().w, p_start, p_end, p_point);
}

bool Intersect::Intersection(const Box& p_box, const Types::Plane& p_plane, std::vector<Vector3>& p_points) {
  if (PassesBy(p_box, p_plane)) {
    p_points.clear();
    return false;
  }
  const Vector3 n = -Normalize(p_plane.Normal());
  // By components: copying the whole vector would wait for the stores of its components.
  BoxCut cut{CornersOf(p_box), {}, {n.x, n.y, n.z}, -Dot(n, p_plane.Point())};
  MeasureDistances(p_box, cut);
  unsigned behind = 0;
  double nearest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < 8; ++i) {
    behind |= static_cast<unsigned>(std::signbit(cut.distances[i])) << i;
    nearest = std::min(nearest, std::abs(cut.distances[i])); // skips NaN, for which no distance is certain
  }
  const bool decided = nearest > DecisiveDistance(p_box, cut.d);

  p_points.resize(NumSteps);
  p_points.resize(decided ? CutBetweenCorners(cut, behind, p_points.data()) : CutEdgeByEdge(cut, p_points.data()));
  return !p_points.empty();
}

bool Intersect::Intersection(const Types::Viewport<0>& p_first, const Types::Viewport<0>& p_second,
                             Types::Viewport<0>& p_result) {
  const float left = std::max(p_first.x, p_second.x);
  const float right = std::min(p_first.x + p_first.width, p_second.x + p_second.width);
  const float bottom = std::max(p_first.y, p_second.y);
  const float top = std::min(p_first.y + p_first.height, p_second.y + p_second.height);
  p_result = {}; // only now: the result may be one of the arguments
  if (bottom > top || left > right)
    return false;
  p_result = {left, bottom, static_cast<float>(static_cast<double>(right) - left),
              static_cast<float>(static_cast<double>(top) - bottom)};
  return true;
}

} // namespace Vek::Chart::Library
