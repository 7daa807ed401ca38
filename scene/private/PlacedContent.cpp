#include "scene/private/PlacedContent.h"

#include <cmath>

namespace Vek::Chart::Scene::Private {

Box PlacedContent::Bounds(const AxisRules& p_rules) {
  if (_dataChanged || !_bounds || _boundsRules != p_rules)
    _bounds = BoundsOf(p_rules);
  _boundsRules = p_rules;
  return *_bounds;
}

Box PlacedContent::Place(const Placement& p_placement) {
  Changes changes;
  changes.isFirst = !_isPlaced;
  changes.isBent = !_isPlaced || _placement.transform != p_placement.transform;
  changes.isMoved = changes.isBent || _dataChanged || _placement.rules != p_placement.rules;
  changes.values = _valuesChanged;
  if (!changes.isMoved && !changes.values && !_settingsChanged && _placement == p_placement)
    return _box;
  _placement = p_placement;
  _box = PlaceChanged(changes);
  _isPlaced = true;
  if (_dataChanged)
    _bounds.reset();
  _dataChanged = _settingsChanged = _valuesChanged = false;
  return _box;
}

void PlacedContent::Release(const Utility::Scoped<Rgl>& p_gl) const {
  ReleaseParts(p_gl);
  coloring.Release(p_gl);
}

std::vector<QString> PlacedContent::Notes() const {
  const Noun names = Names();
  std::vector<QString> notes;
  AddCount(notes, _leftOut.missing, names, "missing");
  AddCount(notes, _leftOut.hidden, names, "outside of the axes");
  AddCount(notes, coloring.MissingCount(), {"value", "values"}, "missing");
  return notes;
}

void PointsContent::UpdatePositions(const Array3& p_positions) {
  RequireCount("UpdatePositions", p_positions.Count(), Count());
  _positions = Points(p_positions);
  DataChanged();
}

Box PointsContent::BoundsOf(const AxisRules& p_rules) const {
  Box box;
  for (std::size_t i = 0; i < _positions.size(); ++i)
    if (IsUsed(i) && p_rules.Shows(_positions[i]))
      box += _positions[i];
  return box;
}

std::vector<Point> PointsContent::PlacedPoints(Box& p_box, bool p_isSurface) {
  std::vector<Point> placed(_positions.size(), Point(NAN, NAN, NAN));
  p_box = {};
  _leftOut = {};
  for (std::size_t i = 0; i < _positions.size(); ++i)
    if (IsUsed(i)) {
      const bool isShown = _leftOut.Shows(_placement.rules, _positions[i]);
      if (isShown || (p_isSurface && _placement.rules.HasVertex(_positions[i])))
        placed[i] = _placement.transform(_positions[i]);
      if (isShown)
        p_box += placed[i];
    }
  return placed;
}

} // namespace Vek::Chart::Scene::Private
