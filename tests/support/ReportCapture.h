#pragma once

#include "platform/debug/Logger.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Vek::Test {

/// Gathers all reports instead of printing them, as long as it lives.
class ReportCapture {
public:
  /// With `p_throws` each report is also thrown, as std::runtime_error.
  explicit ReportCapture(bool p_throws = false);
  ~ReportCapture();
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;

  struct Entry {
    vekdebug::severity kind;
    std::string text;
    std::string channel;
    std::string where; ///< the detail as a string
  };
  std::vector<Entry> Entries() const;
  /// The texts of all reports so far, in order.
  std::vector<std::string> Texts() const;
  /// The details of all reports so far, in order.
  std::vector<std::string> Details() const;
  void Clear();

private:
  class Sink;
  std::shared_ptr<Sink> _sink;
  std::shared_ptr<vekdebug::sink> _previous;
};

} // namespace Vek::Test
