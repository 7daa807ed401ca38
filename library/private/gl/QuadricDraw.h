#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library::Private {

/// A quadric with its draw style and smooth normals, deleted with its last holder. If GL cannot make one, the failure
/// is reported with the signature and the pointer is empty; the caller then draws nothing.
boost::shared_ptr<Ogl::GlQuadric> MakeQuadric(Utility::Scoped<Rgl>& p_gl, unsigned int p_style,
                                              const char* p_signature);

/// Translates the current matrix. Releasing the guard applies the inverse translation; the matrix stack is not used.
boost::shared_ptr<void> TranslateScope(Utility::Scoped<Rgl>& p_gl, const Types::Vector3_Base<double>& p_offset);

} // namespace Vek::Chart::Library::Private
