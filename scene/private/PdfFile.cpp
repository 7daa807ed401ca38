#include "scene/private/PdfFile.h"

#include <QBuffer>
#include <QFile>
#include <QMarginsF>
#include <QPageSize>
#include <QPdfWriter>

#include <stdexcept>

namespace Vek::Chart::Scene::Private {

bool IsPdf(const QString& p_path) {
  return p_path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive);
}

void WritePdf(const QString& p_path, const QString& p_title, const QSizeF& p_size,
              const std::function<void(QPainter&)>& p_paint) {
  QBuffer bytes; // the writer does not report what its device refuses
  bytes.open(QIODevice::WriteOnly);
  {
    constexpr int Resolution = 1200; // of coordinates, per inch
    constexpr double PointsPerInch = 72;
    QPdfWriter writer(&bytes);
    writer.setTitle(p_title);
    writer.setResolution(Resolution);
    writer.setPageSize(QPageSize(p_size, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    QPainter painter(&writer);
    painter.scale(Resolution / PointsPerInch, Resolution / PointsPerInch);
    p_paint(painter);
  }
  QFile file(p_path);
  const bool isWritten =
      file.open(QIODevice::WriteOnly) && file.write(bytes.data()) == bytes.data().size() && file.flush();
  if (!isWritten)
    throw std::runtime_error(p_path.toStdString() + ": the PDF cannot be written: " + file.errorString().toStdString());
}

} // namespace Vek::Chart::Scene::Private
