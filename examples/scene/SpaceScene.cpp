#include "examples/scene/SpaceScene.h"

namespace Vek::Chart::Gallery {

using Library::ColorMap;

SpaceScene::SpaceScene(const std::vector<QColor>& p_colors)
    : _ownColors(p_colors)
    , _colors(ColorMap(p_colors, ColorMap::Interpolated)) {}

void SpaceScene::SetColors(const std::vector<QColor>& p_colors) {
  if (_colors)
    _colors = ColorMap(p_colors.empty() ? _ownColors : p_colors, ColorMap::Interpolated);
}

void SpaceScene::PrepareOnce(Utility::Scoped<Rgl>& p_gl) {
  if (!_prepared)
    Prepare(p_gl);
  _prepared = true;
}

void SpaceScene::Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
  PrepareOnce(p_gl);
  DrawBackground(p_gl, p_view, _lettering);
  {
    const View world{p_view.camera, SurfaceViewport(p_view)};
    const auto viewport = p_gl->PushAttribScope(RGL_VIEWPORT_BIT);
    p_gl->Viewport(world.viewport);
    const auto camera = world.camera.Apply(p_gl, world.viewport);
    DrawWorld(p_gl, world);
  }
  Overlay overlay(p_gl, p_view, _lettering);
  DrawLegends(p_gl, p_view, overlay);
}

void SpaceScene::DrawSurfaces(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
  PrepareOnce(p_gl);
  const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
  DrawDepths(p_gl);
}

} // namespace Vek::Chart::Gallery
