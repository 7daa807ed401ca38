#include "platform/debug/Logger.h"

#include "platform/debug/private/StandardErrorSink.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <list>
#include <map>
#include <mutex>
#include <set>
#include <streambuf>
#include <utility>

namespace vekdebug {

/// Collects characters and writes each full line to the logger.
class line_buffer : public std::streambuf {
public:
  line_buffer(logger& p_logger, severity p_kind, std::string p_channel)
      : _logger(p_logger)
      , _kind(p_kind)
      , _channel(std::move(p_channel)) {}

protected:
  int_type overflow(int_type p_character) override {
    if (traits_type::eq_int_type(p_character, traits_type::eof()))
      return traits_type::not_eof(p_character);
    const char character = traits_type::to_char_type(p_character);
    return xsputn(&character, 1) == 1 ? p_character : traits_type::eof();
  }

  std::streamsize xsputn(const char* p_text, std::streamsize p_count) override {
    for (std::streamsize i = 0; i < p_count; ++i) {
      if (p_text[i] != '\n') {
        _line += p_text[i];
        continue;
      }
      // The line is taken out first, since a sink may throw.
      const std::string line = std::exchange(_line, {});
      _logger.write(_kind, line, _channel);
    }
    return p_count;
  }

private:
  logger& _logger;
  severity _kind;
  std::string _channel;
  std::string _line;
};

namespace {

/// The text between quotation marks: cut where it is long, with question marks for control characters.
std::string Quoted(std::string_view p_text) {
  constexpr std::size_t Longest = 80;
  std::size_t size = std::min(p_text.size(), Longest);
  while (size != 0 && size != p_text.size() && (p_text[size] & 0xC0) == 0x80)
    --size; // not in the middle of a UTF-8 character
  std::string text(p_text.substr(0, size));
  std::replace_if(
      text.begin(), text.end(), [](unsigned char p_byte) { return p_byte < ' ' || p_byte == 127; }, '?');
  return "\"" + text + (size < p_text.size() ? "…\"" : "\"");
}

/// A stream together with its buffer.
class OwnedStream {
public:
  OwnedStream(logger& p_logger, severity p_kind, const std::string& p_channel)
      : _buffer(p_logger, p_kind, p_channel)
      , _stream(&_buffer) {
    // Exceptions of a sink must reach the caller; without this the stream would catch them and stay bad.
    _stream.exceptions(std::ios::badbit);
  }
  dbgostream& Stream(bool p_active) {
    std::streambuf* wanted = p_active ? &_buffer : nullptr;
    if (_stream.rdbuf() != wanted) {
      _stream.exceptions(std::ios::goodbit);
      _stream.rdbuf(wanted); // also resets the stream's error state
      if (wanted != nullptr)
        _stream.exceptions(std::ios::badbit);
    }
    if (p_active && !_stream.good())
      _stream.clear();
    return _stream;
  }

private:
  line_buffer _buffer;
  dbgostream _stream;
};

/// The streams of one thread. Each thread has its own, so that lines of two threads never mix.
class ThreadStreams {
public:
  explicit ThreadStreams(bool& p_ended)
      : _ended(p_ended) {}
  ~ThreadStreams() { _ended = true; }

  OwnedStream& Errors(logger& p_logger) {
    if (!_errors)
      _errors = std::make_unique<OwnedStream>(p_logger, severity::error, std::string());
    return *_errors;
  }
  OwnedStream& Channel(logger& p_logger, const std::string& p_name) {
    std::unique_ptr<OwnedStream>& stream = _channels[p_name];
    if (!stream)
      stream = std::make_unique<OwnedStream>(p_logger, severity::debug, p_name);
    return *stream;
  }

private:
  bool& _ended;
  std::unique_ptr<OwnedStream> _errors;
  std::map<std::string, std::unique_ptr<OwnedStream>> _channels;
};

/// The calling thread's streams. Destructors of static and thread-local objects may report when these are gone: they
/// get other streams, which exist to the end of the process.
ThreadStreams& StreamsOfThisThread() {
  thread_local bool ended = false;
  thread_local ThreadStreams* late = nullptr;
  if (!ended) {
    thread_local ThreadStreams streams(ended);
    return streams;
  }
  if (late == nullptr) {
    static std::mutex mutex;
    static auto* const Kept = new std::list<ThreadStreams>;
    const std::lock_guard<std::mutex> lock(mutex);
    late = &Kept->emplace_back(ended);
  }
  return *late;
}

} // namespace

struct logger::state {
  mutable std::mutex mutex;
  const std::shared_ptr<Private::StandardErrorSink> standard = std::make_shared<Private::StandardErrorSink>();
  std::shared_ptr<sink> current = standard;
  std::set<std::string> openChannels;
};

std::string detail_text(const detail& p_detail) {
  std::string text(p_detail.path);
  const auto add = [&text](const std::string& p_item) { text += (text.empty() ? "" : ", ") + p_item; };
  if (p_detail.line != 0)
    text += (text.empty() ? "line " : ":") + std::to_string(p_detail.line);
  if (p_detail.found.data() != nullptr)
    add("found " + Quoted(p_detail.found));
  if (p_detail.index)
    add("index " + std::to_string(*p_detail.index));
  if (p_detail.count)
    add("count " + std::to_string(*p_detail.count));
  if (p_detail.value) {
    char number[32];
    std::snprintf(number, sizeof number, "%.9g", *p_detail.value);
    add(std::string("value ") + number);
  }
  return text;
}

sink::~sink() = default;

dbgostream::dbgostream(std::streambuf* p_buffer)
    : std::ostream(p_buffer) {}
dbgostream::~dbgostream() = default;

logger::logger()
    : _state(std::make_unique<state>()) {
  // Nobody would write the count of what static objects report later.
  std::atexit([] { instance()._state->standard->StopFolding(); });
}
logger::~logger() = default;

logger& logger::instance() {
  // Never destroyed: destructors of static objects may still report.
  static logger* const TheLogger = new logger;
  return *TheLogger;
}

void logger::write(severity p_kind, const std::string& p_text, const std::string& p_channel, const detail& p_detail) {
  std::shared_ptr<sink> current;
  {
    const std::lock_guard<std::mutex> lock(_state->mutex);
    current = _state->current;
  }
  current->write(report{p_kind, p_text, p_channel, p_detail});
}

void logger::ensure(bool p_condition, const std::string& p_text, const detail& p_detail) {
  if (!p_condition)
    write(severity::ensure, p_text, {}, p_detail);
}

void logger::sentry(const std::string& p_text, const detail& p_detail) {
  write(severity::sentry, p_text, {}, p_detail);
}

void logger::chkptr(const void* p_object, const std::string& p_text, const detail& p_detail) {
  if (p_object == nullptr)
    write(severity::pointer, p_text, {}, p_detail);
}

void logger::chkrng(std::uint64_t p_value, std::uint64_t p_first, std::uint64_t p_end, const std::string& p_text,
                    const detail& p_detail) {
  if (p_value >= p_first && p_value < p_end)
    return;
  detail where = p_detail;
  where.index = p_value;
  where.count = p_end;
  write(severity::range, p_text, {}, where);
}

void logger::error(const std::string& p_text, const detail& p_detail) {
  std::size_t first = 0;
  for (std::size_t end; (end = p_text.find('\n', first)) != std::string::npos; first = end + 1)
    write(severity::error, p_text.substr(first, end - first), {}, p_detail);
  first == 0 ? write(severity::error, p_text, {}, p_detail)
             : write(severity::error, p_text.substr(first), {}, p_detail);
}

dbgostream& logger::dout(const std::string& p_channel) {
  return StreamsOfThisThread().Channel(*this, p_channel).Stream(is_open(p_channel));
}

dbgostream& logger::derr() {
  return StreamsOfThisThread().Errors(*this).Stream(true);
}

void logger::open(const std::string& p_channel) {
  const std::lock_guard<std::mutex> lock(_state->mutex);
  _state->openChannels.insert(p_channel);
}

void logger::close(const std::string& p_channel) {
  const std::lock_guard<std::mutex> lock(_state->mutex);
  _state->openChannels.erase(p_channel);
}

bool logger::is_open(const std::string& p_channel) const {
  const std::lock_guard<std::mutex> lock(_state->mutex);
  return _state->openChannels.count(p_channel) != 0;
}

std::shared_ptr<sink> logger::set_sink(std::shared_ptr<sink> p_sink) {
  if (!p_sink)
    p_sink = _state->standard;
  _state->standard->Flush();
  const std::lock_guard<std::mutex> lock(_state->mutex);
  return std::exchange(_state->current, std::move(p_sink));
}

} // namespace vekdebug
