// The named maps against what their makers promise: known colours, lightness that tells the order, the rule of the
// diverging one. CIELAB is computed here on its own, from the definitions of sRGB and of CIE 1976 L*a*b* under D65.

#include "library/NamedColors.h"
#include "library/ColorMap.h"
#include "tests/support/Test.h"

using Colors = std::vector<QColor>;
using Triple = std::array<double, 3>;

namespace {

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
const std::array<Triple, 3> XyzOfRgb{
    {{0.4124564, 0.3575761, 0.1804375}, {0.2126729, 0.7151522, 0.0721750}, {0.0193339, 0.1191920, 0.9503041}}};
const Triple White{0.95047, 1, 1.08883};

/// L*, a*, b* of an sRGB colour.
Triple Lab(const QColor& p_color) {
  const auto linear = [](double p_c) { return p_c <= 0.04045 ? p_c / 12.92 : std::pow((p_c + 0.055) / 1.055, 2.4); };
  const Triple rgb{linear(p_color.redF()), linear(p_color.greenF()), linear(p_color.blueF())};
  Triple f{};
  for (int i = 0; i < 3; ++i) {
    const double t = (XyzOfRgb[i][0] * rgb[0] + XyzOfRgb[i][1] * rgb[1] + XyzOfRgb[i][2] * rgb[2]) / White[i];
    f[i] = t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116;
  }
  return {116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])};
}
double Lightness(const QColor& p_color) {
  return Lab(p_color)[0];
}
double Distance(const Triple& p_a, const Triple& p_b) {
  return std::hypot(p_a[0] - p_b[0], p_a[1] - p_b[1], p_a[2] - p_b[2]);
}

std::vector<QRgb> Rgbs(const Colors& p_colors) {
  std::vector<QRgb> rgbs;
  for (const QColor& color : p_colors)
    rgbs.push_back(color.rgba() & 0xFFFFFF);
  return rgbs;
}

/// The rule of the diverging map: a straight line in (magnitude, saturation angle, hue angle) from either end to the
/// white in the middle, whose hue is turned as far as the saturated end has to turn for it.
Triple CoolWarmLab(double p_place) {
  constexpr double Middle = 88;
  const Triple end = Lab(p_place < 0.5 ? QColor(59, 76, 192) : QColor(180, 4, 38));
  const double magnitude = std::hypot(end[0], end[1], end[2]);
  const double angle = std::acos(end[0] / magnitude), hue = std::atan2(end[2], end[1]);
  const double turn = angle * std::sqrt(Middle * Middle - magnitude * magnitude) / (magnitude * std::sin(angle)) *
                      (hue > -M_PI / 3 ? 1 : -1);
  const double t = std::abs(2 * p_place - 1); // 0 in the middle, 1 at the end
  const double m = Middle + (magnitude - Middle) * t, s = angle * t, h = hue + turn * (1 - t);
  return {m * std::cos(s), m * std::sin(s) * std::cos(h), m * std::sin(s) * std::sin(h)};
}

TEST(NamedColors, HaveTheirPublishedColours) {
  const struct {
    const char* name;
    std::size_t size;
    std::vector<QRgb> five; ///< colours 0, 64, 128, 192 and the last
  } cases[] = {
      {"viridis", 256, {0x440154, 0x3B528B, 0x21918C, 0x5EC962, 0xFDE725}},
      {"plasma", 256, {0x0D0887, 0x7E03A8, 0xCC4778, 0xF89540, 0xF0F921}},
      {"inferno", 256, {0x000004, 0x57106E, 0xBC3754, 0xF98E09, 0xFCFFA4}},
      {"magma", 256, {0x000004, 0x51127C, 0xB73779, 0xFC8961, 0xFCFDBF}},
      {"cividis", 256, {0x00224E, 0x434E6C, 0x7D7C78, 0xBCAE6C, 0xFEE838}},
      {"grey", 256, {0x000000, 0x404040, 0x808080, 0xC0C0C0, 0xFFFFFF}},
      {"coolwarm", 257, {0x3B4CC0, 0x8DB0FE, 0xDDDDDD, 0xF49A7B, 0xB40426}},
  };
  std::vector<std::string> names;
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    names.push_back(row.name);
    const Colors table = NamedColors::Colors(row.name);
    EXPECT_EQ(table.size(), row.size);
    EXPECT_EQ(Rgbs({table[0], table[64], table[128], table[192], table.back()}), row.five);
    EXPECT_EQ(NamedColors::Colors(row.name, static_cast<int>(row.size)), table);
    // One slip of the pen would stand out of its neighbours.
    for (std::size_t i = 1; i + 1 < table.size(); ++i)
      EXPECT_LT(Distance(Lab(table[i - 1]), Lab(table[i + 1])), 4.1) << i;
  }
  EXPECT_EQ(NamedColors::Names(), names);
}

TEST(NamedColors, TellTheOrderByLightnessAlone) {
  for (const std::string& name : NamedColors::Names()) {
    if (name == "coolwarm")
      continue;
    SCOPED_TRACE(name);
    const Colors table = NamedColors::Colors(name);
    const double first = Lightness(table.front()), rise = (Lightness(table.back()) - first) / 255;
    EXPECT_GT(rise, 75.0 / 255);
    for (std::size_t i = 1; i < table.size(); ++i) {
      EXPECT_GT(Lightness(table[i]), Lightness(table[i - 1]) - 0.05) << i; // rounding to bytes costs that much
      EXPECT_NEAR(Lightness(table[i]), first + rise * static_cast<double>(i), 6) << i;
    }
  }
}

TEST(NamedColors, DivergeByMorelandsRule) {
  const Colors table = NamedColors::Colors("coolwarm");
  const double byte = 0.9; // what rounding to bytes moves a colour
  for (std::size_t i = 0; i < table.size(); ++i)
    EXPECT_LT(Distance(Lab(table[i]), CoolWarmLab(static_cast<double>(i) / 256)), byte) << i;
  for (int i = 0; i < 128; ++i) {
    EXPECT_GT(Lightness(table[i + 1]), Lightness(table[i])) << i;
    EXPECT_NEAR(Lightness(table[i]), Lightness(table[256 - i]), byte) << i;
  }
}

TEST(NamedColors, AreCutTurnedAndClassed) {
  const Colors map = NamedColors::Colors("grey");
  const auto greys = [](std::vector<QRgb> p_levels) {
    for (QRgb& level : p_levels)
      level *= 0x010101;
    return p_levels;
  };
  const struct {
    int count;
    double from, to;
    std::vector<QRgb> expected;
  } cases[] = {
      {3, 0, 1, greys({0, 128, 255})},
      {2, 0.2, 0.6, greys({51, 153})},
      {3, 1, 0, greys({255, 128, 0})},
      {1, 0.6, 1, greys({153})},
      {2, 0.4, 0.4, greys({102, 102})},
      {0, 0, 1, {}},
      {-1, 0, 1, {}},
  };
  for (const auto& row : cases)
    EXPECT_EQ(Rgbs(NamedColors::Colors("grey", row.count, row.from, row.to)), row.expected)
        << row.count << ' ' << row.from << ' ' << row.to;
  // As many bands as classes, in the classes' own colours.
  const ColorMap classed(NamedColors::Colors("grey", 6), ColorMap::Discrete);
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(classed.Color((i + 0.5) / 6), QColor(51 * i, 51 * i, 51 * i)) << i;
}

TEST(NamedColors, ReportWhatIsExpectedAndWhatCame) {
  const std::string list = "class std::vector<class QColor,class std::allocator<class QColor> > __cdecl "
                           "Vek::Chart::Library::NamedColors::Colors(const class std::basic_string<char,struct "
                           "std::char_traits<char>,class std::allocator<char> > &";
  const std::string known = " is one of viridis, plasma, inferno, magma, cividis, grey, coolwarm\" - ";
  ReportCapture reports;
  EXPECT_TRUE(NamedColors::Colors("jet").empty());
  EXPECT_TRUE(NamedColors::Colors("Viridis", 3).empty());
  EXPECT_EQ(Rgbs(NamedColors::Colors("grey", 2, NotANumber, 1.5)), (std::vector<QRgb>{0, 0xFFFFFF}));
  EXPECT_EQ(reports.Texts(), (std::vector<std::string>{
                                 "\"colour map \"jet\"" + known + list + ")",
                                 "\"colour map \"Viridis\"" + known + list + ",int,double,double)",
                                 "\"0 <= p_from && p_from <= 1\" - " + list + ",int,double,double)",
                                 "\"0 <= p_to && p_to <= 1\" - " + list + ",int,double,double)",
                             }));
}

} // namespace
