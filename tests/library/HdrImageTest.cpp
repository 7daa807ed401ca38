// Images are built byte by byte in memory; outcomes are compared as strings.

#include "library/HdrImage.h"
#include "tests/support/OperatorNew.h"
#include "tests/support/Test.h"

namespace {

#define VEK_CLASS "Vek::Chart::Library::HdrImage::"

namespace Signature {
const std::string Stream = "(class std::basic_istream<char,struct std::char_traits<char> > &";
const std::string Text = "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >";
const std::string Run = "Run" + Stream + ",class std::vector<struct " VEK_CLASS "Rgbe8,class std::allocator<struct " +
                        VEK_CLASS "Rgbe8> > &)";
const std::string Load = "\" - void __cdecl " VEK_CLASS "Load" + Stream + ")";
const std::string Pixel = "\" - void __cdecl " VEK_CLASS "DecodePixel" + Run;
const std::string Component = "\" - void __cdecl " VEK_CLASS "DecodeComponent" + Run;
const std::string Parse =
    "\" - struct std::pair<" + Text + "," + Text + " > __cdecl " VEK_CLASS "ParseCommand(const " + Text + " &)";
} // namespace Signature

const std::string Size = "\"header.size() == 10" + Signature::Load;
const std::string Word = "\"header == \"#?RADIANCE\"" + Signature::Load;
const std::string NoSign = "\"line.find_first_of('=') != std::string::npos" + Signature::Load;
const std::string NotTwo = "\"param.size() == 2" + Signature::Parse;
const std::string Orientation = "\"(axisY == \"-Y\") && (axisX == \"+X\")" + Signature::Load;
const std::string Previous = "\"previous" + Signature::Pixel;
const std::string Shift = "\"shift <= 24" + Signature::Pixel;
const std::string Cut = "\"!p_stream.eof()" + Signature::Pixel;
const std::string OtherWidth = "\"scanlineWidth == p_scanline.size()" + Signature::Component;
const std::string TooLong = "WARNING: HdrImage::Load: no end of the header in 1048576 bytes";

std::string Bytes(std::initializer_list<int> p_bytes) {
  return std::string(p_bytes.begin(), p_bytes.end());
}

std::string Repeat(const std::string& p_text, std::size_t p_count) {
  std::string text;
  for (; p_count != 0; --p_count)
    text += p_text;
  return text;
}

// Records, and the pixels that they stand for.
const std::string A = Bytes({128, 64, 32, 129});
const std::string B = Bytes({255, 1, 0, 128});
const std::string C = Bytes({2, 3, 4, 136});
const std::map<char, std::array<float, 3>> Pixels{
    {'A', {1.0f, 0.5f, 0.25f}},  {'B', {255 / 256.0f, 1 / 256.0f, 0.0f}}, {'C', {2.0f, 3.0f, 4.0f}},
    {'D', {2.0f, 2.0f, 128.0f}}, {'E', {0x1p-128f, 0x1p-128f, 0.0f}},     {'.', {0.0f, 0.0f, 0.0f}},
};

/// "3x1 A2 .": the extents, and the pixels by their letters with the length of runs.
std::string Describe(const HdrImage& p_image) {
  std::string letters;
  for (const HdrImage::Rgb32F& pixel : p_image.Pixels()) {
    const auto found = std::find_if(Pixels.begin(), Pixels.end(), [&pixel](const auto& p_entry) {
      return p_entry.second == std::array<float, 3>{pixel.red, pixel.green, pixel.blue};
    });
    letters += found == Pixels.end() ? '?' : found->first;
  }
  std::string text = std::to_string(p_image.Width()) + "x" + std::to_string(p_image.Height());
  for (std::size_t first = 0, last; first < letters.size(); first = last) {
    last = std::min(letters.find_first_not_of(letters[first], first), letters.size());
    text += std::string(" ") + letters[first] + (last - first > 1 ? std::to_string(last - first) : "");
  }
  return text;
}

/// Loads a used image anew; the image as it is left, and what was thrown.
std::string Load(std::istream& p_stream) {
  std::istringstream used("#?RADIANCE\nkept=no\n\n-Y 1 +X 1\n" + A);
  HdrImage image(used);
  std::string thrown;
  try {
    image.Load(p_stream);
  } catch (const std::logic_error& failure) {
    thrown = dynamic_cast<const std::length_error*>(&failure) != nullptr ? " length_error" : " out_of_range";
  } catch (const std::bad_alloc&) {
    thrown = " bad_alloc";
  }
  EXPECT_EQ(image.HeaderValues("kept"), Texts{});
  return Describe(image) + thrown;
}

void Check(const char* p_name, const std::string& p_file, const std::string& p_image, const Texts& p_reports = {}) {
  const ReportCapture reports;
  std::istringstream stream(p_file);
  EXPECT_EQ(Load(stream), p_image) << p_name;
  EXPECT_EQ(reports.Texts(), p_reports) << p_name;
}

std::string Image(int p_width, int p_height, const std::string& p_data) {
  return "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y " + std::to_string(p_height) + " +X " + std::to_string(p_width) +
         "\n" + p_data;
}

std::string Old(int p_count) {
  return Bytes({1, 1, 1, p_count});
}
/// A code of a separated component that repeats a byte.
std::string Same(int p_count, int p_value) {
  return Bytes({128 + p_count, p_value});
}
/// A code of a separated component with literal bytes.
std::string Literal(std::initializer_list<int> p_values) {
  return Bytes({static_cast<int>(p_values.size())}) + Bytes(p_values);
}
const std::string Start8 = Bytes({2, 2, 0, 8});
const std::string A8 = Same(8, 128) + Same(8, 64) + Same(8, 32) + Same(8, 129);

} // namespace

TEST(HdrImage, ReadsTheHeader) {
  const std::string one = "-Y 1 +X 1\n" + A;
  Check("comments", "#?RADIANCE\n# made by hand\n  # indented = no\n\n" + one, "1x1 A");
  Check("blanks end it", "#?RADIANCE\nEXPOSURE=2\n \t\r\n" + one, "1x1 A");
  Check("other signature of this length", "#?RADIANCF\n\n" + one, "1x1 A", {Word});
  Check("short signature", "#?RGBE\n\n" + one, "1x1 A", {Size, Word});
  Check("no sign", "#?RADIANCE\npfilt -2\n\n" + one, "1x1 A", {NoSign, NotTwo});
  Check("two signs", "#?RADIANCE\na=b=c\n\n" + one, "1x1 A", {NotTwo});
  Check("white space in the resolution", "#?RADIANCE\n\n\t-Y  1\t+X 1 \r\n" + A, "1x1 A");
  Check("more behind the resolution", "#?RADIANCE\n\n-Y 1 +X 1x y\n" + A, "1x1 A");
  Check("long line", "#?RADIANCE\na=" + std::string(1000000, 'x') + "\n\n" + one, "1x1 A");

  Check("empty", "", "0x0", {Size, Word, Orientation});
  Check("cut in the commands", "#?RADIANCE\nGAMMA=1", "0x0", {Orientation});
  Check("an empty resolution", "#?RADIANCE\n\n\n" + A, "0x0", {Orientation});
  Check("no width", "#?RADIANCE\n\n-Y 1 +X\n" + A, "0x0");
  Check("no number", "#?RADIANCE\n\n-Y one +X 1\n" + A, "0x0", {Orientation});
  Check("a height beyond int", "#?RADIANCE\n\n-Y 99999999999 +X 1\n" + A, "0x0", {Orientation});
  Check("no columns", Image(0, 2000000000, A), "0x2000000000");
  Check("no rows", Image(2000000000, 0, A), "2000000000x0");
}

TEST(HdrImage, HeadersWithoutEndAreRefused) {
  constexpr std::size_t Long = 4000000;
  Check("zeros", std::string(Long, '\0'), "0x0", {Size, Word, TooLong, Orientation});
  Check("comments", "#?RADIANCE\n" + Repeat("#\n", Long), "0x0", {TooLong, Orientation});
  Check("a resolution", "#?RADIANCE\n\n" + std::string(Long, ' ') + "-Y 1 +X 1\n", "0x0", {TooLong, Orientation});
}

TEST(HdrImage, RefusedSizesLeaveAnEmptyImage) {
  const int sizes[][2] = {{-1, 1},         {1, -1},         {-3, -3},        {65536, 65536},
                          {46341, 46341},  {2147483647, 2}, {8192, 8193},    {1, 134217728},
                          {2147483647, 1}, {32767, 65535},  {2, -2147483647}};
  for (const auto& size : sizes)
    Check("hostile", Image(size[0], size[1], ""), "0x0 length_error");
  // A scanline takes four bytes at least, and more of them when it is long.
  Check("long row", Image(2000000000, 1, A), "0x0 length_error");
  Check("one column", Image(1, (1 << 26) + 1, std::string(1 << 22, 'a')), "0x0 length_error");
  Check("runs", Image(1 << 27, 1, A + Repeat(Old(255), 1000)), "0x0 length_error");
  const RefuseMemory refused(100000000);
  Check("no memory", Image(8000, 8000, A), "0x0 bad_alloc");
}

TEST(HdrImage, MissingPixelsTakeNoPages) {
  const auto pages = [] {
    std::size_t total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident;
  };
  ASSERT_NE(pages(), 0u);
  for (const auto& [width, height] : {std::pair(1 << 25, 1), std::pair(1 << 12, 1 << 13)}) {
    const ReportCapture reports;
    std::istringstream stream(Image(width, height, A));
    const std::size_t before = pages();
    const HdrImage image(stream);
    EXPECT_LT(pages() - before + 1000, 20000u) << width; // of 98,304
    EXPECT_EQ(image.Pixel(0, height - 1).green, 0.5f);
    EXPECT_EQ(reports.Texts(), Texts{Cut});
  }
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
  Check("rows and columns", Image(2, 3, A + B + C + A + B + B), "2x3 B2 C A2 B");
  Check("other orientation", "#?RADIANCE\n\n+Y 2 +X 3\n" + Repeat(A, 3) + Repeat(B, 3), "3x2 B3 A3", {Orientation});
  Check("width 7 is flat", Image(7, 1, Bytes({2, 2, 0, 7}) + Repeat(A, 6)), "7x1 E A6");
  Check("run", Image(4, 1, A + B + Old(1) + C), "4x1 A B2 C");
  Check("run as the last record", Image(3, 1, A + Old(2)), "3x1 A3");
  Check("run of nothing", Image(2, 1, A + Old(0) + B), "2x1 A B");
  Check("third byte", Image(65538, 1, A + Old(0) + Old(0) + Old(1) + B), "65538x1 A65537 B");
  Check("fifth byte", Image(3, 1, A + Old(2) + Repeat(Old(0), 3) + Old(7)), "3x1 A3", {Shift});
  Check("run without a pixel", Image(3, 1, Old(2) + A), "3x1 .2 A", {Previous});
  Check("previous ends with the scanline", Image(2, 2, A + B + Old(2)), "2x2 .2 A B", {Previous});
  Check("chained across rows", Image(3, 2, A + Old(2) + Old(0) + B + B + C), "3x2 B2 C A3");
  Check("overrun", Image(3, 2, A + A + A + B + Old(3)), "3x2 .3 A3 out_of_range");
  Check("the longest run", Image(3, 1, A + Repeat(Old(255), 4)), "3x1 .3 out_of_range");
  Check("cut run code", Image(3, 1, A + Bytes({1, 1, 1})), "3x1 A .2", {Cut});
}

TEST(HdrImage, ReadsSeparatedComponents) {
  const auto wide = [](int p_value) { return Repeat(Same(127, p_value), 258) + Same(1, p_value); };
  Check("literals and runs",
        Image(8, 1,
              Start8 + Literal({128, 128, 128}) + Same(5, 2) + Same(3, 64) + Literal({3, 3, 3, 3, 3}) + Same(1, 32) +
                  Same(2, 32) + Same(5, 4) + Literal({129, 129, 129, 136}) + Same(4, 136)),
        "8x1 A3 C5");
  Check("empty literals", Image(8, 1, Start8 + Bytes({0, 0}) + A8), "8x1 A8");
  Check("rows", Image(8, 2, Start8 + A8 + Repeat(C, 8)), "8x2 C8 A8");
  Check("the widest", Image(32767, 1, Bytes({2, 2, 127, 255}) + wide(128) + wide(64) + wide(32) + wide(129)),
        "32767x1 A32767");
  Check("too wide", Image(32768, 1, Bytes({2, 2, 0, 7}) + Repeat(A, 32767)), "32768x1 E A32767");
  Check("highest bit of the width", Image(8, 1, Bytes({2, 2, 128, 136}) + Repeat(A, 7)), "8x1 D A7");
  Check("other widths", Image(8, 2, Bytes({2, 2, 0, 9}) + A8 + Bytes({2, 2, 0, 7}) + A8), "8x2 A16",
        {OtherWidth, OtherWidth});
  Check("literal over the end", Image(8, 1, Start8 + Literal({1, 2, 3, 4, 5, 6}) + Literal({7, 8, 9})),
        "8x1 .8 out_of_range");
  Check("overrun in the second row", Image(8, 2, Start8 + A8 + Start8 + Same(127, 1)), "8x2 .8 A8 out_of_range");
}

TEST(HdrImage, WindowsDoNotShow) {
  // Literals as long as they get, at all positions across the end of the first window.
  std::string line = Bytes({2, 2, 0, 128});
  for (const char component : A)
    line += '\x80' + std::string(128, component);
  for (std::size_t shift = 0; shift < 133; ++shift)
    Check("shifted", "#?RADIANCE\n#" + std::string(1048000 + shift, '#') + "\n\n-Y 4 +X 128\n" + Repeat(line, 4),
          "128x4 A512");
}

TEST(HdrImage, EveryCutIsReportedOnceAndLeavesZeros) {
  const std::string separated = Bytes({2, 2, 0, 8, 136, 128, 6, 64, 64, 64, 64, 64, 64, 130, 64, 136, 32, 136, 129});
  const struct {
    int width;
    std::string data; // of two rows
  } files[] = {{3, A + B + C + A + B + C},
               {6, A + Old(5) + B + C + Old(4)},
               {8, separated + separated},
               {8, separated + Repeat(B, 8)}};
  for (const auto& file : files) {
    std::istringstream stream(Image(file.width, 2, file.data));
    const HdrImage whole(stream);
    for (std::size_t length = 0; length < file.data.size(); ++length) {
      SCOPED_TRACE(file.data + " after " + std::to_string(length));
      const ReportCapture reports;
      std::istringstream cut(Image(file.width, 2, file.data.substr(0, length)));
      const HdrImage image(cut);
      EXPECT_EQ(reports.Texts(), Texts{Cut});
      EXPECT_GT(static_cast<std::size_t>(cut.tellg()) + 4, cut.str().size()); // but for a record that is cut
      for (int i = 0; i < 2 * file.width; ++i) {
        const float red = image.Pixel(i, 0).red;
        EXPECT_TRUE(red == whole.Pixel(i, 0).red || red == 0.0f);
      }
    }
  }
}

// HdrImagePlainTest repeats it without AVX2.
TEST(HdrImage, EveryValueIsExact) {
  for (int exponent = 0; exponent < 256; ++exponent) {
    const auto expected = [exponent](int p_mantissa) {
      return exponent == 0 ? 0.0f : static_cast<float>(std::ldexp(p_mantissa / 256.0, exponent - 128));
    };
    std::string flat;
    for (int mantissa = 0; mantissa < 256; ++mantissa)
      flat += Bytes({mantissa, 255 - mantissa, 7, exponent});
    std::string separated = Bytes({2, 2, 1, 0});
    for (std::size_t i = 0; i < 1024; ++i)
      separated += (i % 128 == 0 ? "\x80" : "") + flat.substr(i % 256 * 4 + i / 256, 1);
    for (const std::string& data : {flat, separated}) {
      std::istringstream stream(Image(256, 1, data));
      const HdrImage image(stream);
      for (int i = 0; i < 256; ++i) {
        const HdrImage::Rgb32F& pixel = image.Pixel(i, 0);
        const std::array values{pixel.red, pixel.green, pixel.blue};
        ASSERT_EQ(values, (std::array{expected(i), expected(255 - i), expected(7)})) << i << " " << exponent;
      }
    }
  }
}

TEST(HdrImage, LeavesTheStreamBehindTheImage) {
  std::istringstream stream(Image(1, 2, A + B) + Image(1, 1, C) + "rest");
  HdrImage first(stream);
  const HdrImage copy(first);
  EXPECT_EQ(Describe(HdrImage(stream)), "1x1 C");
  std::string rest;
  EXPECT_TRUE(stream >> rest);
  EXPECT_EQ(rest, "rest");

  std::istringstream other(Image(1, 1, C));
  first.Load(other);
  EXPECT_EQ(Describe(copy), "1x1 C"); // copies share the pixels
}

TEST(HdrImage, PixelsAreFoundByTheirOffset) {
  const ReportCapture reports;
  std::istringstream stream(Image(2, 2, A + B + C + C));
  HdrImage image(stream);
  const HdrImage& constant = image;
  EXPECT_EQ(constant.Pixel(1, 1).red, 255 / 256.0f);
  EXPECT_EQ(&constant.Pixel(-1, 1), &constant.Pixel(1, 0));
  image.Pixel(0, 1).blue = 9.0f;
  EXPECT_EQ(constant.Pixels()[2].blue, 9.0f);
  EXPECT_EQ(reports.Texts(), Texts{});
  image.Pixel(0, 2).red = 5.0f;
  EXPECT_EQ(image.Pixel(-1, 0).red, 0.0f);
  EXPECT_EQ(constant.Pixel(0, -2147483647).red, 0.0f);
  HdrImage::Rgbe8 record;
  record[3] = 7;
  record[4] = 9;
  EXPECT_EQ(record[4], 0);
  EXPECT_EQ(std::as_const(record)[3], 7);
  EXPECT_EQ(std::as_const(record)[std::size_t(-1)], 0);
  const std::string pixel = "struct " VEK_CLASS "Rgb32F &__cdecl " VEK_CLASS "Pixel(const int,const int)";
  const std::string offset = "\"offset < _state->pixels.size()\" - ";
  const std::string byte = "unsigned char &__cdecl " VEK_CLASS "Rgbe8::operator [](unsigned __int64)";
  const std::string index = "\"0 <= p_index < bytes.size()\" - ";
  EXPECT_EQ(reports.Texts(), (Texts{offset + pixel, offset + pixel, offset + "const " + pixel + " const", index + byte,
                                    index + byte, index + "const " + byte + " const"}));
  EXPECT_EQ(reports.Details().front(), "index 4, count 4");
}

TEST(HdrImage, LuminanceIsSinglePrecision) {
  std::istringstream stream(Image(1, 1, A));
  const HdrImage image(stream);
  EXPECT_EQ(image.Luminance({1, 2, 1}), 0x1.2aee16p+8f); // one bit off when any step is in double precision
}

TEST(HdrImage, ReadsAndWritesFiles) {
  const TempFolder folder;
  const HdrImage image(vekfile::filepath(folder.Write("read.hdr", Image(2, 2, A + B + C + A))));
  EXPECT_EQ(Describe(image), "2x2 C A2 B");
  const std::string a = Bytes({0, 0, 0x80, 0x3f, 0, 0, 0, 0x3f, 0, 0, 0x80, 0x3e}); // 1 0.5 0.25
  const std::string expected = "PF\n2 2\n-1.0\n" + Bytes({0, 0, 0, 0x40, 0, 0, 0x40, 0x40, 0, 0, 0x80, 0x40}) + a + a +
                               Bytes({0, 0, 0x7f, 0x3f, 0, 0, 0x80, 0x3b, 0, 0, 0, 0}); // 2 3 4 first
  const std::string path = folder.Path() / "written.pfm";
  const ReportCapture reports;
  testing::internal::CaptureStdout();
  image.SaveAsPFM(vekfile::filepath(path));
  image.SaveAsPFM(vekfile::filepath("/no/such/folder/map.pfm"));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Writing to: " + path + "\nWriting to: /no/such/folder/map.pfm\n");
  EXPECT_EQ(reports.Texts(), Texts{"WARNING: HdrImage::SaveAsPFM: cannot write /no/such/folder/map.pfm"});
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), expected);

  for (const std::string& missing : {path + "x", std::string(), folder.Path().string()}) { // a folder opens
    const ReportCapture others;
    EXPECT_EQ(Describe(HdrImage{vekfile::filepath(missing)}), "0x0");
    Texts texts = others.Texts();
    if (missing == folder.Path() && texts.at(0).find("WARNING: a stream failed while it was read: ") == 0)
      texts.erase(texts.begin());
    EXPECT_EQ(texts, (Texts{Size, Word, Orientation})) << missing;
  }
}

TEST(HdrImage, ReportsNameTheFileAndTheScanline) {
  const TempFolder folder;
  const auto details = [&folder](const std::string& p_bytes) {
    const ReportCapture reports;
    const std::string path = folder.Write("x.hdr", p_bytes);
    std::string all;
    try {
      const HdrImage image{vekfile::filepath(path)};
    } catch (const std::exception& pFailure) {
      all = pFailure.what();
    }
    for (const std::string& detail : reports.Details())
      all += (all.empty() ? "" : "; ") + detail;
    for (std::size_t at; (at = all.find(path)) != std::string::npos;)
      all.replace(at, path.size(), "x.hdr");
    return all;
  };
  EXPECT_EQ(details("#?RGBE\nodd\n\n-Y 2 +Y 2\n" + A),
            "x.hdr:1, found \"#?RGBE\"; x.hdr:1, found \"#?RGBE\"; x.hdr:2, found \"odd\"; x.hdr:2, found \"odd\"; "
            "x.hdr, index 0, count 2; x.hdr:4, found \"-Y 2 +Y 2\"");
  EXPECT_EQ(details(Image(1, 3, A + Old(1))), "x.hdr, index 1, count 3; x.hdr, index 2, count 3");
  EXPECT_EQ(details(Image(1, -3, A)),
            "HdrImage: a negative size, or more than 2^31 - 1 pixels (x.hdr:4, found \"-Y -3 +X 1\")");
  EXPECT_EQ(details(Image(1, 2, A + Old(2))),
            "HdrImage: a run of 2 at position 0 of a scanline of 1 (x.hdr, index 1, count 2); x.hdr, index 1, count 2");
}
