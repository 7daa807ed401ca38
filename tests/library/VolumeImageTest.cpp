// Volumes, and TextArray files, whose outcomes are compared as strings.

#include "library/VolumeImage.h"
#include "tests/support/OperatorNew.h"
#include "tests/support/Test.h"

#include <cstdio>

namespace {

using Voxels = std::vector<unsigned char>;

#define VEK_CLASS "Vek::Chart::Library::VolumeImage"

namespace Signature {
const std::string Initialize = "void __cdecl " VEK_CLASS "::Initialize(enum " VEK_CLASS "::VoxelFormat,"
                               "unsigned __int64,unsigned __int64,unsigned __int64)";
const std::string LoadFromFile = "class boost::shared_ptr<class " VEK_CLASS "> __cdecl " VEK_CLASS
                                 "::LoadFromFile(const class vekfile::filepath &,enum " VEK_CLASS "::FileType)";
const std::string Load =
    "class boost::shared_ptr<class " VEK_CLASS "> __cdecl "
    "Vek::Chart::Library::Private::TextArrayLoader::Load(const class vekfile::filepath &,enum " VEK_CLASS
    "::DataPrecision)";
} // namespace Signature

const std::string NoHeader = "\"header == \"TextArray\"\" - " + Signature::Load;
const std::string Failed = "\"file\" - " + Signature::Load;
const std::string ManyChannels = "\"channels == 1\" - " + Signature::Load;
const std::string NoSizes = Signature::Load + " @line161";
const std::string SizesOverflow = Signature::Load + " @line217";
const std::string FileTooShort = Signature::Load + " @line221";

/// "2x1x1 255 127": the extents and the voxels; "none" without a volume.
std::string Describe(const boost::shared_ptr<VolumeImage>& p_volume) {
  if (p_volume == nullptr)
    return "none";
  std::ostringstream text;
  text << p_volume->Height() << 'x' << p_volume->Width() << 'x' << p_volume->Depth();
  for (const int voxel : p_volume->Bytes())
    text << ' ' << voxel;
  return text.str();
}

std::string Load(const std::string& p_text) {
  std::istringstream stream(p_text);
  return Describe(VolumeImage::LoadFromStream(stream, VolumeImage::TextArray));
}

void Check(const std::string& p_text, const std::string& p_volume, const Texts& p_reports = {}) {
  const ReportCapture reports;
  EXPECT_EQ(Load(p_text), p_volume) << p_text.substr(0, 100);
  EXPECT_EQ(reports.Texts(), p_reports) << p_text.substr(0, 100);
}

/// "2x3x4 4 6 24, 96 bytes, 1/3 4/3 0/1": extents, voxel size, slice, count, bytes, and value and state of channels,
/// precision and format.
std::string Layout(const VolumeImage& p_image) {
  const VolumeImageData& data = p_image.Data();
  std::ostringstream text;
  text << p_image.Height() << 'x' << p_image.Width() << 'x' << p_image.Depth() << ' ' << data._voxelSizeBytes << ' '
       << data._slice << ' ' << data._count << ", " << p_image.Bytes().size() << " bytes, ";
  text << p_image.Channels().Value() << '/' << p_image.Channels().State() << ' ' << p_image.Precision().Value() << '/'
       << p_image.Precision().State() << ' ' << p_image.Format().Value() << '/' << p_image.Format().State();
  EXPECT_EQ(p_image.Valid(), !p_image.Bytes().empty());
  return text.str();
}

} // namespace

TEST(VolumeImage, FormatsDecideTheLayout) {
  const ReportCapture reports;
  EXPECT_EQ(Layout(VolumeImage()), "0x0x0 0 0 0, 0 bytes, 0/1 0/1 0/1");
  EXPECT_EQ(Layout({VolumeImage::Float1, 2, 3, 4}), "2x3x4 4 6 24, 96 bytes, 1/3 4/3 0/1");
  EXPECT_EQ(Layout({VolumeImage::Byte1, 2, 3, 4}), "2x3x4 1 6 24, 24 bytes, 1/3 0/3 0/1");
  EXPECT_EQ(Layout({VolumeImage::Float4, 2, 3, 4}), "2x3x4 16 6 24, 384 bytes, 4/3 4/3 0/1");
  EXPECT_EQ(Layout({VolumeImage::Byte4, 2, 3, 4}), "2x3x4 4 6 24, 96 bytes, 4/3 0/3 0/1");
  EXPECT_EQ(Layout({VolumeImage::Byte4, std::uint64_t{1} << 40, 0, std::uint64_t{1} << 40}).find("0x0x0 4 0 0, 0 b"),
            0u);
  EXPECT_EQ(reports.Texts(), Texts{});
}

TEST(VolumeImage, UnknownFormatsAreReported) {
  const std::string sentry = Signature::Initialize + " @line280";
  const Texts expected{sentry, "\"_channels.Defined()\" - " + Signature::Initialize,
                       "\"_precision.Defined()\" - " + Signature::Initialize, sentry};
  for (const int number : {2, 5, -1, 2147483647}) {
    const auto format = static_cast<VolumeImage::VoxelFormat>(number);
    const ReportCapture reports;
    EXPECT_EQ(Layout({format, 2, 3, 4}), "2x3x4 0 6 24, 0 bytes, 0/1 0/1 0/1");
    VolumeImage defined(VolumeImage::Byte4, 1, 1, 1);
    defined.Initialize(format, 2, 3, 4);
    EXPECT_EQ(Layout(defined), "2x3x4 0 6 24, 0 bytes, 4/3 0/3 0/1");
    EXPECT_EQ(reports.Texts(), expected) << number;
    EXPECT_EQ(reports.Entries().front().kind, severity::sentry);
  }
}

TEST(VolumeImage, IsAValue) {
  VolumeImage image(VolumeImage::Byte1, 3, 1, 1);
  image.Bytes() = {1, 2, 3};
  const VolumeImage copy(image);
  image.Initialize(VolumeImage::Byte4, 2, 1, 1); // old bytes keep their offsets
  EXPECT_EQ(image.Bytes(), (Voxels{1, 2, 3, 0, 0, 0, 0, 0}));
  image.Initialize(VolumeImage::Byte1, 2, 1, 1);
  EXPECT_EQ(image.Bytes(), (Voxels{1, 2}));
  EXPECT_EQ(copy.Bytes(), (Voxels{1, 2, 3}));
  image.Clear();
  EXPECT_EQ(Layout(image), "0x0x0 0 0 0, 0 bytes, 1/3 0/3 0/1");
  image = copy;
  EXPECT_EQ(image.Bytes(), copy.Bytes());
}

TEST(VolumeImage, RefusesExtentsBeyondMemory) {
  VolumeImage image(VolumeImage::Byte1, 2, 1, 1);
  const std::string before = Layout(image);
  const std::uint64_t large = std::uint64_t{1} << 32;
  EXPECT_THROW(image.Initialize(VolumeImage::Float4, large, large, 1), std::length_error);
  EXPECT_THROW(image.Initialize(VolumeImage::Float4, large, large >> 3, 1), std::length_error);
  EXPECT_THROW(image.Initialize(VolumeImage::Float4, 1, ~std::uint64_t{0}, 2), std::length_error);
  const RefuseMemory refused(1000000);
  EXPECT_THROW(image.Initialize(VolumeImage::Float4, 1000, 100, 10), std::bad_alloc);
  EXPECT_EQ(Layout(image), before);
}

TEST(VolumeImage, FindsVoxelsAndComponents) {
  const ReportCapture reports;
  VolumeImage image(VolumeImage::Float4, 2, 3, 4);
  VolumeImage::TypeArray<float> voxel(image.Data().At(23), 4); // the last one
  voxel[3] = 0.5f;
  EXPECT_EQ(image.Bytes().back(), 0x3f);
  EXPECT_EQ(std::as_const(image).Data().At(23), image.Bytes().data() + 23 * 16);
  EXPECT_EQ(reports.Texts(), Texts{});
  voxel[4] = 7.0f;
  EXPECT_EQ(voxel[4], 0.0f);
  VolumeImage::TypeArray<char>(image.Data().At(0), 4)[std::size_t(-1)] = 'b';
  const std::string view = " &__cdecl Vek::Chart::Library::VolumeImage::TypeArray<";
  const auto report = [&view](const std::string& p_type) {
    return "\"p_channel < _channels\" - " + p_type + view + p_type + ">::operator [](const unsigned __int64)";
  };
  EXPECT_EQ(reports.Texts(), (Texts{report("float"), report("float"), report("char")}));
}

TEST(VolumeImage, VoxelsThatAreNotThereAreReported) {
  const std::string at = "unsigned char *__cdecl Vek::Chart::Library::VolumeImageData::At(unsigned __int64)";
  const std::string expression = "\"p_index*_voxelSizeBytes < _rawBytes.size()\" - ";
  VolumeImage image(VolumeImage::Float4, 1, 1, 2);
  image.Bytes().assign(31, 9); // the second voxel lost a byte
  const auto check = [&](VolumeImageData& p_data, std::uint64_t p_index) {
    const ReportCapture reports;
    unsigned char* const voxel = p_data.At(p_index);
    EXPECT_EQ(Voxels(voxel, voxel + 16), Voxels(16)) << p_index;
    voxel[15] = 1;
    EXPECT_EQ(std::as_const(p_data).At(p_index)[15], 0) << p_index;
    EXPECT_EQ(reports.Texts(), (Texts{expression + at, expression + "const " + at + " const"})) << p_index;
  };
  check(image.Data(), 1);
  check(image.Data(), std::uint64_t{1} << 60); // times 16 it wraps to 0
  check(VolumeImage().Data(), 0);
}

TEST(VolumeImage, LoadsTextArrays) {
  Check("TextArray 2 1 1 1\n1.0 0.5\n", "2x1x1 255 127");
  Check("TextArray 2 1 3 2 0 1 2 3 4 5 6 7 8 9 10 51", "2x3x2 0 5 10 15 20 25 30 35 40 45 50 255");
  Check("TextArray 6 1 1 1\t1-1+1.5.5.25", "6x1x1 170 0 255 85 42 0", {Failed});
  Check(" \nTextArray\t3\v1\f1\r1 \r\n\t\v\f1e0\n.5E+0 \n\n 25e-2", "3x1x1 255 127 63");
  // Negative values, zeros, and maxima that map to less than 255.
  Check("TextArray 2 1 1 1 -4 -2", "2x1x1 255 255");
  Check("TextArray 2 1 1 1 0 -1", "2x1x1 0 0");
  Check("TextArray 3 1 1 1 -0 0 -1", "3x1x1 0 0 255");
  for (const bool negative : {true, false}) { // the sign of the first zero
    std::string numbers, voxels;
    for (int i = 0; i < 70; ++i) {
      numbers += i == 5 ? (negative ? " -0" : " 0") : i == 34 ? (negative ? " 0" : " -0") : " -1";
      voxels += i != 5 && i != 34 && negative ? " 255" : " 0";
    }
    Check("TextArray 70 1 1 1" + numbers, "70x1x1" + voxels);
  }
  Check("TextArray 2 1 1 1 41 0", "2x1x1 254 0");
  Check("TextArray 1 1 1 1", "1x1x1 0", {Failed});
  // Numbers that cannot be read end the reading.
  Check("TextArray 3 1 1 1 1 1e39 1", "3x1x1 0 254 0", {Failed, Failed});
  Check("TextArray 2 1 1 1 -1e39", "2x1x1 0 0", {Failed, Failed});
  Check("TextArray 2 1 1 1 1e-60 1", "2x1x1 0 255");
  Check("TextArray 4 1 1 1 1 x 1 1", "4x1x1 255 0 0 0", {Failed, Failed, Failed});
  Check("TextArray 2 1 1 1 1 0x1", "2x1x1 255 0");
  Check("TextArray 2 1 2 1 -1 -2", "2x2x1 0 0 0 0", {Failed, Failed});
  Check("TextArray 2 1 1 1 1 " + std::string(5000000, '1'), "2x1x1 255 0", {Failed});
  Check("TextArray 2 2 1 1 1 4 2 3", "2x1x1 63 127", {ManyChannels});
  Check("TextArray 3 2 1 1 4 1 4", "3x1x1 255 255 0", {Failed, Failed, Failed, ManyChannels});
  Check("textarray 1 1 1 1 1", "1x1x1 255", {NoHeader});
  Check("TextArray 1 1 1 1 1 2 3", "1x1x1 255");
}

TEST(VolumeImage, RefusesHeaders) {
  Check("", "none", {NoHeader, NoSizes});
  Check("TextArray", "none", {NoSizes});
  Check("TextArray 1 1 1.5 1 1", "none", {NoSizes});
  Check("TextArray -1 1 -1 1 1", "none", {NoSizes});
  Check("TextArray 1 1 1 99999999999 1", "none", {NoSizes});
  Check("TextArray 2147483647 2147483647 2147483647 2147483647 1", "none", {SizesOverflow});
  Check("TextArray 65536 65536 65536 32768 1", "none", {SizesOverflow}); // 2^63
  Check("TextArray 32768 32768 32768 32768 1", "none", {FileTooShort});
  Check("TextArray 67108865 1 1 1 1", "none", {FileTooShort});
  // Words and blanks without an end, and sizes across the bound.
  Check(std::string(65536 - 8, ' ') + "TextArray 1 1 1 1 1", "none", {NoHeader, NoSizes});
  Check("TextArray" + std::string(65536 - 16, ' ') + "1 1 1 12 1", "none", {NoSizes});
  Check("TextArray" + std::string(65536 - 16, ' ') + "1 1 1 1 1", "none", {NoSizes});
  Check("TextArray" + std::string(65536 - 17, ' ') + "1 1 1 1 1", "1x1x1 255");
}

TEST(VolumeImage, ReportsNameTheFileAndTheNumber) {
  const TempFolder folder;
  const auto details = [&folder](const std::string& p_text) {
    const ReportCapture reports;
    const std::string path = folder.Write("x", p_text);
    VolumeImage::LoadFromFile(vekfile::filepath(path), VolumeImage::TextArray);
    Texts all = reports.Details();
    for (std::string& detail : all)
      detail.erase(0, path.size());
    return all;
  };
  EXPECT_EQ(details("Text\n2 1 1 1\n\n 1\n\n 1.5x"), Texts{", found \"Text\""});
  EXPECT_EQ(details("TextArray\n3 1 1 1\n\n 1\n x2 3"),
            (Texts{":5, found \"x2 3\", index 1, count 3", ":5, found \"x2 3\", index 2, count 3"}));
  EXPECT_EQ(details("TextArray 1 1 1 1" + std::string(1000, '\n') + "x"),
            Texts{":1001, found \"x\", index 0, count 1"});
  EXPECT_EQ(details("TextArray 67108865 1 1 1"), Texts{":1, count 67108865"});
  EXPECT_EQ(details("TextArray 100 1 100 2 1").size(), 1000u); // reports of missing numbers end
}

TEST(VolumeImage, LoadsFiles) {
  const TempFolder folder;
  const auto load = [](const std::string& p_path, int p_type) {
    return Describe(VolumeImage::LoadFromFile(vekfile::filepath(p_path), static_cast<VolumeImage::FileType>(p_type)));
  };
  const ReportCapture reports;
  EXPECT_EQ(load(folder.Write("x", "TextArray 1 1 2 1 1 2"), 0), "1x2x1 127 255");
  EXPECT_EQ(reports.Texts(), Texts{});

  EXPECT_EQ(load(folder.Path() / "missing", 0), "none");
  EXPECT_EQ(load("", 0), "none");
  const std::string missing = "\"vekfile::fileexists(p_filename)\" - " + Signature::Load;
  const std::string invalid = "\"p_filename.valid()\" - " + Signature::Load;
  EXPECT_EQ(reports.Texts(), (Texts{missing, NoHeader, NoSizes, invalid, missing, NoHeader, NoSizes}));

  for (const int type : {1, -1}) {
    const ReportCapture others;
    EXPECT_EQ(load(folder.Path() / "x", type), "none");
    const std::string& signature = Signature::LoadFromFile;
    EXPECT_EQ(others.Texts(), (Texts{signature + " @line302", "\"loader\" - " + signature}));
  }
}

namespace {

/// The bytes of these positive numbers.
Voxels Scaled(const Texts& p_numbers) {
  std::vector<float> values;
  for (const std::string& number : p_numbers)
    values.push_back(std::strtof(number.c_str(), nullptr));
  const float scale = static_cast<float>(1.0 / double(*std::max_element(values.begin(), values.end())));
  Voxels voxels;
  for (const float value : values)
    voxels.push_back(static_cast<unsigned char>(double(value * scale) * 255.0));
  return voxels;
}

} // namespace

TEST(VolumeImage, NumbersRoundLikeAStreamInAnyWindow) {
  std::mt19937 random(1);
  Texts numbers;
  const auto add = [&](double p_value) {
    char text[80];
    std::snprintf(text, sizeof text, random() % 2 == 0 ? "%.*f" : "%.*e", int(random() % 30), p_value);
    numbers.push_back(std::string(random() % 3, '0') + text);
  };
  for (int i = 0; i < 40000; ++i) // the largest grows all along
    add(0.9 / 40000 * i + random() % 1000 / 10000.0);
  numbers.push_back("1");
  while (numbers.size() < 79999) { // at a step from one byte to the next, and half a bit below it
    const float step = static_cast<float>(1 + random() % 254) / 255.0f;
    add(double(step));
    add((double(step) + double(std::nextafterf(step, 0.0f))) / 2);
  }
  numbers.push_back(std::string(3000000, '0') + "1");
  std::string text = "TextArray " + std::to_string(numbers.size()) + " 1 1 1";
  for (const std::string& number : numbers)
    text += std::string(1 + random() % 40, random() % 9 == 0 ? '\n' : ' ') + number;
  std::istringstream stream(text);
  const Voxels voxels = VolumeImage::LoadFromStream(stream, VolumeImage::TextArray)->Bytes(),
               expected = Scaled(numbers);
  ASSERT_EQ(voxels.size(), expected.size());
  for (std::size_t i = 0; i < voxels.size(); ++i)
    ASSERT_EQ(voxels[i], expected[i]) << numbers[i];
}
