// Examples of the reference for meshes, instances and picking; it shows the lines between two marks.

#include "library/Icosphere.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "library/VectorSymbol.h"
#include "scene/Background.h"
#include "scene/Camera.h"
#include "scene/Canvas.h"
#include "scene/DepthShader.h"
#include "scene/DirectionalLight.h"
#include "scene/GpuMesh.h"
#include "scene/InstancedMesh.h"
#include "scene/Picker.h"
#include "scene/TextRenderer.h"
#include "scene/Theme.h"
#include "scene/TubeMesh.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

class SceneMeshSnippetPixels : public ShownFixture {
public:
  SceneMeshSnippetPixels()
      : ShownFixture({1280, 560}) {}

protected:
  /// A view of what lies in a box, from `p_zoom` times the distance at which all of the box is seen, on a light
  /// background.
  Camera Show(const Types::BoundingBox_Base<double>& p_bounds, double p_zoom) {
    DrawBackground(gl, viewport, Theme());
    Camera camera;
    camera.Look(Camera::StandardView::Chart);
    camera.Fit(p_bounds, viewport, {30, 30, 30, 30});
    camera.target = p_bounds.Center();
    camera.Zoom(p_zoom);
    return camera;
  }
  using ShownFixture::Show;
};

TEST_F(SceneMeshSnippetPixels, GpuMesh) {
  //! [GpuMesh]
  const Library::Icosphere sphere(5);
  std::vector<Point> positions;
  std::vector<double> heights;
  for (const Point& p : sphere.positions) {
    heights.push_back(std::sin(5 * p.x) * std::sin(5 * p.y) * std::sin(5 * p.z)); // in km, say
    positions.push_back(p * (1 + 0.25 * heights.back()));
  }
  GpuMesh::Arrays arrays;
  arrays.positions = positions; // normals are computed
  arrays.indices = sphere.indices;
  arrays.values = heights;
  const GpuMesh planet(arrays);
  //! [GpuMesh]
  const ColorMap colors = ColorMap::Named("viridis");
  const Camera camera = Show(planet.Bounds(), 0.85);
  //! [GpuMeshDraw]
  const auto view = camera.Apply(gl, viewport);
  const auto light = DirectionalLight().Apply(gl);
  planet.Draw(gl, colors, {-0.8, 0.8}); // uploads once; another range uploads nothing
  //! [GpuMeshDraw]
  Show("GpuMesh");
}

TEST_F(SceneMeshSnippetPixels, InstancedMesh) {
  const GpuMesh arrow = [] {
    Ogl::VertexData data;
    Library::VectorSymbol(Model::Symbol::ShapeArrow3D, 24).BuildShape(data);
    return GpuMesh(data);
  }();
  //! [InstancedMesh]
  std::vector<Point> positions, winds;
  std::vector<double> speeds;
  for (int x = -8; x <= 8; ++x)
    for (int y = -4; y <= 4; ++y) {
      positions.push_back({0.5 * x, 0.5 * y, 0});
      winds.push_back({-0.5 * y, 0.5 * x, 0.5 + 0.1 * x}); // around a centre, and upwards
      speeds.push_back(Length(winds.back()));
    }
  InstancedMesh::Instances instances;
  instances.positions = positions;
  instances.directions = winds;
  instances.sizes = speeds;
  instances.values = speeds;
  InstancedMesh::Level level(arrow);
  level.scale = 0.05; // a speed of 1 makes the mesh a twentieth as large
  InstancedMesh arrows({level}, instances);

  const ColorMap colors = ColorMap::Named("inferno");
  const auto draw = [&](const Camera& p_camera) {
    const auto view = p_camera.Apply(gl, viewport);
    const auto light = DirectionalLight().Apply(gl);
    arrows.Draw(gl, colors, {0, 5}); // one call of GL
  };
  draw(Show(arrows.Bounds(), 1));

  arrows.UpdateValues(speeds); // uploads the values alone when it is drawn again
  //! [InstancedMesh]
  Show("InstancedMesh");
}

TEST_F(SceneMeshSnippetPixels, TubeMesh) {
  //! [TubeMesh]
  using Library::StreamLineShape;
  TubeMesh tubes(StreamLineShape(StreamLineShape::ShapeTube, {}));
  for (int k = 0; k < 3; ++k) {
    std::vector<TubeMesh::Point> line;
    for (int i = 0; i <= 2000; ++i) {
      const double t = i / 2000.0, angle = 8 * M_PI * t + 2 * M_PI * k / 3;
      const double radius = 0.9 * std::sin(M_PI * t);
      line.push_back({{6 * t - 3, radius * std::cos(angle), radius * std::sin(angle)}, 0.06 + 0.12 * t, t});
    }
    tubes.Add(TubeMesh::Thinned(line)); // with a few hundred points
  }
  const GpuMesh mesh(tubes.TakeMesh());
  //! [TubeMesh]
  const ColorMap colors = ColorMap::Named("plasma");
  const auto view = Show(mesh.Bounds(), 0.95).Apply(gl, viewport);
  const auto light = DirectionalLight().Apply(gl);
  mesh.Draw(gl, colors);
  Show("TubeMesh");
}

TEST_F(SceneMeshSnippetPixels, Picker) {
  const std::vector<Point> corners = {{-3, -2, 0}, {3, -2, 0}, {3, 2, 0}, {-3, 2, 0}};
  GpuMesh::Arrays plane;
  plane.positions = corners;
  plane.indices = {0, 1, 2, 0, 2, 3};
  plane.colors.assign(4, {200, 205, 212, 255});
  const GpuMesh floor(plane);
  std::vector<Point> positions;
  std::vector<double> values;
  for (int i = 0; i < 40; ++i) {
    positions.push_back({2.6 * std::cos(0.7 * i) * i / 40, 1.7 * std::sin(0.7 * i) * i / 40, 0.1 + i / 40.0});
    values.push_back(i / 40.0);
  }
  InstancedMesh::Instances instances;
  instances.positions = positions;
  instances.values = values;
  std::vector<InstancedMesh::Level> levels = InstancedMesh::Spheres();
  for (InstancedMesh::Level& level : levels)
    level.scale *= 0.3;
  const InstancedMesh balls(levels, instances);
  Types::BoundingBox_Base<double> bounds = floor.Bounds();
  bounds += balls.Bounds();
  const Camera camera = Show(bounds, 1.25);
  const ColorMap colors = ColorMap::Named("viridis");
  {
    const auto view = camera.Apply(gl, viewport);
    const auto light = DirectionalLight().Apply(gl);
    floor.Draw(gl, colors);
    balls.Draw(gl, colors);
  }
  const Camera::Pixel target = camera.Project(positions[35], viewport);
  const Types::Pos mouse(static_cast<int>(target.x), static_cast<int>(target.y));
  //! [Picker]
  Picker picker;               // kept with the scene
  const Core::TimeStamp stamp; // a new one whenever the scene or the camera changes
  const auto hit = picker.Pick(gl, camera, viewport, mouse, stamp,
                               {[&](auto& p_gl, const PickPass&) { floor.Draw(p_gl); },
                                [&](auto& p_gl, const PickPass& p_pass) { balls.Draw(p_gl, p_pass); }});
  if (hit) { // here: plot 1, element 35, and the point of the ball's surface
    const auto number = [](double p_value) { return QString::number(p_value, 'f', 2); };
    const QString what = QString("plot %1, element %2").arg(hit->plot).arg(hit->element.value_or(0));
    const QString where = number(hit->position.x) + ", " + number(hit->position.y) + ", " + number(hit->position.z);
    const TextRenderer text;
    Canvas canvas(gl, viewport, text, PointSize);
    const Camera::Pixel pixel = camera.Project(hit->position, viewport);
    canvas.Text(what + " at " + where, {pixel.x / PointSize, pixel.y / PointSize - 28}, {0.5, 0.5},
                Theme().WithHalo(Theme().SmallStyle()));
  }
  //! [Picker]
  Show("Picker");
}

TEST_F(SceneMeshSnippetPixels, DepthShader) {
  const auto drawScene = [] {};
  const Types::Pos mouse(10, 20);
  //! [DepthShader]
  const DepthShader shader(gl);
  Library::TopMostFragmentDepthBuffer depths;
  const Core::TimeStamp stamp;
  const DepthImage& image = depths.Snapshot(gl, viewport, stamp, [&] { shader.Draw(gl, drawScene); });
  const float depth = image.DepthAt(mouse); // 1: nothing there
  //! [DepthShader]
  EXPECT_EQ(depth, 1);
}

} // namespace
