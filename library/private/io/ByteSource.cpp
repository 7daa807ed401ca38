#include "library/private/io/ByteSource.h"

#include "library/private/io/LineBlocks.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

namespace Vek::Chart::Library::Private {

ByteSource::ByteSource(std::istream& p_stream)
    : _stream(p_stream)
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

/// Moves what is left to the front of the window, or of a larger one, and reads on behind it.
std::size_t ByteSource::Refill(std::size_t p_count) {
  if (_size < p_count) {
    std::unique_ptr<unsigned char[]> larger(new unsigned char[p_count + Slack]);
    std::memcpy(larger.get(), Data(), _end - _next);
    _window = std::move(larger);
    _size = p_count;
  } else {
    std::memmove(_window.get(), Data(), _end - _next);
  }
  _passed += _next;
  _end -= _next;
  _next = 0;
  while (_end < p_count && !_ended) {
    const std::size_t got = ReadOn();
    _end += got;
    _ended = got == 0;
  }
  return _end;
}

/// Reads behind the end of the window and returns how many bytes came. What cannot be read, a folder for one, ends, and
/// the reason is told: a file that was read in part is not to be taken for a short one.
std::size_t ByteSource::ReadOn() {
  try {
    const std::streamsize got = _stream.rdbuf()->sgetn(reinterpret_cast<char*>(_window.get() + _end),
                                                       static_cast<std::streamsize>(_size - _end));
    return got < 0 ? 0 : static_cast<std::size_t>(got);
  } catch (const std::exception& pFailure) {
    vekdebug::warn(std::string("a stream failed while it was read: ") + pFailure.what());
  } catch (...) {
    vekdebug::warn("a stream failed while it was read");
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

std::uint64_t ByteSource::Remaining(std::uint64_t p_limit) {
  std::uint64_t available = _end - _next;
  if (!_ended && available + RemainingBytes(_stream) >= p_limit)
    return p_limit;
  // Windows grow by doubling here, so that a stream much shorter than the limit costs what it holds.
  for (std::size_t wanted = WindowSize; available < p_limit; wanted *= 2) {
    available = Prepare(static_cast<std::size_t>(std::min<std::uint64_t>(wanted, p_limit)));
    if (available < std::min<std::uint64_t>(wanted, p_limit))
      break;
  }
  return std::min(available, p_limit);
}

} // namespace Vek::Chart::Library::Private
