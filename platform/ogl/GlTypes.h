#pragma once

#include <cstddef>
#include <cstdint>

namespace Vek::Chart::Ogl {

// The scalar types of GL, so that headers of this project need no GL header. GlTokens.cpp checks them against the
// system's headers.
using GlEnum = unsigned int;     ///< a token, RGL_…
using GlBitfield = unsigned int; ///< a combination of tokens
using GlBoolean = unsigned char; ///< 0 or 1
using GlSize = std::ptrdiff_t;   ///< bytes

/// A quadric of the GL utility library.
struct GlQuadric;

} // namespace Vek::Chart::Ogl
