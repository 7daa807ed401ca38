#include "scene/private/QuiverContent.h"

#include "scene/private/Thinning.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr std::size_t MostArrows = 10000;
constexpr double FlatHead = 0.2; // half width of the head of a flat arrow of length 1

/// A flat arrow of length 1, bolder than the built-in glyph: short arrows are a few pixels long and still seen.
///
///         0          z, the axis
///     1 3   4 2      |
///                    +-- x, with the normal y
///       5   6
GpuMesh FlatArrow() {
  constexpr double Shaft = 0.06, Neck = 0.58; // half width of the shaft; where the head begins
  const std::vector<Point> positions{{0, 0, 1},        {-FlatHead, 0, Neck}, {FlatHead, 0, Neck}, {-Shaft, 0, Neck},
                                     {Shaft, 0, Neck}, {-Shaft, 0, 0},       {Shaft, 0, 0}};
  const std::vector<Point> normals(positions.size(), Point(0, 1, 0));
  GpuMesh::Arrays arrays;
  arrays.positions = positions;
  arrays.normals = normals;
  arrays.indices = {0, 2, 1, 3, 4, 6, 3, 6, 5};
  return GpuMesh(arrays);
}

/// The area of a flat arrow, for sizes at which no corner of it is wrong by a fifth of a pixel.
///
///     1---2   z
///      \ /    |
///       0     +-- x
InstancedMesh::Level FlatTriangle() {
  constexpr double Far = 0.9, Half = 0.17, Error = 0.13;
  const std::vector<Point> positions{{0, 0, 0}, {-Half, 0, Far}, {Half, 0, Far}}, normals(3, Point(0, 1, 0));
  GpuMesh::Arrays arrays;
  arrays.positions = positions;
  arrays.normals = normals;
  InstancedMesh::Level level{GpuMesh(arrays)};
  level.mostPixels = 0.2 / Error;
  return level;
}

/// Arrows of length 1. Solid ones have a front and a back in all levels.
std::vector<InstancedMesh::Level> ArrowLevels(bool p_isFlat, bool p_isSolid) {
  if (p_isFlat)
    return {FlatTriangle(), InstancedMesh::Level(FlatArrow())};
  std::vector<InstancedMesh::Level> levels = InstancedMesh::Arrows();
  const auto isOutline = [](const InstancedMesh::Level& p_level) {
    return p_level.facing == InstancedMesh::Level::Facing::Outline;
  };
  if (p_isSolid)
    levels.erase(std::remove_if(levels.begin(), levels.end(), isOutline), levels.end());
  return levels;
}

/// Levels at another scale.
std::vector<InstancedMesh::Level> Scaled(std::vector<InstancedMesh::Level> p_levels, double p_scale) {
  for (InstancedMesh::Level& level : p_levels) {
    level.scale *= p_scale;
    level.mostPixels /= p_scale;
  }
  return p_levels;
}

} // namespace

QuiverContent::QuiverContent(const Array3& p_positions, const Array3& p_vectors)
    : PointsContent(Points(p_positions))
    , _vectors(Points(p_vectors)) {
  RequireCount("Quiver: vectors", p_vectors.Count(), p_positions.Count());
}

void QuiverContent::SetUnitLength(double p_fraction) {
  _unitLength = p_fraction;
  SettingsChanged();
}

void QuiverContent::SetTypical(double p_length, double p_fraction) {
  _givenTypical = p_length;
  _givenSpacing = p_fraction;
  SettingsChanged();
}

void QuiverContent::SetMost(std::size_t p_count) {
  _most = p_count;
  SettingsChanged();
}

void QuiverContent::UpdateVectors(const Array3& p_vectors) {
  RequireCount("UpdateVectors", p_vectors.Count(), Count());
  _vectors = Points(p_vectors);
  _vectorsChanged = true;
  DataChanged();
  if (_isByLength)
    ColorByLength();
}

void QuiverContent::ColorByLength() {
  std::vector<double> lengths; // missing vectors are not drawn, so they are no missing values of the colour bar
  lengths.reserve(_vectors.size());
  for (const Point& vector : _vectors)
    if (IsFinite(vector))
      lengths.push_back(Length(vector));
  coloring.SetValues(lengths);
  PointsContent::ValuesChanged();
  _isByLength = true;
}

void QuiverContent::ValuesChanged() {
  _isByLength = false;
  PointsContent::ValuesChanged();
}

bool QuiverContent::LeavesPlane() const {
  return std::any_of(_vectors.begin(), _vectors.end(),
                     [](const Point& p_vector) { return std::isfinite(p_vector.z) && p_vector.z != 0; });
}

template <class T>
std::vector<T> QuiverContent::OfDrawn(const std::vector<T>& p_all, const std::vector<std::uint32_t>& p_indices) const {
  std::vector<T> chosen;
  chosen.reserve(p_indices.size());
  for (const std::uint32_t index : p_indices)
    chosen.push_back(p_all[index]);
  return chosen;
}

std::vector<double> QuiverContent::LengthsOf(const std::vector<std::uint32_t>& p_indices) const {
  std::vector<double> lengths;
  lengths.reserve(p_indices.size());
  for (const std::uint32_t index : p_indices)
    lengths.push_back(Length(_vectors[index]));
  return lengths;
}

Box QuiverContent::PlaceChanged(const Changes& p_changes) {
  const std::size_t room = _most != 0 ? _most : std::min(MostArrows, _placement.most);
  const std::vector<Point> oldPositions = OfDrawn(_scene, _drawn);
  const std::vector<std::uint32_t> oldDrawn = _drawn, oldZero = _zero;
  if (p_changes.isMoved || room != _room)
    Choose(room);
  const std::vector<Point> drawnPositions = OfDrawn(_scene, _drawn), zeroPositions = OfDrawn(_scene, _zero);
  if (p_changes.isFirst || _drawn != oldDrawn || _zero != oldZero) {
    // Other elements: all arrays are new.
    const auto positioned = [this](const std::vector<Point>& p_positions,
                                   const std::vector<std::uint32_t>& p_elements) {
      InstancedMesh::Instances instances;
      instances.positions = p_positions;
      if (Count() <= PickPass::NoElement) // otherwise there are no ids for all
        instances.ids = p_elements;
      return InstancedMesh(GpuMesh(), instances);
    };
    _arrows = positioned(drawnPositions, _drawn);
    _dots = positioned(zeroPositions, _zero);
    PlaceVectors();
    PlaceValues();
    _scale = 0;
  } else {
    const bool isTurned = p_changes.isBent || (p_changes.isMoved && _placement.transform.IsLogarithmic());
    if (drawnPositions != oldPositions) {
      _arrows.UpdatePositions(drawnPositions);
      _dots.UpdatePositions(zeroPositions);
    }
    if (isTurned || _vectorsChanged)
      PlaceVectors();
    if (p_changes.values)
      PlaceValues();
  }
  _vectorsChanged = false;

  const double dots = _spacing;
  if (_givenTypical > 0) {
    _typical = _givenTypical;
    _spacing = _givenSpacing * _placement.diagonal;
  }
  const double scale = _unitLength > 0 ? _unitLength * _placement.diagonal : _typical > 0 ? _spacing / _typical : 1;
  if (scale != _scale || _spacing != dots || _isFlat != _placement.isFlat) {
    _scale = scale;
    _isFlat = _placement.isFlat;
    SetLevels();
  }
  return BoxOfArrows();
}

/// Around whole arrows: both ends, with a disc as wide as the head across the direction.
Box QuiverContent::BoxOfArrows() const {
  const double head = _placement.isFlat ? FlatHead : 1.0 / 9;
  Box box;
  for (const std::uint32_t index : _drawn) {
    const Point direction = Normalize(_placement.transform.Direction(_positions[index], _vectors[index]));
    const double length = Length(_vectors[index]) * _scale;
    const auto across = [&](double p_along) { return head * length * std::sqrt(std::max(0.0, 1 - p_along * p_along)); };
    const Point disc(across(direction.x), across(direction.y), _placement.isFlat ? 0 : across(direction.z));
    box += _scene[index] - disc;
    box += _scene[index] + disc;
    box += _scene[index] + direction * length - disc;
    box += _scene[index] + direction * length + disc;
  }
  return box;
}

void QuiverContent::Choose(std::size_t p_room) {
  _room = p_room;
  Box box;
  _scene = PlacedPoints(box);
  std::vector<std::uint32_t> candidates;
  candidates.reserve(_scene.size());
  for (std::size_t i = 0; i < _scene.size(); ++i) {
    if (IsFinite(_scene[i]))
      candidates.push_back(static_cast<std::uint32_t>(i));
    else if (!IsUsed(i))
      ++_leftOut.missing;
  }
  _candidates = candidates.size();
  _drawn = Thinned(_scene, candidates, p_room);

  _zero.clear();
  std::vector<double> lengths;
  lengths.reserve(_drawn.size());
  for (const std::uint32_t index : _drawn) {
    const double length = Length(_vectors[index]);
    if (length > 0)
      lengths.push_back(length);
    else
      _zero.push_back(index);
  }
  constexpr double LoneSpacing = 0.15; // of the diagonal, for a single arrow
  const double spacing = MedianSpacing(_scene, _drawn);
  _spacing = spacing > 0 ? spacing : LoneSpacing * _placement.diagonal;
  _typical = 0;
  if (!lengths.empty()) {
    const auto at = static_cast<std::ptrdiff_t>(std::ceil(0.98 * static_cast<double>(lengths.size() - 1)));
    std::nth_element(lengths.begin(), lengths.begin() + at, lengths.end());
    _typical = lengths[static_cast<std::size_t>(at)];
  }
}

void QuiverContent::PlaceVectors() {
  std::vector<Point> directions;
  directions.reserve(_drawn.size());
  for (const std::uint32_t index : _drawn)
    directions.push_back(Normalize(_placement.transform.Direction(_positions[index], _vectors[index])));
  _arrows.UpdateDirections(directions);
  _arrows.UpdateSizes(LengthsOf(_drawn));
}

void QuiverContent::PlaceValues() {
  if (coloring.Values().empty()) {
    _arrows.UpdateValues({});
    _dots.UpdateValues({});
    return;
  }
  const std::vector<double> lengths = LengthsOf(_drawn);
  if (_isByLength) {
    _valuesAreLengths = true;
    _arrows.UpdateValues(lengths);
    _dots.UpdateValues(LengthsOf(_zero));
    return;
  }
  const std::vector<float> values = OfDrawn(coloring.Values(), _drawn);
  constexpr double Same = 1e-3; // of a length
  _valuesAreLengths = std::equal(values.begin(), values.end(), lengths.begin(), [this](float p_value, double p_length) {
    return std::abs(coloring.ValueOf(p_value) - p_length) <= Same * p_length;
  });
  _arrows.UpdateValues(values);
  _dots.UpdateValues(OfDrawn(coloring.Values(), _zero));
}

void QuiverContent::SetLevels() {
  // Lengths of the data are scaled by the level, so that another scale uploads no instance.
  _arrows.SetLevels(Scaled(ArrowLevels(_placement.isFlat, _isSolid), _scale));
  constexpr double DotShare = 0.12; // of the distance between neighbours
  _dots.SetLevels(Scaled(InstancedMesh::Spheres(), DotShare * _spacing));
}

void QuiverContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  const Library::ColorMap& map = coloring.Map(p_gl);
  // Fronts and backs are seen through one another.
  if (const bool isSolid = IsTransparent() && !p_frame.isMoving; std::exchange(_isSolid, isSolid) != isSolid)
    SetLevels();
  _arrows.SetMostVertices(p_frame.mostVertices);
  _dots.SetMostVertices(p_frame.mostVertices);
  _arrows.SetMostAtOnce(p_frame.mostAtOnce);
  _dots.SetMostAtOnce(p_frame.mostAtOnce);
  _arrows.Draw(p_gl, map, coloring.Scale(), p_frame.layer);
  _dots.Draw(p_gl, map, coloring.Scale(), p_frame.layer);
}

void QuiverContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame&, const PickPass& p_pass) {
  _arrows.Draw(p_gl, p_pass);
  _dots.Draw(p_gl, p_pass);
}

QString QuiverContent::Shortage(const Utility::Scoped<Rgl>& p_gl) const {
  return StepNote(std::max(_arrows.Step(p_gl), _dots.Step(p_gl)), Names());
}

Picked QuiverContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  return p_number && Count() <= PickPass::NoElement ? PickedAt(*p_number, _positions[*p_number])
                                                    : PlotContent::Identify({}, p_scene);
}

void QuiverContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  _arrows.Release(p_gl);
  _dots.Release(p_gl);
}

std::vector<QString> QuiverContent::Notes() const {
  std::vector<QString> notes = PointsContent::Notes();
  if (_drawn.size() < _candidates)
    notes.insert(notes.begin(), Grouped(_drawn.size()) + " of " + Grouped(_candidates) + " arrows drawn");
  return notes;
}

std::optional<LengthKey> QuiverContent::Lengths() const {
  if (!(_typical > 0))
    return {};
  const auto colors = coloring.Key();
  const QString title = !_lengthTitle.isEmpty()       ? _lengthTitle
                        : colors && _valuesAreLengths ? colors->title
                                                      : QStringLiteral("Length");
  return LengthKey{title, _scale, _typical * _scale, colors ? QColor() : coloring.Sample()};
}

} // namespace Vek::Chart::Scene::Private
