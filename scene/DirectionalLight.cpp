#include "scene/DirectionalLight.h"

#include <array>

namespace Vek::Chart::Scene {

namespace {

std::array<float, 4> Grey(double p_value) {
  const float value = static_cast<float>(p_value);
  return {value, value, value, 1.0f};
}

} // namespace

boost::shared_ptr<void> DirectionalLight::Apply(const Utility::Scoped<Rgl>& p_gl) const {
  const boost::shared_ptr<void> guard =
      p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_LIGHTING_BIT | RGL_DEPTH_BUFFER_BIT | RGL_TRANSFORM_BIT);
  constexpr std::array<float, 4> Direction = {-0.5f, 0.62f, 0.6f, 0.0f};
  // A light's direction is taken through the matrix that is current when it is set: here, none.
  p_gl->MatrixMode(RGL_MODELVIEW);
  p_gl->PushMatrix();
  p_gl->LoadIdentity();
  p_gl->Lightfv(RGL_LIGHT0, RGL_POSITION, Direction.data());
  p_gl->PopMatrix();
  p_gl->Lightfv(RGL_LIGHT0, RGL_AMBIENT, Grey(0).data());
  p_gl->Lightfv(RGL_LIGHT0, RGL_DIFFUSE, Grey(diffuse).data());
  p_gl->Lightfv(RGL_LIGHT0, RGL_SPECULAR, Grey(specular).data());
  p_gl->LightModelfv(RGL_LIGHT_MODEL_AMBIENT, Grey(ambient).data());
  p_gl->LightModeli(RGL_LIGHT_MODEL_TWO_SIDE, 1);
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
