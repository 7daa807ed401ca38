#include "apps/viewer/ReportQueue.h"

#include <utility>

namespace Vek::Chart::Viewer {

ReportQueue::Waiting ReportQueue::Take() {
  const std::lock_guard<std::mutex> lock(_mutex);
  return std::exchange(_waiting, {});
}

void ReportQueue::Detach() {
  const std::lock_guard<std::mutex> lock(_mutex);
  _wake = nullptr;
}

void ReportQueue::write(const vekdebug::report& p_report) {
  if (p_report.kind == vekdebug::severity::debug)
    return;
  const std::lock_guard<std::mutex> lock(_mutex);
  if (_waiting.texts.size() < MostTexts)
    _waiting.texts.push_back(p_report.text);
  // Under the lock, so that whom it wakes cannot go away meanwhile.
  if (_waiting.count++ == 0 && _wake)
    _wake();
}

} // namespace Vek::Chart::Viewer
