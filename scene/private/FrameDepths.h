#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>

namespace Vek::Chart::Scene::Private {

/// A 2-D texture of the depths under GL's viewport, from 0 (near) to 1 (far), as its red channel.
class FrameDepths {
public:
  /// Copies the depths of the current draw frame buffer and binds the texture on the texture unit `p_unit` (a token),
  /// which becomes the active one. False if they cannot be copied, which is reported once.
  bool Copy(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit);

private:
  boost::shared_ptr<Ogl::Texture> _texture;
  bool _failed = false;
};

} // namespace Vek::Chart::Scene::Private
