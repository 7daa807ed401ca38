#include "scene/Graticule.h"

#include "tests/support/Test.h"

#include <cmath>

using namespace Vek::Chart::Scene;

TEST(Graticule, PlacesLongitudesOfAnyTurn) {
  const std::tuple<Graticule, double, double, double> cases[] = {
      // map, longitude, between its borders, x
      {{}, -180, -180, -180},
      {{}, 180, 180, 180}, // the eastern border
      {{}, 190, -170, -170},
      {{}, -190, 170, 170},
      {{}, 720, 0, 0},
      {{}, -1e-20, -1e-20, 0},
      {{0, 360, -90, 90}, -1e-20, 0, -180}, // not 360
      {{100, 250, -10, 10}, -170, 190, 15},
      {{100, 250, -10, 10}, 90, 90 + 360, 275}, // not on the map
      {{-10, 30, 40, 80}, 30, 30, 20 * 0.5},    // the standard parallel is 60
      {{}, NaN, NaN, NaN},
      {{}, HUGE_VAL, NaN, NaN},
  };
  for (const auto& [map, longitude, wrapped, x] : cases) {
    const double between = map.Wrapped(longitude);
    EXPECT_TRUE(between == wrapped || (std::isnan(between) && std::isnan(wrapped))) << longitude << ' ' << between;
    EXPECT_EQ(std::isnan(x), std::isnan(map.Position(longitude, 0).x)) << longitude;
    if (!std::isnan(x)) {
      EXPECT_NEAR(map.Position(longitude, map.south / 2 + map.north / 2).x, x, 1e-12) << longitude;
      EXPECT_EQ(map.Contains(longitude, map.north), std::abs(x) <= (map.east - map.west) / 2);
    }
  }
  EXPECT_FALSE(Graticule().Contains(0, 90.5));
  EXPECT_FALSE(Graticule().Contains(NaN, 0));
}

TEST(Graticule, NamesMeridiansAndParallels) {
  const Axes axes = Graticule{90, 270, -60, 60}.MakeAxes();
  EXPECT_EQ(axes.axes[0].ticks(90, 270, 5).Strings(),
            (std::vector<QString>{"90° E", "135° E", "180°", "135° W", "90° W"}));
  EXPECT_EQ(axes.axes[1].ticks(-60, 60, 5).Strings(), (std::vector<QString>{"60° S", "30° S", "0°", "30° N", "60° N"}));
  EXPECT_DOUBLE_EQ(axes.box.Max().x / axes.box.Max().y, 90.0 / 60);
  EXPECT_DOUBLE_EQ(axes.box.Extent().z, 0);
}

TEST(Graticule, RefusesOtherMaps) {
  const auto place = [](const Graticule& p_map) { return [=] { p_map.Position(0, 0); }; };
  ExpectErrors({
      {"Graticule: expected borders up to 360 degrees apart, got 0.000000 to 361.000000", place({0, 361, -90, 90})},
      {"Graticule: expected borders up to 360 degrees apart, got 10.000000 to 10.000000", place({10, 10, -90, 90})},
      {"Graticule: expected borders up to 360 degrees apart, got 0.000000 to nan", place({0, NaN, -90, 90})},
      {"Graticule: expected latitudes from -90 to 90, got -91.000000 to 90.000000", place({0, 10, -91, 90})},
      {"Graticule: expected latitudes from -90 to 90, got 20.000000 to 20.000000", place({0, 10, 20, 20})},
  });
}
