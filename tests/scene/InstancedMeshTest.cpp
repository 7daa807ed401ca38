#include "scene/InstancedMesh.h"

#include "scene/DirectionalLight.h"

#include "library/DepthPass.h"
#include "tests/support/Test.h"

namespace {

using Instances = InstancedMesh::Instances;

/// A rectangle along z in the plane y = 0, or along y in the plane z = 0: 0.1 to each side of its axis, from 0 to 1.
GpuMesh Bar(const Point& p_along = {0, 0, 1}) {
  const Point right(0.1, 0, 0);
  const std::vector<Point> positions = {-right, right, p_along + right, p_along - right};
  GpuMesh::Arrays arrays;
  arrays.positions = positions;
  arrays.indices = {0, 1, 2, 0, 2, 3};
  return GpuMesh(arrays);
}

GpuMesh FlatBar() {
  return Bar({0, 1, 0});
}

InstancedMesh Many(std::size_t p_count, bool p_complete) {
  const std::vector<Point> zeros(p_count), ups(p_count, Point(0, 0, 1));
  const std::vector<float> ones(p_count, 1);
  Instances instances;
  instances.positions = zeros;
  if (p_complete) {
    instances.sizes = ones;
    instances.directions = ups;
    instances.values = ones;
  }
  return {Bar(), instances};
}

using Bytes = std::vector<std::size_t>;
const Bytes BarBytes = {48, 48, 24}; // positions, normals, indices

} // namespace

TEST(InstancedMesh, ThrowsForArraysThatDoNotFit) {
  const std::vector<Point> three(3, Point(1, 0, 0));
  const std::vector<float> two(2);
  Instances base;
  base.positions = three;
  const auto with = [&](const std::function<void(Instances&)>& p_change) {
    return [&base, p_change] {
      Instances instances = base;
      p_change(instances);
      InstancedMesh mesh(Bar(), instances);
    };
  };
  InstancedMesh mesh(Bar(), base);
  const Refusals cases = {
      {"InstancedMesh: sizes: expected 3 elements, got 2", with([&](Instances& p_i) { p_i.sizes = two; })},
      {"InstancedMesh: values: expected 3 elements, got 2", with([&](Instances& p_i) { p_i.values = two; })},
      {"InstancedMesh: rotations: expected 3 elements, got 1", with([](Instances& p_i) { p_i.rotations.resize(1); })},
      {"InstancedMesh: colours: expected 3 elements, got 4", with([](Instances& p_i) { p_i.colors.resize(4); })},
      {"InstancedMesh: ids: expected 3 elements, got 2", with([](Instances& p_i) { p_i.ids.resize(2); })},
      {"InstancedMesh: ids: expected numbers below 16777215, got 16777215", with([](Instances& p_i) {
         p_i.ids = {1, 0xFFFFFF, 2};
       })},
      {"InstancedMesh: expected directions or rotations, got both", with([&](Instances& p_i) {
         p_i.directions = three;
         p_i.rotations.resize(3);
       })},
      {"InstancedMesh: positions: expected 3 elements, got 0", [&] { mesh.UpdatePositions(Array3()); }},
      {"InstancedMesh: values: expected 3 elements, got 2", [&] { mesh.UpdateValues(two); }},
  };
  ExpectErrors(cases);
}

TEST(InstancedMesh, CountsAndBoundsWhatIsShown) {
  const std::vector<Point> positions = {{1e6, 0, 0}, {1e6 + 2, 0, 0}, {NAN, 0, 0}, {1e6 + 50, 0, 0}, {1e6 + 60, 0, 0}};
  const std::vector<Point> directions = {{0, 0, 3}, {1, 0, 0}, {1, 0, 0}, {0, 0, 0}, {NAN, 0, 1}};
  const std::vector<double> sizes = {1, 2, 9, 1, 1};
  Instances instances;
  instances.positions = positions;
  instances.origin = {1e6, 0, 0};
  instances.directions = directions;
  instances.sizes = sizes;
  const InstancedMesh mesh(Bar(), instances);
  EXPECT_EQ(mesh.Count(), 5U);
  EXPECT_EQ(mesh.Undirected(), 2U);
  const double reach = std::sqrt(1.01); // of the bar's far corners
  EXPECT_NEAR(mesh.Bounds().Min().x, -reach, 1e-6);
  EXPECT_NEAR(mesh.Bounds().Max().x, 2 + 2 * reach, 1e-6);
  EXPECT_NEAR(mesh.Bounds().Max().y, 2 * reach, 1e-6);
  EXPECT_TRUE(InstancedMesh().Bounds().Empty());
}

class InstancedMeshCalls : public RecordingScopeFixture {
public:
  void SetUp() override { recorder.SetVersion("3.3"); }
  void TearDown() override {
    colors = ColorMap({Qt::red}, ColorMap::Discrete); // releases the texture
    RecordingScopeFixture::TearDown();
  }
  ColorMap colors{{Qt::red, Qt::blue}, ColorMap::Interpolated};
};

/// With levels, meshes are repeated: 64 bars with their numbers. Without, the caller's ids are not needed.
TEST_F(InstancedMeshCalls, UploadsWhatChanged) {
  constexpr std::size_t N = 100;
  const std::tuple<const char*, Bytes, Bytes> devices[] = {
      {"3.3", {24, 48, 48, 4 * N, 4 * N, 12 * N, 12 * N}, {4 * N}},
      {"4.0", {4 * N, 4 * N, 4 * N, 64 * 16, 12 * N, 12 * N, 64 * 24, 64 * 48, 64 * 48}, {}}};
  for (const auto& [version, first, ids] : devices) {
    recorder.SetVersion(version);
    InstancedMesh mesh = Many(N, true);
    mesh.Draw(gl, colors);
    Bytes all = UploadsOf(recorder);
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all, first) << version;
    mesh.Draw(gl, colors, {-5, 5, false});
    mesh.Draw(gl, ColorMap({Qt::white}, ColorMap::Discrete), {1, 5, true});
    mesh.DrawDepths(gl);
    EXPECT_EQ(UploadsOf(recorder), Bytes());
    mesh.DrawIds(gl, 0);
    EXPECT_EQ(UploadsOf(recorder), ids); // at most 48 bytes an instance in all
  }
}

TEST_F(InstancedMeshCalls, UploadsOneArrayAtAnUpdate) {
  constexpr std::size_t N = 100;
  InstancedMesh mesh = Many(N, true);
  mesh.Draw(gl, colors);
  UploadsOf(recorder);
  const std::vector<float> numbers(N, 2);
  const std::vector<Point> points(N, Point(1, 2, 3));
  const std::pair<std::function<void()>, std::size_t> updates[] = {
      {[&] { mesh.UpdateValues(numbers); }, 4 * N},
      {[&] { mesh.UpdateSizes(numbers); }, 4 * N},
      {[&] { mesh.UpdatePositions(points); }, 12 * N},
      {[&] { mesh.UpdateDirections(points); }, 12 * N},
      {[&] { mesh.UpdateRotations(std::vector<Types::Matrix3>(N)); }, 24 * N},
      {[&] { mesh.UpdateColors(std::vector<GpuMesh::Rgba>(N)); }, 4 * N},
  };
  for (const auto& [update, bytes] : updates) {
    update();
    mesh.Draw(gl, colors);
    EXPECT_EQ(UploadsOf(recorder), Bytes{bytes});
  }
  Many(N, false).Draw(gl, colors);
  Bytes few = UploadsOf(recorder);
  std::sort(few.begin(), few.end());
  EXPECT_EQ(few, (Bytes{24, 48, 48, 12 * N}));
}

TEST_F(InstancedMeshCalls, AreAsManyForAHundredTimesAsManyInstances) {
  recorder.SetVersion("4.0");
  std::vector<std::size_t> calls;
  for (const std::size_t count : {1000, 100000}) {
    const std::vector<Point> points(count);
    Instances instances;
    instances.positions = points;
    InstancedMesh mesh(InstancedMesh::Arrows(), instances);
    mesh.Draw(gl, colors);
    recorder.Clear();
    mesh.Draw(gl, colors);
    calls.push_back(recorder.Lines().size());
    recorder.Clear();
    mesh.SetMostAtOnce(40000);
    mesh.Draw(gl, colors);
    const std::vector<std::string> lines = recorder.Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Finish()"), static_cast<int>(count / 40000));
    recorder.Clear();
  }
  EXPECT_EQ(calls[0], calls[1]);
}

class InstancedMeshPixels : public PixelScopeFixture {
public:
  /// 100 x 100 pixels: a pixel is 0.02 units wide under identity matrices.
  InstancedMeshPixels()
      : PixelScopeFixture({100, 100}) {}
  void Draw(const InstancedMesh& p_mesh) {
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    DirectionalLight light;
    light.ambient = 1;
    light.diffuse = light.specular = 0;
    const auto lit = light.Apply(gl);
    p_mesh.Draw(gl, colors);
  }
  /// The colour at a point of the plane z = 0.
  QColor Color(double p_x, double p_y) const {
    return At(static_cast<int>(std::floor(50 + 50 * p_x)), static_cast<int>(std::floor(50 + 50 * p_y)));
  }
  const ColorMap colors{{Qt::red, Qt::green, Qt::blue}, ColorMap::Discrete};
  const QColor nothing = Qt::transparent;
};

TEST_F(InstancedMeshPixels, DirectionsSizesAndValues) {
  // From the left: along +x, twice as long; none; along −y; at a missing position; without a size.
  const std::vector<Point> positions = {{-0.9, 0, 0}, {0, 0.9, 0}, {0.5, 0.5, 0}, {NAN, -0.9, 0}, {0, -0.9, 0}};
  const std::vector<Point> directions = {{7, 0, 0}, {0, 0, 0}, {0, -2, 0}, {1, 0, 0}, {1, 0, 0}};
  const std::vector<double> sizes = {1, 1, 0.5, 1, 0};
  const std::vector<double> values = {0.5, 0.5, NAN, 0.5, 0.5};
  Instances instances;
  instances.positions = positions;
  instances.directions = directions;
  instances.sizes = sizes;
  instances.values = values;
  InstancedMesh mesh(Bar(), instances);
  const std::tuple<double, double, QColor> cases[] = {
      {-0.87, 0, Qt::green},
      {0.07, 0, Qt::green},
      {0.13, 0, nothing},
      {-0.93, 0, nothing},
      {-0.5, 0.07, Qt::green},
      {-0.5, 0.13, nothing},
      {-0.5, -0.07, Qt::green},
      {0.5, 0.47, QColor(128, 128, 128)},
      {0.5, 0.03, QColor(128, 128, 128)},
      {0.5, -0.03, nothing},
      {0.57, 0.3, nothing},
      {0.53, 0.3, QColor(128, 128, 128)},
      {0.03, 0.87, nothing},
      {0.5, -0.9, nothing},
  };
  for (const std::size_t atOnce : {0, 1, 2}) {
    mesh.SetMostAtOnce(atOnce);
    Draw(mesh);
    for (const auto& [x, y, color] : cases)
      EXPECT_EQ(Color(x, y), color) << x << ' ' << y << ", at once " << atOnce;
  }
}

TEST_F(InstancedMeshPixels, DotsWithoutDirectionAreLeftOut) {
  const std::vector<Point> positions = {{-0.5, 0, 0}, {0.5, 0, 0}}, directions = {{0, 0, 0}, {0, 0, 1}}, dot(1);
  GpuMesh::Arrays arrays;
  arrays.positions = dot;
  arrays.primitive = Ogl::VertexBuffer::Points;
  Instances instances;
  instances.positions = positions;
  instances.directions = directions;
  gl->PointSize(9);
  Draw(InstancedMesh(GpuMesh(arrays), instances));
  EXPECT_EQ(Color(-0.5, 0), nothing);
  EXPECT_EQ(Color(0.5, 0), QColor(Qt::red));
}

TEST_F(InstancedMeshPixels, RotationsLevelsColorsAndLeastPixels) {
  const std::vector<Point> positions = {{0.5, 0, 0}, {-0.5, 0, 0}}; // the second one has the coarser level
  const std::vector<double> sizes = {0.6, 0.02};
  Instances instances;
  instances.positions = positions;
  instances.sizes = sizes;
  instances.rotations = {Types::Matrix3::Rotation(Types::Angle::FromDegrees(180), {0, 0, 1}), Types::Matrix3()};
  instances.colors = {{0, 255, 255, 255}, {255, 0, 255, 255}};
  // Small ones are drawn 20 times as large, to be told apart.
  std::vector<InstancedMesh::Level> levels = {InstancedMesh::Level(FlatBar()), InstancedMesh::Level(FlatBar())};
  levels[0].scale = 20;
  levels[0].mostPixels = 1.5;
  InstancedMesh mesh(levels, instances);
  Draw(mesh);
  EXPECT_EQ(Color(-0.5, 0.38), QColor(Qt::magenta));
  EXPECT_EQ(Color(-0.5, 0.42), nothing);
  EXPECT_EQ(Color(0.5, -0.58), QColor(Qt::cyan));
  EXPECT_EQ(Color(0.5, 0.02), nothing);
  mesh.SetLeastPixels(40); // 0.8 units
  mesh.SetLevels({InstancedMesh::Level(FlatBar())});
  Draw(mesh);
  EXPECT_EQ(Color(-0.5, 0.78), QColor(Qt::magenta));
  EXPECT_EQ(Color(-0.5, 0.82), nothing);
  EXPECT_EQ(Color(0.5, -0.78), QColor(Qt::cyan));
  EXPECT_EQ(Color(0.5, -0.82), nothing);
}

TEST_F(InstancedMeshPixels, CenteredLevelsHaveADiagonalOfOne) {
  const std::vector<Point> positions = {{0, 0, 0}};
  Instances instances;
  instances.positions = positions;
  Draw({{InstancedMesh::Level::Centered(FlatBar())}, instances});
  const double height = 1 / std::sqrt(1.04);
  EXPECT_EQ(Color(0, height / 2 - 0.02), QColor(Qt::red));
  EXPECT_EQ(Color(0, height / 2 + 0.02), nothing);
  EXPECT_EQ(Color(0, 0.02 - height / 2), QColor(Qt::red));
}

TEST_F(InstancedMeshPixels, IdsAreWrittenByteByByte) {
  const std::vector<Point> positions = {{-0.5, 0, 0}, {0, 0, 0}, {0.5, 0, 0}};
  Instances instances;
  instances.positions = positions;
  instances.ids = {0x0A0B0C, 0xFFFFFE, 0};
  const InstancedMesh mesh(FlatBar(), instances);
  {
    const DepthPass pass(gl);
    mesh.Draw(gl, PickPass{PickPass::Ids, 254});
  }
  EXPECT_EQ(Color(-0.5, 0.5), QColor(0x0C, 0x0B, 0x0A, 255));
  EXPECT_EQ(Color(0, 0.5), QColor(0xFE, 0xFF, 0xFF, 255));
  EXPECT_EQ(Color(0.5, 0.5), QColor(0, 0, 0, 255));
  instances.ids.clear();
  {
    const DepthPass pass(gl);
    InstancedMesh(FlatBar(), instances).DrawIds(gl, 6);
  }
  EXPECT_EQ(Color(0.5, 0.5), QColor(2, 0, 0, 7));
  EXPECT_THROW(mesh.DrawIds(gl, 255), std::invalid_argument);
}
