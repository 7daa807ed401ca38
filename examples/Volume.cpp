// A volume cut by three planes. Shows how VolumeImage reads a text volume, how a VolumeTexture hands it to a shader
// that colours it with a ColorMap, and how Intersect makes the polygons in which planes cut its box.

#include "examples/SceneMakers.h"

#include "examples/scene/Files.h"
#include "examples/scene/Overlay.h"
#include "examples/scene/Palettes.h"
#include "examples/scene/SpaceScene.h"
#include "examples/scene/Theme.h"
#include "examples/scene/VolumeFile.h"

#include "library/DepthCodec.h"
#include "library/Intersect.h"
#include "library/VolumeImage.h"
#include "library/VolumeTexture.h"
#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <cmath>
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

const char* const ColorText = R"(#version 120
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

const char* const DepthText = R"(
uniform sampler3D volume;
void main() {
  if (texture3D(volume, gl_TexCoord[0].xyz).r < 0.5 / 255.0)
    discard;
  gl_FragColor = EncodeDepth(gl_FragCoord.z);
}
)";

class VolumeScene : public SpaceScene {
public:
  VolumeScene(const Inputs& p_inputs, Loading& p_loading)
      : SpaceScene(Palettes::Viridis())
      , _ocean(p_inputs.volume.empty())
      , _path(_ocean ? p_inputs.salinity : p_inputs.volume)
      , _file(VolumeFile::Read(_path, p_loading)) {
    const Point size = _ocean ? Point(3.6, 1.8, 1.1) : SizeOf(*_file.image);
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

protected:
  void Prepare(Utility::Scoped<Rgl>& p_gl) override {
    _texture.emplace(_file.image, p_gl);
    _texture->minFilter = _texture->magFilter = Library::VolumeTexture::Nearest; // land must not bleed into the sea
    _colored.emplace(p_gl, VertexText, ColorText);
    _packed.emplace(p_gl, VertexText, Library::DepthCodec::Glsl() + DepthText);
  }

  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT |
                                             RGL_DEPTH_BUFFER_BIT | RGL_POLYGON_BIT);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_gl->Enable(RGL_POLYGON_OFFSET_FILL); // outlines lie in front of what they surround
    p_gl->PolygonOffset(1, 1);
    DrawSlices(p_gl, *_colored);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 1.4 * p_world.PointSize())));
    DrawLines(p_gl);
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
    const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
    DrawSlices(p_gl, *_packed);
  }

  void DrawLegends(Utility::Scoped<Rgl>&, const View&, Overlay& p_overlay) override {
    if (_ocean)
      LabelOcean(p_overlay);
    else
      p_overlay.Title("Volume", QString("%1, %2 × %3 × %4 voxels")
                                    .arg(QString::fromStdString(FileName(_path)))
                                    .arg(_file.image->Height())
                                    .arg(_file.image->Width())
                                    .arg(_file.image->Depth()));
    std::vector<Overlay::Tick> ticks;
    constexpr int Ticks = 4;
    for (int i = 0; i <= Ticks; ++i) {
      const double place = static_cast<double>(i) / Ticks;
      const double value = (_file.low + (_file.high - _file.low) * place) / 255.0 * _file.largest;
      const QString text = QString::number(value, 'f', _file.largest < 100 ? 1 : 0);
      ticks.push_back({place, i == 0 ? "≤ " + text : i == Ticks ? "≥ " + text : text});
    }
    p_overlay.Bar({60, 70, 520, 94}, Colors(), _ocean ? "Salinity in parts per thousand" : "Value", ticks);
  }

private:
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
    return _box.Min() + Point(size.x * centered(p_place.x, _file.image->Height()),
                              size.y * centered(p_place.y, _file.image->Width()),
                              size.z * centered(p_place.z, _file.image->Depth()));
  }

  /// 0 to 1 across the box. The ocean's layers count downwards.
  Point TextureCoordinate(const Point& p_point) const {
    const Point size = _box.Extent();
    const Point part = p_point - _box.Min();
    return {part.x / size.x, part.y / size.y, _ocean ? 1 - part.z / size.z : part.z / size.z};
  }

  void DrawSlices(Utility::Scoped<Rgl>& p_gl, const Ogl::ShaderProgram& p_program) const {
    const auto in_use = p_program.Use(p_gl);
    Colors()(p_gl, RGL_TEXTURE1);
    (*_texture)(p_gl, RGL_TEXTURE0);
    p_program.SetUniform(p_gl, "volume", 0);
    p_program.SetUniform(p_gl, "colors", 1);
    p_program.SetUniform(p_gl, "low", static_cast<float>(_file.low) / 255.0f);
    p_program.SetUniform(p_gl, "high", static_cast<float>(_file.high) / 255.0f);
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

  void LabelOcean(Overlay& p_overlay) const {
    const Lettering::Style faint{Theme::SmallSize, Theme::Faint, false};
    p_overlay.Title("Salinity of the ocean",
                    "Mean of all years, cut along 30° west, along the equator and across the depth");
    const Point& low = _box.Min();
    const Point& high = _box.Max();
    for (int lon = 60; lon <= 360; lon += 60) {
      const double x = low.x + (high.x - low.x) * (lon - 19.5) / 360.0;
      const QString text = lon < 180    ? QString("%1° E").arg(lon)
                           : lon == 180 ? "180°"
                           : lon == 360 ? "0°"
                                        : QString("%1° W").arg(360 - lon);
      p_overlay.TextAt(text, {x, low.y, low.z}, 6, -14, {0.5, 1}, faint);
    }
    for (int lat = -60; lat <= 60; lat += 30) {
      const double y = low.y + (high.y - low.y) * (lat + 90.5) / 180.0;
      const QString text = lat == 0 ? "0°" : QString("%1° %2").arg(std::abs(lat)).arg(lat < 0 ? "S" : "N");
      p_overlay.TextAt(text, {low.x, y, low.z}, -14, -6, {1, 0.5}, faint);
    }
    p_overlay.TextAt("surface", {high.x, low.y, high.z}, 14, 0, {0, 0.5}, faint);
    p_overlay.TextAt("5000 m", {high.x, low.y, low.z}, 14, 0, {0, 0.5}, faint);
  }

  bool _ocean;
  std::string _path;
  VolumeFile _file;
  std::optional<Library::VolumeTexture> _texture;
  std::optional<Ogl::ShaderProgram> _colored;
  std::optional<Ogl::ShaderProgram> _packed;
  Box _box;
  std::vector<std::vector<Point>> _slices;
};

} // namespace

std::unique_ptr<Scene> LoadVolume(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<VolumeScene>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
