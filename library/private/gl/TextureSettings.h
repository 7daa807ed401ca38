#pragma once

#include "library/TextureSettings.h"
#include "platform/ogl/Rgl.h"

#include <cstdint>

namespace Vek::Chart::Library::Private {

// What 2-D and 3-D textures set at each bind, on the active unit. Settings are the numbers of the classes'
// enumerations; a number that is not listed there leaves that part of the GL state as it is.

/// Sets RGL_TEXTURE_MIN_FILTER and RGL_TEXTURE_MAG_FILTER.
void UseFilter(const Rgl& p_gl, Ogl::GlEnum p_target, const TextureSettings& p_settings);
/// Sets RGL_TEXTURE_WRAP_S and RGL_TEXTURE_WRAP_T.
void UseWrap(const Rgl& p_gl, Ogl::GlEnum p_target, const TextureSettings& p_settings);
/// Sets RGL_TEXTURE_WRAP_S, _T or _R.
void SetWrap(const Rgl& p_gl, Ogl::GlEnum p_target, Ogl::GlEnum p_name, std::uint32_t p_wrap);
/// Sets the mode of the texture environment.
void SetEnvironment(const Rgl& p_gl, std::uint32_t p_environment);
/// Restricts a texture to its level 0.
void SetOneLevel(const Rgl& p_gl, Ogl::GlEnum p_target);
/// Sets all of the above for the bound 3-D texture, of one level, and enables 3-D texturing.
void Use3D(const Rgl& p_gl, const TextureSettings& p_settings, std::uint32_t p_wrapR);
/// Enables 2-D texturing, and disables the 3-D texturing that would hide it.
void Enable2D(const Rgl& p_gl);

} // namespace Vek::Chart::Library::Private
