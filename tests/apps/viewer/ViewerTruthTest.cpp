#include "tests/apps/viewer/ViewerFixture.h"

namespace {

class ViewerTruth : public ViewerFixture {
protected:
  /// Fails unless all that the figure says has these parts.
  void ExpectWords(const std::vector<const char*>& p_parts) {
    const std::string words = Words();
    for (const char* part : p_parts)
      EXPECT_NE(words.find(part), std::string::npos) << part << " in " << words;
  }
};

} // namespace

TEST_F(ViewerTruth, TitlesAndUnitsAreThoseOfTheFile) {
  ASSERT_NE(OpenText("earthquakes.csv", "lon,lat,depth_km,mag\n10,20,5,2\n11,22,50,4\n12,24,300,6\n"), nullptr);
  ExpectWords({"earthquakes.csv|", "3 rows|", "depth_km|", "mag|"});
  EXPECT_EQ(Words().find("week"), std::string::npos);
  EXPECT_EQ(ReadOutAt({11, 22, -50}),
            "element 1 longitude: 11.00° E latitude: 22.00° N −depth_km: −50.0 depth_km: 50 mag: 4");
  ASSERT_NE(Open(DataFile("navy_winds_1987.nc")), nullptr);
  ExpectWords({"navy_winds_1987.nc|", "UWND, VWND · 1987-01-17 02:00|", "Speed in M/S|"});
  EXPECT_EQ(Words().find("urface"), std::string::npos);
}

TEST_F(ViewerTruth, TablesOfTimesHaveAnAxisOfDates) {
  ASSERT_NE(OpenText("tide.csv", "station,when,level,wind\nA,2024-05-01T00:00,1.5,3\n\"B\n" + std::string(500, 'b') +
                                     "\",2024-05-03T12:00,-0.5,4\n"
                                     "C,,2,5\n"),
            nullptr)
      << LastReport();
  ExpectWords({"tide.csv|", "3 rows|", "1 point missing|", "wind|"});
  const std::string readOut = ReadOutAt({1714737600, -0.5, 4});
  EXPECT_NE(readOut.find("when: 2024-05-03"), std::string::npos) << readOut;
  EXPECT_NE(readOut.find("station: B b"), std::string::npos) << readOut;
  EXPECT_LT(readOut.size(), 150U);
  EXPECT_NE(readOut.find("wind: 4"), std::string::npos) << readOut;
  EXPECT_EQ(readOut.find("wind: 4"), readOut.rfind("wind")) << "z and colour: " << readOut;
}

TEST_F(ViewerTruth, FlowsKeepUnevenPositionsAndMissingCells) {
  std::string text = "x,y,z,u,v,w\n";
  for (const int z : {0, 1, 10})
    for (const int y : {0, 4})
      for (const int x : {0, 1, 20})
        text += std::to_string(x) + ',' + std::to_string(y) + ',' + std::to_string(z) +
                (x == 1 && z == 1 ? ",,1,0\n" : ",1,0.5,0.25\n");
  ASSERT_NE(OpenText("room.csv", text), nullptr);
  ExpectWords({"3 × 2 × 3 vectors", "2 arrows missing"});
  // Each drawn arrow starts at its node.
  EXPECT_NE(ReadOutAt({20, 4, 10}).find("element 17 x 20.0"), std::string::npos) << ReadOutAt({20, 4, 10});
  Set("Field", "Show", 1);
  ExpectWords({"Speed"});
  // A few nodes of a grid are no grid: the file is a table, whose vectors stay where they are.
  ASSERT_NE(OpenText("stations.csv", "x,y,u,v\n0.1,0.7,1,0\n3.9,2.2,0,1\n7.3,9.1,1,1\n5.5,4.4,1,2\n8.8,6.1,0,2\n"),
            nullptr);
  ExpectWords({"5 rows|"});
  EXPECT_NE(ReadOutAt({3.9, 2.2, 0}).find("element 1 x 3.9"), std::string::npos) << ReadOutAt({3.9, 2.2, 0});
}

TEST_F(ViewerTruth, HeightsAreSaidOnce) {
  ASSERT_NE(OpenText("hill.txt", "3 3 0 1 0 1\n1 2 3\n2 3 4\n3 4 5\n"), nullptr);
  Set("Surface", "Contour lines", 0.0);
  std::string readOut = ReadOutAt({1.1, 1.1, 3.2});
  EXPECT_NE(readOut.find("Height: 3.2"), std::string::npos) << readOut;
  EXPECT_EQ(readOut.find("Height"), readOut.rfind("Height")) << readOut;
  Set("Surface", "Shape", 1);
  readOut = ReadOutAt({1.1, 1.1, 0});
  EXPECT_NE(readOut.find("Height: 3"), std::string::npos) << readOut;
}

TEST_F(ViewerTruth, VolumesSayRangeAndMissingValues) {
  ASSERT_NE(OpenText("ramp.txt", "TextArray 4 1 3 2\n0 1 2 3 4 5 6 7 8 9 10 nan\n"
                                 "12 13 14 15 16 17 18 19 20 21 22 -99\n"),
            nullptr);
  ExpectWords({"4 × 3 × 2 voxels", "−99 to 22", "1 without data"});
}

TEST_F(ViewerTruth, OpensRadianceFilesWithOddHeaders) {
  const std::string pixels{'\x80', '\x40', '\x20', '\x81', '\x01', '\x02', '\x03', '\x80'};
  ASSERT_NE(OpenText("odd.hdr",
                     "#?RADIANCE\na line without a sign\nFORMAT=32-bit_rle_rgbe\nEXPOSURE=2\n\n-Y 1 +X 2\n" + pixels),
            nullptr)
      << LastReport();
  ExpectWords({"odd.hdr|", "2 × 1 pixels"});
  // Radiances: 128 / 256 · 2 / 2, 64 / 256, 32 / 256.
  const std::string readOut = ReadOutAt({0.5, 0.5, 0});
  EXPECT_NE(readOut.find("R 0.5 G 0.25 B 0.125"), std::string::npos) << readOut;
}
