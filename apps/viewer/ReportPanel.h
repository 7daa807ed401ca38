#pragma once

#include "apps/viewer/ReportQueue.h"

#include <QDockWidget>
#include <QTimer>
#include <QTreeWidget>

#include <cstddef>
#include <memory>

namespace Vek::Chart::Viewer {

/// Shows what the library reports and what failed, folded below the names of files, with their number. While it lives
/// it has the place of the logger's sink.
class ReportPanel : public QDockWidget {
  Q_OBJECT
public:
  explicit ReportPanel(QWidget* p_parent = nullptr);
  ~ReportPanel() override;

  /// The file that further reports are about; empty for none.
  void SetFile(const QString& p_path);
  /// Adds a line about that file, such as something that was left out.
  void Add(const QString& p_text);
  /// Adds a line about something that failed, unfolded.
  void AddFailure(const QString& p_text);
  void Clear();

  /// Of the library's reports and of failures, since the last Clear.
  std::size_t Count() const { return _count; }
  /// The lines that are shown, without names of files; the oldest ones make room for new ones.
  QStringList Lines() const;

signals:
  void CountChanged(std::size_t p_count);

private:
  static constexpr int MostLines = 1000;

  void TakeReports();
  QTreeWidgetItem* AddLine(const QString& p_text, const QColor& p_color);
  void Copy() const;
  void ShowCount();

  QTreeWidget* _lines;
  QString _file;
  int _lineCount = 0;
  QTimer _soon; ///< gathers a flood of reports
  std::size_t _count = 0;
  std::shared_ptr<ReportQueue> _queue;
  std::shared_ptr<vekdebug::sink> _previous;
};

} // namespace Vek::Chart::Viewer
