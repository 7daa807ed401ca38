#include "library/private/io/ByteSource.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <ios>
#include <utility>

namespace Vek::Chart::Library::Private {

ByteSource::ByteSource(std::istream& p_stream, std::string_view p_path)
    : _stream(p_stream)
    , _path(p_path)
    , _window(new unsigned char[_size + Slack])
    , _ended(!p_stream.good() || p_stream.rdbuf() == nullptr) {}

ByteSource::~ByteSource() {
  if (_next == _end)
    return;
  try {
    _stream.rdbuf()->pubseekoff(-static_cast<std::streamoff>(_end - _next), std::ios::cur, std::ios::in);
  } catch (...) { // a stream that cannot go back stays where it is
  }
}

/// Moves the available bytes to the front of the window, or of a larger one, and reads more behind them.
std::size_t ByteSource::Refill(std::size_t p_count) {
  if (_size < p_count || !_window) {
    _size = std::max(_size, p_count);
    std::unique_ptr<unsigned char[]> larger(new unsigned char[_size + Slack]);
    std::copy_n(Data(), _end - _next, larger.get());
    _window = std::move(larger);
  } else {
    std::memmove(_window.get(), Data(), _end - _next);
  }
  _passed += _next;
  _end -= _next;
  _next = 0;
  while (_end < p_count && !_ended) {
    const std::size_t got = ReadOn(_window.get() + _end, _size - _end);
    _end += got;
    _ended = got == 0;
  }
  return _end;
}

/// Frees the window, of which all bytes were taken.
void ByteSource::DropWindow() {
  _passed += _next;
  _next = _end = 0;
  _window.reset();
  _size = WindowSize;
}

void ByteSource::Skip(std::uint64_t p_count) {
  const std::uint64_t available = std::min<std::uint64_t>(_end - _next, p_count);
  Take(static_cast<std::size_t>(available));
  const std::uint64_t behind = p_count - available;
  if (behind == 0)
    return;
  DropWindow();
  _passed += behind;
  const std::streamoff there =
      _stream.rdbuf()->pubseekoff(static_cast<std::streamoff>(behind), std::ios::cur, std::ios::in);
  _ended = _ended || there < 0;
}

std::size_t ByteSource::Read(unsigned char* p_target, std::size_t p_count) {
  const std::size_t available = std::min(_end - _next, p_count);
  std::copy_n(Data(), available, p_target);
  Take(available);
  if (_next == _end) // no window is needed as long as bytes are taken here
    DropWindow();
  std::size_t count = available;
  while (count < p_count && !_ended) {
    const std::size_t got = ReadOn(p_target + count, p_count - count);
    count += got;
    _passed += got;
    _ended = got == 0;
  }
  return count;
}

void ByteSource::Unread(const unsigned char* p_bytes, std::size_t p_count) {
  const std::size_t available = _end - _next;
  const std::size_t size = std::max(WindowSize, p_count + available);
  std::unique_ptr<unsigned char[]> window(new unsigned char[size + Slack]);
  std::memcpy(window.get(), p_bytes, p_count);
  std::copy_n(Data(), available, window.get() + p_count);
  _passed = Position() - p_count;
  _window = std::move(window);
  _size = size;
  _next = 0;
  _end = p_count + available;
}

/// Reads more bytes of the stream and returns their number. Errors (for example on a directory) are reported, so that
/// the stream is not taken for a short one.
std::size_t ByteSource::ReadOn(unsigned char* p_target, std::size_t p_count) {
  const vekdebug::detail where{_path};
  try {
    const std::streamsize got =
        _stream.rdbuf()->sgetn(reinterpret_cast<char*>(p_target), static_cast<std::streamsize>(p_count));
    return got < 0 ? 0 : static_cast<std::size_t>(got);
  } catch (const std::exception& failure) {
    if ((_stream.exceptions() & std::ios_base::badbit) != 0) // as operations of the stream itself would
      throw;
    _failed = true;
    vekdebug::warn(std::string("a stream failed while it was read: ") + failure.what(), where);
  } catch (...) {
    if ((_stream.exceptions() & std::ios_base::badbit) != 0)
      throw;
    _failed = true;
    vekdebug::warn("a stream failed while it was read", where);
  }
  return 0;
}

bool ByteSource::GetLine(std::string& p_line, std::size_t p_longest) {
  p_line.clear();
  if (Prepare(1) == 0)
    return false;
  while (p_line.size() <= p_longest && Prepare(1) != 0) {
    const std::size_t most = std::min(_end - _next, p_longest + 1 - p_line.size());
    const auto* const lineFeed = static_cast<const unsigned char*>(std::memchr(Data(), '\n', most));
    const std::size_t length = lineFeed == nullptr ? most : static_cast<std::size_t>(lineFeed - Data());
    p_line.append(reinterpret_cast<const char*>(Data()), length);
    Take(length);
    if (lineFeed != nullptr) {
      Take(1);
      break;
    }
  }
  return true;
}

std::size_t ByteSource::PrepareLines() {
  for (std::size_t wanted = WindowSize;;) {
    const std::size_t available = Prepare(wanted);
    const std::size_t lines = std::string_view(reinterpret_cast<const char*>(Data()), available).rfind('\n') + 1;
    if (lines != 0 || available < wanted || available > LongestLine)
      return lines;
    wanted = std::min(2 * available, LongestLine + 1);
  }
}

std::uint64_t ByteSource::Remaining(std::uint64_t p_limit) {
  std::uint64_t available = _end - _next;
  if (!_ended && RemainingByClaim() >= p_limit)
    return p_limit;
  // Windows grow by doubling here, so that a stream much shorter than the limit costs what it holds.
  for (std::size_t wanted = WindowSize; available < p_limit; wanted *= 2) {
    available = Prepare(static_cast<std::size_t>(std::min<std::uint64_t>(wanted, p_limit)));
    if (available < std::min<std::uint64_t>(wanted, p_limit))
      break;
  }
  return std::min(available, p_limit);
}

std::uint64_t ByteSource::RemainingByClaim() const {
  const std::uint64_t available = _end - _next;
  if (_ended)
    return available;
  // Straight from the buffer: a failed seek leaves the stream's state alone.
  std::streambuf* const buffer = _stream.rdbuf();
  const std::streamoff here = buffer->pubseekoff(0, std::ios::cur, std::ios::in);
  if (here < 0)
    return available;
  const std::streamoff end = buffer->pubseekoff(0, std::ios::end, std::ios::in);
  buffer->pubseekoff(here, std::ios::beg, std::ios::in);
  return available + (end > here ? static_cast<std::uint64_t>(end - here) : 0);
}

} // namespace Vek::Chart::Library::Private
