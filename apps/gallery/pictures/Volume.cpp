// A volume cut by three planes. Shows how VolumeImage reads a text volume, and how VolumeSlices cuts it and colours it
// with a ColorMap.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/SpacePicture.h"
#include "apps/gallery/VolumeFile.h"
#include "scene/Canvas.h"
#include "scene/VolumeSlices.h"

#include "library/VolumeImage.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::VolumeImage;
using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

class VolumePicture : public SpacePicture {
public:
  VolumePicture(const Inputs& p_inputs, Loading& p_loading)
      : SpacePicture(Palettes::Viridis())
      , _ocean(p_inputs.volume.empty())
      , _path(_ocean ? p_inputs.salinity : p_inputs.volume)
      , _file(VolumeFile::Read(_path, p_loading)) {
    const Point ocean(3.6, 1.8, 1.1);
    const VolumeImage& image = *_file.image;
    const VoxelGrid::Sizes sizes = {image.Height(), image.Width(), image.Depth()};
    const Box box = _ocean ? Box(ocean * -0.5, ocean * 0.5) : VoxelGrid::CubicBounds(sizes, 2.1);
    // Layers count downwards in the ocean. Nearest voxels: each plane shows one layer.
    _slices.emplace(VoxelGrid(_file.image, box, _ocean ? VoxelGrid::Layers::Downwards : VoxelGrid::Layers::Upwards),
                    VoxelGrid::Filter::Nearest);
    // A map's Atlantic at 30° west, its equator, and half-way down; for other volumes the three middles.
    const Point size = box.Extent();
    const Point at = _slices->Grid().NearestCenter(box.Min() + Point(size.x * (_ocean ? (330.0 - 19.5) / 360.0 : 0.5),
                                                                     size.y * 0.5, size.z * (_ocean ? 0.6 : 0.5)));
    for (const Point& normal : {Point(0, 0, 1), Point(0, -1, 0), Point(-1, 0, 0)})
      _cuts.push_back(_slices->Cut(Types::Plane(at, normal)));
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, 0, -0.12};
    camera.azimuth = 24;
    camera.elevation = 30;
    camera.fieldOfView = 20;
    camera.distance = 9.6;
    camera.radius = 4;
    return camera;
  }

protected:
  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    const auto state =
        p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT | RGL_DEPTH_BUFFER_BIT | RGL_POLYGON_BIT);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_gl->Enable(RGL_POLYGON_OFFSET_FILL); // outlines lie in front of what they surround
    p_gl->PolygonOffset(1, 1);
    _slices->Draw(p_gl, _cuts, Colors(), _file.Scale());
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 1.4 * PointSize(p_world))));
    p_gl->Color(QColor(0xDCE3EA));
    DrawOutlines(p_gl, _cuts);
    p_gl->Color(GalleryTheme::Line);
    DrawEdges(p_gl, _slices->Grid().Bounds());
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override { _slices->DrawDepths(p_gl, _cuts); }

  void DrawLegends(Utility::Scoped<Rgl>&, const View& p_view, Canvas& p_canvas) override {
    if (_ocean)
      LabelOcean(p_canvas, p_view);
    else
      DrawTitle(p_canvas, "Volume",
                QString("%1, %2 × %3 × %4 voxels")
                    .arg(QString::fromStdString(FileName(_path)))
                    .arg(_file.image->Height())
                    .arg(_file.image->Width())
                    .arg(_file.image->Depth()));
    std::vector<double> places;
    std::vector<QString> strings;
    constexpr int Count = 4;
    for (int i = 0; i <= Count; ++i) {
      const double place = static_cast<double>(i) / Count;
      const double value = (_file.low + (_file.high - _file.low) * place) / 255.0 * _file.largest;
      const QString text = QString::number(value, 'f', _file.largest < 100 ? 1 : 0);
      places.push_back(place);
      strings.push_back(i == 0 ? "≤ " + text : i == Count ? "≥ " + text : text);
    }
    DrawBar(p_canvas, {60, 70, 520, 94}, {Colors(), {0, 1}}, _ocean ? "Salinity in parts per thousand" : "Value",
            {places, strings});
  }

private:
  void LabelOcean(Canvas& p_canvas, const View& p_view) const {
    const TextRenderer::Style faint{GalleryTheme::SmallSize, GalleryTheme::Faint, false};
    DrawTitle(p_canvas, "Salinity of the ocean",
              "Mean of all years, cut along 30° west, along the equator and across the depth");
    const Point& low = _slices->Grid().Bounds().Min();
    const Point& high = _slices->Grid().Bounds().Max();
    for (int lon = 60; lon <= 360; lon += 60) {
      const double x = low.x + (high.x - low.x) * (lon - 19.5) / 360.0;
      const QString text = lon < 180    ? QString("%1° E").arg(lon)
                           : lon == 180 ? "180°"
                           : lon == 360 ? "0°"
                                        : QString("%1° W").arg(360 - lon);
      p_canvas.TextAt(text, p_view, {x, low.y, low.z}, {6, -14}, {0.5, 1}, faint);
    }
    for (int lat = -60; lat <= 60; lat += 30) {
      const double y = low.y + (high.y - low.y) * (lat + 90.5) / 180.0;
      const QString text = lat == 0 ? "0°" : QString("%1° %2").arg(std::abs(lat)).arg(lat < 0 ? "S" : "N");
      p_canvas.TextAt(text, p_view, {low.x, y, low.z}, {-14, -6}, {1, 0.5}, faint);
    }
    p_canvas.TextAt("surface", p_view, {high.x, low.y, high.z}, {14, 0}, {0, 0.5}, faint);
    p_canvas.TextAt("5000 m", p_view, {high.x, low.y, low.z}, {14, 0}, {0, 0.5}, faint);
  }

  bool _ocean;
  std::string _path;
  VolumeFile _file;
  std::optional<VolumeSlices> _slices;
  std::vector<Slice> _cuts;
};

} // namespace

std::unique_ptr<Picture> LoadVolume(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<VolumePicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
