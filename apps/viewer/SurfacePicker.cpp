#include "apps/viewer/SurfacePicker.h"

namespace Vek::Chart::Viewer {

std::optional<SurfacePoint> SurfacePicker::At(Utility::Scoped<Rgl>& p_gl, Gallery::Picture& p_picture,
                                              const Scene::View& p_view, const Types::Pos& p_pixel) {
  if (!p_picture.HasSurfaces())
    return {};
  const Types::Viewport<0> part = p_picture.SurfaceViewport(p_view);
  const auto draw = [&](Utility::Scoped<Rgl>& p_scope, const Scene::PickPass&) {
    ++_drawings;
    p_picture.DrawSurfaces(p_scope, {p_view.camera, part});
  };
  const auto hit = _picker.PickSurface(p_gl, p_view.camera, part, p_pixel, _shown, draw);
  return hit ? std::optional(SurfacePoint{hit->depth, hit->position}) : std::nullopt;
}

} // namespace Vek::Chart::Viewer
