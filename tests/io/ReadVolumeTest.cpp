#include "io/ReadVolume.h"
#include "io/FileError.h"
#include "tests/support/Damage.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/Test.h"

using Io::FileError;
using Io::Volume;

namespace {

Volume Read(const std::string& p_bytes, const std::string& p_name = "v", const Io::VolumeOptions& p_options = {}) {
  std::istringstream stream(p_bytes);
  return Io::ReadVolume(stream, p_name, p_options);
}

std::string Numbers(const std::array<double, 3>& p_numbers) {
  std::ostringstream text;
  for (const double number : p_numbers)
    text << ' ' << std::round(number * 1000) / 1000 + 0.0;
  return text.str();
}

/// "TYPE SIZE xCHANNELS: VALUES / spacing / origin / directions where they are not x, y, z / units, space and name".
std::string Summary(const Volume& p_volume) {
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
  out << " /" << Numbers(p_volume.spacing) << " /" << Numbers(p_volume.origin);
  if (!p_volume.IsAxisAligned())
    for (const Volume::Vector& direction : p_volume.orientation)
      out << " |" << Numbers(direction);
  for (const std::string& text : {p_volume.lengthUnit, p_volume.space, p_volume.unit, p_volume.name})
    out << (text.empty() ? "" : " " + text);
  return out.str();
}

std::string SummaryOrError(const std::string& p_bytes, const std::string& p_name = "v",
                           const Io::VolumeOptions& p_options = {}) {
  try {
    return Summary(Read(p_bytes, p_name, p_options));
  } catch (const FileError& error) {
    return error.what();
  }
}

template <class T>
std::string Bytes(std::initializer_list<double> p_values, bool p_bigEndian = false) {
  std::string bytes;
  for (const double value : p_values) {
    const T number = static_cast<T>(value);
    std::string one(reinterpret_cast<const char*>(&number), sizeof number);
    if (p_bigEndian)
      std::reverse(one.begin(), one.end());
    bytes += one;
  }
  return bytes;
}

std::string Nrrd(const std::string& p_fields, const std::string& p_values) {
  return "NRRD0004\n" + p_fields + "\n" + p_values;
}

} // namespace

TEST(ReadVolume, NrrdValuesPlaceAndErrors) {
  const std::string four = "dimension: 3\nsizes: 2 2 1\n";
  const std::string little = "endian: little\nencoding: raw\n";
  const std::string bytes = "type: uchar\nencoding: raw\n";
  const std::string lps = "space: left-posterior-superior\nspace directions: (0,2,0) (0.5,0,0) (0,0,3)\n";
  struct Case {
    std::string file;
    std::string expected;
  };
  const Case cases[] = {
      {Nrrd("type: short\n" + four + little, Bytes<std::int16_t>({-1, 2, 3, 400})),
       "i16 2 2 1: -1 2 3 400 / 1 1 1 / 0 0 0"},
      {Nrrd("type: unsigned int\n" + four + "endian: big\nencoding: raw\n", Bytes<std::uint32_t>({1, 2, 3, 4e9}, true)),
       "u32 2 2 1: 1 2 3 4e+09 / 1 1 1 / 0 0 0"},
      {Nrrd("type: int64\n" + four + little, Bytes<std::int64_t>({-1, 2, 3, 5e9})),
       "d 2 2 1: -1 2 3 5e+09 / 1 1 1 / 0 0 0"},
      {Nrrd("type: float\r\n# x\r\nkey:=value\r\n" + four + "encoding: ascii\r\n", "1.5 nan\n1e-60, -inf"),
       "f 2 2 1: 1.5 nan 0 -inf / 1 1 1 / 0 0 0"},
      {Nrrd("type: int8\n" + four + "encoding: hex\n", "ff 01 7F\n80"), "i8 2 2 1: -1 1 127 -128 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + four + "line skip: 1\nbyteskip: 2\n", "skipped\n..abcd"), "u8 2 2 1: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + four + "byte skip: -1\n", "any length abcd"), "u8 2 2 1: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + four +
                "spacings: 2 -3 nan\naxis mins: 0 10 nan\ncenters: node cell ???\nunits: \"mm\" \"mm\" \"\"\n" +
                "content: a b\nsample units: \"H U\"\n",
            "abcd"),
       "u8 2 2 1: 97 98 99 100 / 2 3 1 / 0 8.5 0 | 1 0 0 | 0 -1 0 | 0 0 1 mm H U a b"},
      {Nrrd(bytes + four + "axis mins: 0 0 0\naxis maxs: 4 4 1\ncenters: node cell cell\n", "abcd"),
       "u8 2 2 1: 97 98 99 100 / 4 2 1 / 0 1 0.5"},
      {Nrrd(bytes + four + lps + "space origin: (1,2,3)\nspace units: \"mm\" \"mm\" \"mm\"\n", "abcd"),
       "u8 2 2 1: 97 98 99 100 / 2 0.5 3 / -1 -2 3 | 0 -1 0 | -1 0 0 | 0 0 1 mm right-anterior-superior"},
      // Channels: in front, behind, by space; steps.
      {Nrrd(bytes + "dimension: 4\nsizes: 2 2 1 1\n", "abcd"), "u8 2 1 1 x2: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + "dimension: 3\nsizes: 2 1 2\nkinds: domain domain vector\n", "abcd"),
       "u8 2 1 1 x2: 97 99 98 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes +
                "dimension: 4\nsizes: 2 2 1 1\nspace dimension: 3\nspace directions: none (1,0,0) (0,1,0) (0,0,1)\n",
            "abcd"),
       "u8 2 1 1 x2: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + "dimension: 4\nsizes: 2 1 1 2\nkinds: space space space time\n", "abcd"),
       "u8 2 1 1: 97 98 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + "dimension: 3\nsizes: 2 2 1\nkinds: domain list domain\n", "abcd"),
       "v: expected channels, up to three axes of a grid, and steps, got 3 axes in another order"},
      // Errors.
      {"NRRD0009\n", "v:1: expected NRRD0001 to NRRD0005, got \"NRRD0009\""},
      {Nrrd("type: block\n", ""), "v:2: expected a type of integers or floats, got \"block\""},
      {Nrrd("encoding: bzip2\n", ""), "v:2: expected the encoding raw, ascii, hex or gzip, got \"bzip2\""},
      {Nrrd("sizes: 1 2\n", ""), "v:2: expected the field \"dimension\" before this one, got \"sizes: 1 2\""},
      {Nrrd("dimension: 2\nsizes: 1 x\n", ""), "v:3: expected an integer, got \"x\""},
      {Nrrd("dimension: 2\nsizes: 1\n", ""), "v:3: expected values for 2 axes, got \"sizes: 1\""},
      {Nrrd("nothing\n", ""), "v:2: expected a field and a colon, got \"nothing\""},
      {Nrrd("type: short\n" + four + "encoding: raw\n", "12345678"),
       "v: expected the field \"endian\" in the header of 6 lines, got none"},
      {Nrrd(bytes + "dimension: 3\nsizes: 90000 90000 90000\n", "abcd"),
       "v: expected 1 × 729000000000000 values, got a file that holds at most 4"},
      {Nrrd(bytes + "dimension: 3\nsizes: 4294967296 4294967296 4294967296\n", ""), "v: the sizes exceed any memory"},
      {Nrrd("type: uchar\nencoding: ascii\n" + four, "1 2\n300 4"),
       "v:8: expected an integer of the file's type, got \"300\""},
      {Nrrd("type: int8\n" + four + "encoding: hex\n", "ff 01 7F\n8x"), "v: expected hexadecimal digits, got 'x'"},
      {Nrrd(bytes + four + "data file: nowhere.raw\n", ""),
       "nowhere.raw: expected a file with the values of v, got none"},
  };
  for (const auto& [file, expected] : cases)
    EXPECT_EQ(SummaryOrError(file), expected) << file.substr(0, 200);
}

TEST(ReadVolume, OthersAndUnknown) {
  struct Case {
    std::string file;
    std::string expected;
    std::string name = "v";
  };
  const Case cases[] = {
      {"TextArray 2 2 1 1\n1.25 2\nnan 4", "f 2 1 1 x2: 1.25 2 nan 4 / 1 1 1 / 0 0 0"},
      {"TextArray 2 1 1 1\n1 x", "v:2: expected number 2 of 2, got \"x\""},
      {"", "v: expected TextArray, NRRD or NIfTI, got an empty file"},
      {"hello\nx", "v: expected TextArray, NRRD or NIfTI, got \"hello\""},
      {std::string(128, '\0') + "DICM 12345",
       "v: expected TextArray, NRRD or NIfTI, got a DICOM file; convert it to NIfTI"},
      {"\x01\x02", "v: expected TextArray, NRRD or NIfTI, got binary data; raw values need their size and type"},
      {"hello", "a.nrrd:1: expected NRRD0001 to NRRD0005, got \"hello\"", "a.nrrd"},
      {"hello", "a.nii: expected the header of a NIfTI file, got 5 bytes of something else", "a.nii"},
  };
  for (const auto& [file, expected, name] : cases)
    EXPECT_EQ(SummaryOrError(file, name), expected) << file;
}
