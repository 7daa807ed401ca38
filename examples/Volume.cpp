// A volume cut by three planes. Shows how VolumeImage reads a text volume, how a VolumeTexture hands it to a shader
// that colours it with a ColorMap, and how Intersect makes the polygons in which planes cut its box.

#include "examples/SceneMakers.h"

#include "examples/scene/Files.h"
#include "examples/scene/Lettering.h"
#include "examples/scene/Overlay.h"
#include "examples/scene/Palettes.h"
#include "examples/scene/ReportCounter.h"
#include "examples/scene/TextTable.h"
#include "examples/scene/Theme.h"

#include "library/ColorMap.h"
#include "library/Intersect.h"
#include "library/VolumeImage.h"
#include "library/VolumeTexture.h"
#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

namespace Vek::Chart::Gallery {

namespace {

using Library::VolumeImage;
using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

const char* const VertexText = R"(#version 120
void main() {
  gl_TexCoord[0] = gl_MultiTexCoord0;
  gl_Position = ftransform();
}
)";

const char* const FragmentText = R"(#version 120
uniform sampler3D volume; // 0 to 1; 0 where there is nothing
uniform sampler2D colors;
uniform float low;        // the values that get the first and the last colour
uniform float high;
void main() {
  float value = texture3D(volume, gl_TexCoord[0].xyz).r;
  if (value < 0.5 / 255.0)
    discard;
  gl_FragColor = texture2D(colors, vec2(clamp((value - low) / (high - low), 0.0, 1.0), 0.5));
}
)";

boost::shared_ptr<VolumeImage> ReadVolume(const std::string& p_path, Loading& p_loading) {
  const std::unique_ptr<std::istream> stream = p_loading.Open(p_path);
  const ReportCounter reports;
  const boost::shared_ptr<VolumeImage> volume = VolumeImage::LoadFromStream(*stream, VolumeImage::TextArray);
  p_loading.CheckCancelled(); // which the reader takes for the end of the file
  if (!volume || reports.Others() != 0)
    throw InputError(p_path + ": expected a volume \"TextArray nx 1 ny nz\" and its nx * ny * nz numbers");
  return volume;
}

/// The largest number of a text volume, which the bytes of the VolumeImage are relative to.
double LargestNumber(const std::string& p_path, Loading& p_loading) {
  const std::unique_ptr<std::istream> stream = p_loading.Open(p_path);
  const std::string text{std::istreambuf_iterator<char>(*stream), {}};
  const char* next = text.data();
  const char* const end = next + text.size();
  const auto skip = [&](bool p_blank) {
    while (next != end && (std::isspace(static_cast<unsigned char>(*next)) != 0) == p_blank)
      ++next;
  };
  for (int word = 0; word < 5; ++word) { // "TextArray" and the sizes
    skip(true);
    skip(false);
  }
  double largest = 0;
  while (true) {
    skip(true);
    if (next == end)
      break;
    double value = 0;
    std::from_chars(next, end, value);
    largest = std::max(largest, value);
    skip(false);
  }
  return largest;
}

/// The bytes below which a share of all bytes lies that are not 0.
std::array<int, 2> Percentiles(const std::vector<unsigned char>& p_bytes, double p_low, double p_high) {
  std::array<double, 256> counts{};
  for (const unsigned char byte : p_bytes)
    ++counts[byte];
  double total = 0;
  for (std::size_t i = 1; i < counts.size(); ++i)
    total += counts[i];
  const auto below = [&](double p_share) {
    double sum = 0;
    for (std::size_t i = 1; i < counts.size(); ++i)
      if ((sum += counts[i]) >= p_share * total)
        return static_cast<int>(i);
    return 255;
  };
  const int low = below(p_low);
  return {low, std::max(below(p_high), low + 1)};
}

class VolumeScene : public Scene {
public:
  VolumeScene(const Inputs& p_inputs, Loading& p_loading)
      : _ocean(p_inputs.volume.empty())
      , _path(_ocean ? p_inputs.salinity : p_inputs.volume)
      , _image(ReadVolume(_path, p_loading.Stage(0.5)))
      , _largest(LargestNumber(_path, p_loading.Stage(0.9)))
      , _range(Percentiles(_image->Bytes(), 0.02, 0.98)) {
    const Point size = _ocean ? Point(3.6, 1.8, 1.1) : SizeOf(*_image);
    _box = Box(size * -0.5, size * 0.5);
    // A map's Atlantic at 30° west, its equator, and half-way down; for other volumes the three middles.
    const Point at = VoxelCenter({_ocean ? (330.0 - 19.5) / 360.0 : 0.5, 0.5, _ocean ? 0.6 : 0.5});
    for (const Point& normal : {Point(0, 0, 1), Point(0, -1, 0), Point(-1, 0, 0)}) {
      std::vector<Point> slice;
      Library::Intersect::Intersection(_box, Types::Plane(at, normal), slice);
      _slices.push_back(slice);
    }
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, 0, -0.12};
    camera.azimuth = 24;
    camera.elevation = 30;
    camera.field_of_view = 20;
    camera.distance = 9.6;
    camera.radius = 4;
    return camera;
  }

  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) override {
    DrawBackground(p_gl, p_view, _lettering);
    Prepare(p_gl);
    {
      const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
      const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT |
                                               RGL_DEPTH_BUFFER_BIT | RGL_POLYGON_BIT);
      p_gl->Enable(RGL_DEPTH_TEST);
      p_gl->Enable(RGL_POLYGON_OFFSET_FILL); // outlines lie in front of what they surround
      p_gl->PolygonOffset(1, 1);
      DrawSlices(p_gl);
      p_gl->LineWidth(static_cast<float>(std::max(1.0, 1.4 * p_view.PointSize())));
      DrawLines(p_gl);
    }
    DrawLabels(p_gl, p_view);
  }

private:
  void Prepare(Utility::Scoped<Rgl>& p_gl) {
    if (_texture)
      return;
    _texture.emplace(_image, p_gl);
    _texture->minFilter = _texture->magFilter = Library::VolumeTexture::Nearest; // land must not bleed into the sea
    _program.emplace(p_gl, VertexText, FragmentText);
  }

  /// As long as its longest side has voxels, at 2.1 units; the voxels are taken as cubes.
  static Point SizeOf(const VolumeImage& p_image) {
    const Point voxels(p_image.Height(), p_image.Width(), p_image.Depth());
    return voxels * (2.1 / std::max({voxels.x, voxels.y, voxels.z}));
  }

  /// The centre of the voxel at a place from 0 to 1 across the box: a plane between two layers would show now the one,
  /// now the other.
  Point VoxelCenter(const Point& p_place) const {
    const auto centered = [](double p_part, int p_voxels) { return (std::floor(p_part * p_voxels) + 0.5) / p_voxels; };
    const Point size = _box.Extent();
    return _box.Min() + Point(size.x * centered(p_place.x, _image->Height()),
                              size.y * centered(p_place.y, _image->Width()),
                              size.z * centered(p_place.z, _image->Depth()));
  }

  /// 0 to 1 across the box. The ocean's layers count downwards.
  Point TextureCoordinate(const Point& p_point) const {
    const Point size = _box.Extent();
    const Point part = p_point - _box.Min();
    return {part.x / size.x, part.y / size.y, _ocean ? 1 - part.z / size.z : part.z / size.z};
  }

  void DrawSlices(Utility::Scoped<Rgl>& p_gl) {
    const auto in_use = _program->Use(p_gl);
    _colors(p_gl, RGL_TEXTURE1);
    (*_texture)(p_gl, RGL_TEXTURE0);
    _program->SetUniform(p_gl, "volume", 0);
    _program->SetUniform(p_gl, "colors", 1);
    _program->SetUniform(p_gl, "low", static_cast<float>(_range[0]) / 255.0f);
    _program->SetUniform(p_gl, "high", static_cast<float>(_range[1]) / 255.0f);
    for (const std::vector<Point>& slice : _slices) {
      p_gl->Begin(RGL_POLYGON);
      for (const Point& corner : slice) {
        p_gl->MultiTexCoord(RGL_TEXTURE0, TextureCoordinate(corner));
        p_gl->Vertex(corner);
      }
      p_gl->End();
    }
  }

  void DrawLines(Utility::Scoped<Rgl>& p_gl) const {
    p_gl->Disable(RGL_TEXTURE_3D);
    p_gl->ActiveTexture(RGL_TEXTURE1);
    p_gl->Disable(RGL_TEXTURE_2D);
    p_gl->ActiveTexture(RGL_TEXTURE0);
    p_gl->Color(QColor(0xDCE3EA));
    for (const std::vector<Point>& slice : _slices) {
      p_gl->Begin(RGL_LINE_LOOP);
      for (const Point& corner : slice)
        p_gl->Vertex(corner);
      p_gl->End();
    }
    p_gl->Color(Theme::Line);
    p_gl->Begin(RGL_LINES);
    for (int edge = 0; edge < 12; ++edge) {
      const int axis = edge / 4;
      for (const bool upper : {false, true}) {
        // The two free axes take the two bits of the edge's number.
        const bool first = (edge & 1) != 0, second = (edge & 2) != 0;
        const bool corner[3] = {axis == 0 ? upper : first, axis == 1 ? upper : (axis == 0 ? first : second),
                                axis == 2 ? upper : second};
        p_gl->Vertex(corner[0] ? _box.Max().x : _box.Min().x, corner[1] ? _box.Max().y : _box.Min().y,
                     corner[2] ? _box.Max().z : _box.Min().z);
      }
    }
    p_gl->End();
  }

  void DrawLabels(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
    Overlay overlay(p_gl, p_view, _lettering);
    const Lettering::Style faint{Theme::SmallSize, Theme::Faint, false};
    if (_ocean) {
      overlay.Title("Salinity of the ocean",
                    "Mean of all years, cut along 30° west, along the equator and across the depth");
      const Point& low = _box.Min();
      const Point& high = _box.Max();
      for (int lon = 60; lon <= 360; lon += 60) {
        const double x = low.x + (high.x - low.x) * (lon - 19.5) / 360.0;
        const QString text = lon < 180    ? QString("%1° E").arg(lon)
                             : lon == 180 ? "180°"
                             : lon == 360 ? "0°"
                                          : QString("%1° W").arg(360 - lon);
        overlay.TextAt(text, {x, low.y, low.z}, 6, -14, {0.5, 1}, faint);
      }
      for (int lat = -60; lat <= 60; lat += 30) {
        const double y = low.y + (high.y - low.y) * (lat + 90.5) / 180.0;
        const QString text = lat == 0 ? "0°" : QString("%1° %2").arg(std::abs(lat)).arg(lat < 0 ? "S" : "N");
        overlay.TextAt(text, {low.x, y, low.z}, -14, -6, {1, 0.5}, faint);
      }
      overlay.TextAt("surface", {high.x, low.y, high.z}, 14, 0, {0, 0.5}, faint);
      overlay.TextAt("5000 m", {high.x, low.y, low.z}, 14, 0, {0, 0.5}, faint);
    } else {
      overlay.Title("Volume", QString("%1, %2 × %3 × %4 voxels")
                                  .arg(QString::fromStdString(FileName(_path)))
                                  .arg(_image->Height())
                                  .arg(_image->Width())
                                  .arg(_image->Depth()));
    }
    std::vector<Overlay::Tick> ticks;
    constexpr int Ticks = 4;
    for (int i = 0; i <= Ticks; ++i) {
      const double place = static_cast<double>(i) / Ticks;
      const double value = (_range[0] + (_range[1] - _range[0]) * place) / 255.0 * _largest;
      const QString text = QString::number(value, 'f', _largest < 100 ? 1 : 0);
      ticks.push_back({place, i == 0 ? "≤ " + text : i == Ticks ? "≥ " + text : text});
    }
    overlay.Bar({60, 70, 520, 94}, _colors, _ocean ? "Salinity in parts per thousand" : "Value", ticks);
  }

  bool _ocean;
  std::string _path;
  boost::shared_ptr<VolumeImage> _image;
  double _largest;
  std::array<int, 2> _range; ///< the bytes of the first and the last colour
  std::optional<Library::VolumeTexture> _texture;
  std::optional<Ogl::ShaderProgram> _program;
  Library::ColorMap _colors{Palettes::Viridis(), Library::ColorMap::Interpolated};
  Box _box;
  std::vector<std::vector<Point>> _slices;
  Lettering _lettering;
};

} // namespace

std::unique_ptr<Scene> LoadVolume(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<VolumeScene>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
