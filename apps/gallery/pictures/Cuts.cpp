// What Intersect computes: the polygons in which planes cut a volume's box, the line in which two planes meet, and
// where rays meet a plane. The volume is a formula, or a file of the user's own.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/Sketch.h"
#include "apps/gallery/SpacePicture.h"
#include "apps/gallery/VolumeFile.h"
#include "scene/Canvas.h"
#include "scene/VolumeSlices.h"

#include "library/Intersect.h"
#include "library/VolumeImage.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using boost::logic::tribool;
using Library::Intersect;
using Library::VolumeImage;
using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;
using Types::Plane;

const QColor Teal(0x3FA7A0);
const QColor Coral(0xE0705A);
const QColor Gold(0xF2C14E);
const QColor White(0xF2F0EA);

/// A volume with values from 0 to 1, and what these stand for.
struct Values {
  boost::shared_ptr<const VolumeImage> image;
  ValueScale scale;
  double lowOpacity; ///< of the lower limit
  double largest;    ///< what 1 stands for
};

/// A gyroid, sin x cos y + sin y cos z + sin z cos x, brought from 0 to 1.
Values Formula(Loading& p_loading) {
  constexpr int Size[3] = {144, 84, 84};
  constexpr double Step = 2 * M_PI / 42; // the surface repeats after 42 voxels
  const auto image = boost::make_shared<VolumeImage>(VolumeImage::Float1, Size[0], Size[1], Size[2]);
  float* voxel = reinterpret_cast<float*>(image->Bytes().data());
  p_loading.Stage(1);
  for (int k = 0; k < Size[2]; ++k, p_loading.Advance(static_cast<double>(k) / Size[2]))
    for (int j = 0; j < Size[1]; ++j)
      for (int i = 0; i < Size[0]; ++i) {
        const double x = i * Step, y = j * Step, z = k * Step;
        const double wave = std::sin(x) * std::cos(y) + std::sin(y) * std::cos(z) + std::sin(z) * std::cos(x);
        *voxel++ = static_cast<float>(0.5 + wave / 3);
      }
  ValueScale scale;
  scale.lower = 0.05F;
  scale.upper = 0.95F;
  return {image, scale, 0.05, 1};
}

Values FromFile(const std::string& p_path, Loading& p_loading) {
  const VolumeFile file = VolumeFile::Read(p_path, p_loading);
  return {file.image, file.Scale(), 0.3, file.largest};
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

/// The part of a line within a box: where it meets the planes of the faces, those places that are in the box.
std::vector<Point> Clipped(const Types::Line3_Base<double>& p_line, const Box& p_box) {
  const Point reach = Normalize(p_line.direction) * (2 * Length(p_box.Extent()));
  const double slack = 1e-5 * Length(p_box.Extent()); // a line of two planes is as exact as single precision
  const Point least = p_box.Min() - Point(slack, slack, slack), most = p_box.Max() + Point(slack, slack, slack);
  std::vector<Point> ends;
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

/// The part of a convex polygon on that side of a plane that its normal points to.
Slice PartBefore(const Plane& p_plane, const Slice& p_polygon) {
  Slice part;
  for (std::size_t i = 0; i < p_polygon.size(); ++i) {
    const Point& corner = p_polygon[i];
    const Point& next = p_polygon[(i + 1) % p_polygon.size()];
    if (Dot(corner - p_plane.Point(), p_plane.Normal()) >= 0)
      part.push_back(corner);
    Point crossing;
    if (Intersect::Intersection(p_plane, corner, next, crossing))
      part.push_back(crossing);
  }
  return part;
}

Point Middle(const Slice& p_polygon) {
  Point sum;
  for (const Point& corner : p_polygon)
    sum += corner;
  return sum / static_cast<double>(std::max<std::size_t>(p_polygon.size(), 1));
}

/// Two planes in a box, and the line in which they meet.
class TwoPlanes {
public:
  TwoPlanes() {
    for (std::size_t i = 0; i < 2; ++i) {
      Intersect::Intersection(_box, _planes[i], _outlines[i]);
      const Plane& other = _planes[1 - i];
      _parts.push_back({PartBefore(other, _outlines[i]), i});
      _parts.push_back({PartBefore(Plane(other.Point(), -other.Normal()), _outlines[i]), i});
    }
    Types::Line3_Base<double> line;
    if (Intersect::Intersection(_planes[0], _planes[1], line))
      _ends = Clipped(line, _box);
  }

  void Draw(Sketch& p_sketch, const Point& p_eye) const {
    for (const auto& edge : Edges(_box))
      p_sketch.Line(edge[0], edge[1], 1.5, GalleryTheme::Line);
    std::vector<Part> parts = _parts;
    std::sort(parts.begin(), parts.end(), [&](const Part& p_a, const Part& p_b) {
      return Length(Middle(p_a.polygon) - p_eye) > Length(Middle(p_b.polygon) - p_eye);
    });
    for (const Part& part : parts) {
      QColor color = _colors[part.plane];
      color.setAlphaF(0.55f);
      p_sketch.Fill(part.polygon, color);
    }
    for (std::size_t i = 0; i < 2; ++i)
      p_sketch.Outline(_outlines[i], 2, _colors[i].lighter(130));
    if (_ends.size() < 2)
      return;
    p_sketch.Line(_ends.front(), _ends.back(), 4, Gold);
    for (const Point& end : {_ends.front(), _ends.back()}) {
      p_sketch.Dot(end, 8, GalleryTheme::BackgroundBottom);
      p_sketch.Dot(end, 6, Gold);
    }
  }

private:
  struct Part {
    Slice polygon;
    std::size_t plane;
  };

  const std::array<QColor, 2> _colors = {Teal, Coral};
  Box _box{{-1.2, -0.9, -0.75}, {1.2, 0.9, 0.75}};
  std::array<Plane, 2> _planes = {Plane({0.1, 0, -0.05}, {-0.2, -0.5, 1}), Plane({-0.1, 0, 0}, {-1, -0.45, 0.25})};
  std::array<Slice, 2> _outlines;
  std::vector<Part> _parts; ///< of the polygons, on both sides of the other plane
  std::vector<Point> _ends; ///< of the line within the box
};

/// Rays and a plane, and what Intersect says of them.
class Rays {
public:
  Rays() {
    Intersect::Intersection(Box({-1.5, -0.85, -1}, {1.5, 0.85, 1}), _plane, _floor);
    for (Ray& ray : _rays) {
      ray.met = Intersect::Intersection(_plane, ray.ray, ray.place);
      // Where it would arrive if it were longer.
      const Types::Ray_Base<double> longer(ray.ray.origin, ray.ray.direction * 4.0);
      ray.arrives = bool(!ray.met) && bool(Intersect::Intersection(_plane, longer, ray.place));
    }
  }

  void Draw(Sketch& p_sketch) const {
    for (const Ray& ray : _rays) // what lies below the plane is seen through it
      if (ray.met)
        DrawRay(p_sketch, ray.place, End(ray), ray);
    QColor color = Teal;
    color.setAlphaF(0.5f);
    p_sketch.Fill(_floor, color);
    p_sketch.Outline(_floor, 2, Teal.lighter(130));
    int number = 0;
    for (const Ray& ray : _rays) {
      DrawRay(p_sketch, ray.ray.origin, ray.met ? ray.place : End(ray), ray);
      if (ray.arrives) {
        p_sketch.DashedLine(End(ray), ray.place, 2, GalleryTheme::Text);
        p_sketch.Dot(ray.place, 4, GalleryTheme::Faint);
      }
      if (ray.met) {
        p_sketch.Dot(ray.place, 9, GalleryTheme::BackgroundBottom);
        p_sketch.Dot(ray.place, 7, Gold);
      } else {
        p_sketch.Dot(End(ray), 5, Color(ray));
      }
      p_sketch.Dot(ray.ray.origin, 4, Color(ray));
      p_sketch.Text(QString::number(++number), ray.ray.origin, 0, 20, Color(ray));
    }
  }

  void DrawResults(Canvas& p_canvas, double p_left, double p_top) const {
    int number = 0;
    for (const Ray& ray : _rays) {
      const double y = p_top - 27 * number++;
      const QString result = indeterminate(ray.met) ? "indeterminate" : ray.met ? "true" : "false";
      p_canvas.Text(QString::number(number), {p_left, y}, {0, 0.5}, {GalleryTheme::SmallSize, Color(ray), true});
      p_canvas.Text(result, {p_left + 24, y}, {0, 0.5}, {GalleryTheme::SmallSize, Color(ray), true});
      p_canvas.Text(ray.met ? ray.meaning + " " + Coordinates(ray.place) : ray.meaning, {p_left + 180, y}, {0, 0.5},
                    {GalleryTheme::SmallSize, GalleryTheme::Text, false});
    }
  }

private:
  struct Ray {
    QString meaning;
    Types::Ray_Base<double> ray;
    tribool met = false;
    Point place{};        ///< where it meets the plane, or would
    bool arrives = false; ///< whether it would if it were longer
  };

  static Point End(const Ray& p_ray) { return p_ray.ray.origin + p_ray.ray.direction; }
  static QColor Color(const Ray& p_ray) { return indeterminate(p_ray.met) ? White : p_ray.met ? Gold : Coral; }
  static QString Coordinates(const Point& p_point) {
    QString text;
    for (const double part : {p_point.x, p_point.y, p_point.z})
      text += (text.isEmpty() ? "" : ", ") +
              QString::number(std::round(100 * part) / 100 + 0.0).replace('-', QChar(0x2212));
    return text;
  }
  static void DrawRay(Sketch& p_sketch, const Point& p_from, const Point& p_to, const Ray& p_ray) {
    p_sketch.Line(p_from, p_to, 3, Color(p_ray));
  }

  Plane _plane{{0, 0, 0}, {0, 0, 1}};
  Slice _floor; ///< as much of the plane as is shown
  std::array<Ray, 4> _rays = {{{"meets it at", {{-1.25, 0.1, 1}, {0.45, -0.3, -1.5}}},
                               {"ends on it at", {{-0.35, 0, 1}, {0.35, -0.2, -1}}},
                               {"stops short of it", {{0.55, 0.1, 1}, {0.2, -0.15, -0.55}}},
                               {"lies in the plane", {{0.3, -0.55, 0}, {0.9, 0.25, 0}}}}};
};

class CutsPicture : public SpacePicture {
public:
  CutsPicture(const std::string& p_path, Loading& p_loading)
      : SpacePicture(Palettes::Inferno(0.12, 1))
      , _path(p_path)
      , _values(p_path.empty() ? Formula(p_loading) : FromFile(p_path, p_loading))
      , _box(VoxelGrid::CubicBounds({_values.image->Height(), _values.image->Width(), _values.image->Depth()}, 2.6))
      , _slices(VoxelGrid(_values.image, _box)) {
    for (const Plane& plane : TurningPlanes(_box))
      _cuts.push_back(_slices.Cut(plane));
    _slices.shown.min = 0.5 / 255; // what would be 0 as a byte
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.azimuth = 42;
    camera.elevation = 24;
    camera.fieldOfView = 20;
    camera.distance = 8.4 * std::max(1.0, _box.Extent().z / 1.9);
    camera.radius = 4;
    return camera;
  }

  Types::Viewport<0> SurfaceViewport(const View& p_view) const override { return PartOf(p_view, MainPart); }

protected:
  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT | RGL_DEPTH_BUFFER_BIT |
                                             RGL_POLYGON_BIT | RGL_COLOR_BUFFER_BIT);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_gl->Enable(RGL_POLYGON_OFFSET_FILL); // outlines lie in front of what they surround
    p_gl->PolygonOffset(1, 1);
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 1.6 * PointSize(p_world))));
    p_gl->Color(QColor(0x74808D));
    DrawEdges(p_gl, _box);
    // The planes do not cross in the box, so the slices can be painted one over the other.
    const Point eye = p_world.camera.Eye();
    std::sort(_cuts.begin(), _cuts.end(), [&](const Slice& p_a, const Slice& p_b) {
      return Length(Middle(p_a) - eye) > Length(Middle(p_b) - eye);
    });
    p_gl->Color(Qt::white);
    for (const Slice& cut : _cuts) {
      _slices.Draw(p_gl, {cut}, Colors(), _values.scale, _values.lowOpacity);
      DrawOutlines(p_gl, {cut});
    }
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override { _slices.DrawDepths(p_gl, _cuts); }

  void DrawLegends(Utility::Scoped<Rgl>& p_gl, const View& p_view, Canvas& p_canvas) override {
    const VolumeImage& image = *_values.image;
    DrawTitle(p_canvas, "Cuts",
              (_path.empty() ? QString("A formula, a gyroid") : QString::fromStdString(FileName(_path))) +
                  QString(" of %1 × %2 × %3 voxels, cut by five planes")
                      .arg(image.Height())
                      .arg(image.Width())
                      .arg(image.Depth()));
    std::vector<double> places;
    std::vector<QString> strings;
    constexpr int Count = 4;
    const ValueScale& scale = _values.scale;
    for (int i = 0; i <= Count; ++i) {
      const double place = static_cast<double>(i) / Count;
      const double value = (scale.lower * (1 - place) + scale.upper * place) * _values.largest;
      places.push_back(place);
      strings.push_back(QString::number(value, 'f', _values.largest < 10 ? 2 : 0));
    }
    DrawBar(p_canvas, {60, 70, 520, 94}, {Colors(), {0, 1}}, "Value", {places, strings});

    const Camera start = StartCamera();
    Camera camera = p_view.camera; // the panels turn with the picture
    camera.target = {0, 0, -0.08};
    camera.distance = 8.4;
    camera.azimuth += 28 - start.azimuth;
    camera.fieldOfView = 20;
    Panel(p_canvas, PlanesPart, "The line of two planes, within the box");
    Sketch planes(p_gl, p_canvas, PlanesPart, camera);
    _planes.Draw(planes, camera.Eye());
    Panel(p_canvas, RaysPart, "Rays and a plane");
    camera.azimuth -= 16;
    camera.target = {0, 0, 0.15};
    camera.distance = 8;
    Sketch rays(p_gl, p_canvas, RaysPart, camera);
    _rays.Draw(rays);
    _rays.DrawResults(p_canvas, RaysPart.left, RaysPart.bottom - 24);
  }

private:
  static constexpr Canvas::Rect MainPart{0, 110, 1090, 900};
  static constexpr Canvas::Rect PlanesPart{1112, 565, 1552, 905};
  static constexpr Canvas::Rect RaysPart{1112, 175, 1552, 515};

  static void Panel(Canvas& p_canvas, const Canvas::Rect& p_rect, const QString& p_title) {
    p_canvas.Fill(p_rect, GalleryTheme::BackgroundBottom);
    DrawEdge(p_canvas, p_rect);
    p_canvas.Text(p_title, {p_rect.left, p_rect.top + 8}, {0, 0}, {GalleryTheme::SmallSize, GalleryTheme::Text, false});
  }

  std::string _path; ///< empty when the volume is the formula
  Values _values;
  Box _box;
  VolumeSlices _slices;
  std::vector<Slice> _cuts;
  TwoPlanes _planes;
  Rays _rays;
};

} // namespace

std::unique_ptr<Picture> LoadCuts(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<CutsPicture>(p_inputs.volume, p_loading);
}

} // namespace Vek::Chart::Gallery
