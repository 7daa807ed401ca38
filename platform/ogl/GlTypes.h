#pragma once

#include <cstddef>
#include <cstdint>

namespace Vek::Chart::Ogl {

// The scalar types of GL, so that no header of ours needs a GL header. GlTokens.cpp holds them against the system's.
using GlEnum = unsigned int;     ///< a token, RGL_…
using GlBitfield = unsigned int; ///< tokens or'ed together
using GlBoolean = unsigned char; ///< 0 or 1
using GlSize = std::ptrdiff_t;   ///< bytes

/// A quadric of the GL utility library.
struct GlQuadric;

} // namespace Vek::Chart::Ogl
