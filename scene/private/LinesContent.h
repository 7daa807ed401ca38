#pragma once

#include "scene/private/LineTubes.h"
#include "scene/private/PlacedContent.h"
#include "scene/private/WideLines.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

class LinesContent : public PointsContent {
public:
  /// The numbers of points of the lines, one after the other; none for one line. Throws std::invalid_argument unless
  /// they add up to all points.
  LinesContent(std::vector<Point> p_positions, std::vector<std::size_t> p_lengths);

  void SetWidth(double p_points);
  void SetDiameter(double p_diameter);

  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;
  QString Shortage(const Utility::Scoped<Rgl>& p_gl) const override;
  Legend::Mark Mark() const override { return Legend::Mark::Line; }

private:
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  /// Points in a row without one that is left out.
  struct Piece {
    std::uint32_t first = 0, count = 0;
  };
  /// The diameter of tubes in scene units.
  double SceneDiameter() const { return _diameter * _placement.transform.Unit(); }
  void PlacePoints();
  void PlaceTubes();
  std::vector<std::vector<TubeMesh::Point>> PiecesOf(double p_width) const;
  LineTubes::Quality QualityOf(const Frame& p_frame) const;
  bool IsCoarse(std::size_t p_mostVertices) const;
  void PlaceCoarse(Utility::Scoped<Rgl>& p_gl);
  std::vector<float> TubeValues() const;
  std::optional<std::size_t> PointOfTube(std::uint32_t p_number, const Point& p_scene) const;
  std::optional<std::size_t> PointOfSegment(std::uint32_t p_segment, const Point& p_scene) const;
  template <class T>
  std::vector<T> Separated(const std::vector<T>& p_elements, const T& p_separator) const;

  std::vector<std::size_t> _lengths;
  double _width = 2;    ///< points
  double _diameter = 0; ///< of tubes, in data units; 0 for lines

  // What was placed.
  bool _isShapeChanged = true; ///< lines or tubes
  Box _box;                    ///< of the points in the scene
  std::vector<Point> _scene;   ///< one a point
  std::vector<Piece> _pieces;
  WideLines _lines;
  LineTubes _tubes;
  LineTubes _coarse;       ///< thin lines while the camera moves
  bool _hasCoarse = false; ///< whether they are placed
  bool _isCoarse = false;  ///< whether they were drawn last
};

} // namespace Vek::Chart::Scene::Private
