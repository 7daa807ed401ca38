#include "library/private/ByteSource.h"

#include <algorithm>
#include <cstring>

namespace Vek::Chart::Library::Private {

ByteSource::ByteSource(std::istream& p_stream)
    : _stream(p_stream)
    , _window(WindowSize)
    , _ended(!p_stream.good() || p_stream.rdbuf() == nullptr) {}

ByteSource::~ByteSource() {
  if (_next == _end)
    return;
  try {
    _stream.rdbuf()->pubseekoff(-static_cast<std::streamoff>(_end - _next), std::ios::cur, std::ios::in);
  } catch (...) { // a stream that cannot go back stays where it is
  }
}

/// Moves what is left to the front of the window and reads on behind it.
std::size_t ByteSource::Refill(std::size_t p_count) {
  std::memmove(_window.data(), _window.data() + _next, _end - _next);
  _end -= _next;
  _next = 0;
  if (_window.size() < p_count)
    _window.resize(p_count);
  while (_end < p_count && !_ended) {
    const std::streamsize got = _stream.rdbuf()->sgetn(reinterpret_cast<char*>(_window.data() + _end),
                                                       static_cast<std::streamsize>(_window.size() - _end));
    _ended = got <= 0;
    if (!_ended)
      _end += static_cast<std::size_t>(got);
  }
  return _end;
}

bool ByteSource::GetLine(std::string& p_line) {
  p_line.clear();
  if (Prepare(1) == 0)
    return false;
  while (Prepare(1) != 0) {
    const unsigned char* const line_feed = static_cast<const unsigned char*>(std::memchr(Data(), '\n', _end - _next));
    const std::size_t length = line_feed == nullptr ? _end - _next : static_cast<std::size_t>(line_feed - Data());
    p_line.append(reinterpret_cast<const char*>(Data()), length);
    Take(length);
    if (line_feed != nullptr) {
      Take(1);
      break;
    }
  }
  return true;
}

std::size_t ByteSource::Read(unsigned char* p_to, std::size_t p_count) {
  std::size_t done = 0;
  while (done < p_count) {
    const std::size_t part = std::min(Prepare(1), p_count - done);
    if (part == 0)
      break;
    std::memcpy(p_to + done, Data(), part);
    Take(part);
    done += part;
  }
  return done;
}

std::uint64_t ByteSource::Remaining(std::uint64_t p_limit) {
  // Windows grow by doubling here, so that a stream much shorter than the limit costs what it holds.
  std::uint64_t available = _end - _next;
  for (std::size_t wanted = WindowSize; available < p_limit; wanted *= 2) {
    available = Prepare(static_cast<std::size_t>(std::min<std::uint64_t>(wanted, p_limit)));
    if (available < std::min<std::uint64_t>(wanted, p_limit))
      break;
  }
  return std::min(available, p_limit);
}

} // namespace Vek::Chart::Library::Private
