#include "io/ReadHeights.h"
#include "io/FileError.h"
#include "tests/support/Damage.h"
#include "tests/support/Formats.h"
#include "tests/support/NetCdf.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Io;
using Vek::Chart::Utility::Threads;

namespace {

std::string Heights(const std::string& p_bytes, const FieldSelection& p_selection = {}) {
  std::istringstream stream(p_bytes);
  const HeightGrid grid = ReadHeights(stream, "f", p_selection);
  std::ostringstream out;
  out << grid.xName << '[' << grid.xUnit << "] " << grid.x << " | " << grid.yName << '[' << grid.yUnit << "] " << grid.y
      << " | " << grid.name << '[' << grid.unit << "] | " << grid.heights << " | " << grid.levels;
  return out.str();
}

void ReadAll(const std::string& p_bytes) {
  Heights(p_bytes);
}

} // namespace

TEST(ReadHeights, ReadsEachFormat) {
  const std::string layers =
      NetCdf("dimensions: z = 2 ; y = 2 ; x = 2 ;\nvariables: float z(z) ; z:positive = \"down\" ; float b(y, x) ;\n"
             "float t(z, y, x) ; t:long_name = \"temperature\" ; t:units = \"K\" ;\n"
             "data: z = 0, 5 ; b = 9, 9, 9, 9 ; t = 1, 2, 3, 4, 5, 6, 7, 8 ;\n");
  EXPECT_EQ(Heights(layers), "x[] 0 1 | y[] 0 1 | b[] | 9 9 9 9 | ");
  EXPECT_EQ(Heights(layers, {{"t"}, 0, 1}), "x[] 0 1 | y[] 0 1 | temperature[K] | 5 6 7 8 | 0 -5");
  EXPECT_EQ(Heights(NetCdf("dimensions: y = 1 ; x = 2 ;\nvariables: float t(y, x) ; t:units = \"degrees C\" ;\n"
                           "data: t = 1, 2 ;\n")),
            "x[] 0 1 | y[] 0 | t[degrees C] | 1 2 | ");
  EXPECT_EQ(Heights("3 2 10 1 20 -2\n1 nan 3\n4 5 6\n"), "[] 10 11 12 | [] 20 18 | [] | 1 ? 3 4 5 6 | ");
  EXPECT_EQ(Heights("lon lat depth(m)\n1 1 4\n0 1 3\n0 0 1\n"), "lon[] 0 1 | lat[] 0 1 | depth[m] | 1 ? 3 4 | ");
}

TEST(ReadHeights, ReadsEsriGridsAndNamesReasons) {
  const std::array<std::string, 2> rows[] = {
      {"ncols 3\nnrows 2\nxllcorner 10\nyllcorner 20\ncellsize 2\nNODATA_value -1\n1 -1 3\n4 5 6\n",
       "[] 11 13 15 | [] 23 21 | [] | 1 ? 3 4 5 6 | "},
      {"NROWS 1\r\nNCOLS 2\r\nXLLCENTER 1e1\r\nYLLCENTER 20\r\nDX 0.5\r\nDY 2\r\n-9999 3\r\n",
       "[] 10 10.5 | [] 20 | [] | ? 3 | "},
      {"ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -3.402823e+38\n-3.4028234663852886e+38 "
       "-9999\n",
       "[] 0.5 1.5 | [] 0.5 | [] | ? -9999 | "},
  };
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(Heights(text), expected);
  const std::string start = "ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\n";
  const std::array<std::string, 2> errors[] = {
      {start + "1 2\n",
       "f:5: expected ncols, nrows, xllcorner, yllcorner and cellsize in front of the heights, got \"1\""},
      {start + "cellsize 0\n1 2\n", "f:5: expected a size above 0, got \"0\""},
      {start + "cellsize 1\n1\n", "f:7: expected a number, got \"the end of the file\""},
      {start + "cellsize 1\n1 2 3\n", "f:6: expected the end of the file after 2 heights, got \"3\""},
      {"2 2 0 1 0 1\n1 2 3\n", "f:3: expected a number, got \"the end of the file\""},
      {"99999 99999 0 1 0 1\n1 2 3\n", "f: expected 9999800001 heights, got a file of 26 bytes"},
      {"ncols 1.5\n", "f:1: expected a whole number from 1 to 1000000, got \"1.5\""},
  };
  for (const auto& [text, expected] : errors)
    EXPECT_EQ(ErrorOf<FileError>([&, t = text] { Heights(t); }), expected);
}

// Heights, shares of progress and errors do not depend on the number of threads.
TEST(ReadHeights, LongTextsOnThreads) {
  constexpr std::size_t Columns = 700, Rows = 400;
  const std::string start = "ncols 700\nnrows 400\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9\n";
  std::vector<std::string> words;
  std::uint32_t random = 1;
  for (std::size_t i = 0; i < Columns * Rows; ++i) {
    random = random * 1664525u + 1013904223u;
    char word[40];
    std::snprintf(word, sizeof word, "%.*g", static_cast<int>(1 + (random >> 24) % 14), double(random) / 3e5 - 7e3);
    words.emplace_back(random % 50 == 0 ? "-9" : random % 61 == 0 ? "1e-400" : random % 67 == 0 ? "+1e400" : word);
  }
  const auto textOf = [&] {
    std::string text = start;
    for (std::size_t i = 0; i < words.size(); ++i)
      text += words[i] + (i % Columns == Columns - 1 ? "\r\n" : i % 7 == 0 ? "\t  " : " ");
    return text;
  };
  const auto read = [&](const std::string& p_end, std::size_t p_cut, Threads p_threads, double p_cancel) {
    std::istringstream stream((textOf() + p_end).substr(0, p_cut));
    std::ostringstream out;
    const auto progress = [&](double p_share) {
      out << p_share << ' ';
      return p_share < p_cancel;
    };
    try {
      const HeightGrid grid = ReadHeights(stream, "f", {}, progress, p_threads);
      for (const double height : grid.heights)
        out << height << ' ';
    } catch (const FileError& error) {
      out << error.what();
    }
    return out.str();
  };
  const auto check = [&](const std::string& p_expected, const std::string& p_end = {}, std::size_t p_cut = ~0u,
                         double p_cancel = 2) {
    const std::string one = read(p_end, p_cut, Threads(), p_cancel);
    EXPECT_EQ(one.substr(one.size() - std::min(one.size(), p_expected.size())), p_expected);
    for (const int threads : {2, 3, 7})
      EXPECT_TRUE(read(p_end, p_cut, Threads(threads), p_cancel) == one) << p_expected << threads;
  };
  const std::string behind = "the end of the file after 280000 heights, got ";
  check("");
  const std::string one = read({}, ~0u, Threads(3), 2); // also right
  std::istringstream parts(one);
  std::string part;
  for (std::size_t i = 0; i <= Rows; ++i)
    parts >> part; // of progress
  EXPECT_EQ(part, "1");
  for (const std::string& word : words) {
    std::ostringstream expected;
    expected << (word == "-9" ? NAN : word == "+1e400" ? INFINITY : std::strtod(word.c_str(), nullptr));
    parts >> part;
    ASSERT_EQ(part, expected.str());
  }
  check(behind + "\"5\"", " 5");
  check(behind + "\"x\"", std::string(300000, ' ') + "x 5");
  constexpr std::size_t Cut = 1500000;
  const std::string whole = textOf();
  const auto line = 1 + std::count(whole.begin(), whole.begin() + Cut, '\n');
  check("f:" + std::to_string(line) + ": expected a number, got \"the end of the file\"", {}, Cut);
  check("f: cancelled", {}, ~0u, 0.6);
  words[Columns * 300 + 5] = "here";
  check("f:307: expected a number, got \"here\"");
  check("f: cancelled", {}, ~0u, 0.6);
  words[Columns * 200] = std::string(200000, '1');
  check("f:307: expected a number, got \"here\"");
}

TEST(HeightGrid, ClosesWhatGoesAround) {
  HeightGrid world;
  world.x = {5, 95, 185, 275}, world.y = {0, 10}, world.heights = {1, 2, 3, 4, 5, 6, 7, 8};
  const HeightGrid closed = world.Closed();
  EXPECT_EQ(closed.x, (std::vector<double>{5, 95, 185, 275, 365}));
  EXPECT_EQ(closed.heights, (std::vector<double>{1, 2, 3, 4, 1, 5, 6, 7, 8, 5}));
  EXPECT_EQ(closed.Closed().x, closed.x); // once
  EXPECT_EQ(world.Closed(10).x, world.x);
  std::reverse(world.x.begin(), world.x.end());
  EXPECT_EQ(world.Closed().x.back(), -85);
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { world.Closed(0); }),
            "Closed: expected a period above 0, got 0.000000");
}

TEST(ReadHeights, SurvivesDamage) {
  CheckDamage<FileError>("ncols 2\nnrows 2\nxllcorner 0\nyllcenter 0\ncellsize 1\nnodata_value 1\n1 2\n3 4\n", ReadAll);
  CheckDamage<FileError>("2 2 0 1 0 1\n1 2\n3 4\n", ReadAll);
}

TEST(ReadHeights, SurvivesDamageOfNetCdf4) {
  if (!Reads("NetCDF-4"))
    GTEST_SKIP() << "without libnetcdf";
  EXPECT_EQ(ErrorOf<FileError>(
                [] { Heights(NetCdf("group: g { dimensions: x = 2 ;\nvariables: float u(x) ; }\n", "netCDF-4")); }),
            "f: expected variables, got only groups, which are not read");
  CheckDamage<FileError>(NetCdf("dimensions: x = 2 ; y = 1 ;\nvariables: float x(x) ; float h(y, x) ;\n"
                                "data: x = 1, 2 ; h = 3, 4 ;\n",
                                "netCDF-4"),
                         ReadAll);
}
