#include "scene/GpuMesh.h"

#include "scene/DirectionalLight.h"

#include "testing/Surface.h"
#include "tests/support/Test.h"

namespace {

/// A square in the plane z = 0 from (−1, −1) to (1, 1), in two triangles.
GpuMesh::Arrays Square() {
  static const std::vector<Point> Positions = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
  GpuMesh::Arrays arrays;
  arrays.positions = Positions;
  arrays.indices = {0, 1, 2, 0, 2, 3};
  return arrays;
}

GpuMesh::Arrays Colored(const std::vector<double>& p_values) {
  GpuMesh::Arrays arrays = Square();
  arrays.values = p_values;
  return arrays;
}

using Bytes = std::vector<std::size_t>;

} // namespace

TEST(GpuMesh, ComputesBoundsAndNormals) {
  GpuMesh::Arrays arrays = Square();
  arrays.origin = {1, 0, 5};
  GpuMesh mesh(arrays);
  EXPECT_EQ(mesh.Bounds().Min(), Point(-2, -1, -5));
  EXPECT_EQ(mesh.Bounds().Max(), Point(0, 1, -5));
  EXPECT_TRUE(mesh.HasNormals());
  arrays.primitive = Ogl::VertexBuffer::LineStrip;
  EXPECT_FALSE(GpuMesh(arrays).HasNormals());
  EXPECT_TRUE(GpuMesh().Empty());
  EXPECT_TRUE(GpuMesh(Ogl::VertexData()).Empty());
}

TEST(GpuMesh, ThrowsForArraysThatDoNotFit) {
  const std::vector<Point> three(3);
  const std::vector<float> two(2);
  const auto with = [](const std::function<void(GpuMesh::Arrays&)>& p_change) {
    return [p_change] {
      GpuMesh::Arrays arrays = Square();
      p_change(arrays);
      GpuMesh mesh(arrays);
    };
  };
  GpuMesh square(Square());
  Ogl::VertexData bytes;
  bytes.SetVertices(boost::make_shared<int>(), 1, 3, Ogl::VertexData::UnsignedByte);
  const Refusals cases = {
      {"GpuMesh: indices: expected numbers below 4, got 7", with([](auto& p_a) { p_a.indices[1] = 7; })},
      {"GpuMesh: normals: expected 4 elements, got 3", with([&](auto& p_a) { p_a.normals = three; })},
      {"GpuMesh: values: expected 4 elements, got 2", with([&](auto& p_a) { p_a.values = two; })},
      {"GpuMesh: colours: expected 4 elements, got 1", with([](auto& p_a) { p_a.colors.resize(1); })},
      {"GpuMesh: expected a primitive type, got an undecided one",
       with([](auto& p_a) { p_a.primitive = Ogl::VertexBuffer::Undecided; })},
      {"GpuMesh: positions: expected 4 elements, got 3", [&] { square.UpdatePositions(three); }},
      {"GpuMesh: positions: expected 4 elements, got 0", [&] { square.UpdatePositions(Array3()); }},
      {"GpuMesh: values: expected 4 elements, got 2", [&] { square.UpdateValues(two); }},
      {"GpuMesh: positions: expected 2 to 3 floats or doubles for each, got 3 components of type 5121",
       [&] { GpuMesh mesh(bytes); }},
  };
  ExpectErrors(cases);
}

TEST(GpuMesh, LeavesOutBrokenPrimitivesOfModels) {
  std::istringstream text("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 1 2 9\n");
  ReportCapture reports; // of the reader
  const GpuMesh mesh(*LoadPolygonObj(text));
  EXPECT_EQ(mesh.IndexCount(), 3U);
  EXPECT_TRUE(mesh.HasNormals());
}

using GpuMeshCalls = RecordingScopeFixture;

TEST_F(GpuMeshCalls, UploadsWhatChanged) {
  GpuMesh mesh(Colored({0, 0.25, 0.5, 1}));
  EXPECT_EQ(UploadsOf(recorder), Bytes());
  mesh.Draw(gl);
  EXPECT_EQ(recorder.LinesOf({"DrawElements"}), Lines{"DrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_INT, null)"});
  for (const std::string& line : recorder.LinesOf({"VertexPointer", "NormalPointer", "TexCoordPointer"}))
    EXPECT_NE(line.find("null"), std::string::npos) << line; // offsets, no client memory
  EXPECT_EQ(UploadsOf(recorder), (Bytes{48, 48, 16, 24}));   // positions, computed normals, values, indices
  mesh.Draw(gl);
  EXPECT_EQ(UploadsOf(recorder), Bytes());
  const std::vector<float> values = {1, 2, 3, 4};
  mesh.UpdateValues(values);
  mesh.Draw(gl);
  EXPECT_EQ(UploadsOf(recorder), Bytes{16});
  const std::vector<Point> moved = {{0, 0, 0}, {0, 1, 0}, {0, 1, 1}, {0, 0, 1}};
  mesh.UpdatePositions(moved);
  mesh.Draw(gl);
  EXPECT_EQ(UploadsOf(recorder), (Bytes{48, 48})); // with the normals of the new positions
  mesh.UpdateColors(std::vector<GpuMesh::Rgba>(4));
  mesh.Draw(gl);
  EXPECT_EQ(UploadsOf(recorder), Bytes{16});
  const GpuMesh copy = mesh;
  copy.Draw(gl);
  EXPECT_EQ(UploadsOf(recorder), (Bytes{48, 48, 16, 16, 24}));
}

TEST_F(GpuMeshCalls, HasBuffersInEachContext) {
  auto other = std::make_unique<RecordingGl>();
  {
    const GpuMesh mesh(Square());
    mesh.Draw(gl);
    {
      Scope second(other->Handle());
      mesh.Draw(second);
      EXPECT_EQ(UploadsOf(*other), (Bytes{48, 48, 24}));
    }
    EXPECT_EQ(other->Complaints().size(), 3U); // its buffers
    other.reset();                             // frees them
    mesh.Draw(gl);
  }
} // the fixture finds no buffer left

TEST_F(GpuMeshCalls, DrawsAMeshOfACacheInItsContextAlone) {
  std::istringstream text("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
  ModelCache cache(recorder.Handle());
  const GpuMesh mesh(cache, cache.Register(*LoadPolygonObj(text)));
  EXPECT_EQ(mesh.VertexCount(), 3U);
  UploadsOf(recorder);
  mesh.Draw(gl);
  EXPECT_EQ(recorder.LinesOf({"DrawElements"}).size(), 1U);
  EXPECT_EQ(UploadsOf(recorder), Bytes()); // shares the buffers
  RecordingGl other;
  Scope second(other.Handle());
  ReportCapture reports;
  mesh.Draw(second);
  EXPECT_EQ(reports.Texts().size(), 1U);
  EXPECT_EQ(other.LinesOf({"DrawElements"}), Lines());
  EXPECT_TRUE(GpuMesh(cache, 99).Empty());
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { GpuMesh(mesh).UpdateColors({}); }),
            "GpuMesh: colours: a mesh of a cache has no arrays to update");
}

TEST_F(GpuMeshCalls, TriesAgainAfterAFailure) {
  const GpuMesh mesh(Square());
  for (const char* const failing : {"GenBuffers", "MapBufferRange"}) {
    recorder.Clear();
    recorder.Fail(failing);
    ReportCapture reports;
    mesh.Draw(gl);
    EXPECT_EQ(recorder.LinesOf({"DrawElements"}), Lines()) << failing;
    EXPECT_FALSE(reports.Texts().empty()) << failing;
  }
  mesh.Draw(gl);
  EXPECT_EQ(recorder.LinesOf({"DrawElements"}).size(), 1U);
  while (gl->GetError() != RGL_NO_ERROR) {
  }
}

TEST_F(GpuMeshCalls, RefusesTooFewInstances) {
  const GpuMesh mesh(Square());
  const auto records = boost::make_shared<Ogl::BufferStorage>(gl->Functions(), 40, Ogl::BufferUsage::Default);
  const std::tuple<std::size_t, std::size_t, unsigned int, bool> cases[] = {
      // Instances, offset, stride, whether it fits 40 bytes of 3 floats each.
      {3, 0, 12, true}, {4, 0, 12, false}, {3, 4, 12, true},   {3, 5, 12, false},
      {2, 0, 28, true}, {3, 0, 28, false}, {1, 29, 12, false}, {1, SIZE_MAX, 12, false},
  };
  recorder.SetVersion("3.3");
  for (const auto& [count, offset, stride, fits] : cases) {
    recorder.Clear();
    ReportCapture reports;
    mesh.DrawInstanced(gl, count, {{1, records, offset, stride, 3, false}});
    EXPECT_EQ(recorder.LinesOf({"DrawElementsInstanced"}).size(), fits ? 1U : 0U) << count << ' ' << offset;
    EXPECT_EQ(reports.Texts().size(), fits ? 0U : 1U) << count << ' ' << offset;
  }
}

class GpuMeshPixels : public PixelScopeFixture {
public:
  /// The middle of the frame after the square was drawn in full ambient light.
  QColor Middle(const GpuMesh& p_mesh, const ValueScale& p_scale) {
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    DirectionalLight light;
    light.ambient = 1;
    light.diffuse = light.specular = 0;
    const auto lit = light.Apply(gl);
    p_mesh.Draw(gl, colors, p_scale);
    return At(30, 18);
  }
  const ColorMap colors{{Qt::red, Qt::green, Qt::blue, Qt::white}, ColorMap::Discrete};
};

TEST_F(GpuMeshPixels, ColorsFollowTheScale) {
  const ValueScale ones{0, 1, false, {}, {}, Qt::black};
  const ValueScale hundreds{100, 500, false, Qt::cyan, Qt::magenta, Qt::yellow};
  const ValueScale powers{1, 1e4, true, Qt::cyan, {}, Qt::yellow};
  const std::tuple<double, ValueScale, QColor> cases[] = {
      {0.1, ones, Qt::red},
      {0.3, ones, Qt::green},
      {0.9, ones, Qt::white},
      {-1, ones, Qt::red},
      {7, ones, Qt::white},
      {NAN, ones, Qt::black},
      {150, hundreds, Qt::red},
      {350, hundreds, Qt::blue},
      {99, hundreds, Qt::cyan},
      {501, hundreds, Qt::magenta},
      {NAN, hundreds, Qt::yellow},
      {INFINITY, hundreds, Qt::magenta},
      {-INFINITY, hundreds, Qt::cyan},
      {5, powers, Qt::red},
      {50, powers, Qt::green},
      {500, powers, Qt::blue},
      {5e3, powers, Qt::white},
      {0, powers, Qt::cyan},
      {-5, powers, Qt::cyan},
      {1e5, powers, Qt::white},
      {NAN, powers, Qt::yellow},
      {0.3, ones, Qt::green},
  };
  GpuMesh mesh(Square());
  for (const auto& [value, scale, color] : cases) {
    mesh.UpdateValues(std::vector<double>(4, value));
    EXPECT_EQ(Middle(mesh, scale), color) << value << ' ' << scale.upper;
  }
  EXPECT_EQ(Middle(GpuMesh(Colored({0.1, 0.1, NAN, 0.1})), ones), QColor(Qt::black));
  EXPECT_EQ(Middle(GpuMesh(Colored(std::vector<double>(4, NAN))), {0, 1, false, {}, {}, Qt::transparent}),
            QColor(Qt::transparent));
  mesh.UpdateColors(std::vector<GpuMesh::Rgba>(4, {255, 0, 255, 255}));
  EXPECT_EQ(Middle(mesh, ones), QColor(Qt::magenta));
  EXPECT_EQ(Middle(GpuMesh(Square()), ones), QColor(Qt::red)); // no values count as 0
  for (const ValueScale& scale : {ValueScale{1, 1}, ValueScale{2, 1}, ValueScale{0, NAN}, ValueScale{0, 1, true}})
    EXPECT_THROW(GpuMesh(Square()).Draw(gl, colors, scale), std::invalid_argument) << scale.lower;
}

TEST_F(GpuMeshPixels, FixedAttributesFillTheSquareAndLeaveTheColor) {
  GpuMesh::Arrays painted = Square();
  painted.colors.assign(4, {0, 255, 255, 255});
  gl->Color(Qt::red);
  GpuMesh(painted).Draw(gl);
  for (const auto& [x, y] : {std::pair(0, 0), {60, 0}, {60, 36}, {0, 36}, {30, 18}})
    EXPECT_EQ(At(x, y), QColor(Qt::cyan));
  GpuMesh(Square()).Draw(gl);
  EXPECT_EQ(At(30, 18), QColor(Qt::red));
}
