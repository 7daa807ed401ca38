#pragma once

#include "examples/scene/DepthShader.h"
#include "examples/scene/Scene.h"

#include "library/TopMostFragmentDepthBuffer.h"
#include "platform/core/TimeStamp.h"

#include <optional>

namespace Vek::Chart::Viewer {

/// A place on a surface of a scene.
struct SurfacePoint {
  double depth; ///< 0 (near) to 1 (far), as the depth buffer has it
  Types::Vector3_Base<double> position;
};

/// Tells what lies below a pixel. The surfaces are drawn once for a view of a scene; further pixels of it are read from
/// that drawing, until `Invalidate` says that something else is shown.
///
/// Owns GL objects from the first pick on; to be used, and to end, while their context is current.
class SurfacePicker {
public:
  /// The scene, the camera, or what else decides on the surfaces has changed.
  void Invalidate() { _shown = Core::TimeStamp(); }
  /// The surface below a pixel of the window, counted from the lower left; nothing where there is none, and for a scene
  /// without surfaces.
  std::optional<SurfacePoint> At(Utility::Scoped<Rgl>& p_gl, Gallery::Scene& p_scene, const Gallery::View& p_view,
                                 const Types::Pos& p_pixel);
  /// How often the surfaces were drawn.
  int Drawings() const { return _drawings; }

private:
  Core::TimeStamp _shown;
  int _drawings = 0;
  std::optional<Gallery::DepthShader> _shader;
  Library::TopMostFragmentDepthBuffer _depths;
};

} // namespace Vek::Chart::Viewer
