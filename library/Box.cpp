#include "library/Box.h"

#include "library/private/gl/Truncate.h"

namespace Vek::Chart::Library {

namespace {

using Private::Truncate;

void DrawCorners(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_rect, unsigned int p_mode) {
  // The sums are formed in double: two floats that differ much in size would lose the pixel.
  const double x = p_rect.x;
  const double y = p_rect.y;
  const int left = Truncate(x);
  const int bottom = Truncate(y);
  const int right = Truncate(x + static_cast<double>(p_rect.width));
  const int top = Truncate(y + static_cast<double>(p_rect.height));
  p_gl->Begin(p_mode);
  p_gl->Pixel(left, bottom);
  p_gl->Pixel(right, bottom);
  p_gl->Pixel(right, top);
  p_gl->Pixel(left, top);
  p_gl->End();
}

} // namespace

void Box::operator()(const Utility::Unscoped<Rgl>& p_gl) const {
  Utility::Scoped<Rgl> gl(p_gl);
  if (fillColor.alphaF() != 0) {
    gl->Color(fillColor);
    DrawCorners(gl, rect, RGL_QUADS);
  }
  if (lineColor.alphaF() != 0) {
    gl->Color(lineColor);
    DrawCorners(gl, rect, RGL_LINE_LOOP);
  }
}

} // namespace Vek::Chart::Library
