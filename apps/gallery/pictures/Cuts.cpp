// Oblique slices through a volume, and what Intersect computes: the line of two planes, and the points where rays meet
// a plane. The volume is a formula, or a file of the user's own.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "io/ReadVolume.h"

#include "library/Intersect.h"

#include <array>
#include <cmath>
#include <limits>

namespace Vek::Chart::Gallery {

namespace {

using boost::logic::tribool;
using Library::Intersect;
using Point = Types::Vector3_Base<double>;
using Points = std::vector<Point>;
using Box = Types::BoundingBox_Base<double>;
using Types::Plane;

const QColor Teal(0x3FA7A0);
const QColor Coral(0xE0705A);
const QColor Gold(0xF2C14E);
const QColor White(0xF2F0EA);

/// A gyroid, sin x cos y + sin y cos z + sin z cos x.
VoxelGrid Gyroid() {
  constexpr int Columns = 145, Rows = 85;
  constexpr double Step = 2 * M_PI / 42; // the surface repeats after 42 voxels
  std::vector<double> x, y, values;
  for (int i = 0; i < Columns; ++i)
    x.push_back(i * Step);
  y.assign(x.begin(), x.begin() + Rows);
  for (const double c : y)
    for (const double b : y)
      for (const double a : x)
        values.push_back(std::sin(a) * std::cos(b) + std::sin(b) * std::cos(c) + std::sin(c) * std::cos(a));
  return {values, x, y, y};
}

/// Planes along the diagonal of a box, each turned a little further than the one before.
std::vector<Plane> TurningPlanes(const Box& p_box) {
  constexpr int Count = 5;
  const Point size = p_box.Extent();
  const double mostLift = 0.35 * std::min(1.0, size.x / size.z); // else they cross in tall boxes
  std::vector<Plane> planes;
  for (int i = 0; i < Count; ++i) {
    const double part = 2.0 * i / (Count - 1) - 1; // −1 to 1
    const double turn = -0.3 * part, lift = mostLift * part;
    planes.emplace_back(p_box.Center() + size * (0.39 * part),
                        Point(std::cos(turn) * std::cos(lift), std::sin(turn) * std::cos(lift), std::sin(lift)));
  }
  return planes;
}

Figure Slices(const std::string& p_path) {
  Figure figure;
  const VoxelGrid grid = p_path.empty() ? Gyroid() : VoxelGrid(Io::ReadVolume(p_path));
  SlicesPlot& slices = figure.Look(42, 24).Slices(grid).ColorMap("inferno");
  for (const Plane& plane : TurningPlanes(grid.Bounds()))
    slices.At(plane);
  if (p_path.empty())
    slices.Show(-0.5, std::numeric_limits<double>::infinity())
        .ColorRange(-0.5, 1.5)
        .ColorTitle("sin x cos y + sin y cos z + sin z cos x");
  else
    slices.ColorTitle(ValueTitle(grid));
  return figure;
}

/// A convex polygon, half-transparent, with its outline.
void AddPolygon(Figure& p_figure, const Points& p_corners, const QColor& p_color) {
  std::vector<std::array<unsigned, 3>> triangles;
  for (unsigned i = 2; i < p_corners.size(); ++i)
    triangles.push_back({0, i - 1, i});
  p_figure.Mesh(p_corners, triangles).Color(p_color).SetOpacity(0.6);
  Points outline = p_corners;
  outline.push_back(p_corners.front());
  p_figure.Lines(outline).Color(p_color.lighter(130));
}

/// The part of a line within a box: where it meets the planes of the faces, as far as that is in the box.
Points Clipped(const Types::Line3_Base<double>& p_line, const Box& p_box) {
  const Point reach = Normalize(p_line.direction) * (2 * Length(p_box.Extent()));
  const double slack = 1e-5 * Length(p_box.Extent()); // a line of two planes is as exact as single precision
  const Point least = p_box.Min() - Point(slack, slack, slack), most = p_box.Max() + Point(slack, slack, slack);
  Points ends;
  for (const Point& corner : {p_box.Min(), p_box.Max()})
    for (const Point& normal : {Point(1, 0, 0), Point(0, 1, 0), Point(0, 0, 1)}) {
      Point end;
      const tribool met =
          Intersect::Intersection(Plane(corner, normal), p_line.point - reach, p_line.point + reach, end);
      if (met && end.x >= least.x && end.y >= least.y && end.z >= least.z && end.x <= most.x && end.y <= most.y &&
          end.z <= most.z)
        ends.push_back(end);
    }
  return ends;
}

/// Two planes in a box, and the line in which they meet.
Figure TwoPlanes() {
  const Box box({-1.2, -0.9, -0.75}, {1.2, 0.9, 0.75});
  const Plane planes[] = {{{0.1, 0, -0.05}, {-0.2, -0.5, 1}}, {{-0.1, 0, 0}, {-1, -0.45, 0.25}}};
  const QColor colors[] = {Teal, Coral};
  Figure figure;
  figure.SetLimits(0, -1.3, 1.3).SetLimits(1, -1, 1).SetLimits(2, -0.8, 0.8).Look(28, 24);
  for (int i = 0; i < 2; ++i) {
    Points outline;
    Intersect::Intersection(box, planes[i], outline);
    AddPolygon(figure, outline, colors[i]);
  }
  Types::Line3_Base<double> line;
  if (Intersect::Intersection(planes[0], planes[1], line)) {
    const Points ends = Clipped(line, box);
    figure.Lines(ends).Color(Gold).Width(4);
    figure.Scatter(ends).Color(Gold).Diameter(0.04);
  }
  return figure;
}

/// A ray and a plane, and what Intersect says of them.
struct Ray {
  QString meaning;
  Types::Ray_Base<double> ray;
  tribool met = false;
  Point point{}; ///< where it meets the plane

  Point End() const { return met ? point : ray.origin + ray.direction; }
  QColor Color() const { return indeterminate(met) ? White : met ? Gold : Coral; }
};

std::array<Ray, 4> Rays() {
  std::array<Ray, 4> rays = {{{"meets it at", {{-1.25, 0.1, 1}, {0.45, -0.3, -1.5}}},
                              {"ends on it at", {{-0.35, 0, 1}, {0.35, -0.2, -1}}},
                              {"stops short of it", {{0.55, 0.1, 1}, {0.2, -0.15, -0.55}}},
                              {"lies in the plane", {{0.3, -0.55, 0}, {0.9, 0.25, 0}}}}};
  for (Ray& ray : rays)
    ray.met = Intersect::Intersection(Plane(), ray.ray, ray.point);
  return rays;
}

Figure PlaneAndRays(const std::array<Ray, 4>& p_rays) {
  Figure figure;
  figure.SetLimits(0, -1.5, 1.5).SetLimits(1, -0.8, 0.8).SetLimits(2, -0.5, 1).Look(12, 24);
  AddPolygon(figure, {{-1.5, -0.8, 0}, {1.5, -0.8, 0}, {1.5, 0.8, 0}, {-1.5, 0.8, 0}}, Teal);
  for (const Ray& ray : p_rays) {
    figure.Lines(Points{ray.ray.origin, ray.ray.origin + ray.ray.direction}).Color(ray.Color()).Width(3);
    figure.Scatter(Points{ray.End()}).Color(ray.Color()).Diameter(0.04);
  }
  return figure;
}

QString Coordinates(const Point& p_point) {
  QString text;
  for (const double part : {p_point.x, p_point.y, p_point.z})
    text +=
        (text.isEmpty() ? "" : ", ") + QString::number(std::round(100 * part) / 100 + 0.0).replace('-', QChar(0x2212));
  return text;
}

/// Numbers at the origins of the rays, and the results below the figure.
void DrawResults(Sheet& p_sheet, Figure& p_figure, const std::array<Ray, 4>& p_rays, const Sheet::Rect& p_rect) {
  const Types::Viewport<0> viewport = p_sheet.canvas.Part(p_rect);
  const View view{p_figure.Layout(viewport, FigurePoint * p_sheet.canvas.PointSize()).camera, viewport};
  double y = p_rect.bottom - 14;
  int number = 0;
  for (const Ray& ray : p_rays) {
    TextStyle style = p_sheet.theme.SmallStyle();
    style.color = ray.Color();
    style.bold = true;
    const QString name = QString::number(++number);
    p_sheet.canvas.TextAt(name, view, p_figure.ToScene(ray.ray.origin), {-6, 12}, {1, 0.5}, style);
    const QString result = indeterminate(ray.met) ? "indeterminate" : ray.met ? "true" : "false";
    p_sheet.canvas.Text(name + "  " + result, {p_rect.left + 20, y}, {0, 0.5}, style);
    p_sheet.Label(ray.met ? ray.meaning + " " + Coordinates(ray.point) : ray.meaning, p_rect.left + 200, y);
    y -= 27;
  }
}

} // namespace

QImage CutsImage(const Inputs& p_inputs, Types::Size p_size) {
  Figure slices = Slices(p_inputs.volume);
  const QString line = p_inputs.volume.empty()
                           ? QString("Five oblique slices through a formula, which is called a gyroid")
                           : "Five oblique slices through " + NameOfFile(p_inputs.volume);
  return DrawSheet("Cuts", line, p_size, [&](Sheet& p_sheet) {
    p_sheet.Draw(slices, {30, 20, 1080, 880});
    Figure planes = TwoPlanes();
    p_sheet.Heading("The line of two planes", 1110, 948);
    p_sheet.Draw(planes, {1090, 560, 1590, 930});
    const std::array<Ray, 4> rays = Rays();
    Figure plane = PlaneAndRays(rays);
    constexpr Sheet::Rect Part{1090, 160, 1590, 500};
    p_sheet.Heading("Rays and a plane", 1110, 518);
    p_sheet.Draw(plane, Part);
    DrawResults(p_sheet, plane, rays, Part);
  });
}

} // namespace Vek::Chart::Gallery
