#pragma once

#include "io/FileError.h"
#include "io/ReadVolume.h"
#include "tests/support/FileText.h"
#include "tests/support/Formats.h"
#include "tests/support/Test.h"

#include <cstdint>
#include <initializer_list>
#include <sstream>
#include <string>
#include <variant>

namespace Vek::Test {

using Io::Volume;

inline Volume Read(const std::string& p_bytes, const std::string& p_name = "v",
                   const Io::VolumeOptions& p_options = {}) {
  std::istringstream stream(p_bytes);
  return Io::ReadVolume(stream, p_name, p_options);
}

/// "TYPE SIZE xCHANNELS: VALUES / spacing / origin / directions where they are not x, y, z / units, space and name".
inline std::string Summary(const Volume& p_volume) {
  static const char* const Types[] = {"u8", "i8", "u16", "i16", "u32", "i32", "f", "d"};
  std::ostringstream out;
  out << Types[p_volume.ValueType()];
  for (const std::size_t size : p_volume.size)
    out << ' ' << size;
  if (p_volume.channels != 1)
    out << " x" << p_volume.channels;
  out << ':';
  std::visit(
      [&](const auto& p_values) {
        for (const auto value : p_values)
          out << ' ' << double(value);
      },
      p_volume.values);
  out << Rounded(" /", p_volume.spacing) << Rounded(" /", p_volume.origin);
  if (!p_volume.IsAxisAligned())
    for (const Volume::Vector& direction : p_volume.orientation)
      out << Rounded(" |", direction);
  for (const std::string& text : {p_volume.lengthUnit, p_volume.space, p_volume.unit, p_volume.name})
    out << (text.empty() ? "" : " " + text);
  return out.str();
}

inline std::string SummaryOrError(const std::string& p_bytes, const std::string& p_name = "v",
                                  const Io::VolumeOptions& p_options = {}) {
  try {
    return Summary(Read(p_bytes, p_name, p_options));
  } catch (const Io::FileError& error) {
    return error.what();
  }
}

/// What is left out where gzip is not read.
inline const char* const WithoutGzip = "compressed files are left out: this build is without zlib";
inline bool ReadsGzip() {
  return Reads("NRRD, compressed");
}

/// A NIfTI file of a version, with values behind the header.
struct Nifti {
  bool second = false;
  bool bigEndian = false;
  std::string bytes = std::string(544, '\0');

  Nifti(bool p_second, bool p_bigEndian, std::initializer_list<double> p_sizes, int p_type, int p_bits)
      : second(p_second)
      , bigEndian(p_bigEndian)
      , bytes(p_second ? 544 : 352, '\0') {
    Set<std::int32_t>(0, {p_second ? 540.0 : 348.0});
    bytes.replace(second ? 4 : 344, 4, second ? std::string("n+2\0", 4) : std::string("n+1\0", 4));
    if (second) {
      bytes.replace(8, 4, "\r\n\x1A\n");
      Set<std::int64_t>(16, {double(p_sizes.size()), 1, 1, 1, 1, 1, 1, 1});
      Set<std::int64_t>(24, p_sizes);
      Set<std::int16_t>(12, {double(p_type), double(p_bits)});
      Set<std::int64_t>(168, {544});
    } else {
      Set<std::int16_t>(40, {double(p_sizes.size()), 1, 1, 1, 1, 1, 1, 1});
      Set<std::int16_t>(42, p_sizes);
      Set<std::int16_t>(70, {double(p_type), double(p_bits)});
      Set<float>(108, {352});
    }
    Reals(76, 104, {-1, 0.5, 2, 3});
  }
  template <class T>
  Nifti& Set(std::size_t p_at, std::initializer_list<double> p_values) {
    const std::string text = BytesOf<T>(p_values, bigEndian);
    bytes.replace(p_at, text.size(), text);
    return *this;
  }
  Nifti& Reals(std::size_t p_at1, std::size_t p_at2, std::initializer_list<double> p_values) {
    return second ? Set<double>(p_at2, p_values) : Set<float>(p_at1, p_values);
  }
  Nifti& Codes(int p_quaternion, int p_matrix) {
    return second ? Set<std::int32_t>(344, {double(p_quaternion), double(p_matrix)})
                  : Set<std::int16_t>(252, {double(p_quaternion), double(p_matrix)});
  }
  Nifti& Units(int p_units) {
    return second ? Set<std::int32_t>(500, {double(p_units)}) : Set<std::uint8_t>(123, {double(p_units)});
  }
};

/// Values from 1 on, with a quaternion and a matrix that place them differently.
inline Nifti Oblique(bool p_second, bool p_bigEndian, int p_quaternion, int p_matrix) {
  Nifti file(p_second, p_bigEndian, {3, 2, 2}, 4, 16);
  file.Codes(p_quaternion, p_matrix).Units(2).Reals(256, 352, {0.5, -0.4, 0.3, 7, 8, 9});
  file.Reals(280, 400, {0.4, 0.1, 0, -10, 0.2, 2, 0.5, 20});
  file.Reals(312, 464, {0, -0.25, 3, 30});
  file.bytes += BytesOf<std::int16_t>({1, -2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 1200}, p_bigEndian);
  return file;
}

} // namespace Vek::Test
