#pragma once

#include "scene/Array.h"
#include "scene/InstancedMesh.h"
#include "scene/private/PlacedContent.h"

#include "platform/model/Symbol.h"

#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

class ScatterContent : public PointsContent {
public:
  explicit ScatterContent(const Array3& p_positions);

  void SetDiameter(double p_fraction);
  void SetSizes(std::vector<double> p_values);
  void SetSizeGrowth(double p_factor);
  void SetSizeTitle(const QString& p_title) { _sizeTitle = p_title; }
  void SetColors(const std::vector<QColor>& p_colors);
  void ValuesChanged() override;
  void SetSymbol(Model::Symbol::Shape p_shape);

  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::optional<SizeKey> Sizes() const override;
  QString Shortage(const Utility::Scoped<Rgl>& p_gl) const override { return StepNote(_mesh.Step(p_gl), Names()); }

private:
  double Fraction() const;
  void FindSizeRange();
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override { _mesh.Release(p_gl); }
  void SetLevels();
  void PlaceColors();
  void SetLeastSize(const Frame& p_frame);

  std::vector<double> _sizes;      ///< values; none for equal sizes
  double _growth = 0;              ///< of diameters for each unit; 0 for areas in proportion
  double _least = 0, _largest = 0; ///< of the sizes with a symbol; NaN without any
  QString _sizeTitle;
  double _diameter = 0;                     ///< fraction of the diagonal; 0 for the default
  std::vector<InstancedMesh::Rgba> _colors; ///< of the points; none for those of the plot
  std::vector<InstancedMesh::Level> _levels = InstancedMesh::Spheres();

  // What was placed.
  bool _sizesChanged = true;
  double _placedDiameter = 0; ///< in scene units; 0 to set levels anew
  double _placedOpacity = 1;  ///< in the colours of the points
  Box _box;                   ///< of the points in the scene
  InstancedMesh _mesh;
};

} // namespace Vek::Chart::Scene::Private
