#include "scene/Legend.h"
#include "scene/ArrowKey.h"
#include "scene/SizeLegend.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <stdexcept>

using namespace Vek::Chart::Scene;

namespace {

using Mark = Legend::Mark;

class LegendTest : public ::testing::Test {
public:
  void SetUp() override { Vek::Test::MakeApplication(); }
  Theme theme;
};

/// The strings, columns from left to right: "a b | c".
std::string Columns(const LegendBlock& p_block) {
  QString columns;
  double x = p_block.Strings().empty() ? 0 : p_block.Strings()[0].position.x;
  for (const LegendBlock::String& string : p_block.Strings()) {
    columns += (columns.isEmpty() ? "" : string.position.x > x ? " | " : " ") + string.text;
    x = string.position.x;
  }
  return columns.toStdString();
}

/// Left to right and bottom to top.
double Extent(const std::vector<Canvas::Position>& p_corners, double Canvas::Position::*p_component) {
  const auto [least, most] =
      std::minmax_element(p_corners.begin(), p_corners.end(),
                          [&](const auto& p_a, const auto& p_b) { return p_a.*p_component < p_b.*p_component; });
  return (*most).*p_component - (*least).*p_component;
}

void ExpectNoOverlap(const LegendBlock& p_block) {
  std::vector<Canvas::Rect> boxes;
  for (const LegendBlock::String& string : p_block.Strings())
    boxes.push_back(p_block.BoxOf(string));
  for (std::size_t i = 0; i < boxes.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_TRUE(boxes[i].left >= boxes[j].right || boxes[j].left >= boxes[i].right ||
                  boxes[i].bottom >= boxes[j].top || boxes[j].bottom >= boxes[i].top)
          << p_block.Strings()[i].text.toStdString() << " over " << p_block.Strings()[j].text.toStdString();
}

} // namespace

TEST_F(LegendTest, NamesInColumns) {
  const double row = std::max(TextRenderer::Size("a", theme.SmallStyle()).height(), theme.SmallStyle().size) * 1.25;
  const std::tuple<QStringList, double, const char*> cases[] = {
      {{"a", "b", "c"}, 3.1, "a b c"},
      {{"a", "b", "c"}, 2.1, "a b | c"},
      {{"a", "b", "c"}, 0.1, "a | b | c"},
      {{"a", "", "c"}, 2.1, "a c"},
      {{"", ""}, 2.1, ""},
      {{}, 1, ""},
  };
  for (const auto& [names, rows, expected] : cases) {
    Legend legend;
    for (const QString& name : names)
      legend.entries.push_back({name});
    const LegendBlock block = legend.Layout(rows * row, theme);
    EXPECT_EQ(Columns(block), expected) << rows;
    EXPECT_EQ(block.Shapes().size(), block.Strings().size()); // a patch for each name
    EXPECT_EQ(block.Width() > 0, *expected != 0);
    EXPECT_LE(block.Height(), std::max(rows, 1.0) * row);
    ExpectNoOverlap(block);
  }
  Legend titled;
  titled.title = "A title wider than names";
  titled.entries = {{"a"}, {"b"}};
  EXPECT_EQ(Columns(titled.Layout(500, theme)), "A title wider than names | a b");
  ExpectNoOverlap(titled.Layout(1, theme));
  ExpectErrors({{"A legend needs a height above 0, got nan", VEK_CALL(titled.Layout(NaN, theme))}});
}

TEST_F(LegendTest, NarrowColumns) {
  const TextStyle style = theme.SmallStyle();
  const double row = std::max(TextRenderer::Size("a", style).height(), style.size) * 1.25;
  const double place = style.size * (1.6 + 0.5); // of a mark
  const double longest = TextRenderer::Size("station number 11 of the coast", style).width();
  const auto laidOut = [&](const QStringList& p_names, double p_rows, double p_width) {
    Legend legend;
    for (const QString& name : p_names)
      legend.entries.push_back({name});
    LegendBlock block = legend.Layout(p_rows * row, p_width, theme, 1);
    EXPECT_LE(block.Width(), p_width);
    ExpectNoOverlap(block);
    return block;
  };
  // As wide as all need: nothing changes.
  EXPECT_EQ(Columns(laidOut({"a", "bb", "c"}, 2.1, 500)), "a bb | c");
  // Long names are shortened in their middle, down to the width, and short ones beside them are not.
  const LegendBlock two = laidOut({"station number 11 of the coast", "b"}, 1.1, place + longest);
  ASSERT_EQ(two.Strings().size(), 2U);
  EXPECT_TRUE(two.Strings()[0].text.startsWith("station") && two.Strings()[0].text.endsWith("coast"));
  EXPECT_EQ(two.Strings()[0].text.count(u'…'), 1);
  EXPECT_EQ(two.Strings()[1].text, "b");
  EXPECT_GT(two.Width(), place + longest - style.size);
  // No half of a character that takes two units.
  const QString note = QString::fromUtf8("\xF0\x9D\x84\x9E");
  for (const double letters : {8.0, 8.5, 9.0, 9.5}) {
    const LegendBlock block = laidOut({note.repeated(40)}, 1.1, place + letters * style.size);
    const QString& shortened = block.Strings()[0].text;
    EXPECT_EQ(QString(shortened).remove(note), QString(u'…')) << letters;
  }
  // Marks of lines are wider by half of their width.
  Legend lines;
  lines.entries.push_back({"station number 11 of the coast", Mark::Line, Qt::red, 6});
  EXPECT_LE(lines.Layout(row, longest, theme, 1).Width(), longest);
  // What has no room is counted in place of the last entry.
  QStringList names;
  for (int i = 0; i < 40; ++i)
    names << QString("station number %1 of the coast").arg(i);
  const LegendBlock many = laidOut(names, 5.1, 2.5 * longest);
  const QString last = many.Strings().back().text;
  const int more = static_cast<int>(many.Shapes().size());
  EXPECT_EQ(last, QString("… %1 more").arg(40 - more));
  EXPECT_EQ(many.Strings().size(), many.Shapes().size() + 1); // no mark beside the number
  EXPECT_EQ((many.Strings().size()) % 5, 0U);
  EXPECT_GE(more, 9);
}

TEST_F(LegendTest, MarksOfPlots) {
  const std::vector<std::vector<Canvas::Position>> square = {{{-0.5, -0.5}, {0.5, -0.5}, {0.5, 0.5}, {-0.5, 0.5}}};
  const std::tuple<Mark, std::vector<std::vector<Canvas::Position>>, std::size_t, std::size_t> cases[] = {
      {Mark::Line, {}, 1, 0},
      {Mark::Dot, {}, 0, 1},
      {Mark::Patch, {}, 0, 1},
      {Mark::Glyph, {}, 0, 2},
      {Mark::Glyph, square, 0, 1}};
  for (const auto& [mark, glyph, lines, shapes] : cases) {
    Legend legend;
    legend.entries = {{"name", mark, Qt::red, 3, glyph}};
    const LegendBlock block = legend.Layout(100, theme);
    ASSERT_EQ(block.Lines().size(), lines);
    ASSERT_EQ(block.Shapes().size(), shapes);
    EXPECT_EQ(lines > 0 ? block.Lines()[0].color : block.Shapes()[0].color, QColor(Qt::red));
    const auto& corners = lines > 0 ? block.Lines()[0].positions : block.Shapes().back().corners;
    for (const Canvas::Position& corner : corners) { // left of the name, as high as letters
      EXPECT_LT(corner.x, block.Strings()[0].position.x);
      EXPECT_LE(std::abs(corner.y - block.Strings()[0].position.y), theme.SmallStyle().size / 2);
    }
    if (!glyph.empty()) {
      EXPECT_DOUBLE_EQ(Extent(corners, &Canvas::Position::x), theme.SmallStyle().size);
    }
  }
}

TEST_F(LegendTest, SizesOfValues) {
  const auto area = [](double p_value) { return 20 * std::sqrt(p_value); };
  const std::tuple<double, double, std::function<double(double)>, const char*> cases[] = {
      {4.5, 7.2, [](double p_value) { return 5 * (p_value - 3); }, "5 6 7"},
      {0, 10, area, "2.5 7.5 10.0"}, // 0 has no disk
      {2, 2, area, "2"},
      {0, 0, area, ""},
      {0, 4e7, area, "10 30 40"},
      {-1, 1, [](double p_value) { return p_value < 0 ? NAN : p_value; }, "0.25 0.75 1.00"},
  };
  for (const auto& [least, largest, diameter, expected] : cases) {
    SizeLegend legend;
    legend.least = least;
    legend.largest = largest;
    legend.diameter = diameter;
    const LegendBlock block = legend.Layout(theme);
    QStringList strings;
    double below = HUGE_VAL;
    for (std::size_t i = 0; i < block.Shapes().size(); ++i) {
      const QString text = block.Strings()[block.Strings().size() - block.Shapes().size() + i].text;
      strings << text;
      const double value = text.toDouble() * (largest > 1e6 ? 1e6 : 1);
      const auto& corners = block.Shapes()[i].corners;
      EXPECT_NEAR(Extent(corners, &Canvas::Position::x), diameter(value), 1e-9) << text.toStdString();
      const double top = corners[12].y, bottom = corners[36].y; // of 48
      EXPECT_LT(top, below);
      below = bottom;
    }
    EXPECT_EQ(strings.join(' ').toStdString(), expected);
    ExpectNoOverlap(block);
  }
  ExpectErrors({{"A size legend needs the diameters of values, got none", VEK_CALL(SizeLegend().Layout(theme))}});
}

TEST_F(LegendTest, ArrowsOfRoundValues) {
  const std::tuple<double, double, double, const char*> cases[] = {
      {6.5, 80, 10, "10 m/s"},  {8, 80, 10, "10 m/s"},          {8.1, 80, 5, "5 m/s"},
      {30, 80, 2.5, "2.5 m/s"}, {33, 80, 2, "2 m/s"},           {79, 80, 1, "1 m/s"},
      {81, 80, 0.5, "0.5 m/s"}, {1e-9, 80, 5e10, "5×10¹⁰ m/s"}, {1e9, 80, 5e-8, "5×10⁻⁸ m/s"},
  };
  for (const auto& [pointsPerUnit, most, value, string] : cases) {
    const ArrowKey key{pointsPerUnit, "m/s", {}, most};
    EXPECT_DOUBLE_EQ(key.Value(), value) << pointsPerUnit;
    const LegendBlock block = key.Layout(theme);
    EXPECT_EQ(block.Strings()[0].text.toStdString(), string);
    EXPECT_NEAR(block.Shapes().back().corners[1].x, value * pointsPerUnit, 1e-9); // the tip
    EXPECT_GT(value * pointsPerUnit, 0.4 * most);
  }
  const auto value = [](double p_pointsPerUnit, double p_most) {
    return [=] { ArrowKey{p_pointsPerUnit, {}, {}, p_most}.Value(); };
  };
  ExpectErrors({
      {"An arrow key needs lengths above 0, got 0.000000 points per unit and at most 80.000000 points", value(0, 80)},
      {"An arrow key needs lengths above 0, got 1.000000 points per unit and at most -1.000000 points", value(1, -1)},
      {"An arrow key needs lengths above 0, got inf points per unit and at most 80.000000 points", value(HUGE_VAL, 80)},
  });
}
