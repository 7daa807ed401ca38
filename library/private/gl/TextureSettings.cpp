#include "library/private/gl/TextureSettings.h"

#include <cstddef>
#include <iterator>

namespace Vek::Chart::Library::Private {

namespace {

// The GL values of the settings, in the order of the enumerations.
constexpr Ogl::GlEnum Filters[] = {RGL_NEAREST, RGL_LINEAR};
constexpr Ogl::GlEnum Wraps[] = {RGL_CLAMP_TO_EDGE, RGL_REPEAT};
constexpr Ogl::GlEnum Environments[] = {RGL_MODULATE, RGL_DECAL, RGL_REPLACE};

template <std::size_t Count>
void SetParameter(const Rgl& p_gl, Ogl::GlEnum p_target, Ogl::GlEnum p_name, const Ogl::GlEnum (&p_values)[Count],
                  std::uint32_t p_setting) {
  if (p_setting < Count)
    p_gl.TexParameteri(p_target, p_name, static_cast<int>(p_values[p_setting]));
}

} // namespace

void UseFilter(const Rgl& p_gl, Ogl::GlEnum p_target, const TextureSettings& p_settings) {
  SetParameter(p_gl, p_target, RGL_TEXTURE_MIN_FILTER, Filters, p_settings.minFilter);
  SetParameter(p_gl, p_target, RGL_TEXTURE_MAG_FILTER, Filters, p_settings.magFilter);
}

void UseWrap(const Rgl& p_gl, Ogl::GlEnum p_target, const TextureSettings& p_settings) {
  SetWrap(p_gl, p_target, RGL_TEXTURE_WRAP_S, p_settings.wrapS);
  SetWrap(p_gl, p_target, RGL_TEXTURE_WRAP_T, p_settings.wrapT);
}

void SetWrap(const Rgl& p_gl, Ogl::GlEnum p_target, Ogl::GlEnum p_name, std::uint32_t p_wrap) {
  SetParameter(p_gl, p_target, p_name, Wraps, p_wrap);
}

void SetEnvironment(const Rgl& p_gl, std::uint32_t p_environment) {
  if (p_environment < std::size(Environments))
    p_gl.TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, static_cast<int>(Environments[p_environment]));
}

void SetOneLevel(const Rgl& p_gl, Ogl::GlEnum p_target) {
  p_gl.TexParameteri(p_target, RGL_TEXTURE_BASE_LEVEL, 0);
  p_gl.TexParameteri(p_target, RGL_TEXTURE_MAX_LEVEL, 0);
}

void Use3D(const Rgl& p_gl, const TextureSettings& p_settings, std::uint32_t p_wrapR) {
  SetOneLevel(p_gl, RGL_TEXTURE_3D);
  UseWrap(p_gl, RGL_TEXTURE_3D, p_settings);
  SetWrap(p_gl, RGL_TEXTURE_3D, RGL_TEXTURE_WRAP_R, p_wrapR);
  UseFilter(p_gl, RGL_TEXTURE_3D, p_settings);
  SetEnvironment(p_gl, p_settings.environment);
  p_gl.Enable(RGL_TEXTURE_3D);
}

void Enable2D(const Rgl& p_gl) {
  if (p_gl.IsEnabled(RGL_TEXTURE_3D) != 0)
    p_gl.Disable(RGL_TEXTURE_3D);
  p_gl.Enable(RGL_TEXTURE_2D);
}

} // namespace Vek::Chart::Library::Private
