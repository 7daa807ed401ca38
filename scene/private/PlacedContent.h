#pragma once

#include "scene/Array.h"
#include "scene/private/Notes.h"
#include "scene/private/PlotContent.h"

#include <optional>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Points that are not drawn, by reason.
struct LeftOut {
  std::size_t missing = 0; ///< not finite
  std::size_t hidden = 0;  ///< not shown by the rules of the axes

  /// Whether the rules show a point; counts it otherwise.
  bool Shows(const AxisRules& p_rules, const Point& p_point) {
    const bool isShown = p_rules.Shows(p_point);
    if (!isShown)
      ++(IsFinite(p_point) ? hidden : missing);
    return isShown;
  }
};

/// A plot that is placed again only where its data, its values or the placement changed. Data and settings are changed
/// through `DataChanged` and `SettingsChanged`.
class PlacedContent : public PlotContent {
public:
  void ValuesChanged() override { _valuesChanged = true; }
  Box Bounds(const AxisRules& p_rules) final;
  Box Place(const Placement& p_placement) final;
  void Release(const Utility::Scoped<Rgl>& p_gl) const final;
  /// Points that are left out and values that are missing.
  std::vector<QString> Notes() const override;

protected:
  /// What changed since the last placing.
  struct Changes {
    bool isFirst = false; ///< nothing was placed before
    bool isMoved = false; ///< the data, the transformation, or the rules; true at first
    bool isBent = false;  ///< the transformation; true at first
    bool values = false;  ///< those of the colours
  };

  void DataChanged() { _dataChanged = true; }
  void SettingsChanged() { _settingsChanged = true; }

  /// The box around the data that the rules show (see Bounds). Called after data or rules changed.
  virtual Box BoundsOf(const AxisRules& p_rules) const = 0;
  /// Places by `placement` what changed, counts `leftOut`, and returns the box around whole glyphs.
  virtual Box PlaceChanged(const Changes& p_changes) = 0;
  /// Frees what the scope's context has, but for the colour map.
  virtual void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const = 0;
  /// What elements are called in the notes.
  virtual Noun Names() const { return {"point", "points"}; }

  LeftOut _leftOut;

private:
  bool _isPlaced = false, _dataChanged = true, _settingsChanged = true, _valuesChanged = true;
  Box _box; ///< as placed
  AxisRules _boundsRules;
  std::optional<Box> _bounds; ///< by these rules; none after the data changed
};

/// A plot of points in space.
class PointsContent : public PlacedContent {
public:
  explicit PointsContent(std::vector<Point> p_positions)
      : _positions(std::move(p_positions)) {}

  /// Throws std::invalid_argument for another number of points.
  void UpdatePositions(const Array3& p_positions);
  std::size_t Count() const override { return _positions.size(); }

protected:
  Box BoundsOf(const AxisRules& p_rules) const override;
  /// Whether a point can be drawn if the rules show it.
  virtual bool IsUsed(std::size_t /*p_index*/) const { return true; }
  /// The points in the scene, NaN for those that are left out, which are counted, and those that are not used. `p_box`
  /// becomes the box around them.
  std::vector<Point> PlacedPoints(Box& p_box, bool p_isSurface = false);

  std::vector<Point> _positions;
};

} // namespace Vek::Chart::Scene::Private
