#pragma once

#include <QByteArray>
#include <QString>

namespace Vek::Chart::Scene::Private {

/// Writes a file whole or not at all: into a file of another name beside it, which then takes its place. What exists
/// and is no regular file, such as a pipe, is written directly. The reason where it failed, otherwise empty.
QString WriteFile(const QString& p_path, const QByteArray& p_bytes);

} // namespace Vek::Chart::Scene::Private
