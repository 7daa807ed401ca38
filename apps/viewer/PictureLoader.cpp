#include "apps/viewer/PictureLoader.h"

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

enum class Ending { Loaded, Failed, Dropped };

struct Outcome {
  Ending ending;
  QString reason;
};

Outcome Run(const PictureLoader::Load& p_load, Gallery::Loading& p_loading) {
  try {
    p_load(p_loading);
    return {Ending::Loaded, {}};
  } catch (const Gallery::Cancelled&) {
    return {Ending::Dropped, {}};
  } catch (const std::bad_alloc&) {
    return {Ending::Failed, "There is not enough memory for it"};
  } catch (const std::exception& error) {
    return {Ending::Failed, QString::fromStdString(error.what())};
  }
}

} // namespace

PictureLoader::PictureLoader(QObject* p_parent)
    : QObject(p_parent) {
  // One after the other: what was dropped gives its memory back before the next takes some.
  _thread.setMaxThreadCount(1);
  _ticks.setInterval(33);
  connect(&_ticks, &QTimer::timeout, this, [this] { emit Progressed(_current->Progress()); });
}

PictureLoader::~PictureLoader() {
  if (_current)
    _current->Cancel();
  _thread.waitForDone();
}

void PictureLoader::Start(Load p_load) {
  Cancel();
  _current = std::make_shared<Gallery::Loading>();
  _ticks.start();
  emit Started();
  _thread.start(new Task([this, job = _current, load = std::move(p_load)] {
    const Outcome outcome = Run(load, *job);
    const auto tell = [this, job, outcome] {
      if (!End(job))
        return;
      if (outcome.ending == Ending::Loaded)
        emit Loaded();
      else if (outcome.ending == Ending::Failed)
        emit Failed(outcome.reason);
      else
        emit Dropped();
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
  }));
}

void PictureLoader::Cancel() {
  if (!_current)
    return;
  _current->Cancel();
  End(_current);
  emit Dropped();
}

bool PictureLoader::End(const Job& p_job) {
  if (!_current || _current != p_job)
    return false;
  _current.reset();
  _ticks.stop();
  return true;
}

} // namespace Vek::Chart::Viewer
