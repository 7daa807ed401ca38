#include "library/ColorMap.h"
#include "platform/ogl/OffscreenContext.h"

using namespace Vek::Chart;

int main() {
  Ogl::OffscreenContext context({640, 360});
  Utility::Scoped<Rgl> gl(context.Handle());
  const Library::ColorMap map({Qt::darkBlue, Qt::white, Qt::darkRed}, Library::ColorMap::Interpolated);
  map(gl, RGL_TEXTURE0);
  gl->Begin(RGL_QUADS);
  for (const auto& [x, y] : {std::pair(-1, -1), {1, -1}, {1, 1}, {-1, 1}}) {
    gl->TexCoord(0.5 + 0.5 * x, 0.5);
    gl->Vertex(0.9 * x, 0.5 * y, 0);
  }
  gl->End();
  context.Image().save("gradient.png");
}
