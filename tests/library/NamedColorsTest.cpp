#include "library/NamedColors.h"
#include "library/ColorMap.h"
#include "tests/support/Test.h"

using Colors = std::vector<QColor>;

namespace {


std::vector<QRgb> Rgbs(const Colors& p_colors) {
  std::vector<QRgb> rgbs;
  for (const QColor& color : p_colors)
    rgbs.push_back(color.rgba() & 0xFFFFFF);
  return rgbs;
}

/// FNV-1a over the colours of a map: one bit that differs changes it.
std::uint32_t Checksum(const Colors& p_colors) {
  std::uint32_t sum = 2166136261U;
  for (const QRgb rgb : Rgbs(p_colors))
    for (const int shift : {16, 8, 0})
      sum = (sum ^ (rgb >> shift & 0xFF)) * 16777619U;
  return sum;
}

TEST(NamedColors, HaveTheirPublishedColors) {
  // Number of colours, checksum of all, and colours 0, 64, 128, 192 and the last.
  const std::tuple<std::string, int, std::uint32_t, std::vector<QRgb>> cases[] = {
      {"viridis", 256, 0x056643BB, {0x440154, 0x3B528B, 0x21918C, 0x5EC962, 0xFDE725}},
      {"plasma", 256, 0xDA1909BC, {0x0D0887, 0x7E03A8, 0xCC4778, 0xF89540, 0xF0F921}},
      {"inferno", 256, 0x9CB067D9, {0x000004, 0x57106E, 0xBC3754, 0xF98E09, 0xFCFFA4}},
      {"magma", 256, 0xEC4B847E, {0x000004, 0x51127C, 0xB73779, 0xFC8961, 0xFCFDBF}},
      {"cividis", 256, 0xB9EA78A6, {0x00224E, 0x434E6C, 0x7D7C78, 0xBCAE6C, 0xFEE838}},
      {"grey", 256, 0x7F16E8C5, {0x000000, 0x404040, 0x808080, 0xC0C0C0, 0xFFFFFF}},
      {"coolwarm", 257, 0xF3577DF4, {0x3B4CC0, 0x8DB0FE, 0xDDDDDD, 0xF49A7B, 0xB40426}},
  };
  std::vector<std::string> names;
  for (const auto& [name, size, checksum, five] : cases) {
    SCOPED_TRACE(name);
    names.push_back(name);
    const Colors table = NamedColors::Colors(name);
    EXPECT_EQ(Rgbs({table[0], table[64], table[128], table[192], table.back()}), five);
    EXPECT_EQ(NamedColors::Colors(name, size), table);
    EXPECT_EQ(Checksum(table), checksum);
  }
  EXPECT_EQ(NamedColors::Names(), names);
}

TEST(NamedColors, AreCutReversedAndClassed) {
  const auto greys = [](std::vector<QRgb> p_levels) {
    for (QRgb& level : p_levels)
      level *= 0x010101;
    return p_levels;
  };
  const std::tuple<int, double, double, std::vector<QRgb>> cases[] = {
      {3, 0, 1, greys({0, 128, 255})},
      {2, 0.2, 0.6, greys({51, 153})},
      {3, 1, 0, greys({255, 128, 0})},
      {1, 0.6, 1, greys({153})},
      {2, 0.4, 0.4, greys({102, 102})},
      {0, 0, 1, {}},
      {-1, 0, 1, {}},
  };
  for (const auto& [count, from, to, expected] : cases)
    EXPECT_EQ(Rgbs(NamedColors::Colors("grey", count, from, to)), expected) << count << ' ' << from << ' ' << to;
  // A discrete map has a band for each class.
  const ColorMap classed(NamedColors::Colors("grey", 6), ColorMap::Discrete);
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(classed.Color((i + 0.5) / 6), QColor(51 * i, 51 * i, 51 * i)) << i;
}

TEST(NamedColors, ReportUnknownNamesAndPositions) {
  const std::string list = "class std::vector<class QColor,class std::allocator<class QColor> > __cdecl "
                           "Vek::Chart::Library::NamedColors::Colors(const class std::basic_string<char,struct "
                           "std::char_traits<char>,class std::allocator<char> > &";
  const std::string known = " is one of viridis, plasma, inferno, magma, cividis, grey, coolwarm\" - ";
  ReportCapture reports;
  EXPECT_TRUE(NamedColors::Colors("jet").empty());
  EXPECT_TRUE(NamedColors::Colors("Viridis", 3).empty());
  EXPECT_EQ(Rgbs(NamedColors::Colors("coolwarm", 2, NaN, 1.5)), (std::vector<QRgb>{0x3B4CC0, 0xB40426}));
  EXPECT_EQ(reports.Texts(), (std::vector<std::string>{
                                 "\"colour map \"jet\"" + known + list + ")",
                                 "\"colour map \"Viridis\"" + known + list + ",int,double,double)",
                                 "\"0 <= p_from && p_from <= 1\" - " + list + ",int,double,double)",
                                 "\"0 <= p_to && p_to <= 1\" - " + list + ",int,double,double)",
                             }));
}

} // namespace
