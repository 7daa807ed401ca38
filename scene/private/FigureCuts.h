#pragma once

#include "scene/private/DataTransform.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QColor>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

constexpr std::size_t MostCuts = 6; ///< as many clip planes as all devices have

/// Whether a plane can cut axes by these rules: finite, with a normal, and through numbers above 0 along logarithmic
/// axes that it is not parallel to.
bool IsCut(const Types::Plane& p_plane, const AxisRules& p_rules);
/// Whether planes have equal points and normals.
bool Equal(const std::vector<Types::Plane>& p_a, const std::vector<Types::Plane>& p_b);
/// A plane of the data in scene units, with a normal of length 1.
Types::Plane SceneCut(const Types::Plane& p_plane, const DataTransform& p_transform);

/// The limits of axes, in scene units.
std::vector<Types::Plane> LimitCuts(const AxisRules& p_rules, const DataTransform& p_transform);

/// Cuts what is drawn under the current model-view matrix, with scene units, until the guard is released.
boost::shared_ptr<void> CutScope(const Utility::Scoped<Rgl>& p_gl, const std::vector<Types::Plane>& p_cuts);
/// The part of a polygon on the side of a plane that the normal points to.
std::vector<Point> CutPolygon(const std::vector<Point>& p_polygon, const Types::Plane& p_plane);
/// The box around what planes leave of triangles, three indices each, whose corners `p_position` gives.
template <class Position>
Box CutBounds(const std::vector<std::uint32_t>& p_indices, const Position& p_position,
              const std::vector<Types::Plane>& p_cuts) {
  Box box;
  for (std::size_t i = 0; i + 2 < p_indices.size(); i += 3) {
    std::vector<Point> polygon{p_position(p_indices[i]), p_position(p_indices[i + 1]), p_position(p_indices[i + 2])};
    for (const Types::Plane& cut : p_cuts)
      polygon = CutPolygon(polygon, cut);
    for (const Point& corner : polygon)
      box += corner;
  }
  return box;
}
/// Where each plane cuts a box, as far as the other planes leave it: one polygon for each, which may be empty.
std::vector<std::vector<Point>> CutOutlines(const Box& p_box, const std::vector<Types::Plane>& p_cuts);
/// Draws these outlines as lines in the scene, not lit.
void DrawOutlines(Utility::Scoped<Rgl>& p_gl, const std::vector<std::vector<Point>>& p_outlines, const QColor& p_color,
                  double p_width);

/// What a figure says about planes of the data.
std::vector<QString> CutNotes(const std::vector<Types::Plane>& p_planes, const std::array<QString, 3>& p_axes);

} // namespace Vek::Chart::Scene::Private
