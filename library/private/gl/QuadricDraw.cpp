#include "library/private/gl/QuadricDraw.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"

namespace Vek::Chart::Library::Private {

boost::shared_ptr<Ogl::GlQuadric> MakeQuadric(Utility::Scoped<Rgl>& p_gl, unsigned int p_style,
                                              const char* p_signature) {
  const Rgl* const gl = &*p_gl;
  Ogl::GlQuadric* const quadric = gl->NewQuadric();
  if (!VEK_CHECK_POINTER(quadric, p_signature))
    return {};
  const boost::shared_ptr<Ogl::GlQuadric> owner(quadric,
                                                [gl](Ogl::GlQuadric* p_quadric) { gl->DeleteQuadric(p_quadric); });
  gl->QuadricDrawStyle(quadric, p_style);
  gl->QuadricNormals(quadric, RGLU_SMOOTH);
  return owner;
}

boost::shared_ptr<void> TranslateScope(Utility::Scoped<Rgl>& p_gl, const Types::Vector3_Base<double>& p_offset) {
  const Rgl* const gl = &*p_gl;
  gl->Translate(p_offset);
  return Ogl::MakeGuard([gl, p_offset] { gl->Translate(-p_offset); });
}

} // namespace Vek::Chart::Library::Private
