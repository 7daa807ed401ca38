#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QColor>

#include <cstdint>

namespace Vek::Chart::Library {

/// Two rectangles in window pixels, one inside the other: either the inner one filled and outlined, or the frame
/// between them filled and both outlined. Outlines are one pixel smaller than their rectangle, so that they lie inside
/// its last column and row.
///
/// The projection must map pixels to the viewport (`Rgl::PixelProjection`). Leaves the current colour changed.
///
/// \snippet DrawingSnippets.cpp FilledBox
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API FilledBox {
public:
  /// What is filled.
  enum Mode : std::int32_t {
    FillInner = 0, ///< the inner rectangle, outlined; as is any other number but 1
    FillFrame = 1, ///< what lies between the rectangles, both outlined
  };

  std::int32_t mode = FillInner;      ///< a Mode
  Types::Viewport<0> outer;           ///< in pixels from the lower left of the window
  Types::Viewport<0> inner;           ///< in pixels; meant to lie within `outer`, which is not checked
  QColor lineColor = Qt::black;       ///< of the outlines
  QColor fillColor = Qt::transparent; ///< of the area

  /// Draws under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
