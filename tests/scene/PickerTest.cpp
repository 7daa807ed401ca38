#include "scene/Picker.h"

#include "scene/GpuMesh.h"
#include "scene/InstancedMesh.h"

#include "tests/support/FaultyGl.h"
#include "tests/support/Test.h"

namespace {

using Hit = Picker::Hit;

/// A square in the plane y = `p_y`, 1 wide and high, in two triangles: the lower right and the upper left one.
GpuMesh::Arrays Square(const std::vector<Point>& p_corners) {
  GpuMesh::Arrays arrays;
  arrays.positions = p_corners;
  arrays.indices = {0, 1, 2, 0, 2, 3};
  return arrays;
}
std::vector<Point> Corners(double p_x, double p_y) {
  return {{p_x, p_y, 0}, {p_x + 1, p_y, 0}, {p_x + 1, p_y, 1}, {p_x, p_y, 1}};
}

/// Three plots, seen along +y by a parallel camera of 0.1 units a pixel: a mesh, instances before and behind it, and
/// lines of GL.
class Plots {
public:
  explicit Plots(int& p_drawings)
      : mesh(Square(Corners(-3, 0)))
      , plots({[this, &p_drawings](Scope& p_gl, const PickPass&) {
                 ++p_drawings;
                 mesh.Draw(p_gl);
               },
               {},
               [this](Scope& p_gl, const PickPass& p_pass) { instances.Draw(p_gl, p_pass); },
               [](Scope& p_gl, const PickPass&) {
                 p_gl->Begin(RGL_QUADS);
                 for (const Point& corner : Corners(2, 0))
                   p_gl->Vertex(corner);
                 p_gl->End();
               }}) {
    const std::vector<Point> positions = {{0, 0, 0}, {-2.5, 1, 0}, {-3.5, -1, 0}};
    InstancedMesh::Instances arrays;
    arrays.positions = positions;
    arrays.ids = {700, 70000, 7000000};
    instances = InstancedMesh(GpuMesh(Square(Corners(0, 0))), arrays);
    camera.elevation = 0;
    camera.projection = Camera::Projection::Parallel;
    camera.distance = 10;
    camera.fieldOfView = 2 * Types::Angle::FromRadians(std::atan(0.5)).Degrees(); // 10 units high at the target
  }

  GpuMesh mesh;
  InstancedMesh instances;
  Camera camera;
  std::vector<Picker::DrawPlot> plots;
};

/// The pixel of a point of the plane that faces the camera.
Types::Pos PixelOf(double p_x, double p_z, const Types::Viewport<0>& p_viewport) {
  return {static_cast<int>(std::floor(p_viewport.x + 50 + 10 * p_x)),
          static_cast<int>(std::floor(p_viewport.y + 50 + 10 * p_z))};
}

} // namespace

class PickerPixels : public PixelScopeFixture {
public:
  std::optional<Hit> Pick(double p_x, double p_z) {
    return picker.Pick(gl, scene.camera, viewport, PixelOf(p_x, p_z, viewport), stamp, scene.plots);
  }
  const Types::Viewport<0> viewport{7, 3, 100, 100};
  Core::TimeStamp stamp;
  int drawings = 0;
  Plots scene{drawings};
  Picker picker;
};

TEST_F(PickerPixels, FindsPlotsAndElements) {
  // Hostile state of the host, which must stay.
  gl->Enable(RGL_SCISSOR_TEST);
  gl->Enable(RGL_BLEND);
  gl->Enable(RGL_DITHER);
  gl->ColorMask(false, true, false, true);
  gl->DepthFunc(RGL_NEVER);
  const std::tuple<double, double, int, int, double> cases[] = {
      // x, z, plot, element, y; plot −1: nothing.
      {-2.25, 0.35, 0, 0, 0},
      {-2.35, 0.85, 0, 1, 0},
      {-1.75, 0.5, 2, 70000, 1},
      {0.45, 0.45, 2, 700, 0},
      {-3.25, 0.45, 2, 7000000, -1},
      {-2.75, 0.45, 2, 7000000, -1},
      {2.5, 0.5, 3, -1, 0},
      {4.5, 0.5, -1, 0, 0},
      {0.5, 1.5, -1, 0, 0},
      {-9, 0, -1, 0, 0},
      {0, 9, -1, 0, 0},
  };
  for (const auto& [x, z, plot, element, y] : cases) {
    const std::optional<Hit> hit = Pick(x, z);
    ASSERT_EQ(hit.has_value(), plot >= 0) << x << ' ' << z;
    if (!hit)
      continue;
    EXPECT_EQ(hit->plot, static_cast<unsigned int>(plot)) << x << ' ' << z;
    if (element >= 0) {
      EXPECT_EQ(hit->element, static_cast<std::uint32_t>(element)) << x << ' ' << z;
    }
    EXPECT_NEAR(hit->position.x, x, 0.1) << x << ' ' << z; // the middle of the pixel
    EXPECT_NEAR(hit->position.z, z, 0.1) << x << ' ' << z;
    EXPECT_NEAR(hit->position.y, y, 1e-4) << x << ' ' << z;
  }
  EXPECT_EQ(drawings, 2); // depths and ids
  EXPECT_TRUE(gl->IsEnabled(RGL_SCISSOR_TEST) && gl->IsEnabled(RGL_BLEND));
}

TEST_F(PickerPixels, DrawsOncePerStamp) {
  EXPECT_FALSE(Pick(4.5, 0.5));
  EXPECT_EQ(drawings, 1); // no ids of nothing
  EXPECT_TRUE(Pick(0.5, 0.5));
  EXPECT_TRUE(Pick(2.5, 0.5));
  EXPECT_EQ(drawings, 2);
  const std::vector<Point> moved = {{4, 0, 0}, {-2.5, 1, 0}, {-3.5, -1, 0}};
  scene.instances.UpdatePositions(moved);
  EXPECT_TRUE(Pick(0.5, 0.5));
  stamp = Core::TimeStamp();
  EXPECT_FALSE(Pick(0.5, 0.5));
  EXPECT_TRUE(Pick(4.5, 0.5));
  EXPECT_EQ(drawings, 4);
  const auto surface =
      picker.PickSurface(gl, scene.camera, viewport, PixelOf(-2.35, 0.85, viewport), Core::TimeStamp(), scene.plots[0]);
  ASSERT_TRUE(surface);
  EXPECT_EQ(surface->element, std::nullopt);
  EXPECT_EQ(drawings, 5);
}

TEST_F(PickerPixels, DrawsAgainAfterAPlotThatThrew) {
  const std::vector<Picker::DrawPlot> good = scene.plots;
  for (const PickPass::Kind kind : {PickPass::Depths, PickPass::Ids}) {
    stamp = Core::TimeStamp();
    scene.plots[3] = [&](Scope&, const PickPass& p_pass) {
      if (p_pass.kind == kind)
        throw std::runtime_error("broken");
    };
    EXPECT_THROW(Pick(0.5, 0.5), std::runtime_error);
    scene.plots = good;
    const auto hit = Pick(2.5, 0.5);
    ASSERT_TRUE(kind == PickPass::Ids || hit) << kind; // the depths were drawn without the plot that threw
    ASSERT_TRUE(Pick(0.5, 0.5)) << kind;
    EXPECT_EQ(Pick(0.5, 0.5)->element, 700U) << kind;
  }
  scene.plots.resize(256);
  EXPECT_THROW(Pick(0.5, 0.5), std::invalid_argument);
}

TEST_F(PickerPixels, WorksInTwoContexts) {
  EXPECT_TRUE(Pick(0.5, 0.5));
  {
    Ogl::OffscreenContext other({20, 20});
    Scope second(other.Handle());
    const auto hit = picker.Pick(second, scene.camera, viewport, PixelOf(0.5, 0.5, viewport), stamp, scene.plots);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->element, 700U);
  } // frees its targets
  EXPECT_EQ(Pick(0.5, 0.5)->element, 700U);
}

using PickerCalls = RecordingScopeFixture;

TEST_F(PickerCalls, PicksOfOneStampMakeNoCalls) {
  recorder.SetVersion("3.3");
  recorder.SetPixel(4, 5, {1, 2, 3, 4});
  int drawings = 0;
  const Picker::DrawPlot draw = [&](Scope&, const PickPass&) { ++drawings; };
  Picker picker;
  const Camera camera;
  const Core::TimeStamp stamp;
  const auto hit = picker.Pick(gl, camera, {0, 0, 16, 9}, {4, 5}, stamp, {draw});
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->plot, 3U);
  EXPECT_EQ(hit->element, 0x030201U);
  recorder.Clear();
  EXPECT_TRUE(picker.Pick(gl, camera, {0, 0, 16, 9}, {4, 5}, stamp, {draw}));
  EXPECT_FALSE(picker.Pick(gl, camera, {0, 0, 16, 9}, {5, 4}, stamp, {draw}));
  EXPECT_FALSE(picker.Pick(gl, camera, {0, 0, 16, 9}, {-1, INT_MAX}, stamp, {draw}));
  EXPECT_EQ(recorder.Lines(), Lines());
  EXPECT_EQ(drawings, 2);
  EXPECT_TRUE(picker.Pick(gl, camera, {0, 0, 17, 9}, {4, 5}, stamp, {draw})); // another size
  EXPECT_EQ(drawings, 4);
}

TEST_F(PickerCalls, EachFailingCallLeavesNothingBehind) {
  recorder.SetVersion("3.3");
  recorder.SetPixel(4, 5, {1, 2, 3, 4});
  FaultyGl faulty(recorder.Handle());
  Scope broken(faulty.Handle());
  std::set<std::string> failed;
  for (std::size_t failing = 1; failing < 1000; ++failing) {
    ReportCapture reports;
    int drawings = 0;
    Plots scene(drawings);
    scene.plots.resize(3); // immediate mode makes nothing
    Picker picker;
    const auto pick = [&] {
      return picker.Pick(broken, scene.camera, {0, 0, 16, 9}, {4, 5}, Core::TimeStamp(), scene.plots);
    };
    faulty.Arm({failing, false});
    pick();
    const std::string call = faulty.Disarm();
    faulty.TakePendingError();
    if (call.empty())
      break;
    failed.insert(call);
    EXPECT_FALSE(reports.Texts().empty()) << failing << ' ' << call;
    reports.Clear();
    EXPECT_TRUE(pick()) << failing << ' ' << call; // nothing broken was kept
    EXPECT_EQ(reports.Texts(), Texts()) << failing << ' ' << call;
  }
  for (const std::string& complaint : recorder.TakeComplaints()) // of buffers that have no memory
    EXPECT_EQ(complaint.rfind("MapBufferRange: ", 0), 0U) << complaint;
  for (const char* const call : {"GenBuffers", "BufferData", "MapBufferRange", "LinkProgram", "ReadPixels"})
    EXPECT_EQ(failed.count(call), 1U) << call;
}
