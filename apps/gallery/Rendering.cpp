#include "apps/gallery/Rendering.h"

#include "apps/gallery/Sheet.h"

#include "platform/ogl/OffscreenContext.h"

namespace Vek::Chart::Gallery {

namespace {

/// How many times a side of the picture is drawn larger.
int Oversampling(const PictureEntry& p_entry) {
  return p_entry.truePixels ? 1 : 2;
}

/// Samples a pixel of the large picture; a poster's would take gigabytes.
int Samples(const PictureEntry& p_entry, Types::Size p_size) {
  if (p_entry.truePixels)
    return 0;
  return static_cast<long>(p_size.width) * p_size.height <= 4'000'000 ? 4 : 0;
}

} // namespace

QImage RenderPicture(const PictureEntry& p_entry, const Inputs& p_inputs, Types::Size p_size) {
  if (p_entry.figure) {
    Figure figure = p_entry.figure(p_inputs);
    figure.theme = FigureTheme();
    return figure.Image(p_size, 4, FigurePoint * p_size.height / 1000);
  }
  if (p_entry.image)
    return p_entry.image(p_inputs, p_size);
  const int scale = Oversampling(p_entry);
  const Types::Size large(p_size.width * scale, p_size.height * scale);
  Ogl::OffscreenContext context(large, Samples(p_entry, p_size));
  QImage image;
  {
    Utility::Scoped<Rgl> gl(context.Handle());
    context.BindFrameBuffer();
    Loading loading;
    const std::unique_ptr<Picture> picture = p_entry.load(p_inputs, loading);
    const Types::Viewport<0> viewport(0, 0, static_cast<float>(large.width), static_cast<float>(large.height));
    picture->Draw(gl, {picture->StartCamera(), viewport});
    gl->CheckError(p_entry.name);
    image = context.Image();
  }
  return image.convertToFormat(QImage::Format_RGB32)
      .scaled(p_size.width, p_size.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace Vek::Chart::Gallery
