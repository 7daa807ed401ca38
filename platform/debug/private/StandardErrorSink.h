#pragma once

#include "platform/debug/Logger.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace vekdebug::Private {

/// The default sink: writes reports to standard error, and repetitions of one text as a count.
class StandardErrorSink : public sink {
public:
  void write(const report& p_report) override;

  /// Writes the number of repetitions so far. The next report is written whole.
  void Flush();
  /// Flushes, and writes every report from now on.
  void StopFolding();

private:
  using Clock = std::chrono::steady_clock;

  bool Repeats(const report& p_report) const;
  void Print(const report& p_report);
  void PrintFolded();

  std::mutex _mutex;
  bool _folds = true;

  // The report that was printed last.
  bool _canRepeat = false;
  severity _kind = severity::debug;
  std::string _text;
  std::string _channel;
  std::string _path;
  Clock::time_point _printed; ///< when it, or the number of its repetitions, was printed

  // Its repetitions that are not printed yet, and the place of the last one.
  std::uint64_t _folded = 0;
  std::string _lastPath;
  std::uint64_t _lastLine = 0;
  std::optional<std::uint64_t> _lastIndex;
};

} // namespace vekdebug::Private
