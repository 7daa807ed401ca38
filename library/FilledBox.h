#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QColor>

#include <cstdint>

namespace Vek::Chart::Library {

/// Two nested rectangles in window pixels. Either the inner one is filled and outlined, or the frame between them is
/// filled and both are outlined. Outlined rectangles are one pixel smaller, so that the line lies inside the last
/// column and row.
///
/// The projection must map pixels to the viewport (`Rgl::PixelProjection`). Leaves the current colour changed.
///
/// \snippet DrawingSnippets.cpp FilledBox
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API FilledBox {
public:
  /// The filled area.
  enum Mode : std::int32_t {
    FillInner = 0, ///< the inner rectangle, outlined; also all numbers other than 1
    FillFrame = 1, ///< the frame between the rectangles, both outlined
  };

  std::int32_t mode = FillInner;      ///< a Mode
  Types::Viewport<0> outer;           ///< in pixels from the lower left of the window
  Types::Viewport<0> inner;           ///< in pixels, within `outer` (not checked)
  QColor lineColor = Qt::black;       ///< of the outlines
  QColor fillColor = Qt::transparent; ///< of the area

  /// Draws under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
