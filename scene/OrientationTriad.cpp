#include "scene/OrientationTriad.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Vek::Chart::Scene {

namespace {

/// Relative luminance of WCAG 2.1.
double Luminance(const QColor& p_color) {
  const auto linear = [](double p_value) {
    return p_value <= 0.04045 ? p_value / 12.92 : std::pow((p_value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(p_color.redF()) + 0.7152 * linear(p_color.greenF()) + 0.0722 * linear(p_color.blueF());
}

/// Black or white, whichever has the higher contrast to a colour.
QColor LetterOn(const QColor& p_color) {
  const double luminance = Luminance(p_color) + 0.05;
  return luminance / 0.05 > 1.05 / luminance ? QColor(Qt::black) : QColor(Qt::white);
}

/// A disc whose halves are `p_gap` apart.
void FillDisc(Canvas& p_canvas, const Canvas::Position& p_middle, double p_radius, double p_gap,
              const QColor& p_color) {
  constexpr int Corners = 32;
  std::vector<Canvas::Position> corners;
  for (int i = 0; i < Corners; ++i) {
    const double angle = 2 * Types::Angle::Pi * (i + 0.5) / Corners;
    const Canvas::Position direction(std::cos(angle), std::sin(angle));
    corners.push_back(p_middle + direction * p_radius + Canvas::Position(direction.x > 0 ? p_gap : -p_gap, 0) / 2.0);
  }
  p_canvas.Polygon(corners, p_color);
}

} // namespace

std::array<OrientationTriad::Arm, 3> OrientationTriad::Arms(const Camera& p_camera) const {
  // The components of the camera's directions are those of the axes across and along the line of sight.
  const auto [right, up, back] = p_camera.Directions();
  std::array<Arm, 3> arms{{{0, Canvas::Position(right.x, up.x) * length, back.x * length},
                           {1, Canvas::Position(right.y, up.y) * length, back.y * length},
                           {2, Canvas::Position(right.z, up.z) * length, back.z * length}}};
  for (Arm& arm : arms)
    if (std::abs(arm.depth) < 1e-9 * length)
      arm.depth = 0; // cos 90° is not 0
  std::stable_sort(arms.begin(), arms.end(), [](const Arm& p_a, const Arm& p_b) { return p_a.depth < p_b.depth; });
  return arms;
}

void OrientationTriad::Draw(Canvas& p_canvas, const Camera& p_camera, const Canvas::Position& p_middle,
                            const Theme& p_theme) const {
  constexpr double LineWidth = 2.5;
  constexpr double Border = 1; // between the ends of a name and its disc
  for (const Arm& arm : Arms(p_camera)) {
    const QColor& color = colors[arm.axis];
    TextStyle style = p_theme.SmallStyle();
    style.bold = true;
    style.color = LetterOn(color);
    const Canvas::Position tip = p_middle + arm.tip;
    const double width = p_canvas.TextSize(names[arm.axis], style).width();
    p_canvas.Line(p_middle, tip, LineWidth, color);
    FillDisc(p_canvas, tip, radius, std::max(width + 2 * Border - 2 * radius, 0.0), color);
    p_canvas.Text(names[arm.axis], tip, {0.5, 0.5}, style);
  }
}

} // namespace Vek::Chart::Scene
