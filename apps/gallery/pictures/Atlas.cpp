// A chart drawn with one colour atlas. Its colours form a tree (chart, region, class of magnitude); the same vertices
// are drawn three times, and only an offset of the texture coordinates decides whether they show the tree's own colours
// or those of an instance.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/Quakes.h"
#include "apps/gallery/SpacePicture.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"

#include "library/ColorAtlas.h"
#include "library/TexturedQuad.h"
#include "platform/ogl/VertexData.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::ColorAtlas;
using Point = Types::Vector3_Base<double>;

constexpr std::size_t Classes = 5;
constexpr const char* ClassNames[Classes] = {"below 1", "1 to 2", "2 to 3", "3 to 4", "4 and above"};
constexpr std::size_t Rows = 8; ///< the regions with the most events, and all others together

struct Region {
  std::string name;
  std::array<int, Classes> counts{};

  int Total() const {
    int total = 0;
    for (const int count : counts)
      total += count;
    return total;
  }
};

/// What stands behind the last comma of a place ("4km W of Castaic, CA"), with the abbreviation written out.
std::string RegionOf(const std::string& p_place) {
  const std::size_t comma = p_place.rfind(", ");
  const std::string name = comma == std::string::npos ? p_place : p_place.substr(comma + 2);
  return name == "CA" ? "California" : name;
}

std::vector<Region> CountByRegion(const std::vector<Quake>& p_quakes) {
  std::map<std::string, Region> byName;
  for (const Quake& quake : p_quakes) {
    Region& region = byName[RegionOf(quake.place)];
    ++region.counts[static_cast<std::size_t>(std::clamp(std::floor(quake.magnitude), 0.0, Classes - 1.0))];
  }
  std::vector<Region> regions;
  for (auto& [name, region] : byName) {
    region.name = name;
    regions.push_back(region);
  }
  std::stable_sort(regions.begin(), regions.end(),
                   [](const Region& p_a, const Region& p_b) { return p_a.Total() > p_b.Total(); });
  while (regions.size() > Rows) { // the last row gathers the rest
    for (std::size_t i = 0; i < Classes; ++i)
      regions[regions.size() - 2].counts[i] += regions.back().counts[i];
    regions.pop_back();
    regions.back().name = "elsewhere";
  }
  return regions;
}

/// Boxes of one colour each, as one set of vertices.
class Boxes {
public:
  void Add(const Point& p_min, const Point& p_max, const Ogl::Vec2<float>& p_texel) {
    // Faces in the order −x, +x, −y, +y, −z, +z; each runs counter-clockwise seen from outside.
    for (int axis = 0; axis < 3; ++axis)
      for (const bool upper : {false, true})
        AddFace(axis, upper, p_min, p_max, p_texel);
  }

  Ogl::VertexData Data() {
    Ogl::VertexData data;
    data.PrimitiveType() = Ogl::VertexBuffer::Quads;
    data.SetVertices(std::move(_positions));
    data.SetNormals(std::move(_normals));
    data.SetTexCoords(std::move(_texels));
    return data;
  }

private:
  void AddFace(int p_axis, bool p_upper, const Point& p_min, const Point& p_max, const Ogl::Vec2<float>& p_texel) {
    constexpr bool Corners[4][2] = {{false, false}, {true, false}, {true, true}, {false, true}};
    for (const auto& [u, v] : Corners) {
      // Swapping the two directions in the face turns it round.
      const bool first = p_upper ? u : v;
      const bool second = p_upper ? v : u;
      const bool high[3] = {p_axis == 0 ? p_upper : (p_axis == 1 ? second : first),
                            p_axis == 1 ? p_upper : (p_axis == 2 ? second : first),
                            p_axis == 2 ? p_upper : (p_axis == 0 ? second : first)};
      _positions.push_back({static_cast<float>(high[0] ? p_max.x : p_min.x),
                            static_cast<float>(high[1] ? p_max.y : p_min.y),
                            static_cast<float>(high[2] ? p_max.z : p_min.z)});
      const float side = p_upper ? 1.0f : -1.0f;
      _normals.push_back({p_axis == 0 ? side : 0, p_axis == 1 ? side : 0, p_axis == 2 ? side : 0});
      _texels.push_back(p_texel);
    }
  }

  std::vector<Ogl::Vec3<float>> _positions;
  std::vector<Ogl::Vec3<float>> _normals;
  std::vector<Ogl::Vec2<float>> _texels;
};

QColor Mixed(const QColor& p_a, const QColor& p_b, double p_share) {
  return QColor::fromRgbF(p_a.redF() + (p_b.redF() - p_a.redF()) * p_share,
                          p_a.greenF() + (p_b.greenF() - p_a.greenF()) * p_share,
                          p_a.blueF() + (p_b.blueF() - p_a.blueF()) * p_share);
}

/// Eight hues of equal weight for the regions, and the shades of their classes: darker with the magnitude.
constexpr unsigned int Hues[Rows] = {0x4C9BE8, 0xF2A33A, 0x5BC8AF, 0xE8637A, 0xA98BE0, 0x9CC551, 0xE58BC2, 0x98A4B0};

QColor ClassShade(const QColor& p_hue, std::size_t p_class) {
  return p_class < 2 ? Mixed(p_hue, Qt::white, 0.45 - 0.3 * static_cast<double>(p_class))
                     : Mixed(p_hue, Qt::black, 0.18 * static_cast<double>(p_class - 1));
}

class AtlasPicture : public SpacePicture {
public:
  AtlasPicture(const Inputs& p_inputs, Loading& p_loading)
      : _regions(CountByRegion(ReadQuakesFile(p_inputs.quakes, p_loading))) {
    AddColors();
    AddInstances();
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {6.9, 0, -2.8};
    camera.azimuth = -3.5;
    camera.elevation = 15;
    camera.fieldOfView = 12;
    camera.distance = 57;
    camera.radius = 14;
    return camera;
  }

protected:
  void Prepare(Utility::Scoped<Rgl>& p_gl) override {
    _atlas.BuildAtlas(p_gl);
    BuildBars(); // which show where the atlas has put its colours
  }

  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View&) override {
    const auto light = DirectionalLight().Apply(p_gl);
    const auto textures = p_gl->PushAttribScope(RGL_TEXTURE_BIT | RGL_ENABLE_BIT);
    (*_atlas.Texture())(p_gl, RGL_TEXTURE0);
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_MODULATE); // the light shades the atlas's colours
    DrawDepths(p_gl);
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
    for (std::size_t i = 0; i < Panels.size(); ++i)
      DrawPanel(p_gl, i);
  }

  void DrawLegends(Utility::Scoped<Rgl>& p_gl, const View& p_view, Canvas& p_canvas) override {
    DrawTitle(p_canvas, "Colour atlas",
              "A week of earthquakes by region and magnitude, drawn three times with one texture");
    const TextRenderer::Style text{GalleryTheme::SmallSize, GalleryTheme::Text, false};
    for (std::size_t panel = 0; panel < Panels.size(); ++panel) {
      const Point origin(PanelPitch * static_cast<double>(panel), 0, 0);
      const Point top = origin + Point(-0.42, 0, 0.8);
      p_canvas.TextAt(Panels[panel].title, p_view, top, {0, 26}, {0, 0.5},
                      {GalleryTheme::TextSize, GalleryTheme::Title, true});
      p_canvas.TextAt(Panels[panel].line, p_view, top, {0, 0}, {0, 0.5}, text);
      for (std::size_t row = 0; row < _regions.size(); ++row) {
        const Point end = origin + RowStart(row) + Point(BarLength(_regions[row].Total()), 0, 0);
        p_canvas.TextAt(QString::number(_regions[row].Total()), p_view, end, {14, 0}, {0, 0.5}, text);
        if (panel == 0)
          p_canvas.TextAt(QString::fromStdString(_regions[row].name), p_view, RowStart(row) + Point(-0.42, 0, 0),
                          {-14, 0}, {1, 0.5}, text);
      }
    }
    DrawLegend(p_canvas);
    DrawAtlas(p_gl, p_canvas);
  }

private:
  struct Panel {
    const char* title;
    const char* line;
  };
  static constexpr std::array<Panel, 3> Panels = {{
      {"Own colours", "a hue for each region, darker with magnitude"},
      {"First instance", "grey, with magnitudes from 3 picked out"},
      {"Second instance", "grey, with one region picked out"},
  }};
  static constexpr double PanelPitch = 5.6;
  static constexpr double RowPitch = 0.8;
  static constexpr double Thickness = 0.46;
  static constexpr double LongestBar = 4.0;

  void AddColors() {
    _chart = _atlas.AddColor(QColor(0x8FA0B2), _atlas.RootAtlasId());
    for (std::size_t row = 0; row < _regions.size(); ++row) {
      const QColor hue(Hues[row]);
      _regionIds.push_back(_atlas.AddColor(hue, _chart));
      _classIds.emplace_back();
      for (std::size_t i = 0; i < Classes; ++i)
        _classIds.back()[i] = _atlas.AddColor(ClassShade(hue, i), _regionIds.back());
    }
  }

  void AddInstances() {
    const QColor grey(0x4B5865);
    std::map<unsigned int, QColor> strong{{_chart, grey}}; // covers everything below
    for (const auto& ids : _classIds) {
      strong[ids[3]] = QColor(0xF6B44B);
      strong[ids[4]] = QColor(0xF0563F);
    }
    _instances[0] = _atlas.AddInstance(_chart, strong);

    std::map<unsigned int, QColor> region{{_chart, grey}};
    const std::vector<QColor> shades = Palettes::Sampled({{0, 0xE9F7B8}, {0.5, 0x49B9B4}, {1, 0x1F5FA8}}, Classes);
    const std::size_t picked = std::min<std::size_t>(1, _regions.size() - 1);
    region[_regionIds[picked]] = shades[2];
    for (std::size_t i = 0; i < Classes; ++i)
      region[_classIds[picked][i]] = shades[i];
    _instances[1] = _atlas.AddInstance(_chart, region);
  }

  /// Where the row of a region starts, at the middle of its height.
  static Point RowStart(std::size_t p_row) { return {0, 0, -RowPitch * static_cast<double>(p_row)}; }
  double BarLength(int p_count) const { return LongestBar * p_count / std::max(_regions.front().Total(), 1); }

  void BuildBars() {
    Boxes boxes;
    const double half = Thickness / 2;
    const Point bottom = RowStart(_regions.size() - 1);
    boxes.Add({-0.09, -half, bottom.z - 0.5}, {-0.03, half, 0.5}, _atlas.TexCoord(_chart));
    for (std::size_t row = 0; row < _regions.size(); ++row) {
      const Point start = RowStart(row);
      boxes.Add(start + Point(-0.42, -half, -half), start + Point(-0.18, half, half), _atlas.TexCoord(_regionIds[row]));
      double x = 0;
      for (std::size_t i = 0; i < Classes; ++i) {
        const double next = x + BarLength(_regions[row].counts[i]);
        if (next > x)
          boxes.Add(start + Point(x, -half, -half), start + Point(next, half, half),
                    _atlas.TexCoord(_classIds[row][i]));
        x = next;
      }
    }
    _bars = boxes.Data();
  }

  void DrawPanel(Utility::Scoped<Rgl>& p_gl, std::size_t p_panel) {
    p_gl->MatrixMode(RGL_TEXTURE);
    p_gl->PushMatrix();
    if (p_panel > 0) {
      const Ogl::Vec2<float> offset = _atlas.InstanceOffset(_instances[p_panel - 1]);
      p_gl->Translate({offset.x, offset.y, 0});
    }
    p_gl->MatrixMode(RGL_MODELVIEW);
    p_gl->PushMatrix();
    p_gl->Translate({PanelPitch * static_cast<double>(p_panel), 0, 0});
    _bars.Draw(p_gl);
    p_gl->PopMatrix();
    p_gl->MatrixMode(RGL_TEXTURE);
    p_gl->PopMatrix();
    p_gl->MatrixMode(RGL_MODELVIEW);
  }

  /// The shades of the first region's classes.
  void DrawLegend(Canvas& p_canvas) const {
    const TextRenderer::Style text{GalleryTheme::SmallSize, GalleryTheme::Text, false};
    double x = 208;
    p_canvas.Text("Magnitude", {58, 206}, {0, 0.5}, text);
    for (std::size_t i = 0; i < Classes; ++i, x += 150) {
      p_canvas.Fill({x, 196, x + 26, 216}, _atlas.ColorAt(_classIds[0][i]).color);
      p_canvas.Text(ClassNames[i], {x + 36, 206}, {0, 0.5}, text);
    }
  }

  /// The atlas's picture, and which part of it belongs to whom.
  void DrawAtlas(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) const {
    const Library::Texture& texture = *_atlas.Texture();
    const double left = 58;
    const double texel = (p_canvas.Width() - 2 * left) / texture.Width();
    const double bottom = 84;
    const double height = 44;
    const double point = p_canvas.PointSize();
    Library::TexturedQuad quad;
    quad.rect = {static_cast<float>(left * point), static_cast<float>(bottom * point),
                 static_cast<float>(texel * texture.Width() * point), static_cast<float>(height * point)};
    quad(p_gl.Handle(), texture);

    const TextRenderer::Style text{GalleryTheme::SmallSize, GalleryTheme::Text, false};
    const auto part = [&](double p_first, double p_count, const QString& p_name) {
      const double x0 = left + p_first * texel + 1;
      const double x1 = left + (p_first + p_count) * texel - 1;
      p_canvas.Line({x0, bottom - 10}, {x1, bottom - 10}, 2, GalleryTheme::Faint);
      p_canvas.Text(p_name, {(x0 + x1) / 2, bottom - 18}, {0.5, 1}, text);
    };
    const double count = 1 + static_cast<double>(_regions.size()) * (1 + Classes);
    part(0, count, "own colours");
    for (std::size_t i = 0; i < _instances.size(); ++i) {
      const double dx = _atlas.InstanceOffset(_instances[i]).x / _atlas.TexelCoordSpace().texel.x;
      part(dx, count, i == 0 ? "first instance" : "second instance");
    }
    p_canvas.Text(QString("The atlas: one texture of %1 × %2 texels; red ones are free")
                      .arg(texture.Width())
                      .arg(texture.Height()),
                  {left, bottom + height + 10}, {0, 0}, text);
  }

  std::vector<Region> _regions;
  ColorAtlas _atlas;
  unsigned int _chart = 0;
  std::vector<unsigned int> _regionIds;
  std::vector<std::array<unsigned int, Classes>> _classIds;
  std::array<unsigned int, 2> _instances{};
  Ogl::VertexData _bars;
};

} // namespace

std::unique_ptr<Picture> LoadAtlas(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<AtlasPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
