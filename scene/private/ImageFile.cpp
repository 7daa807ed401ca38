#include "scene/private/ImageFile.h"

#include "scene/private/OffscreenApplication.h"

#include "platform/ogl/OffscreenContext.h"

#include <QImageWriter>

#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene::Private {

QImage DrawnImage(Types::Size p_size, int p_samples,
                  const std::function<void(Utility::Scoped<Rgl>&, const Types::Viewport<0>&)>& p_draw) {
  if (p_size.width <= 0 || p_size.height <= 0)
    throw std::invalid_argument("Image: expected a size above 0, got " + std::to_string(p_size.width) + " x " +
                                std::to_string(p_size.height));
  const OffscreenApplication application;
  Ogl::OffscreenContext context(p_size, p_samples);
  {
    Utility::Scoped<Rgl> gl(context.Handle());
    p_draw(gl, {0, 0, static_cast<float>(p_size.width), static_cast<float>(p_size.height)});
  }
  return context.Image().convertToFormat(QImage::Format_RGB32); // opaque: blending has changed alpha
}

void WriteImage(const QImage& p_image, const QString& p_path) {
  QImageWriter writer(p_path);
  if (!writer.write(p_image))
    throw std::runtime_error(p_path.toStdString() +
                             ": the image cannot be written: " + writer.errorString().toStdString());
}

} // namespace Vek::Chart::Scene::Private
