#include "library/ColorMap.h"
#include "tests/support/Test.h"

using Colors = std::vector<QColor>;
using Weights = std::vector<double>;

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

using ColorMapCalls = RecordingScopeFixture;
using ColorMapPixels = PixelScopeFixture;

const QColor Red(255, 0, 0), Green(0, 255, 0), Blue(0, 0, 255), Glass(200, 100, 50, 128);

/// Colours that tell their number.
Colors Numbered(int p_count) {
  Colors colors;
  for (int i = 0; i < p_count; ++i)
    colors.push_back(QColor(i >> 8, i & 255, 7));
  return colors;
}
int Number(const QColor& p_color) {
  return p_color.blue() == 7 ? p_color.red() << 8 | p_color.green() : -1;
}

std::vector<QRgb> Texels(ColorMap p_map) {
  const QImage& image = p_map.GetImage();
  std::vector<QRgb> texels;
  for (int x = 0; x < image.width(); ++x)
    texels.push_back(image.pixel(x, 0));
  return texels;
}

/// The gradient as bands of equal texels, "r3 b4": letters of the colours above ('x' is glass), '?' for any other.
std::string Bands(const ColorMap& p_map) {
  const std::map<QRgb, char> letters{{Red.rgba(), 'r'}, {Green.rgba(), 'g'}, {Blue.rgba(), 'b'}, {Glass.rgba(), 'x'}};
  const std::vector<QRgb> texels = Texels(p_map);
  std::string bands;
  for (auto band = texels.begin(); band != texels.end();) {
    const auto end = std::find_if(band, texels.end(), [&](QRgb p_texel) { return p_texel != *band; });
    const auto letter = letters.find(*band);
    bands += (bands.empty() ? "" : " ") + std::string(1, letter == letters.end() ? '?' : letter->second) +
             std::to_string(end - band);
    band = end;
  }
  return bands;
}

/// The reports, with N for the line number at the end of a warning.
Lines Reports(const ReportCapture& p_reports) {
  Lines texts;
  for (const std::string& text : p_reports.Texts())
    texts.push_back(std::regex_replace(text, std::regex("@line[0-9]+$"), "@lineN"));
  return texts;
}

const std::string InConstructor =
    " - __cdecl Vek::Chart::Library::ColorMap::ColorMap(const class std::vector<class QColor,class "
    "std::allocator<class QColor> > &,const class std::vector<double,class std::allocator<double> > &,enum "
    "Vek::Chart::Library::ColorMap::Style)";
const std::string EmptyList =
    "\"size > 0\" - void __cdecl Vek::Chart::Library::ColorMap::CreateLinearMap(const class std::vector<class "
    "QColor,class std::allocator<class QColor> > &,enum Vek::Chart::Library::ColorMap::Style)";
const std::string EmptyToo =
    "\"size > 0\" - void __cdecl Vek::Chart::Library::ColorMap::CreateNonLinearMap(const class std::vector<class "
    "QColor,class std::allocator<class QColor> > &,const class std::vector<double,class std::allocator<double> > "
    "&,enum "
    "Vek::Chart::Library::ColorMap::Style,unsigned int)";
const std::string SizeMismatch = "\"size == p_weightings.size()\"" + InConstructor;
const std::string BadWeight =
    "WARNING: \"(p_weightings[i] >= 0) && \"Invalid color weight specified.\"\"" + InConstructor + " @lineN";

} // namespace

TEST(ColorMap, MakesBandsOfTheUsableWeights) {
  const Colors two{Red, Blue}, three{Red, Green, Blue};
  const struct {
    const char* name;
    Colors colors;
    Weights weights;
    std::string bands;
    Weights kept;
    Lines reports;
  } cases[] = {
      {"a half is rounded up", three, {2, 1, 1}, "r2048 g1024 b1024", {2, 1, 1}, {}}, // 2 / (4 / 4093) = 2046.5
      {"one to two", two, {0.5, 1}, "r1366 b2730", {0.5, 1}, {}}, // 0.5 / (1.5 / 4094) = 1364.67, 2729.33
      {"a hair still has a texel", two, {1e-9, 1}, "r1 b4095", {1e-9, 1}, {}},
      {"zero drops the colour", three, {0, 1, 1}, "g2048 b2048", {1, 1}, {}},
      {"negative zero is zero", three, {1, 1, -0.0}, "r2048 g2048", {1, 1}, {}},
      {"one colour", {Glass}, {0.25}, "x1", {}, {}},
      {"one colour left", {Red, Glass}, {0, 2}, "x1", {}, {}},
      {"no weight at all", two, {0, 0}, "r2048 b2048", {1, 1}, {}},
      {"negative", three, {-1, 2, 2}, "g2048 b2048", {2, 2}, {BadWeight}},
      {"NaN", three, {1, NotANumber, 1}, "r2048 b2048", {1, 1}, {BadWeight}},
      {"all unusable", two, {NotANumber, -Infinity}, "r2048 b2048", {1, 1}, {BadWeight, BadWeight}},
      {"too few", three, {1, 1}, "r2048 g2048", {1, 1}, {SizeMismatch}},
      {"too many", three, {0, 1, 1, -5}, "g2048 b2048", {1, 1}, {SizeMismatch}},
      {"no weights", three, {}, "r1365 g1365 b1365", {1, 1, 1}, {SizeMismatch}},
      {"no colours", {}, {}, "", {}, {EmptyList, EmptyToo}},
      {"weights only", {}, {1}, "", {}, {SizeMismatch, EmptyList, EmptyToo}},
      {"an infinite weight", two, {Infinity, 1}, "r1 b1", {Infinity, 1}, {}},
      {"an infinite sum", two, {1.7e308, 1.7e308}, "r1 b1", {1.7e308, 1.7e308}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ReportCapture reports;
    const ColorMap map(c.colors, c.weights, ColorMap::Discrete);
    EXPECT_EQ(Bands(map), c.bands);
    EXPECT_EQ(map.Weightings(), c.kept);
    EXPECT_EQ(static_cast<std::size_t>(map.Size()), Texels(map).size());
    EXPECT_EQ(Reports(reports), c.reports);
  }
  EXPECT_EQ(Bands({{Red, Glass}, ColorMap::Style(7)}), "r2048 x2048") << "any other style makes bands";
  EXPECT_EQ(Bands({{Glass}, ColorMap::Interpolated}), "x1");
}

TEST(ColorMap, IsAsWideAsTheRoundedBandsAllow) {
  const double tiny = std::numeric_limits<double>::denorm_min(), huge = std::numeric_limits<double>::max();
  const std::pair<ColorMap, int> cases[] = {
      {{Numbered(5), ColorMap::Discrete}, 4095},
      {{Numbered(6), ColorMap::Discrete}, 4096}, // 4098, scaled
      {{Numbered(1000), ColorMap::Discrete}, 4000},
      {{Numbered(4097), ColorMap::Discrete}, 4096},
      {{Numbered(4), ColorMap::Interpolated}, 4096},    // 6 half weights of 683, scaled
      {{Numbered(2049), ColorMap::Interpolated}, 4096}, // no texel left to share out
      {{Numbered(9000), ColorMap::Interpolated}, 4096},
      {{Numbered(2), {Infinity, Infinity}, ColorMap::Interpolated}, 2},
      {{Numbered(3), {huge, huge, huge}, ColorMap::Interpolated}, 4},
      {{Numbered(2), {tiny, tiny}, ColorMap::Interpolated}, 2}, // nothing is left of a half
      {{Numbered(2), {tiny, tiny}, ColorMap::Discrete}, 4096},  // no unit: both want all
  };
  for (const auto& c : cases)
    EXPECT_TRUE(c.first.Size() == c.second && Texels(c.first).size() == std::size_t(c.second)) << &c - cases;
}

TEST(ColorMap, BlendsFromEachColourToTheNext) {
  const struct {
    Colors colors;
    Weights weights;
    std::vector<std::pair<int, QColor>> texels;
  } cases[] = {
      {{Qt::black, Qt::white},
       {1, 1}, // one step is 255 / 4096 levels
       {{0, Qt::black}, {8, Qt::black}, {9, QColor(1, 1, 1)}, {4087, QColor(254, 254, 254)}, {4088, Qt::white}}},
      {{QColor(200, 0, 0, 200), QColor(100, 100, 60, 100), QColor(0, 200, 100, 200)},
       {1, 1, 1}, // 2048 texels each
       {{1024, QColor(150, 50, 30, 150)}, {2048, QColor(100, 100, 60, 100)}, {3072, QColor(50, 150, 80, 150)}}},
      {{Red, Green, Blue},
       {3, 1, 1}, // 2047 + 683 texels, then 683 + 683
       {{1365, QColor(128, 128, 0)}, {2730, Green}, {3413, QColor(0, 128, 128)}, {4095, QColor(0, 0, 255)}}},
  };
  for (const auto& c : cases) {
    const ColorMap map(c.colors, c.weights, ColorMap::Interpolated);
    ASSERT_EQ(map.Size(), 4096);
    for (const auto& [index, expected] : c.texels)
      EXPECT_EQ(map.Color(index), expected.toRgb()) << &c - cases << ", texel " << index;
  }
}

TEST(ColorMap, ScalesWideGradientsSmoothly) {
  // Six bands of 683 texels; their middles keep the colour.
  const Colors six{Red, Green, Blue, Qt::white, Qt::black, Red};
  const ColorMap bands(six, ColorMap::Discrete);
  for (std::size_t i = 0; i < six.size(); ++i)
    EXPECT_EQ(bands.Color((i + 0.5) / 6), six[i]) << i;

  Colors stripes;
  for (int i = 0; i < 8192; ++i)
    stripes.push_back(i % 2 == 0 ? Qt::black : Qt::white);
  const ColorMap mixed(stripes, ColorMap::Discrete);
  for (int x = 0; x < 4096; ++x)
    ASSERT_NEAR(mixed.Color(x).red(), 128, 1) << x;

  ColorMap translucent(Colors(6, Glass), ColorMap::Discrete);
  EXPECT_EQ(translucent.GetImage().format(), QImage::Format_ARGB32);
  for (const QRgb texel : Texels(translucent))
    ASSERT_TRUE(SameColor(texel, Glass, 1)) << "translucent colours do not turn dark";
}

TEST(ColorMap, LooksUpByNumberAndByValue) {
  const ColorMap full(Numbered(4096), ColorMap::Discrete), odd(Numbered(4095), ColorMap::Discrete);
  const std::array<int, 3> numbers[] = {{4094, 4094, 4094}, {4095, 4095, 0}, {4096, 0, 1}, {-1, 4095, 255}};
  for (const auto& [index, in_full, in_odd] : numbers) {
    EXPECT_EQ(Number(full.Color(index)), in_full) << index;
    EXPECT_EQ(Number(odd.Color(index)), in_odd) << index;
  }
  const std::pair<double, int> values[] = {
      {-0.0, 0},       {-3, 0},     {-Infinity, 0}, {NotANumber, 0},  {0.9999 / 4095, 0},
      {1.0 / 4095, 1}, {0.5, 2047}, {1, 4095},      {Infinity, 4095}, {std::nextafter(1.0, 0.0), 4094}};
  for (const auto& [value, texel] : values)
    EXPECT_EQ(Number(full.Color(value)), texel) << value;

  // Every integer type picks the look-up by number.
  EXPECT_EQ(Number(full.Color(-1L)), 4095);
  EXPECT_EQ(Number(full.Color(short{2})), 2);
  EXPECT_EQ(Number(full.Color((std::uint64_t{1} << 32) + 5)), 5);
  EXPECT_EQ(Number(full.Color(0.5f)), 2047);
  EXPECT_EQ(ColorMap({Glass}, ColorMap::Discrete).Color(17), Glass);
}

TEST(GenerateColorList, SpreadsTheListEvenly) {
  const auto rgb = [](int p_r, int p_g, int p_b, int p_a) { return QColor::fromRgba64(p_r, p_g, p_b, p_a); };
  const QColor deep = rgb(1000, 2001, 40003, 50005); // not a multiple of 257: 16 bits a channel
  const QColor hsv = QColor::fromHsv(10, 200, 100);
  const std::tuple<Colors, int, Colors> cases[] = {
      {{Red}, -3, {}},
      {Colors(), 2, {Qt::white, Qt::white}},
      {{deep, hsv}, 2, {deep, hsv}},
      {{deep, Red, Green}, 1, {deep}},
      {{deep}, 3, {deep, deep, deep}},
      {{Red, Green, Blue, Qt::white, Qt::black}, 3, {Red, Blue, Qt::black}},
      {{Red, deep, Blue}, 5, {Red, rgb(33268, 1001, 20002, 57770), deep, rgb(500, 1001, 52769, 57770), Blue}},
      {{Red, Blue}, 4, {Red, rgb(43690, 0, 21845, 65535), rgb(21845, 0, 43690, 65535), Blue}},
  };
  for (const auto& [colors, count, expected] : cases)
    EXPECT_EQ(ColorMap::GenerateColorList(colors, count), expected) << colors.size() << " to " << count;
}

TEST(GenerateWeightList, KeepsTheAreaUnderEachOutput) {
  EXPECT_EQ(ColorMap::GenerateWeightList({1}, -1), Weights());
  EXPECT_EQ(ColorMap::GenerateWeightList({}, 3), (Weights{1, 1, 1}));
  EXPECT_EQ(ColorMap::GenerateWeightList({-4, 8}, 4), (Weights{-2, -2, 4, 4}));
  EXPECT_EQ(ColorMap::GenerateWeightList({1, 2, 4, 8, 16}, 2), (Weights{5, 26}));
  for (unsigned int seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    const int n = 1 + static_cast<int>(random() % 40), count = 1 + static_cast<int>(random() % 40);
    Weights weights, sums{0};
    for (int i = 0; i < n; ++i) {
      weights.push_back(random() % 1000);
      sums.push_back(sums.back() + weights.back());
    }
    // The area left of a position, from the running sums.
    const auto area = [&](double p_position) {
      const auto whole = std::min(static_cast<std::size_t>(p_position), weights.size() - 1);
      return sums[whole] + (p_position - static_cast<double>(whole)) * weights[whole];
    };
    const Weights result = ColorMap::GenerateWeightList(weights, count);
    ASSERT_EQ(result.size(), static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k)
      ASSERT_NEAR(result[static_cast<std::size_t>(k)], area((k + 1.0) * n / count) - area(double(k) * n / count), 1e-8)
          << "seed " << seed << ", output " << k;
  }
}

TEST_F(ColorMapCalls, UploadsOnceForAllCopiesAndSetsItsStateAtEachBind) {
  const ColorMap map({Glass, Red, Blue}, ColorMap::Discrete);
  const Lines state = Calls("TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE); "
                            "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE); "
                            "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST); "
                            "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST); "
                            "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0); "
                            "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0); Enable(GL_TEXTURE_2D); "
                            "Disable(GL_TEXTURE_GEN_S); Disable(GL_TEXTURE_GEN_T)");
  recorder.Clear();
  map(gl, RGL_TEXTURE0 + 3);
  EXPECT_EQ(Changes(), Calls("ActiveTexture(GL_TEXTURE3); GenTextures(1, [1001]); BindTexture(GL_TEXTURE_2D, 1001); "
                             "PixelStorei(GL_UNPACK_ALIGNMENT, 1); "
                             "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4095, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)") +
                           state);
  std::vector<unsigned char> bytes;
  for (const QRgb texel : Texels(map))
    for (const int channel : {qRed(texel), qGreen(texel), qBlue(texel), qAlpha(texel)})
      bytes.push_back(static_cast<unsigned char>(channel));
  EXPECT_TRUE(recorder.FindTexture(1001)->levels.at(0).pixels == bytes);

  recorder.Clear();
  ColorMap{map}(gl, RGL_TEXTURE0);
  EXPECT_EQ(Changes(), Calls("ActiveTexture(GL_TEXTURE0); BindTexture(GL_TEXTURE_2D, 1001)") + state);
}

TEST_F(ColorMapCalls, AnEmptyMapIsTransparentAndUploadsNothing) {
  const ReportCapture reports;
  const ColorMap empty(Colors{}, ColorMap::Interpolated);
  EXPECT_EQ(empty.Color(3).rgba() | empty.Color(0.5).rgba(), 0u);
  empty(gl, RGL_TEXTURE0);
  EXPECT_EQ(recorder.LinesOf({"GenTextures"}).size(), 1u);
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}), Lines());
}

TEST_F(ColorMapPixels, DrawsTheTexelOfEachValue) {
  gl->Viewport(0, 0, 29, 14);
  const ColorMap maps[] = {{{Red, Green, Blue, Qt::white}, {1, 2, 3, 4}, ColorMap::Discrete},
                           {{Red, QColor(0, 90, 180)}, ColorMap::Interpolated}};
  for (const ColorMap& map : maps) {
    map(gl, RGL_TEXTURE0);
    gl->Color(Qt::white);
    DrawTexturedSquare(gl);
    const QImage image = Image();
    for (int x = 0; x < 29; ++x) {
      // GL takes the texel that the position lies in.
      const QColor expected = map.Color(static_cast<int>((x + 0.5) / 29 * map.Size()));
      for (const int y : {0, 6, 13})
        EXPECT_TRUE(SameColor(PixelAt(image, x, y), expected, 1)) << x << ", " << y;
    }
  }
}
