#pragma once

#include "scene/Camera.h"
#include "scene/Export.h"
#include "scene/PickPass.h"

#include "platform/core/TimeStamp.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene {

/// Finds what lies under a pixel: the depth, the position in the scene, the plot, and the element of the plot.
///
/// Plots are functions that draw. The first pick of a scene draws all of them twice into off-screen targets of the
/// viewport's size, depths and ids, and reads the targets into CPU memory (8 bytes a pixel). Further picks of the same
/// stamp and size make no GL call.
///
/// A plot is drawn under the matrices of the camera, with a shader in use that packs depths or writes ids. So a
/// function that draws by GL's fixed vertex attributes (a GpuMesh, VertexData, drawables, immediate mode) needs no code
/// for picking: its elements are the primitives of one call of GL, counted from 0 in each call. A plot whose vertices
/// are relative to an origin applies the camera again, with that origin. Parts with shaders of their own have a drawing
/// for a PickPass:
///
///     {[&](auto& gl, const PickPass&) { surface.Draw(gl); },
///      [&](auto& gl, const PickPass& pass) { arrows.Draw(gl, pass); }}
///
/// No state of the host spoils a drawing (see Library::DepthPass). All state is restored, also after a plot that threw;
/// the next pick then draws again. Targets lie in each context as `Ogl::PerContext` describes.
///
/// Primitives are counted by devices of GL 3.2 and later; on others, elements of fixed-function plots are unknown.
/// Failures of GL are reported, and nothing is hit.
///
/// \snippet SceneMeshSnippets.cpp Picker
/// \image html parts/Picker.png
/// \ingroup picking
class VEK_SCENE_API Picker {
public:
  /// What lies under a pixel.
  struct Hit {
    double depth = 1;                     ///< 0 (near) to 1 (far), as the depth buffer has it
    Types::Vector3_Base<double> position; ///< in the units of the camera
    unsigned int plot = 0;                ///< the index of the plot
    std::optional<std::uint32_t> element; ///< the id of an instance, or the number of a primitive; empty if unknown
  };
  /// Draws a plot for one pass.
  using DrawPlot = std::function<void(Utility::Scoped<Rgl>&, const PickPass&)>;

  /// What lies under a pixel of the window, counted from its lower left corner; empty where nothing was drawn, and
  /// outside the viewport.
  ///
  /// `p_stamp`: of the scene; another one for each change of the plots, the camera or the position of the viewport.
  /// `p_plots`: at most PickPass::MostPlots, otherwise throws std::invalid_argument; empty functions draw nothing.
  std::optional<Hit> Pick(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera, const Types::Viewport<0>& p_viewport,
                          const Types::Pos& p_pixel, const Core::TimeStamp& p_stamp,
                          const std::vector<DrawPlot>& p_plots);
  /// Likewise, of one plot and without an element, for which depths alone are drawn.
  std::optional<Hit> PickSurface(Utility::Scoped<Rgl>& p_gl, const Camera& p_camera,
                                 const Types::Viewport<0>& p_viewport, const Types::Pos& p_pixel,
                                 const Core::TimeStamp& p_stamp, const DrawPlot& p_plot);

  /// Frees the targets and shaders of the scope's context.
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _states.Release(p_gl); }

private:
  struct State;
  Ogl::PerContext<State> _states;
};

} // namespace Vek::Chart::Scene
