#pragma once

#include "scene/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Scene {

/// A distant light over the viewer's left shoulder, with some light from everywhere. It stays with the viewer, however
/// the camera turns.
struct VEK_SCENE_API DirectionalLight {
  double ambient = 0.42;
  double diffuse = 0.72;
  double specular = 0.25;
  double shininess = 24;

  /// Switches lighting, depth test and GL's light 0 on. Surfaces are white, so that a texture bound with the
  /// environment "modulate" gives the colour and highlights stay white; both sides are lit. Releasing the guard
  /// restores all.
  boost::shared_ptr<void> Apply(const Utility::Scoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Scene
