// The examples of the reference for files: what stands between two marks is shown there.

#include "io/ReadTable.h"
#include "tests/support/Test.h"

TEST(FileSnippets, ReadTable) {
  const TempFolder folder;
  const std::string path = folder.Write("wind.csv", "lon,lat,u,v,speed\n10,50,3,4,5\n11,50,,,\n");
  /// [ReadTable]
  const Io::Table wind = Io::ReadTable(path);
  const std::vector<std::array<double, 3>> positions = wind.Points("lon", "lat"); // z is 0
  const std::vector<std::array<double, 3>> vectors = wind.Vectors("u", "v");      // the second one is missing: NaN
  const std::vector<double>& speeds = wind["speed"];
  /// [ReadTable]
  EXPECT_TRUE(positions.size() == 2 && std::isnan(vectors[1][0]) && speeds[0] == 5);
}
