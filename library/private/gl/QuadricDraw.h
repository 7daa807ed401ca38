#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library::Private {

/// A quadric with its draw style and smooth normals set, deleted with its last holder. When GL cannot make one, the
/// failure is reported with that signature and the result is empty: nothing is to be drawn then.
boost::shared_ptr<Ogl::GlQuadric> MakeQuadric(Utility::Scoped<Rgl>& p_gl, unsigned int p_style,
                                              const char* p_signature);

/// Moves the current matrix; releasing the guard moves it back by the inverse translation, without the matrix stack.
boost::shared_ptr<void> TranslateScope(Utility::Scoped<Rgl>& p_gl, const Types::Vector3_Base<double>& p_offset);

} // namespace Vek::Chart::Library::Private
