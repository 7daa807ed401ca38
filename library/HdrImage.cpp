#include "library/HdrImage.h"

#include "library/private/io/ByteSource.h"
#include "library/private/io/PathHash.h"
#include "library/private/io/RgbeScanline.h"
#include "library/private/memory/HugePages.h"
#include "library/private/memory/UnsetVector.h"
#include "platform/debug/Check.h"

#include <boost/algorithm/string/trim.hpp>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <locale>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Vek::Chart::Library {

namespace {

#define VEK_CLASS "Vek::Chart::Library::HdrImage::"
#define VEK_STRING "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >"

namespace Signature {
constexpr const char* Load =
    "void __cdecl " VEK_CLASS "Load(class std::basic_istream<char,struct std::char_traits<char> > &)";
constexpr const char* ParseCommand =
    "struct std::pair<" VEK_STRING "," VEK_STRING " > __cdecl " VEK_CLASS "ParseCommand(const " VEK_STRING " &)";
constexpr const char* Byte = "unsigned char &__cdecl " VEK_CLASS "Rgbe8::operator [](unsigned __int64)";
constexpr const char* ByteConst =
    "const unsigned char &__cdecl " VEK_CLASS "Rgbe8::operator [](unsigned __int64) const";
constexpr const char* Pixel = "struct " VEK_CLASS "Rgb32F &__cdecl " VEK_CLASS "Pixel(const int,const int)";
constexpr const char* PixelConst =
    "const struct " VEK_CLASS "Rgb32F &__cdecl " VEK_CLASS "Pixel(const int,const int) const";
} // namespace Signature

#undef VEK_CLASS
#undef VEK_STRING

/// Far more bytes than any real header has. A file that is no image may have no line feed at all.
constexpr std::size_t LongestHeader = std::size_t{1} << 20;

using Command = std::pair<std::string, std::string>;
using Commands = std::multimap<std::int32_t, Command>; // by the hash of the name

/// Splits a header line at its first '='. A line without one is a name without a value.
Command ParseCommand(const std::string& p_line, const vekdebug::detail& p_where) {
  const std::size_t sign = p_line.find('=');
  const bool oneSign = sign != std::string::npos && p_line.find('=', sign + 1) == std::string::npos;
  VEK_ENSURE_AT(oneSign, "param.size() == 2", Signature::ParseCommand, p_where);
  if (sign == std::string::npos)
    return {p_line, ""};
  return {p_line.substr(0, sign), p_line.substr(sign + 1)};
}

/// The lines before the pixels.
class Header {
public:
  Header(Private::ByteSource& p_source, std::string_view p_path);

  Commands commands;
  int width = 0; ///< 0 × 0 when the resolution cannot be read
  int height = 0;
  std::string axisY;
  std::string axisX;
  vekdebug::detail where; ///< the last line

private:
  bool ReadLine();
  bool ReadCommands();
  void ReadResolution();

  Private::ByteSource& _source;
  std::string _line;
};

Header::Header(Private::ByteSource& p_source, std::string_view p_path)
    : _source(p_source) {
  where.path = p_path;
  bool going = ReadLine();
  const std::string& header = _line;
  VEK_ENSURE_AT(header.size() == 10, "header.size() == 10", Signature::Load, where);
  VEK_ENSURE_AT(header == "#?RADIANCE", "header == \"#?RADIANCE\"", Signature::Load, where);
  going = going && ReadCommands() && ReadLine();
  if (going)
    ReadResolution();
  else if (_source.Position() > LongestHeader)
    vekdebug::warn("HdrImage::Load: no end of the header in " + std::to_string(LongestHeader) + " bytes", where);
}

/// False at the end of the data, and where the header is too long.
bool Header::ReadLine() {
  const bool read = _source.GetLine(_line, LongestHeader);
  ++where.line;
  where.found = _line;
  return read && _source.Position() <= LongestHeader;
}

/// Reads up to the empty line; false when there is none.
bool Header::ReadCommands() {
  while (ReadLine()) {
    boost::trim(_line, std::locale::classic());
    if (_line.empty())
      return true;
    if (_line.front() == '#')
      continue;
    where.found = _line;
    VEK_ENSURE_AT(_line.find_first_of('=') != std::string::npos, "line.find_first_of('=') != std::string::npos",
                  Signature::Load, where);
    const Command command = ParseCommand(_line, where);
    commands.emplace(Private::PathHash(command.first), command);
  }
  return false;
}

/// "-Y 512 +X 1024"
void Header::ReadResolution() {
  std::istringstream text(_line);
  text.imbue(std::locale::classic());
  if (!(text >> axisY >> height >> axisX >> width))
    width = height = 0;
}

/// The number of pixels. More than 2^26 are believed only where the data may hold them: a scanline takes at least four
/// bytes, and an old run code repeats up to 255 pixels in four bytes. (Chained run codes repeat more, up to gigabytes
/// from a few bytes, but no real image of that size has them.)
std::size_t CountPixels(const Header& p_header, Private::ByteSource& p_source) {
  const std::int64_t width = p_header.width;
  const std::int64_t height = p_header.height;
  const auto refuse = [&p_header](const std::string& p_reason) {
    throw std::length_error("HdrImage: " + p_reason + " (" + vekdebug::detail_text(p_header.where) + ")");
  };
  if (width < 0 || height < 0 || width * height > std::numeric_limits<int>::max())
    refuse("a negative size, or more than 2^31 - 1 pixels");
  const std::uint64_t leastBytes = static_cast<std::uint64_t>(std::max(4 * height, width * height / 64));
  if (width * height > std::int64_t{1} << 26 && p_source.Remaining(leastBytes) < leastBytes)
    refuse("more pixels than the file can hold");
  return static_cast<std::size_t>(width * height);
}

} // namespace

struct VEK_HIDDEN HdrImage::State {
  int width = 0;
  int height = 0;
  std::vector<Rgb32F> pixels;
  Commands commands;
  Rgb32F nowhere; ///< stands for pixels outside the image

  void Load(std::istream& p_stream, std::string_view p_path);

private:
  void Decode(Private::ByteSource& p_source, Private::RgbeScanline& p_scanline);
};

/// The image is empty until all memory is there: what throws before leaves it so.
void HdrImage::State::Load(std::istream& p_stream, std::string_view p_path) {
  std::vector<Rgb32F> memory = std::move(pixels);
  *this = State();
  Private::ByteSource source(p_stream);
  Header header(source, p_path);
  const std::size_t count = CountPixels(header, source);
  vekdebug::detail where;
  where.path = p_path;
  where.count = static_cast<std::uint64_t>(header.height);
  Private::RgbeScanline scanline(static_cast<std::size_t>(header.width), where);
  if (memory.size() != count) {
    std::vector<Rgb32F>().swap(memory); // before the new pixels are allocated
    memory = Private::UnsetVector<Rgb32F, Unset>(count);
  }

  width = header.width;
  height = header.height;
  pixels = std::move(memory);
  commands = std::move(header.commands);
  Decode(source, scanline);
  VEK_ENSURE_AT(header.axisY == "-Y" && header.axisX == "+X", "(axisY == \"-Y\") && (axisX == \"+X\")", Signature::Load,
                header.where);
}

/// Sets all pixels: to 0 after the end of the data, and from the scanline on whose decoding throws.
void HdrImage::State::Decode(Private::ByteSource& p_source, Private::RgbeScanline& p_scanline) {
  static_assert(sizeof(Rgb32F) == 3 * sizeof(float));
  struct Missing {
    Rgb32F* first;
    std::size_t count;
    ~Missing() { Private::ClearMemory(first, count * sizeof(Rgb32F)); }
  } missing{pixels.data(), pixels.size()};

  for (bool complete = true; complete && missing.count != 0;) {
    const std::size_t start = missing.count - static_cast<std::size_t>(width);
    complete = p_scanline.Decode(p_source, &missing.first[start].red);
    missing.count = start;
  }
}

unsigned char& HdrImage::Rgbe8::operator[](std::size_t p_index) {
  thread_local unsigned char nowhere;
  if (VEK_CHECK_RANGE(p_index, bytes.size(), "0 <= p_index < bytes.size()", Signature::Byte))
    return bytes[p_index];
  return nowhere = 0;
}

const unsigned char& HdrImage::Rgbe8::operator[](std::size_t p_index) const {
  static const unsigned char Nowhere = 0;
  if (VEK_CHECK_RANGE(p_index, bytes.size(), "0 <= p_index < bytes.size()", Signature::ByteConst))
    return bytes[p_index];
  return Nowhere;
}

HdrImage::HdrImage(std::istream& p_stream)
    : _state(new State) {
  Load(p_stream);
}

HdrImage::HdrImage(const vekfile::filepath& p_path)
    : _state(new State) {
  std::ifstream file(p_path.str(), std::ios::binary);
  _state->Load(file, p_path.str());
}

void HdrImage::Load(std::istream& p_stream) {
  _state->Load(p_stream, {});
}

int HdrImage::Width() const {
  return _state->width;
}

int HdrImage::Height() const {
  return _state->height;
}

HdrImage::Rgb32F& HdrImage::Pixel(int p_x, int p_y) {
  const std::size_t offset = static_cast<std::size_t>(std::int64_t{p_y} * _state->width + p_x);
  if (VEK_ENSURE_AT(offset < _state->pixels.size(), "offset < _state->pixels.size()", Signature::Pixel,
                    {{}, 0, {}, offset, _state->pixels.size()}))
    return _state->pixels[offset];
  return _state->nowhere = Rgb32F();
}

const HdrImage::Rgb32F& HdrImage::Pixel(int p_x, int p_y) const {
  static const Rgb32F Nowhere;
  const std::size_t offset = static_cast<std::size_t>(std::int64_t{p_y} * _state->width + p_x);
  if (VEK_ENSURE_AT(offset < _state->pixels.size(), "offset < _state->pixels.size()", Signature::PixelConst,
                    {{}, 0, {}, offset, _state->pixels.size()}))
    return _state->pixels[offset];
  return Nowhere;
}

const std::vector<HdrImage::Rgb32F>& HdrImage::Pixels() const {
  return _state->pixels;
}

std::vector<std::string> HdrImage::HeaderValues(const std::string& p_name) const {
  std::vector<std::string> values;
  const auto range = _state->commands.equal_range(Private::PathHash(p_name));
  for (auto entry = range.first; entry != range.second; ++entry)
    if (entry->second.first == p_name) // two names may share a hash
      values.push_back(entry->second.second);
  return values;
}

float HdrImage::Luminance(const Rgb32F& p_pixel) const {
  return (0.265f * p_pixel.red + 0.67f * p_pixel.green + 0.065f * p_pixel.blue) * 179.0f;
}

void HdrImage::SaveAsPFM(const vekfile::filepath& p_path) const {
  std::cout << "Writing to: " << p_path.str() << std::endl;
  std::ofstream file(p_path.str(), std::ios::binary);
  SaveAsPFM(file);
  file.close();
  if (!file)
    vekdebug::warn("HdrImage::SaveAsPFM: cannot write " + p_path.str());
}

void HdrImage::SaveAsPFM(std::ostream& p_stream) const {
  p_stream << "PF\n" << std::to_string(_state->width) << ' ' << std::to_string(_state->height) << "\n-1.0\n";
  std::vector<unsigned char> row;
  const std::size_t width = static_cast<std::size_t>(_state->width);
  for (std::size_t start = 0; start < _state->pixels.size(); start += width) {
    row.clear();
    for (std::size_t x = 0; x < width; ++x) {
      const Rgb32F& pixel = _state->pixels[start + x];
      for (const float value : {pixel.red, pixel.green, pixel.blue}) {
        std::uint32_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        for (unsigned int shift = 0; shift < 32; shift += 8) // little endian on any machine
          row.push_back(static_cast<unsigned char>(bits >> shift));
      }
    }
    p_stream.write(reinterpret_cast<const char*>(row.data()), static_cast<std::streamsize>(row.size()));
  }
}

} // namespace Vek::Chart::Library
