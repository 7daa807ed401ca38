#include "library/TexturedCube.h"
#include "tests/support/Test.h"

using TexturedCubeCalls = RecordingScopeFixture;

TEST_F(TexturedCubeCalls, SendsEachCornerTwice) {
  TexturedCube cube(3);
  cube.corners[6] = {2, 3, 4}; // what is sent are the fields
  cube(gl);
  const char* const corners[8] = {"0, 0, 0", "1, 0, 0", "1, 1, 0", "0, 1, 0",
                                  "0, 0, 1", "1, 0, 1", "2, 3, 4", "0, 1, 1"};
  Lines expected; // each face counter-clockwise, seen from outside
  for (const auto& face : {"0473", "1265", "0154", "2376", "0321", "4567"}) {
    expected.push_back("Begin(GL_QUADS)");
    for (const char digit : std::string(face)) {
      const std::string corner = corners[digit - '0'];
      expected.insert(expected.end(), {"MultiTexCoord3d(GL_TEXTURE3, " + corner + ")", "Vertex3d(" + corner + ")"});
    }
    expected.push_back("End()");
  }
  EXPECT_EQ(recorder.Lines(), expected);
}

TEST_F(TexturedCubeCalls, RefusesCornersThatAreNone) {
  const TexturedCube cube(0);
  for (const int bad : {8, -1, std::numeric_limits<int>::min()})
    EXPECT_THROW(TexturedCube::CubeFace(0, 1, 2, bad)(gl, cube.corners, 0), std::out_of_range) << bad;
  EXPECT_EQ(recorder.Lines(), Lines()) << "Begin is not left open";

  const ReportCapture reports;
  TexturedCube::CubeFace()(gl, cube.corners, 0);
  EXPECT_EQ(reports.Texts(),
            Lines{"\"indices.Defined()\" - void __cdecl Vek::Chart::Library::TexturedCube::CubeFace::operator ()(class "
                  "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,const class boost::array<class "
                  "Vek::Chart::Types::Vector3_Base<double>,8> &,enum Vek::Chart::Ogl::Rgl::TexCoordIndex)"});
  EXPECT_EQ(recorder.LinesOf({"Vertex3d"}), Lines(4, "Vertex3d(0, 0, 0)"));
}
