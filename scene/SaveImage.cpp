#include "scene/SaveImage.h"

#include "scene/private/WriteFile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>

#include <stdexcept>

namespace Vek::Chart::Scene {

void SaveImage(const QImage& p_image, const QString& p_path) {
  QBuffer bytes; // not every format's writer reports what its device refuses
  bytes.open(QIODevice::WriteOnly);
  QImageWriter writer(&bytes, QFileInfo(p_path).suffix().toLatin1());
  QString error;
  if (!writer.write(p_image))
    error = writer.errorString();
  else
    error = Private::WriteFile(p_path, bytes.data());
  if (!error.isEmpty())
    throw std::runtime_error((p_path + QStringLiteral(": the image cannot be written: ") + error).toStdString());
}

} // namespace Vek::Chart::Scene
