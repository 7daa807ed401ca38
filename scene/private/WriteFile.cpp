#include "scene/private/WriteFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace Vek::Chart::Scene::Private {

namespace {

/// Whether all bytes were written. A call that writes a part of them gives no reason, but the next one does; so there
/// is no buffer, whose end could be written in part.
bool IsWritten(QFileDevice& p_file, const QByteArray& p_bytes) {
  if (!p_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
    return false;
  for (qint64 at = 0; at < p_bytes.size();) {
    const qint64 written = p_file.write(p_bytes.constData() + at, p_bytes.size() - at);
    if (written <= 0)
      return false;
    at += written;
  }
  return true;
}

} // namespace

QString WriteFile(const QString& p_path, const QByteArray& p_bytes) {
  if (const QFileInfo there(p_path); there.exists() && !there.isFile()) {
    QFile file(p_path);
    return IsWritten(file, p_bytes) ? QString() : file.errorString();
  }
  QSaveFile file(p_path);
  file.setDirectWriteFallback(true); // a file that may be written in a folder that may not
  return IsWritten(file, p_bytes) && file.commit() ? QString() : file.errorString();
}

} // namespace Vek::Chart::Scene::Private
