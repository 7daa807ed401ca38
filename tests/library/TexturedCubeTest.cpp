#include "library/TexturedCube.h"
#include "tests/support/Test.h"

using Vector = Types::Vector3_Base<double>;

namespace {

using TexturedCubeCalls = RecordingFixture;

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
