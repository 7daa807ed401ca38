#include "scene/Picker.h"

#include "scene/DepthShader.h"

#include "library/DepthPass.h"
#include "library/RenderTexture.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "platform/ogl/ShaderProgram.h"

#include <QImage>

#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

using Library::DepthImage;
using Types::Viewport;

const char* const VertexText = R"(
void main() {
  gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex;
  gl_Position = ftransform();
}
)";

const char* const CountedText = R"(#version 150 compatibility
uniform float plot; // (number + 1) / 255
void main() {
  int element = min(gl_PrimitiveID, 0xFFFFFF);
  gl_FragColor = vec4(vec3(element & 255, (element >> 8) & 255, element >> 16) / 255.0, plot);
}
)";

const char* const UncountedText = R"(
uniform float plot;
void main() { gl_FragColor = vec4(1.0, 1.0, 1.0, plot); }
)";

/// A program that writes the numbers of primitives, as PickPass describes.
Ogl::ShaderProgram IdProgram(Utility::Scoped<Rgl>& p_gl) {
  if (p_gl->GlVersion() < Utility::VersionNo(3, 2, 0))
    return {p_gl, VertexText, UncountedText};
  return {p_gl, std::string("#version 150 compatibility") + VertexText, CountedText};
}

/// The pixel in a viewport whose lower left corner is the origin; empty outside.
std::optional<Types::Pos> PixelIn(const Viewport<0>& p_viewport, const Types::Pos& p_pixel) {
  const double x = p_pixel.x - std::trunc(static_cast<double>(p_viewport.x));
  const double y = p_pixel.y - std::trunc(static_cast<double>(p_viewport.y));
  const bool inside = x >= 0 && y >= 0 && x < std::trunc(static_cast<double>(p_viewport.width)) &&
                      y < std::trunc(static_cast<double>(p_viewport.height));
  if (!inside)
    return {};
  return Types::Pos(static_cast<int>(x), static_cast<int>(y));
}

void DrawAll(Utility::Scoped<Rgl>& p_gl, const std::vector<Picker::DrawPlot>& p_plots, PickPass::Kind p_kind,
             const Ogl::ShaderProgram* p_program) {
  for (unsigned int plot = 0; plot < p_plots.size(); ++plot) {
    if (!p_plots[plot])
      continue;
    if (p_program != nullptr)
      p_program->SetUniform(p_gl, "plot", static_cast<float>(plot + 1) / 255);
    p_plots[plot](p_gl, {p_kind, plot});
  }
}

} // namespace

/// The targets of one context.
struct VEK_HIDDEN Picker::State {
  Library::TopMostFragmentDepthBuffer depths;
  std::optional<DepthShader> depthShader;
  std::optional<Ogl::ShaderProgram> idProgram;
  std::optional<Library::RenderTexture> target; ///< of ids
  QImage ids;                                   ///< what was read of it
  Core::TimeStamp stamp;                        ///< of the scene in `ids`

  std::optional<Hit> Surface(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera, const Viewport<0>& p_viewport,
                             const Types::Pos& p_pixel, const Core::TimeStamp& p_stamp,
                             const std::vector<DrawPlot>& p_plots);
  void ReadIds(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera, const Viewport<0>& p_viewport,
               const Core::TimeStamp& p_stamp, const std::vector<DrawPlot>& p_plots);
};

/// Depth and position under a pixel of a viewport at the origin.
std::optional<Picker::Hit> Picker::State::Surface(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera,
                                                  const Viewport<0>& p_viewport, const Types::Pos& p_pixel,
                                                  const Core::TimeStamp& p_stamp,
                                                  const std::vector<DrawPlot>& p_plots) {
  if (!depthShader || !depthShader->Linked())
    depthShader.emplace(p_gl);
  if (!depthShader->Linked())
    return {}; // reported
  const DepthImage& image = depths.Snapshot(p_gl, p_viewport, p_stamp, [&] {
    const auto camera = p_camera.Apply(p_gl, p_viewport);
    depthShader->Draw(p_gl, [&] { DrawAll(p_gl, p_plots, PickPass::Depths, nullptr); });
  });
  const auto depth = static_cast<double>(image.DepthAt(p_pixel));
  if (!(depth < 1))
    return {};
  return Hit{depth, p_camera.Unproject({p_pixel.x + 0.5, p_pixel.y + 0.5, true}, depth, p_viewport), 0, {}};
}

/// Draws and reads the ids, unless they are those of the stamp and size.
void Picker::State::ReadIds(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera, const Viewport<0>& p_viewport,
                            const Core::TimeStamp& p_stamp, const std::vector<DrawPlot>& p_plots) {
  const Types::Size size(static_cast<int>(p_viewport.width), static_cast<int>(p_viewport.height));
  if (stamp == p_stamp && ids.width() == size.width && ids.height() == size.height)
    return;
  ids = {};
  if (!target || !(target->Size() == size))
    target.emplace(size);
  if (!idProgram || !idProgram->Linked())
    idProgram.emplace(IdProgram(p_gl));
  {
    const auto bound = target->BindForDraw(p_gl);
    if (!bound || !idProgram->Linked())
      return; // reported
    const Library::DepthPass pass(p_gl);
    const auto camera = p_camera.Apply(p_gl, p_viewport);
    const auto inUse = idProgram->Use(p_gl);
    DrawAll(p_gl, p_plots, PickPass::Ids, &*idProgram);
  }
  ids = target->ToImage(p_gl);
  stamp = p_stamp;
}

std::optional<Picker::Hit> Picker::PickSurface(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera,
                                               const Viewport<0>& p_viewport, const Types::Pos& p_pixel,
                                               const Core::TimeStamp& p_stamp, const DrawPlot& p_plot) {
  const std::optional<Types::Pos> pixel = PixelIn(p_viewport, p_pixel);
  if (!pixel)
    return {};
  const Viewport<0> moved(0, 0, p_viewport.width, p_viewport.height);
  return _states.Get(p_gl).Surface(p_gl, p_camera, moved, *pixel, p_stamp, {p_plot});
}

std::optional<Picker::Hit> Picker::Pick(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera,
                                        const Viewport<0>& p_viewport, const Types::Pos& p_pixel,
                                        const Core::TimeStamp& p_stamp, const std::vector<DrawPlot>& p_plots) {
  if (p_plots.size() > PickPass::MostPlots)
    throw std::invalid_argument("Picker: expected at most " + std::to_string(PickPass::MostPlots) + " plots, got " +
                                std::to_string(p_plots.size()));
  const std::optional<Types::Pos> pixel = PixelIn(p_viewport, p_pixel);
  if (!pixel)
    return {};
  State& state = _states.Get(p_gl);
  const Viewport<0> moved(0, 0, p_viewport.width, p_viewport.height);
  std::optional<Hit> hit = state.Surface(p_gl, p_camera, moved, *pixel, p_stamp, p_plots);
  if (!hit)
    return {};
  state.ReadIds(p_gl, p_camera, moved, p_stamp, p_plots);
  const int row = state.ids.height() - 1 - pixel->y; // images have their first row on top
  if (!state.ids.valid(pixel->x, row))
    return {};
  const QRgb id = state.ids.pixel(pixel->x, row);
  if (qAlpha(id) == 0)
    return {};
  hit->plot = static_cast<unsigned int>(qAlpha(id)) - 1;
  const std::uint32_t element = static_cast<std::uint32_t>(qRed(id)) | static_cast<std::uint32_t>(qGreen(id)) << 8U |
                                static_cast<std::uint32_t>(qBlue(id)) << 16U;
  if (element != PickPass::NoElement)
    hit->element = element;
  return hit;
}

} // namespace Vek::Chart::Scene
