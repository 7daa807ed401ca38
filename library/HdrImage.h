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

/// A picture with a high dynamic range, read from a Radiance file (RGBE, "#?RADIANCE").
///
/// Pixels are linear RGB in single precision, width × height of them, row by row from the bottom: the pixel at column
/// x, row y has the offset y × width + x, and row 0 is the last scanline of the file.
///
/// Read are flat scanlines, the run codes of old files (1, 1, 1, n) and scanlines of separated, run-length encoded
/// components. A value is mantissa / 256 × 2^(exponent − 128); an exponent byte of 0 gives exactly 0. No half unit is
/// added to the mantissa and no EXPOSURE is applied (readers differ there); header lines are kept and can be asked for.
/// Orientations other than "-Y … +X …" are reported, and their scanlines are kept in file order. Format: G. Ward, "Real
/// Pixels", Graphics Gems II, 1991, and the Radiance reference manual, "File Formats".
///
/// Errors. What is wrong with the file is reported through the logger, and reading goes on: a wrong signature
/// ("header.size() == 10", "header == "#?RADIANCE""), a header line without one '=' ("param.size() == 2", and for none
/// "line.find_first_of('=') != std::string::npos"), a wrong orientation ("(axisY == "-Y") && (axisX == "+X")"), a run
/// without a pixel to repeat ("previous"; a zero pixel is repeated), a separated scanline of another width
/// ("scanlineWidth == p_scanline.size()"), a file that ends too early ("!p_stream.eof()"; the rest is 0). A resolution
/// line that cannot be read gives 0 × 0.
/// Data that would run over the end of a scanline throw
/// std::out_of_range, and that scanline and those behind it are 0. A resolution that is negative or of more than 2^31 −
/// 1 pixels throws std::length_error, and so does one of more than 2^26 pixels for which the file is too short: there
/// must be four bytes for each scanline, and one for every 64 pixels, which no known writer undercuts.
///
/// Memory: the pixels, and a window of 1 MiB. Where the system gives out memory page by page, a file that claims more
/// pixels than it has takes no pages for those that are missing.
///
/// Copies share their pixels. No GPU state, no threads of its own.
///
/// \snippet ImageSnippets.cpp HdrImage
/// \image html hdr.jpg
/// \ingroup images
class VEK_LIBRARY_API HdrImage {
  struct Unset {};

public:
  /// A pixel as the file has it: the mantissas of red, green and blue, and the exponent that they share.
  struct VEK_LIBRARY_API Rgbe8 {
    boost::array<unsigned char, 4> bytes{{0, 0, 0, 0}}; ///< red, green, blue, exponent

    /// Component 0 to 3. Any other index is reported; what is written there is lost.
    unsigned char& operator[](std::size_t p_index);
    /// As above, for reading; any other index than 0 to 3 reads as 0.
    const unsigned char& operator[](std::size_t p_index) const;
  };

  /// A pixel as it is handed out: linear, in the file's unit.
  struct Rgb32F {
    /// From its components.
    constexpr Rgb32F(float p_red, float p_green, float p_blue)
        : red(p_red)
        , green(p_green)
        , blue(p_blue) {}
    /// Black.
    constexpr Rgb32F()
        : Rgb32F(0, 0, 0) {}
    /// For HdrImage only, which sets its pixels while it decodes: leaves the memory as it is.
    explicit Rgb32F(const Unset&) {}

    float red;   ///< 0 and more, as are the others
    float green; ///< of the same unit
    float blue;  ///< of the same unit
  };

  /// Reads a file from its first byte on. The stream must be binary; it is left behind the last byte of the picture
  /// where it can seek.
  explicit HdrImage(std::istream& p_stream);
  /// Reads the file; one that cannot be opened is read as empty, which is reported as a wrong signature.
  explicit HdrImage(const vekfile::filepath& p_path);

  /// Reads another file into this image and all its copies.
  void Load(std::istream& p_stream);

  /// Pixels a row.
  int Width() const;
  /// Rows.
  int Height() const;
  /// The pixel at the offset y × width + x; rows are counted from the bottom. An offset outside the picture is reported
  /// ("offset < _state->pixels.size()"); it reads as 0, and what is written there is lost.
  const Rgb32F& Pixel(int p_x, int p_y) const;
  /// As above, for writing.
  Rgb32F& Pixel(int p_x, int p_y);
  /// All pixels, Width() × Height(), from the lower left one on.
  const std::vector<Rgb32F>& Pixels() const;

  /// The values of all header lines "name=value" with that name, in the order of the file.
  std::vector<std::string> HeaderValues(const std::string& p_name) const;

  /// The luminance in candela per square metre of a pixel in W/(sr·m²): (0.265 red + 0.67 green + 0.065 blue) × 179, in
  /// single precision.
  float Luminance(const Rgb32F& p_pixel) const;

  /// Writes a portable float map (PF, little endian, scale 1, the bottom row first) and says so on standard output. A
  /// file that cannot be written gives a warning.
  void SaveAsPFM(const vekfile::filepath& p_path) const;
  /// As above, to a binary stream; says nothing on standard output.
  void SaveAsPFM(std::ostream& p_stream) const;

private:
  struct State;
  boost::shared_ptr<State> _state;
};

} // namespace Vek::Chart::Library
