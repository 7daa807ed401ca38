#include "library/private/RgbeScanline.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

namespace Vek::Chart::Library::Private {

namespace {

#define VEK_STREAM "class std::basic_istream<char,struct std::char_traits<char> > &"
#define VEK_SCANLINE                                                                                                   \
  "class std::vector<struct Vek::Chart::Library::HdrImage::Rgbe8,class std::allocator<struct "                         \
  "Vek::Chart::Library::HdrImage::Rgbe8> > &"

const char* const ComponentRunSignature =
    "void __cdecl Vek::Chart::Library::HdrImage::DecodeComponentRun(" VEK_STREAM "," VEK_SCANLINE ")";
const char* const PixelRunSignature =
    "void __cdecl Vek::Chart::Library::HdrImage::DecodePixelRun(" VEK_STREAM "," VEK_SCANLINE ")";

/// By exponent byte: what a mantissa is multiplied with, 2^e / 256 with e = byte − 128. The power is built by repeated
/// squaring of 2 in single precision and inverted for negative e, so that e = −128 gives 1 / infinity, which is 0. All
/// other products with a mantissa are exact.
std::array<float, 256> MakeFactors() {
  std::array<float, 256> factors{};
  for (int exponent = 0; exponent < 256; ++exponent) {
    const int e = exponent - 128;
    float power = 1.0f;
    float square = 2.0f;
    for (int rest = e < 0 ? -e : e; rest != 0; rest /= 2, square *= square)
      if (rest % 2 != 0)
        power *= square;
    factors[static_cast<std::size_t>(exponent)] = 0.00390625f * (e < 0 ? 1.0f / power : power);
  }
  return factors;
}

const std::array<float, 256>& Factors() {
  static const std::array<float, 256> factors = MakeFactors();
  return factors;
}

bool IsPixelRunCode(const unsigned char* p_record) {
  return p_record[0] == 1 && p_record[1] == 1 && p_record[2] == 1;
}

bool IsComponentRunScanlineHeader(const unsigned char* p_record) {
  return p_record[0] == 2 && p_record[1] == 2 && p_record[2] * 256 + p_record[3] < 32768;
}

HdrImage::Rgb32F ToFloats(const unsigned char* p_record, const std::array<float, 256>& p_factors) {
  const float factor = p_factors[p_record[3]];
  return {static_cast<float>(p_record[0]) * factor, static_cast<float>(p_record[1]) * factor,
          static_cast<float>(p_record[2]) * factor};
}

/// All other widths are flat.
bool MayBeSeparated(std::size_t p_width) {
  return p_width >= 8 && p_width <= 32767;
}

} // namespace

RgbeScanline::RgbeScanline(std::size_t p_width)
    : _width(p_width)
    , _planes(MayBeSeparated(p_width) ? 4 * p_width : 0) {}

/// Throws unless so many values fit behind the position.
void RgbeScanline::CheckRoom(std::size_t p_position, std::size_t p_count) const {
  if (p_count > _width - p_position)
    throw std::out_of_range("HdrImage: a run of " + std::to_string(p_count) + " at position " +
                            std::to_string(p_position) + " of a scanline of " + std::to_string(_width));
}

bool RgbeScanline::Decode(ByteSource& p_source, HdrImage::Rgb32F* p_pixels) {
  const bool separated =
      MayBeSeparated(_width) && p_source.Prepare(4) >= 4 && IsComponentRunScanlineHeader(p_source.Data());
  const bool complete = separated ? DecodeComponentRun(p_source, p_pixels) : DecodePixelRun(p_source, p_pixels);
  return VEK_ENSURE_TEXT(complete, "!p_stream.eof()", PixelRunSignature);
}

bool RgbeScanline::DecodeComponentRun(ByteSource& p_source, HdrImage::Rgb32F* p_pixels) {
  const std::size_t scanlineWidth = p_source.Data()[2] * std::size_t{256} + p_source.Data()[3];
  p_source.Take(4);
  VEK_ENSURE_TEXT(scanlineWidth == _width, "scanlineWidth == p_scanline.size()", ComponentRunSignature);

  unsigned char* const red = _planes.data();
  unsigned char* const green = red + _width;
  unsigned char* const blue = green + _width;
  unsigned char* const exponent = blue + _width;
  std::fill_n(exponent, _width, static_cast<unsigned char>(0)); // pixels whose exponent is missing are 0
  const bool complete = DecodeComponent(p_source, red) && DecodeComponent(p_source, green) &&
                        DecodeComponent(p_source, blue) && DecodeComponent(p_source, exponent);
  const std::array<float, 256>& factors = Factors();
  for (std::size_t x = 0; x < _width; ++x) {
    const float factor = factors[exponent[x]];
    p_pixels[x] = {static_cast<float>(red[x]) * factor, static_cast<float>(green[x]) * factor,
                   static_cast<float>(blue[x]) * factor};
  }
  return complete;
}

bool RgbeScanline::DecodeComponent(ByteSource& p_source, unsigned char* p_component) {
  for (std::size_t position = 0; position < _width;) {
    const int code = p_source.GetByte();
    const std::size_t count = code < 0 ? 0 : static_cast<std::size_t>(code <= 128 ? code : code - 128);
    CheckRoom(position, count);
    std::size_t got = 0;
    if (code <= 128) { // a literal of that many bytes
      got = p_source.Read(p_component + position, count);
    } else if (const int value = p_source.GetByte(); value >= 0) {
      std::memset(p_component + position, value, count);
      got = count;
    }
    position += got;
    if (code < 0 || got < count) {
      std::fill(p_component + position, p_component + _width, static_cast<unsigned char>(0));
      return false;
    }
  }
  return true;
}

bool RgbeScanline::DecodePixelRun(ByteSource& p_source, HdrImage::Rgb32F* p_pixels) {
  const std::array<float, 256>& factors = Factors();
  HdrImage::Rgb32F pixel; // the previous one; kept after a run, though no longer to be repeated
  bool previous = false;
  for (std::size_t position = 0; position < _width;) {
    const std::size_t available = p_source.Prepare(4) / 4;
    if (available == 0)
      return false;
    const unsigned char* record = p_source.Data();
    if (!IsPixelRunCode(record)) {
      const unsigned char* const end = record + 4 * std::min(available, _width - position);
      for (; record != end && !IsPixelRunCode(record); record += 4)
        p_pixels[position++] = ToFloats(record, factors);
      pixel = p_pixels[position - 1];
      previous = true;
      p_source.Take(static_cast<std::size_t>(record - p_source.Data()));
      continue;
    }
    VEK_ENSURE(previous, PixelRunSignature);
    std::uint32_t count = record[3];
    p_source.Take(4);
    // Further codes are the higher bytes of the count, even where they stand in front of the next scanline.
    for (unsigned int shift = 8; p_source.Prepare(4) >= 4 && IsPixelRunCode(p_source.Data()); shift += 8) {
      if (VEK_ENSURE(shift <= 24, PixelRunSignature))
        count |= static_cast<std::uint32_t>(p_source.Data()[3]) << shift;
      p_source.Take(4);
    }
    if (count > _width - position)
      std::fill_n(p_pixels, position, HdrImage::Rgb32F()); // a scanline that throws leaves nothing
    CheckRoom(position, count);
    std::fill_n(p_pixels + position, count, pixel);
    position += count;
    previous = false;
  }
  return true;
}

} // namespace Vek::Chart::Library::Private
