#include "library/HdrImage.h"

#include "library/private/io/ByteSource.h"
#include "library/private/io/PathHash.h"
#include "library/private/io/RgbeScanline.h"
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
#include <utility>

namespace Vek::Chart::Library {

namespace {

const char* const LoadSignature =
    "void __cdecl Vek::Chart::Library::HdrImage::Load(class std::basic_istream<char,struct "
    "std::char_traits<char> > &)";

using Command = std::pair<std::string, std::string>;

/// Splits a header line at its '='. A line without one is a name without a value; what follows a second one stays in
/// the value.
Command ParseCommand(const std::string& p_line) {
  const std::size_t sign = p_line.find('=');
  const bool oneSign = sign != std::string::npos && p_line.find('=', sign + 1) == std::string::npos;
  VEK_ENSURE_TEXT(oneSign, "param.size() == 2",
                  "struct std::pair<class std::basic_string<char,struct std::char_traits<char>,class "
                  "std::allocator<char> >,class std::basic_string<char,struct std::char_traits<char>,class "
                  "std::allocator<char> > > __cdecl Vek::Chart::Library::HdrImage::ParseCommand(const class "
                  "std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> > &)");
  if (sign == std::string::npos)
    return {p_line, ""};
  return {p_line.substr(0, sign), p_line.substr(sign + 1)};
}

/// "-Y 512 +X 1024"; no size when it cannot be read.
struct Resolution {
  explicit Resolution(const std::string& p_line) {
    std::istringstream line(p_line);
    line.imbue(std::locale::classic());
    if (!(line >> axisY >> height >> axisX >> width))
      width = height = 0;
  }
  std::string axisY;
  std::string axisX;
  int width = 0;
  int height = 0;
};

/// How many pixels a resolution has. A claim of more than 2^26 is believed only where the data can make it good: a
/// scanline takes four bytes at least, and a run of the old kind repeats up to 255 pixels in four bytes. Such runs can
/// be chained to count on, up to gigabytes out of a few bytes, but not for pictures of that size.
std::size_t CountPixels(const Resolution& p_resolution, Private::ByteSource& p_source) {
  const std::int64_t width = p_resolution.width;
  const std::int64_t height = p_resolution.height;
  const std::string size = std::to_string(width) + " x " + std::to_string(height);
  if (width < 0 || height < 0 || width * height > std::numeric_limits<int>::max())
    throw std::length_error("HdrImage: a size of " + size + " pixels");
  const std::uint64_t leastBytes = static_cast<std::uint64_t>(std::max(4 * height, width * height / 64));
  if (width * height > std::int64_t{1} << 26 && p_source.Remaining(leastBytes) < leastBytes)
    throw std::length_error("HdrImage: a size of " + size + " pixels, which the file is too short for");
  return static_cast<std::size_t>(width * height);
}

} // namespace

struct HdrImage::State {
  int width = 0;
  int height = 0;
  std::vector<Rgb32F> pixels;
  std::multimap<std::int32_t, Command> commands; ///< by the hash of the name
  Rgb32F nowhere;                                ///< what a place outside the picture answers

  void Decode(Private::ByteSource& p_source);
};

/// Sets all pixels: to 0 where the data end before, or where decoding throws.
void HdrImage::State::Decode(Private::ByteSource& p_source) {
  struct Missing {
    Rgb32F* first;
    std::size_t count;
    ~Missing() { Private::ClearMemory(first, count * sizeof(Rgb32F)); }
  } missing{pixels.data(), pixels.size()};

  Private::RgbeScanline scanline(static_cast<std::size_t>(width));
  for (bool complete = true; complete && missing.count != 0;) {
    const std::size_t start = missing.count - static_cast<std::size_t>(width);
    complete = scanline.Decode(p_source, missing.first + start);
    missing.count = start;
  }
}

unsigned char& HdrImage::Rgbe8::operator[](std::size_t p_index) {
  thread_local unsigned char nowhere;
  if (VEK_CHECK_RANGE(p_index, bytes.size(), "0 <= p_index < bytes.size()",
                      "unsigned char &__cdecl Vek::Chart::Library::HdrImage::Rgbe8::operator [](unsigned __int64)"))
    return bytes[p_index];
  return nowhere = 0;
}

const unsigned char& HdrImage::Rgbe8::operator[](std::size_t p_index) const {
  static const unsigned char Nowhere = 0;
  if (VEK_CHECK_RANGE(p_index, bytes.size(), "0 <= p_index < bytes.size()",
                      "const unsigned char &__cdecl Vek::Chart::Library::HdrImage::Rgbe8::operator [](unsigned "
                      "__int64) const"))
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
  Load(file);
}

void HdrImage::Load(std::istream& p_stream) {
  Private::ByteSource source(p_stream);
  std::string header;
  source.GetLine(header);
  VEK_ENSURE(header.size() == 10, LoadSignature);
  VEK_ENSURE(header == "#?RADIANCE", LoadSignature);

  _state->commands.clear();
  for (std::string line; source.GetLine(line);) {
    boost::trim(line, std::locale::classic());
    if (line.empty())
      break;
    if (line.front() == '#')
      continue;
    VEK_ENSURE(line.find_first_of('=') != std::string::npos, LoadSignature);
    const Command command = ParseCommand(line);
    _state->commands.emplace(Private::PathHash(command.first), command);
  }

  std::string line;
  source.GetLine(line);
  const Resolution resolution(line);
  const std::size_t count = CountPixels(resolution, source);
  _state->width = resolution.width;
  _state->height = resolution.height;
  if (_state->pixels.size() != count) {
    std::vector<Rgb32F>().swap(_state->pixels); // before the new ones are taken
    _state->pixels = Private::UnsetVector<Rgb32F, Unset>(count);
  }
  _state->Decode(source);
  const std::string& axisY = resolution.axisY;
  const std::string& axisX = resolution.axisX;
  VEK_ENSURE((axisY == "-Y") && (axisX == "+X"), LoadSignature);
}

int HdrImage::Width() const {
  return _state->width;
}

int HdrImage::Height() const {
  return _state->height;
}

HdrImage::Rgb32F& HdrImage::Pixel(int p_x, int p_y) {
  const std::size_t offset = static_cast<std::size_t>(std::int64_t{p_y} * _state->width + p_x);
  if (VEK_ENSURE(offset < _state->pixels.size(), "struct Vek::Chart::Library::HdrImage::Rgb32F &__cdecl "
                                                 "Vek::Chart::Library::HdrImage::Pixel(const int,const int)"))
    return _state->pixels[offset];
  return _state->nowhere = Rgb32F();
}

const HdrImage::Rgb32F& HdrImage::Pixel(int p_x, int p_y) const {
  static const Rgb32F Nowhere;
  const std::size_t offset = static_cast<std::size_t>(std::int64_t{p_y} * _state->width + p_x);
  if (VEK_ENSURE(offset < _state->pixels.size(), "const struct Vek::Chart::Library::HdrImage::Rgb32F &__cdecl "
                                                 "Vek::Chart::Library::HdrImage::Pixel(const int,const int) const"))
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
        for (unsigned int shift = 0; shift < 32; shift += 8) // little endian, whatever the machine is
          row.push_back(static_cast<unsigned char>(bits >> shift));
      }
    }
    p_stream.write(reinterpret_cast<const char*>(row.data()), static_cast<std::streamsize>(row.size()));
  }
}

} // namespace Vek::Chart::Library
