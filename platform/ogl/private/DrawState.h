#pragma once

#include "platform/debug/Check.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/VertexBuffer.h"

#include <boost/shared_ptr.hpp>

#include <optional>

namespace Vek::Chart::Ogl {

// Shared by the classes that draw from arrays.

/// The signature of a class's Draw, with the arguments after the scope.
#define VEK_DRAW_SIGNATURE(p_class, p_arguments)                                                                       \
  "void __cdecl Vek::Chart::Ogl::" p_class                                                                             \
  "::Draw(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &" p_arguments ") const"

/// Reports expressions that do not hold under one signature.
struct DrawCheck {
  const char* signature;
  bool operator()(bool p_holds, const char* p_expression) const {
    return VEK_ENSURE_TEXT(p_holds, p_expression, signature);
  }
};

/// The token of a primitive; none for an undecided or unknown type.
std::optional<GlEnum> PrimitiveToken(VertexBuffer::PrimitiveType p_type);

/// Saves client arrays and buffer bindings, and unbinds the buffers. Releasing the guard restores both.
boost::shared_ptr<void> ClientArrayScope(const Rgl& p_gl);

/// Enables or disables one of the fixed client arrays.
void EnableArray(const Rgl& p_gl, GlEnum p_array, bool p_enable);

} // namespace Vek::Chart::Ogl
