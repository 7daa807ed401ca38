#pragma once

#include "io/Progress.h"

#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

namespace Vek::Chart::Viewer {

/// Runs loads on a thread of its own and reports about them on the thread that it lives on. One load counts at a time:
/// a new one, as well as Cancel, drops the one before at once, whatever its thread is still busy with.
///
///     loader.Start([result](const Io::Progress& p_progress) { result->mesh = Io::ReadMesh(path, p_progress); });
///
/// Each start is followed by just one of Loaded, Failed and Dropped.
class Loader : public QObject {
  Q_OBJECT
public:
  /// What is run on the thread, with a progress that cancels. It may throw any std::exception, whose text is the reason
  /// given by Failed. What it captured is released on the thread, unless it is shared with others.
  using Load = std::function<void(const Io::Progress&)>;

  explicit Loader(QObject* p_parent = nullptr);
  /// Cancels, and waits for the thread to notice.
  ~Loader() override;

  void Start(Load p_load);
  void Cancel();
  bool IsLoading() const { return _current != nullptr; }

signals:
  void Started();
  /// 0 to 1, some thirty times a second.
  void Progressed(double p_part);
  void Loaded();
  void Failed(const QString& p_reason);
  void Dropped();

private:
  struct State {
    std::atomic<double> progress{0};
    std::atomic<bool> isCancelled{false};
  };
  using Job = std::shared_ptr<State>;

  /// Ends the current job, if it is `p_job`; its outcome comes too late otherwise.
  bool End(const Job& p_job);

  QThreadPool _thread;
  QTimer _ticks;
  Job _current;
};

} // namespace Vek::Chart::Viewer
