#pragma once

#include "library/Export.h"
#include "platform/file/FilePath.h"

#include <boost/array.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <ostream>
#include <string>
#include <vector>

namespace Vek::Chart::Library {

/// A high dynamic range image, read from a Radiance file (RGBE, "#?RADIANCE").
///
/// Pixels are linear RGB in single precision, width × height of them, row by row from the bottom: the pixel at column
/// x, row y has the offset y × width + x, and row 0 is the last scanline of the file.
///
/// Reads flat scanlines, the run codes of old files (1, 1, 1, n), and scanlines of separated, run-length encoded
/// components. A value is mantissa / 256 × 2^(exponent − 128); an exponent byte of 0 gives exactly 0. No half unit is
/// added to the mantissa and EXPOSURE is not applied (readers differ there); HeaderValues returns the header lines.
/// Orientations other than "-Y … +X …" are reported, and their scanlines are kept in file order. Format: G. Ward, "Real
/// Pixels", Graphics Gems II, 1991, and the Radiance reference manual, "File Formats".
///
/// Errors. These are reported with the file, and its line or scanline, and reading continues:
/// - a wrong signature: "header.size() == 10", "header == "#?RADIANCE""
/// - a header line without '=': "line.find_first_of('=') != std::string::npos"; without exactly one: "param.size() ==
/// 2"
/// - another orientation: "(axisY == "-Y") && (axisX == "+X")"
/// - a run without a pixel to repeat: "previous"; a zero pixel is repeated
/// - a run count of more than 32 bits: "shift <= 24"
/// - a separated scanline of another width: "scanlineWidth == p_scanline.size()"
/// - a file that ends too early: "!p_stream.eof()"; the remaining pixels are 0
///
/// A header that does not end within 1 MiB gives a warning and an image of 0 × 0; an unreadable resolution line gives
/// 0 × 0.
///
/// Exceptions. Data beyond the end of a scanline throw std::out_of_range; this scanline and all after it are 0. A size
/// that is negative or exceeds 2^31 − 1 pixels throws std::length_error, and so does a size of more than 2^26 pixels
/// when the file is too short for it: it needs four bytes a scanline and one byte for 64 pixels, and no known encoder
/// compresses further. The image is empty then, as after std::bad_alloc.
///
/// Memory: the pixels, and a window of 1 MiB. Pixels that are missing in the file take no pages where the system
/// allocates memory page by page.
///
/// Copies share their pixels. No GPU state, no threads of its own.
///
/// \snippet ImageSnippets.cpp HdrImage
/// \image html hdr.jpg
/// \ingroup images
class VEK_LIBRARY_API HdrImage {
  struct Unset {};

public:
  /// A pixel of the file: the mantissas of red, green and blue, and their shared exponent.
  struct VEK_LIBRARY_API Rgbe8 {
    boost::array<unsigned char, 4> bytes{{0, 0, 0, 0}}; ///< red, green, blue, exponent

    /// Component 0 to 3. Other indices are reported ("0 <= p_index < bytes.size()") and refer to a scratch byte.
    unsigned char& operator[](std::size_t p_index);
    /// As above, for reading; other indices read as 0.
    const unsigned char& operator[](std::size_t p_index) const;
  };

  /// A decoded pixel: linear, in the unit of the file.
  struct Rgb32F {
    /// The pixel with these components.
    constexpr Rgb32F(float p_red, float p_green, float p_blue)
        : red(p_red)
        , green(p_green)
        , blue(p_blue) {}
    /// Black.
    constexpr Rgb32F()
        : Rgb32F(0, 0, 0) {}
    /// For HdrImage only: leaves the components uninitialised.
    explicit Rgb32F(const Unset&) {}

    float red;   ///< 0 or more
    float green; ///< 0 or more
    float blue;  ///< 0 or more
  };

  /// Reads an image from a binary stream. A seekable stream is left after the last byte of the image.
  explicit HdrImage(std::istream& p_stream);
  /// Reads a file. A file that cannot be opened is read as an empty one, which is reported as a wrong signature.
  explicit HdrImage(const vekfile::filepath& p_path);

  /// Replaces the image, and all its copies, by another one from a binary stream.
  void Load(std::istream& p_stream);

  /// Pixels per row.
  int Width() const;
  /// Rows.
  int Height() const;
  /// The pixel at the offset y × width + x; rows count from the bottom. An offset outside the image is reported
  /// ("offset < _state->pixels.size()") and reads as 0.
  const Rgb32F& Pixel(int p_x, int p_y) const;
  /// As above, for writing; outside the image it refers to a scratch pixel.
  Rgb32F& Pixel(int p_x, int p_y);
  /// All pixels, Width() × Height(), starting at the lower left one.
  const std::vector<Rgb32F>& Pixels() const;

  /// The values of all header lines "name=value" with this name, in file order.
  std::vector<std::string> HeaderValues(const std::string& p_name) const;

  /// The luminance in candela per square metre of a pixel in W/(sr·m²): (0.265 red + 0.67 green + 0.065 blue) × 179, in
  /// single precision.
  float Luminance(const Rgb32F& p_pixel) const;

  /// Writes a portable float map (PF, little endian, scale 1, bottom row first) and prints "Writing to: " and the path
  /// to standard output. A file that cannot be written gives a warning.
  void SaveAsPFM(const vekfile::filepath& p_path) const;
  /// As above, to a binary stream; prints nothing.
  void SaveAsPFM(std::ostream& p_stream) const;

private:
  struct State;
  boost::shared_ptr<State> _state;
};

} // namespace Vek::Chart::Library
