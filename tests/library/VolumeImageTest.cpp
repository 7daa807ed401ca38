// Volumes, and TextArray files. At the end a loader over std::istream is held against the one under test on random and
// broken files.

#include "library/VolumeImage.h"
#include "tests/support/Test.h"

#include <cstdio>
#include <locale>

namespace {

using Voxels = std::vector<unsigned char>;

const std::string Initialize = "void __cdecl Vek::Chart::Library::VolumeImage::Initialize(enum "
                               "Vek::Chart::Library::VolumeImage::VoxelFormat,unsigned __int64,unsigned __int64,"
                               "unsigned __int64)";
const std::string LoadFromFile = "class boost::shared_ptr<class Vek::Chart::Library::VolumeImage> __cdecl "
                                 "Vek::Chart::Library::VolumeImage::LoadFromFile(const class vekfile::filepath &,enum "
                                 "Vek::Chart::Library::VolumeImage::FileType)";
const std::string LoadTextArray = "class boost::shared_ptr<class Vek::Chart::Library::VolumeImage> __cdecl "
                                  "Vek::Chart::Library::Private::TextArrayLoader::Load(const class vekfile::filepath "
                                  "&,enum Vek::Chart::Library::VolumeImage::DataPrecision)";

std::string LoadReport(const std::string& p_expression) {
  return "\"" + p_expression + "\" - " + LoadTextArray;
}
const std::string NoHeader = LoadReport("header == \"TextArray\"");
const std::string Failed = LoadReport("file");
const std::string ManyChannels = LoadReport("channels == 1");
const std::string NoSizes = LoadTextArray + " @line161";
const std::string SizesOverflow = LoadTextArray + " @line217";
const std::string FileTooShort = LoadTextArray + " @line221";

/// What came of a load.
struct Outcome {
  bool loaded = false;
  int extents[3] = {0, 0, 0};
  Voxels voxels;
  Texts reports;
};

bool operator==(const Outcome& p_a, const Outcome& p_b) {
  return p_a.loaded == p_b.loaded && std::equal(p_a.extents, p_a.extents + 3, p_b.extents) &&
         p_a.voxels == p_b.voxels && p_a.reports == p_b.reports;
}

std::ostream& operator<<(std::ostream& p_stream, const Outcome& p_outcome) {
  p_stream << (p_outcome.loaded ? "volume " : "nothing ") << p_outcome.extents[0] << ' ' << p_outcome.extents[1] << ' '
           << p_outcome.extents[2] << ':';
  for (const unsigned char voxel : p_outcome.voxels)
    p_stream << ' ' << int(voxel);
  for (const std::string& text : p_outcome.reports)
    p_stream << '\n' << text;
  return p_stream;
}

Outcome Load(const std::string& p_text) {
  const ReportCapture reports;
  std::istringstream stream(p_text);
  const auto volume = VolumeImage::LoadFromStream(stream, VolumeImage::TextArray);
  Outcome outcome;
  outcome.reports = reports.Texts();
  outcome.loaded = volume != nullptr;
  if (volume != nullptr)
    outcome = {true, {volume->Height(), volume->Width(), volume->Depth()}, volume->Bytes(), reports.Texts()};
  return outcome;
}

} // namespace

TEST(VolumeImage, FormatsDecideTheLayout) {
  const struct {
    VolumeImage::VoxelFormat format;
    int channels;
    int precision;
    std::size_t voxelBytes;
  } rows[] = {{VolumeImage::Float1, 1, 4, 4},
              {VolumeImage::Byte1, 1, 0, 1},
              {VolumeImage::Float4, 4, 4, 16},
              {VolumeImage::Byte4, 4, 0, 4}};
  for (const auto& row : rows) {
    const ReportCapture reports;
    const VolumeImage image(row.format, 2, 3, 4);
    EXPECT_EQ(image.Bytes(), Voxels(24 * row.voxelBytes)) << row.format;
    EXPECT_EQ(image.Data()._voxelSizeBytes, row.voxelBytes);
    EXPECT_EQ(image.Data()._slice, 6u);
    EXPECT_EQ(image.Data()._count, 24u);
    EXPECT_EQ(image.Channels().Value(), row.channels);
    EXPECT_EQ(image.Precision().Value(), row.precision);
    EXPECT_EQ(image.Channels().State(), 3u);
    EXPECT_EQ(image.Precision().State(), 3u);
    EXPECT_EQ(image.Format().Value(), 0);
    EXPECT_EQ(image.Format().State(), 1u);
    EXPECT_EQ(image.Height(), 2);
    EXPECT_EQ(image.Width(), 3);
    EXPECT_EQ(image.Depth(), 4);
    EXPECT_TRUE(image.Valid());
    EXPECT_EQ(reports.Texts(), Texts{});
  }
}

TEST(VolumeImage, UnknownFormatsAreReported) {
  const std::string sentry = Initialize + " @line280";
  const std::string channels = "\"_channels.Defined()\" - " + Initialize;
  const std::string precision = "\"_precision.Defined()\" - " + Initialize;
  for (const int number : {2, 5, 7, -1, 2147483647}) {
    const auto format = static_cast<VolumeImage::VoxelFormat>(number);
    const ReportCapture reports;
    VolumeImage image(format, 2, 3, 4);
    EXPECT_EQ(reports.Texts(), (Texts{sentry, channels, precision})) << number;
    EXPECT_EQ(reports.Entries().front().kind, vekdebug::severity::sentry);
    EXPECT_FALSE(image.Valid());
    EXPECT_EQ(image.Channels().State(), 1u);
    EXPECT_EQ(image.Data()._count, 24u);

    VolumeImage defined(VolumeImage::Byte4, 1, 1, 1);
    defined.Initialize(format, 2, 3, 4);
    EXPECT_EQ(reports.Texts(), (Texts{sentry, channels, precision, sentry})) << number;
    EXPECT_EQ(defined.Channels().Value(), 4);
    EXPECT_FALSE(defined.Valid());
  }
}

TEST(VolumeImage, IsAValue) {
  VolumeImage image;
  EXPECT_FALSE(image.Valid());
  EXPECT_EQ(image.Channels().State(), 1u);
  EXPECT_EQ(image.Precision().State(), 1u);
  EXPECT_EQ(image.Height() + image.Width() + image.Depth(), 0);

  image.Initialize(VolumeImage::Byte1, 3, 1, 1);
  image.Bytes() = {1, 2, 3};
  const VolumeImage copy(image);
  image.Initialize(VolumeImage::Byte4, 2, 1, 1); // old bytes stay where they were
  EXPECT_EQ(image.Bytes(), (Voxels{1, 2, 3, 0, 0, 0, 0, 0}));
  image.Initialize(VolumeImage::Byte1, 2, 1, 1);
  EXPECT_EQ(image.Bytes(), (Voxels{1, 2}));
  EXPECT_EQ(copy.Bytes(), (Voxels{1, 2, 3}));
  image.Clear();
  EXPECT_FALSE(image.Valid());
  EXPECT_EQ(image.Data()._count + image.Data()._slice + image.Data()._voxelSizeBytes + image.Data()._size0, 0u);
  EXPECT_EQ(image.Channels().State(), 3u);
  EXPECT_EQ(image.Channels().Value(), 1);
  image = copy;
  EXPECT_EQ(image.Bytes(), copy.Bytes());
}

TEST(VolumeImage, RefusesExtentsBeyondMemory) {
  VolumeImage image(VolumeImage::Byte1, 2, 1, 1);
  const std::uint64_t large = std::uint64_t{1} << 32;
  EXPECT_THROW(image.Initialize(VolumeImage::Float4, large, large, 1), std::length_error);
  EXPECT_THROW(image.Initialize(VolumeImage::Float4, large, large >> 3, 1), std::length_error);
  EXPECT_THROW(image.Initialize(VolumeImage::Float4, 1, ~std::uint64_t{0}, 2), std::length_error);
  EXPECT_EQ(image.Channels().Value(), 1);
  EXPECT_EQ(image.Bytes(), Voxels(2));
  image.Initialize(VolumeImage::Float4, large, 0, large);
  EXPECT_FALSE(image.Valid());
}

TEST(VolumeImage, FindsVoxelsAndComponents) {
  const ReportCapture reports;
  VolumeImage image(VolumeImage::Float4, 2, 3, 4);
  const std::size_t index = 1 + 2 * 2 + 6 * 3; // the last one
  VolumeImage::TypeArray<float> voxel(image.Data().At(index), 4);
  voxel[3] = 0.5f;
  EXPECT_EQ(image.Bytes().back(), 0x3f);
  const VolumeImage& constant = image;
  EXPECT_EQ(constant.Data().At(index), image.Bytes().data() + 23 * 16);
  VolumeImage::TypeArray<char> bytes(image.Data().At(0), 4);
  bytes[1] = 'a';
  EXPECT_EQ(image.Bytes()[1], 'a');
  EXPECT_EQ(reports.Texts(), Texts{});

  voxel[4] = 7.0f;
  EXPECT_EQ(voxel[4], 0.0f);
  bytes[std::size_t(-1)] = 'b';
  const std::string channel = "\"p_channel < _channels\" - ";
  const std::string view = " &__cdecl Vek::Chart::Library::VolumeImage::TypeArray<";
  const std::string indexOperator = ">::operator [](const unsigned __int64)";
  const std::string floats = channel + "float" + view + "float" + indexOperator;
  EXPECT_EQ(reports.Texts(), (Texts{floats, floats, channel + "char" + view + "char" + indexOperator}));
}

TEST(VolumeImage, VoxelsThatAreNotThereAreReported) {
  const std::string expression = "\"p_index*_voxelSizeBytes < _rawBytes.size()\" - ";
  const std::string at = "unsigned char *__cdecl Vek::Chart::Library::VolumeImageData::At(unsigned __int64)";
  VolumeImage image(VolumeImage::Float4, 1, 1, 2);
  image.Bytes().assign(31, 9); // the second voxel lost a byte
  for (const std::uint64_t index : {std::uint64_t{1}, std::uint64_t{2}, std::uint64_t{1} << 60}) { // × 16 wraps to 0
    const ReportCapture reports;
    unsigned char* const voxel = image.Data().At(index);
    EXPECT_EQ(Voxels(voxel, voxel + 16), Voxels(16)) << index;
    voxel[15] = 1;
    const VolumeImageData& constant = image.Data();
    EXPECT_EQ(constant.At(index)[15], 0) << index;
    EXPECT_EQ(reports.Texts(), (Texts{expression + at, expression + "const " + at + " const"})) << index;
  }
  const ReportCapture reports;
  VolumeImage().Data().At(0);
  EXPECT_EQ(reports.Texts(), Texts{expression + at});
}

TEST(VolumeImage, LoadsTextArrays) {
  const struct {
    const char* name;
    const char* text;
    Outcome expected;
  } rows[] = {
      {"two values", "TextArray 2 1 1 1\n1.0 0.5\n", {true, {2, 1, 1}, {255, 127}, {}}},
      {"file order",
       "TextArray 2 1 3 2 0 1 2 3 4 5 6 7 8 9 10 51",
       {true, {2, 3, 2}, {0, 5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 255}, {}}},
      {"no blanks are needed",
       "TextArray 6 1 1 1\t1-1+1.5.5.25",
       {true, {6, 1, 1}, {170, 0, 255, 85, 42, 0}, {Failed}}},
      {"all kinds of blanks",
       " \nTextArray\t3\v1\f1\r1 \r\n\t\v\f1e0\n.5E+0 \n\n 25e-2",
       {true, {3, 1, 1}, {255, 127, 63}, {}}},
      {"negative values", "TextArray 3 1 1 1 -4 2 -0", {true, {3, 1, 1}, {0, 255, 0}, {}}},
      {"only negative values", "TextArray 2 1 1 1 -4 -2", {true, {2, 1, 1}, {255, 255}, {}}},
      {"zeros", "TextArray 2 1 1 1 0 0", {true, {2, 1, 1}, {0, 0}, {}}},
      {"zeros and a negative value", "TextArray 2 1 1 1 0 -1", {true, {2, 1, 1}, {0, 0}, {}}},
      {"negative zero first", "TextArray 3 1 1 1 -0 0 -1", {true, {3, 1, 1}, {0, 0, 255}, {}}},
      {"a maximum that maps to 254", "TextArray 2 1 1 1 41 0", {true, {2, 1, 1}, {254, 0}, {}}},
      {"below the first maximum", "TextArray 2 1 1 1 -2e10 -3e10", {true, {2, 1, 1}, {255, 255}, {}}},
      {"too large a value ends the reading",
       "TextArray 3 1 1 1 1 1e39 1",
       {true, {3, 1, 1}, {0, 254, 0}, {Failed, Failed}}},
      {"too small values are 0", "TextArray 2 1 1 1 1e-60 1", {true, {2, 1, 1}, {0, 255}, {}}},
      {"not a number", "TextArray 4 1 1 1 1 x 1 1", {true, {4, 1, 1}, {255, 0, 0, 0}, {Failed, Failed, Failed}}},
      {"no infinity", "TextArray 2 1 1 1 1 inf", {true, {2, 1, 1}, {255, 0}, {Failed}}},
      {"no hexadecimal digits", "TextArray 2 1 1 1 1 0x1", {true, {2, 1, 1}, {255, 0}, {}}},
      {"half an exponent", "TextArray 2 1 1 1 1 1e", {true, {2, 1, 1}, {255, 0}, {Failed}}},
      {"values are missing", "TextArray 2 1 2 1 -1 -2", {true, {2, 2, 1}, {0, 0, 0, 0}, {Failed, Failed}}},
      {"two channels", "TextArray 2 2 1 1 1 4 2 3", {true, {2, 1, 1}, {63, 127}, {ManyChannels}}},
      {"two channels, cut",
       "TextArray 3 2 1 1 4 1 4",
       {true, {3, 1, 1}, {255, 255, 0}, {Failed, Failed, Failed, ManyChannels}}},
      {"another word", "textarray 1 1 1 1 1", {true, {1, 1, 1}, {255}, {NoHeader}}},
      {"more values than claimed", "TextArray 1 1 1 1 1 2 3", {true, {1, 1, 1}, {255}, {}}},
      {"empty", "", {false, {}, {}, {NoHeader, NoSizes}}},
      {"no sizes", "TextArray", {false, {}, {}, {NoSizes}}},
      {"a size is missing", "TextArray 1 1 1", {false, {}, {}, {NoSizes}}},
      {"a size is no integer", "TextArray 1 1 1.5 1 1", {false, {}, {}, {NoSizes}}},
      {"a size is 0", "TextArray 1 1 0 1 1", {false, {}, {}, {NoSizes}}},
      {"a size is negative", "TextArray -1 1 -1 1 1", {false, {}, {}, {NoSizes}}},
      {"a size beyond int", "TextArray 1 1 1 99999999999 1", {false, {}, {}, {NoSizes}}},
      {"an overflow", "TextArray 2147483647 2147483647 2147483647 2147483647 1", {false, {}, {}, {SizesOverflow}}},
      {"2^64", "TextArray 65536 65536 65536 65536 1", {false, {}, {}, {SizesOverflow}}},
      {"2^60", "TextArray 32768 32768 32768 32768 1", {false, {}, {}, {FileTooShort}}},
      {"just too much", "TextArray 67108865 1 1 1 1", {false, {}, {}, {FileTooShort}}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Load(row.text), row.expected) << row.name;
}

TEST(VolumeImage, ReportsOfMissingValuesEnd) {
  const Outcome outcome = Load("TextArray 100 1 100 2 1");
  EXPECT_EQ(outcome.reports, Texts(1000, Failed));
  EXPECT_EQ(outcome.voxels.size(), 20000u);
}

TEST(VolumeImage, LoadsFiles) {
  const std::string path = (std::filesystem::path(testing::TempDir()) / "vek-volume-image-test.txt").string();
  const auto load = [](const std::string& p_path, int p_type) {
    return VolumeImage::LoadFromFile(vekfile::filepath(p_path), static_cast<VolumeImage::FileType>(p_type));
  };
  const ReportCapture reports;
  std::ofstream(path) << "TextArray 1 1 2 1 1 2";
  const auto volume = load(path, 0);
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume->Bytes(), (Voxels{127, 255}));
  EXPECT_EQ(reports.Texts(), Texts{});
  std::filesystem::remove(path);

  EXPECT_FALSE(load(path, 0));
  const std::string missing = LoadReport("vekfile::fileexists(p_filename)");
  EXPECT_EQ(reports.Texts(), (Texts{missing, NoHeader, NoSizes}));
  const std::string invalid = LoadReport("p_filename.valid()");
  EXPECT_FALSE(load("", 0));
  EXPECT_EQ(reports.Texts(), (Texts{missing, NoHeader, NoSizes, invalid, missing, NoHeader, NoSizes}));

  for (const int type : {1, -1}) {
    const ReportCapture others;
    EXPECT_FALSE(load(path, type));
    EXPECT_EQ(others.Texts(), (Texts{LoadFromFile + " @line302", "\"loader\" - " + LoadFromFile})) << type;
  }
  const ReportCapture folder;
  EXPECT_FALSE(load(testing::TempDir(), 0));
  EXPECT_EQ(folder.Texts(), (Texts{NoHeader, NoSizes}));
}

TEST(VolumeImage, DoesNotCareForTheProcessLocale) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
  const Outcome outcome = Load("TextArray 4 1 1 1 1.000 0.5 1e-60 +.25");
  std::locale::global(before);
  EXPECT_EQ(outcome, (Outcome{true, {4, 1, 1}, {255, 127, 0, 63}, {}}));
}

namespace {

/// By the letter, value by value from a stream.
Outcome PlainLoad(const std::string& p_text) {
  std::istringstream file(p_text);
  file.imbue(std::locale::classic());
  Outcome outcome;
  const auto ensure = [&](bool p_condition, const std::string& p_report) {
    if (!p_condition)
      outcome.reports.push_back(p_report);
  };
  std::string word;
  int s0 = 0, channels = 0, s1 = 0, s2 = 0;
  file >> word >> s0 >> channels >> s1 >> s2;
  ensure(word == "TextArray", NoHeader);
  if (!file || std::min({s0, channels, s1, s2}) < 1) {
    outcome.reports.push_back(NoSizes);
    return outcome;
  }
  if (double(s0) * channels * s1 * s2 > double(p_text.size()) + 900.0) {
    outcome.reports.push_back("large");
    return outcome;
  }
  std::vector<float> values;
  float maximum = -1e10f;
  for (int i = 0; i < s0 * channels * s1 * s2; ++i) {
    float value = 0.0f;
    file >> value;
    ensure(static_cast<bool>(file), Failed);
    values.push_back(value);
    if (value > maximum)
      maximum = value;
  }
  ensure(channels == 1, ManyChannels);
  const float scale = static_cast<float>(1.0 / static_cast<double>(maximum));
  for (std::size_t i = 0; i < values.size(); i += static_cast<std::size_t>(channels)) {
    const double scaled = static_cast<double>(values[i] * scale) * 255.0;
    const double clamped = 0.0 > scaled ? 0.0 : scaled > 255.0 ? 255.0 : scaled;
    outcome.voxels.push_back(clamped == clamped ? static_cast<unsigned char>(clamped) : 0);
  }
  outcome.loaded = true;
  outcome.extents[0] = s0;
  outcome.extents[1] = s1;
  outcome.extents[2] = s2;
  return outcome;
}

std::string RandomNumber(std::mt19937& p_random) {
  const auto below = [&](unsigned int p_end) { return static_cast<int>(p_random() % p_end); };
  char text[80];
  switch (below(8)) {
  case 0:
  case 1:
    std::snprintf(text, sizeof text, "%d", below(4000) - 1000);
    break;
  case 2:
  case 3:
    std::snprintf(text, sizeof text, "%.3f", below(1000000) / 1000.0);
    break;
  case 4: // near the middle between two floats
    std::snprintf(text, sizeof text, "%.*f", 8 + below(10), 1 + (2 * below(4096) + 1) / 16777216.0);
    break;
  case 5:
    std::snprintf(text, sizeof text, "%d", 16777217 + 2 * below(100));
    break;
  case 6:
    std::snprintf(text, sizeof text, "%.*e", below(12), below(1000) / 7.0);
    break;
  default: // up to 40 digits with a point anywhere
    std::string digits;
    for (int count = 1 + below(40); count != 0; --count)
      digits += static_cast<char>('0' + below(10));
    return digits.insert(p_random() % (digits.size() + 1), ".");
  }
  return text;
}

/// A small file; three in four have odd characters among its numbers.
std::string RandomText(unsigned int p_seed) {
  std::mt19937 random(p_seed);
  const auto below = [&](unsigned int p_end) { return static_cast<int>(random() % p_end); };
  const int sizes[] = {1 + below(4), 1 + below(8) / 7, 1 + below(3), 1 + below(3)};
  std::string text = "TextArray";
  for (const int size : sizes)
    text += ' ' + std::to_string(size);
  int count = sizes[0] * sizes[1] * sizes[2] * sizes[3] + below(5) / 4 - below(5) / 4;
  for (; count > 0; --count)
    text += (below(6) == 0 ? "\n" : " ") + RandomNumber(random);
  const std::string odd = "+-.eE0159 \n\tx,";
  for (int faults = p_seed % 4; faults != 0; --faults) {
    const std::size_t at = below(20) == 0 ? 0 : std::min<std::size_t>(text.size(), 17);
    const std::size_t place = at + random() % (text.size() - at + 1);
    if (below(3) == 0)
      text.erase(std::min(place, text.size() - 1), 1);
    else
      text.insert(place, 1, odd[random() % odd.size()]);
  }
  return text;
}

} // namespace

TEST(VolumeImage, AgreesWithThePlainLoader) {
  std::size_t reported = 0;
  for (unsigned int seed = 0; seed < 20000; ++seed) {
    const std::string text = RandomText(seed);
    const Outcome expected = PlainLoad(text);
    if (!expected.reports.empty() && expected.reports.back() == "large")
      continue;
    ASSERT_EQ(Load(text), expected) << "seed " << seed << '\n' << text;
    reported += expected.reports.empty() ? 0 : 1;
  }
  EXPECT_GT(reported, 2000u); // the cases are what they are meant to be
  EXPECT_LT(reported, 15000u);
}

TEST(VolumeImage, NumbersRoundLikeAStream) {
  // Against a maximum of 1, a value one float below the step from one byte to the next tells its last bit.
  for (unsigned int seed = 0; seed < 2000; ++seed) {
    std::mt19937 random(seed);
    const float step = static_cast<float>(1 + random() % 254) / 255.0f;
    char text[64];
    std::snprintf(text, sizeof text, "TextArray 3 1 1 1 1 %.*f %.*f", 7 + int(random() % 13), double(step),
                  7 + int(random() % 13), (double(step) + double(std::nextafterf(step, 0.0f))) / 2);
    ASSERT_EQ(Load(text), PlainLoad(text)) << text;
  }
}

TEST(VolumeImage, WindowsDoNotShow) {
  // Numbers of all lengths lie across the ends of the windows that a large file is read in.
  std::mt19937 random(1);
  std::string text = "TextArray 40000 1 1 1";
  for (int count = 39999; count != 0;) {
    const std::string number = RandomNumber(random);
    if (number.size() > 38 || number.front() == '-')
      continue;
    text += std::string(1 + random() % 40, ' ') + std::string(random() % 3, '0') + number;
    --count;
  }
  text += ' ' + std::string(3000000, '0') + "5";
  const Outcome expected = PlainLoad(text);
  EXPECT_EQ(expected.reports, Texts{});
  EXPECT_TRUE(Load(text) == expected);
}
