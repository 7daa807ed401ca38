#pragma once

#include "apps/gallery/Loading.h"

#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QTimer>

#include <functional>
#include <memory>

namespace Vek::Chart::Viewer {

/// Runs loads on a thread of its own and tells about them on the thread that it lives on. One load counts at a time: a
/// new one, as well as Cancel, drops the one before at once, whatever its thread is still busy with.
///
///     loader.Start([inputs, result](Gallery::Loading& p_loading) { result->picture = LoadHdr(inputs, p_loading); });
///
/// Each start is followed by just one of Loaded, Failed and Dropped.
class PictureLoader : public QObject {
  Q_OBJECT
public:
  /// What is run on the thread. It may throw Gallery::Cancelled, and any std::exception, whose text is the reason given
  /// by Failed. What it captured is released on the thread, unless it is shared with others.
  using Load = std::function<void(Gallery::Loading&)>;

  explicit PictureLoader(QObject* p_parent = nullptr);
  /// Cancels, and waits for the thread to notice.
  ~PictureLoader() override;

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
  using Job = std::shared_ptr<Gallery::Loading>;

  /// Ends the current job, if it is `p_job`; its outcome comes too late otherwise.
  bool End(const Job& p_job);

  QThreadPool _thread;
  QTimer _ticks;
  Job _current;
};

} // namespace Vek::Chart::Viewer
