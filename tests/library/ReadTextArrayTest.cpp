#include "library/ReadTextArray.h"
#include "tests/support/Damage.h"
#include "tests/support/Test.h"

namespace {

using Options = TextArrayOptions;

/// "SIZE xCHANNELS [RANGE]: VALUES", or the error.
std::string Summary(const std::string& p_text, const Options& p_options) {
  std::ostringstream out;
  try {
    std::istringstream stream(p_text);
    const TextArray array = ReadTextArray(stream, "t", p_options);
    out << array.size[0] << ' ' << array.size[1] << ' ' << array.size[2] << " x" << array.channels << " ["
        << array.range[0] << ' ' << array.range[1] << "]:";
    std::visit(
        [&](const auto& p_values) {
          for (const auto value : p_values)
            out << ' ' << double(value);
        },
        array.values);
  } catch (const TextArrayError& error) {
    return error.what();
  }
  return out.str();
}

Options With(Options::Precision p_precision, std::optional<std::array<float, 2>> p_range = {},
             std::vector<std::size_t> p_channels = {}) {
  Options options;
  options.precision = p_precision;
  options.range = p_range;
  options.channels = std::move(p_channels);
  return options;
}

} // namespace

TEST(ReadTextArray, KeepsWhatTheOptionsWant) {
  const std::string two = "TextArray 2 2 1 1\n-1 10\n3 nan\n"; // two voxels of two channels
  const std::array<float, 2> unit{0, 1};
  const std::tuple<const char*, std::string, Options, std::string> rows[] = {
      {"floats", two, With(Options::Float32), "2 1 1 x2 [-1 10]: -1 10 3 nan"},
      {"floats within a range", two, With(Options::Float32, {{0, 5}}), "2 1 1 x2 [0 5]: 0 5 3 nan"},
      {"a channel", two, With(Options::Float32, {}, {0}), "2 1 1 x1 [-1 3]: -1 3"},
      {"channels in another order, and twice", two, With(Options::Float32, {}, {1, 0, 1}),
       "2 1 1 x3 [-1 10]: 10 -1 10 nan 3 nan"},
      {"bytes of the numbers' own range", "TextArray 5 1 1 1 -1 0 1 2 3", With(Options::Bits8),
       "5 1 1 x1 [-1 3]: 0 64 128 191 255"},
      {"bytes of a range", "TextArray 6 1 1 1 -5 0 0.5 1 inf nan", With(Options::Bits8, unit),
       "6 1 1 x1 [0 1]: 0 0 128 255 255 0"},
      {"16 bits", "TextArray 4 1 1 1 0 0.5 0.25 2", With(Options::Bits16, unit), "4 1 1 x1 [0 1]: 0 32768 16384 65535"},
      {"one number", "TextArray 2 1 1 1 7 7", With(Options::Bits8), "2 1 1 x1 [7 7]: 0 0"},
      {"no finite number", "TextArray 2 1 1 1 nan -inf", With(Options::Bits8), "2 1 1 x1 [0 0]: 0 0"},
      {"many channels", "TextArray 1 5 2 1 1 2 3 4 5 6 7 8 9 10", With(Options::Float32, {}, {4}),
       "1 2 1 x1 [5 10]: 5 10"},
      {"too few", "TextArray 3 1 1 1\n1 2\n", {}, "t:3: expected number 3 of 3, got \"the end of the file\""},
      {"a word", "TextArray 2 1 1 1\n1 2x", {}, "t:2: expected a blank behind a number, got \"2x\""},
      {"another file", "Text 1 2 1 1\n", {}, "t:1: expected TextArray, got \"Text\""},
  };
  for (const auto& [name, text, options, expected] : rows)
    EXPECT_EQ(Summary(text, options), expected) << name;
  const auto wrong = [&](const Options& p_options) {
    return ErrorOf<std::invalid_argument>([&] { Summary(two, p_options); });
  };
  EXPECT_EQ(wrong(With(Options::Float32, {}, {2})), "t: expected a channel below 2, got 2");
  EXPECT_EQ(wrong(With(Options::Bits8, {{1, 1}})),
            "t: expected a finite range that is not empty, got 1.000000 to 1.000000");
  Options cancelled;
  cancelled.progress = [](double) { return false; };
  EXPECT_EQ(Summary(two, cancelled), "t: cancelled");
}

TEST(ReadTextArray, SurvivesDamage) {
  CheckDamage<TextArrayError>("TextArray 2 2 2 1\n1 2.5 -3e1\tnan 5 6 7 8\n", [](const std::string& p_bytes) {
    std::istringstream stream(p_bytes);
    ReadTextArray(stream, "t", With(Options::Bits16, {}, {1}));
  });
}
