#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

using Points = std::vector<Point>;
using Range = Types::MinMax_Base<double>;

using FigureTest = FigureFixture;

TEST_F(FigureTest, RefusesWrongArguments) {
  Figure figure, other;
  ScatterPlot& plot = figure.Scatter(Cloud(3));
  ExpectErrors({
      {"Quiver: vectors: expected 3 elements, got 2", [&] { figure.Quiver(Cloud(3), Cloud(2)); }},
      {"ColorBy: expected 3 elements, got 4", [&] { plot.ColorBy(Doubles(4)); }},
      {"SizeBy: expected 3 elements, got 2", [&] { plot.SizeBy(Doubles(2)); }},
      {"UpdatePositions: expected 3 elements, got 1", [&] { plot.UpdatePositions(Cloud(1)); }},
      {"ColorRange: expected finite, ascending limits, got 2 and 2", [&] { plot.ColorRange(2, 2); }},
      {"ColorRange: expected finite, ascending limits above 0, got 0 and 2", [&] { plot.LogScale().ColorRange(0, 2); }},
      {"ColorMap: expected at least one colour, got none", [&] { plot.ColorMap(std::vector<QColor>()); }},
      {"Color: expected a valid colour, got an invalid one", [&] { plot.Color({}); }},
      {"SetOpacity: expected 0 to 1, got 2.000000", [&] { plot.SetOpacity(2); }},
      {"Diameter: expected a fraction above 0 and up to 1, got 0.000000", [&] { plot.Diameter(0); }},
      {"SizeGrowth: expected a factor above 1, or 0, got 1.000000", [&] { plot.SizeGrowth(1); }},
      {"Symbol: expected a built-in shape, got 15", [&] { plot.Symbol(Model::Symbol::ShapeCustom); }},
      {"SetLimits: expected finite, ascending limits, got 1.000000 and nan", [&] { figure.SetLimits(0, 1, NaN); }},
      {"SetLimits: expected an axis of 0 to 2, got 3", [&] { figure.SetLimits(3, 0, 1); }},
      {"SetAspect: expected factors above 0, got 0.000000", [&] { figure.SetAspect(1, 0, 1); }},
      {"Image: expected a size above 0, got 0 x 5", VEK_CALL(figure.Image({0, 5}))},
      {"Remove: expected a plot of this figure, got another one", [&] { other.Remove(plot); }},
  });
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { plot.ColorMap("vridis"); }).find("colour map \"vridis\""), 0U);
  EXPECT_EQ(ErrorOf<std::runtime_error>([&] {
              figure.Save("/no/such/folder/a.png", {40, 30});
            }).find("/no/such/folder/a.png: "),
            0U);
}

TEST_F(FigureTest, ChoosesTheRangeOfColors) {
  Doubles spike(1000, 0), exponential(1000), gaps{NaN, 3, NaN, 4};
  for (std::size_t i = 0; i < 1000; ++i) {
    spike[i] = i == 500 ? 1e6 : std::sin(static_cast<double>(i));
    exponential[i] = -std::log(1 - (static_cast<double>(i) + 0.5) / 1000);
  }
  const std::vector<std::tuple<Doubles, bool, Range>> cases = {
      {{0.13, 14.7}, false, {0, 15}},    // rounded outward
      {{-0.3, 0.3}, false, {-0.3, 0.3}}, // round already
      {{5, 5}, false, {4.5, 5.5}},       // all equal
      {{0}, false, {-0.5, 0.5}},         //
      {gaps, false, {3, 4}},             // without missing values
      {{NaN}, false, {0, 1}},            // no value
      {{1e7 + 1, 1e7 + 3}, false, {1e7 + 1, 1e7 + 3}},
      {spike, false, {-1, 1}},          // one outlier of a thousand
      {{0, 1, 1000}, false, {0, 1000}}, // none among three
      {exponential, false, {0, 8}},     // a long tail is no outlier
      {{-5, 0, 0.003, 700}, true, {0.002, 1000}},
      {{-1, 0}, true, {1, 10}},
  };
  for (const auto& [values, isLogarithmic, expected] : cases) {
    Figure figure;
    const Range range = figure.Scatter(Cloud(values.size())).ColorBy(values).LogScale(isLogarithmic).ColorRange();
    EXPECT_DOUBLE_EQ(range.min, expected.min) << values.size() << " values from " << values[0];
    EXPECT_DOUBLE_EQ(range.max, expected.max) << values.size() << " values from " << values[0];
  }
}

TEST_F(FigureTest, SaysWhatTheDataDoNotShow) {
  Figure figure;
  Points points = Cloud(20);
  points[3].x = NaN;
  points[4].z = Infinity;
  Doubles values(20, 1);
  values[0] = NaN;
  QuiverPlot& quiver = figure.Quiver(points, Points(20, Point(0, 0, 1))).ColorBy(values);
  EXPECT_EQ(NotesOf(figure), (Notes{"2 arrows missing", "1 value missing"}));
  quiver.Most(5);
  EXPECT_EQ(NotesOf(figure).at(0), "5 of 18 arrows drawn");
  quiver.Most(100);
  figure.SetLimits(0, 0, 2).SetAxisTitles("Width", "Length", "Height");
  const auto outside = std::count_if(points.begin(), points.end(), [](const Point& p_point) { return p_point.x < 0; });
  EXPECT_EQ(NotesOf(figure).at(1), QString("%1 arrows outside of the axes").arg(outside - (points[4].x < 0 ? 1 : 0)));
  figure.Remove(quiver);
  EXPECT_EQ(NotesOf(figure), Notes());

  figure.Scatter(Points{{1, 1, 1}, {-1, 1, 1}}).Label("Towns");
  figure.Scatter(Points{{1, 1, 1}, {NaN, 1, 1}}).Label("Cities");
  EXPECT_EQ(NotesOf(figure), (Notes{"Towns: 1 point outside of the axes", "Cities: 1 point missing"}));

  Figure empty;
  empty.Scatter(Points{{NaN, 0, 0}});
  ReportCapture reports;
  EXPECT_FALSE(empty.Layout(wide).axes.labels.empty());
  empty.Layout(wide);
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: Figure: plot 1 has no point to show"});
}

TEST_F(FigureTest, LabelsDates) {
  const double day = 86400, first = 18700 * day; // 2021-03-14
  for (const std::size_t axis : {0, 1, 2}) {
    Figure figure;
    Point low(0, 0, 0), high(5, 5, 5);
    (axis == 0 ? low.x : axis == 1 ? low.y : low.z) = first;
    (axis == 0 ? high.x : axis == 1 ? high.y : high.z) = first + 20 * day;
    figure.Scatter(Points{low, high});
    figure.SetAxisTitles("Time", "Time", "Time").SetLogAxis(static_cast<int>(axis)).SetDateAxis(static_cast<int>(axis));
    const FigureLayout layout = figure.Layout(wide);
    EXPECT_EQ(layout.notes, Notes());
    Notes labels;
    for (const auto& label : layout.axes.labels)
      if (label.axis == axis)
        labels.push_back(label.text);
    EXPECT_EQ(labels.front(), "Time (2021)");
    EXPECT_NE(std::find(labels.begin(), labels.end(), "Apr 1"), labels.end()) << axis;
  }
}

TEST_F(FigureTest, StretchesUnequalSpansAndSaysSo) {
  const std::vector<std::tuple<Point, Notes, Point>> cases = {
      // half spans, notes, edges of the box of data in the scene relative to the longest
      {{1, 1, 1}, {}, {1, 1, 1}},
      {{4, 1.1, 1.1}, {}, {1, 0.275, 0.275}},
      {{100, 50, 1}, {"z \u00D7 50"}, {1, 0.5, 0.5}},
      {{1, 1, 1000}, {"z \u00D7 0.0005"}, {1, 1, 0.5}},
      {{1, 1000, 100}, {"x \u00D7 500", "z \u00D7 5"}, {0.5, 1, 0.5}},
      {{1000, 1, 1}, {"y \u00D7 500", "z \u00D7 500"}, {1, 0.5, 0.5}},
      {{1e7, 1e7, 1e7}, {}, {1, 1, 1}},
  };
  for (const auto& [half, notes, edges] : cases) {
    Figure figure;
    figure.Scatter(Points{-half, half});
    EXPECT_EQ(NotesOf(figure), notes) << half.x << ' ' << half.y << ' ' << half.z;
    const Point size = figure.ToScene(half) - figure.ToScene(-half);
    const double longest = std::max({size.x, size.y, size.z});
    EXPECT_NEAR(Length(size / longest - edges), 0, 1e-9) << half.x << ' ' << half.y << ' ' << half.z;
    EXPECT_GT(longest, 0.5);
    EXPECT_LE(longest, 1);
  }
}

/// Positions in the scene are single precision, so the figure's origin has to lie close to the data.
TEST_F(FigureTest, KeepsTheDigitsOfLargeCoordinates) {
  const Point middle(4.5e7, -5.2e6, 1e9);
  Figure figure;
  figure.Scatter(Cloud(50, {1, 1, 1}, middle));
  NotesOf(figure);
  const Point scene = figure.ToScene(middle + Point(0.125, 0, 0));
  EXPECT_LT(Length(scene), 1);
  const Point back =
      figure.ToData(Point(static_cast<float>(scene.x), static_cast<float>(scene.y), static_cast<float>(scene.z)));
  EXPECT_NEAR(back.x - middle.x, 0.125, 1e-6);
}

/// Doubles at the ends of double neither throw nor leave the image.
TEST_F(FigureTest, ExtremeNumbersHaveALayout) {
  for (const double low : {-1e308, 0.0, 1e-320, 1e17, NaN})
    for (const double high : {1e-310, 1.0, 1e17 + 16, 1.7e308, Infinity}) {
      const Points points{{low, 0, low}, {high, 1, 0}, {1, high, high}};
      for (const bool isLogarithmic : {false, true}) {
        Figure figure;
        figure.SetLogAxis(0, isLogarithmic);
        figure.Scatter(points).ColorBy(Doubles{low, high, 1}).LogScale(isLogarithmic);
        figure.Quiver(points, points).ColorBy(Doubles{high, low, 0});
        FigureLayout layout;
        EXPECT_NO_THROW(layout = figure.Layout(wide)) << low << " to " << high << ", " << isLogarithmic;
        EXPECT_TRUE(std::isfinite(layout.camera.distance)) << low << " to " << high << ", " << isLogarithmic;
      }
    }
}

/// The strings of the blocks.
std::vector<QString> StringsOf(const FigureLayout& p_layout) {
  std::vector<QString> strings;
  for (const FigureLayout::Block& block : p_layout.blocks)
    for (const LegendBlock::String& string : block.content.Strings())
      strings.push_back(string.text);
  return strings;
}

TEST_F(FigureTest, KeysAreTrueToTheData) {
  Figure figure;
  figure.Quiver(Points{{0, 0, 0}, {30, 40, 0}}, Points(2, Point(0, 7, 0))).UnitLength(0.02).LengthTitle("m/s");
  const FigureLayout layout = figure.Layout(wide);
  ASSERT_EQ(layout.blocks.size(), 1U);
  const LegendBlock& key = layout.blocks[0].content;
  double value = 0, left = HUGE_VAL, right = -HUGE_VAL;
  for (const LegendBlock::String& string : key.Strings())
    value = std::max(value, string.text.toDouble());
  for (const LegendBlock::Shape& shape : key.Shapes())
    for (const auto& corner : shape.corners)
      left = std::min(left, corner.x), right = std::max(right, corner.x);
  const auto pixel = [&](double p_x) { return layout.camera.Project(figure.ToScene({p_x, 0, 0}), wide).x; };
  EXPECT_GT(value, 0);
  EXPECT_NEAR(right - left, value * 0.02 * 50 * (pixel(1) - pixel(0)), 0.5);
  const std::vector<QString> strings = StringsOf(layout);
  EXPECT_EQ(std::count(strings.begin(), strings.end(), "m/s"), 1);
}

TEST_F(FigureTest, LogarithmicBarsHaveTrueExtremes) {
  Figure figure;
  figure.Scatter(Cloud(4)).ColorBy(Doubles{-3, 0.5, 20, 70}).LogScale().ColorRange(1, 50);
  const std::vector<QString> strings = StringsOf(figure.Layout(wide));
  EXPECT_EQ(QStringList(strings.begin(), strings.end()).join(' ').toStdString(), "1 2 5 10 20 50 \u22123 70");
}

TEST_F(FigureTest, EqualColorsShareABar) {
  const auto bars = [&](Figure& p_figure) {
    std::size_t count = 0;
    for (const FigureLayout::Block& block : p_figure.Layout(wide).blocks)
      count += block.content.Gradients().size();
    return count;
  };
  Figure figure;
  figure.Scatter(Cloud(3)).ColorBy(Ascending(3)).ColorTitle("Depth").Label("first");
  ScatterPlot& second = figure.Scatter(Cloud(5)).ColorBy(Ascending(3 + 2)).ColorRange(0, 2).ColorTitle("Depth");
  EXPECT_EQ(bars(figure), 1U);
  second.ColorRange(0, 3);
  EXPECT_EQ(bars(figure), 2U);
  second.Label("second").Color(Qt::red);
  EXPECT_EQ(bars(figure), 1U);
  const std::vector<QString> strings = StringsOf(figure.Layout(wide));
  for (const char* const name : {"Depth", "first", "second"})
    EXPECT_EQ(std::count(strings.begin(), strings.end(), name), 1) << name;
}

/// Layouts are made for each frame, and several for one.
TEST_F(FigureTest, ReportsAMissingLegendOnce) {
  Figure figure("A title that has no room in a small image");
  figure.Scatter(Cloud(3)).ColorBy(Ascending(3)).ColorTitle("Temperature");
  ReportCapture reports;
  for (const float width : {60.0F, 61.0F, 62.0F})
    figure.Layout(Viewport(0, 0, width, 60));
  const auto texts = reports.Texts();
  EXPECT_FALSE(texts.empty());
  EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()).size(), texts.size());
}

/// A title of one long word is shortened as well.
TEST_F(FigureTest, LongTitlesStay) {
  Figure figure("temperature_of_the_surface_of_the_sea_monthly_mean_1987.nc");
  figure.Scatter(Cloud(3));
  const ReportCapture reports;
  const FigureLayout layout = figure.Layout({0, 0, 400, 300});
  ASSERT_FALSE(layout.blocks.empty());
  const QString title = layout.blocks[0].content.Strings()[0].text;
  EXPECT_TRUE(title.startsWith("temperature_of") && title.contains(u'…') && title.endsWith("mean_1987.nc"));
  EXPECT_LE(layout.blocks[0].Rect().right, 400);
  EXPECT_EQ(reports.Texts(), std::vector<std::string>{});
}

/// The names of plots are shortened, or counted, instead of being left out as a whole.
TEST_F(FigureTest, LongLegendsStay) {
  Figure figure;
  for (int i = 0; i < 60; ++i)
    figure.Lines(Cloud(3)).Label(QString("A long name of a measuring station of the coast, number %1").arg(i));
  figure.Scatter(Cloud(3)).SizeBy(Ascending(3), "Magnitude");
  const ReportCapture reports;
  for (const Viewport& viewport : {Viewport(0, 0, 1000, 600), Viewport(0, 0, 500, 900), Viewport(0, 0, 400, 300)}) {
    const std::vector<QString> strings = StringsOf(figure.Layout(viewport));
    const auto count = [&](const char* p_end) {
      return std::count_if(strings.begin(), strings.end(), [&](const QString& p_s) { return p_s.endsWith(p_end); });
    };
    EXPECT_EQ(count(" more"), 1) << viewport.width;
    EXPECT_EQ(count("mber 0"), 1) << viewport.width;
    EXPECT_EQ(count("Magnitude"), 1) << viewport.width;
  }
  EXPECT_EQ(reports.Texts(), std::vector<std::string>{});
}

/// Legends below a tall scene move up to its axes, but not over the triad.
TEST_F(FigureTest, LegendsLeaveTheTriadItsCorner) {
  for (const bool hasTriad : {false, true}) {
    Figure figure;
    figure.Scatter(Cloud(9)).ColorBy(Ascending(9), "Temperature");
    figure.SetTriad(hasTriad);
    const FigureLayout layout = figure.Layout({0, 0, 300, 1200});
    ASSERT_EQ(layout.blocks.size(), 1U);
    EXPECT_EQ(layout.blocks[0].Rect().bottom < layout.scene.bottom, hasTriad);
  }
}

TEST_F(FigureTest, KeepsAllStringsApartAndInside) {
  std::mt19937 generator(11);
  std::uniform_real_distribution<double> share(0, 1);
  std::size_t labels = 0, blocks = 0;
  for (int view = 0; view < 60; ++view) {
    Figure figure("A chart of something", "and what it is about");
    figure.SetAxisTitles("Width in m", "Length in m", "Height in m");
    const Point half(std::exp(4 * share(generator)), std::exp(4 * share(generator)), std::exp(4 * share(generator)));
    Points points = Cloud(30, half, {1000 * share(generator), 0, 0});
    points[0].x = NaN;
    figure.Scatter(points).ColorBy(Ascending(30)).ColorTitle("Temperature in K");
    figure.Scatter(points).ColorBy(Ascending(30)).ColorTitle("Pressure").ColorMap("plasma").SizeBy(Ascending(30));
    figure.Quiver(points, Cloud(30, half)).Color(Qt::red);
    figure.Look(360 * share(generator), 180 * share(generator) - 90,
                view % 2 == 0 ? Camera::Projection::Perspective : Camera::Projection::Parallel);
    for (const Viewport& viewport : {Viewport(0, 0, 1000, 600), Viewport(0, 0, 500, 900), Viewport(0, 0, 420, 380)}) {
      const FigureLayout layout = figure.Layout(viewport);
      std::vector<QPolygonF> polygons;
      for (const FigureLayout::Block& block : layout.blocks) {
        const Canvas::Rect rect = block.Rect();
        polygons.push_back(QRectF(QPointF(rect.left, rect.bottom), QPointF(rect.right, rect.top)));
      }
      for (const AxesLayout::Label& label : layout.axes.labels)
        polygons.push_back(PolygonOf(label));
      blocks += layout.blocks.size();
      labels += layout.axes.labels.size();
      const QRectF page(QPointF(-0.5, -0.5), layout.size + QSizeF(1, 1));
      for (std::size_t i = 0; i < polygons.size(); ++i) {
        EXPECT_TRUE(page.contains(polygons[i].boundingRect())) << "view " << view << ", string " << i;
        for (std::size_t j = 0; j < i; ++j)
          EXPECT_LT(AreaOf(polygons[i].intersected(polygons[j])), 1)
              << "view " << view << ", strings " << i << ", " << j;
      }
      for (const Point& point : points) // no label over data
        if (std::isfinite(point.x)) {
          const Camera::Pixel pixel = layout.camera.Project(figure.ToScene(point), viewport);
          for (const QPolygonF& polygon : polygons)
            EXPECT_FALSE(polygon.containsPoint({pixel.x, pixel.y}, Qt::WindingFill)) << "view " << view;
        }
      for (std::size_t i = 0; i < layout.blocks.size(); ++i) // no legend over data
        for (const auto& [x, y] : layout.axes.corners)
          EXPECT_FALSE(polygons[i].boundingRect().contains(QPointF(x, y)))
              << "view " << view << ", block " << i << " of " << viewport.width << " x " << viewport.height;
    }
  }
  EXPECT_GT(labels, 180U * 8);
  EXPECT_GE(blocks, 180U * 5);
}

} // namespace
