#include "io/ReadImage.h"
#include "io/FileError.h"
#include "library/HdrImage.h"
#include "tests/support/Damage.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/FileCases.h"
#include "tests/support/FileText.h"
#include "tests/support/Formats.h"
#include "tests/support/Output.h"
#include "tests/support/Test.h"

using Io::FileError;
using Io::Image;

namespace {

Image Read(const std::string& p_bytes, const std::string& p_name = "i", const Io::ImageOptions& p_options = {}) {
  std::istringstream stream(p_bytes);
  return Io::ReadImage(stream, p_name, p_options);
}

/// "WIDTH x HEIGHT CHANNELS: PIXELS", or the error.
std::string Summary(const std::string& p_bytes, const std::string& p_name = "i",
                    const Io::ImageOptions& p_options = {}) {
  std::ostringstream out;
  try {
    const Image image = Read(p_bytes, p_name, p_options);
    out << image.width << " x " << image.height << ' ';
    for (const std::string& name : image.channelNames)
      out << name;
    out << ':';
    for (const float number : image.pixels)
      out << ' ' << std::round(number * 1000) / 1000 + 0.0f;
  } catch (const FileError& error) {
    return error.what();
  }
  return out.str();
}

std::string Hdr(const std::string& p_lines, const std::string& p_resolution, const std::string& p_pixels) {
  return "#?RADIANCE\n" + p_lines + "\n" + p_resolution + "\n" + p_pixels;
}

/// A pixel whose numbers are these times 1/256 · 2^(129 - 128), with one of them at least 128.
std::string Pixel(int p_red, int p_green, int p_blue) {
  return {static_cast<char>(p_red), static_cast<char>(p_green), static_cast<char>(p_blue), static_cast<char>(129)};
}

} // namespace

TEST(ReadImage, RadianceWithWhatItsHeaderWants) {
  const std::string six = Pixel(128, 0, 64) + Pixel(128, 1, 64) + Pixel(128, 2, 64) + Pixel(128, 3, 64) +
                          Pixel(128, 4, 64) + Pixel(128, 8, 64);
  Io::ImageOptions orient;
  orient.applyOrientation = true;
  Io::ImageOptions exposure;
  exposure.applyExposure = true;
  Io::ImageOptions xyz;
  xyz.convertXyz = true;
  const auto green = [&](const std::string& p_resolution, const Io::ImageOptions& p_options) {
    const Image image = Read(Hdr("", p_resolution, six), "i", p_options);
    std::string text = std::to_string(image.width) + ":";
    for (std::size_t i = 1; i < image.pixels.size(); i += 3)
      text += ' ' + std::to_string(int(std::round(image.pixels[i] * 128)));
    return text;
  };
  // The numbers of each pixel, row by row from the bottom.
  EXPECT_EQ(green("-Y 2 +X 3", orient), "3: 3 4 8 0 1 2");
  EXPECT_EQ(green("+Y 2 +X 3", orient), "3: 0 1 2 3 4 8");
  EXPECT_EQ(green("-Y 2 -X 3", orient), "3: 8 4 3 2 1 0");
  EXPECT_EQ(green("+X 3 -Y 2", orient), "3: 1 3 8 0 2 4");
  EXPECT_EQ(green("-X 3 +Y 2", orient), "3: 4 2 0 8 3 1");
  EXPECT_EQ(green("+X 3 -Y 2", {}), "2: 4 8 2 3 0 1"); // as in the file
  const std::string one = Pixel(128, 64, 32);
  EXPECT_EQ(Summary(Hdr("EXPOSURE=2\nno value\nEXPOSURE= 0.25\n", "-Y 1 +X 1", one), "i", exposure),
            "1 x 1 RGB: 2 1 0.5");
  EXPECT_EQ(Summary(Hdr("EXPOSURE=2\n", "-Y 1 +X 1", one)), "1 x 1 RGB: 1 0.5 0.25");
  EXPECT_EQ(Read(Hdr("EXPOSURE=1e-7\nEXPOSURE=3\n", "-Y 1 +X 1", one)).values.at("EXPOSURE"), "3e-07");
  EXPECT_EQ(Read("Pf\n1 1\n-1e-7\n1234").values.at("scale"), "1e-07");
  // Equal energy is white. Yellow of X and Y alone, by Radiance's primaries and by others.
  const std::string format = "FORMAT=32-bit_rle_xyze\n";
  EXPECT_EQ(Summary(Hdr(format, "-Y 1 +X 1", Pixel(128, 128, 128)), "i", xyz), "1 x 1 RGB: 1 1 1");
  EXPECT_EQ(Summary(Hdr(format, "-Y 1 +X 1", Pixel(128, 128, 0)), "i", xyz), "1 x 1 RGB: 1.398 0.956 -0.177");
  EXPECT_EQ(
      Summary(Hdr(format + "PRIMARIES=1 0.0001 0 1 0 0.0001 .3333333 .3333333\n", "-Y 1 +X 1", Pixel(128, 64, 32)), "i",
              xyz)
          .substr(0, 14),
      "1 x 1 RGB: 1 0");
  EXPECT_EQ(Summary(Hdr(format, "-Y 1 +X 1", one)), "1 x 1 XYZ: 1 0.5 0.25");
}

TEST(ReadImage, RadianceAsHdrImage) {
  const std::string path = VEK_SOURCE_DIR "/data/sky.hdr";
  const HdrImage expected{vekfile::filepath(path)};
  const ReportCapture reports;
  const Image image = Io::ReadImage(path);
  EXPECT_TRUE(reports.Entries().empty());
  ASSERT_EQ(image.pixels.size(), 3 * expected.Pixels().size());
  EXPECT_EQ(std::memcmp(image.pixels.data(), expected.Pixels().data(), 4 * image.pixels.size()), 0);
}

TEST(ReadImage, ValuesAndErrors) {
  const std::string eight = std::string("\2\2\0\10", 4);
  const std::vector<FileCase> cases = {
      {"Pf 2 1\n-1.0\n" + BytesOf<float>({1.5, -2}), "2 x 1 Y: 1.5 -2"},
      {"PF\n1 2\r\n1\n" + BytesOf<float>({1, 2, 3, 4, 5, 6}, true), "1 x 2 RGB: 1 2 3 4 5 6"},
      {"PF\n# a comment\n1 1\n# 2 2\n-1\n" + BytesOf<float>({1, 2, 3}), "1 x 1 RGB: 1 2 3"},
      {"Pf\r\n2 1\r\n-1\r\n" + BytesOf<float>({1, 2}), "2 x 1 Y: 1 2"},
      {"Pf\n1 1\n-1\r" + std::string("\n\0\x80\x3F", 4), "1 x 1 Y: 1"}, // a value that starts with a line feed
      {"PF\n1 x\n-1\n", "i:2: expected a height, got \"x\""},
      {"PF\n1 1\n0\n", "i:3: expected a scale other than 0, got \"0\""},
      {"Pf\n1000000 1000000\n-1\n1234", "i: expected 1 × 1000000000000 values, got a file that holds at most 1"},
      {"P6\n", "a.pfm:1: expected PF or Pf, got \"P6\"", "a.pfm"},
      {"P6\n", "i: expected Radiance, PFM or OpenEXR, got \"P6\""},
      {"#?RADIANCE\nFORMAT=x", "i: the file ends within its header of 1 lines"},
      {Hdr("FORMAT=raw\n", "", ""), "i:2: expected the format 32-bit_rle_rgbe or 32-bit_rle_xyze, got \"raw\""},
      {Hdr("EXPOSURE=0\n", "", ""), "i:2: expected an exposure above 0, got \"0\""},
      {Hdr("", "-Y 2 +Y 3", ""), "i:3: expected a resolution such as -Y 512 +X 1024, got \"-Y 2 +Y 3\""},
      {Hdr("", "-Y 70000 +X 70000", ""), "i:3: expected at most 2^31 - 1 pixels, got \"-Y 70000 +X 70000\""},
      {Hdr("", "-Y 1 +X 2", "abcd"), "i: scanline 1: the file ends early"},
      {Hdr("", "-Y 1 +X 2", "\1\1\1\2"), "i: scanline 1: a run of 2 at position 0"},
      {Hdr("", "-Y 1 +X 2", Pixel(128, 0, 0) + "\1\1\1\1"), "2 x 1 RGB: 1 0 0 1 0 0"},
      {Hdr("", "-Y 1 +X 9", eight), "i: scanline 1: expected 9 pixels, got 8"},
      {Hdr("", "-Y 1 +X 8", eight + "\x89x"), "i: scanline 1: a run of 9 at position 0"},
      {Hdr("", "-Y 1 +X 8", eight + std::string(1, '\0')), "i: scanline 1: a run of 0 at position 0"},
  };
  CheckFiles(cases, "i", [](const auto& p_file, const auto& p_name) { return Summary(p_file, p_name); });
}

TEST(ReadImage, OpenExrAsItsOwnProgramCompressesIt) {
  if (!Reads("OpenEXR")) {
    EXPECT_EQ(Summary(ExrFile({0, 0, 2, 1}, "BGR")),
              "i: this build does not read OpenEXR files; build it with the package libopenexr-dev");
    GTEST_SKIP() << "without OpenEXR";
  }
  EXPECT_EQ(Summary(ExrFile({0, 0, 2, 1}, "BGR")), "3 x 2 RGB: 23 13 3 24 14 4 25 15 5 20 10 0 21 11 1 22 12 2");
  EXPECT_EQ(Summary(ExrFile({-5, 7, -3, 8}, "AZ")), "3 x 2 AZ: 3 13 4 14 5 15 0 10 1 11 2 12");
  const TempFolder folder;
  const std::string file = folder.Write("a.exr", ExrFile({0, 0, 2, 1}, "ABGR"));
  const std::string expected = Summary(ExrFile({0, 0, 2, 1}, "ABGR"));
  for (const std::string compression : {"none", "rle", "zip", "piz"}) {
    const std::string tiled = folder.File(compression + ".exr");
    Output("exrmaketiled -z " + compression + " -t 2 2 " + file + " " + tiled);
    EXPECT_EQ(Summary(BytesOfFile(tiled)), expected) << compression;
  }
}

TEST(ReadImage, ReadsFilesOfOtherPrograms) {
  // Written by pfstools, whose own reader converted the colours to X, Y, Z and back.
  const Io::Image part = Io::ReadImage(VEK_SOURCE_DIR "/tests/io/files/basic_dark_part.pfm");
  ASSERT_TRUE(part.width == 24 && part.height == 16 && part.channels == 3);
  EXPECT_NEAR(part.pixels[0], 0.0584717, 1e-7); // as Python's struct shows it
  if (!Reads("OpenEXR"))
    GTEST_SKIP() << "without OpenEXR";
  const Io::Image whole = Io::ReadImage(VEK_SOURCE_DIR "/tests/io/files/basic_dark.exr");
  ASSERT_TRUE(whole.width == 512 && whole.height == 512 && whole.channels == 3);
  constexpr std::size_t Left = 128, Top = 96;
  for (std::size_t y = 0; y < part.height; ++y)
    for (std::size_t x = 0; x < 3 * part.width; ++x)
      ASSERT_NEAR(whole.pixels[3 * (Left + 512 * (512 - Top - part.height + y)) + x],
                  part.pixels[x + 3 * part.width * y], 1e-6)
          << x << ' ' << y;
}

TEST(ReadImage, SurvivesDamage) {
  const TempFolder folder;
  const std::string exr = folder.Write("a.exr", ExrFile({0, 0, 2, 1}, "BGR"));
  Output("exrmaketiled -z zip " + exr + " " + folder.File("zip.exr"));
  Output("exrmaketiled -z piz " + exr + " " + folder.File("piz.exr"));
  const std::string line = std::string("\2\2\0\10", 4) + "\x88"
                                                         "a\x84"
                                                         "b\4cdef\x88"
                                                         "g\x88\x81";
  for (const std::string& bytes :
       {Hdr("EXPOSURE=2\nFORMAT=32-bit_rle_xyze\n", "+Y 2 -X 8", line + line),
        Hdr("", "-Y 1 +X 6", Pixel(128, 0, 0) + "\1\1\1\4" + Pixel(1, 2, 3)), "PF 2 2\n-1.0\n" + std::string(48, 'x'),
        ExrFile({0, 0, 2, 1}, "BGR"), BytesOfFile(folder.File("zip.exr")), BytesOfFile(folder.File("piz.exr"))}) {
    const bool isRead = bytes.substr(1, 3) != "/1\1" || Reads("OpenEXR");
    EXPECT_EQ(Summary(bytes).find("i:") == std::string::npos, isRead) << Summary(bytes);
    Io::ImageOptions all;
    all.applyOrientation = all.convertXyz = all.applyExposure = true;
    CheckDamage<FileError>(bytes, [&](const std::string& p_bytes) { Read(p_bytes, "i", all); });
  }
}
