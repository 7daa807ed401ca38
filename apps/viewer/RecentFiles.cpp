#include "apps/viewer/RecentFiles.h"

#include <QFileInfo>

namespace Vek::Chart::Viewer {

namespace {

const char* const Key = "recentFiles";

} // namespace

RecentFiles::RecentFiles()
    : _settings(QSettings::IniFormat, QSettings::UserScope, "Vek", "vek-viewer") {}

QStringList RecentFiles::Paths() const {
  QStringList paths;
  for (const QString& path : _settings.value(Key).toStringList())
    if (QFileInfo::exists(path))
      paths << path;
  return paths;
}

void RecentFiles::Add(const QString& p_path) {
  const QString path = QFileInfo(p_path).absoluteFilePath();
  QStringList paths = Paths();
  paths.removeAll(path);
  paths.prepend(path);
  _settings.setValue(Key, QVariant(QStringList(paths.mid(0, Most))));
}

void RecentFiles::Clear() {
  _settings.remove(Key);
}

} // namespace Vek::Chart::Viewer
