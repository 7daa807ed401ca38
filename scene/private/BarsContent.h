#pragma once

#include "scene/Array.h"
#include "scene/GpuMesh.h"
#include "scene/private/PlacedContent.h"

#include <vector>

namespace Vek::Chart::Scene::Private {

/// Positions have the heights of bars as z.
class BarsContent : public PointsContent {
public:
  BarsContent(const Array1& p_x, const Array1& p_y, const Array1& p_heights);

  void ColorByHeight();
  void SetWidth(double p_fraction);
  void UpdateHeights(const Array1& p_heights);

  void ValuesChanged() override;
  bool LeavesPlane() const override { return true; }
  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;
  Legend::Mark Mark() const override { return Legend::Mark::Patch; }

private:
  /// Where a bar begins and ends.
  struct Span {
    double from = 0, to = 0; ///< heights; `from` is the base
    bool isShown = false;    ///< whether some of it is within the limits
    bool isCut = false;      ///< whether its end is not
  };
  Span SpanOf(std::size_t p_index, const AxisRules& p_rules, double p_base) const;
  double BaseOf(const AxisRules& p_rules) const;
  Box BoundsOf(const AxisRules& p_rules) const override;
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override { _mesh.Release(p_gl); }
  Noun Names() const override { return {"bar", "bars"}; }
  void PlaceBars();
  Point HalfWidth() const;
  std::vector<float> VertexValues() const;

  bool _isByHeight = true;
  double _width = 0.8; ///< of the distance of neighbours

  // What was placed.
  double _base = 0;
  std::size_t _cut = 0; ///< bars that end at a limit
  Box _box;             ///< of the bars in the scene
  GpuMesh _mesh;
};

} // namespace Vek::Chart::Scene::Private
