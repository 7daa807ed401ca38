#pragma once

#include "scene/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"

#include <cstddef>

namespace Vek::Chart::Scene {

/// A drawing of what lies behind a layer of half-transparent things, without that layer: the second and all further
/// drawings of depth peeling (Everitt, "Interactive Order-Independent Transparency", 2001). A fragment is left out
/// where its depth is not larger than that of the texture.
///
/// The viewport starts at (0, 0) and is as large as the texture. Its lowest and leftmost texel has the depth of the
/// pixel (0, 0).
///
/// \ingroup plots
struct VEK_SCENE_API PeelPass {
  /// The texture unit where the depths of the layer in front are bound, as a 2-D texture.
  static constexpr Ogl::GlEnum Unit = RGL_TEXTURE3;
  Types::Size size;      ///< of that texture
  std::size_t front = 0; ///< how many layers lie in front; 0 where it is not known
};

} // namespace Vek::Chart::Scene
