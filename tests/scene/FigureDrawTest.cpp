#include "scene/Figure.h"

#include "tests/support/ErrorOf.h"
#include "tests/support/Figures.h"

namespace {

using Points = std::vector<Point>;

using FigureCalls = FigureCallsFixture;
using FigurePixels = FigurePixelsFixture;

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

/// The calls that draw vertex by vertex, or from memory of the process.
Lines DrawnFromMemory(const Lines& p_calls) {
  Lines found;
  std::map<std::string, bool> isBound; // by target
  for (const std::string& call : p_calls) {
    const auto is = [&](const char* p_text) { return call.find(p_text) != std::string::npos; };
    if (call.rfind("BindBuffer(", 0) == 0)
      isBound[call.substr(11, call.find(',') - 11)] = !is(", 0)");
    else if (call.rfind("Begin(", 0) == 0 || call.rfind("CallList(", 0) == 0 ||
             (is("Pointer(") && !isBound["GL_ARRAY_BUFFER"]) ||
             (call.rfind("DrawElements", 0) == 0 && !isBound["GL_ELEMENT_ARRAY_BUFFER"]))
      found.push_back(call);
  }
  return found;
}

TEST_F(FigureCalls, DrawFromBuffersAlone) {
  recorder.SetInteger(RGL_SAMPLE_BUFFERS, {0});
  const Points points = Cloud(20);
  const VoxelGrid volume(std::vector<float>{0, 1, 2, 3, 4, 5, 6, 7}, {2, 2, 2}, {{-1, -1, -1}, {1, 1, 1}});
  const Doubles uneven = {0, 1, 3};
  const Doubles axis = {-1, 0, 1};
  for (const double opacity : {1.0, 0.5})
    for (const bool isMoving : {false, true}) {
      Figure figure("Title", "Subtitle");
      figure.SetTriad(true).SetMoving(isMoving);
      figure.Scatter(points).ColorBy(Ascending(20)).ColorTitle("Value").SizeBy(Ascending(20)).SetOpacity(opacity);
      figure.Quiver(points, points).ColorByLength().Label("arrows").SetOpacity(opacity);
      figure.Mesh(points, std::vector<std::array<unsigned, 3>>{{0, 1, 2}}).Label("mesh").SetOpacity(opacity);
      figure.Lines(points).SetOpacity(opacity);
      figure.Bars(axis, axis, axis).SetOpacity(opacity);
      figure.Surface(axis, axis, Ascending(9)).Contours(5).SetOpacity(opacity);
      figure.Streamlines(VectorField::Rectilinear(axis, axis, axis, Points(27, Point(1, 0, 0)))).SetOpacity(opacity);
      figure.Slices(volume).SetOpacity(opacity);
      figure.Slices(VoxelGrid(std::vector<float>(27, 1), uneven, uneven, uneven));
      figure.Volume(volume);
      figure.Isosurface(volume, 3.5).SetOpacity(opacity);
      figure.Clip(0, 0.2, Figure::Side::Above);
      EXPECT_EQ(DrawnFromMemory(CallsOf(figure)), Lines());
      EXPECT_EQ(DrawnFromMemory(CallsOf(figure)), Lines()) << "a second time";
      CallsOf(figure);
      EXPECT_GT(recorder.LinesOf({"DrawArrays", "DrawElements", "DrawArraysInstanced", "DrawElementsInstanced"}).size(),
                12U);
      recorder.Clear();
      figure.Pick(gl, {0, 0, 600, 400}, {300, 200});
      EXPECT_EQ(DrawnFromMemory(recorder.Lines()), Lines()) << "a pick";
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
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count, 12 * Count})) << "vectors: lengths and directions";
  std::swap(points[0], points[1]);
  scatter.UpdatePositions(points);
  EXPECT_EQ(UploadsOf(figure), (Bytes{12 * Count})) << "positions";
  quiver.UpdatePositions(points);
  EXPECT_EQ(UploadsOf(figure), (Bytes{12 * Count})) << "positions of vectors";
  quiver.ColorByLength();
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count})) << "lengths as values";
  quiver.UpdateVectors(Points(Count, Point(0, 0.015, 0)));
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count, 12 * Count, 4 * Count})) << "vectors, and their lengths as values";
  EXPECT_GE(quiver.ColorRange().max, 0.015);
  quiver.Color(Qt::red).UpdateVectors(Points(Count, Point(0, 0.01, 0)));
  EXPECT_EQ(UploadsOf(figure), (Bytes{4 * Count, 12 * Count})) << "lengths are no values any more";
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

TEST_F(FigurePixels, PointsHaveColorsOfTheirOwn) {
  Figure figure;
  ScatterPlot& plot = figure.Scatter(Points{{0, 0, 0}, {10, 10, 0}}).Diameter(0.1).ColorBy(Doubles{1, 2});
  plot.ColorEach({Qt::red, Qt::blue});
  figure.Look(0, 90, Camera::Projection::Parallel);
  const QColor red = Drawn(figure, {0, 0, 0}), blue = Drawn(figure, {10, 10, 0});
  EXPECT_TRUE(red.red() > 100 && red.blue() < 50 && blue.blue() > 100 && blue.red() < 50);
  plot.SetOpacity(0);
  EXPECT_EQ(Drawn(figure, {0, 0, 0}), QColor(Qt::white));
  const QColor green = (plot.SetOpacity(1).Color(Qt::green), Drawn(figure, {0, 0, 0}));
  EXPECT_TRUE(green.green() > 100 && green.red() < 50);
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { plot.ColorEach({Qt::red}); }),
            "ColorEach: expected 2 elements, got 1");
}

/// Floats have too few digits for seconds since 1970, and too small a range for some units.
TEST_F(FigurePixels, ColorsTellNumbersOfAnySizeApart) {
  struct Case {
    double first, step;
    bool isLogarithmic;
  };
  for (const auto& [first, step, isLogarithmic] : {Case{0, 1, false},
                                                   {1.7e9, 1, false},
                                                   {1.7e9, 1, true},
                                                   {-1e15, 1, false},
                                                   {1e39, 1e39, false},
                                                   {2e-300, 1e-300, true},
                                                   {-5e307, 5e307, false}}) {
    const Doubles values = Ascending(3, first, step);
    Figure points, surface;
    points.Scatter(Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}})
        .Diameter(0.2)
        .ColorBy(values)
        .LogScale(isLogarithmic)
        .ColorRange(values[0], values[2]);
    surface.Surface(Doubles{0, 1, 2}, Doubles{0, 1}, Doubles(6))
        .ColorBy(Doubles{values[0], values[1], values[2], values[0], values[1], values[2]})
        .LogScale(isLogarithmic)
        .ColorRange(values[0], values[2]);
    for (const auto& [figure, y] : {std::pair(&points, 0.0), std::pair(&surface, 0.5)}) {
      const auto lightness = [&, figure = figure, y = y](double p_x) {
        return Drawn(*figure, {p_x, y, 0}).lightnessF();
      };
      EXPECT_GT(lightness(1), lightness(0.01) + 0.05) << first << " + " << step;
      EXPECT_GT(lightness(1.99), lightness(1) + 0.05) << first << " + " << step;
      const auto pixel = PixelOf(*figure, {1.98, y, 0});
      const auto hit = figure->Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)});
      ASSERT_TRUE(hit && hit->value);
      EXPECT_NEAR(*hit->value, values[2], 1e-6 * step);
    }
  }
}

TEST_F(FigurePixels, SizesGrowByAFactorOrInProportion) {
  const auto widthOf = [](const QImage& p_image, int p_from, int p_to) {
    int most = 0;
    for (int y = 0; y < p_image.height(); ++y) {
      int red = 0;
      for (int x = p_from; x < p_to; ++x)
        red += p_image.pixelColor(x, y).red() > p_image.pixelColor(x, y).green() + 60;
      most = std::max(most, red);
    }
    return most;
  };
  for (const auto& [growth, ratio] : {std::pair(0.0, 1.0), {2.0, 8.0}}) { // 3 units apart
    Figure figure;
    figure.Scatter(Points{{0, 0, 0}, {10, 0, 0}})
        .Color(Qt::red)
        .SizeBy(Doubles{-1, 2})
        .SizeGrowth(growth)
        .Diameter(0.4);
    const QImage image = figure.Image({600, 400});
    const int small = widthOf(image, 0, 300), large = widthOf(image, 300, 600);
    EXPECT_GT(large, 100);
    if (growth == 0)
      EXPECT_EQ(small, 0); // a value below 0 has no area
    else
      EXPECT_NEAR(large / ratio, small, 2);
  }
}

TEST_F(FigurePixels, LaterPlotsOfAPlaneLieAbove) {
  Figure figure;
  const Doubles axis{0, 5, 10};
  figure.Surface(axis, axis, Doubles(9)).Color(Qt::blue);
  figure.Quiver(Points{{2, 2, 0}}, Points{{6, 6, 0}}).Color(Qt::red).UnitLength(0.1);
  const QColor above = Drawn(figure, {4, 4, 0}), beside = AtPoint(figure, {8, 2, 0});
  EXPECT_GT(above.red(), above.blue() + 60) << above.name().toStdString();
  EXPECT_GT(beside.blue(), beside.red() + 60) << beside.name().toStdString();
  const auto hit = figure.Pick(
      gl, viewport,
      Types::Pos(static_cast<int>(PixelOf(figure, {8, 2, 0}).x), static_cast<int>(PixelOf(figure, {8, 2, 0}).y)));
  ASSERT_TRUE(hit);
  EXPECT_NEAR(hit->position.z, 0, 1e-6);
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

/// An image with more pixels a point is what is drawn with them.
TEST_F(FigurePixels, ImagesTakeThePixelsOfAPoint) {
  Figure figure("Title");
  figure.Scatter(Cloud(10));
  figure.Draw(gl, viewport, 2);
  const Types::Size size(static_cast<int>(viewport.width), static_cast<int>(viewport.height));
  EXPECT_TRUE(SameImage(figure.Image(size, 0, 2), Image().convertToFormat(QImage::Format_RGB32)));
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
  QImage dark(1, 1, QImage::Format_ARGB32);
  dark.fill(Qt::black);
  const Texture texture(dark, gl);
  texture(gl, RGL_TEXTURE1);
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
