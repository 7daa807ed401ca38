#include "io/ReadHeights.h"
#include "io/FileError.h"
#include "tests/support/Damage.h"
#include "tests/support/Formats.h"
#include "tests/support/NetCdf.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Io;

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
