#pragma once

#include "scene/Export.h"

#include <QColor>
#include <QString>

namespace Vek::Chart::Scene {

/// The appearance of a string: size, colours, weight, font.
///
/// Lengths are in points. One point is one pixel at a device pixel ratio of 1, as in Qt's widgets; whoever draws states
/// the pixels that a point takes.
///
/// \ingroup legends
struct VEK_SCENE_API TextStyle {
  double size = 13;                              ///< height of the font
  QColor color = QColor(Qt::black);              ///< of the letters
  bool bold = false;                             ///< the weight
  QColor halo = QColor(Qt::transparent);         ///< of the outline around the letters; transparent draws none
  double haloWidth = 2;                          ///< how far the halo reaches beyond the letters
  QString family = QLatin1String("DejaVu Sans"); ///< of the font; empty for the application's default font
};

} // namespace Vek::Chart::Scene
