#include "library/FilledBox.h"

#include "library/Box.h"

namespace Vek::Chart::Library {

namespace {

Types::Viewport<0> Outline(const Types::Viewport<0>& p_rect) {
  return {p_rect.x, p_rect.y, p_rect.width - 1, p_rect.height - 1};
}

} // namespace

void FilledBox::operator()(const Utility::Unscoped<Rgl>& p_gl) const {
  const Utility::Scoped<Rgl> gl(p_gl); // one for all parts
  Box box;
  box.lineColor = lineColor;
  box.fillColor = fillColor;
  if (mode == FillFrame) {
    const float innerRight = inner.x + inner.width;
    const float innerTop = inner.y + inner.height;
    const Types::Viewport<0> pieces[] = {
        {outer.x, outer.y, inner.x - outer.x, outer.height},                     // left
        {inner.x, outer.y, inner.width, inner.y - outer.y},                      // bottom
        {innerRight, outer.y, outer.x + outer.width - innerRight, outer.height}, // right
        {inner.x, innerTop, inner.width, outer.y + outer.height - innerTop},     // top
    };
    box.lineColor = Qt::transparent;
    for (const Types::Viewport<0>& piece : pieces) {
      if (!(piece.width > 0 && piece.height > 0))
        continue;
      box.rect = piece;
      box(p_gl);
    }
    box.lineColor = lineColor;
    box.fillColor = Qt::transparent;
    box.rect = Outline(outer);
    box(p_gl);
  }
  box.rect = Outline(inner);
  box(p_gl);
}

} // namespace Vek::Chart::Library
