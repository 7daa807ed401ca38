#include "platform/debug/private/StandardErrorSink.h"

#include <iostream>

namespace vekdebug::Private {

namespace {

/// 1234567 as "1,234,567".
std::string Grouped(std::uint64_t p_number) {
  std::string digits = std::to_string(p_number);
  for (std::size_t at = digits.size(); at > 3;)
    digits.insert(at -= 3, ",");
  return digits;
}

} // namespace

void StandardErrorSink::write(const report& p_report) {
  const std::lock_guard<std::mutex> lock(_mutex);
  const Clock::time_point now = Clock::now();
  if (!Repeats(p_report)) {
    PrintFolded();
    Print(p_report);
    _printed = now;
    return;
  }
  ++_folded;
  _lastPath = p_report.where.path;
  _lastLine = p_report.where.line;
  _lastIndex = p_report.where.index;
  if (now - _printed >= std::chrono::seconds(1)) {
    PrintFolded();
    _printed = now;
  }
}

void StandardErrorSink::Flush() {
  const std::lock_guard<std::mutex> lock(_mutex);
  PrintFolded();
  _canRepeat = false;
}

void StandardErrorSink::StopFolding() {
  Flush();
  const std::lock_guard<std::mutex> lock(_mutex);
  _folds = false;
}

bool StandardErrorSink::Repeats(const report& p_report) const {
  return _canRepeat && p_report.kind == _kind && p_report.text == _text && p_report.channel == _channel;
}

void StandardErrorSink::Print(const report& p_report) {
  const std::string where = detail_text(p_report.where);
  std::string line = p_report.channel.empty() ? p_report.text : "[" + p_report.channel + "] " + p_report.text;
  line += where.empty() ? "\n" : " (" + where + ")\n";
  std::cerr << line << std::flush;
  _kind = p_report.kind;
  _text = p_report.text;
  _channel = p_report.channel;
  _path = p_report.where.path;
  _canRepeat = _folds;
}

/// "… 12 more, to line 1,234"; with the path where it is another one.
void StandardErrorSink::PrintFolded() {
  if (_folded == 0)
    return;
  std::string line = "… " + Grouped(_folded) + " more";
  const char* separator = ", to ";
  const auto add = [&](const std::string& p_item) {
    line += separator + p_item;
    separator = ", ";
  };
  if (_lastPath != _path)
    add(_lastPath);
  if (_lastLine != 0)
    add("line " + Grouped(_lastLine));
  else if (_lastIndex)
    add("index " + Grouped(*_lastIndex));
  _folded = 0;
  std::cerr << line + "\n" << std::flush;
}

} // namespace vekdebug::Private
