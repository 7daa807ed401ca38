#include "scene/private/FigureCuts.h"

#include "scene/private/VertexStream.h"

#include "library/Intersect.h"

#include <cmath>
#include <cstddef>
#include <optional>

namespace Vek::Chart::Scene::Private {

bool IsCut(const Types::Plane& p_plane, const AxisRules& p_rules) {
  bool isCut = IsFinite(p_plane.Point()) && IsFinite(p_plane.Normal()) && Length(p_plane.Normal()) > 0;
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (p_rules.logarithmic[axis] && At(p_plane.Normal(), axis) != 0)
      isCut = isCut && At(p_plane.Point(), axis) > 0;
  return isCut;
}

bool Equal(const std::vector<Types::Plane>& p_a, const std::vector<Types::Plane>& p_b) {
  return std::equal(p_a.begin(), p_a.end(), p_b.begin(), p_b.end(),
                    [](const Types::Plane& p_one, const Types::Plane& p_other) {
                      return p_one.Point() == p_other.Point() && p_one.Normal() == p_other.Normal();
                    });
}

Types::Plane SceneCut(const Types::Plane& p_plane, const DataTransform& p_transform) {
  Point point = p_transform(p_plane.Point()), normal = p_plane.Normal() / Length(p_plane.Normal());
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (At(normal, axis) == 0)
      At(point, axis) = 0; // any number will do, and there may be no logarithm
    At(normal, axis) /= p_transform.axes[axis].factor;
  }
  return {point, normal / Length(normal)};
}

std::vector<Types::Plane> LimitCuts(const AxisRules& p_rules, const DataTransform& p_transform) {
  constexpr double Tolerance = 1e-6; // of single precision, for what lies in a limit
  std::vector<Types::Plane> cuts;
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (const auto& limits = p_rules.limits[axis])
      for (const double side : {1.0, -1.0}) {
        Point point(1, 1, 1), normal;
        At(point, axis) = side > 0 ? limits->min : limits->max;
        At(normal, axis) = side;
        cuts.emplace_back(p_transform(point) - normal * Tolerance, normal);
      }
  return cuts;
}

boost::shared_ptr<void> CutScope(const Utility::Scoped<Rgl>& p_gl, const std::vector<Types::Plane>& p_cuts) {
  const boost::shared_ptr<void> guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TRANSFORM_BIT);
  for (std::size_t i = 0; i < p_cuts.size(); ++i) {
    const Types::Vector4_Base<double> plane = p_cuts[i].Equation();
    const std::array<double, 4> equation{plane.x, plane.y, plane.z, plane.w};
    p_gl->ClipPlane(RGL_CLIP_PLANE0 + static_cast<Ogl::GlEnum>(i), equation.data());
    p_gl->Enable(RGL_CLIP_PLANE0 + static_cast<Ogl::GlEnum>(i));
  }
  return guard;
}

std::vector<Point> CutPolygon(const std::vector<Point>& p_polygon, const Types::Plane& p_plane) {
  const auto height = [&](const Point& p_point) { return Dot(p_plane.Normal(), p_point - p_plane.Point()); };
  std::vector<Point> kept;
  for (std::size_t i = 0; i < p_polygon.size(); ++i) {
    const Point &from = p_polygon[i], &to = p_polygon[(i + 1) % p_polygon.size()];
    const double low = height(from), high = height(to);
    if (low >= 0)
      kept.push_back(from);
    if ((low >= 0) != (high >= 0))
      kept.push_back(from + (to - from) * (low / (low - high)));
  }
  return kept;
}

std::vector<std::vector<Point>> CutOutlines(const Box& p_box, const std::vector<Types::Plane>& p_cuts) {
  std::vector<std::vector<Point>> outlines(p_cuts.size());
  for (std::size_t i = 0; i < p_cuts.size(); ++i) {
    Library::Intersect::Intersection(p_box, p_cuts[i], outlines[i]);
    for (std::size_t other = 0; other < p_cuts.size(); ++other)
      if (other != i)
        outlines[i] = CutPolygon(outlines[i], p_cuts[other]);
  }
  return outlines;
}

void DrawOutlines(Utility::Scoped<Rgl>& p_gl, const std::vector<std::vector<Point>>& p_outlines, const QColor& p_color,
                  double p_width) {
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT);
  p_gl->Disable(RGL_LIGHTING);
  p_gl->LineWidth(static_cast<float>(p_width));
  p_gl->Color(p_color);
  std::vector<VertexStream::Vertex> ends;
  for (const std::vector<Point>& outline : p_outlines)
    for (std::size_t i = 0; i < outline.size() && outline.size() > 1; ++i)
      for (const std::size_t end : {i, (i + 1) % outline.size()})
        ends.emplace_back(outline[end]);
  VertexStream(*p_gl, ends, VertexStream::Positions).Draw(RGL_LINES);
}

namespace {

/// The axis that a plane is perpendicular to.
std::optional<std::size_t> AxisOf(const Types::Plane& p_plane) {
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (At(p_plane.Normal(), (axis + 1) % 3) == 0 && At(p_plane.Normal(), (axis + 2) % 3) == 0)
      return axis;
  return {};
}

} // namespace

std::vector<QString> CutNotes(const std::vector<Types::Plane>& p_planes, const std::array<QString, 3>& p_axes) {
  constexpr int Digits = 10;
  std::vector<QString> notes;
  std::size_t oblique = 0;
  for (const Types::Plane& plane : p_planes) {
    if (const auto axis = AxisOf(plane))
      notes.push_back(QStringLiteral("cut away: %1 %2 %3")
                          .arg(p_axes[*axis], At(plane.Normal(), *axis) > 0 ? "<" : ">")
                          .arg(At(plane.Point(), *axis), 0, 'g', Digits));
    else
      ++oblique;
  }
  if (oblique == 1)
    notes.push_back(QStringLiteral("cut by a plane"));
  else if (oblique > 1)
    notes.push_back(QStringLiteral("cut by %1 planes").arg(oblique));
  return notes;
}

} // namespace Vek::Chart::Scene::Private
