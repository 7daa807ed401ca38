#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QColor>

namespace Vek::Chart::Library {

/// A rectangle in window pixels, filled and outlined. Corners are truncated toward zero to whole pixels. A part with a
/// fully transparent colour is not drawn; if both are transparent, no GL call is made.
///
/// The projection must map pixels to the viewport (`Rgl::PixelProjection`). Leaves the current colour changed.
///
/// \snippet DrawingSnippets.cpp Box
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Box {
public:
  Types::Viewport<0> rect;            ///< in pixels from the lower left of the window
  QColor lineColor = Qt::black;       ///< of the outline
  QColor fillColor = Qt::transparent; ///< of the area

  /// Draws the rectangle under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
