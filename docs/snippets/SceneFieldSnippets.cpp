// Examples of the reference for fields: streamlines, surfaces and contour lines; it shows the lines between two marks.

#include "library/ColorMap.h"
#include "library/StreamLineShape.h"
#include "scene/Background.h"
#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/GpuMesh.h"
#include "scene/Isolines.h"
#include "scene/Isosurface.h"
#include "scene/StreamlineTracer.h"
#include "scene/SurfaceMesh.h"
#include "scene/Theme.h"
#include "scene/Ticks.h"
#include "scene/TubeMesh.h"
#include "scene/VectorField.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

using Vector = Types::Vector3_Base<double>;

/// A height at a position, of hills and dales.
double Terrain(double p_x, double p_y) {
  return std::sin(1.3 * p_x) * std::cos(0.9 * p_y) + 0.5 * std::sin(0.7 * p_x + 1.9 * p_y);
}

class SceneFieldSnippetPixels : public ShownFixture {
public:
  SceneFieldSnippetPixels()
      : ShownFixture({1280, 720}) {
    DrawBackground(gl, viewport, Theme::Light());
    for (int i = 0; i <= 80; ++i)
      x.push_back(-5 + 0.125 * i);
    for (int i = 0; i <= 48; ++i)
      y.push_back(-3 + 0.125 * i);
    for (const double ay : y)
      for (const double ax : x)
        heights.push_back(Terrain(ax, ay));
  }

public:
  std::vector<double> x, y, heights;
};

TEST_F(SceneFieldSnippetPixels, VectorField) {
  //! [VectorField]
  // Winds at five meridians around the globe, which need not be evenly spaced; one value is missing.
  const std::vector<double> longitudes{-180, -120, 0, 60, 120}, latitudes{60, 30, 0, -30};
  std::vector<double> u, v;
  for (const double latitude : latitudes)
    for (const double longitude : longitudes) {
      u.push_back(8 * std::sin(latitude / 20) + longitude / 60);
      v.push_back(longitude == 60 && latitude == 30 ? NAN : 4 * std::cos(longitude / 50));
    }
  VectorField winds = VectorField::Layer(longitudes, latitudes, Array3(u, v, 0));
  winds.WrapX(360);

  std::vector<double> lons, lats, speeds;
  for (int i = 0; i <= 360; ++i)
    lons.push_back(i - 180);
  for (int i = 0; i <= 90; ++i)
    lats.push_back(i - 30);
  for (const double latitude : lats)
    for (const double longitude : lons) {
      Vector wind;
      speeds.push_back(winds.Sample({longitude, latitude, 0}, wind) ? Length(wind) : NAN);
    }
  //! [VectorField]
  Camera camera;
  camera.Look(Camera::StandardView::Top);
  camera.Fit({{-180, -30, 0}, {180, 60, 0}}, viewport, {40, 40, 40, 40});
  const auto view = camera.Apply(gl, viewport);
  DirectionalLight light;
  light.ambient = 1;
  light.diffuse = light.specular = 0;
  const auto lit = light.Apply(gl);
  SurfaceMesh map(lons, lats, speeds, {}, {{}, {1, 1, 1e-9}, 1, 0});
  GpuMesh(map.TakeData().front()).Draw(gl, Library::ColorMap::Named("viridis"), {0, 12});
  Show("VectorField");
}

TEST_F(SceneFieldSnippetPixels, StreamlineTracer) {
  std::vector<Vector> flow;
  for (const double ay : y)
    for (const double ax : x)
      flow.emplace_back(1.2 + std::cos(1.3 * ay) + 0.4 * ax * ay / 3, std::sin(1.1 * ax) - 0.3 * ay, 0);
  //! [StreamlineTracer]
  const VectorField field = VectorField::Layer(x, y, flow);
  const StreamlineTracer tracer(field); // steps and lengths suit the field
  TubeMesh tubes(Library::StreamLineShape(Library::StreamLineShape::ShapeTube, {}));
  for (const Streamline& line : tracer.Filled(field.Bounds(), {0.3, 0.15, 1})) {
    std::vector<TubeMesh::Point> points;
    for (const Vector& position : line) {
      Vector vector;
      field.Sample(position, vector);
      points.push_back({position, 0.06, Length(vector)});
    }
    tubes.Add(points);
  }
  //! [StreamlineTracer]
  Camera camera;
  camera.Look(Camera::StandardView::Top);
  camera.Fit({{-5, -3, 0}, {5, 3, 0}}, viewport, {40, 40, 40, 40});
  const auto view = camera.Apply(gl, viewport);
  const auto light = DirectionalLight().Apply(gl);
  GpuMesh(tubes.TakeMesh()).Draw(gl, Library::ColorMap::Named("viridis"), {0, field.Speeds().max});
  Show("StreamlineTracer");
}

TEST_F(SceneFieldSnippetPixels, SurfaceMesh) {
  //! [SurfaceMesh]
  SurfaceMesh::Options options;
  options.scale = {1, 1, 0.6}; // flatter, with the normals of the flatter surface
  options.levels = 3;          // every node, every second one, every fourth one
  SurfaceMesh surface(x, y, heights, {}, options);
  const std::vector<Ogl::VertexData> levels = surface.TakeData();

  Camera camera;
  camera.Look(Camera::StandardView::Chart);
  camera.Fit(surface.bounds, viewport, {20, 20, 20, 20});
  const auto view = camera.Apply(gl, viewport);
  const auto light = DirectionalLight().Apply(gl);
  GpuMesh(levels.front()).Draw(gl, Library::ColorMap::Named("viridis"), {-1.5, 1.5});
  //! [SurfaceMesh]
  Show("SurfaceMesh");
}

TEST_F(SceneFieldSnippetPixels, Isolines) {
  SurfaceMesh surface(x, y, heights);
  Camera camera;
  camera.Look(Camera::StandardView::Chart);
  camera.elevation = 55;
  camera.Fit(surface.bounds, viewport, {20, 20, 20, 20});
  const auto view = camera.Apply(gl, viewport);
  const auto light = DirectionalLight().Apply(gl);
  gl->Enable(RGL_POLYGON_OFFSET_FILL);
  gl->PolygonOffset(1, 1); // the surface lies behind its lines
  GpuMesh(surface.TakeData().front()).Draw(gl, Library::ColorMap::Named("viridis"), {-1.5, 1.8});
  gl->Disable(RGL_POLYGON_OFFSET_FILL);
  gl->LineWidth(3);
  //! [Isolines]
  const Isolines contours(x, y, heights);
  const Ticks levels = Ticks::Linear(contours.Range().min, contours.Range().max, 15);
  for (const Isolines::Line& line : contours.AtAll(levels.Values())) {
    GpuMesh::Arrays strip;
    strip.positions = line.points; // z is the level: the lines lie on the surface
    strip.colors.assign(line.points.size(), {255, 255, 255, 255});
    strip.primitive = Ogl::VertexBuffer::LineStrip;
    GpuMesh(strip).Draw(gl, Library::ColorMap::Named("grey"));
  }
  //! [Isolines]
  gl->LineWidth(1);
  Show("Isolines");
}

TEST_F(SceneFieldSnippetPixels, Isosurface) {
  //! [Isosurface]
  // The potential of three charges at 61 x 41 x 41 nodes.
  std::vector<double> xs, ys, zs, potential;
  for (int i = 0; i <= 60; ++i)
    xs.push_back(0.1 * i - 3);
  for (int i = 0; i <= 40; ++i)
    ys.push_back(0.1 * i - 2);
  zs = ys;
  for (const double az : zs)
    for (const double ay : ys)
      for (const double ax : xs)
        potential.push_back(1 / Length(Vector(ax - 1.31, ay, az)) + 1 / Length(Vector(ax + 1.31, ay, az)) -
                            0.8 / Length(Vector(ax, ay - 0.93, az)));
  Isosurface surface(xs, ys, zs, potential, std::vector<double>{-0.5, 1}, {});
  //! [Isosurface]
  Camera camera;
  camera.Look(Camera::StandardView::Chart);
  camera.Fit(surface.bounds, viewport, {20, 20, 20, 20});
  const auto view = camera.Apply(gl, viewport);
  const auto light = DirectionalLight().Apply(gl);
  GpuMesh(surface.TakeData()).Draw(gl, Library::ColorMap::Named("viridis"), {-1, 1.5});
  Show("Isosurface");
}

} // namespace
