#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

namespace Vek::Chart::Library::Private {

/// Reads bytes and lines from a stream through a window of memory. Reads from the stream's buffer: the stream's state
/// flags stay as they are, and a stream that is not good counts as empty. An exception of the stream ends the source,
/// and is reported on the error stream with its message and the path.
class ByteSource {
public:
  /// The stream must outlive the source, and so must the characters of the path, which reports show.
  explicit ByteSource(std::istream& p_stream, std::string_view p_path = {});
  /// Moves the stream back to the first byte that was not taken, where it can seek.
  ~ByteSource();
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  static constexpr std::size_t WindowSize = std::size_t{1} << 18;
  static constexpr std::size_t Slack = 128;
  /// Longer than any line of a real file: a source without line feeds must not take all memory.
  static constexpr std::size_t LongestLine = std::size_t{64} << 20;

  /// Takes a line without its line feed. False, and an empty line, when there is nothing left. Of a line longer than
  /// p_longest bytes it takes the first p_longest + 1 bytes only, by which callers recognise such a line.
  bool GetLine(std::string& p_line, std::size_t p_longest = LongestLine);

  /// Makes at least one whole line available and returns the size of all that are, line feeds included. 0 when the
  /// rest has no line feed: Prepare(1) then returns the size of the rest, which exceeds LongestLine only for a line
  /// that is longer.
  std::size_t PrepareLines();

  /// Makes at least `p_count` bytes available at Data() and returns their number, which is smaller only at the end. The
  /// window grows to hold more than WindowSize.
  std::size_t Prepare(std::size_t p_count) { return _end - _next >= p_count ? _end - _next : Refill(p_count); }
  /// The available bytes; valid until the next Prepare, PrepareLines or GetLine. Slack bytes behind them may be read,
  /// too; they have no meaning.
  const unsigned char* Data() const { return _window.get() + _next; }
  /// Takes bytes that are available.
  void Take(std::size_t p_count) { _next += p_count; }
  /// Takes up to `p_count` bytes into memory of the caller, fewer only at the end, and returns their number.
  std::size_t Read(unsigned char* p_target, std::size_t p_count);
  /// Takes bytes, also those behind the window of a stream that can seek.
  void Skip(std::uint64_t p_count);
  /// Gives bytes back that were taken last.
  void Unread(const unsigned char* p_bytes, std::size_t p_count);
  /// The number of bytes taken so far.
  std::uint64_t Position() const { return _passed + _next; }

  /// The number of bytes left, at most `p_limit`. Reads ahead as far as necessary where the stream cannot seek.
  std::uint64_t Remaining(std::uint64_t p_limit);
  /// The number of bytes left by the size that the file system claims; fewer or more may follow. Only those in the
  /// window where the stream cannot seek.
  std::uint64_t RemainingByClaim() const;

  /// Whether an exception ended the source, in which case its last line may be incomplete.
  bool Failed() const { return _failed; }

private:
  void DropWindow();
  std::size_t Refill(std::size_t p_count);
  std::size_t ReadOn(unsigned char* p_target, std::size_t p_count);

  std::istream& _stream;
  std::string_view _path;
  std::size_t _size = WindowSize;
  std::unique_ptr<unsigned char[]> _window; ///< not initialised: most of it stays untouched by a small stream
  std::uint64_t _passed = 0;                ///< bytes in front of the window
  std::size_t _next = 0;
  std::size_t _end = 0;
  bool _ended;
  bool _failed = false;
};

} // namespace Vek::Chart::Library::Private
