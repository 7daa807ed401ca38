#include "scene/private/PdfFile.h"

#include "scene/private/WriteFile.h"

#include <QBuffer>
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
  if (const QString error = WriteFile(p_path, bytes.data()); !error.isEmpty())
    throw std::runtime_error((p_path + QStringLiteral(": the PDF cannot be written: ") + error).toStdString());
}

} // namespace Vek::Chart::Scene::Private
