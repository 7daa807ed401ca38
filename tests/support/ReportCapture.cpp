#include "tests/support/ReportCapture.h"

#include <stdexcept>

namespace Vek::Test {

class ReportCapture::Sink : public vekdebug::sink {
public:
  explicit Sink(bool p_throws)
      : throws(p_throws) {}
  void write(const vekdebug::report& p_report) override {
    const std::lock_guard<std::mutex> lock(mutex);
    entries.push_back({p_report.kind, p_report.text, p_report.channel, vekdebug::detail_text(p_report.where)});
    if (throws)
      throw std::runtime_error(entries.back().text);
  }
  const bool throws;
  mutable std::mutex mutex;
  std::vector<Entry> entries;
};

ReportCapture::ReportCapture(bool p_throws)
    : _sink(std::make_shared<Sink>(p_throws))
    , _previous(vekdebug::logger::instance().set_sink(_sink)) {}

ReportCapture::~ReportCapture() {
  vekdebug::logger::instance().set_sink(_previous);
}

std::vector<ReportCapture::Entry> ReportCapture::Entries() const {
  const std::lock_guard<std::mutex> lock(_sink->mutex);
  return _sink->entries;
}

std::vector<std::string> ReportCapture::Texts() const {
  std::vector<std::string> texts;
  for (const Entry& entry : Entries())
    texts.push_back(entry.text);
  return texts;
}

std::vector<std::string> ReportCapture::Details() const {
  std::vector<std::string> details;
  for (const Entry& entry : Entries())
    details.push_back(entry.where);
  return details;
}

void ReportCapture::Clear() {
  const std::lock_guard<std::mutex> lock(_sink->mutex);
  _sink->entries.clear();
}

} // namespace Vek::Test
