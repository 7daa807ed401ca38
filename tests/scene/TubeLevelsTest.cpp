// Levels of detail of tubes: what they look like, and what is picked of them.

#include "scene/Figure.h"
#include "scene/TubeMesh.h"

#include "tests/support/Figures.h"

namespace {

/// Spirals of different radii in a box.
struct Spirals {
  static constexpr std::size_t Length = 101; // points
  explicit Spirals(std::size_t p_count)
      : lengths(p_count, Length) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(-1, 1);
    for (std::size_t line = 0; line < p_count; ++line) {
      const Point middle(800 * number(random), 500 * number(random), 400 * number(random));
      const double radius = 60 + 40 * number(random), phase = 3 * number(random), rise = 60 * number(random);
      for (std::size_t i = 0; i < Length; ++i) {
        const double t = 0.06 * static_cast<double>(i);
        points.push_back(middle + Point(radius * std::cos(t + phase), radius * std::sin(t + phase), rise * t));
        values.push_back(std::sin(t + 2 * phase));
      }
    }
  }
  std::vector<Point> points;
  Doubles values;
  std::vector<std::size_t> lengths;
};

/// A mesh of whole tubes.
MeshPlot& AddWhole(Figure& p_figure, const Spirals& p_spirals, double p_width) {
  TubeMesh tubes{StreamLineShape(StreamLineShape::ShapeTube, {})};
  for (std::size_t first = 0; first < p_spirals.points.size(); first += Spirals::Length) {
    std::vector<TubeMesh::Point> line;
    for (std::size_t i = first; i < first + Spirals::Length; ++i)
      line.push_back({p_spirals.points[i], p_width, p_spirals.values[i]});
    tubes.Add(line);
  }
  const Ogl::VertexData data = tubes.TakeMesh();
  std::vector<Point> positions;
  Doubles values;
  const float* const coordinates = data.Vertices().As<float>();
  for (std::size_t i = 0; i < data.Vertices().count; ++i) {
    positions.emplace_back(coordinates[3 * i], coordinates[3 * i + 1], coordinates[3 * i + 2]);
    values.push_back(data.TexCoords().As<float>()[i]);
  }
  std::vector<std::array<unsigned int, 3>> triangles;
  const unsigned int* const indices = data.Indices().As<unsigned int>();
  for (std::size_t i = 0; i + 2 < data.Indices().count; i += 3)
    triangles.push_back({indices[i], indices[i + 1], indices[i + 2]});
  return p_figure.Mesh(positions, triangles).ColorBy(values).ColorRange(-1, 1);
}

/// The share of pixels that differ by more than 32 in a channel.
double Different(const QImage& p_a, const QImage& p_b) {
  int count = 0;
  for (int y = 0; y < p_a.height(); ++y)
    for (int x = 0; x < p_a.width(); ++x) {
      const QRgb a = p_a.pixel(x, y), b = p_b.pixel(x, y);
      const int most =
          std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
      count += most > 32 ? 1 : 0;
    }
  return static_cast<double>(count) / (p_a.width() * p_a.height());
}

constexpr Types::Size Size{800, 500};

class TubeLevelsPixels : public FigurePixelsFixture {};

/// Ten thousand segments, from a pixel wide to some dozen, beside whole meshes.
TEST_F(TubeLevelsPixels, LookLikeWholeMeshes) {
  using Projection = Camera::Projection;
  struct Case {
    const char* name;
    std::size_t lines;
    double width, zoom;
    Projection projection;
    double opacity;
    bool isCut;
    double leastInk;
  };
  const Case cases[] = {{"thin", 100, 3, 1, Projection::Parallel, 1, false, 0.02},
                        {"in perspective", 100, 8, 1, Projection::Perspective, 1, false, 0.02},
                        {"wide", 40, 20, 1, Projection::Perspective, 1, false, 0.02},
                        {"near", 100, 12, 6, Projection::Perspective, 1, false, 0.02},
                        {"half-transparent", 40, 8, 1, Projection::Perspective, 0.5, false, 0.02},
                        {"cut", 40, 20, 2, Projection::Perspective, 1, true, 0.03}};
  for (const Case& item : cases) {
    const Spirals spirals(item.lines);
    Figure figure;
    figure.Look(30, 50, item.projection).SetAspect(1, 1, 1);
    figure.SetLimits(0, -1000, 1000).SetLimits(1, -700, 700).SetLimits(2, -1000, 1000);
    if (item.isCut)
      figure.Clip(2, 0, Figure::Side::Below);
    LinesPlot& lines = figure.Lines(spirals.points, spirals.lengths).ColorBy(spirals.values).ColorRange(-1, 1);
    lines.Tubes(item.width).SetOpacity(item.opacity);
    MeshPlot& whole = AddWhole(figure, spirals, item.width).SetOpacity(item.opacity);
    Camera camera = figure.Layout({0, 0, Size.width, Size.height}).camera;
    camera.distance /= item.zoom;
    figure.camera = camera;
    const auto imageOf = [&](bool p_isOfLines, bool p_isOfMesh) {
      lines.SetVisible(p_isOfLines);
      whole.SetVisible(p_isOfMesh);
      return figure.Image(Size);
    };
    const QImage image = imageOf(true, false), expected = imageOf(false, true), none = imageOf(false, false);
    EXPECT_LE(Different(image, expected), std::min(0.01, 0.15 * Different(expected, none))) << item.name;
    EXPECT_GT(Different(expected, none), item.leastInk) << item.name;
  }
}

/// With any length of segments that the size leaves, the nearest point is picked.
TEST_F(TubeLevelsPixels, PicksTheNearestPoint) {
  const Spirals spirals(20);
  Figure figure;
  figure.Look(30, 50).SetAspect(1, 1, 1);
  figure.Lines(spirals.points, spirals.lengths).ColorBy(spirals.values).Tubes(16);
  for (const double zoom : {0.5, 1.0, 4.0}) {
    figure.camera.reset();
    Camera camera = figure.Layout(viewport).camera;
    camera.distance /= zoom;
    figure.camera = camera;
    figure.Draw(gl, viewport);
    int picked = 0;
    for (std::size_t i = 7; i < spirals.points.size(); i += 41) {
      const auto pixel = PixelOf(figure, spirals.points[i]);
      const auto hit = figure.Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)});
      // Others may hide it, or the pixel lies beside a line that is narrower.
      if (!hit || !hit->element || *hit->element / Spirals::Length != i / Spirals::Length)
        continue;
      ++picked;
      const auto distance = [&](std::size_t p_point) { return Length(spirals.points[p_point] - hit->position); };
      double least = distance(i);
      for (std::size_t point = i / Spirals::Length * Spirals::Length; point / Spirals::Length == i / Spirals::Length;
           ++point)
        least = std::min(least, distance(point));
      EXPECT_LE(distance(*hit->element), least + 2) << i << ", zoom " << zoom; // points are 6 apart
      EXPECT_EQ(*hit->value, static_cast<double>(static_cast<float>(spirals.values[*hit->element])));
    }
    EXPECT_GT(picked, zoom > 2 ? 3 : 12) << zoom;
  }
}

/// Of more lines than there is time for, every other one is drawn while the camera moves. Those lie on the right.
TEST_F(TubeLevelsPixels, DrawEveryOtherLineWhileMoving) {
  std::vector<Point> points;
  constexpr std::size_t Count = 60000;
  for (std::size_t i = 0; i < Count; ++i) {
    const Point start(i % 2 == 0 ? 0 : 10, 9e-5 * static_cast<double>(i), 0.001 * static_cast<double>(i % 7));
    points.insert(points.end(), {start, start + Point(8, 0, 0)});
  }
  for (const bool areTubes : {true, false}) {
    Figure figure;
    LinesPlot& lines = figure.Lines(points, std::vector<std::size_t>(Count, 2)).Color(Qt::red);
    if (areTubes)
      lines.Tubes(0.05);
    figure.Look(0, 90);
    for (const bool isMoving : {true, false}) {
      figure.SetMoving(isMoving);
      EXPECT_LT(Drawn(figure, {4, 2.7, 0}).green(), 200);
      EXPECT_EQ(Drawn(figure, {14, 2.7, 0}).green() < 200, !isMoving) << areTubes;
    }
  }
}

class TubeLevelsCalls : public FigureCallsFixture {};

/// Without buffer textures, lines are whole meshes, with the same colours and without numbers for picking.
TEST_F(TubeLevelsCalls, AreMeshesOnOldDevices) {
  recorder.SetVersion("3.1.0");
  const Spirals spirals(2);
  Figure figure;
  LinesPlot& lines = figure.Lines(spirals.points, spirals.lengths).Tubes(3).ColorBy(spirals.values);
  const std::size_t vertices = 2 * (Spirals::Length * 12 + 2 * 13);
  const std::size_t indices = 2 * 3 * ((Spirals::Length - 1) * 24 + 2 * 12);
  const std::vector<std::size_t> uploads = UploadsOf(figure);
  for (const std::size_t bytes : {12 * vertices, 4 * vertices, 4 * indices})
    EXPECT_EQ(std::count(uploads.begin(), uploads.end(), bytes), bytes == 12 * vertices ? 2 : 1) << bytes;
  EXPECT_EQ(UploadsOf(figure), std::vector<std::size_t>());
  lines.ColorBy(Doubles(spirals.values.size(), 2));
  EXPECT_NE(UploadsOf(figure), std::vector<std::size_t>());
}

} // namespace
