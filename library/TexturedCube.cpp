#include "library/TexturedCube.h"

#include "platform/debug/Check.h"

namespace Vek::Chart::Library {

namespace {

namespace Signature {
constexpr const char* DrawFace =
    "void __cdecl Vek::Chart::Library::TexturedCube::CubeFace::operator ()(class "
    "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,const class boost::array<class "
    "Vek::Chart::Types::Vector3_Base<double>,8> &,enum Vek::Chart::Ogl::Rgl::TexCoordIndex)";
} // namespace Signature

} // namespace

void TexturedCube::CubeFace::operator()(Utility::Scoped<Rgl>& p_gl,
                                        const boost::array<Types::Vector3_Base<double>, 8>& p_corners,
                                        Rgl::TexCoordIndex p_index) {
  VEK_ENSURE(indices.Defined(), Signature::DrawFace);
  // Looked up before Begin, so that an index out of range does not leave GL inside a pair.
  boost::array<Types::Vector3_Base<double>, 4> positions;
  for (std::size_t i = 0; i < positions.size(); ++i)
    positions[i] = p_corners.at(static_cast<std::size_t>(indices.Value()[i]));
  p_gl->Begin(RGL_QUADS);
  for (const Types::Vector3_Base<double>& position : positions) {
    p_gl->MultiTexCoord(RGL_TEXTURE0 + p_index, position);
    p_gl->Vertex(position);
  }
  p_gl->End();
}

// Corners and faces:
//
//        7-------6      z
//       /|      /|      |  y
//      4-------5 |      | /
//      | 3-----|-2      |/
//      |/      |/       0---- x
//      0-------1
TexturedCube::TexturedCube(Rgl::TexCoordIndex p_index)
    : corners{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}}}
    , faces{{{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {2, 3, 7, 6}, {0, 3, 2, 1}, {4, 5, 6, 7}}}
    , texCoordIndex(p_index) {}

void TexturedCube::operator()(Utility::Scoped<Rgl>& p_gl) {
  for (CubeFace& face : faces)
    face(p_gl, corners, texCoordIndex);
}

} // namespace Vek::Chart::Library
