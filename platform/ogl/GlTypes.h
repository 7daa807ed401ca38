#pragma once

#include <cstddef>
#include <cstdint>

namespace Vek::Chart::Ogl {

// The scalar types of GL, so that no header of ours needs a GL header. GlTokens.cpp holds them against the system's.
using GlEnum = unsigned int;
using GlBitfield = unsigned int;
using GlBoolean = unsigned char;
using GlSize = std::ptrdiff_t;

/// A quadric of the GL utility library.
struct GlQuadric;

} // namespace Vek::Chart::Ogl
