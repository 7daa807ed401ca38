#include "library/Sphere.h"

#include "library/private/gl/QuadricDraw.h"

namespace Vek::Chart::Library {
namespace {

namespace Signature {
constexpr const char* Draw = "void __cdecl Vek::Chart::Library::Sphere::operator ()(const class "
                             "Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &) const";
} // namespace Signature

} // namespace

void Sphere::operator()(const Utility::Unscoped<Rgl>& p_gl) const {
  Utility::Scoped<Rgl> gl(p_gl);
  const auto moved = Private::TranslateScope(gl, position);
  const auto quadric = Private::MakeQuadric(gl, filled ? RGLU_FILL : RGLU_LINE, Signature::Draw);
  if (!quadric)
    return;
  gl->Sphere(quadric.get(), radius, static_cast<int>(slices), static_cast<int>(stacks));
}

} // namespace Vek::Chart::Library
