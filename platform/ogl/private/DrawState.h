#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/ogl/VertexBuffer.h"

#include <boost/shared_ptr.hpp>

#include <optional>

namespace Vek::Chart::Ogl {

// Shared by the classes that draw from arrays.

/// The token of a primitive; none for an undecided or unknown type.
std::optional<GlEnum> PrimitiveToken(VertexBuffer::PrimitiveType p_type);

/// Saves client arrays and buffer bindings, and unbinds the buffers. Releasing the guard restores both.
boost::shared_ptr<void> ClientArrayScope(const Rgl& p_gl);

/// Enables or disables one of the fixed client arrays.
void EnableArray(const Rgl& p_gl, GlEnum p_array, bool p_enable);

} // namespace Vek::Chart::Ogl
