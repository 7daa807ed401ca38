#include "apps/gallery/Relief.h"

#include "apps/gallery/Palettes.h"
#include "scene/SurfaceMesh.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Record = Types::Vector3_Base<float>;

/// Binds the colours to be modulated by the light.
boost::shared_ptr<void> TextureScope(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors) {
  const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_CURRENT_BIT);
  p_colors(p_gl, RGL_TEXTURE0);
  p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_MODULATE);
  return guard;
}

} // namespace

Relief::Relief(const HeightField& p_heights, const MapFrame& p_map, double p_zPerMetre)
    : _zPerMetre(p_zPerMetre) {
  BuildSurface(p_heights, p_map);
  BuildSides();
}

Library::ColorMap Relief::MutedColors(double p_opacity, double p_brightness) {
  std::vector<QColor> colors = Palettes::Sampled({{-6000, 0x16212E},
                                                  {-4000, 0x1B2A39},
                                                  {-2000, 0x213443},
                                                  {-200, 0x2A414F},
                                                  {0, 0x304A58},
                                                  {1, 0x5D6159},
                                                  {600, 0x6C6C62},
                                                  {2000, 0x85806F},
                                                  {4000, 0xA59D8D},
                                                  {6000, 0xCFC9BD}},
                                                 2048);
  for (QColor& color : colors) {
    color = color.lighter(static_cast<int>(100 * p_brightness));
    color.setAlphaF(p_opacity);
  }
  return Library::ColorMap(colors, Library::ColorMap::Discrete);
}

void Relief::BuildSurface(const HeightField& p_heights, const MapFrame& p_map) {
  _columns = static_cast<std::size_t>(MapFrame::Width) + 1;
  // A narrow strip from pole to pole is not followed in all its length.
  _rows = static_cast<std::size_t>(std::clamp(std::ceil(p_map.Height()), 1.0, 4 * MapFrame::Width)) + 1;
  // One more row and column around the map give the normals at its borders.
  const double lonStep = (p_map.East() - p_map.West()) / static_cast<double>(_columns - 1);
  const double latStep = (p_map.North() - p_map.South()) / static_cast<double>(_rows - 1);
  std::vector<double> x, y, heights;
  std::vector<float> colors;
  for (std::size_t column = 0; column < _columns + 2; ++column)
    x.push_back(MapFrame::Width * ((static_cast<double>(column) - 1) / static_cast<double>(_columns - 1) - 0.5));
  for (std::size_t row = 0; row < _rows + 2; ++row) {
    const double lat = p_map.South() + latStep * (static_cast<double>(row) - 1);
    y.push_back(p_map.Place(0, lat, 0).y);
    for (std::size_t column = 0; column < _columns + 2; ++column) {
      const double height = p_heights.At(p_map.West() + lonStep * (static_cast<double>(column) - 1), lat);
      heights.push_back(Z(height));
      colors.push_back(static_cast<float>((height - LowestColored) / (HighestColored - LowestColored)));
    }
  }
  Scene::SurfaceMesh::Options options;
  options.levels = 2;
  options.halo = 1;
  Scene::SurfaceMesh mesh(x, y, heights, colors, options);
  _top = std::max(0.0, mesh.bounds.Max().z);
  _base = std::min(0.0, mesh.bounds.Min().z) - 2.5;
  const std::vector<Ogl::VertexData> levels = mesh.TakeData();
  _surface = levels.front();
  _coarseSurface = levels.back();
}

void Relief::BuildSides() {
  const Record* const surface = _surface.Vertices().As<Record>();
  std::vector<Record> positions;
  std::vector<Record> normals;
  // A wall hangs below each border of the surface; `first` and `step` walk along the border.
  const auto addWall = [&](std::size_t p_first, std::size_t p_step, std::size_t p_count, const Record& p_normal) {
    for (std::size_t i = 0; i + 1 < p_count; ++i) {
      const Record& a = surface[p_first + i * p_step];
      const Record& b = surface[p_first + (i + 1) * p_step];
      const float base = static_cast<float>(_base);
      for (const Record& corner : {a, Record{a.x, a.y, base}, Record{b.x, b.y, base}, b}) {
        positions.push_back(corner);
        normals.push_back(p_normal);
      }
    }
  };
  addWall(0, 1, _columns, {0, -1, 0});
  addWall((_rows - 1) * _columns, 1, _columns, {0, 1, 0});
  addWall(0, _columns, _rows, {-1, 0, 0});
  addWall(_columns - 1, _columns, _rows, {1, 0, 0});
  _sides.SetVertices(std::move(positions));
  _sides.SetNormals(std::move(normals));
  _sides.PrimitiveType() = Ogl::VertexBuffer::Quads;
}

void Relief::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, double p_pixelsPerUnit) const {
  DrawSurface(p_gl, p_colors, p_pixelsPerUnit);
  const auto guard = TextureScope(p_gl, p_colors);
  // The sides take one colour of the map, that of the deep sea.
  p_gl->TexCoord1d(0.1);
  _sides.Draw(p_gl);
}

void Relief::DrawSurface(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, double p_pixelsPerUnit) const {
  constexpr double LargestCell = 4; // pixels
  const auto guard = TextureScope(p_gl, p_colors);
  (2 * p_pixelsPerUnit <= LargestCell ? _coarseSurface : _surface).Draw(p_gl);
}

} // namespace Vek::Chart::Gallery
