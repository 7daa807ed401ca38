#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string>

namespace Vek::Chart::Library::Private {

/// Reads bytes and lines from a stream through a window of memory, with a look ahead. At its end, reads yield less than
/// was asked for, and never anything stale. Reads past the stream's buffer only: its state flags stay as they are, and
/// a stream that is not good is taken as empty. A stream that throws has ended; that is written to the error stream,
/// with the text of the exception.
class ByteSource {
public:
  explicit ByteSource(std::istream& p_stream);
  /// Moves the stream back to the first byte that was not taken, where it can seek.
  ~ByteSource();
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  static constexpr std::size_t LongestLine = std::size_t{64} << 20;

  /// Takes a line without its line feed. False, and an empty line, when there is nothing left. Of a line longer than
  /// p_longest bytes it takes the first p_longest + 1 bytes only, by which callers recognise such a line.
  bool GetLine(std::string& p_line, std::size_t p_longest = LongestLine);

  /// Makes at least `p_count` bytes available at Data(), and returns how many there are: fewer only at the end. The
  /// window grows to hold more than WindowSize.
  std::size_t Prepare(std::size_t p_count) { return _end - _next >= p_count ? _end - _next : Refill(p_count); }
  /// The available bytes; valid until the next Prepare or GetLine. Slack bytes behind them may be read, too; they
  /// have no meaning.
  const unsigned char* Data() const { return _window.get() + _next; }
  /// Takes bytes that are available.
  void Take(std::size_t p_count) { _next += p_count; }
  /// The number of bytes taken so far.
  std::uint64_t Position() const { return _passed + _next; }

  /// How many bytes are left, at most `p_limit`. Where the stream cannot tell, it reads ahead as far as it must.
  std::uint64_t Remaining(std::uint64_t p_limit);

  static constexpr std::size_t WindowSize = std::size_t{1} << 20;
  static constexpr std::size_t Slack = 128;

private:
  std::size_t Refill(std::size_t p_count);
  std::size_t ReadOn();

  std::istream& _stream;
  std::size_t _size = WindowSize;
  std::unique_ptr<unsigned char[]> _window; ///< not initialised: most of it stays untouched by a small stream
  std::uint64_t _passed = 0; ///< bytes in front of the window
  std::size_t _next = 0;
  std::size_t _end = 0;
  bool _ended;
};

} // namespace Vek::Chart::Library::Private
