#pragma once

#include "platform/debug/Logger.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

namespace Vek::Chart::Gallery {

/// Counts the library's reports on its thread while it lives, instead of printing them: a file of the user's that gives
/// reports is told of in one line of our own. Those of other threads go where they went before. One may live at a time.
class ReportCounter {
public:
  ReportCounter()
      : _counts(std::make_shared<Counts>()) {
    const std::lock_guard<std::mutex> lock(_counts->mutex);
    _counts->previous = vekdebug::logger::instance().set_sink(_counts);
  }
  ~ReportCounter() { vekdebug::logger::instance().set_sink(_counts->previous); }
  ReportCounter(const ReportCounter&) = delete;
  ReportCounter& operator=(const ReportCounter&) = delete;

  int Indices() const { return _counts->indices; } ///< indices out of range
  int Others() const { return _counts->others; }

private:
  struct Counts : vekdebug::sink {
    std::atomic<int> indices{0};
    std::atomic<int> others{0};
    std::mutex mutex; ///< of the previous sink
    std::shared_ptr<vekdebug::sink> previous;
    const std::thread::id thread = std::this_thread::get_id();
    void write(const vekdebug::report& p_report) override {
      if (std::this_thread::get_id() != thread) {
        const std::lock_guard<std::mutex> lock(mutex);
        previous->write(p_report);
      } else if (p_report.kind == vekdebug::severity::range)
        ++indices;
      else if (p_report.kind != vekdebug::severity::debug)
        ++others;
    }
  };
  std::shared_ptr<Counts> _counts;
};

} // namespace Vek::Chart::Gallery
