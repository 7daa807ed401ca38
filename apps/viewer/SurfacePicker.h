#pragma once

#include "apps/gallery/Picture.h"
#include "scene/Picker.h"

#include "platform/core/TimeStamp.h"

#include <optional>

namespace Vek::Chart::Viewer {

/// A point on a surface of a picture.
struct SurfacePoint {
  double depth; ///< 0 (near) to 1 (far), as the depth buffer has it
  Types::Vector3_Base<double> position;
};

/// Finds the surface point under a pixel. The surfaces are drawn once per view of a picture; further picks read from
/// that drawing, until `Invalidate`.
///
/// GL objects are freed with their context or with this object.
class SurfacePicker {
public:
  /// To be called whenever the picture or the camera changes.
  void Invalidate() { _shown = Core::TimeStamp(); }
  /// The surface point under a pixel of the window, counted from the lower left corner; empty where there is no
  /// surface.
  std::optional<SurfacePoint> At(Utility::Scoped<Rgl>& p_gl, Gallery::Picture& p_picture, const Scene::View& p_view,
                                 const Types::Pos& p_pixel);
  /// Number of times the surfaces were drawn.
  int Drawings() const { return _drawings; }

private:
  Core::TimeStamp _shown;
  int _drawings = 0;
  Scene::Picker _picker;
};

} // namespace Vek::Chart::Viewer
