#include "library/private/io/RgbeScanline.h"

#include "library/private/io/RgbeFloats.h"
#include "library/private/memory/HugePages.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Library::Private {

namespace {

#define VEK_ARGUMENTS                                                                                                  \
  "(class std::basic_istream<char,struct std::char_traits<char> > &,class std::vector<struct "                         \
  "Vek::Chart::Library::HdrImage::Rgbe8,class std::allocator<struct Vek::Chart::Library::HdrImage::Rgbe8> > &)"

namespace Signature {
constexpr const char* DecodeComponentRun =
    "void __cdecl Vek::Chart::Library::HdrImage::DecodeComponentRun" VEK_ARGUMENTS;
constexpr const char* DecodePixelRun = "void __cdecl Vek::Chart::Library::HdrImage::DecodePixelRun" VEK_ARGUMENTS;
} // namespace Signature

#undef VEK_ARGUMENTS

/// The most bytes that one code of a separated component yields.
constexpr std::size_t LongestCode = 128;
static_assert(LongestCode <= ByteSource::Slack, "literals are copied in pieces of that size");

bool IsPixelRunCode(const unsigned char* p_record) {
  return p_record[0] == 1 && p_record[1] == 1 && p_record[2] == 1;
}

bool IsComponentRunScanlineHeader(const unsigned char* p_record) {
  return p_record[0] == 2 && p_record[1] == 2 && p_record[2] * 256 + p_record[3] < 32768;
}

std::uint32_t Word(const unsigned char* p_record) {
  std::uint32_t word;
  std::memcpy(&word, p_record, sizeof word);
  return word;
}

/// The number of records before the first run code, at most p_count.
std::size_t CountPlain(const unsigned char* p_records, std::size_t p_count) {
  constexpr unsigned char MaskBytes[] = {255, 255, 255, 0};
  constexpr unsigned char CodeBytes[] = {1, 1, 1, 0};
  const std::uint32_t mask = Word(MaskBytes);
  const std::uint32_t code = Word(CodeBytes);
  constexpr std::size_t Block = 64; // a loop without exits, so that the compiler vectorises it
  std::size_t plain = 0;
  for (; p_count - plain >= Block; plain += Block) {
    unsigned int codes = 0;
    for (std::size_t i = plain; i < plain + Block; ++i)
      codes += (Word(p_records + 4 * i) & mask) == code ? 1 : 0;
    if (codes != 0)
      break;
  }
  while (plain < p_count && !IsPixelRunCode(p_records + 4 * plain))
    ++plain;
  return plain;
}

void FillPixels(float* p_pixels, std::size_t p_count, const float* p_pixel) {
  const float red = p_pixel[0];
  const float green = p_pixel[1];
  const float blue = p_pixel[2];
  for (float* at = p_pixels; at != p_pixels + 3 * p_count; at += 3) {
    at[0] = red;
    at[1] = green;
    at[2] = blue;
  }
}

/// All other widths are flat.
bool MayBeSeparated(std::size_t p_width) {
  return p_width >= 8 && p_width <= 32767;
}

} // namespace

RgbeScanline::RgbeScanline(std::size_t p_width, const vekdebug::detail& p_where)
    : _width(p_width)
    , _where(p_where)
    , _planes(MayBeSeparated(p_width) ? 4 * p_width + LongestCode : 0) {
  _where.index = 0;
}

/// Throws unless p_count values fit after the position.
void RgbeScanline::CheckRoom(std::size_t p_position, std::size_t p_count) const {
  if (p_count > _width - p_position)
    throw std::out_of_range("HdrImage: a run of " + std::to_string(p_count) + " at position " +
                            std::to_string(p_position) + " of a scanline of " + std::to_string(_width) + " (" +
                            vekdebug::detail_text(_where) + ")");
}

bool RgbeScanline::Decode(ByteSource& p_source, float* p_pixels) {
  const bool separated =
      MayBeSeparated(_width) && p_source.Prepare(4) >= 4 && IsComponentRunScanlineHeader(p_source.Data());
  const bool complete = separated ? DecodeComponentRun(p_source, p_pixels) : DecodePixelRun(p_source, p_pixels);
  VEK_ENSURE_AT(complete, "!p_stream.eof()", Signature::DecodePixelRun, _where);
  ++*_where.index;
  return complete;
}

bool RgbeScanline::DecodeComponentRun(ByteSource& p_source, float* p_pixels) {
  const std::size_t scanlineWidth = p_source.Data()[2] * std::size_t{256} + p_source.Data()[3];
  p_source.Take(4);
  VEK_ENSURE_AT(scanlineWidth == _width, "scanlineWidth == p_scanline.size()", Signature::DecodeComponentRun, _where);

  unsigned char* const planes = _planes.data();
  unsigned char* const exponents = planes + 3 * _width;
  std::size_t component = 0;
  while (component < 4 && DecodeComponent(p_source, planes + component * _width))
    ++component;
  if (component < 3)
    std::fill_n(exponents, _width, static_cast<unsigned char>(0)); // without exponents: 0
  ConvertPlanes({planes, planes + _width, planes + 2 * _width, exponents}, _width, p_pixels);
  return component == 4;
}

/// Copies and fills LongestCode bytes whatever the count is, since a fixed size takes few instructions. The bytes that
/// follow overwrite the excess: components are decoded from front to back, and the last one has room for a code.
bool RgbeScanline::DecodeComponent(ByteSource& p_source, unsigned char* p_component) {
  std::size_t position = 0;
  const unsigned char* at = p_source.Data();
  const unsigned char* last = at + p_source.Prepare(0);
  while (position < _width) {
    if (static_cast<std::size_t>(last - at) <= LongestCode) { // the next code may cross the window's end
      p_source.Take(static_cast<std::size_t>(at - p_source.Data()));
      const std::size_t available = p_source.Prepare(LongestCode + 1);
      at = p_source.Data();
      last = at + available;
      if (available == 0)
        break;
    }
    const std::size_t code = *at++;
    const bool run = code > 128;
    const std::size_t count = run ? code - 128 : code;
    CheckRoom(position, count);
    const std::size_t available = static_cast<std::size_t>(last - at);
    if (available < (run ? 1 : count)) {
      const std::size_t part = run ? 0 : available;
      std::copy_n(at, part, p_component + position);
      position += part;
      at += part;
      break;
    }
    if (run)
      std::memset(p_component + position, *at, LongestCode);
    else
      std::memcpy(p_component + position, at, LongestCode);
    at += run ? 1 : count;
    position += count;
  }
  p_source.Take(static_cast<std::size_t>(at - p_source.Data()));
  std::fill(p_component + position, p_component + _width, static_cast<unsigned char>(0));
  return position == _width;
}

/// Takes a run code and the codes after it, the higher bytes of its count, across the ends of scanlines.
std::size_t RgbeScanline::TakeRunCount(ByteSource& p_source) const {
  std::uint32_t count = p_source.Data()[3];
  p_source.Take(4);
  for (unsigned int shift = 8; p_source.Prepare(4) >= 4 && IsPixelRunCode(p_source.Data()); shift += 8) {
    if (VEK_ENSURE_AT(shift <= 24, "shift <= 24", Signature::DecodePixelRun, _where))
      count |= static_cast<std::uint32_t>(p_source.Data()[3]) << shift;
    p_source.Take(4);
  }
  return count;
}

bool RgbeScanline::DecodePixelRun(ByteSource& p_source, float* p_pixels) {
  static constexpr float Black[3] = {0, 0, 0};
  const float* previous = nullptr; // the last pixel that is no repetition
  for (std::size_t position = 0; position < _width;) {
    const std::size_t available = p_source.Prepare(4) / 4;
    if (available == 0) {
      ClearMemory(p_pixels + 3 * position, 3 * (_width - position) * sizeof(float));
      return false;
    }
    if (const std::size_t plain = CountPlain(p_source.Data(), std::min(available, _width - position)); plain != 0) {
      ConvertRecords(p_source.Data(), plain, p_pixels + 3 * position);
      p_source.Take(4 * plain);
      position += plain;
      previous = p_pixels + 3 * (position - 1);
      continue;
    }
    VEK_ENSURE_AT(previous != nullptr, "previous", Signature::DecodePixelRun, _where);
    const std::size_t count = TakeRunCount(p_source);
    CheckRoom(position, count);
    FillPixels(p_pixels + 3 * position, count, previous != nullptr ? previous : Black);
    position += count;
  }
  return true;
}

} // namespace Vek::Chart::Library::Private
