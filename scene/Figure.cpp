#include "scene/Figure.h"

#include "scene/Background.h"
#include "scene/private/FigureCuts.h"
#include "scene/private/FigureMap.h"
#include "scene/private/FigureState.h"
#include "scene/private/ImageFile.h"
#include "scene/private/MeshData.h"
#include "scene/private/SceneState.h"

#include "library/ObjModel.h"
#include "library/ObjScene.h"
#include "platform/debug/Check.h"
#include "platform/debug/TypeName.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

Figure::Figure(const QString& p_title, const QString& p_subtitle)
    : _state(std::make_unique<State>()) {
  SetTitle(p_title, p_subtitle);
}
Figure::~Figure() = default;
Figure::Figure(Figure&& p_other) noexcept = default;
Figure& Figure::operator=(Figure&& p_other) noexcept = default;

QuiverPlot& Figure::Quiver(const Array3& p_positions, const Array3& p_vectors) {
  return _state->Add(std::unique_ptr<QuiverPlot>(new QuiverPlot(p_positions, p_vectors)));
}

ScatterPlot& Figure::Scatter(const Array3& p_positions) {
  return _state->Add(std::unique_ptr<ScatterPlot>(new ScatterPlot(p_positions)));
}

LinesPlot& Figure::Lines(const Array3& p_positions, std::vector<std::size_t> p_lengths) {
  return _state->Add(std::unique_ptr<LinesPlot>(new LinesPlot(Points(p_positions), std::move(p_lengths))));
}

BarsPlot& Figure::Bars(const Array1& p_x, const Array1& p_y, const Array1& p_heights) {
  return _state->Add(std::unique_ptr<BarsPlot>(new BarsPlot(p_x, p_y, p_heights))).ColorByHeight();
}

StreamlinesPlot& Figure::Streamlines(const VectorField& p_field) {
  return _state->Add(std::unique_ptr<StreamlinesPlot>(new StreamlinesPlot(p_field))).ColorBySpeed();
}

SurfacePlot& Figure::Surface(const Array1& p_x, const Array1& p_y, const Array1& p_heights) {
  return _state->Add(std::unique_ptr<SurfacePlot>(new SurfacePlot(p_x, p_y, p_heights))).ColorByHeight();
}

MeshPlot& Figure::Mesh(const Array3& p_positions, const std::vector<std::array<unsigned, 3>>& p_triangles) {
  std::vector<std::uint32_t> indices;
  indices.reserve(3 * p_triangles.size());
  for (const std::array<unsigned, 3>& triangle : p_triangles)
    indices.insert(indices.end(), triangle.begin(), triangle.end());
  return IndexedMesh(p_positions, std::move(indices));
}

MeshPlot& Figure::IndexedMesh(const Array3& p_positions, std::vector<std::uint32_t> p_indices) {
  if (p_indices.size() % 3 != 0)
    throw std::invalid_argument("Mesh: expected three indices for each triangle, got " +
                                std::to_string(p_indices.size()) + " indices");
  return _state->Add(
      std::unique_ptr<MeshPlot>(new MeshPlot(Private::DataOf(Points(p_positions), std::move(p_indices)))));
}

MeshPlot& Figure::Mesh(const Library::ObjScene& p_mesh) {
  return _state->Add(std::unique_ptr<MeshPlot>(new MeshPlot(Private::DataOf(p_mesh))));
}

MeshPlot& Figure::Mesh(const Library::ObjModel& p_model) {
  if (p_model.PrimitiveType() != Ogl::VertexBuffer::Triangles)
    throw std::invalid_argument("Mesh: expected a model of triangles, got another primitive type");
  std::vector<Private::Point> positions;
  if (p_model.Vertices())
    for (const Ogl::Vec3<float> vertex : *p_model.Vertices())
      positions.emplace_back(static_cast<double>(vertex.x), static_cast<double>(vertex.y),
                             static_cast<double>(vertex.z));
  std::vector<std::uint32_t> indices;
  if (p_model.Groups())
    for (const auto& group : *p_model.Groups())
      if (group) // incomplete triangles are left out, so that those of further groups stay whole
        indices.insert(indices.end(), group->indices.begin(),
                       group->indices.end() - static_cast<std::ptrdiff_t>(group->indices.size() % 3));
  return _state->Add(
      std::unique_ptr<MeshPlot>(new MeshPlot(Private::DataOf(std::move(positions), std::move(indices)))));
}

SlicesPlot& Figure::Slices(const VoxelGrid& p_volume) {
  return _state->Add(std::unique_ptr<SlicesPlot>(new SlicesPlot(p_volume))).ColorByValue();
}

VolumePlot& Figure::Volume(const VoxelGrid& p_volume) {
  return _state->Add(std::unique_ptr<VolumePlot>(new VolumePlot(p_volume))).ColorByValue();
}

IsosurfacePlot& Figure::Isosurface(const VoxelGrid& p_volume, double p_level) {
  return Isosurface(p_volume, std::vector<double>{p_level});
}

IsosurfacePlot& Figure::Isosurface(const VoxelGrid& p_volume, const std::vector<double>& p_levels) {
  return _state->Add(std::unique_ptr<IsosurfacePlot>(new IsosurfacePlot(p_volume, p_levels))).ColorByLevel();
}

void Figure::Remove(const Plot& p_plot) {
  auto& entries = _state->entries;
  const auto entry =
      std::find_if(entries.begin(), entries.end(), [&](const auto& p_entry) { return p_entry.plot.get() == &p_plot; });
  if (entry == entries.end())
    throw std::invalid_argument("Remove: expected a plot of this figure, got another one");
  entries.erase(entry);
}

Figure& Figure::SetTitle(const QString& p_title, const QString& p_subtitle) {
  _state->title = p_title;
  _state->subtitle = p_subtitle;
  return *this;
}

Figure& Figure::SetExtent(const Types::BoundingBox_Base<double>& p_box) {
  if (!p_box.Empty() && !(Private::IsFinite(p_box.Min()) && Private::IsFinite(p_box.Max())))
    throw std::invalid_argument("SetExtent: expected a finite box, got another one");
  _state->extent = p_box;
  return *this;
}

Figure& Figure::SetNotes(const std::vector<QString>& p_notes) {
  _state->notes = p_notes;
  return *this;
}

Figure& Figure::Look(double p_azimuth, double p_elevation, Scene::Camera::Projection p_projection) {
  if (!(std::isfinite(p_azimuth) && std::abs(p_elevation) <= 90))
    throw std::invalid_argument("Look: expected an elevation of -90 to 90, got " + std::to_string(p_elevation));
  Scene::Camera direction;
  direction.azimuth = p_azimuth;
  direction.elevation = p_elevation;
  direction.projection = p_projection;
  _state->direction = direction;
  return *this;
}

Figure& Figure::Clip(const Types::Plane& p_plane) {
  if (!Private::IsCut(p_plane, _state->rules))
    throw std::invalid_argument("Clip: expected a finite plane with a normal, above 0 on logarithmic axes");
  const std::size_t most = Private::MostCuts - (_state->rules.isMap ? Private::MapBorderCount : 0);
  if (_state->clips.size() >= most)
    throw std::invalid_argument("Clip: expected at most " + std::to_string(most) + " planes, got another one");
  _state->clips.push_back(p_plane);
  return *this;
}

const std::vector<Types::Plane>& Figure::Clips() const {
  return _state->clips;
}

Figure& Figure::RemoveClip(std::size_t p_number) {
  if (p_number >= _state->clips.size())
    throw std::invalid_argument("RemoveClip: expected a number below " + std::to_string(_state->clips.size()) +
                                ", got " + std::to_string(p_number));
  _state->clips.erase(_state->clips.begin() + static_cast<std::ptrdiff_t>(p_number));
  return *this;
}

FigureLayout Figure::Layout(const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  return *_state->LayoutFor(*this, p_viewport, p_pixelRatio > 0 ? p_pixelRatio : 1);
}

Figure& Figure::SetTriad(bool p_isShown) {
  _state->hasTriad = p_isShown;
  return *this;
}

Figure& Figure::SetMoving(bool p_isMoving) {
  _state->isMoving = p_isMoving;
  _state->mayMove = true;
  return *this;
}

namespace {

/// Lines in the upper left corner, on plates, since tick labels may lie below them.
void DrawSigns(Canvas& p_canvas, const QStringList& p_lines, const Canvas::Rect& p_scene, const Theme& p_theme) {
  constexpr double Pad = 2;
  Canvas::Position place(p_scene.left, p_scene.top);
  for (const QString& line : p_lines) {
    const QSizeF size = p_canvas.TextSize(line, p_theme.SmallStyle());
    p_canvas.Fill({place.x - Pad, place.y - size.height() - Pad, place.x + size.width() + Pad, place.y + Pad},
                  p_theme.backgroundTop);
    p_canvas.Text(line, place, {0, 1}, p_theme.SmallStyle());
    place.y -= size.height() + 2 * Pad;
  }
}

} // namespace

void Figure::Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  if (!CanDraw(p_gl, p_viewport))
    return;
  const double ratio = p_pixelRatio > 0 ? p_pixelRatio : 1;
  const std::shared_ptr<const FigureLayout> layout = _state->LayoutFor(*this, p_viewport, ratio);
  DrawAxes(p_gl, p_viewport, *layout, ratio);
  _state->DrawPlots(p_gl, {layout->camera, p_viewport, ratio, theme.title, theme.line});
  DrawLegends(p_gl, p_viewport, *layout, ratio);
}

void Figure::Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const FigureLayout& p_layout,
                  Layer p_layer, double p_pixelRatio) {
  if (!CanDraw(p_gl, p_viewport))
    return;
  const double ratio = p_pixelRatio > 0 ? p_pixelRatio : 1;
  switch (p_layer) {
  case Layer::Background:
    return DrawAxes(p_gl, p_viewport, p_layout, ratio);
  case Layer::Legends:
    return DrawLegends(p_gl, p_viewport, p_layout, ratio);
  case Layer::Opaque:
  case Layer::Transparent:
    return _state->DrawPlots(p_gl, {p_layout.camera, p_viewport, ratio, theme.title, theme.line}, p_layer);
  }
}

bool Figure::CanDraw(const Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport) {
  return VEK_ENSURE(p_viewport.width > 0 && p_viewport.height > 0, "void Vek::Chart::Scene::Figure::Draw(...)") &&
         Private::HasFixedFunctions(p_gl);
}

void Figure::DrawAxes(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const FigureLayout& p_layout,
                      double p_pixelRatio) {
  DrawBackground(p_gl, p_viewport, theme);
  Canvas canvas(p_gl, p_viewport, _state->text, p_pixelRatio);
  Axes::Draw(canvas, p_layout.axes, theme);
}

void Figure::DrawLegends(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const FigureLayout& p_layout,
                         double p_pixelRatio) {
  Canvas canvas(p_gl, p_viewport, _state->text, p_pixelRatio);
  for (const FigureLayout::Block& block : p_layout.blocks)
    block.content.Draw(canvas, block.origin);
  _state->DrawTriad(canvas, p_layout, theme);
  if (_state->isMoving)
    DrawSigns(canvas, _state->Shortages(p_gl), p_layout.scene, theme);
}

std::optional<Figure::Hit> Figure::Pick(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                                        const Types::Pos& p_pixel, double p_pixelRatio) {
  if (!VEK_ENSURE(p_viewport.width > 0 && p_viewport.height > 0,
                  "std::optional<Hit> Vek::Chart::Scene::Figure::Pick(...)"))
    return {};
  const double ratio = p_pixelRatio > 0 ? p_pixelRatio : 1;
  const Scene::Camera seen = _state->LayoutFor(*this, p_viewport, ratio, true)->camera;
  return _state->Pick(p_gl, {seen, p_viewport, ratio, theme.title, theme.line}, p_pixel);
}

QImage Figure::Image(Types::Size p_size, int p_samples, double p_pixelRatio) {
  const double ratio = p_pixelRatio > 0 ? p_pixelRatio : 1;
  return Private::DrawnImage(
      p_size, p_samples, HasTransparent(),
      [&](auto& p_gl, const auto& p_viewport, double p_factor) { Draw(p_gl, p_viewport, p_factor * ratio); });
}

bool Figure::HasTransparent() const {
  return _state->HasTransparent();
}

bool Figure::HasVolume() const {
  return !_state->Having([](const Private::PlotContent& p_plot) { return p_plot.IsBlended(); }).empty();
}

std::optional<Figure::Hit> Figure::Pick(const Types::Pos& p_pixel, Types::Size p_size) {
  std::optional<Hit> hit;
  Private::DrawnImage(p_size, 0, false, [&](auto& p_gl, const auto& p_viewport, double p_pixelRatio) {
    hit = Pick(p_gl, p_viewport, {p_pixel.x, p_size.height - 1 - p_pixel.y}, p_pixelRatio);
  });
  return hit;
}

void Figure::Release(const Utility::Scoped<Rgl>& p_gl) const {
  for (const State::Entry& entry : _state->entries)
    entry.content->Release(p_gl);
  _state->text.Release(p_gl);
  _state->peeling.Release(p_gl);
  _state->picker.Release(p_gl);
}

} // namespace Vek::Chart::Scene
