#pragma once

#include "apps/viewer/ReportQueue.h"

#include <QDockWidget>
#include <QListWidget>
#include <QTimer>

#include <cstddef>
#include <memory>

namespace Vek::Chart::Viewer {

/// Shows what the library reports, and what the program has to tell, line by line and with their number. While it lives
/// it has the place of the logger's sink.
class ReportPanel : public QDockWidget {
  Q_OBJECT
public:
  explicit ReportPanel(QWidget* p_parent = nullptr);
  ~ReportPanel() override;

  /// Adds a line about something that failed.
  void AddFailure(const QString& p_text);
  void Clear();

  /// Of the library's reports and of failures, since the last Clear.
  std::size_t Count() const { return _count; }
  /// The lines that are shown; the oldest ones make room for new ones.
  QStringList Lines() const;

signals:
  void CountChanged(std::size_t p_count);

private:
  static constexpr int MostLines = 1000;

  void TakeReports();
  void AddLine(const QString& p_text, const QColor& p_color);
  void ShowCount();

  QListWidget* _lines;
  QTimer _soon; ///< gathers a flood of reports
  std::size_t _count = 0;
  std::shared_ptr<ReportQueue> _queue;
  std::shared_ptr<vekdebug::sink> _previous;
};

} // namespace Vek::Chart::Viewer
