#include "io/private/ImageFormats.h"

#include "io/FileError.h"
#include "io/private/Words.h"
#include "library/HdrImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <sstream>
#include <utility>

namespace Vek::Chart::Io::Private {

namespace {

/// The lines in front of the pixels.
class Header {
public:
  Header(std::string_view p_file, const std::string& p_name);

  std::size_t scanlines = 0;
  std::size_t length = 0;  ///< of a scanline
  bool columns = false;    ///< scanlines are columns
  bool fromBottom = false; ///< the first row is the lowest one
  bool fromRight = false;  ///< the first column is the right one
  bool xyz = false;        ///< pixels are X, Y and Z
  double exposure = 1;     ///< that was applied, all in all
  std::array<double, 8> primaries{0.640, 0.330, 0.290, 0.600, 0.150, 0.060, 1 / 3.0, 1 / 3.0}; ///< Radiance's
  std::map<std::string, std::string> values;
  std::string_view pixels; ///< behind the header

private:
  std::string_view NextLine();
  void ReadValue(std::string_view p_line);
  void ReadResolution(std::string_view p_line);

  std::string_view _rest;
  const std::string& _name;
  std::size_t _line = 0;
};

Header::Header(std::string_view p_file, const std::string& p_name)
    : _rest(p_file)
    , _name(p_name) {
  const std::string_view first = NextLine();
  if (first.substr(0, 2) != "#?")
    throw FileError(p_name, 1, "#?RADIANCE", first);
  for (std::string_view line; !(line = NextLine()).empty();)
    ReadValue(line);
  ReadResolution(NextLine());
  pixels = _rest;
}

/// Without blanks at its end, and with those in front.
std::string_view Header::NextLine() {
  const std::size_t end = _rest.find('\n');
  if (end == std::string_view::npos)
    throw FileError(_name, "the file ends within its header of " + std::to_string(_line) + " lines");
  const std::string_view line = _rest.substr(0, end);
  _rest.remove_prefix(end + 1);
  ++_line;
  return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

void Header::ReadValue(std::string_view p_line) {
  const std::size_t sign = p_line.find('=');
  if (p_line.front() == '#' || sign == std::string_view::npos) // comments, and the commands that made the image
    return;
  const std::string name(p_line.substr(0, sign));
  const std::string_view value = p_line.substr(sign + 1);
  const std::vector<std::string> words = SplitWords(value);
  values[name] = value;
  if (name == "EXPOSURE") {
    const std::optional<double> factor = words.size() == 1 ? Parsed<double>(words.front()) : std::nullopt;
    if (!factor || !(*factor > 0) || !std::isfinite(*factor))
      throw FileError(_name, _line, "an exposure above 0", value);
    exposure *= *factor;
    values[name] = NumberText(exposure);
  } else if (name == "FORMAT") {
    xyz = words.size() == 1 && words.front() == "32-bit_rle_xyze";
    if (!xyz && !(words.size() == 1 && words.front() == "32-bit_rle_rgbe"))
      throw FileError(_name, _line, "the format 32-bit_rle_rgbe or 32-bit_rle_xyze", value);
  } else if (name == "PRIMARIES" && words.size() == primaries.size()) {
    std::array<double, 8> numbers{};
    bool valid = true;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      numbers[i] = Parsed<double>(words[i]).value_or(-1);
      valid = valid && numbers[i] >= 0 && numbers[i] <= 1 && (i % 2 == 0 || numbers[i] > 0);
    }
    primaries = valid ? numbers : primaries;
  }
}

/// "-Y 512 +X 1024": the signs are the directions in which rows and columns follow each other.
void Header::ReadResolution(std::string_view p_line) {
  const std::vector<std::string> words = SplitWords(p_line);
  const auto isAxis = [&](std::size_t p_index, char p_axis) {
    const std::string& word = words[p_index];
    return word.size() == 2 && (word[0] == '+' || word[0] == '-') && word[1] == p_axis;
  };
  const bool valid = words.size() == 4 && ((isAxis(0, 'Y') && isAxis(2, 'X')) || (isAxis(0, 'X') && isAxis(2, 'Y')));
  scanlines = valid ? Parsed<std::size_t>(words[1]).value_or(0) : 0;
  length = valid ? Parsed<std::size_t>(words[3]).value_or(0) : 0;
  if (scanlines == 0 || length == 0)
    throw FileError(_name, _line, "a resolution such as -Y 512 +X 1024", p_line);
  constexpr std::size_t Most = std::numeric_limits<std::int32_t>::max();
  if (length > Most / scanlines)
    throw FileError(_name, _line, "at most 2^31 - 1 pixels", p_line);
  columns = words[0][1] == 'X';
  const std::string& y = words[columns ? 2 : 0];
  const std::string& x = words[columns ? 0 : 2];
  fromBottom = y[0] == '+';
  fromRight = x[0] == '-';
}

/// Goes through encoded pixels without decoding them. Throws FileError where they end early or are damaged.
class Scanlines {
public:
  Scanlines(const Header& p_header, const std::string& p_name)
      : _bytes(p_header.pixels)
      , _length(p_header.length)
      , _name(p_name) {
    for (; _scanline < p_header.scanlines; ++_scanline)
      if (IsSeparated())
        SkipSeparated();
      else
        SkipFlat();
  }

private:
  [[noreturn]] void Fail(const std::string& p_reason) const {
    throw FileError(_name, "scanline " + std::to_string(_scanline + 1) + ": " + p_reason);
  }
  unsigned char At(std::size_t p_offset) const { return static_cast<unsigned char>(_bytes[_at + p_offset]); }
  void Need(std::size_t p_count) const {
    if (_bytes.size() - _at < p_count)
      Fail("the file ends early");
  }
  bool IsSeparated() const {
    return _length >= 8 && _length <= 32767 && _bytes.size() - _at >= 4 && At(0) == 2 && At(1) == 2 && At(2) < 128;
  }
  bool IsRun() const { return _bytes.size() - _at >= 4 && At(0) == 1 && At(1) == 1 && At(2) == 1; }

  void SkipSeparated() {
    if (At(2) * std::size_t{256} + At(3) != _length)
      Fail("expected " + std::to_string(_length) + " pixels, got " + std::to_string(At(2) * 256 + At(3)));
    _at += 4;
    for (int component = 0; component < 4; ++component)
      for (std::size_t position = 0; position < _length;) {
        Need(1);
        const std::size_t code = At(0);
        const std::size_t count = code > 128 ? code - 128 : code;
        if (count == 0 || count > _length - position)
          Fail("a run of " + std::to_string(count) + " at position " + std::to_string(position));
        Need(code > 128 ? 2 : 1 + count);
        _at += code > 128 ? 2 : 1 + count;
        position += count;
      }
  }
  void SkipFlat() {
    for (std::size_t position = 0; position < _length;) {
      Need(4);
      std::uint64_t count = 1;
      if (IsRun()) {
        count = 0;
        for (unsigned int shift = 0; IsRun(); shift += 8, _at += 4) {
          if (shift > 24)
            Fail("a run of more than 2^32 pixels");
          count |= std::uint64_t{At(3)} << shift;
        }
      } else {
        _at += 4;
      }
      const bool first = position == 0 && (count != 1 || _bytes.substr(_at - 4, 3) == "\x01\x01\x01");
      if (first || count > _length - position)
        Fail("a run of " + std::to_string(count) + " at position " + std::to_string(position));
      position += std::size_t(count);
    }
  }

  std::string_view _bytes;
  const std::size_t _length;
  const std::string& _name;
  std::size_t _scanline = 0;
  std::size_t _at = 0;
};

using Matrix = std::array<std::array<double, 3>, 3>;

Matrix Inverse(const Matrix& p_m) {
  Matrix inverse{};
  double determinant = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t i1 = (i + 1) % 3, i2 = (i + 2) % 3;
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t j1 = (j + 1) % 3, j2 = (j + 2) % 3;
      inverse[j][i] = p_m[i1][j1] * p_m[i2][j2] - p_m[i1][j2] * p_m[i2][j1];
    }
    determinant += p_m[0][i] * inverse[i][0];
  }
  for (auto& row : inverse)
    for (double& number : row)
      number /= determinant;
  return inverse;
}

/// From X, Y and Z to red, green and blue with these chromaticities, whose sum is the white of Y = 1.
Matrix ToRgb(const std::array<double, 8>& p_primaries) {
  const auto xyz = [&](std::size_t p_i) {
    const double x = p_primaries[2 * p_i], y = p_primaries[2 * p_i + 1];
    return std::array<double, 3>{x / y, 1, (1 - x - y) / y};
  };
  Matrix colors{};
  for (std::size_t column = 0; column < 3; ++column)
    for (std::size_t row = 0; row < 3; ++row)
      colors[row][column] = xyz(column)[row];
  const Matrix inverse = Inverse(colors);
  const std::array<double, 3> white = xyz(3);
  for (std::size_t column = 0; column < 3; ++column) {
    const auto& row = inverse[column];
    const double luminance = row[0] * white[0] + row[1] * white[1] + row[2] * white[2];
    for (std::size_t i = 0; i < 3; ++i)
      colors[i][column] *= luminance;
  }
  return Inverse(colors);
}

void ConvertToRgb(const Matrix& p_matrix, std::vector<float>& p_pixels) {
  for (std::size_t i = 0; i + 2 < p_pixels.size(); i += 3) {
    const double x = p_pixels[i], y = p_pixels[i + 1], z = p_pixels[i + 2];
    for (std::size_t row = 0; row < 3; ++row)
      p_pixels[i + row] = static_cast<float>(p_matrix[row][0] * x + p_matrix[row][1] * y + p_matrix[row][2] * z);
  }
}

/// Scanline by scanline, the last one first, to rows from the bottom.
std::vector<float> Oriented(const Header& p_header, const std::vector<float>& p_pixels) {
  const std::size_t width = p_header.columns ? p_header.scanlines : p_header.length;
  const std::size_t height = p_header.columns ? p_header.length : p_header.scanlines;
  std::vector<float> pixels(p_pixels.size());
  for (std::size_t y = 0; y < height; ++y)
    for (std::size_t x = 0; x < width; ++x) {
      const std::size_t row = p_header.fromBottom ? y : height - 1 - y; // in file order
      const std::size_t column = p_header.fromRight ? width - 1 - x : x;
      const std::size_t scanline = p_header.columns ? column : row;
      const std::size_t along = p_header.columns ? row : column;
      const float* const from = &p_pixels[3 * ((p_header.scanlines - 1 - scanline) * p_header.length + along)];
      std::copy_n(from, 3, &pixels[3 * (y * width + x)]);
    }
  return pixels;
}

} // namespace

Image ReadRadiance(std::string_view p_file, const std::string& p_name, const ImageOptions& p_options) {
  const Header header(p_file, p_name);
  const Scanlines complete(header, p_name);
  // A header without peculiarities, about which HdrImage would report.
  std::istringstream plain("#?RADIANCE\n\n-Y " + std::to_string(header.scanlines) + " +X " +
                           std::to_string(header.length) + "\n" + std::string(header.pixels));
  Image image;
  try {
    const Library::HdrImage decoded(plain);
    image.pixels.reserve(3 * decoded.Pixels().size());
    for (const Library::HdrImage::Rgb32F& pixel : decoded.Pixels())
      image.pixels.insert(image.pixels.end(), {pixel.red, pixel.green, pixel.blue});
  } catch (const std::exception& error) {
    throw FileError(p_name, error.what());
  }
  const bool turned = header.columns && p_options.applyOrientation;
  image.width = turned ? header.scanlines : header.length;
  image.height = turned ? header.length : header.scanlines;
  image.channels = 3;
  image.values = header.values;
  if (p_options.applyOrientation && (header.columns || header.fromBottom || header.fromRight))
    image.pixels = Oriented(header, image.pixels);
  if (p_options.applyExposure && header.exposure != 1)
    for (float& number : image.pixels)
      number = static_cast<float>(number / header.exposure);
  const bool converted = header.xyz && p_options.convertXyz;
  if (converted)
    ConvertToRgb(ToRgb(header.primaries), image.pixels);
  if (header.xyz && !converted)
    image.channelNames = {"X", "Y", "Z"};
  else
    image.channelNames = {"R", "G", "B"};
  return image;
}

} // namespace Vek::Chart::Io::Private
