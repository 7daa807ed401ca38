#pragma once

#include "scene/Export.h"

#include "scene/Camera.h"
#include "scene/Canvas.h"
#include "scene/Theme.h"

#include <QColor>
#include <QString>

#include <array>
#include <cstddef>

namespace Vek::Chart::Scene {

/// Which way the axes x, y and z point in a view: three arms from one point, with a named disc at the end of each. Arms
/// and discs are drawn from far to near, in parallel projection, so that they depend on the camera's angles only.
///
/// Letters are black or white, whichever has the higher contrast to its disc, which is at least 4.5 : 1 for every
/// colour (contrast as Web Content Accessibility Guidelines 2.1 define it).
///
/// \snippet SceneViewSnippets.cpp OrientationTriad
/// \image html parts/OrientationTriad.png
/// \ingroup legends
struct VEK_SCENE_API OrientationTriad {
  /// One of the arms.
  struct Arm {
    std::size_t axis;     ///< 0 to 2, for x to z
    Canvas::Position tip; ///< from the middle of the triad to the middle of the disc, in points
    double depth;         ///< of the tip towards the viewer, in points
  };

  double length = 32; ///< of an arm that lies across the line of sight, in points
  double radius = 9;  ///< of a disc, in points; long names lengthen it
  std::array<QString, 3> names{QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")}; ///< of the axes
  std::array<QColor, 3> colors{{{0xC6, 0x28, 0x28}, {0x2E, 0x7D, 0x32}, {0x15, 0x65, 0xC0}}};  ///< red, green, blue

  /// The arms in a view, the farthest first; arms at the same depth in the order of the axes.
  std::array<Arm, 3> Arms(const Camera& p_camera) const;
  /// Draws the triad around a position of the canvas. The theme gives the font and its size. No depth is tested or
  /// written.
  void Draw(Canvas& p_canvas, const Camera& p_camera, const Canvas::Position& p_middle, const Theme& p_theme) const;
};

} // namespace Vek::Chart::Scene
