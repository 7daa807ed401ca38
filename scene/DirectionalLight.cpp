#include "scene/DirectionalLight.h"

#include <array>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

std::array<float, 4> Grey(double p_value) {
  const float value = static_cast<float>(p_value);
  return {value, value, value, 1.0f};
}

void Validate(const DirectionalLight& p_light) {
  const double length = Length(p_light.direction);
  if (!(length > 1e-30 && length < 1e30)) // GL has single precision
    throw std::invalid_argument("DirectionalLight: expected a direction that is finite and not zero");
  if (!(p_light.shininess >= 0 && p_light.shininess <= 128))
    throw std::invalid_argument("DirectionalLight: expected a shininess of 0 to 128, got " +
                                std::to_string(p_light.shininess));
}

} // namespace

boost::shared_ptr<void> DirectionalLight::Apply(const Utility::Scoped<Rgl>& p_gl) const {
  Validate(*this);
  const boost::shared_ptr<void> guard =
      p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_LIGHTING_BIT | RGL_DEPTH_BUFFER_BIT | RGL_TRANSFORM_BIT);
  const std::array<float, 4> position = {static_cast<float>(direction.x), static_cast<float>(direction.y),
                                         static_cast<float>(direction.z), 0.0f};
  // GL multiplies the direction by the model-view matrix that is current when it is set.
  p_gl->MatrixMode(RGL_MODELVIEW);
  p_gl->PushMatrix();
  if (frame == Frame::Camera)
    p_gl->LoadIdentity();
  p_gl->Lightfv(RGL_LIGHT0, RGL_POSITION, position.data());
  p_gl->PopMatrix();
  p_gl->Lightfv(RGL_LIGHT0, RGL_AMBIENT, Grey(0).data());
  p_gl->Lightfv(RGL_LIGHT0, RGL_DIFFUSE, Grey(diffuse).data());
  p_gl->Lightfv(RGL_LIGHT0, RGL_SPECULAR, Grey(specular).data());
  p_gl->LightModelfv(RGL_LIGHT_MODEL_AMBIENT, Grey(ambient).data());
  p_gl->LightModeli(RGL_LIGHT_MODEL_TWO_SIDE, isTwoSided ? 1 : 0);
  p_gl->LightModeli(RGL_LIGHT_MODEL_COLOR_CONTROL, static_cast<int>(RGL_SEPARATE_SPECULAR_COLOR));
  p_gl->Materialfv(RGL_FRONT_AND_BACK, RGL_AMBIENT_AND_DIFFUSE, Grey(1).data());
  p_gl->Materialfv(RGL_FRONT_AND_BACK, RGL_SPECULAR, Grey(1).data());
  const float exponent = static_cast<float>(shininess);
  p_gl->Materialfv(RGL_FRONT_AND_BACK, RGL_SHININESS, &exponent);
  p_gl->Enable(RGL_LIGHTING);
  p_gl->Enable(RGL_LIGHT0);
  p_gl->Enable(RGL_NORMALIZE);
  p_gl->Enable(RGL_DEPTH_TEST);
  return guard;
}

} // namespace Vek::Chart::Scene
