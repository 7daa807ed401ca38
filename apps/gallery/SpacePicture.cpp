#include "apps/gallery/SpacePicture.h"
#include "apps/gallery/GalleryTheme.h"

namespace Vek::Chart::Gallery {

using Library::ColorMap;

SpacePicture::SpacePicture(const std::vector<QColor>& p_colors)
    : _ownColors(p_colors)
    , _colors(ColorMap(p_colors, ColorMap::Interpolated)) {}

void SpacePicture::SetColors(const std::vector<QColor>& p_colors) {
  if (_colors)
    _colors = ColorMap(p_colors.empty() ? _ownColors : p_colors, ColorMap::Interpolated);
}

void SpacePicture::PrepareOnce(Utility::Scoped<Rgl>& p_gl) {
  if (!_prepared)
    Prepare(p_gl);
  _prepared = true;
}

void SpacePicture::Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
  PrepareOnce(p_gl);
  DrawBackground(p_gl, p_view);
  {
    const View world{p_view.camera, SurfaceViewport(p_view)};
    const auto viewport = p_gl->PushAttribScope(RGL_VIEWPORT_BIT);
    p_gl->Viewport(world.viewport);
    const auto camera = world.camera.Apply(p_gl, world.viewport);
    DrawWorld(p_gl, world);
  }
  Canvas canvas(p_gl, p_view.viewport, _text, PointSize(p_view));
  DrawLegends(p_gl, p_view, canvas);
}

void SpacePicture::DrawSurfaces(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
  PrepareOnce(p_gl);
  const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
  DrawDepths(p_gl);
}

} // namespace Vek::Chart::Gallery
