#pragma once

#include <QSettings>
#include <QStringList>

namespace Vek::Chart::Viewer {

/// The files that were opened last, kept in the user's configuration.
class RecentFiles {
public:
  static constexpr int Most = 10;

  RecentFiles();
  /// The last one first; those that do not exist any more are left out.
  QStringList Paths() const;
  void Add(const QString& p_path);
  void Clear();

private:
  QSettings _settings;
};

} // namespace Vek::Chart::Viewer
