#include "library/Geometry.h"

#include "testing/Surface.h"
#include "tests/support/Test.h"

namespace {

using Vector = Surface::Vector;
using Draw = void (Geometry::*)(const Scope&) const;

/// The shapes in the order in which they are recorded: the first has the list 2001.
constexpr struct {
  const char* name;
  Draw draw;
} Shapes[] = {
    {"Cube", &Geometry::Cube},         {"Sphere", &Geometry::Sphere}, {"Cone", &Geometry::Cone},
    {"Cylinder", &Geometry::Cylinder}, {"Disk", &Geometry::Disk},     {"CircularArrow", &Geometry::CircularArrow},
    {"Ring", &Geometry::Ring},         {"Voxel", &Geometry::Voxel},
};
constexpr unsigned int CubeList = 2001, ArrowList = 2006, RingList = 2007, VoxelList = 2008;

using GeometryCalls = RecordingFixture;

/// The three numbers of a line; the test fails when another function is called.
Vector Numbers(const std::string& p_line, const std::string& p_function) {
  Vector numbers;
  EXPECT_EQ(std::sscanf(p_line.c_str(), (p_function + "(%lf, %lf, %lf)").c_str(), &numbers.x, &numbers.y, &numbers.z),
            3)
      << p_line;
  return numbers;
}

/// The triangles of a list of Normal and Vertex pairs between Begin and End, each corner by itself.
Surface Triangles(const Lines& p_lines) {
  Surface surface;
  for (std::size_t i = 1; i + 1 < p_lines.size(); i += 2) {
    surface.indices.push_back(static_cast<unsigned int>(surface.positions.size()));
    surface.normals.push_back(Numbers(p_lines[i], "Normal3d"));
    surface.positions.push_back(Numbers(p_lines[i + 1], "Vertex3d"));
  }
  return surface;
}

Lines QuadricLines(const std::string& p_quadric, const std::string& p_function, const std::string& p_sizes) {
  return Calls("NewQuadric(); QuadricDrawStyle(" + p_quadric + ", GLU_FILL); QuadricNormals(" + p_quadric +
               ", GLU_SMOOTH); " + p_function + "(" + p_quadric + p_sizes + "); DeleteQuadric(" + p_quadric + ")");
}

} // namespace

TEST_F(GeometryCalls, RecordsEightListsInOrder) {
  {
    const Geometry geometry(recorder.Handle());
    Lines order;
    for (unsigned int list = CubeList; list <= VoxelList; ++list)
      order = order + Calls("GenLists(1); NewList(" + std::to_string(list) + ", GL_COMPILE); EndList()");
    EXPECT_EQ(recorder.LinesOf({"GenLists", "NewList", "EndList"}), order);

    EXPECT_EQ(recorder.ListLines(2002), QuadricLines("quadric1", "Sphere", ", 0.5, 16, 16"));
    EXPECT_EQ(recorder.ListLines(2003), QuadricLines("quadric2", "Cylinder", ", 0.5, 0, 1, 16, 16"));
    EXPECT_EQ(recorder.ListLines(2004), QuadricLines("quadric3", "Cylinder", ", 0.5, 0.5, 1, 16, 16"));
    EXPECT_EQ(recorder.ListLines(2005), QuadricLines("quadric4", "Disk", ", 0, 0.5, 16, 16"));
    EXPECT_EQ(recorder.ListLines(RingList), Lines());

    const Scope gl(recorder.Handle());
    for (std::size_t i = 0; i < std::size(Shapes); ++i) {
      recorder.Clear();
      (geometry.*Shapes[i].draw)(gl);
      EXPECT_EQ(recorder.Lines(), Lines{"CallList(" + std::to_string(CubeList + i) + ")"}) << Shapes[i].name;
    }
    recorder.Clear();
  }
  EXPECT_EQ(recorder.Lines().size(), 8u) << "all lists deleted";
}

TEST_F(GeometryCalls, CubeOfSixFaces) {
  const Geometry geometry(recorder.Handle());
  // The normal and the corners of each face: below, in or above the middle of each axis.
  const char* const faces[][5] = {{"==<", "<<<", "<><", ">><", "><<"}, {"=<=", "<<<", "><<", "><>", "<<>"},
                                  {">==", "><<", ">><", ">>>", "><>"}, {"=>=", ">><", "<><", "<>>", ">>>"},
                                  {"<==", "<<<", "<<>", "<>>", "<><"}, {"==>", "<<>", "><>", ">>>", "<>>"}};
  const Lines lines = recorder.ListLines(CubeList);
  ASSERT_EQ(lines.size(), 6U * 5 + 2);
  EXPECT_EQ(lines.front() + "; " + lines.back(), "Begin(GL_QUADS); End()");
  for (std::size_t i = 0; i < 6 * 5; ++i) {
    const bool isNormal = i % 5 == 0;
    const char* const places = faces[i / 5][i % 5];
    EXPECT_EQ(Numbers(lines[i + 1], isNormal ? "Normal3d" : "Vertex3d"),
              Vector(places[0] - '=', places[1] - '=', places[2] - '=') * (isNormal ? 1 : 0.5))
        << lines[i + 1];
  }
}

TEST_F(GeometryCalls, VoxelIsTheTexturedCubeOnUnit0) {
  const Geometry geometry(recorder.Handle());
  const Lines lines = recorder.ListLines(VoxelList);
  ASSERT_EQ(lines.size(), 6u * 10);
  EXPECT_EQ(Lines(lines.begin(), lines.begin() + 10),
            Calls("Begin(GL_QUADS); MultiTexCoord3d(GL_TEXTURE0, 0, 0, 0); Vertex3d(0, 0, 0); "
                  "MultiTexCoord3d(GL_TEXTURE0, 0, 0, 1); Vertex3d(0, 0, 1); MultiTexCoord3d(GL_TEXTURE0, 0, 1, 1); "
                  "Vertex3d(0, 1, 1); MultiTexCoord3d(GL_TEXTURE0, 0, 1, 0); Vertex3d(0, 1, 0); End()"));
}

TEST_F(GeometryCalls, CircularArrowIsAClosedSolid) {
  const Geometry geometry(recorder.Handle());
  const Lines lines = recorder.ListLines(ArrowList);
  EXPECT_EQ(lines.front() + "; " + lines.back(), "Begin(GL_TRIANGLES); End()");
  const Surface arrow = Triangles(lines);
  ASSERT_EQ(arrow.positions.size(), 300u);
  EXPECT_TRUE(IsClosed(arrow));
  EXPECT_NEAR(EnclosedVolume(arrow), 0.4, 0.15);

  const auto single = [](float p_y) { return static_cast<double>(p_y - 0.5f); };
  std::set<std::array<double, 2>> outline;
  for (std::size_t i = 0; i < 300; ++i) {
    const Vector &position = arrow.positions[i], &normal = arrow.normals[i];
    EXPECT_NEAR(Length(normal), 1, 1e-6);
    EXPECT_TRUE(normal.z == 0 || std::abs(normal.z) == 1);
    EXPECT_EQ(std::abs(position.z), 0.5) << "0 and 0.15 / 0.15 in single precision";
    outline.insert({position.x, position.y});
    const std::size_t first = i - i % 3;
    const Vector face =
        Normalize(Cross(arrow.Corner(first + 1) - arrow.Corner(first), arrow.Corner(first + 2) - arrow.Corner(first)));
    EXPECT_GT(Dot(face, normal), 0.4) << "triangle " << i / 3 << " faces another way than its normals";
  }
  EXPECT_EQ(BoundsOf(arrow.positions).Min(), Vector(-0.499f, single(0.011f), -0.5));
  EXPECT_EQ(BoundsOf(arrow.positions).Max(), Vector(0.499f, single(0.95f), 0.5));
  EXPECT_EQ(outline.size(), 26u);
}

TEST_F(GeometryCalls, ReportsShapesThatCannotBeRecorded) {
  recorder.Fail("GenLists", 1);
  for (std::size_t i = 1; i <= 4; ++i)
    recorder.Fail("NewQuadric", i);
  const ReportCapture reports;
  const Geometry geometry(recorder.Handle());
  Lines texts = reports.Texts();
  ASSERT_EQ(texts.size(), 5U);
  texts.erase(texts.begin()); // of Rgl
  Lines expected;
  for (const char* const function : {"DrawSphere", "DrawCone", "DrawCylinder", "DrawDisk"})
    expected.push_back(std::string("\"void*(obj)\" - void __cdecl `anonymous-namespace'::") + function +
                       "(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)");
  EXPECT_EQ(texts, expected);
  EXPECT_EQ(recorder.ListLines(2001), Lines{"NewQuadric()"}) << "the sphere's";
  EXPECT_EQ(recorder.LinesOf({"Normal3d"}).size(), 300u) << "the arrow's; none of the cube";
  const Scope gl(recorder.Handle());
  recorder.Clear();
  geometry.Cube(gl);
  EXPECT_EQ(recorder.Lines(), Lines());
}
