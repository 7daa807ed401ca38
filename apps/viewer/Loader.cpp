#include "apps/viewer/Loader.h"

#include <QRunnable>

#include <exception>
#include <utility>

namespace Vek::Chart::Viewer {

namespace {

class Task : public QRunnable {
public:
  explicit Task(std::function<void()> p_run)
      : _run(std::move(p_run)) {}
  void run() override { _run(); }

private:
  std::function<void()> _run;
};

/// The reason why a load failed; empty if it did not.
QString Run(const Loader::Load& p_load, const Io::Progress& p_progress) {
  try {
    p_load(p_progress);
    return {};
  } catch (const std::bad_alloc&) {
    return "There is not enough memory for it";
  } catch (const std::exception& error) {
    return QString::fromUtf8(error.what());
  }
}

} // namespace

Loader::Loader(QObject* p_parent)
    : QObject(p_parent) {
  // One after the other: what was dropped gives its memory back before the next takes some.
  _thread.setMaxThreadCount(1);
  _ticks.setInterval(33);
  connect(&_ticks, &QTimer::timeout, this, [this] { emit Progressed(_current->progress); });
}

Loader::~Loader() {
  if (_current)
    _current->isCancelled = true;
  _thread.waitForDone();
}

void Loader::Start(Load p_load) {
  Cancel();
  _current = std::make_shared<State>();
  _ticks.start();
  emit Started();
  _thread.start(new Task([this, job = _current, load = std::move(p_load)] {
    const QString reason = Run(load, [&job](double p_share) {
      job->progress = p_share;
      return !job->isCancelled;
    });
    const auto report = [this, job, reason] {
      if (!End(job)) // it was dropped
        return;
      if (reason.isEmpty())
        emit Loaded();
      else
        emit Failed(reason);
    };
    QMetaObject::invokeMethod(this, report, Qt::QueuedConnection);
  }));
}

void Loader::Cancel() {
  if (!_current)
    return;
  _current->isCancelled = true;
  End(_current);
  emit Dropped();
}

bool Loader::End(const Job& p_job) {
  if (!_current || _current != p_job)
    return false;
  _current.reset();
  _ticks.stop();
  return true;
}

} // namespace Vek::Chart::Viewer
