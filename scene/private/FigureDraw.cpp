#include "scene/private/FigureState.h"

#include "scene/DirectionalLight.h"
#include "scene/OrientationTriad.h"
#include "scene/private/FigureCuts.h"
#include "scene/private/FigureMap.h"
#include "scene/private/SceneState.h"

#include <QStringList>

#include <algorithm>
#include <string>

namespace Vek::Chart::Scene {

using Private::PlotContent;

void Figure::State::DrawTriad(Canvas& p_canvas, const FigureLayout& p_layout, const Theme& p_theme) const {
  if (!hasTriad || _isFlat)
    return;
  OrientationTriad triad;
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (const QString name = AxisName(axis); name.size() == 1)
      triad.names[axis] = name;
  const double room = triad.length + triad.radius;
  triad.Draw(p_canvas, p_layout.camera, {p_layout.scene.left + room, p_layout.scene.bottom + room}, p_theme);
}

/// There are GL clip planes enough for the limits; those of a map have copies of the data.
bool Figure::State::CutsSurfaces() const {
  std::size_t planes = clips.size();
  for (const auto& limits : rules.limits)
    planes += limits ? 2 : 0;
  return !rules.isMap && planes > clips.size() && planes <= Private::MostCuts;
}

std::vector<Types::Plane> Figure::State::SceneCuts() const {
  std::vector<Types::Plane> cuts;
  for (const Types::Plane& clip : clips)
    cuts.push_back(Private::SceneCut(clip, transform));
  return cuts;
}

namespace {

/// Vertices of all plots of a frame that takes less than 60 ms: of a rasteriser in software on four cores, or of a
/// device.
std::size_t VerticesInTime(const Rgl& p_gl) {
  constexpr std::size_t InSoftware = 80'000, OnDevices = 10'000'000;
  const auto* const name = reinterpret_cast<const char*>(p_gl.GetString(RGL_RENDERER)); // NOLINT: bytes of a string
  const std::string renderer = name != nullptr ? name : "";
  for (const char* const software : {"llvmpipe", "softpipe", "SWR", "Software", "GDI"})
    if (renderer.find(software) != std::string::npos)
      return InSoftware;
  return OnDevices;
}

bool IsVeil(const PlotContent& p_content) {
  return p_content.IsTransparent() && !p_content.IsBlended() && p_content.opacity > 0;
}

} // namespace

QStringList Figure::State::Shortages(const Utility::Scoped<Rgl>& p_gl) const {
  QStringList lines;
  for (const PlotContent* const content : Visible())
    lines += content->Shortage(p_gl).split('\n');
  lines.removeAll({});
  lines.removeDuplicates();
  return lines;
}

void Figure::State::DrawPlots(Utility::Scoped<Rgl>& p_gl, Private::Frame p_frame, std::optional<Layer> p_layer) {
  p_frame.cuts = SceneCuts();
  p_frame.isMoving = isMoving;
  // Half-transparent plots are drawn twice.
  const std::size_t drawings = Visible().size() + Having(IsVeil).size();
  p_frame.mostMoving = mayMove ? VerticesInTime(*p_gl) / std::max<std::size_t>(1, drawings) : 0;
  p_frame.mostVertices = isMoving ? p_frame.mostMoving : 0;
  constexpr std::size_t AtOnce = 1 << 15; // about 11 MB of triangles, where processes share the memory of a machine
  p_frame.mostAtOnce = p_layer ? AtOnce : 0;
  const auto state = Private::SceneState(p_gl, p_frame.viewport);
  const auto matrices = p_frame.camera.Apply(p_gl, p_frame.viewport);
  DirectionalLight light; // no brighter than the colours of the colour bar, but for faint highlights
  light.ambient = 0.45;
  light.diffuse = 0.55;
  light.specular = 0.08;
  if (_isFlat) { // from the viewer: what faces him has the colours of the colour bar
    light.direction = {0, 0, 1};
    light.ambient = 0.55;
    light.diffuse = 0.45;
    light.specular = 0;
  }
  const auto lighting = light.Apply(p_gl);
  const auto drawOpaque = [&] {
    DrawContents(p_gl, p_frame,
                 Having([](const PlotContent& p_p) { return !p_p.IsTransparent() && !p_p.IsBlended(); }));
    if (!clips.empty())
      Private::DrawOutlines(p_gl, Private::CutOutlines(_box, p_frame.cuts), p_frame.line, p_frame.pixelRatio);
  };
  if (p_layer != Layer::Transparent)
    drawOpaque();
  if (p_layer == Layer::Opaque)
    return;
  DrawContents(p_gl, p_frame, Having([](const PlotContent& p_p) { return p_p.IsBlended() && p_p.opacity > 0; }));
  if (!HasTransparent())
    return;
  if (!p_layer)
    return DrawTransparent(p_gl, p_frame, drawOpaque);
  // What is opaque is in the frame buffer, also that of other figures.
  int frame = 0;
  p_gl->GetIntegerv(RGL_DRAW_FRAMEBUFFER_BINDING, &frame);
  DrawTransparent(p_gl, p_frame,
                  [&] { Private::CopyDepths(*p_gl, static_cast<unsigned int>(frame), p_frame.viewport); });
}

void Figure::State::DrawContents(Utility::Scoped<Rgl>& p_gl, const Private::Frame& p_frame,
                                 const std::vector<PlotContent*>& p_contents) {
  for (PlotContent* const content : p_contents) {
    const auto cut = CutScope(p_gl, p_frame, *content);
    ForEachCopy(p_gl, p_frame, *content, [&](const Private::Frame& p_copy) { content->Draw(p_gl, p_copy); });
  }
}

bool Figure::State::HasTransparent() const {
  return !Having(IsVeil).empty();
}

void Figure::State::DrawTransparent(Utility::Scoped<Rgl>& p_gl, Private::Frame p_frame,
                                    const std::function<void()>& p_drawOpaque) {
  const std::vector<PlotContent*> peeled = Having([](const PlotContent& p_p) { return IsVeil(p_p) && p_p.IsPeeled(); });
  // The nearest surface alone: its depths first.
  const auto drawNearest = [&](const std::vector<PlotContent*>& p_contents) {
    p_gl->ColorMask(false, false, false, false);
    DrawContents(p_gl, p_frame, p_contents);
    p_gl->ColorMask(true, true, true, true);
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
    p_gl->DepthFunc(RGL_LEQUAL);
    DrawContents(p_gl, p_frame, p_contents);
    p_gl->DepthFunc(RGL_LESS);
    p_gl->Disable(RGL_BLEND);
  };
  const auto drawLayer = [&](const PeelPass* p_layer) {
    Private::Frame frame = p_frame;
    frame.layer = p_layer;
    frame.mostLayers = Private::DepthPeeling::MostLayers;
    DrawContents(p_gl, frame, peeled);
  };
  const bool isPeeled =
      !peeled.empty() && !isMoving && peeling.Get(p_gl).Draw(p_gl, p_frame.viewport, p_drawOpaque, drawLayer);
  if (!isPeeled)
    drawNearest(peeled);
  for (PlotContent* const content : Having([](const PlotContent& p_p) { return IsVeil(p_p) && !p_p.IsPeeled(); }))
    drawNearest({content});
}

} // namespace Vek::Chart::Scene
