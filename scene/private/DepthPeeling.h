#pragma once

#include "scene/PeelPass.h"

#include "library/RenderTexture.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <functional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Copies the depths of a viewport of another frame buffer to the lower left corner of the current one. Samples are
/// resolved.
void CopyDepths(const Rgl& p_gl, unsigned int p_from, const Types::Viewport<0>& p_viewport);

/// Draws half-transparent things in the right order, whatever the order of their primitives, by depth peeling: the
/// nearest fragments of all pixels, then the nearest ones behind these, and so on, each layer in a target of its own
/// without samples. Then the layers are drawn over the frame buffer, from far to near.
///
/// GL objects of one context (see Ogl::PerContext). GL state is restored. No query of samples may be active.
class DepthPeeling {
public:
  static constexpr std::size_t MostLayers = 4; ///< what lies behind them is not seen

  /// Draws into a viewport of the current frame buffer, which `p_drawOpaque` was drawn to. `p_draw` draws what is
  /// half-transparent, as without any other: with depth test and without blending; a null pass is the first layer. Both
  /// are called under the current matrices and clip planes. Stops at the first layer without a fragment. False, with
  /// nothing drawn, where GL makes no target, which is reported.
  bool Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const std::function<void()>& p_drawOpaque,
            const std::function<void(const PeelPass*)>& p_draw);

private:
  bool Resize(Types::Size p_size);
  bool DrawLayer(Utility::Scoped<Rgl>& p_gl, std::size_t p_layer, const std::function<void(const PeelPass*)>& p_draw);
  void Blend(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, std::size_t p_count) const;

  Types::Size _size;
  std::vector<Library::RenderTexture> _targets; ///< of what is opaque, whose depths count alone, and of each layer
};

} // namespace Vek::Chart::Scene::Private
