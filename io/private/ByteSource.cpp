#include "io/private/ByteSource.h"

#include "io/FileError.h"

#include <array>
#include <cstring>
#include <vector>

#if VEK_WITH_ZLIB
#include <zlib.h>
#endif

namespace Vek::Chart::Io::Private {

namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 16;

} // namespace

std::uint64_t SizeOf(std::istream& p_stream) {
  const std::istream::pos_type start = p_stream.tellg();
  if (start == std::istream::pos_type(-1) || !p_stream.seekg(0, std::ios::end)) {
    p_stream.clear(p_stream.rdstate() & ~std::ios::failbit);
    return ByteSource::Unknown;
  }
  const std::streamoff size = p_stream.tellg() - start;
  p_stream.seekg(start);
  return size < 0 ? ByteSource::Unknown : std::uint64_t(size);
}

bool ByteSource::Skip(std::uint64_t p_count) {
  std::array<char, 16384> block;
  while (p_count != 0) {
    const std::size_t wanted = std::size_t(std::min<std::uint64_t>(block.size(), p_count));
    if (Read(block.data(), wanted) < wanted)
      return false;
    p_count -= wanted;
  }
  return true;
}

std::string ByteSource::ReadAll() {
  std::string bytes;
  std::vector<char> block(std::size_t{1} << 20);
  for (std::size_t count = block.size(); count == block.size();) {
    count = Read(block.data(), block.size());
    bytes.append(block.data(), count);
  }
  return bytes;
}

StreamSource::StreamSource(std::istream& p_stream, const std::string& p_name, const Progress& p_progress)
    : _stream(p_stream)
    , _name(p_name)
    , _progress(p_progress)
    , _size(SizeOf(p_stream)) {}

std::size_t StreamSource::Read(char* p_to, std::size_t p_count) {
  constexpr std::uint64_t ReportEvery = std::uint64_t{1} << 20;
  _stream.read(p_to, std::streamsize(p_count));
  if (_stream.bad())
    throw FileError(_name, "reading failed");
  const std::size_t read = std::size_t(_stream.gcount());
  _position += read;
  if (_progress && (_reported == 0 || _position - _reported >= ReportEvery)) {
    _reported = std::max<std::uint64_t>(_position, 1);
    const bool known = _size != Unknown && _size != 0;
    if (!_progress(known ? std::min(1.0, double(_position) / double(_size)) : 0.0))
      throw FileError(_name, "cancelled");
  }
  return read;
}

std::string_view PeekSource::Peek(std::size_t p_count) {
  if (_ahead.size() - _at < p_count) {
    _ahead.erase(0, _at);
    _at = 0;
    const std::size_t old = _ahead.size();
    _ahead.resize(std::max(p_count, BlockSize));
    _ahead.resize(old + _source.Read(_ahead.data() + old, _ahead.size() - old));
  }
  return std::string_view(_ahead).substr(_at, p_count);
}

bool PeekSource::GetLine(std::string& p_line, std::size_t p_longest) {
  p_line.clear();
  bool found = false;
  while (!found && p_line.size() <= p_longest) {
    const std::string_view text = Peek(std::min<std::size_t>(1024, p_longest + 1 - p_line.size()));
    if (text.empty())
      break;
    const std::size_t end = text.find('\n');
    found = end != std::string_view::npos;
    p_line += text.substr(0, end);
    _at += found ? end + 1 : text.size();
  }
  if (found && !p_line.empty() && p_line.back() == '\r')
    p_line.pop_back();
  return found || !p_line.empty();
}

std::size_t PeekSource::Read(char* p_to, std::size_t p_count) {
  const std::size_t kept = std::min(p_count, _ahead.size() - _at);
  if (kept != 0)
    std::memcpy(p_to, _ahead.data() + _at, kept);
  _at += kept;
  return kept == p_count ? kept : kept + _source.Read(p_to + kept, p_count - kept);
}

std::uint64_t PeekSource::MostLeft() const {
  const std::uint64_t left = _source.MostLeft();
  return left == Unknown ? Unknown : left + (_ahead.size() - _at);
}

bool IsGzip(std::string_view p_start) {
  return p_start.substr(0, 2) == "\x1F\x8B";
}

#if VEK_WITH_ZLIB

namespace {

class GzipSource : public ByteSource {
public:
  GzipSource(ByteSource& p_source, const std::string& p_name)
      : _source(p_source)
      , _name(p_name) {
    constexpr int GzipWindow = 15 + 16; // the largest window, a gzip header
    if (inflateInit2(&_inflate, GzipWindow) != Z_OK)
      throw FileError(p_name, "no memory to decompress");
  }
  ~GzipSource() override { inflateEnd(&_inflate); }

  std::size_t Read(char* p_to, std::size_t p_count) override {
    std::size_t read = 0;
    while (read < p_count && !_ended) {
      constexpr std::size_t Most = std::size_t{1} << 30; // fits uInt
      const std::size_t wanted = std::min(Most, p_count - read);
      _inflate.next_out = reinterpret_cast<Bytef*>(p_to + read);
      _inflate.avail_out = uInt(wanted);
      Inflate();
      read += wanted - _inflate.avail_out;
    }
    return read;
  }

  /// Deflate turns a byte into at most 1032.
  std::uint64_t MostLeft() const override {
    constexpr std::uint64_t MostExpansion = 1032;
    const std::uint64_t left = _source.MostLeft();
    return left > Unknown / (2 * MostExpansion) ? Unknown : (left + _inflate.avail_in) * MostExpansion + BlockSize;
  }

private:
  void Inflate() {
    if (_inflate.avail_in == 0) {
      _inflate.next_in = _block.data();
      _inflate.avail_in = uInt(_source.Read(reinterpret_cast<char*>(_block.data()), _block.size()));
    }
    if (_inflate.avail_in == 0) { // between members the data may end
      if (!_betweenMembers)
        throw FileError(_name, "the compressed data end early");
      _ended = true;
      return;
    }
    if (_betweenMembers && _read && *_inflate.next_in != 0x1F) { // padding behind the last member
      _ended = true;
      return;
    }
    _read = true;
    _betweenMembers = false;
    const int status = inflate(&_inflate, Z_NO_FLUSH);
    if (status == Z_STREAM_END) {
      _betweenMembers = true;
      inflateReset(&_inflate);
    } else if (status != Z_OK && status != Z_BUF_ERROR) {
      throw FileError(_name, std::string("the compressed data are damaged: ") +
                                 (_inflate.msg == nullptr ? "no gzip data" : _inflate.msg));
    }
  }

  ByteSource& _source;
  const std::string& _name;
  z_stream _inflate{};
  std::array<Bytef, BlockSize> _block;
  bool _betweenMembers = false;
  bool _read = false;
  bool _ended = false;
};

} // namespace

std::unique_ptr<ByteSource> OpenGzip(ByteSource& p_source, const std::string& p_name) {
  return std::make_unique<GzipSource>(p_source, p_name);
}

#else

std::unique_ptr<ByteSource> OpenGzip(ByteSource&, const std::string& p_name) {
  throw FileError(p_name, "this build does not read files compressed by gzip; build it with the package zlib1g-dev");
}

#endif

} // namespace Vek::Chart::Io::Private
