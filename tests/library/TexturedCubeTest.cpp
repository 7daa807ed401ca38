#include "library/TexturedCube.h"

#include "tests/support/PixelFixture.h"
#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

using namespace Vek::Chart;
using Library::TexturedCube;
using Vek::Test::Lines;
using Vek::Test::ReportCapture;
using Vector = Types::Vector3_Base<double>;

namespace {

using Scope = Utility::Scoped<Rgl>;
class TexturedCubeCalls : public Vek::Test::RecordingFixture {};
class TexturedCubePixels : public Vek::Test::PixelFixture {};

constexpr int Faces[6][4] = {{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {2, 3, 7, 6}, {0, 3, 2, 1}, {4, 5, 6, 7}};

} // namespace

TEST(TexturedCube, FacesLookOutward) {
  const TexturedCube cube(0);
  const Vector expected[6] = {{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}};
  for (std::size_t face = 0; face < 6; ++face) {
    ASSERT_TRUE(cube.faces[face].indices.Defined());
    const boost::array<int, 4>& i = cube.faces[face].indices.Value();
    const auto corner = [&](std::size_t p_place) { return cube.corners.at(static_cast<std::size_t>(i[p_place])); };
    EXPECT_EQ(Cross(corner(1) - corner(0), corner(2) - corner(1)), expected[face]) << face;
    EXPECT_EQ(Cross(corner(2) - corner(1), corner(3) - corner(2)), expected[face]) << face;
  }
  EXPECT_FALSE(TexturedCube::CubeFace().indices.Defined());
}

TEST_F(TexturedCubeCalls, SendsEachCornerTwice) {
  Scope gl(recorder.Handle());
  TexturedCube cube(3);
  cube.corners[6] = {2, 3, 4}; // what is sent are the fields
  cube(gl);
  const char* const corners[8] = {"0, 0, 0", "1, 0, 0", "1, 1, 0", "0, 1, 0",
                                  "0, 0, 1", "1, 0, 1", "2, 3, 4", "0, 1, 1"};
  Lines expected;
  for (const auto& face : Faces) {
    expected.push_back("Begin(GL_QUADS)");
    for (const int index : face) {
      expected.push_back(std::string("MultiTexCoord3d(GL_TEXTURE3, ") + corners[index] + ")");
      expected.push_back(std::string("Vertex3d(") + corners[index] + ")");
    }
    expected.push_back("End()");
  }
  EXPECT_EQ(recorder.Lines(), expected);
}

TEST_F(TexturedCubeCalls, ReportsAFaceWithoutCorners) {
  Scope gl(recorder.Handle());
  const ReportCapture reports;
  TexturedCube::CubeFace face;
  const TexturedCube cube(0);
  face(gl, cube.corners, 0);
  ASSERT_EQ(reports.Texts().size(), 1u);
  EXPECT_EQ(reports.Texts()[0].find("\"indices.Defined()\" - void __cdecl "
                                    "Vek::Chart::Library::TexturedCube::CubeFace::operator ()("),
            0u)
      << reports.Texts()[0];
  EXPECT_EQ(recorder.LinesOf({"Vertex3d"}), Lines(4, "Vertex3d(0, 0, 0)"));
}

TEST_F(TexturedCubeCalls, RefusesCornersThatAreNone) {
  Scope gl(recorder.Handle());
  const TexturedCube cube(0);
  for (const int bad : {8, -1, -2147483647 - 1}) {
    TexturedCube::CubeFace face(0, 1, 2, bad);
    try {
      face(gl, cube.corners, 0);
      FAIL() << bad;
    } catch (const std::out_of_range& error) {
      EXPECT_STREQ(error.what(), "array<>: index out of range");
    }
  }
  EXPECT_EQ(recorder.Lines(), Lines()) << "Begin is not left open";
}

TEST_F(TexturedCubePixels, AVolumeFillsItExactly) {
  Scope gl(Handle());
  // 2 × 2 × 2 voxels, all different.
  const std::array<unsigned char, 32> voxels = {10, 20, 30, 255, 40,  20, 30, 255, 10, 50,  30, 255, 40,  50,  30, 255,
                                                10, 20, 90, 255, 140, 20, 90, 255, 10, 150, 90, 255, 140, 150, 90, 255};
  const auto volume = gl->GenTexture();
  gl->Bind(volume, Rgl::Sampler3D);
  gl->TexImage3D(RGL_TEXTURE_3D, 0, RGL_RGBA, 2, 2, 2, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, voxels.data());
  for (const Ogl::GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
    gl->TexParameteri(RGL_TEXTURE_3D, filter, RGL_NEAREST);
  for (const Ogl::GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T, RGL_TEXTURE_WRAP_R})
    gl->TexParameteri(RGL_TEXTURE_3D, wrap, RGL_CLAMP_TO_EDGE);
  gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
  gl->Enable(RGL_TEXTURE_3D);
  gl->Enable(RGL_CULL_FACE);
  gl->Viewport(0, 0, 20, 20);
  TexturedCube cube(0);
  for (const bool front : {true, false}) {
    gl->MatrixMode(RGL_PROJECTION);
    gl->LoadIdentity();
    gl->Ortho(0, 1, 0, 1, -2, 2);
    gl->MatrixMode(RGL_MODELVIEW);
    gl->LoadIdentity();
    gl->CullFace(front ? RGL_BACK : RGL_FRONT); // the face z = 1 looks at the viewer
    gl->Clear(RGL_COLOR_BUFFER_BIT);
    cube(gl);
    const QImage image = Image();
    for (const int y : {0, 9, 10, 19})
      for (const int x : {0, 9, 10, 19}) {
        const std::size_t voxel = (front ? 16u : 0u) + (y >= 10 ? 8u : 0u) + (x >= 10 ? 4u : 0u);
        EXPECT_TRUE(Vek::Test::SameColor(Vek::Test::PixelAt(image, x, y),
                                         QColor(voxels[voxel], voxels[voxel + 1], voxels[voxel + 2])))
            << x << ", " << y << (front ? " front" : " back");
      }
    EXPECT_EQ(qAlpha(Vek::Test::PixelAt(image, 20, 10)), 0);
  }
}
