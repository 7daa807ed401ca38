#include "library/Ring.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"
#include "platform/types/Transformation.h"

namespace Vek::Chart::Ogl::Library {
namespace {

namespace Signature {
constexpr const char* Constructor = "__cdecl Vek::Chart::Ogl::Library::Ring::Ring(void)";
constexpr const char* Draw = "void __cdecl Vek::Chart::Ogl::Library::Ring::operator ()(const class "
                             "Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &) const";
} // namespace Signature

} // namespace

Ring::Ring() {
  BuildMesh();
}

void Ring::BuildMesh() {
  VEK_ENSURE(segments > 2, Signature::Constructor);
  VEK_ENSURE((innerRadius > 0.0) && (innerRadius < outerRadius), Signature::Constructor);
  VEK_ENSURE((outerRadius > 0.0) && (outerRadius > innerRadius), Signature::Constructor);

  const double t = thickness.Defined() ? thickness.Value() : outerRadius - innerRadius;
  const double step = 2 * Types::Angle::Pi / segments;
  vertices.reserve(std::size_t{segments} * 4);
  indices.reserve(std::size_t{segments} * 24);
  for (std::uint32_t i = 0; i < segments; ++i) {
    const Types::Transformation turn(Types::Angle::FromRadians(i * step), {0, 0, 1});
    vertices.push_back(turn * Types::Vector3_Base<double>(innerRadius * 0.5, 0, t / 2));
    vertices.push_back(turn * Types::Vector3_Base<double>(outerRadius * 0.5, 0, t / 2));
    vertices.push_back(turn * Types::Vector3_Base<double>(innerRadius * 0.5, 0, -t / 2));
    vertices.push_back(turn * Types::Vector3_Base<double>(outerRadius * 0.5, 0, -t / 2));

    const std::uint32_t b = 4 * i;
    const std::uint32_t nb = i + 1 < segments ? b + 4 : 0;
    indices.insert(indices.end(), {b,     nb,     b + 2,  b + 2,  nb,     nb + 2,   // inner wall
                                   b,     b + 1,  nb + 1, nb + 1, nb,     b,        // top
                                   b + 1, nb + 3, nb + 1, b + 1,  b + 3,  nb + 3,   // outer wall
                                   b + 2, nb + 3, b + 3,  b + 2,  nb + 2, nb + 3}); // bottom
  }
}

void Ring::operator()(const Utility::Unscoped<Rgl>& p_gl) const {
  Utility::Scoped<Rgl> gl(p_gl);
  VEK_ENSURE((indices.size() % 3) == 0, Signature::Draw);
  const bool moved = position != Types::Vector3_Base<double>(0, 0, 0);
  if (moved)
    gl->Translate(position);
  gl->Begin(RGL_TRIANGLES);
  const boost::shared_ptr<void> ended = MakeGuard([&gl] { gl->End(); });
  // Released first, deliberately between Begin and End; see the class.
  const boost::shared_ptr<void> movedBack = MakeGuard([&gl, moved, this] {
    if (moved)
      gl->Translate(-position);
  });
  for (std::size_t k = 0; k < indices.size(); ++k) {
    if (!VEK_CHECK_RANGE(indices[k], vertices.size(), "0 <= indices[k] < vertices.size()", Signature::Draw))
      continue;
    const Types::Vector3_Base<double>& vertex = vertices[indices[k]];
    switch (k / 6 % 4) {
    case 0: // inner wall
      gl->Normal(Types::Normalize(-vertex));
      break;
    case 1: // top
      gl->Normal(0, 0, 1);
      break;
    case 2: // outer wall
      gl->Normal(Types::Normalize(vertex));
      break;
    default: // bottom
      gl->Normal(0, 0, -1);
    }
    gl->Vertex(vertex);
  }
}

} // namespace Vek::Chart::Ogl::Library
