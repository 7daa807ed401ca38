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

constexpr Types::Size Size{1000, 625};

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
    EXPECT_LE(Different(image, expected), std::min(0.01, 0.1 * Different(expected, none))) << item.name;
    EXPECT_GT(Different(expected, none), item.leastInk) << item.name;
  }
}

} // namespace
