// Numbers in OBJ files, seen in loaded models, and locales, which no reader uses.

#include "library/HdrImage.h"
#include "library/ObjModel.h"
#include "library/VolumeImage.h"
#include "tests/support/Test.h"

#include <clocale>
#include <locale>

namespace {

boost::shared_ptr<ObjModel> Load(const std::string& p_text) {
  std::istringstream stream(p_text);
  return Library::LoadPolygonObj(stream);
}

/// The bits of a double, so that NaN and -0 compare.
std::uint64_t Bits(double p_value) {
  std::uint64_t bits;
  std::memcpy(&bits, &p_value, sizeof bits);
  return bits;
}

/// What is read, or nothing where the file is refused.
template <class Read>
auto IfValid(const Read& p_read) -> std::optional<decltype(p_read())> {
  try {
    return p_read();
  } catch (const boost::bad_lexical_cast&) {
    return {};
  }
}

/// Compares a number as a position, and as the number of a vertex, with boost::lexical_cast.
void Compare(const std::string& p_text) {
  const ReportCapture reports;
  const auto value = IfValid([&p_text] {
    const auto model = Load("v " + p_text + " 0 0");
    const double x = model->Vertices()->front().x;
    return std::isnan(x) ? x : model->Bounds().Min().x; // no box has NaN
  });
  const auto expected = IfValid([&p_text] { return boost::lexical_cast<double>(p_text); });
  ASSERT_EQ(value.has_value(), expected.has_value()) << p_text;
  ASSERT_TRUE(!value || Bits(*value) == Bits(*expected) || (std::isnan(*value) && std::isnan(*expected))) << p_text;
  ASSERT_EQ(IfValid([&p_text] { return int(Load("l " + p_text + " 1")->DefaultGroup()->indices.front() + 1u); }),
            IfValid([&p_text] { return boost::lexical_cast<int>(p_text); }))
      << p_text;
}

} // namespace

TEST(ObjNumbers, AcceptsNumbersLikeLexicalCast) {
  std::istringstream texts(
      "inf +inf -Inf iNFINITY infinit infinityx nan -nan NaN(abc) nan( nan() nan(x in n --1 +-1 -+1 "
      "1e+ 1E-5 1e5. 1.2.3 1,5 1f 1d0 0x1p3 1'000 1_0 \xc2\xa0"
      "1 1\x01 1# "
      "1e400 -1e400 1e-400 -1e-400 4.9e-324 2.4e-324 2.5e-324 1.7976931348623157e308 "
      "1.7976931348623159e308 1e99999999999999999999 1e-99999999999999999999 0e99999 "
      "0.000000000000000000000000000001 9007199254740993 9007199254740992 9007199254740991.5 "
      "0.9007199254740993 18446744073709551616 99999999999999999999 0000000000000000000000001.5 "
      "1.00000000000000000000000000000000000001 2147483647 2147483648 -2147483648 -2147483649 "
      "+2147483647 00000000000002147483647 4294967297 999999999 1000000000 -0 +0 -0.0");
  for (std::string text; texts >> text;)
    Compare(text);

  // Every short text of the characters that numbers are made of.
  std::vector<std::string> shorter = {""};
  for (std::size_t i = 0; shorter[i].size() < 5; ++i)
    for (const char c : std::string("+-.05e")) {
      shorter.push_back(shorter[i] + c);
      Compare(shorter.back());
    }
}

TEST(ObjNumbers, RoundsNumbersExactly) {
  const auto decimalText = [](std::mt19937& p_random) {
    const auto below = [&](unsigned int p_end) { return p_random() % p_end; };
    char text[64];
    const double value = std::ldexp(double(p_random()) * 4294967296.0 + double(p_random()), int(below(80)) - 100);
    const unsigned int form = below(4);
    if (form < 3) {
      const char* const formats[] = {"%.*f", "%.*g", "%.*e"};
      std::snprintf(text, sizeof text, formats[form], int(below(20)), below(2) ? value : -value);
      return std::string(text);
    }
    std::string digits; // up to 24 with a point anywhere
    for (unsigned int count = 1 + below(24); count != 0; --count)
      digits += char('0' + below(10));
    return digits.insert(below(unsigned(digits.size()) + 1), ".");
  };
  std::mt19937 random(1);
  for (int i = 0; i < 12000 && !testing::Test::HasFailure(); ++i)
    Compare(decimalText(random));
}

namespace {

void ExpectNumbersOfTheClassicLocale() {
  const auto model = Load("v 1.5 0.1e-400 -1.000\nv 2.5e0 0.12345678901234567 inf\nl 1 2\n");
  const ObjModel::VertexArray& vertices = *model->Vertices();
  EXPECT_EQ(vertices[0], (Ogl::Vec3<float>{1.5f, 0, -1}));
  EXPECT_EQ(vertices[1], (Ogl::Vec3<float>{2.5f, 0.12345678901234567f, INFINITY}));
  for (const char* text : {"v 1,5 0 0", "v 1,000.5 0 0", "v 0,1e-400 0 0", "v inf, 0 0", "l 1.000 1", "l 1,000 1"})
    EXPECT_THROW(Load(text), boost::bad_lexical_cast) << text;
  std::istringstream voxels("TextArray 4 1 1 1 1.000 0.5 1e-60 +.25");
  EXPECT_EQ(VolumeImage::LoadFromStream(voxels, VolumeImage::TextArray)->Bytes(),
            (std::vector<unsigned char>{255, 127, 0, 63}));
  std::istringstream picture("#?RADIANCE\n\n-Y 1 +X 1.000\n\1\2\3\4");
  EXPECT_EQ(HdrImage(picture).Width(), 1);
}

} // namespace

TEST(ObjNumbers, IgnoresTheGlobalLocale) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
  ExpectNumbersOfTheClassicLocale();
  std::locale::global(before);
}

TEST(ObjNumbers, IgnoresTheLocaleOfC) {
  // A locale made here: none but that of C needs to be installed.
  const TempFolder folder;
  std::string characters = "<escape_char> /\nCHARMAP\n";
  for (int c = 0; c < 128; ++c) {
    char line[16];
    std::snprintf(line, sizeof line, "<U%04X> /x%02x\n", c, c);
    characters += line;
  }
  const std::string map = folder.Write("map", characters + "END CHARMAP\n");
  const std::string source =
      folder.Write("source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
  const std::string made = folder.Path() / "comma";
  // Its status is that of the categories that are missing.
  std::ignore = std::system(("localedef --quiet --force -f " + map + " -i " + source + " " + made).c_str());
  setenv("LOCPATH", folder.Path().c_str(), 1);
  ASSERT_STREQ(std::setlocale(LC_NUMERIC, "comma"), "comma") << "made by localedef";
  EXPECT_EQ(std::strtod("1,5", nullptr), 1.5);
  ExpectNumbersOfTheClassicLocale();
  std::setlocale(LC_NUMERIC, "C");
  unsetenv("LOCPATH");
}
