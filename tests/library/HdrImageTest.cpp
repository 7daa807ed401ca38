// Pictures are built byte by byte in memory. At the end a plain decoder, which follows the rules record by record over
// a std::istream, is held against the loader on random and broken files.

#include "library/HdrImage.h"
#include "tests/support/Test.h"

namespace {

const std::string Stream = "class std::basic_istream<char,struct std::char_traits<char> > &";
const std::string Scanline =
    "class std::vector<struct Vek::Chart::Library::HdrImage::Rgbe8,class std::allocator<struct "
    "Vek::Chart::Library::HdrImage::Rgbe8> > &";
const std::string String = "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >";
const std::string Class = "void __cdecl Vek::Chart::Library::HdrImage::";

std::string LoadReport(const std::string& p_expression) {
  return "\"" + p_expression + "\" - " + Class + "Load(" + Stream + ")";
}
std::string FlatReport(const std::string& p_expression) {
  return "\"" + p_expression + "\" - " + Class + "DecodePixelRun(" + Stream + "," + Scanline + ")";
}
const std::string Cut = FlatReport("!p_stream.eof()");
const std::string Orientation = LoadReport("(axisY == \"-Y\") && (axisX == \"+X\")");
const std::string NoSign = LoadReport("line.find_first_of('=') != std::string::npos");
const std::string NotTwoParts = "\"param.size() == 2\" - struct std::pair<" + String + "," + String +
                                " > __cdecl Vek::Chart::Library::HdrImage::ParseCommand(const " + String + " &)";
const std::string OtherWidth =
    "\"scanlineWidth == p_scanline.size()\" - " + Class + "DecodeComponentRun(" + Stream + "," + Scanline + ")";

/// What came of a load, written out: reports, the exception, and the pixels as exact numbers.
struct Outcome {
  Texts reports;
  std::string exception;
  int width = 0;
  int height = 0;
  std::vector<std::array<float, 3>> pixels;
};

bool operator==(const Outcome& p_a, const Outcome& p_b) {
  return p_a.reports == p_b.reports && p_a.exception == p_b.exception && p_a.width == p_b.width &&
         p_a.height == p_b.height && p_a.pixels == p_b.pixels;
}

std::ostream& operator<<(std::ostream& p_stream, const Outcome& p_outcome) {
  p_stream << p_outcome.width << " x " << p_outcome.height << ' ' << p_outcome.exception << std::hexfloat;
  for (const auto& pixel : p_outcome.pixels)
    p_stream << " (" << pixel[0] << ' ' << pixel[1] << ' ' << pixel[2] << ')';
  for (const std::string& text : p_outcome.reports)
    p_stream << '\n' << text;
  return p_stream;
}

template <class Function>
std::string Thrown(const Function& p_function) {
  try {
    p_function();
    return "";
  } catch (const std::out_of_range&) {
    return "out_of_range";
  } catch (const std::length_error&) {
    return "length_error";
  }
}

/// The loader's outcome; after an exception that of the picture as it was left.
Outcome Load(const std::string& p_file) {
  const ReportCapture reports;
  std::istringstream empty("#?RADIANCE\n\n-Y 0 +X 0\n");
  HdrImage image(empty);
  std::istringstream stream(p_file);
  Outcome outcome;
  outcome.exception = Thrown([&] { image.Load(stream); });
  outcome.reports = reports.Texts();
  outcome.width = image.Width();
  outcome.height = image.Height();
  for (const HdrImage::Rgb32F& pixel : image.Pixels())
    outcome.pixels.push_back({pixel.red, pixel.green, pixel.blue});
  return outcome;
}

/// Bytes from numbers and texts.
std::string Bytes(std::initializer_list<int> p_bytes) {
  std::string bytes;
  for (const int byte : p_bytes)
    bytes += static_cast<char>(byte);
  return bytes;
}

std::string Repeat(const std::string& p_text, std::size_t p_count) {
  std::string text;
  for (; p_count != 0; --p_count)
    text += p_text;
  return text;
}

std::string Picture(int p_width, int p_height, const std::string& p_data) {
  return "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y " + std::to_string(p_height) + " +X " + std::to_string(p_width) +
         "\n" + p_data;
}

// Records, and the pixels that they stand for.
const std::string A = Bytes({128, 64, 32, 129});
const std::string B = Bytes({255, 1, 0, 128});
const std::string C = Bytes({2, 3, 4, 136});
const std::array<float, 3> PixelA{1.0f, 0.5f, 0.25f};
const std::array<float, 3> PixelB{255 / 256.0f, 1 / 256.0f, 0.0f};
const std::array<float, 3> PixelC{2.0f, 3.0f, 4.0f};
const std::array<float, 3> Black{};

using Pixels = std::vector<std::array<float, 3>>;

struct PictureCase {
  const char* name;
  std::string file;
  int width;
  int height;
  Pixels pixels;
  Texts reports;
  const char* exception = "";
};

void Check(const std::vector<PictureCase>& p_cases) {
  for (const PictureCase& row : p_cases) {
    const Outcome expected{row.reports, row.exception, row.width, row.height, row.pixels};
    EXPECT_EQ(Load(row.file), expected) << row.name;
  }
}

Pixels Concatenated(std::initializer_list<Pixels> p_parts) {
  Pixels all;
  for (const Pixels& part : p_parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

Pixels Times(std::size_t p_count, const std::array<float, 3>& p_pixel) {
  return Pixels(p_count, p_pixel);
}

} // namespace

TEST(HdrImage, ReadsTheHeader) {
  const std::string resolution = "-Y 1 +X 1\n" + A;
  const Pixels one{PixelA};
  Check({
      {"plain", "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n" + resolution, 1, 1, one, {}},
      {"no commands", "#?RADIANCE\n\n" + resolution, 1, 1, one, {}},
      {"comments", "#?RADIANCE\n# made by hand\n  # indented = no\n\n" + resolution, 1, 1, one, {}},
      {"blanks end it", "#?RADIANCE\nEXPOSURE=2\n \t\r\n" + resolution, 1, 1, one, {}},
      {"other signature of the same length",
       "#?RADIANCF\n\n" + resolution,
       1,
       1,
       one,
       {LoadReport("header == \"#?RADIANCE\"")}},
      {"short signature",
       "#?RGBE\n\n" + resolution,
       1,
       1,
       one,
       {LoadReport("header.size() == 10"), LoadReport("header == \"#?RADIANCE\"")}},
      {"carriage return after the signature",
       "#?RADIANCE\r\n\n" + resolution,
       1,
       1,
       one,
       {LoadReport("header.size() == 10"), LoadReport("header == \"#?RADIANCE\"")}},
      {"no sign", "#?RADIANCE\npfilt -2\n\n" + resolution, 1, 1, one, {NoSign, NotTwoParts}},
      {"two signs", "#?RADIANCE\na=b=c\n\n" + resolution, 1, 1, one, {NotTwoParts}},
      {"other white space in the resolution", "#?RADIANCE\n\n\t-Y  1\t+X 1 \r\n" + A, 1, 1, one, {}},
      {"text behind the resolution", "#?RADIANCE\n\n-Y 1 +X 1x y\n" + A, 1, 1, one, {}},
  });
}

TEST(HdrImage, CutOrUnreadableHeadersEnd) {
  const std::string size = LoadReport("header.size() == 10");
  const std::string word = LoadReport("header == \"#?RADIANCE\"");
  Check({
      {"empty", "", 0, 0, {}, {size, word, Orientation}},
      {"a line feed", "\n", 0, 0, {}, {size, word, Orientation}},
      {"signature only", "#?RADIANCE", 0, 0, {}, {Orientation}},
      {"cut in the commands", "#?RADIANCE\nGAMMA=1", 0, 0, {}, {Orientation}},
      {"cut before the resolution", "#?RADIANCE\n\n", 0, 0, {}, {Orientation}},
      {"an empty resolution", "#?RADIANCE\n\n\n" + A, 0, 0, {}, {Orientation}},
      {"no width", "#?RADIANCE\n\n-Y 1 +X\n" + A, 0, 0, {}, {}},
      {"no number", "#?RADIANCE\n\n-Y one +X 1\n" + A, 0, 0, {}, {Orientation}},
      {"a height beyond int", "#?RADIANCE\n\n-Y 99999999999 +X 1\n" + A, 0, 0, {}, {Orientation}},
      {"no columns", Picture(0, 2000000000, A), 0, 2000000000, {}, {}},
      {"no rows", Picture(2000000000, 0, A), 2000000000, 0, {}, {}},
  });
}

TEST(HdrImage, RefusesHostileSizesBeforeTakingMemory) {
  const struct {
    int width;
    int height;
  } sizes[] = {{-1, 1},      {1, -1},        {-3, -3},        {65536, 65536}, {46341, 46341},  {2147483647, 2},
               {8192, 8193}, {1, 134217728}, {2147483647, 1}, {32767, 65535}, {2, -2147483647}};
  for (const auto& size : sizes) {
    const Outcome outcome = Load(Picture(size.width, size.height, ""));
    EXPECT_EQ(outcome.exception, "length_error") << size.width << " x " << size.height;
    EXPECT_TRUE(outcome.pixels.empty());
    EXPECT_EQ(outcome.width, 0);
  }
  // Four bytes are enough for a scanline, but not for one of gigabytes.
  EXPECT_EQ(Load(Picture(2000000000, 1, A)).exception, "length_error");
  EXPECT_EQ(Load(Picture(1 << 27, 1, A + Repeat(Bytes({1, 1, 1, 255}), 4))).exception, "length_error");
}

TEST(HdrImage, KeepsHeaderValues) {
  const ReportCapture reports;
  std::istringstream stream(
      "#?RADIANCE\nEXPOSURE=0.5\n GAMMA = 1 \r\nEXPOSURE=2\nodd line\nSOFTWARE=a=b\n\n-Y 1 +X 1\n" + A);
  const HdrImage image(stream);
  EXPECT_EQ(image.HeaderValues("EXPOSURE"), (Texts{"0.5", "2"}));
  EXPECT_EQ(image.HeaderValues("GAMMA "), (Texts{" 1"}));
  EXPECT_EQ(image.HeaderValues("odd line"), (Texts{""}));
  EXPECT_EQ(image.HeaderValues("SOFTWARE"), (Texts{"a=b"}));
  EXPECT_EQ(image.HeaderValues("FORMAT"), Texts{});
  EXPECT_EQ(image.Pixel(0, 0).red, 1.0f); // no exposure is applied
}

TEST(HdrImage, ReadsFlatScanlines) {
  const std::string run = Bytes({1, 1, 1});
  const auto runOf = [&](int p_count) { return run + Bytes({p_count}); };
  Check({
      {"bottom row first", Picture(1, 2, A + B), 1, 2, {PixelB, PixelA}, {}},
      {"rows and columns",
       Picture(2, 3, A + B + C + A + B + B),
       2,
       3,
       {PixelB, PixelB, PixelC, PixelA, PixelA, PixelB},
       {}},
      {"other orientation",
       "#?RADIANCE\n\n+Y 2 +X 3\n" + A + A + A + B + B + B,
       3,
       2,
       Concatenated({Times(3, PixelB), Times(3, PixelA)}),
       {Orientation}},
      {"swapped axes", "#?RADIANCE\n\n+X 1 -Y 2\n" + A + B, 2, 1, {PixelA, PixelB}, {Orientation}},
      {"width 7 with the bytes of a separated scanline",
       Picture(7, 1, Bytes({2, 2, 0, 7}) + Repeat(A, 6)),
       7,
       1,
       Concatenated({{{std::ldexp(2.0f, -129), std::ldexp(2.0f, -129), 0.0f}}, Times(6, PixelA)}),
       {}},
      {"run", Picture(4, 1, A + runOf(2) + B), 4, 1, {PixelA, PixelA, PixelA, PixelB}, {}},
      {"run as the last record", Picture(3, 1, A + runOf(2)), 3, 1, Times(3, PixelA), {}},
      {"run of nothing", Picture(2, 1, A + runOf(0) + B), 2, 1, {PixelA, PixelB}, {}},
      {"chained run", Picture(260, 1, A + runOf(3) + runOf(1)), 260, 1, Times(260, PixelA), {}},
      {"chained run with a third byte",
       Picture(65538, 1, A + runOf(0) + runOf(0) + runOf(1) + B),
       65538,
       1,
       Concatenated({Times(65537, PixelA), {PixelB}}),
       {}},
      {"run without a pixel", Picture(3, 1, runOf(2) + A), 3, 1, {Black, Black, PixelA}, {FlatReport("previous")}},
      {"the previous pixel ends with the scanline",
       Picture(2, 2, A + B + runOf(2)),
       2,
       2,
       {Black, Black, PixelA, PixelB},
       {FlatReport("previous")}},
      {"codes chain across the ends of rows",
       Picture(3, 2, A + runOf(2) + runOf(0) + B + B + C),
       3,
       2,
       {PixelB, PixelB, PixelC, PixelA, PixelA, PixelA},
       {}},
      {"a fifth byte of a count is too much",
       Picture(3, 1, A + runOf(2) + Repeat(runOf(0), 3) + runOf(7)),
       3,
       1,
       Times(3, PixelA),
       {FlatReport("shift <= 24")}},
      {"overrun",
       Picture(3, 2, A + A + A + B + runOf(3)),
       3,
       2,
       Concatenated({Times(3, Black), Times(3, PixelA)}),
       {},
       "out_of_range"},
      {"the longest run", Picture(3, 1, A + Repeat(runOf(255), 4)), 3, 1, Times(3, Black), {}, "out_of_range"},
      {"cut run code", Picture(3, 1, A + run), 3, 1, {PixelA, Black, Black}, {Cut}},
  });
}

TEST(HdrImage, ReadsSeparatedComponents) {
  const auto literal = [](std::initializer_list<int> p_values) {
    return Bytes({static_cast<int>(p_values.size())}) + Bytes(p_values);
  };
  const auto runOf = [](int p_count, int p_value) { return Bytes({128 + p_count, p_value}); };
  const std::string start = Bytes({2, 2, 0, 8});
  const std::string a8 = runOf(8, 128) + runOf(8, 64) + runOf(8, 32) + runOf(8, 129);
  const std::string wide = Bytes({2, 2, 127, 255});
  const auto wideRun = [&](int p_value) { return Repeat(runOf(127, p_value), 258) + runOf(1, p_value); };
  Check({
      {"runs", Picture(8, 1, start + a8), 8, 1, Times(8, PixelA), {}},
      {"literals and runs",
       Picture(8, 1,
               start + literal({128, 1, 0}) + runOf(5, 128) + literal({64, 64, 64, 64, 64, 64, 64, 64}) + runOf(1, 32) +
                   runOf(7, 32) + literal({129, 137}) + runOf(6, 129)),
       8,
       1,
       Concatenated({{PixelA, {2.0f, 128.0f, 64.0f}, {0.0f, 0.5f, 0.25f}}, Times(5, PixelA)}),
       {}},
      {"empty literals", Picture(8, 1, start + Bytes({0, 0}) + a8), 8, 1, Times(8, PixelA), {}},
      {"rows", Picture(8, 2, start + a8 + Repeat(C, 8)), 8, 2, Concatenated({Times(8, PixelC), Times(8, PixelA)}), {}},
      {"the widest",
       Picture(32767, 1, wide + wideRun(128) + wideRun(64) + wideRun(32) + wideRun(129)),
       32767,
       1,
       Times(32767, PixelA),
       {}},
      {"too wide",
       Picture(32768, 1, Bytes({2, 2, 128, 0}) + Repeat(A, 32767)),
       32768,
       1,
       Concatenated({{Black}, Times(32767, PixelA)}),
       {}},
      {"a width with its highest bit is no header",
       Picture(8, 1, Bytes({2, 2, 128, 136}) + Repeat(A, 7)),
       8,
       1,
       Concatenated({{{2.0f, 2.0f, 128.0f}}, Times(7, PixelA)}),
       {}},
      {"another width", Picture(8, 1, Bytes({2, 2, 0, 9}) + a8), 8, 1, Times(8, PixelA), {OtherWidth}},
      {"run over the end", Picture(8, 1, start + runOf(9, 1)), 8, 1, Times(8, Black), {}, "out_of_range"},
      {"literal over the end",
       Picture(8, 1, start + literal({1, 2, 3, 4, 5, 6}) + literal({7, 8, 9})),
       8,
       1,
       Times(8, Black),
       {},
       "out_of_range"},
      {"overrun in the second row",
       Picture(8, 2, start + a8 + start + runOf(127, 1)),
       8,
       2,
       Concatenated({Times(8, Black), Times(8, PixelA)}),
       {},
       "out_of_range"},
  });
}

TEST(HdrImage, EveryCutIsReportedOnceAndLeavesZeros) {
  const std::string separated = Bytes({2, 2, 0, 8, 136, 128, 3, 64, 64, 64, 133, 64, 136, 32, 136, 129});
  const struct {
    const char* name;
    int width;
    int height;
    std::string data;
  } files[] = {{"flat", 3, 2, A + B + C + A + B + C},
               {"old runs", 6, 2, A + Bytes({1, 1, 1, 5}) + B + C + Bytes({1, 1, 1, 4})},
               {"separated", 8, 2, separated + separated},
               {"separated, then flat", 8, 2, separated + Repeat(B, 8)}};
  for (const auto& file : files) {
    const Outcome whole = Load(Picture(file.width, file.height, file.data));
    EXPECT_EQ(whole.reports, Texts{}) << file.name;
    for (std::size_t length = 0; length < file.data.size(); ++length) {
      const Outcome cut = Load(Picture(file.width, file.height, file.data.substr(0, length)));
      EXPECT_EQ(cut.reports, Texts{Cut}) << file.name << " after " << length;
      EXPECT_EQ(cut.exception, "") << file.name << " after " << length;
      ASSERT_EQ(cut.pixels.size(), whole.pixels.size());
      for (std::size_t i = 0; i < whole.pixels.size(); ++i)
        EXPECT_TRUE(cut.pixels[i] == whole.pixels[i] || cut.pixels[i] == Black) << file.name << " after " << length;
    }
  }
}

TEST(HdrImage, EveryValueIsExact) {
  for (int exponent = 0; exponent < 256; ++exponent) {
    std::string data;
    for (int mantissa = 0; mantissa < 256; ++mantissa)
      data += Bytes({mantissa, 255 - mantissa, 7, exponent});
    const Outcome outcome = Load(Picture(256, 1, data));
    ASSERT_EQ(outcome.reports, Texts{});
    for (int mantissa = 0; mantissa < 256; ++mantissa) {
      const auto expected = [&](int p_mantissa) {
        return exponent == 0 ? 0.0f : static_cast<float>(std::ldexp(p_mantissa / 256.0, exponent - 128));
      };
      const std::array<float, 3> pixel{expected(mantissa), expected(255 - mantissa), expected(7)};
      ASSERT_EQ(outcome.pixels[static_cast<std::size_t>(mantissa)], pixel) << mantissa << ' ' << exponent;
    }
  }
}

TEST(HdrImage, LeavesTheStreamBehindThePicture) {
  std::istringstream stream(Picture(1, 2, A + B) + Picture(1, 1, C) + "rest");
  HdrImage first(stream);
  const HdrImage copy(first);
  const HdrImage second(stream);
  EXPECT_EQ(second.Pixel(0, 0).green, 3.0f);
  std::string rest;
  EXPECT_TRUE(stream >> rest);
  EXPECT_EQ(rest, "rest");

  std::istringstream other(Picture(1, 1, C));
  first.Load(other);
  EXPECT_EQ(copy.Height(), 1); // copies share the picture
  EXPECT_EQ(copy.Pixel(0, 0).red, 2.0f);
}

TEST(HdrImage, PixelsAreFoundByTheirOffset) {
  const ReportCapture reports;
  std::istringstream stream(Picture(2, 2, A + B + C + C));
  HdrImage image(stream);
  const HdrImage& constant = image;
  EXPECT_EQ(constant.Pixel(1, 1).red, 255 / 256.0f);
  EXPECT_EQ(&constant.Pixel(-1, 1), &constant.Pixel(1, 0));
  image.Pixel(0, 1).blue = 9.0f;
  EXPECT_EQ(constant.Pixels()[2].blue, 9.0f);
  EXPECT_EQ(reports.Texts(), Texts{});

  const std::string pixel = "struct Vek::Chart::Library::HdrImage::Rgb32F &__cdecl "
                            "Vek::Chart::Library::HdrImage::Pixel(const int,const int)";
  const std::string text = "\"offset < _state->pixels.size()\" - ";
  image.Pixel(0, 2).red = 5.0f;
  image.Pixel(2147483647, 2147483647).red = 5.0f;
  EXPECT_EQ(image.Pixel(-1, 0).red, 0.0f);
  EXPECT_EQ(constant.Pixel(0, -2147483647).red, 0.0f);
  EXPECT_EQ(reports.Texts(), (Texts{text + pixel, text + pixel, text + pixel, text + "const " + pixel + " const"}));
}

TEST(HdrImage, RecordsCheckTheirIndex) {
  const ReportCapture reports;
  HdrImage::Rgbe8 record;
  record[3] = 7;
  const HdrImage::Rgbe8& constant = record;
  EXPECT_EQ(constant[3], 7);
  record[4] = 9;
  EXPECT_EQ(record[4], 0);
  EXPECT_EQ(constant[std::size_t(-1)], 0);
  EXPECT_EQ(reports.Texts().size(), 3u);
  EXPECT_EQ(reports.Texts().front().find("\"0 <= p_index < bytes.size()\" - "), 0u);
}

TEST(HdrImage, LuminanceIsSinglePrecision) {
  std::istringstream stream(Picture(1, 1, A));
  const HdrImage image(stream);
  EXPECT_EQ(image.Luminance({1.0f, 1.0f, 1.0f}), 179.0f);
  EXPECT_EQ(image.Luminance({1.0f, 0.0f, 0.0f}), 0.265f * 179.0f);
  EXPECT_EQ(image.Luminance({0.0f, 1.0f, 0.0f}), 0.67f * 179.0f);
  EXPECT_EQ(image.Luminance({0.0f, 0.0f, 1.0f}), 0.065f * 179.0f);
  volatile float sum = 0.265f * 0.1f; // rounded after each step
  sum = sum + 0.67f * 0.7f;
  sum = sum + 0.065f * 12.3f;
  EXPECT_EQ(image.Luminance({0.1f, 0.7f, 12.3f}), sum * 179.0f);
}

TEST(HdrImage, WritesFloatMaps) {
  std::istringstream stream(Picture(1, 2, A + C));
  const HdrImage image(stream);
  const std::string expected = "PF\n1 2\n-1.0\n" +
                               Bytes({0, 0, 0, 0x40, 0, 0, 0x40, 0x40, 0, 0, 0x80, 0x40}) + // 2 3 4, the bottom row
                               Bytes({0, 0, 0x80, 0x3f, 0, 0, 0, 0x3f, 0, 0, 0x80, 0x3e});  // 1 0.5 0.25
  std::ostringstream map;
  image.SaveAsPFM(map);
  EXPECT_EQ(map.str(), expected);

  const std::string path = (std::filesystem::path(testing::TempDir()) / "vek-hdr-image-test.pfm").string();
  testing::internal::CaptureStdout();
  image.SaveAsPFM(vekfile::filepath(path));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Writing to: " + path + "\n");
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), expected);
  std::filesystem::remove(path);

  const ReportCapture reports;
  testing::internal::CaptureStdout();
  image.SaveAsPFM(vekfile::filepath("/no/such/folder/map.pfm"));
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(reports.Texts(), Texts{"WARNING: HdrImage::SaveAsPFM: cannot write /no/such/folder/map.pfm"});
}

TEST(HdrImage, ReadsFiles) {
  const std::string path = (std::filesystem::path(testing::TempDir()) / "vek-hdr-image-test.hdr").string();
  std::ofstream(path, std::ios::binary) << Picture(3, 1, A + B + C);
  EXPECT_EQ(HdrImage(vekfile::filepath(path)).Pixel(2, 0).blue, 4.0f);
  std::filesystem::remove(path);

  const Texts empty = {LoadReport("header.size() == 10"), LoadReport("header == \"#?RADIANCE\""), Orientation};
  for (const std::string& missing : {path, std::string(), testing::TempDir()}) { // a folder opens, but cannot be read
    const ReportCapture reports;
    const HdrImage image{vekfile::filepath(missing)};
    EXPECT_EQ(image.Width(), 0);
    Texts texts = reports.Texts();
    if (missing == testing::TempDir()) {
      EXPECT_EQ(texts.at(0).find("WARNING: a stream failed while it was read: "), 0u) << texts.at(0);
      texts.erase(texts.begin());
    }
    EXPECT_EQ(texts, empty) << missing;
  }
}

TEST(HdrImage, TellsWhyAStreamFailed) {
  struct FailingBuffer : std::streambuf {
    explicit FailingBuffer(bool p_standard)
        : standard(p_standard) {}
    std::streamsize xsgetn(char* p_to, std::streamsize) override {
      if (text.empty() && standard)
        throw std::runtime_error("the disk is gone");
      if (text.empty())
        throw 1;
      return static_cast<std::streamsize>(std::exchange(text, "").copy(p_to, std::string::npos));
    }
    bool standard;
    std::string text = Picture(2, 2, A + B + C);
  };
  for (const bool standard : {true, false}) {
    FailingBuffer buffer(standard);
    std::istream stream(&buffer);
    const ReportCapture reports;
    const HdrImage image(stream);
    EXPECT_EQ(image.Pixel(1, 1).red, PixelB[0]);
    EXPECT_EQ(image.Pixel(0, 0).red, PixelC[0]);
    EXPECT_EQ(image.Pixel(1, 0).red, 0.0f);
    const std::string cause = standard ? ": the disk is gone" : "";
    EXPECT_EQ(reports.Texts(), (Texts{"WARNING: a stream failed while it was read" + cause, Cut}));
  }
}

namespace {

using Record = std::array<unsigned char, 4>;

/// Decodes by the letter: records read one by one and seeked back to, pixels stored one by one, floats computed by
/// repeated squaring. What is settled for cut files: the scanline ends with a report and what is missing is black.
class PlainDecoder {
public:
  Outcome Decode(const std::string& p_file) {
    _stream.str(p_file);
    _outcome.exception = Thrown([&] { Load(); });
    return _outcome;
  }

private:
  struct End {};

  void Ensure(bool p_condition, const std::string& p_text) {
    if (!p_condition)
      _outcome.reports.push_back(p_text);
  }

  bool Line(std::string& p_line) {
    p_line.clear();
    return static_cast<bool>(std::getline(_stream, p_line));
  }

  void Load() {
    std::string line;
    Line(line);
    Ensure(line.size() == 10, LoadReport("header.size() == 10"));
    Ensure(line == "#?RADIANCE", LoadReport("header == \"#?RADIANCE\""));
    while (Line(line)) {
      const std::size_t first = line.find_first_not_of(" \t\n\v\f\r");
      if (first == std::string::npos)
        break;
      if (line[first] == '#')
        continue;
      const auto signs = std::count(line.begin(), line.end(), '=');
      Ensure(signs != 0, NoSign);
      Ensure(signs == 1, NotTwoParts);
    }
    Line(line);
    std::istringstream resolution(line);
    std::string axisY, axisX;
    int width = 0, height = 0;
    if (!(resolution >> axisY >> height >> axisX >> width))
      width = height = 0;
    if (width < 0 || height < 0 || std::int64_t(width) * height > 1000000)
      throw std::length_error("size");
    _outcome.width = width;
    _outcome.height = height;
    _outcome.pixels.resize(std::size_t(width) * std::size_t(height));
    try {
      for (int s = 0; s < height && width > 0; ++s)
        Scanline(static_cast<std::size_t>(height - 1 - s));
    } catch (const End&) {
      Ensure(false, Cut);
    }
    Ensure(axisY == "-Y" && axisX == "+X", Orientation);
  }

  bool Read(Record& p_record) {
    _stream.read(reinterpret_cast<char*>(p_record.data()), 4);
    return _stream.gcount() == 4;
  }

  void SeekTo(std::streampos p_position) {
    _stream.clear();
    _stream.seekg(p_position);
  }

  void Scanline(std::size_t p_row) {
    std::vector<Record> scanline(static_cast<std::size_t>(_outcome.width), Record{});
    const auto start = _stream.tellg();
    Record peeked{};
    const bool separated = Read(peeked) && static_cast<unsigned>(_outcome.width) - 8u < 32760u && peeked[0] == 2 &&
                           peeked[1] == 2 && peeked[2] * 256 + peeked[3] < 32768;
    SeekTo(start);
    try {
      separated ? Components(scanline) : Records(scanline);
    } catch (const End&) {
      Store(scanline, p_row);
      throw;
    }
    Store(scanline, p_row);
  }

  unsigned char Byte() {
    const int byte = _stream.get();
    if (byte < 0)
      throw End();
    return static_cast<unsigned char>(byte);
  }

  void Components(std::vector<Record>& p_scanline) {
    Record header{};
    Read(header);
    Ensure(header[2] * 256u + header[3] == p_scanline.size(), OtherWidth);
    for (std::size_t component = 0; component < 4; ++component) {
      for (std::size_t x = 0; x < p_scanline.size();) {
        const unsigned char code = Byte();
        const std::size_t count = code <= 128 ? code : code - 128u;
        if (x + count > p_scanline.size())
          throw std::out_of_range("scanline");
        const unsigned char value = code > 128 ? Byte() : 0;
        for (std::size_t i = 0; i < count; ++i)
          p_scanline[x++][component] = code > 128 ? value : Byte();
      }
    }
  }

  void Records(std::vector<Record>& p_scanline) {
    const auto isRun = [](const Record& p_record) { return p_record[0] == 1 && p_record[1] == 1 && p_record[2] == 1; };
    Record previous{};
    bool hasPrevious = false;
    for (std::size_t x = 0; x < p_scanline.size();) {
      Record record{};
      if (!Read(record))
        throw End();
      if (!isRun(record)) {
        p_scanline.at(x++) = previous = record;
        hasPrevious = true;
        continue;
      }
      Ensure(hasPrevious, FlatReport("previous"));
      std::uint64_t count = record[3];
      auto behind = _stream.tellg();
      for (unsigned shift = 8; Read(record) && isRun(record); shift += 8) {
        Ensure(shift <= 24, FlatReport("shift <= 24"));
        if (shift <= 24)
          count |= std::uint64_t(record[3]) << shift;
        behind = _stream.tellg();
      }
      SeekTo(behind);
      for (; count != 0; --count)
        p_scanline.at(x++) = previous;
      hasPrevious = false;
    }
  }

  static float Value(unsigned char p_mantissa, unsigned char p_exponent) {
    const int e = p_exponent - 128;
    float power = 1.0f, square = 2.0f;
    for (int rest = std::abs(e); rest != 0; rest /= 2, square *= square)
      power *= rest % 2 != 0 ? square : 1.0f;
    return p_mantissa * 0.00390625f * (e < 0 ? 1.0f / power : power);
  }

  void Store(const std::vector<Record>& p_scanline, std::size_t p_row) {
    for (std::size_t x = 0; x < p_scanline.size(); ++x) {
      const Record& r = p_scanline[x];
      _outcome.pixels[p_row * p_scanline.size() + x] = {Value(r[0], r[3]), Value(r[1], r[3]), Value(r[2], r[3])};
    }
  }

  std::istringstream _stream;
  Outcome _outcome;
};

/// A small picture of random scanlines, in two cases of three with a few bytes changed, inserted or dropped.
std::string RandomPicture(unsigned int p_seed) {
  std::mt19937 random(p_seed);
  const auto below = [&](unsigned int p_end) { return static_cast<int>(random() % p_end); };
  const int width = below(3) == 0 ? 1 + below(300) : 1 + below(20);
  const int height = 1 + below(5);
  std::string data;
  for (int row = 0; row < height; ++row) {
    if (width >= 8 && below(2) == 0) {
      data += Bytes({2, 2, width / 256, width % 256});
      for (int component = 0; component < 4; ++component) {
        for (int x = 0; x < width;) {
          const bool run = below(2) == 0;
          const int count = std::min(width - x, run ? 1 + below(127) : below(129));
          data += Bytes({run ? 128 + count : count});
          for (int i = run ? 1 : count; i != 0; --i)
            data += Bytes({below(256)});
          x += count;
        }
      }
      continue;
    }
    for (int x = 0; x < width;) {
      const int count = below(4) == 0 && x > 0 ? std::min(width - x, below(300)) : 0;
      if (count == 0) {
        data += Bytes({below(3), below(3), below(3) + 2, 120 + below(16)});
        ++x;
      } else {
        data += Bytes({1, 1, 1, count % 256});
        if (count > 255)
          data += Bytes({1, 1, 1, count / 256});
        x += count;
        if (x < width) {
          data += A;
          ++x;
        }
      }
    }
  }
  std::string file = Picture(width, height, data);
  if (p_seed % 3 == 0)
    return file;
  for (int faults = 1 + below(4); faults != 0 && !file.empty(); --faults) {
    const bool anywhere = below(8) == 0;
    const std::size_t header = anywhere ? 0 : file.size() - std::min(file.size(), data.size());
    const std::size_t at = header + random() % (file.size() - header + 1);
    switch (below(4)) {
    case 0:
      file.insert(at, 1, static_cast<char>(below(256)));
      break;
    case 1:
      file.insert(at, Bytes({1, 1, 1, below(4)}));
      break;
    case 2:
      file.erase(std::min(at, file.size() - 1), 1 + random() % 5);
      break;
    default:
      file[std::min(at, file.size() - 1)] = static_cast<char>(below(256));
    }
  }
  return file;
}

} // namespace

TEST(HdrImage, AgreesWithThePlainDecoder) {
  std::size_t thrown = 0;
  std::size_t reported = 0;
  for (unsigned int seed = 0; seed < 6000; ++seed) {
    const std::string file = RandomPicture(seed);
    const Outcome expected = PlainDecoder().Decode(file);
    if (expected.exception == "length_error")
      continue;
    ASSERT_EQ(Load(file), expected) << "seed " << seed;
    thrown += expected.exception.empty() ? 0 : 1;
    reported += expected.reports.empty() ? 0 : 1;
  }
  EXPECT_GT(thrown, 500u); // the cases are what they are meant to be
  EXPECT_GT(reported, 500u);
}
