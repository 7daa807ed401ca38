#pragma once

#include <QPainter>
#include <QSizeF>
#include <QString>

#include <functional>

namespace Vek::Chart::Scene::Private {

/// Whether a path ends in ".pdf".
bool IsPdf(const QString& p_path);

/// Writes a PDF of one page of that size in points, which are the units of the painter, from the upper left corner.
/// Throws std::runtime_error with path and reason.
void WritePdf(const QString& p_path, const QString& p_title, const QSizeF& p_size,
              const std::function<void(QPainter&)>& p_paint);

} // namespace Vek::Chart::Scene::Private
