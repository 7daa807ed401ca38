#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

using Points = std::vector<Point>;
using Range = Types::MinMax_Base<double>;

using FigureTest = FigureFixture;
using FigureCalls = FigureCallsFixture;
using FigurePixels = FigurePixelsFixture;

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
  const auto outside = std::count_if(points.begin(), points.end(), [](const Point& p) { return p.x < 0; });
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

TEST_F(FigureTest, KeepsAllStringsApartAndInside) {
  std::mt19937 generator(11);
  std::uniform_real_distribution<double> share(0, 1);
  std::size_t labels = 0, blocks = 0;
  for (int view = 0; view < 200; ++view) {
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
  EXPECT_GT(labels, 600U * 8);
  EXPECT_GE(blocks, 600U * 5);
}

/// Of each kind of plot alone, opaque and half-transparent; the second frame uploads nothing.
TEST_F(FigureCalls, AreAsManyForAHundredTimesAsManyElements) {
  struct Kind {
    const char* name;
    std::function<void(Figure&, const Points&, double)> add;
  };
  const auto flat = [](const Points& p_points) { return Points(p_points.size(), Point(1e-6, 0, 0)); };
  const std::vector<Kind> kinds = {
      {"scatter",
       [](Figure& p_figure, const Points& p_points, double p_opacity) {
         p_figure.Scatter(p_points).ColorBy(Doubles(p_points.size(), 0.5)).ColorRange(0, 1).SetOpacity(p_opacity);
       }},
      {"quiver",
       [&](Figure& p_figure, const Points& p_points, double p_opacity) {
         p_figure.Quiver(p_points, flat(p_points)).Most(p_points.size()).UnitLength(1e-6).SetOpacity(p_opacity);
       }},
      {"mesh",
       [](Figure& p_figure, const Points& p_points, double p_opacity) {
         std::vector<std::array<unsigned, 3>> triangles;
         for (unsigned i = 0; i + 2 < p_points.size(); ++i)
           triangles.push_back({i, i + 1, i + 2});
         p_figure.Mesh(p_points, triangles).SetOpacity(p_opacity);
       }},
      {"lines", [](Figure& p_figure, const Points& p_points,
                   double p_opacity) { p_figure.Lines(p_points).SetOpacity(p_opacity); }},
      {"bars",
       [](Figure& p_figure, const Points& p_points, double p_opacity) {
         Doubles x, y, heights(p_points.size(), 1);
         for (const Point& point : p_points)
           x.push_back(point.x), y.push_back(point.y);
         p_figure.Bars(x, y, heights).Width(1e-3).SetOpacity(p_opacity);
       }},
  };
  for (const Kind& kind : kinds)
    for (const double opacity : {1.0, 0.5}) {
      std::vector<std::size_t> calls;
      for (const std::size_t count : {1000, 100000}) {
        Points points = Cloud(count, {0.9, 0.9, 0});
        points[0] = {-1, -1, 0}, points[1] = {1, 1, 0};
        Figure figure;
        for (int axis = 0; axis < 3; ++axis)
          figure.SetLimits(axis, -2, 2);
        kind.add(figure, points, opacity);
        CallsOf(figure);
        calls.push_back(CallsOf(figure).size());
      }
      EXPECT_EQ(calls[0], calls[1]) << kind.name << ", " << opacity;
    }
}

TEST_F(FigureCalls, UploadWhatChanged) {
  constexpr std::size_t Count = 100;
  using Bytes = std::vector<std::size_t>;
  Points points = Cloud(Count, {0.9, 0.9, 0.9});
  points[0] = {-1, -1, -1}, points[1] = {1, 1, 1};
  Figure figure;
  ScatterPlot& scatter = figure.Scatter(points).ColorBy(Ascending(Count));
  QuiverPlot& quiver = figure.Quiver(points, Points(Count, Point(0, 0, 0.01))).UnitLength(0.1);
  EXPECT_GE(UploadsOf(figure).size(), 6U);
  EXPECT_EQ(UploadsOf(figure), Bytes());

  scatter.ColorRange(3, 4).ColorMap("inferno").LogScale().MissingColor(Qt::red).SetOpacity(0.5).ColorTitle("Title");
  quiver.Color(Qt::red).Label("Label");
  EXPECT_EQ(UploadsOf(figure), Bytes()) << "settings";
  scatter.ColorBy(Doubles(Count, 2));
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count})) << "values";
  quiver.UpdateVectors(Points(Count, Point(0, 0.01, 0)));
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count, 24 * Count})) << "vectors: lengths and directions";
  std::swap(points[0], points[1]);
  scatter.UpdatePositions(points);
  EXPECT_EQ(UploadsOf(figure), (Bytes{12 * Count})) << "positions";
  quiver.UpdatePositions(points);
  EXPECT_EQ(UploadsOf(figure), (Bytes{12 * Count})) << "positions of vectors";
  quiver.ColorByLength();
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count})) << "lengths as values";
  quiver.UpdateVectors(Points(Count, Point(0, 0.015, 0)));
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count, 24 * Count, 4 * Count})) << "vectors, and their lengths as values";
  EXPECT_GE(quiver.ColorRange().max, 0.015);
  quiver.Color(Qt::red).UpdateVectors(Points(Count, Point(0, 0.01, 0)));
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count, 24 * Count})) << "lengths are no values any more";
  scatter.SetVisible(false);
  EXPECT_EQ(UploadsOf(figure), Bytes());
}

TEST_F(FigureCalls, DrawNothingInACoreContext) {
  recorder.SetInteger(ProfileMask, {1});
  Figure figure;
  ReportCapture reports;
  CallsOf(figure);
  EXPECT_EQ(Changes(), Lines());
  EXPECT_EQ(reports.Texts(),
            Lines{"WARNING: Figure: a compatibility profile is needed, this context has a core profile"});
}

TEST_F(FigurePixels, PointsAreWhereTheyBelong) {
  const Points flat{{0, 0, 5}, {10, 7, 5}, {3, 6, 5}};
  Figure figure;
  figure.theme = Theme::Dark();
  figure.Scatter(flat)
      .ColorBy(Doubles{0, 1, NaN})
      .ColorMap({Qt::red, Qt::green})
      .ColorRange(0, 1)
      .Diameter(0.05)
      .MissingColor(Qt::blue);
  figure.Draw(gl, viewport);
  constexpr int Shading = 6; // of spheres; the middle faces the light
  EXPECT_TRUE(SameColor(AtPoint(figure, flat[0]).rgb(), Qt::red, Shading));
  EXPECT_TRUE(SameColor(AtPoint(figure, flat[1]).rgb(), Qt::green, Shading));
  EXPECT_TRUE(SameColor(AtPoint(figure, flat[2]).rgb(), Qt::blue, Shading));

  // Far from zero, in perspective, with lighting: the middle point is red in a grey crowd.
  const Point middle(3e7, 2e7, 1e7);
  Figure spatial;
  spatial.Scatter(Cloud(8, {1, 1, 1}, middle)).Color(Qt::gray).Diameter(0.001);
  spatial.Scatter(Points{middle}).Color(Qt::red).Diameter(0.05);
  spatial.Draw(gl, viewport);
  const QColor red = AtPoint(spatial, middle);
  EXPECT_GT(red.red(), 150);
  EXPECT_LT(red.green(), red.red() / 2);
}

TEST_F(FigurePixels, ArrowsPointAlongTheirVectors) {
  Figure figure;
  figure.Quiver(Points{{0, 0, 0}, {10, 10, 0}}, Points{{0, 2, 0}, {0, 0, 0}}).Color(Qt::red).UnitLength(0.1);
  const double length = 2 * 0.1 * std::sqrt(200.0); // of the first arrow, in data units
  EXPECT_EQ(Drawn(figure, {0, 0.5 * length, 0}), QColor(Qt::red));
  EXPECT_EQ(AtPoint(figure, {0.1 * length, 0.7 * length, 0}), QColor(Qt::red)) << "the head is wider";
  EXPECT_EQ(AtPoint(figure, {0, 1.05 * length, 0}), QColor(Qt::white));
  EXPECT_EQ(AtPoint(figure, {0.3 * length, 0.2 * length, 0}), QColor(Qt::white));
  EXPECT_GT(AtPoint(figure, {10, 10, 0}).red(), 200) << "a zero vector is a dot";
}

TEST_F(FigurePixels, TransparentPlotsShowWhatIsBehindThem) {
  const Points corners{{0, 0, 0}, {10, 10, 0}};
  Figure figure;
  figure.Scatter(Points{{5, 5, 1}}).Color(Qt::red).Diameter(0.2).SetOpacity(0.5);
  figure.Scatter(Points{{5, 5, 0}}).Color(Qt::blue).Diameter(0.1);
  ScatterPlot& frame = figure.Scatter(corners);
  figure.Look(0, 90, Camera::Projection::Parallel);
  const QColor both = Drawn(figure, {5, 5, 1});
  EXPECT_GT(both.red(), 60);
  EXPECT_GT(both.blue(), 45); // behind the front and the back of the red sphere
  frame.SetVisible(false);
  figure.Scatter(corners).SetOpacity(0);
  EXPECT_EQ(Drawn(figure, corners[0]), QColor(Qt::white));
}

TEST_F(FigurePixels, DataAreReadDuringTheCall) {
  Points points = Cloud(40), vectors = Cloud(40);
  Doubles values = Ascending(40);
  const auto fill = [&](Figure& p_figure) {
    p_figure.Scatter(points).ColorBy(values).SizeBy(values);
    p_figure.Quiver(points, vectors).ColorBy(values);
  };
  Figure kept, changed;
  fill(kept);
  const QImage expected = kept.Image(ImageSize);
  fill(changed);
  points.assign(40, {});
  vectors.assign(40, {});
  values.assign(40, 0);
  EXPECT_EQ(changed.Image(ImageSize), expected);
}

/// In whatever state a host draws, the image is the same, and its state stays.
TEST_F(FigurePixels, HostStateChangesNothing) {
  Figure figure("Title");
  figure.Scatter(Cloud(10)).ColorBy(Ascending(10)).SetOpacity(0.5);
  figure.Draw(gl, viewport);
  const QImage expected = Image();
  gl->Enable(RGL_CULL_FACE);
  gl->CullFace(RGL_FRONT);
  gl->DepthMask(false);
  gl->DepthFunc(RGL_NEVER);
  gl->DepthRange(1, 0);
  gl->Enable(RGL_STENCIL_TEST);
  gl->StencilFunc(RGL_NEVER, 0, 0);
  gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_LINE);
  gl->Enable(RGL_FOG);
  gl->MatrixMode(RGL_TEXTURE);
  const auto state = StateOf(gl);
  figure.Draw(gl, viewport);
  EXPECT_TRUE(SameImage(Image(), expected));
  EXPECT_EQ(StateOf(gl), state);
}

/// Figures end before and after contexts and move in between; the fixture and the capture see what is left.
TEST_F(FigurePixels, FiguresAndContextsEndInAnyOrder) {
  ReportCapture reports;
  const auto filled = [] {
    Figure figure("Title");
    figure.Scatter(Cloud(20)).ColorBy(Ascending(20));
    figure.Surface(Ascending(3), Ascending(3), Ascending(9)).Contours();
    return figure;
  };
  for (const bool figureEndsFirst : {true, false}) {
    auto first = std::make_unique<Ogl::OffscreenContext>(ImageSize),
         second = std::make_unique<Ogl::OffscreenContext>(ImageSize);
    auto figure = std::make_unique<Figure>(filled());
    QImage images[2];
    for (Ogl::OffscreenContext* const context : {first.get(), second.get()}) {
      Utility::Scoped<Rgl> scope(context->Handle());
      figure->Draw(scope, viewport);
      images[context == second.get()] = context->Image();
    }
    EXPECT_EQ(images[0], images[1]);
    first.reset();
    if (figureEndsFirst)
      figure.reset();
    second.reset();
    if (!figureEndsFirst) {
      Figure moved = std::move(*figure);
      figure.reset();
      EXPECT_EQ(moved.Image(ImageSize).size(), QSize(300, 200));
    }
  }
  EXPECT_EQ(reports.Texts(), Lines());
}

} // namespace
