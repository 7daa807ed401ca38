#include "library/ColorMap.h"
#include "tests/support/PixelFixture.h"
#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <string>

using namespace Vek::Chart;
using Library::ColorMap;
using Vek::Test::Lines;
using Vek::Test::ReportCapture;
using Colors = std::vector<QColor>;
using Weights = std::vector<double>;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

const QColor red(255, 0, 0), green(0, 255, 0), blue(0, 0, 255), glass(200, 100, 50, 128);

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

struct Band {
  QColor color;
  int length;
};
bool operator==(const Band& p_a, const Band& p_b) {
  return p_a.color == p_b.color && p_a.length == p_b.length;
}
void PrintTo(const Band& p_band, std::ostream* p_out) {
  *p_out << p_band.color.name(QColor::HexArgb).toStdString() << " x " << p_band.length;
}
/// The gradient as bands of equal texels.
std::vector<Band> Bands(const ColorMap& p_map) {
  std::vector<Band> bands;
  for (const QRgb texel : Texels(p_map)) {
    if (bands.empty() || bands.back().color != QColor::fromRgba(texel))
      bands.push_back({QColor::fromRgba(texel), 0});
    ++bands.back().length;
  }
  return bands;
}

// The gradient written down once more, plainly, with colours in 16 bits a channel.

std::vector<int> ModelCounts(const Weights& p_weights, int p_resolution) {
  double total = 0;
  for (const double weight : p_weights)
    total = total + weight;
  const double unit = total / (p_resolution - static_cast<int>(p_weights.size()));
  std::vector<int> counts;
  for (const double weight : p_weights)
    counts.push_back(static_cast<int>(std::floor(weight / unit + 0.5)) + 1);
  return counts;
}

int ModelChannel(int p_from, int p_to, double p_t) {
  const double fraction = p_from / 255.0 * (1 - p_t) + p_to / 255.0 * p_t;
  return static_cast<int>(std::lround(std::lround(fraction * 65535) / 257.0));
}
QRgb ModelBlend(const QColor& p_a, const QColor& p_b, double p_t) {
  return qRgba(ModelChannel(p_a.red(), p_b.red(), p_t), ModelChannel(p_a.green(), p_b.green(), p_t),
               ModelChannel(p_a.blue(), p_b.blue(), p_t), ModelChannel(p_a.alpha(), p_b.alpha(), p_t));
}

std::vector<QRgb> ModelTexels(const Colors& p_colors, const Weights& p_weights, bool p_interpolated) {
  std::vector<QRgb> texels;
  if (!p_interpolated) {
    const std::vector<int> counts = ModelCounts(p_weights, 4096);
    for (std::size_t i = 0; i < counts.size(); ++i)
      texels.insert(texels.end(), static_cast<std::size_t>(counts[i]), p_colors[i].rgba());
    return texels;
  }
  Weights halves;
  for (std::size_t i = 0; i < p_weights.size(); ++i)
    for (int side = 0; side < (i == 0 || i + 1 == p_weights.size() ? 1 : 2); ++side)
      halves.push_back(p_weights[i] / 2);
  const std::vector<int> counts = ModelCounts(halves, 4096);
  const double width = std::accumulate(counts.begin(), counts.end(), 0);
  for (std::size_t i = 0; i + 1 < p_colors.size(); ++i) {
    const int length = counts[2 * i] + counts[2 * i + 1];
    const double s = length / width;
    for (int j = 0; j < length; ++j)
      texels.push_back(ModelBlend(p_colors[i], p_colors[i + 1], (j * s) / (length * s)));
  }
  return texels;
}

const std::string in_constructor =
    " - __cdecl Vek::Chart::Library::ColorMap::ColorMap(const class std::vector<class QColor,class "
    "std::allocator<class QColor> > &,const class std::vector<double,class std::allocator<double> > &,enum "
    "Vek::Chart::Library::ColorMap::Style)";
const std::string empty_list =
    "\"size > 0\" - void __cdecl Vek::Chart::Library::ColorMap::CreateLinearMap(const class std::vector<class "
    "QColor,class std::allocator<class QColor> > &,enum Vek::Chart::Library::ColorMap::Style)";
const std::string size_mismatch = "\"size == p_weightings.size()\"" + in_constructor;

} // namespace

TEST(ColorMap, MakesBandsByWeight) {
  const struct {
    const char* name;
    ColorMap map;
    std::vector<Band> expected;
    Weights weightings;
  } cases[] = {
      {"two", {{red, blue}, ColorMap::Discrete}, {{red, 2048}, {blue, 2048}}, {1, 1}},
      {"three", {{red, green, blue}, ColorMap::Discrete}, {{red, 1365}, {green, 1365}, {blue, 1365}}, {1, 1, 1}},
      {"alpha is kept", {{glass, red}, ColorMap::Discrete}, {{glass, 2048}, {red, 2048}}, {1, 1}},
      {"any other style makes bands", {{red, blue}, ColorMap::Style(7)}, {{red, 2048}, {blue, 2048}}, {1, 1}},
      {"one colour", {{glass}, ColorMap::Interpolated}, {{glass, 1}}, {}},
      {"one weighted colour", {{glass}, {0.25}, ColorMap::Discrete}, {{glass, 1}}, {}},
      {"one colour left", {{red, glass}, {0, 2}, ColorMap::Discrete}, {{glass, 1}}, {}},
      // 2 / (4 / 4093) = 2046.5
      {"a half is rounded up",
       {{red, green, blue}, {2, 1, 1}, ColorMap::Discrete},
       {{red, 2048}, {green, 1024}, {blue, 1024}},
       {2, 1, 1}},
      // 0.5 / (1.5 / 4094) = 1364.67, 2729.33
      {"one to two", {{red, blue}, {0.5, 1}, ColorMap::Discrete}, {{red, 1366}, {blue, 2730}}, {0.5, 1}},
      {"a hair still has a texel", {{red, blue}, {1e-9, 1}, ColorMap::Discrete}, {{red, 1}, {blue, 4095}}, {1e-9, 1}},
      {"zero drops the colour",
       {{red, green, blue}, {0, 1, 1}, ColorMap::Discrete},
       {{green, 2048}, {blue, 2048}},
       {1, 1}},
      {"no weight at all", {{red, green}, {0, 0}, ColorMap::Discrete}, {{red, 2048}, {green, 2048}}, {1, 1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Bands(c.map), c.expected);
    EXPECT_EQ(c.map.Weightings(), c.weightings);
    EXPECT_EQ(static_cast<std::size_t>(c.map.Size()), Texels(c.map).size());
    EXPECT_EQ(ColorMap(c.map).GetImage().format(), QImage::Format_ARGB32);
    EXPECT_EQ(ColorMap(c.map).GetImage().height(), 1);
  }
}

TEST(ColorMap, IsAsWideAsTheRoundedBands) {
  const struct {
    ColorMap::Style style;
    int colors;
    int size;
  } cases[] = {
      {ColorMap::Discrete, 5, 4095},        {ColorMap::Discrete, 6, 4096},  // 4098, scaled
      {ColorMap::Discrete, 7, 4095},        {ColorMap::Discrete, 10, 4096}, // 4100, scaled
      {ColorMap::Discrete, 100, 4096},                                      // 4100, scaled
      {ColorMap::Discrete, 1000, 4000},     {ColorMap::Discrete, 3000, 3000},
      {ColorMap::Discrete, 4095, 4095},     {ColorMap::Discrete, 4097, 4096}, // one texel each, scaled
      {ColorMap::Interpolated, 3, 4096},                                      // four half weights of 1024
      {ColorMap::Interpolated, 4, 4096},                                      // 6 × 683, scaled
      {ColorMap::Interpolated, 2049, 4096},                                   // no texel left to share out
      {ColorMap::Interpolated, 2050, 4096},                                   // 4098 half weights, scaled
      {ColorMap::Interpolated, 9000, 4096},
  };
  for (const auto& c : cases) {
    const ColorMap map(Numbered(c.colors), c.style);
    EXPECT_EQ(map.Size(), c.size) << c.colors << " colours, style " << c.style;
    EXPECT_EQ(Texels(map).size(), static_cast<std::size_t>(c.size)) << c.colors << " colours, style " << c.style;
  }
}

TEST(ColorMap, BlendsBetweenNeighbours) {
  const ColorMap two({red, QColor(0, 0, 255, 0)}, ColorMap::Interpolated);
  ASSERT_EQ(two.Size(), 4096);
  for (int x = 0; x < 4096; ++x)
    ASSERT_EQ(two.Color(x).rgba(), ModelBlend(red, QColor(0, 0, 255, 0), x / 4096.0)) << x;

  // Half weights 0.5, 0.5, 0.5, 1 over 4096 texels: 819 + 819 and 819 + 1638.
  const ColorMap three({red, green, blue}, {1, 1, 2}, ColorMap::Interpolated);
  ASSERT_EQ(three.Size(), 1638 + 2457);
  EXPECT_EQ(three.Color(0), red);
  EXPECT_EQ(three.Color(819), QColor(128, 128, 0));
  EXPECT_EQ(three.Color(1638), green);
  EXPECT_EQ(three.Color(1638 + 819), QColor(0, 170, 85));
  EXPECT_EQ(three.Weightings(), (Weights{1, 1, 2}));
}

TEST(ColorMap, MatchesThePlainModelOnRandomLists) {
  int compared = 0;
  for (unsigned int seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    const std::size_t count = 2 + random() % (seed < 100 ? 8 : 300);
    Colors colors;
    Weights weights;
    for (std::size_t i = 0; i < count; ++i) {
      colors.push_back(QColor::fromRgba(random()));
      weights.push_back(std::ldexp(1 + random() % 1000, -static_cast<int>(random() % 12)));
    }
    for (const bool interpolated : {false, true}) {
      const std::vector<QRgb> expected = ModelTexels(colors, weights, interpolated);
      const ColorMap map(colors, weights, interpolated ? ColorMap::Interpolated : ColorMap::Discrete);
      ASSERT_EQ(static_cast<std::size_t>(map.Size()), std::min<std::size_t>(expected.size(), 4096)) << "seed " << seed;
      if (expected.size() <= 4096) {
        ASSERT_EQ(Texels(map), expected) << "seed " << seed << (interpolated ? " interpolated" : " discrete");
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 100);
}

TEST(ColorMap, ScalesWideGradientsSmoothly) {
  // Six bands of 683 texels; their middles keep the colour.
  const Colors six{red, green, blue, Qt::white, Qt::black, red};
  const ColorMap bands(six, ColorMap::Discrete);
  for (std::size_t i = 0; i < six.size(); ++i)
    EXPECT_EQ(bands.Color((i + 0.5) / 6), six[i]) << i;

  // Weights 1 : 3 are 1025 + 3072 texels.
  EXPECT_EQ(ColorMap({red, blue}, {1, 3}, ColorMap::Discrete).Size(), 4096);

  Colors stripes;
  for (int i = 0; i < 8192; ++i)
    stripes.push_back(i % 2 == 0 ? Qt::black : Qt::white);
  const ColorMap mixed(stripes, ColorMap::Discrete);
  for (int x = 0; x < 4096; ++x)
    ASSERT_NEAR(mixed.Color(x).red(), 128, 1) << x;

  // Translucent colours do not turn dark.
  ColorMap translucent(Colors(6, glass), ColorMap::Discrete);
  EXPECT_EQ(translucent.GetImage().format(), QImage::Format_ARGB32);
  for (const QRgb texel : Texels(translucent)) {
    ASSERT_NEAR(qRed(texel), 200, 1);
    ASSERT_NEAR(qGreen(texel), 100, 1);
    ASSERT_NEAR(qBlue(texel), 50, 1);
    ASSERT_EQ(qAlpha(texel), 128);
  }

  // 5000 greys from dark to bright: none is lost from the ramp.
  Colors ramp;
  for (int i = 0; i < 5000; ++i)
    ramp.push_back(QColor::fromRgb(i * 256 / 5000, i * 256 / 5000, i * 256 / 5000));
  const ColorMap scaled(ramp, ColorMap::Discrete);
  ASSERT_EQ(scaled.Size(), 4096);
  for (int x = 0; x < 4096; ++x)
    ASSERT_NEAR(scaled.Color(x).red(), x * 256 / 4096, 1) << x;
}

TEST(ColorMap, LooksUpByNumber) {
  const ColorMap full(Numbered(4096), ColorMap::Discrete);
  const ColorMap odd(Numbered(4095), ColorMap::Discrete);
  const struct {
    int index, in_full, in_odd;
  } cases[] = {
      {0, 0, 0}, {1, 1, 1}, {4094, 4094, 4094}, {4095, 4095, 0}, {4096, 0, 1}, {-1, 4095, 255}, {-4096, 0, 255},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Number(full.Color(c.index)), c.in_full) << c.index;
    EXPECT_EQ(Number(odd.Color(c.index)), c.in_odd) << c.index;
  }

  // Every integer type picks the look-up by number.
  EXPECT_EQ(Number(full.Color(std::size_t{1})), 1);
  EXPECT_EQ(Number(full.Color(4097u)), 1);
  EXPECT_EQ(Number(full.Color(-1L)), 4095);
  EXPECT_EQ(Number(full.Color(short{2})), 2);
  EXPECT_EQ(Number(full.Color((std::uint64_t{1} << 32) + 5)), 5);
}

TEST(ColorMap, LooksUpByValue) {
  const ColorMap map(Numbered(4096), ColorMap::Discrete);
  const struct {
    double value;
    int texel;
  } cases[] = {
      {0.0, 0},
      {-0.0, 0},
      {-3.0, 0},
      {-infinity, 0},
      {not_a_number, 0},
      {0.5, 2047},
      {1.0 / 4095, 1},
      {1.0, 4095},
      {1.7, 4095},
      {infinity, 4095},
      {std::nextafter(1.0, 0.0), 4094},
      {0.9999 / 4095, 0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Number(map.Color(c.value)), c.texel) << c.value;
  EXPECT_EQ(Number(map.Color(0.5f)), 2047) << "a float is a value, too";
  EXPECT_EQ(ColorMap({glass}, ColorMap::Discrete).Color(0.5), glass) << "alpha is kept";
  EXPECT_EQ(ColorMap({glass}, ColorMap::Discrete).Color(17), glass);
}

TEST(ColorMap, ReportsUnusableWeightsAndDropsTheirColours) {
  const struct {
    const char* name;
    Weights weights;
    std::vector<std::string> ensures;
    int warnings;
    std::vector<Band> expected;
  } cases[] = {
      {"negative", {-1, 2, 2}, {}, 1, {{green, 2048}, {blue, 2048}}},
      {"NaN", {1, not_a_number, 1}, {}, 1, {{red, 2048}, {blue, 2048}}},
      {"negative zero is zero", {1, 1, -0.0}, {}, 0, {{red, 2048}, {green, 2048}}},
      {"all unusable", {not_a_number, -1, -infinity}, {}, 3, {{red, 1365}, {green, 1365}, {blue, 1365}}},
      {"too few", {1, 1}, {size_mismatch}, 0, {{red, 2048}, {green, 2048}}},
      {"too many", {0, 1, 1, -5}, {size_mismatch}, 0, {{green, 2048}, {blue, 2048}}},
      {"none", {}, {size_mismatch}, 0, {{red, 1365}, {green, 1365}, {blue, 1365}}},
  };
  const std::string warning =
      "WARNING: \"(p_weightings[i] >= 0) && \"Invalid color weight specified.\"\"" + in_constructor + " @line";
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ReportCapture reports;
    const ColorMap map({red, green, blue}, c.weights, ColorMap::Discrete);
    std::vector<std::string> ensures;
    int warnings = 0;
    for (const ReportCapture::Entry& entry : reports.Entries()) {
      if (entry.kind != vekdebug::severity::error) {
        ensures.push_back(entry.text);
        continue;
      }
      ++warnings;
      ASSERT_EQ(entry.text.substr(0, warning.size()), warning);
      const std::string line = entry.text.substr(warning.size());
      EXPECT_TRUE(!line.empty() && line.find_first_not_of("0123456789") == std::string::npos) << line;
    }
    EXPECT_EQ(ensures, c.ensures);
    EXPECT_EQ(warnings, c.warnings);
    EXPECT_EQ(Bands(map), c.expected);
  }
}

TEST(ColorMap, IsEmptyWithoutColours) {
  for (const ColorMap::Style style : {ColorMap::Discrete, ColorMap::Interpolated}) {
    ReportCapture reports;
    ColorMap map(Colors{}, style);
    EXPECT_EQ(reports.Texts(), std::vector<std::string>{empty_list});
    const ColorMap weighted(Colors{}, Weights{}, style);
    EXPECT_EQ(reports.Texts(), (std::vector<std::string>{empty_list, empty_list}));
    reports.Clear();
    const ColorMap surplus(Colors{}, Weights{1}, style);
    EXPECT_EQ(reports.Texts(), (std::vector<std::string>{size_mismatch, empty_list}));

    for (const ColorMap& empty : {map, weighted, surplus}) {
      EXPECT_EQ(empty.Size(), 0);
      EXPECT_TRUE(empty.Weightings().empty());
      EXPECT_EQ(empty.Color(3).rgba(), 0u);
      EXPECT_EQ(empty.Color(0.5).rgba(), 0u);
    }
    EXPECT_TRUE(map.GetImage().isNull());
  }
}

TEST(ColorMap, SurvivesWeightsWithoutAShare) {
  const double tiny = std::numeric_limits<double>::denorm_min();
  const double huge = std::numeric_limits<double>::max();
  const struct {
    const char* name;
    Weights weights;
    int discrete, interpolated;
  } cases[] = {
      {"infinite", {infinity, 1}, 2, 2},
      {"all infinite", {infinity, infinity}, 2, 2},
      {"infinite sum", {huge, huge, huge}, 3, 4},
      {"vanishing", {tiny, tiny}, 4096, 2}, // too small for a unit, so both want all; halved, nothing is left
  };
  for (const auto& c : cases) {
    const ReportCapture reports;
    const Colors colors(Numbered(static_cast<int>(c.weights.size())));
    const ColorMap discrete(colors, c.weights, ColorMap::Discrete);
    const ColorMap interpolated(colors, c.weights, ColorMap::Interpolated);
    EXPECT_EQ(discrete.Size(), c.discrete) << c.name;
    EXPECT_EQ(interpolated.Size(), c.interpolated) << c.name;
    EXPECT_EQ(Number(interpolated.Color(0)), 0) << c.name;
    EXPECT_TRUE(reports.Texts().empty()) << c.name;
  }
}

TEST(ColorMap, IsSharedByCopies) {
  ColorMap map({red, blue}, ColorMap::Discrete);
  ColorMap copy({green}, ColorMap::Discrete);
  copy = map;
  EXPECT_EQ(copy.GetImage().constBits(), map.GetImage().constBits());
  EXPECT_EQ(copy.Weightings(), map.Weightings());
  EXPECT_FALSE(copy.Handle());
}

TEST(GenerateColorList, SpreadsTheListEvenly) {
  const QColor deep = QColor::fromRgba64(1000, 2001, 40003, 50005); // not a multiple of 257: 16 bits a channel
  const QColor hsv = QColor::fromHsv(10, 200, 100);
  const QColor grey = QColor::fromRgbF(0.5, 0, 0.5);
  const struct {
    const char* name;
    Colors colors;
    int count;
    Colors expected;
  } cases[] = {
      {"none wanted", {red}, 0, {}},
      {"fewer than none", {red}, -3, {}},
      {"nothing given", {}, 2, {Qt::white, Qt::white}},
      {"as many as given", {deep, hsv}, 2, {deep, hsv}},
      {"one of many", {deep, red, green}, 1, {deep}},
      {"many of one", {deep}, 3, {deep, deep, deep}},
      {"half-way", {red, blue}, 3, {red, grey, blue}},
      {"ends of three", {red, green, blue}, 2, {red, blue}},
      {"every other", {red, green, blue, Qt::white, Qt::black}, 3, {red, blue, Qt::black}},
      {"thirds",
       {red, blue},
       4,
       {red, QColor::fromRgbF(1 - 1 / 3.0, 0, 1 / 3.0), QColor::fromRgbF(1 - 2 / 3.0, 0, 2 / 3.0), blue}},
      {"three to five",
       {red, deep, blue},
       5,
       {red, QColor::fromRgba64(33268, 1001, 20002, 57770), deep, QColor::fromRgba64(500, 1001, 52769, 57770), blue}},
      {"three to four",
       {QColor(0, 0, 0), QColor(90, 0, 0), QColor(0, 90, 0)},
       4,
       {QColor(0, 0, 0), QColor::fromRgbF(60 / 255.0, 0, 0), QColor::fromRgbF(60 / 255.0, 30 / 255.0, 0),
        QColor(0, 90, 0)}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ColorMap::GenerateColorList(c.colors, c.count), c.expected) << c.name;
}

TEST(GenerateWeightList, DividesTheAreaAnew) {
  const struct {
    const char* name;
    Weights weights;
    int count;
    Weights expected;
  } cases[] = {
      {"none wanted", {1}, 0, {}},
      {"fewer than none", {1}, -1, {}},
      {"nothing given", {}, 3, {1, 1, 1}},
      {"as many as given", {3, infinity}, 2, {3, infinity}},
      {"twice as many", {1, 2}, 4, {0.5, 0.5, 1, 1}},
      {"half as many", {1, 1, 1, 1}, 2, {2, 2}},
      {"all in one", {1, 2, 4, 8, 16}, 1, {31}},
      {"one to many", {6}, 4, {1.5, 1.5, 1.5, 1.5}},
      {"two to three", {3, 6}, 3, {2, 1 + 2, 4}},
      {"five to two", {1, 2, 4, 8, 16}, 2, {1 + 2 + 2, 2 + 8 + 16}},
      {"negative ones", {-4, 8}, 4, {-2, -2, 4, 4}},
  };
  for (const auto& c : cases) {
    const Weights result = ColorMap::GenerateWeightList(c.weights, c.count);
    ASSERT_EQ(result.size(), c.expected.size()) << c.name;
    for (std::size_t i = 0; i < result.size(); ++i)
      EXPECT_DOUBLE_EQ(result[i], c.expected[i]) << c.name << ", " << i;
  }
}

TEST(GenerateWeightList, KeepsTheAreaUnderEachOutput) {
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

namespace {

const Lines parameters_and_enables = {
    "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)",
    "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE)",
    "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)",
    "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST)",
    "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0)",
    "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0)",
    "Enable(GL_TEXTURE_2D)",
    "Disable(GL_TEXTURE_GEN_S)",
    "Disable(GL_TEXTURE_GEN_T)",
};

Lines Joined(Lines p_first, const Lines& p_second) {
  p_first.insert(p_first.end(), p_second.begin(), p_second.end());
  return p_first;
}

class ColorMapCalls : public Vek::Test::RecordingFixture {};
class ColorMapPixels : public Vek::Test::PixelFixture {};

} // namespace

TEST_F(ColorMapCalls, UploadsOnceAndSetsItsStateAtEachBind) {
  {
    Utility::Scoped<Rgl> gl(recorder.Handle());
    const ColorMap map({glass, red, blue}, ColorMap::Discrete);
    recorder.Clear();
    map(gl, RGL_TEXTURE0 + 3);
    EXPECT_EQ(recorder.Lines(),
              Joined({"ActiveTexture(GL_TEXTURE3)", "GenTextures(1, [1001])", "BindTexture(GL_TEXTURE_2D, 1001)",
                      "PixelStorei(GL_UNPACK_ALIGNMENT, 1)",
                      "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4095, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)"},
                     parameters_and_enables));
    ASSERT_TRUE(map.Handle());
    EXPECT_EQ(map.Handle()->Name(), 1001u);

    std::vector<unsigned char> bytes;
    for (const QRgb texel : Texels(map))
      for (const int channel : {qRed(texel), qGreen(texel), qBlue(texel), qAlpha(texel)})
        bytes.push_back(static_cast<unsigned char>(channel));
    EXPECT_TRUE(recorder.FindTexture(1001)->levels.at(0).pixels == bytes);

    recorder.Clear();
    const ColorMap copy = map;
    copy(gl, RGL_TEXTURE0);
    EXPECT_EQ(recorder.Lines(),
              Joined({"ActiveTexture(GL_TEXTURE0)", "BindTexture(GL_TEXTURE_2D, 1001)"}, parameters_and_enables));
  }
}

TEST_F(ColorMapCalls, UploadsNothingForAnEmptyMap) {
  const ReportCapture reports;
  Utility::Scoped<Rgl> gl(recorder.Handle());
  const ColorMap map(Colors{}, ColorMap::Discrete);
  recorder.Clear();
  map(gl, RGL_TEXTURE0);
  EXPECT_EQ(recorder.Lines(), Joined({"ActiveTexture(GL_TEXTURE0)", "GenTextures(1, [1001])",
                                      "BindTexture(GL_TEXTURE_2D, 1001)", "PixelStorei(GL_UNPACK_ALIGNMENT, 1)"},
                                     parameters_and_enables));
}

TEST_F(ColorMapPixels, DrawsTheTexelOfEachValue) {
  Utility::Scoped<Rgl> gl(Handle());
  gl->Viewport(0, 0, 29, 14);
  const ColorMap maps[] = {{{red, green, blue, Qt::white}, {1, 2, 3, 4}, ColorMap::Discrete},
                           {{red, QColor(0, 90, 180)}, ColorMap::Interpolated},
                           {{QColor(12, 34, 56)}, ColorMap::Discrete}};
  for (const ColorMap& map : maps) {
    map(gl, RGL_TEXTURE0);
    gl->Color(Qt::white);
    gl->Begin(RGL_QUADS);
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1), std::pair(0, 1)}) {
      gl->TexCoord(x, 0.5);
      gl->Vertex(2 * x - 1, 2 * y - 1, 0);
    }
    gl->End();
    const QImage image = Image();
    for (int x = 0; x < 29; ++x) {
      // GL takes the texel that the position lies in.
      const QColor expected = map.Color(static_cast<int>((x + 0.5) / 29 * map.Size()));
      for (const int y : {0, 6, 13})
        EXPECT_TRUE(Vek::Test::SameColor(Vek::Test::PixelAt(image, x, y), expected, 1)) << x << ", " << y;
    }
  }
}
