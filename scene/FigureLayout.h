#pragma once

#include "scene/AxesLayout.h"
#include "scene/Camera.h"
#include "scene/Canvas.h"
#include "scene/Export.h"
#include "scene/LegendBlock.h"

#include <QSizeF>
#include <QString>

#include <vector>

namespace Vek::Chart::Scene {

/// Where everything around the data of a Figure lies in an image, in points from the lower left corner of its viewport:
/// what `Figure::Layout` computes and `Figure::Draw` draws. Titles, colour bars, keys and notes take their places
/// first; the axes get the rest.
///
/// \ingroup legends
struct VEK_SCENE_API FigureLayout {
  /// Strings or a legend, and where.
  struct Block {
    LegendBlock content;       ///< about an origin of its own
    Canvas::Position origin;   ///< of the content
    bool isBelowScene = false; ///< a legend below the scene, not beside it
    /// The rectangle that the block takes.
    Canvas::Rect Rect() const;
  };

  QSizeF size;                ///< of the viewport
  std::vector<Block> blocks;  ///< titles, colour bars, keys, notes
  Canvas::Rect scene;         ///< what is left for axes and data
  AxesLayout axes;            ///< in the scene; empty where there is no room
  Camera camera;              ///< that the data are drawn with, in scene units (see Figure)
  std::vector<QString> notes; ///< what the figure says about its data: "1 point missing", "z × 50"
};

} // namespace Vek::Chart::Scene
