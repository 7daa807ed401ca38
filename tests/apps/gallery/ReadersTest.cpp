#include "apps/gallery/HeightField.h"
#include "apps/gallery/Quakes.h"
#include "apps/gallery/TextTable.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

template <class Reader>
auto ReadText(Reader p_reader, const std::string& p_text) {
  std::istringstream stream(p_text);
  return p_reader(stream, "in.txt");
}

template <class Reader>
auto FromFile(Reader p_reader, const std::string& p_name) {
  Loading loading;
  auto result = p_reader(std::string(VEK_SOURCE_DIR) + "/data/" + p_name, loading);
  EXPECT_EQ(loading.Progress(), 1) << p_name;
  return result;
}

/// Pairs of a text and the error behind the file's name.
template <class Reader>
void ExpectErrors(Reader p_reader, const std::map<std::string, std::string>& p_cases) {
  for (const auto& [text, error] : p_cases)
    EXPECT_EQ(ErrorOf<InputError>([&, &text = text] { ReadText(p_reader, text); }), "in.txt" + error) << text;
}

} // namespace

TEST(TextTable, ReadsColumnsByNameAndQuotedCells) {
  std::istringstream stream("a,\"b, c\",d\r\n1,\"x \"\"y\"\", z\",-2.5\r\n\r\n 3 ,,+4e1\n");
  TextTable table(stream, "in.txt");
  EXPECT_TRUE(table.HasColumn("b, c"));
  EXPECT_FALSE(table.HasColumn("b"));
  ASSERT_TRUE(table.NextRow());
  EXPECT_EQ(table.Text(1), "x \"y\", z");
  EXPECT_EQ(table.Number(table.Column("d")), -2.5);
  ASSERT_TRUE(table.NextRow());
  EXPECT_TRUE(table.Number(0) == 3 && table.Number(2) == 40);
  EXPECT_FALSE(table.NextRow());
}

TEST(Readers, BadFilesAreNamedWithTheirLine) {
  const std::string head = ":1: expected \"nx ny x0 dx y0 dy\"";
  const std::string rules = " with whole nx, ny from 2 to 65536 and steps that are not 0, got ";
  ExpectErrors(
      HeightField::Read,
      {{"2 2 0 1 0\n", head + ", got \"2 2 0 1 0\""},
       {"65536 65536 0 1 0 1\n1 2\n", ":2: expected a height in column 3, got \"\""}, // a claim is only a claim
       {"2.5 2 0 1 0 1\n", head + rules + "\"2.5 2 0 1 0 1\""},
       {"2 2 0 0 0 1\n", head + rules + "\"2 2 0 0 0 1\""},
       {"2 2 0 1 0 1\n1 2\n3 deep\n", ":3: expected a height in column 2, got \"deep\""},
       {"2 2 0 1 0 1\n1 2 3\n", ":2: expected the end of the line after 2 heights, got \"3\""},
       {"2 2 0 1 0 1\n1 2\n", ": expected 2 rows of heights, got 1"}});
  ExpectErrors(ReadQuakes, {{"lon,lat,depth_km,mag\n1,2,3,big\n", ":2: expected a number for \"mag\", got \"big\""},
                            {"lon,lat,depth_km,mag\n", ": expected an earthquake at least, got none"}});
}

TEST(Readers, MissingFilesAndFoldersAreNamed) {
  Loading loading;
  EXPECT_EQ(ErrorOf<InputError>([&] { ReadQuakesFile("no/such.csv", loading); }), "no/such.csv: no such file");
  EXPECT_EQ(ErrorOf<InputError>([&] { HeightField::ReadFile(VEK_SOURCE_DIR, loading); }),
            std::string(VEK_SOURCE_DIR) + ": expected a file, got a folder");
}

TEST(HeightField, InterpolatesBetweenCellCentres) {
  // Rows from north to south: dy is negative.
  const HeightField field = ReadText(HeightField::Read, "3 2 10 2 50 -4\n0 4 8\n100 104 108\n");
  EXPECT_EQ(field.At(11, 50), 2);
  EXPECT_EQ(field.At(13, 48), 56);
  EXPECT_EQ(field.At(-500, 80), 0) << "beyond the border, the border's height";
  EXPECT_EQ(field.At(1e300, -1e300), 108);
  EXPECT_TRUE(field.RangeX().min == 9 && field.RangeX().max == 15);
  EXPECT_TRUE(field.RangeY().min == 44 && field.RangeY().max == 52);
  EXPECT_EQ(field.Heights().max, 108);
  const HeightField globe = ReadText(HeightField::Read, "4 2 45 90 -45 90\n1 2 3 4\n1 2 3 4\n");
  EXPECT_EQ(globe.At(0, 0), 2.5) << "between the last and the first column";
  EXPECT_EQ(globe.At(-45, 0), 4);
  EXPECT_EQ(globe.At(405, 0), 1);
}

// Known places tell a field that lies upside down, mirrored or shifted.
TEST(HeightField, TheEarthIsWhereItBelongs) {
  const HeightField earth = FromFile(HeightField::ReadFile, "etopo60.txt");
  EXPECT_GT(earth.At(88, 33), 4500) << "Tibet";
  EXPECT_GT(earth.At(-68, -17), 3500) << "Andes";
  EXPECT_GT(earth.At(-40, 72), 2000) << "Greenland";
  EXPECT_LT(earth.At(-160, 30), -4000) << "North Pacific";
  EXPECT_LT(earth.At(160, -38), -2500) << "Tasman Sea";
}

TEST(Quakes, ReadsEventsAndSkipsUnknownMagnitudes) {
  const auto quakes = ReadText(ReadQuakes, "time_ms,lon,lat,depth_km,mag,magtype,place\n"
                                           "1,-118.5,34.25,26.5,2,ml,\"4km W of Castaic, CA\"\n"
                                           "2,10,20,5,,ml,nowhere\n");
  ASSERT_EQ(quakes.size(), 1u);
  EXPECT_TRUE(quakes[0].lon == -118.5 && quakes[0].lat == 34.25);
  EXPECT_TRUE(quakes[0].depth == 26.5 && quakes[0].magnitude == 2);
  EXPECT_EQ(FromFile(ReadQuakesFile, "earthquakes.csv").size(), 1707u);
}
