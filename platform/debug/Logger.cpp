#include "platform/debug/Logger.h"

#include <iostream>
#include <list>
#include <map>
#include <mutex>
#include <set>
#include <streambuf>
#include <utility>

namespace vekdebug {

/// Gathers characters until a line end and hands each full line to the logger.
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
      // A sink may throw: the buffer must be empty before it is called.
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

class StandardErrorSink : public sink {
public:
  void write(const report& p_report) override {
    std::string line = p_report.channel.empty() ? p_report.text : "[" + p_report.channel + "] " + p_report.text;
    line += '\n';
    std::cerr << line << std::flush;
  }
};

/// A stream together with its buffer.
class OwnedStream {
public:
  OwnedStream(logger& p_logger, severity p_kind, const std::string& p_channel)
      : _buffer(p_logger, p_kind, p_channel)
      , _stream(&_buffer) {
    // A throwing sink must reach the caller; without this the stream would swallow it and stay bad.
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

/// The streams of one thread: each thread has its own, so that lines of two threads never mix.
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

/// The calling thread's streams. Destructors of static and thread-local objects may report after the thread's streams
/// are gone; they get others, which are kept for the life of the process.
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
  std::shared_ptr<sink> current = std::make_shared<StandardErrorSink>();
  std::set<std::string> openChannels;
};

sink::~sink() = default;

dbgostream::dbgostream(std::streambuf* p_buffer)
    : std::ostream(p_buffer) {}
dbgostream::~dbgostream() = default;

logger::logger()
    : _state(std::make_unique<state>()) {}
logger::~logger() = default;

logger& logger::instance() {
  // Never destroyed: destructors of static objects may still report.
  static logger* const TheLogger = new logger;
  return *TheLogger;
}

void logger::write(severity p_kind, const std::string& p_text, const std::string& p_channel) {
  std::shared_ptr<sink> current;
  {
    const std::lock_guard<std::mutex> lock(_state->mutex);
    current = _state->current;
  }
  current->write(report{p_kind, p_text, p_channel});
}

void logger::ensure(bool p_condition, const std::string& p_text) {
  if (!p_condition)
    write(severity::ensure, p_text, {});
}

void logger::sentry(const std::string& p_text) {
  write(severity::sentry, p_text, {});
}

void logger::chkptr(const void* p_object, const std::string& p_text) {
  if (p_object == nullptr)
    write(severity::pointer, p_text, {});
}

void logger::chkrng(std::uint64_t p_value, std::uint64_t p_first, std::uint64_t p_end, const std::string& p_text) {
  if (p_value < p_first || p_value >= p_end)
    write(severity::range, p_text, {});
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
    p_sink = std::make_shared<StandardErrorSink>();
  const std::lock_guard<std::mutex> lock(_state->mutex);
  return std::exchange(_state->current, std::move(p_sink));
}

} // namespace vekdebug
