#include "library/ColorMap.h"
#include "library/NamedColors.h"
#include "tests/support/Test.h"

using Colors = std::vector<QColor>;

namespace {


using ColorMapCalls = RecordingScopeFixture;
using ColorMapPixels = PixelScopeFixture;

const QColor Red(255, 0, 0), Green(0, 255, 0), Blue(0, 0, 255), Glass(200, 100, 50, 128);

/// So many colours, all different.
Colors Numbered(int p_count) {
  Colors colors;
  for (int i = 0; i < p_count; ++i)
    colors.push_back(QColor(i >> 8, i & 255, 7));
  return colors;
}

std::vector<QRgb> Texels(ColorMap p_map) {
  const QImage& image = p_map.GetImage();
  std::vector<QRgb> texels;
  for (int x = 0; x < image.width(); ++x)
    texels.push_back(image.pixel(x, 0));
  return texels;
}

const std::string ColorList = "const class std::vector<class QColor,class std::allocator<class QColor> > &";
const std::string WeightList = "const class std::vector<double,class std::allocator<double> > &";
const std::string Class = "Vek::Chart::Library::ColorMap::", Style = ",enum " + Class + "Style";
const std::string InConstructor = " - __cdecl " + Class + "ColorMap(" + ColorList + "," + WeightList + Style + ")";
const std::string EmptyList = "\"size > 0\" - void __cdecl " + Class + "CreateLinearMap(" + ColorList + Style + ")";
const std::string EmptyToo = "\"size > 0\" - void __cdecl " + Class + "CreateNonLinearMap(" + ColorList + "," +
                             WeightList + Style + ",unsigned int)";
const std::string SizeMismatch = "\"size == p_weightings.size()\"" + InConstructor;
const std::string BadWeight =
    "WARNING: \"(p_weightings[i] >= 0) && \"Invalid color weight specified.\"\"" + InConstructor + " @lineN";

} // namespace

TEST(ColorMap, MakesBandsOfTheUsableWeights) {
  const Colors two{Red, Blue}, three{Red, Green, Blue};
  const struct {
    const char* name;
    Colors colors;
    Doubles weights;
    std::vector<std::pair<int, QColor>> bands;
    Doubles kept;
    Lines reports;
  } cases[] = {
      // 2 / (4 / 4093) = 2046.5
      {"a half is rounded up", three, {2, 1, 1}, {{2048, Red}, {1024, Green}, {1024, Blue}}, {2, 1, 1}, {}},
      // 0.5 / (1.5 / 4094) = 1364.67, 2729.33
      {"one to two", two, {0.5, 1}, {{1366, Red}, {2730, Blue}}, {0.5, 1}, {}},
      {"a hair still has a texel", two, {1e-9, 1}, {{1, Red}, {4095, Blue}}, {1e-9, 1}, {}},
      {"zero drops the colour", three, {0, 1, 1}, {{2048, Green}, {2048, Blue}}, {1, 1}, {}},
      {"one colour", {Glass}, {0.25}, {{1, Glass}}, {}, {}},
      {"no weight at all", two, {0, 0}, {{2048, Red}, {2048, Blue}}, {1, 1}, {}},
      {"negative", three, {-1, 2, 2}, {{2048, Green}, {2048, Blue}}, {2, 2}, {BadWeight}},
      {"all bad", two, {NaN, -Infinity}, {{2048, Red}, {2048, Blue}}, {1, 1}, {BadWeight, BadWeight}},
      {"too few", three, {1, 1}, {{2048, Red}, {2048, Green}}, {1, 1}, {SizeMismatch}},
      {"too many", three, {0, 1, 1, -5}, {{2048, Green}, {2048, Blue}}, {1, 1}, {SizeMismatch}},
      {"no colours", {}, {}, {}, {}, {EmptyList, EmptyToo}},
      {"weights only", {}, {1}, {}, {}, {SizeMismatch, EmptyList, EmptyToo}},
      {"an infinite weight", two, {Infinity, 1}, {{1, Red}, {1, Blue}}, {Infinity, 1}, {}},
      {"an infinite sum", two, {1.7e308, 1.7e308}, {{1, Red}, {1, Blue}}, {1.7e308, 1.7e308}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ReportCapture reports;
    const ColorMap map(c.colors, c.weights, ColorMap::Discrete);
    std::vector<QRgb> expected;
    for (const auto& [count, color] : c.bands)
      expected.insert(expected.end(), static_cast<std::size_t>(count), color.rgba());
    EXPECT_EQ(Texels(map), expected);
    EXPECT_EQ(map.Weightings(), c.kept);
    EXPECT_EQ(static_cast<std::size_t>(map.Size()), expected.size());
    Lines texts; // with N for the line number at the end of a warning
    for (const std::string& text : reports.Texts())
      texts.push_back(std::regex_replace(text, std::regex("@line[0-9]+$"), "@lineN"));
    EXPECT_EQ(texts, c.reports);
  }
  EXPECT_EQ(ColorMap({Red, Glass}, ColorMap::Style(7)).Color(2047), Red) << "any other style makes bands";
}

TEST(ColorMap, IsAsWideAsTheRoundedBandsAllow) {
  const double tiny = std::numeric_limits<double>::denorm_min(), huge = std::numeric_limits<double>::max();
  const std::pair<ColorMap, int> cases[] = {
      {{Numbered(5), ColorMap::Discrete}, 4095},
      {{Numbered(6), ColorMap::Discrete}, 4096}, // 4098, scaled
      {{Numbered(4097), ColorMap::Discrete}, 4096},
      {{{Glass}, ColorMap::Interpolated}, 1},
      {{Numbered(4), ColorMap::Interpolated}, 4096},    // 6 half weights of 683, scaled
      {{Numbered(2049), ColorMap::Interpolated}, 4096}, // no texel left to share out
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
    Doubles weights;
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
  Colors stripes;
  for (int i = 0; i < 8192; ++i)
    stripes.push_back(i % 2 == 0 ? Glass : QColor(0, 0, 0, 128));
  const ColorMap mixed(stripes, ColorMap::Discrete);
  for (int x = 0; x < 4096; ++x) // translucent colours do not turn dark
    ASSERT_TRUE(SameColor(mixed.Color(x).rgba(), QColor(100, 50, 25, 128), 2)) << x;
}

TEST(ColorMap, LooksUpByNumberAndByValue) {
  const Colors colors = Numbered(4096);
  const ColorMap full(colors, ColorMap::Discrete), odd(Numbered(4095), ColorMap::Discrete);
  const std::tuple<int, std::size_t, std::size_t> numbers[] = {
      {4094, 4094, 4094}, {4095, 4095, 0}, {4096, 0, 1}, {-1, 4095, 255}};
  for (const auto& [index, inFull, inOdd] : numbers) {
    EXPECT_EQ(full.Color(index), colors[inFull]) << index;
    EXPECT_EQ(odd.Color(index), colors[inOdd]) << index;
  }
  const std::pair<double, std::size_t> values[] = {
      {-0.0, 0},       {-3, 0},     {-Infinity, 0}, {NaN, 0},  {0.9999 / 4095, 0},
      {1.0 / 4095, 1}, {0.5, 2047}, {1, 4095},      {Infinity, 4095}, {std::nextafter(1.0, 0.0), 4094}};
  for (const auto& [value, texel] : values)
    EXPECT_EQ(full.Color(value), colors[texel]) << value;

  // Every integer type picks the look-up by number.
  EXPECT_EQ(full.Color(-1L), colors[4095]);
  EXPECT_EQ(full.Color((std::uint64_t{1} << 32) + 5), colors[5]);
  EXPECT_EQ(full.Color(0.5f), colors[2047]);
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
  EXPECT_EQ(ColorMap::GenerateWeightList({1}, -1), Doubles());
  EXPECT_EQ(ColorMap::GenerateWeightList({}, 3), (Doubles{1, 1, 1}));
  EXPECT_EQ(ColorMap::GenerateWeightList({-4, 8}, 4), (Doubles{-2, -2, 4, 4}));
  EXPECT_EQ(ColorMap::GenerateWeightList({1, 2, 4, 8, 16}, 2), (Doubles{5, 26}));
  for (unsigned int seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    const int n = 1 + static_cast<int>(random() % 40), count = 1 + static_cast<int>(random() % 40);
    Doubles weights, parts; // an output is n parts
    for (int i = 0; i < n; ++i) {
      weights.push_back(random() % 1000);
      parts.insert(parts.end(), static_cast<std::size_t>(count), weights.back() / count);
    }
    const Doubles result = ColorMap::GenerateWeightList(weights, count);
    ASSERT_EQ(result.size(), static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k)
      ASSERT_NEAR(result[static_cast<std::size_t>(k)],
                  std::accumulate(parts.begin() + k * n, parts.begin() + (k + 1) * n, 0.0), 1e-8)
          << "seed " << seed << ", output " << k;
  }
}

TEST_F(ColorMapCalls, UploadsOnceForAllCopiesAndSetsItsStateAtEachBind) {
  const ColorMap map({Glass, Red, Blue}, ColorMap::Discrete);
  const std::string state =
      TexParameters("2D", {"WRAP_S, GL_CLAMP_TO_EDGE", "WRAP_T, GL_CLAMP_TO_EDGE", "MIN_FILTER, GL_NEAREST",
                           "MAG_FILTER, GL_NEAREST", "BASE_LEVEL, 0", "MAX_LEVEL, 0"}) +
      "Enable(GL_TEXTURE_2D); Disable(GL_TEXTURE_GEN_S); Disable(GL_TEXTURE_GEN_T)";
  map(gl, RGL_TEXTURE0 + 3);
  EXPECT_EQ(Changes(), Calls("ActiveTexture(GL_TEXTURE3); GenTextures(1, [1001]); BindTexture(GL_TEXTURE_2D, 1001); "
                             "PixelStorei(GL_UNPACK_ALIGNMENT, 1); "
                             "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4095, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr); " +
                             state));
  recorder.Clear();
  ColorMap{map}(gl, RGL_TEXTURE0);
  EXPECT_EQ(Changes(), Calls("ActiveTexture(GL_TEXTURE0); BindTexture(GL_TEXTURE_2D, 1001); " + state));

  const ReportCapture reports;
  const ColorMap empty(Colors{}, ColorMap::Interpolated);
  EXPECT_EQ(empty.Color(3).rgba() | empty.Color(0.5).rgba(), 0u);
  recorder.Clear();
  empty(gl, RGL_TEXTURE0);
  EXPECT_EQ(recorder.LinesOf({"GenTextures", "TexImage2D"}), Lines{"GenTextures(1, [1002])"});
}

TEST(ColorMap, IsMadeByName) {
  for (const std::string& name : NamedColors::Names()) {
    EXPECT_EQ(Texels(ColorMap::Named(name)), Texels({NamedColors::Colors(name), ColorMap::Interpolated})) << name;
    EXPECT_EQ(ColorMap::Named(name, ColorMap::Discrete).Color(0.0), NamedColors::Colors(name).front()) << name;
  }
  const ReportCapture reports;
  EXPECT_EQ(ErrorOf<std::invalid_argument>([] { ColorMap::Named("jet"); }),
            "colour map \"jet\" is unknown; known are viridis, plasma, inferno, magma, cividis, grey, coolwarm");
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(ColorMapPixels, BindsWithItsEnvironmentAndRestoresTheState) {
  const ColorMap map({Red, Green}, ColorMap::Discrete);
  gl->Color(Blue);
  const std::pair<Texture::Environment, QColor> cases[] = {
      {Texture::Modulate, Qt::black}, {Texture::Decal, Red}, {Texture::Replace, Red}};
  for (const auto& [environment, expected] : cases) {
    {
      const auto bound = map.Bind(gl, RGL_TEXTURE0, environment);
      DrawTexturedSquare(gl);
    }
    EXPECT_EQ(PixelAt(Image(), 9, 6), expected.rgba()) << environment;
    int binding = -1;
    gl->GetIntegerv(RGL_TEXTURE_BINDING_2D, &binding);
    EXPECT_EQ(binding, 0);
    EXPECT_FALSE(gl->IsEnabled(RGL_TEXTURE_2D));
    map(gl, RGL_TEXTURE0); // in the host's environment, which modulates
    DrawTexturedSquare(gl);
    EXPECT_EQ(PixelAt(Image(), 9, 6), QColor(Qt::black).rgba()) << environment;
    gl->BindTexture(RGL_TEXTURE_2D, 0);
    gl->Disable(RGL_TEXTURE_2D);
  }
  int unit = -1;
  {
    const auto bound = map.Bind(gl, RGL_TEXTURE0 + 1);
    gl->GetIntegerv(RGL_ACTIVE_TEXTURE, &unit);
    EXPECT_EQ(unit, static_cast<int>(RGL_TEXTURE0) + 1);
  }
  gl->GetIntegerv(RGL_ACTIVE_TEXTURE, &unit);
  EXPECT_EQ(unit, static_cast<int>(RGL_TEXTURE0));
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
      EXPECT_TRUE(SameColor(PixelAt(image, x, 6), expected, 1)) << x;
    }
  }
}
