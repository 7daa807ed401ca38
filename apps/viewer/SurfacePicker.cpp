#include "apps/viewer/SurfacePicker.h"

namespace Vek::Chart::Viewer {

std::optional<SurfacePoint> SurfacePicker::At(Utility::Scoped<Rgl>& p_gl, Gallery::Picture& p_picture,
                                              const Scene::View& p_view, const Types::Pos& p_pixel) {
  if (!p_picture.HasSurfaces())
    return {};
  // The part of the window that shows the surfaces, and the view with its lower left corner as the origin.
  const Types::Viewport<0> part = p_picture.SurfaceViewport(p_view);
  const Scene::View moved{p_view.camera, {0, 0, part.width, part.height}};
  const Types::Pos pixel(p_pixel.x - static_cast<int>(part.x), p_pixel.y - static_cast<int>(part.y));
  if (pixel.x < 0 || pixel.y < 0 || pixel.x >= static_cast<int>(part.width) || pixel.y >= static_cast<int>(part.height))
    return {};
  if (!_shader)
    _shader.emplace(p_gl);
  std::optional<SurfacePoint> result;
  _depths.GetDepthAt(
      p_gl, moved.viewport, pixel, _shown,
      [&](Library::DepthCodec::Encoding) {
        ++_drawings;
        _shader->Draw(p_gl, [&] { p_picture.DrawSurfaces(p_gl, moved); });
      },
      [&](unsigned int, float p_depth) {
        const double depth = static_cast<double>(p_depth);
        const Scene::Camera::Pixel center{pixel.x + 0.5, pixel.y + 0.5, true};
        result = SurfacePoint{depth, moved.camera.Unproject(center, depth, moved.viewport)};
      });
  return result;
}

} // namespace Vek::Chart::Viewer
