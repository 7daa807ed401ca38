#pragma once

#include "scene/Array.h"
#include "scene/InstancedMesh.h"
#include "scene/private/PlacedContent.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

class QuiverContent : public PointsContent {
public:
  QuiverContent(const Array3& p_positions, const Array3& p_vectors);

  void SetUnitLength(double p_fraction);
  void SetTypical(double p_length, double p_fraction);
  void SetLengthTitle(const QString& p_title) { _lengthTitle = p_title; }
  void SetMost(std::size_t p_count);
  void ColorByLength();
  void UpdateVectors(const Array3& p_vectors);

  void ValuesChanged() override;
  bool LeavesPlane() const override;
  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;
  QString Shortage(const Utility::Scoped<Rgl>& p_gl) const override;
  Legend::Mark Mark() const override { return Legend::Mark::Glyph; }
  std::optional<LengthKey> Lengths() const override;

private:
  bool IsUsed(std::size_t p_index) const override { return IsFinite(_vectors[p_index]); }
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  Noun Names() const override { return {"arrow", "arrows"}; }
  void Choose(std::size_t p_room);
  void PlaceVectors();
  void PlaceValues();
  void SetLevels();
  Box BoxOfArrows() const;
  template <class T>
  std::vector<T> OfDrawn(const std::vector<T>& p_all, const std::vector<std::uint32_t>& p_indices) const;
  std::vector<double> LengthsOf(const std::vector<std::uint32_t>& p_indices) const;

  std::vector<Point> _vectors;
  double _unitLength = 0;                      ///< fraction of the diagonal; 0 for the default
  double _givenTypical = 0, _givenSpacing = 0; ///< a length, and a fraction of the diagonal; 0 for those of the data
  QString _lengthTitle;
  std::size_t _most = 0;    ///< 0 for what the image has room for
  bool _isByLength = false; ///< whether the values are the lengths

  // What was placed.
  bool _vectorsChanged = true;
  bool _isFlat = false;
  bool _isSolid = false;             ///< whether all levels have a front and a back
  std::size_t _room = 0;             ///< for arrows
  std::vector<Point> _scene;         ///< positions of all elements; NaN where there is none
  std::vector<std::uint32_t> _drawn; ///< elements with an arrow or a dot
  std::vector<std::uint32_t> _zero;  ///< of those, the dots
  std::size_t _candidates = 0;       ///< elements that could be drawn
  bool _valuesAreLengths = false;    ///< whether colours mean the lengths of the vectors
  double _spacing = 0;               ///< between neighbours, in scene units
  double _typical = 0;               ///< length of the vector longer than 98 % of those drawn
  double _scale = 0;                 ///< scene units in a unit of a vector's length
  InstancedMesh _arrows;             ///< sizes are lengths of vectors
  InstancedMesh _dots;
};

} // namespace Vek::Chart::Scene::Private
