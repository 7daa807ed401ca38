#include "library/Disk.h"

#include "library/private/gl/QuadricDraw.h"

namespace Vek::Chart::Library {
namespace {

namespace Signature {
constexpr const char* Draw = "void __cdecl Vek::Chart::Library::Disk::operator ()(const class "
                             "Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &) const";
} // namespace Signature

} // namespace

void Disk::operator()(const Utility::Unscoped<Rgl>& p_gl) const {
  Utility::Scoped<Rgl> gl(p_gl);
  const auto moved = Private::TranslateScope(gl, position);
  const auto quadric = Private::MakeQuadric(gl, filled ? RGLU_FILL : RGLU_SILHOUETTE, Signature::Draw);
  if (!quadric)
    return;
  const int sliceCount = static_cast<int>(slices);
  const int loopCount = static_cast<int>(loops);
  if (sweepAngle == 360.0)
    gl->Disk(quadric.get(), innerRadius, outerRadius, sliceCount, loopCount);
  else
    gl->PartialDisk(quadric.get(), innerRadius, outerRadius, sliceCount, loopCount, startAngle, sweepAngle);
}

} // namespace Vek::Chart::Library
