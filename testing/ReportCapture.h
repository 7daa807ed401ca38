#pragma once

#include "platform/debug/Logger.h"

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace Vek::Chart::Testing {

/// Gathers all reports of the process instead of printing them, as long as it lives. The sink that was installed before
/// returns at the end, so captures may be nested. All functions may be called while other threads report.
///
/// \snippet HostSnippets.cpp ReportCapture
/// \ingroup testing
class ReportCapture {
public:
  /// With `p_throws` each report is also thrown, as std::runtime_error.
  explicit ReportCapture(bool p_throws = false)
      : _sink(std::make_shared<Sink>(p_throws))
      , _previous(vekdebug::logger::instance().set_sink(_sink)) {}
  ~ReportCapture() { vekdebug::logger::instance().set_sink(_previous); }
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;

  /// One report.
  struct Entry {
    vekdebug::severity kind; ///< how bad it is
    std::string text;        ///< the fixed text: the expression that failed and where, or the message
    std::string channel;     ///< of a debug message; empty for others
    std::string where;       ///< the detail as a string: path, line and values
  };
  /// All reports so far, in order.
  std::vector<Entry> Entries() const {
    const std::lock_guard<std::mutex> lock(_sink->mutex);
    return _sink->entries;
  }
  /// The texts of all reports so far, in order.
  std::vector<std::string> Texts() const { return All(&Entry::text); }
  /// The details of all reports so far, in order.
  std::vector<std::string> Details() const { return All(&Entry::where); }
  /// Removes the reports so far.
  void Clear() {
    const std::lock_guard<std::mutex> lock(_sink->mutex);
    _sink->entries.clear();
  }

private:
  struct Sink : vekdebug::sink {
    explicit Sink(bool p_throws)
        : throws(p_throws) {}
    void write(const vekdebug::report& p_report) override {
      const std::lock_guard<std::mutex> lock(mutex);
      entries.push_back({p_report.kind, p_report.text, p_report.channel, vekdebug::detail_text(p_report.where)});
      if (throws)
        throw std::runtime_error(p_report.text);
    }
    const bool throws;
    std::mutex mutex;
    std::vector<Entry> entries;
  };

  std::vector<std::string> All(std::string Entry::*p_field) const {
    std::vector<std::string> all;
    for (const Entry& entry : Entries())
      all.push_back(entry.*p_field);
    return all;
  }

  std::shared_ptr<Sink> _sink;
  std::shared_ptr<vekdebug::sink> _previous;
};

} // namespace Vek::Chart::Testing
