#include "library/private/gl/GlFormat.h"

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QGLWidget>
#endif

namespace Vek::Chart::Library::Private {

QImage GlFormat(const QImage& p_image) {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
  return QGLWidget::convertToGLFormat(p_image);
#else
  // Through ARGB32 as Qt 5 does: other formats lose their extra bits and their premultiplied alpha in the same way.
  return p_image.convertToFormat(QImage::Format_ARGB32).convertToFormat(QImage::Format_RGBA8888).mirrored();
#endif
}

} // namespace Vek::Chart::Library::Private
