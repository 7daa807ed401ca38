// Draws one glyph off-screen, with the installed package only.

#include "library/VectorSymbol.h"
#include "library/Version.h"
#include "platform/ogl/OffscreenContext.h"

#include <iostream>

using namespace Vek::Chart;

int main() {
  Ogl::OffscreenContext context({33, 21});
  Utility::Scoped<Rgl> gl(context.Handle());
  gl->ClearColor(Qt::blue);
  gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
  gl->Color(QColor(Qt::red));
  Ogl::VertexData glyph;
  const Library::VectorSymbol cube(Model::Symbol::ShapeCube, 16);
  if (!cube.OrientShape(1, 0, {0, 0, 0}, false, 0, 1, {}, glyph))
    return 1;
  glyph.Draw(gl);
  const QImage image = context.Image();
  std::cout << Library::Version().majorPart << ' ' << image.pixelColor(16, 10).name().toStdString() << ' '
            << image.pixelColor(0, 0).name().toStdString() << '\n';
}
