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
class VEK_LIBRARY_API FilledBox {
public:
  enum Mode : std::int32_t {
    FillInner = 0, ///< as is any other number but 1
    FillFrame = 1,
  };

  std::int32_t mode = FillInner;
  Types::Viewport<0> outer;
  Types::Viewport<0> inner;
  QColor lineColor = Qt::black;
  QColor fillColor = Qt::transparent;

  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
