#include "apps/gallery/Rendering.h"

#include "apps/gallery/Sheet.h"

namespace Vek::Chart::Gallery {

QImage RenderPicture(const PictureEntry& p_entry, const Inputs& p_inputs, Types::Size p_size) {
  if (p_entry.image)
    return p_entry.image(p_inputs, p_size);
  Figure figure = p_entry.figure(p_inputs);
  figure.theme = FigureTheme();
  return figure.Image(p_size, 4, FigurePoint * p_size.height / 1000);
}

} // namespace Vek::Chart::Gallery
