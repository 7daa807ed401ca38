#include "scene/private/TubePieces.h"

#include <cmath>
#include <cstddef>

namespace Vek::Chart::Scene::Private {

namespace {

using Vector = Types::Vector3_Base<double>;
using Types::Matrix3;
using TubePoint = TubeMesh::Point;

bool InRange(double p_number) {
  return std::abs(p_number) <= 1e30; // false for NaN
}

bool IsValid(const TubePoint& p_point) {
  const Vector& position = p_point.position;
  return InRange(position.x) && InRange(position.y) && InRange(position.z) && InRange(p_point.value) &&
         InRange(p_point.width) && p_point.width > 0;
}

/// The valid points of a line.
std::vector<TubePoint> Cleaned(const std::vector<TubePoint>& p_line) {
  std::vector<TubePoint> line;
  for (const TubePoint& point : p_line) {
    if (!IsValid(point))
      continue;
    if (!line.empty()) {
      const double step = Length(point.position - line.back().position);
      if (!(step > 0) || step < 1e-6 * line.back().width)
        continue;
    }
    line.push_back(point);
  }
  return line;
}

Vector Direction(const TubePoint& p_from, const TubePoint& p_to) {
  return Normalize(p_to.position - p_from.position);
}

/// The frame with z along `p_direction` and −y as close to `p_up` as possible.
Matrix3 StartFrame(const Vector& p_direction, const Vector& p_up) {
  Vector side = Cross(p_direction, p_up);
  if (!(Length(side) > 1e-9 * Length(p_up)))
    side = std::abs(p_direction.x) < 0.7 ? Cross(p_direction, Vector(1, 0, 0)) : Cross(p_direction, Vector(0, 1, 0));
  const Vector x = Normalize(side);
  return Matrix3::FromColumns(x, Cross(p_direction, x), p_direction);
}

/// Adds the frames of a piece. `p_frame` is that of the last station before, and then of the last one here.
std::vector<TubeStation> Framed(const std::vector<TubePoint>& p_piece, Matrix3& p_frame) {
  std::vector<TubeStation> stations;
  stations.reserve(p_piece.size());
  p_frame = TubeMesh::Transported(p_frame, Direction(p_piece[0], p_piece[1]));
  Vector before = Direction(p_piece[0], p_piece[1]);
  for (std::size_t i = 0; i < p_piece.size(); ++i) {
    // The ring lies in the plane that halves the corner.
    const Vector after = i + 1 < p_piece.size() ? Direction(p_piece[i], p_piece[i + 1]) : before;
    p_frame = TubeMesh::Transported(p_frame, Normalize(before + after));
    stations.push_back({p_piece[i], p_frame});
    before = after;
  }
  return stations;
}

} // namespace

std::vector<std::vector<TubeStation>> TubePieces(const std::vector<TubePoint>& p_line, const Vector& p_up) {
  const std::vector<TubePoint> line = Cleaned(p_line);
  std::vector<std::vector<TubeStation>> pieces;
  if (line.size() < 2)
    return pieces;
  Matrix3 frame = StartFrame(Direction(line[0], line[1]), p_up);
  constexpr double CosineOfSharpestTurn = -0.5;
  std::vector<TubePoint> piece = {line[0]};
  for (std::size_t i = 1; i < line.size(); ++i) {
    piece.push_back(line[i]);
    if (i + 1 == line.size() ||
        Dot(Direction(line[i - 1], line[i]), Direction(line[i], line[i + 1])) < CosineOfSharpestTurn) {
      pieces.push_back(Framed(piece, frame));
      piece = {line[i]};
    }
  }
  return pieces;
}

} // namespace Vek::Chart::Scene::Private
