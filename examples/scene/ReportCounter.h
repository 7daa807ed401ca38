#pragma once

#include "platform/debug/Logger.h"

#include <atomic>
#include <memory>

namespace Vek::Chart::Gallery {

/// Counts the library's reports while it lives, instead of printing them: a file of the user's that gives reports is
/// told of in one line of our own.
class ReportCounter {
public:
  ReportCounter()
      : _counts(std::make_shared<Counts>())
      , _previous(vekdebug::logger::instance().set_sink(_counts)) {}
  ~ReportCounter() { vekdebug::logger::instance().set_sink(_previous); }
  ReportCounter(const ReportCounter&) = delete;
  ReportCounter& operator=(const ReportCounter&) = delete;

  int Indices() const { return _counts->indices; } ///< indices out of range
  int Others() const { return _counts->others; }

private:
  struct Counts : vekdebug::sink {
    std::atomic<int> indices{0};
    std::atomic<int> others{0};
    void write(const vekdebug::report& p_report) override {
      if (p_report.kind == vekdebug::severity::range)
        ++indices;
      else if (p_report.kind != vekdebug::severity::debug)
        ++others;
    }
  };
  std::shared_ptr<Counts> _counts;
  std::shared_ptr<vekdebug::sink> _previous;
};

} // namespace Vek::Chart::Gallery
