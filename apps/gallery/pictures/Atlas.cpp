// A chart drawn with one colour atlas. Its colours form a tree (chart, region, class of magnitude); the same vertices
// are drawn three times, and only an offset of the texture coordinates decides whether they show the tree's own colours
// or those of an instance.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "io/FileError.h"
#include "io/ReadTable.h"
#include "scene/DirectionalLight.h"

#include "library/ColorAtlas.h"
#include "library/VectorSymbol.h"
#include "platform/ogl/VertexData.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>

namespace Vek::Chart::Gallery {

namespace {

using Library::ColorAtlas;
using Point = Types::Vector3_Base<double>;

constexpr std::size_t Classes = 5;
constexpr const char* ClassNames[Classes] = {"below 1", "1 to 2", "2 to 3", "3 to 4", "4 and above"};
constexpr std::size_t Rows = 8; ///< the regions with the most events, and all others together

struct Region {
  std::string name;
  std::array<int, Classes> counts{};

  int Total() const { return std::accumulate(counts.begin(), counts.end(), 0); }
};

/// What stands behind the last comma of a place ("4km W of Castaic, CA"), with the abbreviation written out.
std::string RegionOf(const std::string& p_place) {
  const std::size_t comma = p_place.rfind(", ");
  const std::string name = comma == std::string::npos ? p_place : p_place.substr(comma + 2);
  return name == "CA" ? "California" : name;
}

std::vector<Region> CountByRegion(const std::string& p_path) {
  const Io::Table quakes = Io::ReadTable(p_path);
  const std::vector<double>& magnitudes = quakes["mag"];
  std::map<std::string, Region> byName;
  for (std::size_t row = 0; row < quakes.Rows(); ++row) {
    if (std::isnan(magnitudes[row]))
      continue;
    Region& region = byName[quakes.Has("place") ? RegionOf(quakes.Strings("place")[row]) : "all"];
    ++region.counts[static_cast<std::size_t>(std::clamp(std::floor(magnitudes[row]), 0.0, Classes - 1.0))];
  }
  std::vector<Region> regions;
  for (auto& [name, region] : byName) {
    region.name = name;
    regions.push_back(region);
  }
  if (regions.empty())
    throw Io::FileError(p_path, "expected an earthquake at least, got none");
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
  Boxes() { Library::VectorSymbol(Model::Symbol::ShapeCube, 4).BuildShape(_cube); }

  void Add(const Point& p_min, const Point& p_max, const Ogl::Vec2<float>& p_texel) {
    const Point center = (p_min + p_max) * 0.5, size = p_max - p_min;
    const auto* const corners = _cube.Vertices().As<Ogl::Vec3<float>>();
    const auto* const normals = _cube.Normals().As<Ogl::Vec3<float>>();
    const auto first = static_cast<unsigned int>(_positions.size());
    for (std::size_t i = 0; i < _cube.Vertices().count; ++i) {
      const auto at = [](double p_center, double p_size, float p_corner) {
        return static_cast<float>(p_center + p_size * static_cast<double>(p_corner));
      };
      _positions.push_back(
          {at(center.x, size.x, corners[i].x), at(center.y, size.y, corners[i].y), at(center.z, size.z, corners[i].z)});
      _normals.push_back(normals[i]);
      _texels.push_back(p_texel);
    }
    const auto* const indices = _cube.Indices().As<unsigned int>();
    for (std::size_t i = 0; i < _cube.Indices().count; ++i)
      _indices.push_back(first + indices[i]);
  }

  Ogl::VertexData Data() {
    Ogl::VertexData data;
    data.PrimitiveType() = Ogl::VertexBuffer::Triangles;
    data.SetVertices(std::move(_positions));
    data.SetNormals(std::move(_normals));
    data.SetTexCoords(std::move(_texels));
    data.SetIndices(std::move(_indices));
    return data;
  }

private:
  Ogl::VertexData _cube;
  std::vector<Ogl::Vec3<float>> _positions;
  std::vector<Ogl::Vec3<float>> _normals;
  std::vector<Ogl::Vec2<float>> _texels;
  std::vector<unsigned int> _indices;
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

constexpr double RowPitch = 0.8, Thickness = 0.46, LongestBar = 3.9;

class Chart {
public:
  explicit Chart(const std::string& p_path)
      : _regions(CountByRegion(p_path))
      , _chart(_atlas.AddColor(QColor(0x8FA0B2), _atlas.RootAtlasId())) {
    for (std::size_t row = 0; row < _regions.size(); ++row) {
      const QColor hue(Hues[row]);
      const unsigned int region = _atlas.AddColor(hue, _chart);
      _classIds.emplace_back();
      for (std::size_t i = 0; i < Classes; ++i)
        _classIds.back()[i] = _atlas.AddColor(ClassShade(hue, i), region);
    }
    AddInstances();
  }

  void Draw(Sheet& p_sheet) {
    _atlas.BuildAtlas(p_sheet.Gl());
    BuildBars(); // which show where the atlas has put its colours
    const QString picked = QString::fromStdString(_regions[PickedRegion()].name);
    const QString titles[][2] = {{"Own colours", "a hue for each region, darker with magnitude"},
                                 {"First instance", "grey, but for magnitudes from 3 on"},
                                 {"Second instance", "grey, but for " + picked}};
    for (std::size_t i = 0; i < 3; ++i) {
      const double left = 190 + 470 * static_cast<double>(i);
      p_sheet.Heading(titles[i][0], left, 836);
      p_sheet.Label(titles[i][1], left, 808);
      DrawPanel(p_sheet, i, {left - 20, 236, left + 450, 786});
    }
    p_sheet.Label("Magnitude", 48, 206);
    for (std::size_t i = 0; i < Classes; ++i) {
      const double x = 190 + 150 * static_cast<double>(i);
      p_sheet.canvas.Fill({x, 196, x + 26, 216}, _atlas.ColorAt(_classIds[0][i]).color);
      p_sheet.Label(ClassNames[i], x + 36, 206);
    }
    DrawAtlas(p_sheet);
  }

private:
  std::size_t PickedRegion() const { return std::min<std::size_t>(1, _regions.size() - 1); }

  void AddInstances() {
    const QColor grey(0x4B5865);
    std::map<unsigned int, QColor> strong{{_chart, grey}}; // covers everything below
    for (const auto& ids : _classIds) {
      strong[ids[3]] = QColor(0xF6B44B);
      strong[ids[4]] = QColor(0xF0563F);
    }
    _instances[0] = _atlas.AddInstance(_chart, strong);
    std::map<unsigned int, QColor> region{{_chart, grey}};
    constexpr unsigned int Shades[Classes] = {0xE9F7B8, 0x99D8B6, 0x49B9B4, 0x348CAE, 0x1F5FA8};
    for (std::size_t i = 0; i < Classes; ++i)
      region[_classIds[PickedRegion()][i]] = QColor(Shades[i]);
    _instances[1] = _atlas.AddInstance(_chart, region);
  }

  /// Where the bar of a region starts, at the middle of its height.
  static Point RowStart(std::size_t p_row) { return {0, 0, -RowPitch * static_cast<double>(p_row)}; }
  double BarLength(int p_count) const { return LongestBar * p_count / std::max(_regions.front().Total(), 1); }

  void BuildBars() {
    Boxes boxes;
    const double half = Thickness / 2;
    boxes.Add({-0.09, -half, RowStart(_regions.size() - 1).z - 0.4}, {-0.03, half, 0.4}, _atlas.TexCoord(_chart));
    for (std::size_t row = 0; row < _regions.size(); ++row) {
      Point start = RowStart(row) + Point(0, -half, -half);
      for (std::size_t i = 0; i < Classes; ++i) {
        const Point end = start + Point(BarLength(_regions[row].counts[i]), 2 * half, 2 * half);
        if (end.x > start.x)
          boxes.Add(start, end, _atlas.TexCoord(_classIds[row][i]));
        start.x = end.x;
      }
    }
    _bars = boxes.Data();
  }

  /// The bars, moved in the texture onto an instance.
  void DrawPanel(Sheet& p_sheet, std::size_t p_panel, const Sheet::Rect& p_rect) {
    Camera camera;
    camera.projection = Camera::Projection::Parallel;
    camera.elevation = 15;
    camera.radius = 10;
    const double height = RowPitch * Rows;
    camera.distance = height / 2 / std::tan(Types::Angle::FromDegrees(camera.fieldOfView / 2).Radians());
    const double width = height * (p_rect.right - p_rect.left) / (p_rect.top - p_rect.bottom);
    camera.target = {width / 2 - 0.25, 0, RowPitch / 2 - height / 2};
    p_sheet.Draw(camera, p_rect, [&](const View&) {
      const auto light = DirectionalLight().Apply(p_sheet.Gl());
      (*_atlas.Texture())(p_sheet.Gl(), RGL_TEXTURE0);
      p_sheet.Gl()->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE,
                            RGL_MODULATE); // the light shades the atlas's colours
      const Ogl::Vec2<float> offset = p_panel > 0 ? _atlas.InstanceOffset(_instances[p_panel - 1]) : Ogl::Vec2<float>{};
      p_sheet.Gl()->MatrixMode(RGL_TEXTURE);
      p_sheet.Gl()->PushMatrix();
      p_sheet.Gl()->Translate({offset.x, offset.y, 0});
      p_sheet.Gl()->MatrixMode(RGL_MODELVIEW);
      _bars.Draw(p_sheet.Gl());
      p_sheet.Gl()->MatrixMode(RGL_TEXTURE);
      p_sheet.Gl()->PopMatrix();
      p_sheet.Gl()->MatrixMode(RGL_MODELVIEW);
    });
    const View view{camera, p_sheet.canvas.Part(p_rect)};
    const TextStyle style = p_sheet.theme.SmallStyle();
    for (std::size_t row = 0; row < _regions.size(); ++row) {
      const Point end = RowStart(row) + Point(BarLength(_regions[row].Total()), 0, 0);
      p_sheet.canvas.TextAt(QString::number(_regions[row].Total()), view, end, {12, 0}, {0, 0.5}, style);
      if (p_panel == 0)
        p_sheet.canvas.TextAt(QString::fromStdString(_regions[row].name), view, RowStart(row), {-18, 0}, {1, 0.5},
                              style);
    }
  }

  /// The texels in use, which part of them belongs to whom, and some of the free ones, dimmed.
  void DrawAtlas(Sheet& p_sheet) const {
    constexpr double Left = 48, Bottom = 84, Top = 128;
    constexpr int ShownFree = 12;
    const QImage& image = _atlas.AtlasImage();
    const int part = 1 + static_cast<int>(_regions.size() * (1 + Classes)), used = 3 * part;
    const int shown = std::min(used + ShownFree, image.width());
    const double texel = (p_sheet.canvas.Width() - 2 * Left) / shown;
    for (int i = 0; i < shown; ++i) {
      QColor color = image.pixelColor(i, 0);
      if (i >= used)
        color.setAlphaF(0.3F);
      p_sheet.canvas.Fill({Left + i * texel, Bottom, Left + (i + 1) * texel, Top}, color);
    }
    const auto name = [&](int p_first, int p_last, const QString& p_name) {
      const double x0 = Left + p_first * texel + 2, x1 = Left + p_last * texel - 2;
      p_sheet.canvas.Line({x0, Bottom - 9}, {x1, Bottom - 9}, 2, p_sheet.theme.faint);
      p_sheet.Label(p_name, (x0 + x1) / 2, Bottom - 17, {0.5, 1});
    };
    name(0, part, "own colours");
    name(part, 2 * part, "first instance");
    name(2 * part, used, "second instance");
    if (shown > used)
      name(used, shown, QString("%1 free").arg(image.width() * image.height() - used));
    p_sheet.Label(QString("The atlas: one texture of %1 × %2 texels. Free ones are red, here cut off and dimmed.")
                      .arg(image.width())
                      .arg(image.height()),
                  Left, Top + 10, {0, 0});
  }

  std::vector<Region> _regions;
  ColorAtlas _atlas;
  unsigned int _chart;
  std::vector<std::array<unsigned int, Classes>> _classIds;
  std::array<unsigned int, 2> _instances{};
  Ogl::VertexData _bars;
};

} // namespace

QImage AtlasImage(const Inputs& p_inputs, Types::Size p_size) {
  return DrawSheet("Colour atlas", "Earthquakes by region and magnitude, drawn three times with one texture", p_size,
                   [&](Sheet& p_sheet) { Chart(p_inputs.quakes).Draw(p_sheet); });
}

} // namespace Vek::Chart::Gallery
