#pragma once

#include "scene/Array.h"
#include "scene/InstancedMesh.h"
#include "scene/private/PlotContent.h"

#include "platform/model/Symbol.h"

#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

class ScatterContent : public PlotContent {
public:
  explicit ScatterContent(const Array3& p_positions);

  void SetDiameter(double p_fraction) { _diameter = p_fraction; }
  void SetSizes(std::vector<double> p_values);
  void SetSizeTitle(const QString& p_title) { _sizeTitle = p_title; }
  void SetSymbol(Model::Symbol::Shape p_shape);
  void UpdatePositions(const Array3& p_positions);

  void ValuesChanged() override { _valuesChanged = true; }
  std::size_t Count() const override { return _positions.size(); }
  Box Bounds(const AxisRules& p_rules) const override;
  Box Place(const Placement& p_placement) override;
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void Release(const Utility::Scoped<Rgl>& p_gl) const override;
  std::vector<QString> Notes() const override;
  std::optional<SizeKey> Sizes() const override;

private:
  double Fraction() const { return _diameter > 0 ? _diameter : _sizes.empty() ? 0.01 : 0.04; }
  void PlacePoints();
  void SetLevels();

  std::vector<Point> _positions;
  std::vector<double> _sizes;      ///< values; none for equal sizes
  double _least = 0, _largest = 0; ///< of the sizes above 0
  QString _sizeTitle;
  double _diameter = 0; ///< fraction of the diagonal; 0 for the default
  std::vector<InstancedMesh::Level> _levels = InstancedMesh::Spheres();

  // What was placed.
  bool _isPlaced = false, _positionsChanged = true, _sizesChanged = true, _valuesChanged = true;
  Placement _placement;
  double _placedDiameter = 0; ///< in scene units; 0 to set levels anew
  std::size_t _missing = 0, _hidden = 0;
  Box _box; ///< of the points in the scene
  InstancedMesh _mesh;
};

} // namespace Vek::Chart::Scene::Private
