#include "scene/private/LinesContent.h"

#include "scene/private/Notes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

LinesContent::LinesContent(std::vector<Point> p_positions, std::vector<std::size_t> p_lengths)
    : PointsContent(std::move(p_positions))
    , _lengths(std::move(p_lengths)) {
  constexpr std::size_t Most = std::numeric_limits<int>::max() / 2; // with an end of each line
  if (_positions.size() > Most || _lengths.size() > Most)
    throw std::invalid_argument("Lines: expected at most " + std::to_string(Most) + " points and lines");
  if (_lengths.empty())
    _lengths = {_positions.size()};
  std::size_t left = _positions.size();
  for (const std::size_t length : _lengths) {
    if (length > left)
      throw std::invalid_argument("lengths: expected " + std::to_string(_positions.size()) +
                                  " points in all lines, got more");
    left -= length;
  }
  if (left != 0)
    throw std::invalid_argument("lengths: expected " + std::to_string(_positions.size()) +
                                " points in all lines, got " + std::to_string(_positions.size() - left));
}

void LinesContent::SetWidth(double p_points) {
  _width = p_points;
  SetDiameter(0);
}

void LinesContent::SetDiameter(double p_diameter) {
  _isShapeChanged = _isShapeChanged || p_diameter != _diameter;
  _diameter = p_diameter;
  SettingsChanged();
}

Box LinesContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved)
    PlacePoints();
  if (p_changes.isMoved || _diameter > 0)
    _hasCoarse = false;
  else if (_hasCoarse && p_changes.values)
    _coarse.SetValues(TubeValues());
  const bool isShaped = p_changes.isMoved || _isShapeChanged;
  const bool isTubes = _diameter > 0;
  if (isShaped && isTubes)
    PlaceTubes();
  else if (isShaped)
    _lines.SetPoints(Separated(_scene, Point(NAN, NAN, NAN)));
  if (isTubes && p_changes.values && !isShaped)
    _tubes.SetValues(TubeValues());
  if (!isTubes && (p_changes.values || _isShapeChanged))
    _lines.SetValues(Separated(coloring.Values(), std::nanf("")));
  _isShapeChanged = false;

  if (_box.Empty() || !isTubes)
    return _box;
  const double radius = SceneDiameter() / 2;
  const Point half(radius, radius, _placement.isFlat ? 0 : radius);
  return {_box.Min() - half, _box.Max() + half};
}

/// With an element between lines, in the order of the points.
template <class T>
std::vector<T> LinesContent::Separated(const std::vector<T>& p_elements, const T& p_separator) const {
  if (p_elements.empty())
    return {};
  std::vector<T> separated;
  separated.reserve(p_elements.size() + _lengths.size());
  auto next = p_elements.begin();
  for (const std::size_t length : _lengths) {
    separated.insert(separated.end(), next, next + static_cast<std::ptrdiff_t>(length));
    separated.push_back(p_separator);
    next += static_cast<std::ptrdiff_t>(length);
  }
  separated.pop_back();
  return separated;
}

void LinesContent::PlacePoints() {
  _scene = PlacedPoints(_box);
  _pieces.clear();
  std::uint32_t next = 0;
  for (const std::size_t length : _lengths) {
    bool isOpen = false; // whether the last piece goes on
    for (std::size_t i = 0; i < length; ++i, ++next) {
      const bool isShown = IsFinite(_scene[next]);
      if (isShown && !isOpen)
        _pieces.push_back({next, 0});
      if (isShown)
        ++_pieces.back().count;
      isOpen = isShown;
    }
  }
}

void LinesContent::PlaceTubes() {
  _tubes.SetLines(PiecesOf(SceneDiameter()), TubeValues(), _placement.isFlat);
}

std::vector<std::vector<TubeMesh::Point>> LinesContent::PiecesOf(double p_width) const {
  std::vector<std::vector<TubeMesh::Point>> lines;
  lines.reserve(_pieces.size());
  for (const Piece& piece : _pieces) {
    lines.emplace_back();
    lines.back().reserve(piece.count);
    for (std::uint32_t i = 0; i < piece.count; ++i)
      lines.back().push_back({_scene[piece.first + i], p_width, 0});
  }
  return lines;
}

/// The values of the points of all pieces.
std::vector<float> LinesContent::TubeValues() const {
  const std::vector<float>& values = coloring.Values();
  std::vector<float> chosen;
  if (!values.empty())
    for (const Piece& piece : _pieces)
      chosen.insert(chosen.end(), values.begin() + piece.first, values.begin() + piece.first + piece.count);
  return chosen;
}

void LinesContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  const Library::ColorMap& map = coloring.Map(p_gl);
  if (IsCoarse(p_frame.mostMoving))
    PlaceCoarse(p_gl);
  _isCoarse = IsCoarse(p_frame.mostVertices);
  if (_diameter > 0 || _isCoarse)
    (_isCoarse ? _coarse : _tubes).Draw(p_gl, map, coloring.Scale(), QualityOf(p_frame), p_frame.layer);
  else
    _lines.Draw(p_gl, map, coloring.Scale(), _width * p_frame.pixelRatio, p_frame.layer);
}

/// Whether there is only time to draw lines without round joints, and with fewer segments.
bool LinesContent::IsCoarse(std::size_t p_mostVertices) const {
  constexpr std::size_t Vertices = 4; // of a segment
  return _diameter == 0 && p_mostVertices != 0 && Vertices * Count() > p_mostVertices;
}

/// In a frame at rest, which takes longer, so that the first one of a moving camera does not wait.
void LinesContent::PlaceCoarse(Utility::Scoped<Rgl>& p_gl) {
  constexpr double Thin = 1e-9; // in diagonals; their width is one on the screen
  if (!std::exchange(_hasCoarse, true))
    _coarse.SetLines(PiecesOf(Thin * _placement.diagonal), TubeValues(), _placement.isFlat);
  _coarse.Upload(p_gl);
}

LineTubes::Quality LinesContent::QualityOf(const Frame& p_frame) const {
  const bool isOpen = !p_frame.isMoving && (IsTransparent() || !p_frame.cuts.empty());
  return {isOpen, p_frame.mostVertices, _isCoarse ? _width * p_frame.pixelRatio : 0};
}

QString LinesContent::Shortage(const Utility::Scoped<Rgl>& p_gl) const {
  return _isCoarse || _diameter > 0 ? StepNote((_isCoarse ? _coarse : _tubes).Step(p_gl), {"line", ""}) : QString();
}

void LinesContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) {
  if (_diameter > 0)
    _tubes.DrawPick(p_gl, p_pass);
  else
    _lines.DrawPick(p_gl, _width * p_frame.pixelRatio, p_pass);
}

/// The point nearest to a position on a tube; tubes count them in the pieces.
std::optional<std::size_t> LinesContent::PointOfTube(std::uint32_t p_number, const Point& p_scene) const {
  std::optional<std::size_t> number = _tubes.PointOf(p_number, p_scene);
  for (const Piece& piece : _pieces) {
    if (number && *number < piece.count)
      return piece.first + *number;
    if (number)
      *number -= piece.count;
  }
  return {};
}

/// The nearer end of a segment, which is counted with the separators.
std::optional<std::size_t> LinesContent::PointOfSegment(std::uint32_t p_segment, const Point& p_scene) const {
  std::size_t first = 0, separators = 0;
  for (const std::size_t length : _lengths) {
    const std::size_t point = p_segment - separators;
    if (p_segment < first + length && point + 1 < Count())
      return Length(_scene[point + 1] - p_scene) < Length(_scene[point] - p_scene) ? point + 1 : point;
    first += length + 1;
    ++separators;
  }
  return {};
}

Picked LinesContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  std::optional<std::size_t> point;
  if (p_number)
    point = _diameter > 0 ? PointOfTube(*p_number, p_scene) : PointOfSegment(*p_number, p_scene);
  return point ? PickedAt(*point, _placement.transform.Inverse(p_scene)) : PlotContent::Identify({}, p_scene);
}

void LinesContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  _tubes.Release(p_gl);
  _coarse.Release(p_gl);
  _lines.Release(p_gl);
}

std::vector<QString> LinesContent::Notes() const {
  std::vector<QString> notes = PointsContent::Notes();
  const auto single =
      std::count_if(_pieces.begin(), _pieces.end(), [](const Piece& p_piece) { return p_piece.count == 1; });
  AddCount(notes, static_cast<std::size_t>(single), {"point", "points"}, "without a neighbour");
  return notes;
}

} // namespace Vek::Chart::Scene::Private
