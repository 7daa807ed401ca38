#pragma once

#include "scene/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Scene {

/// A white light from far away, with some light from everywhere; GL's light 0 of the fixed pipeline. By default it
/// comes over the left shoulder of the viewer and follows the camera.
///
/// Surfaces are white, too. A texture bound with the environment "modulate" gives them their colour, and highlights
/// stay white, because they are added after the texture.
///
/// \snippet SceneViewSnippets.cpp DirectionalLight
/// \image html parts/DirectionalLight.png
/// \ingroup view
struct VEK_SCENE_API DirectionalLight {
  /// What the direction is relative to.
  enum class Frame {
    Camera, ///< x to the right of the image, y upwards, z towards the viewer
    Scene   ///< the coordinates that are current at Apply: apply the camera first
  };

  double ambient = 0.42;       ///< light from everywhere, 0 or more
  double diffuse = 0.72;       ///< light that a surface scatters, in proportion to the cosine of its angle to the light
  double specular = 0.25;      ///< light that a surface mirrors (GL uses the model of Blinn and Phong)
  double shininess = 24;       ///< exponent of the highlights, 0 to 128: the larger, the smaller they are
  bool isTwoSided = true;      ///< lights both sides of a surface, each by its own normal; otherwise the front alone
  Frame frame = Frame::Camera; ///< see Frame
  Types::Vector3_Base<double> direction{-0.5, 0.62, 0.6}; ///< towards the light; any length between 1e-30 and 1e30

  /// Sets up light 0, the light model and the material of both sides, and enables lighting, light 0, the depth test and
  /// the normalisation of normals. Other lights that are enabled stay so. Releasing the guard restores all; it must be
  /// released while the same context is current. Throws std::invalid_argument, before any call, where the length of
  /// the direction or the shininess is out of its range.
  boost::shared_ptr<void> Apply(const Utility::Scoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Scene
