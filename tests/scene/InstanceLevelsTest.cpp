// Levels of detail of instances: which are chosen, how many instances are drawn, and what they look like.

#include "scene/InstancedMesh.h"

#include "scene/Camera.h"
#include "scene/DirectionalLight.h"

#include "tests/support/Test.h"

namespace {

using Instances = InstancedMesh::Instances;

/// So many vertices that it is drawn for one instance at a time.
GpuMesh LargeBar() {
  std::vector<Point> positions = {{-0.1, 0, 0}, {0.1, 0, 0}, {0.1, 0, 1}};
  positions.resize(200);
  std::vector<Point> normals(positions.size(), Point(0, 0, 1));
  normals[1] = {0, 1, 0}; // flat triangles would have three vertices
  GpuMesh::Arrays arrays;
  arrays.positions = positions;
  arrays.normals = normals;
  arrays.indices = {0, 1, 2};
  return GpuMesh(arrays);
}

/// A rectangle in the plane z = 0, along y.
GpuMesh UprightBar() {
  const std::vector<Point> positions = {{-0.1, 0, 0}, {0.1, 0, 0}, {0.1, 1, 0}, {-0.1, 1, 0}};
  GpuMesh::Arrays arrays;
  arrays.positions = positions;
  arrays.indices = {0, 1, 2, 0, 2, 3};
  return GpuMesh(arrays);
}

} // namespace

TEST(InstanceLevels, OutlinesOfSpheresAreWithinAFifthOfAPixel) {
  const std::vector<InstancedMesh::Level> levels = InstancedMesh::Spheres();
  ASSERT_EQ(levels.size(), 7U);
  std::size_t last = 0;
  for (std::size_t i = 0; i + 1 < levels.size(); ++i) {
    const std::size_t corners = levels[i].mesh.VertexCount();
    EXPECT_GT(corners, last);
    last = corners;
    EXPECT_EQ(levels[i].mesh.IndexCount(), 3 * (corners - 2)); // whole
    EXPECT_EQ(levels[i].facing, InstancedMesh::Level::Facing::Sphere);
    const double radius = levels[i].mesh.Bounds().Max().x,
                 inner = radius * std::cos(M_PI / static_cast<double>(corners));
    EXPECT_NEAR(levels[i].mostPixels / 2 * std::max(radius - 1, 1 - inner), 0.2, 1e-3) << corners;
  }
  EXPECT_EQ(levels.back().mesh.IndexCount(), 3U * 1280);
}

class InstanceLevelsCalls : public RecordingScopeFixture {
public:
  void SetUp() override { recorder.SetVersion("4.0"); }
  void TearDown() override {
    colors = ColorMap({Qt::red}, ColorMap::Discrete); // releases the texture
    RecordingScopeFixture::TearDown();
  }
  ColorMap colors{{Qt::red, Qt::blue}, ColorMap::Interpolated};
};

TEST_F(InstanceLevelsCalls, DrawsLevelsThatMayBeSeen) {
  gl->Viewport(0, 0, 100, 100); // under identity matrices, a unit has 50 pixels
  std::vector<InstancedMesh::Level> levels;
  for (const double most : {10.0, 100.0, 1000.0}) {
    levels.emplace_back(LargeBar());
    levels.back().mostPixels = most;
  }
  std::vector<Point> positions(10);
  const std::vector<double> sizes = {0.1, 1, 0.19, 0.21, 2, 5, 2.01, 1e9, 0.1, NAN};
  Instances instances;
  instances.positions = positions;
  instances.sizes = sizes;
  InstancedMesh mesh(levels, instances);
  const auto counts = [&] {
    std::vector<int> result;
    for (const std::string& line : recorder.LinesOf({"DrawElementsInstanced"}))
      result.push_back(std::stoi(line.substr(line.rfind(' '))));
    recorder.Clear();
    return result;
  };
  mesh.Draw(gl, colors);
  EXPECT_EQ(counts(), (std::vector<int>{3, 3, 3}));
  gl->Scale({0.01, 0.01, 0.01});
  mesh.DrawDepths(gl); // the levels of the last drawing
  EXPECT_EQ(counts(), (std::vector<int>{3, 3, 3}));
  mesh.Draw(gl, colors);
  EXPECT_EQ(counts(), (std::vector<int>{8, 1}));
  UploadsOf(recorder);
  mesh.Draw(gl, colors);
  EXPECT_EQ(UploadsOf(recorder), std::vector<std::size_t>());
  for (Point& position : positions)
    position.x = 150; // at 1.5 in clip coordinates
  const std::vector<double> small(10, 1);
  mesh.UpdatePositions(positions);
  mesh.UpdateSizes(small);
  mesh.Draw(gl, colors);
  EXPECT_EQ(counts(), std::vector<int>());
  const std::vector<double> large(10, 60);
  mesh.UpdateSizes(large); // reaches into the view
  mesh.Draw(gl, colors);
  EXPECT_EQ(counts(), std::vector<int>{10});
  mesh.UpdateSizes(small);
  gl->LoadIdentity();
  gl->Translate({-150, 0, 0}); // into the view, before the projection scales
  gl->MatrixMode(RGL_PROJECTION);
  gl->Scale({0.01, 0.01, 0.01});
  mesh.Draw(gl, colors);
  EXPECT_EQ(counts(), std::vector<int>{10});
}

class InstanceLevelsPixels : public PixelScopeFixture {
public:
  /// 100 x 100 pixels: a pixel is 0.02 units wide under identity matrices.
  InstanceLevelsPixels()
      : PixelScopeFixture({100, 100}) {}
  /// The colour at a point of the plane z = 0.
  QColor Color(double p_x, double p_y) const {
    return At(static_cast<int>(std::floor(50 + 50 * p_x)), static_cast<int>(std::floor(50 + 50 * p_y)));
  }
  void Draw(const InstancedMesh& p_mesh) {
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    p_mesh.Draw(gl, colors);
  }
  const ColorMap colors{{Qt::red, Qt::green, Qt::blue}, ColorMap::Discrete};
  const QColor nothing = Qt::transparent;
};

TEST_F(InstanceLevelsPixels, DrawsEveryKthOfTooManyVertices) {
  std::vector<Point> positions;
  for (int i = 0; i < 64; ++i)
    positions.emplace_back(-0.99 + i / 32.0, -0.5, 0);
  Instances instances;
  instances.positions = positions;
  const std::vector<double> sizes(64, 0.15); // bars are wider than pixels
  instances.sizes = sizes;
  InstancedMesh mesh(UprightBar(), instances); // of four vertices
  for (const auto& [vertices, step] : {std::pair(0, 1), {256, 1}, {255, 2}, {64, 4}, {1, 64}}) {
    mesh.SetMostVertices(static_cast<std::size_t>(vertices));
    Draw(mesh);
    EXPECT_EQ(mesh.Step(gl), static_cast<std::size_t>(step));
    for (int i = 0; i < 64; ++i)
      EXPECT_EQ(Color(positions[static_cast<std::size_t>(i)].x, -0.45) != nothing, i % step == 0)
          << i << " of " << step;
  }
}
namespace {

/// What a mesh looks like in a view of 1600 x 1000 pixels, without background.
class LevelsImage {
public:
  explicit LevelsImage(int p_samples)
      : _context({1600, 1000}, p_samples)
      , gl(_context.Handle()) {}
  QImage Of(const InstancedMesh& p_mesh, bool p_isCentral, const std::function<void()>& p_prepare) {
    gl->ClearColor(Qt::white);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    Camera camera;
    camera.Look(Camera::StandardView::Top);
    camera.projection = p_isCentral ? Camera::Projection::Perspective : Camera::Projection::Parallel;
    camera.Fit({{0, 0, 0}, {1600, 1000, 0}}, _viewport);
    const auto matrices = camera.Apply(gl, _viewport);
    const auto lit = DirectionalLight().Apply(gl);
    const auto state = gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TRANSFORM_BIT);
    gl->Enable(RGL_DEPTH_TEST);
    if (p_prepare)
      p_prepare();
    p_mesh.Draw(gl, _colors);
    return _context.Image();
  }

private:
  Ogl::OffscreenContext _context;
  const ColorMap _colors{{Qt::red, Qt::yellow, Qt::blue}, ColorMap::Interpolated};
  const Types::Viewport<0> _viewport{0, 0, 1600, 1000};

public:
  Scope gl;
};

/// The share of pixels that differ by more than 32 in a channel.
double Different(const QImage& p_a, const QImage& p_b) {
  int count = 0;
  for (int y = 0; y < p_a.height(); ++y)
    for (int x = 0; x < p_a.width(); ++x) {
      const QRgb a = p_a.pixel(x, y), b = p_b.pixel(x, y);
      count +=
          std::abs(qRed(a) - qRed(b)) > 32 || std::abs(qGreen(a) - qGreen(b)) > 32 || std::abs(qBlue(a) - qBlue(b)) > 32
              ? 1
              : 0;
    }
  return static_cast<double>(count) / (p_a.width() * p_a.height());
}

double Inked(const QImage& p_image) {
  QImage white = p_image;
  white.fill(Qt::white);
  return Different(p_image, white);
}

} // namespace

/// Ten thousand glyphs of 2 to 60 pixels, most of them small, beside those of the last level alone.
TEST(InstanceLevelImagesPixels, LookLikeWholeMeshes) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  std::vector<Point> positions, directions;
  std::vector<double> sizes, values;
  for (int i = 0; i < 10000; ++i) {
    positions.emplace_back(800 + 760 * number(random), 500 + 460 * number(random), 0);
    directions.emplace_back(number(random), number(random), number(random));
    sizes.push_back(2 + (i % 100 == 0 ? 58 : 12) * std::abs(number(random)));
    values.push_back(0.5 + 0.5 * number(random));
  }
  Instances instances;
  LevelsImage view(4);
  const auto cut = [&] { // the front half of each glyph
    constexpr double Below[] = {0, 0, -1, 0};
    view.gl->ClipPlane(RGL_CLIP_PLANE0, Below);
    view.gl->Enable(RGL_CLIP_PLANE0);
  };
  struct Case {
    const char* name;
    std::vector<InstancedMesh::Level> levels;
    bool isCentral, isCut;
    double leastInk;
  };
  const Case cases[] = {{"arrows", InstancedMesh::Arrows(), false, false, 0.05},
                        {"cut arrows in perspective", InstancedMesh::Arrows(), true, true, 0.03},
                        {"spheres", InstancedMesh::Spheres(), false, false, 0.03},
                        {"cut spheres in perspective", InstancedMesh::Spheres(), true, true, 0.03}};
  for (const Case& item : cases) {
    const bool areSpheres = item.levels[0].facing == InstancedMesh::Level::Facing::Sphere;
    if (areSpheres) // fewer, so that few pixels are those where spheres meet
      for (std::vector<double>* const numbers : {&sizes, &values})
        numbers->resize(1000);
    positions.resize(sizes.size());
    instances.positions = positions;
    instances.directions = areSpheres ? Array3() : Array3(directions);
    instances.sizes = sizes;
    instances.values = values;
    const auto imageOf = [&](const std::vector<InstancedMesh::Level>& p_levels) {
      return view.Of(InstancedMesh(p_levels, instances), item.isCentral, item.isCut ? cut : std::function<void()>());
    };
    const QImage image = imageOf(item.levels), expected = imageOf({item.levels.back()});
    EXPECT_LE(Different(image, expected), 0.01) << item.name;
    EXPECT_GT(Inked(image), item.leastInk) << item.name;
  }
}

namespace {

/// A cube or an octahedron around 0, with a normal for each face. Its lengths grow from corner to corner by `p_growth`.
GpuMesh FlatBody(bool p_isCube, double p_growth) {
  std::vector<Point> positions, normals;
  const auto add = [&](const std::array<Point, 3>& p_corners, const Point& p_normal) {
    for (std::size_t i = 0; i < 3; ++i) {
      positions.push_back(p_corners[i]);
      normals.push_back(p_normal * (1 + p_growth * static_cast<double>(i)));
    }
  };
  for (const double x : {-1, 1})
    for (const double y : {-1, 1})
      for (const double z : {-1, 1})
        if (!p_isCube) {
          const Point a(0, y, 0), b(0, 0, z);
          const bool isEven = x * y * z > 0; // so that all wind one way
          add({{{x, 0, 0}, isEven ? a : b, isEven ? b : a}}, {x, y, z});
        } else if (z == y) {
          add({{{x, -1, -1}, {x, x * y, -x * y}, {x, 1, 1}}}, {x, 0, 0});
          add({{{-1, x, -1}, {-x * y, x, x * y}, {1, x, 1}}}, {0, x, 0});
          add({{{-1, -1, x}, {x * y, -x * y, x}, {1, 1, x}}}, {0, 0, x});
        }
  GpuMesh::Arrays arrays;
  arrays.positions = positions;
  arrays.normals = normals;
  return GpuMesh(arrays);
}

} // namespace

/// Normals of several lengths in a triangle change no light, but are interpolated.
TEST(InstanceLevelImagesPixels, FlatFacesKeepTheirNormals) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  std::vector<Point> positions, directions;
  for (int i = 0; i < 300; ++i) {
    positions.emplace_back(800 + 700 * number(random), 500 + 400 * number(random), 0);
    directions.emplace_back(number(random), number(random), number(random));
  }
  Instances instances;
  instances.positions = positions;
  instances.directions = directions;
  LevelsImage view(4);
  for (const bool isCube : {false, true}) {
    const auto imageOf = [&](double p_growth) {
      InstancedMesh::Level level(FlatBody(isCube, p_growth));
      level.scale = 30;
      return view.Of(InstancedMesh({level}, instances), true, {});
    };
    const QImage flat = imageOf(0);
    EXPECT_LE(Different(flat, imageOf(0.1)), 1e-4) << isCube;
    EXPECT_GT(Inked(flat), 0.1) << isCube;
  }
}
