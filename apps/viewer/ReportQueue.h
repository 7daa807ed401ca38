#pragma once

#include "platform/debug/Logger.h"

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace Vek::Chart::Viewer {

/// A sink that takes the library's reports on whatever thread they are made, and keeps them for the one that shows
/// them. A broken file can give a report for each of its lines: only so many texts wait, of others the number alone.
/// Debug output is passed over.
class ReportQueue : public vekdebug::sink {
public:
  static constexpr std::size_t MostTexts = 200;

  /// `p_wake` is called when reports begin to wait, on the thread that reports.
  explicit ReportQueue(std::function<void()> p_wake)
      : _wake(std::move(p_wake)) {}

  struct Waiting {
    std::vector<std::string> texts;
    std::size_t count = 0; ///< of all reports, those without a text among them
  };
  /// What came since the last call.
  Waiting Take();
  /// Wakes nobody any more.
  void Detach();

  void write(const vekdebug::report& p_report) override;

private:
  std::mutex _mutex;
  std::function<void()> _wake;
  Waiting _waiting;
};

} // namespace Vek::Chart::Viewer
