#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/ogl/VertexBuffer.h"

#include <boost/shared_ptr.hpp>

#include <optional>

namespace Vek::Chart::Ogl {

// What the classes that draw from arrays share.

/// GL's primitive; none for a kind that is not decided or unknown.
std::optional<GlEnum> PrimitiveToken(VertexBuffer::PrimitiveType p_type);

/// Keeps client arrays and buffer bindings as they are until it is released; no buffer is bound at first.
boost::shared_ptr<void> ClientArrayScope(const Rgl& p_gl);

/// Switches one of the fixed client arrays on or off.
void EnableArray(const Rgl& p_gl, GlEnum p_array, bool p_enable);

} // namespace Vek::Chart::Ogl
