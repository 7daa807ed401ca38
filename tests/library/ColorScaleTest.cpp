// Arrays are compared with the plain rule, which compares each value with one bound after the other: for random bit
// patterns, next to every bound, at every length and alignment.

#include "library/ColorScale.h"
#include "tests/support/Test.h"

using Colors = std::vector<QColor>;
using Bytes = std::vector<unsigned char>;

namespace {

constexpr double Largest = std::numeric_limits<double>::max();
static_assert(ColorScale::Linear == 0 && ColorScale::Logarithmic == 1, "callers were compiled with these");
constexpr double Smallest = std::numeric_limits<double>::denorm_min();

/// The colour of a class, or of values outside of all classes, by its number.
QColor Numbered(int p_number) {
  return {p_number >> 8, p_number & 255, 7, 9};
}
Colors Numbered(int p_first, int p_count) {
  Colors colors;
  for (int i = 0; i < p_count; ++i)
    colors.push_back(Numbered(p_first + i));
  return colors;
}
constexpr int Below = 60000, Above = 60001, Nan = 60002;
ColorScale::Outside NumberedOutside() {
  return {Numbered(Below), Numbered(Above), Numbered(Nan)};
}

/// The rule.
int ClassOf(const std::vector<double>& p_bounds, long double p_value) {
  if (std::isnan(p_value))
    return Nan;
  if (p_value < p_bounds.front())
    return Below;
  if (p_value > p_bounds.back())
    return Above;
  std::size_t i = p_bounds.size() - 2; // the last class has its upper bound, too
  while (p_value < p_bounds[i])
    --i;
  return static_cast<int>(i);
}

template <class T>
std::vector<int> Mapped(const ColorScale& p_scale, const std::vector<T>& p_values) {
  Bytes rgba(4 * p_values.size());
  p_scale.Map(DataInterface::Array<T, 0>(p_values.data(), p_values.size()), rgba.data());
  std::vector<int> numbers;
  for (std::size_t i = 0; i < p_values.size(); ++i) {
    const unsigned char* const pixel = rgba.data() + 4 * i;
    numbers.push_back(pixel[2] == 7 && pixel[3] == 9 ? pixel[0] << 8 | pixel[1] : -1);
  }
  return numbers;
}

/// Special numbers, random bits, values all over the range, and bounds with their neighbours: of many, every seventh.
template <class T>
std::vector<T> Probes(const std::vector<double>& p_bounds, unsigned int p_seed) {
  using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
  using Limits = std::numeric_limits<T>;
  std::mt19937_64 random(p_seed);
  std::vector<T> probes;
  for (const T special :
       {T(0), T(1), Limits::infinity(), Limits::quiet_NaN(), Limits::max(), Limits::denorm_min(), Limits::min()})
    probes.insert(probes.end(), {special, -special});
  for (int i = 0; i < 500; ++i) {
    const auto bits = static_cast<Bits>(random());
    T value;
    std::memcpy(&value, &bits, sizeof value);
    probes.push_back(value);
    const double t = std::uniform_real_distribution<double>(-0.1, 1.1)(random);
    probes.push_back(static_cast<T>(p_bounds.front() * (1 - t) + p_bounds.back() * t));
  }
  const std::size_t step = p_bounds.size() > 1000 ? 7 : 1;
  for (std::size_t i = 0; i < p_bounds.size(); i += step) {
    const double bound = p_bounds[i];
    if (std::abs(bound) > Limits::max())
      continue;
    const T near = static_cast<T>(bound);
    probes.insert(probes.end(),
                  {std::nextafter(near, -Limits::infinity()), near, std::nextafter(near, Limits::infinity())});
  }
  return probes;
}

template <class T>
void ExpectTheRule(const ColorScale& p_scale, unsigned int p_seed) {
  const std::vector<T> probes = Probes<T>(p_scale.Bounds(), p_seed);
  const std::vector<int> numbers = Mapped(p_scale, probes);
  int faults = 0;
  for (std::size_t i = 0; i < probes.size() && faults < 5; ++i) {
    const int expected = ClassOf(p_scale.Bounds(), probes[i]);
    faults += numbers[i] != expected;
    EXPECT_EQ(numbers[i], expected) << sizeof(T) << " bytes, value " << std::hexfloat << probes[i];
    EXPECT_EQ(p_scale.Color(probes[i]), Numbered(expected)) << std::hexfloat << probes[i];
  }
}

TEST(ColorScale, MapsEveryValueToItsClass) {
  const auto linear = ColorScale::Linear, logarithmic = ColorScale::Logarithmic;
  unsigned int seed = 0;
  const auto expectTheRule = [&](const ColorScale& p_scale) {
    ExpectTheRule<float>(p_scale, ++seed);
    ExpectTheRule<double>(p_scale, ++seed);
  };
  const std::tuple<std::string, double, double, ColorScale::Spacing> ranges[] = {
      {"unit", 0, 1, linear},
      {"both signs", -3.7, 11.1, linear},
      {"far from zero", 1e6, 1e6 + 1, linear},
      {"not floats", 0.1, 0.3, linear},
      {"between two floats", 1 + 1e-10, 1 + 2e-10, linear},
      {"two neighbours", 1, std::nextafter(1, 2), linear},
      {"subnormal", 0, 40 * Smallest, linear},
      {"beyond float", -1e300, 1e300, linear},
      {"all of double", -Largest, Largest, linear},
      {"above float", 1e100, 1e101, linear},
      {"six decades", 1e-3, 1e3, logarithmic},
      {"an octave", 5, 10, logarithmic},
      {"a hair", 1, 1 + 1e-6, logarithmic},
      {"all positive doubles", Smallest, Largest, logarithmic},
      {"below float", 1e-300, 1e-200, logarithmic},
      {"into subnormal floats", 1e-44, 1e-30, logarithmic},
      {"no spacing of that number", 2, 4, static_cast<ColorScale::Spacing>(7)},
  };
  for (const auto& [name, lower, upper, spacing] : ranges)
    for (const int classes : {1, 2, 7, 256, 4097}) {
      SCOPED_TRACE(name + ", " + std::to_string(classes) + " classes");
      const ColorScale scale(Numbered(0, classes), lower, upper, spacing, NumberedOutside());
      ASSERT_EQ(scale.Bounds().size(), static_cast<std::size_t>(classes) + 1);
      expectTheRule(scale);
    }

  const std::vector<double> lists[] = {
      {0, 1}, {5, 5}, {0, 0.001, 1, 1000, 1e6}, {-6000, -200, 0, 0, 0, 4000}, {1, 2, 2, 2}, {-Largest, 0, Largest}};
  for (const std::vector<double>& bounds : lists) {
    SCOPED_TRACE("bounds " + std::to_string(&bounds - lists));
    const ColorScale scale(Numbered(0, static_cast<int>(bounds.size()) - 1), bounds, NumberedOutside());
    EXPECT_EQ(scale.Bounds(), bounds);
    expectTheRule(scale);
  }
}

TEST(ColorScale, SpacesItsBounds) {
  const std::pair<ColorScale::Spacing, std::vector<double>> cases[] = {
      {ColorScale::Logarithmic, {0.001, 0.01, 0.1, 1, 10, 100, 1000}},
      {ColorScale::Logarithmic, {0.25, 0.5, 1, 2, 4, 8, 16}},
      {ColorScale::Linear, {-1, 0, 1, 2}},
      {ColorScale::Linear, {0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1}},
      {ColorScale::Linear, {-Largest, -Largest / 2, 0, Largest / 2, Largest}},
  };
  for (const auto& [spacing, bounds] : cases) {
    const Colors colors = Numbered(0, static_cast<int>(bounds.size()) - 1);
    EXPECT_EQ(ColorScale(colors, bounds.front(), bounds.back(), spacing).Bounds(), bounds);
  }
  // Equally spaced in the logarithm.
  const ColorScale scale(Numbered(0, 256), 0.02, 3e5, ColorScale::Logarithmic);
  for (int i = 0; i <= 256; ++i)
    EXPECT_NEAR(std::log(scale.Bounds()[std::size_t(i)] / 0.02L) / std::log(3e5L / 0.02L), i / 256.0L, 1e-15L) << i;
}

TEST(ColorScale, ShowsTheColorsThatItMaps) {
  const Colors classes{QColor(1, 2, 3, 4), QColor(5, 6, 7), QColor(8, 9, 10)};
  const QColor below(11, 12, 13), above(14, 15, 16, 17), nan(18, 19, 20);
  const std::pair<ColorScale::Outside, Colors> cases[] = {
      {{}, {classes.front(), classes.back(), QColor(0, 0, 0, 0)}},
      {{below, above, nan}, {below, above, nan}},
  };
  for (const auto& [given, outside] : cases) {
    const ColorScale scale(classes, {0, 1, 1, 5}, given);
    const ColorScale::Outside shown = scale.OutsideColors();
    EXPECT_EQ(scale.Colors(), classes);
    EXPECT_EQ((Colors{shown.below, shown.above, shown.nan}), outside);
    EXPECT_EQ((Colors{scale.Color(-1), scale.Color(6), scale.Color(NaN)}), outside);
  }
}

TEST(ColorScale, HasAClassForEachTexelOfAMap) {
  const ColorMap map({Qt::red, Qt::green, Qt::blue}, {1, 2, 5}, ColorMap::Interpolated);
  const ColorScale scale(map, 0, map.Size());
  for (int i = 0; i < map.Size(); ++i)
    EXPECT_EQ(scale.Color(i), map.Color(i)) << i;
}

TEST(ColorScale, WritesFourBytesAValue) {
  const std::vector<double> values{NaN, -1, 0, 2, 3};
  const std::pair<ColorScale::Outside, Bytes> cases[] = {
      {{}, {0, 0, 0, 0, 1, 2, 3, 4, 1, 2, 3, 4, 5, 6, 7, 8, 5, 6, 7, 8}},
      {{QColor(10, 11, 12), QColor(20, 21, 22, 23), QColor(30, 31, 32, 33)},
       {30, 31, 32, 33, 10, 11, 12, 255, 1, 2, 3, 4, 5, 6, 7, 8, 20, 21, 22, 23}},
  };
  for (const auto& [outside, expected] : cases) {
    Bytes rgba(20);
    ColorScale({QColor(1, 2, 3, 4), QColor(5, 6, 7, 8)}, 0, 2, ColorScale::Linear, outside)
        .Map(values.data(), values.size(), rgba.data());
    EXPECT_EQ(rgba, expected);
  }

  // Short and long arrays at all alignments equal those mapped value by value.
  const ColorScale scale(Numbered(0, 100), 0, 100);
  std::vector<float> many((1 << 20) + 70);
  for (std::size_t i = 0; i < many.size(); ++i)
    many[i] = static_cast<float>(i * 7919 % 1000) / 10;
  Bytes oneByOne(4 * many.size());
  for (std::size_t i = 0; i < many.size(); ++i)
    scale.Map(many.data() + i, 1, oneByOne.data() + 4 * i);
  for (const std::size_t count : std::initializer_list<std::size_t>{0, 1, 15, 37, 131080, many.size() - 3})
    for (const std::size_t offset : {0, 1, 4, 12}) {
      const Bytes empty(offset + 4 * count + 64, 0xAB);
      Bytes rgba = empty, framed = empty;
      std::copy_n(oneByOne.begin() + 12, 4 * count, framed.begin() + static_cast<std::ptrdiff_t>(offset));
      scale.Map(many.data() + 3, count, rgba.data() + offset);
      EXPECT_TRUE(rgba == framed) << count << " at " << offset;
      for (const int threads : {1, 2, 3, 7}) {
        rgba = empty;
        scale.Map(many.data() + 3, count, rgba.data() + offset, Vek::Chart::Utility::Threads(threads));
        EXPECT_TRUE(rgba == framed) << count << " at " << offset << " on " << threads << " threads";
      }
    }
}

TEST(ColorScale, ReportsInvalidClasses) {
  const Colors two{Qt::red, Qt::blue};
  ColorScale::Outside outside;
  outside.nan = QColor(1, 2, 3);
  const std::string list =
      "__cdecl Vek::Chart::Library::ColorScale::ColorScale(const class std::vector<class QColor,class "
      "std::allocator<class QColor> > &,";
  const std::string tail = "const struct Vek::Chart::Library::ColorScale::Outside &)";
  const std::string range = "\" - " + list + "double,double,enum Vek::Chart::Library::ColorScale::Spacing," + tail;
  const std::string bounds = "\" - " + list + "const class std::vector<double,class std::allocator<double> > &," + tail;
  const std::string falling = "\"p_bounds[i] <= p_bounds[i + 1]" + bounds;
  const auto linear = ColorScale::Linear, logarithmic = ColorScale::Logarithmic;
  ReportCapture reports;
  const ColorMap empty(Colors(), ColorMap::Discrete);
  reports.Clear();
  const std::pair<ColorScale, std::string> cases[] = {
      {ColorScale(Colors(), 0, 1, linear, outside), "\"!p_colors.empty()" + range},
      {ColorScale(two, 1, 1, linear, outside), "\"p_lower < p_upper" + range},
      {ColorScale(two, 2, 1, linear, outside), "\"p_lower < p_upper" + range},
      {ColorScale(two, NaN, 1, linear, outside), "\"std::isfinite(p_lower) && std::isfinite(p_upper)" + range},
      {ColorScale(two, 0, Infinity, linear, outside), "\"std::isfinite(p_lower) && std::isfinite(p_upper)" + range},
      {ColorScale(two, 0, 1, logarithmic, outside), "\"p_lower > 0" + range},
      {ColorScale(two, -1, 1, logarithmic, outside), "\"p_lower > 0" + range},
      {ColorScale(empty, 0, 1, linear, outside), "\"!p_colors.empty()" + range},
      {ColorScale(Colors(), std::vector<double>{0}, outside), "\"!p_colors.empty()" + bounds},
      {ColorScale(two, {0, 1}, outside), "\"p_bounds.size() == p_colors.size() + 1" + bounds},
      {ColorScale(two, {0, 2, 1}, outside), falling},
      {ColorScale(two, {0, NaN, 1}, outside), falling},
      {ColorScale(two, {0, 1, Infinity}, outside), falling},
  };
  std::vector<std::string> expected;
  for (const auto& [scale, text] : cases) {
    expected.push_back(text);
    for (const double value : {0.5, 1.0, Infinity, NaN})
      EXPECT_EQ(scale.Color(value), outside.nan) << text << value;
    float value = 0.5f;
    Bytes rgba(4);
    scale.Map(&value, 1, rgba.data());
    EXPECT_EQ(rgba, (Bytes{1, 2, 3, 255})) << text;
    EXPECT_TRUE(scale.Bounds().empty());
  }
  EXPECT_EQ(reports.Texts(), expected);

  reports.Clear();
  Bytes rgba(4);
  const ColorScale scale(two, 0, 1);
  scale.Map(static_cast<const float*>(nullptr), 1, rgba.data());
  scale.Map(std::vector<double>(1).data(), 1, nullptr);
  scale.Map(static_cast<const double*>(nullptr), 0, nullptr);
  const std::string check = "\"p_count == 0 || (p_values != nullptr && p_rgba != nullptr)\" - void __cdecl "
                            "Vek::Chart::Library::ColorScale::Map(const ";
  EXPECT_EQ(reports.Texts(), (std::vector<std::string>{check + "float *,unsigned __int64,unsigned char *) const",
                                                       check + "double *,unsigned __int64,unsigned char *) const"}));
}

} // namespace
