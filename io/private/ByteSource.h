#pragma once

#include "io/Progress.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

namespace Vek::Chart::Io::Private {

/// Bytes that are read from front to back.
class ByteSource {
public:
  ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  virtual ~ByteSource() = default;

  static constexpr std::uint64_t Unknown = UINT64_MAX;

  /// Reads bytes; fewer than p_count only at the end.
  virtual std::size_t Read(char* p_to, std::size_t p_count) = 0;
  /// No more bytes than this are left; Unknown where the source cannot bound them.
  virtual std::uint64_t MostLeft() const = 0;

  /// Reads and drops bytes; false where there are fewer.
  bool Skip(std::uint64_t p_count);
  /// All bytes that are left.
  std::string ReadAll();
};

/// The bytes from a stream's position to its end, as it claims; ByteSource::Unknown where it cannot seek.
std::uint64_t SizeOf(std::istream& p_stream);

/// The bytes of a stream, with progress. Throws FileError where reading fails or the progress cancels.
class StreamSource : public ByteSource {
public:
  /// All of these must outlive the source.
  StreamSource(std::istream& p_stream, const std::string& p_name, const Progress& p_progress);

  std::size_t Read(char* p_to, std::size_t p_count) override;
  std::uint64_t MostLeft() const override { return _size == Unknown ? Unknown : _size - std::min(_size, _position); }

private:
  std::istream& _stream;
  const std::string& _name;
  const Progress& _progress;
  std::uint64_t _size = Unknown; ///< from the position where the source began
  std::uint64_t _position = 0;
  std::uint64_t _reported = 0;
};

/// Another source whose first bytes may be looked at before they are read.
class PeekSource : public ByteSource {
public:
  explicit PeekSource(ByteSource& p_source)
      : _source(p_source) {}

  /// The next bytes, at most p_count, fewer only at the end. Valid until the next call.
  std::string_view Peek(std::size_t p_count);
  /// Takes a line without its end (LF or CR LF). False at the end. Of a line longer than p_longest bytes it takes
  /// p_longest + 1.
  bool GetLine(std::string& p_line, std::size_t p_longest);

  std::size_t Read(char* p_to, std::size_t p_count) override;
  std::uint64_t MostLeft() const override;

private:
  ByteSource& _source;
  std::string _ahead;
  std::size_t _at = 0; ///< what is left of `_ahead` begins here
};

/// Whether bytes begin as gzip data do.
bool IsGzip(std::string_view p_start);

/// The contents of gzip data (P. Deutsch, RFC 1952), of several members as well. Throws FileError for data that are
/// damaged or end early, and in builds without zlib.
std::unique_ptr<ByteSource> OpenGzip(ByteSource& p_source, const std::string& p_name);

} // namespace Vek::Chart::Io::Private
