// The sheet of colour maps, looked at pixel by pixel.

#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/HeightField.h"

#include "library/ColorMap.h"
#include "library/NamedColors.h"

#include "tests/apps/gallery/PictureShots.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

/// A pixel by its points from the lower left, of a picture where both are the same.
QColor PixelAt(int p_x, int p_y) {
  static const QImage Image = Shoot("colors", {1600, 1000}).image;
  return Image.pixelColor(p_x, 999 - p_y);
}

} // namespace

TEST(ColorsPixels, MapsHaveTheirClassesAndTheirLightness) {
  const auto& names = Library::NamedColors::Names();
  const double pitch = (1600.0 - 2 * 48 - 46 + 18) / static_cast<double>(names.size());
  const int width = static_cast<int>(pitch) - 18;
  const auto left = [&](std::size_t p_map) { return static_cast<int>(94 + pitch * static_cast<double>(p_map)); };
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::vector<QColor> classes; // all that are wider than the blurred borders between them
    std::set<QRgb> blended;
    for (int x = left(i) + 2, run = 0; x < left(i) + width - 2; ++x) {
      blended.insert(PixelAt(x, 808).rgb());
      run = PixelAt(x, 764) == PixelAt(x - 1, 764) ? run + 1 : 0;
      if (run == 15)
        classes.push_back(PixelAt(x, 764));
    }
    EXPECT_GT(blended.size(), 120u) << names[i];
    const std::vector<QColor> expected = Library::NamedColors::Colors(names[i], 7);
    ASSERT_EQ(classes.size(), expected.size()) << names[i];
    for (std::size_t k = 0; k < classes.size(); ++k)
      EXPECT_LE(Distance(classes[k], expected[k]), 3) << names[i] << ": class " << k;
  }
  const struct {
    const char* name;
    double place, lightness;
  } cases[] = {{"viridis", 0.02, 16.8}, {"viridis", 0.5, 54.4}, {"viridis", 0.98, 89.3}, {"cividis", 0.5, 51.8},
               {"grey", 0.25, 27},      {"grey", 0.75, 77.4},   {"inferno", 0.5, 44.1},  {"coolwarm", 0.5, 88.1}};
  for (const auto& row : cases) {
    const auto map = static_cast<std::size_t>(std::find(names.begin(), names.end(), row.name) - names.begin());
    const int x = left(map) + static_cast<int>((pitch - 18) * row.place);
    int curve = 731;
    while (curve > 546 && Distance(PixelAt(x, curve), GalleryTheme::Title) > 60)
      --curve;
    EXPECT_NEAR(curve, 546 + 182 * row.lightness / 100, 3.5) << row.name << " at " << row.place;
  }
}

TEST(ColorsPixels, FieldsHaveTheColorsOfTheirValues) {
  Loading loading;
  const HeightField heights = HeightField::ReadFile(DataInputs().relief, loading);
  const Library::ColorMap map(Library::NamedColors::Colors("viridis", 256, 1, 0.04), Library::ColorMap::Interpolated);
  const QColor nan(0x323E4B), below(0xF25F8B), above(0xFFB000);
  const auto pixel = [&](int p_field, int p_x, int p_y) { return PixelAt(48 + 512 * p_field + p_x, 461 - p_y); };
  int land = 0, sea = 0, wrongLand = 0, wrongLinear = 0, wrongLogarithmic = 0;
  for (int y = 0; y < 240; ++y)
    for (int x = 0; x < 480; ++x) {
      double least = 1e9, most = -1e9; // of the four values that a pixel is made of
      for (const auto& [i, j] : {std::pair(0, 0), {0, 1}, {1, 0}, {1, 1}}) {
        const double height = heights.At(-25 + (x + 0.25 + 0.5 * i) * 0.75, 90 - (y + 0.25 + 0.5 * j) * 0.75);
        least = std::min(least, height);
        most = std::max(most, height);
      }
      const double depth = -(least + most) / 2;
      if (least > 0) {
        ++land;
        wrongLand += pixel(0, x, y) != nan || pixel(1, x, y) != nan ? 1 : 0;
      } else if (most < -20 && least > -6000) {
        ++sea;
        wrongLinear += Distance(pixel(0, x, y), map.Color(depth / 6000)) > 30 ? 1 : 0;
        wrongLogarithmic +=
            Distance(pixel(1, x, y), map.Color(std::log(depth / 10) / std::log(6000 / 10))) > 30 ? 1 : 0;
      }
    }
  EXPECT_GT(land, 25000);
  EXPECT_GT(sea, 60000);
  EXPECT_EQ(wrongLand, 0);
  EXPECT_LT(wrongLinear, sea / 100);
  EXPECT_LT(wrongLogarithmic, sea / 100);

  const struct {
    const char* name;
    double lon, lat;
    QColor color;
  } salinities[] = {{"Sahara", 10, 24, nan},
                    {"Antarctica", 90, -85, nan},
                    {"Laptev Sea", 130, 75.5, below},
                    {"Baltic Sea", 20, 59, below},
                    {"Levantine Sea", 30, 34, above}};
  for (const auto& row : salinities)
    EXPECT_EQ(pixel(2, static_cast<int>((row.lon + 25) / 0.75), static_cast<int>((90 - row.lat) / 0.75)), row.color)
        << row.name;
}

TEST(ColorsPixels, TicksOfTheLogarithmicBarStandAtTheirValues) {
  std::vector<double> expected, found;
  for (const int decade : {10, 100, 1000})
    for (int i = 1; i < 10 && i * decade <= 6000; ++i)
      expected.push_back(560 + 19 + (480 - 2 * 19) * std::log(i * decade / 10.0) / std::log(6000 / 10));
  const auto bright = [&](int p_x) { return PixelAt(p_x, 135).green() > 70; };
  for (int x = 560, first = 0; x < 1040; ++x) {
    if (bright(x) && !bright(x - 1))
      first = x;
    if (bright(x) && !bright(x + 1))
      found.push_back((first + x + 1) / 2.0);
  }
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i)
    EXPECT_NEAR(found[i], expected[i], 1) << i;
}
