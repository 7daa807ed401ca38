#pragma once

#include "scene/InstancedMesh.h"
#include "scene/StreamlineTracer.h"
#include "scene/VectorField.h"
#include "scene/private/LineTubes.h"
#include "scene/private/PlacedContent.h"

#include <vector>

namespace Vek::Chart::Scene::Private {

class StreamlinesContent : public PlacedContent {
public:
  explicit StreamlinesContent(const VectorField& p_field);

  void ColorBySpeed();
  void SetSpacing(double p_fraction);
  void SetWidth(double p_share);
  void SetWidthBySpeed(bool p_bySpeed);
  void SetHeads(bool p_hasHeads);
  void UpdateVectors(const Array3& p_vectors);

  void ValuesChanged() override;
  std::size_t Count() const override { return _field.NodeCount(); }
  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;
  QString Shortage(const Utility::Scoped<Rgl>& p_gl) const override;
  Legend::Mark Mark() const override { return Legend::Mark::Line; }

private:
  Box BoundsOf(const AxisRules& p_rules) const override;
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  Noun Names() const override { return {"node", "nodes"}; }
  /// The distance of neighbouring lines, a fraction of the diagonal of the field.
  double Spacing() const;
  double WidthAt(double p_speed) const;
  void Trace();
  void PlaceLines();
  void PlaceHeads();
  void PlaceValues();
  std::vector<float> PointValues() const;
  std::size_t NearestNode(const Point& p_position) const;
  LineTubes::Quality QualityOf(const Frame& p_frame) const;

  VectorField _field;
  bool _isBySpeed = true;
  double _spacing = 0; ///< 0 for the default
  double _width = 0.15;
  bool _isWidthBySpeed = true, _hasHeads = true;
  bool _leavesLayer = false; ///< whether vectors leave the layer that the field is

  // What was placed.
  bool _areLinesChanged = true; ///< their number, or their width
  double _tracedSpacing = 0;
  std::vector<Streamline> _lines;       ///< in the scene
  double _distance = 0;                 ///< of neighbouring lines in the scene
  double _fast = 0;                     ///< the speed of the widest lines
  std::vector<double> _speeds;          ///< one a point of all lines, one after the other
  std::vector<float> _values;           ///< likewise; none in one colour
  std::vector<std::size_t> _headPoints; ///< the point that each head has its colour from
  LineTubes _tubes;
  InstancedMesh _heads;
};

} // namespace Vek::Chart::Scene::Private
