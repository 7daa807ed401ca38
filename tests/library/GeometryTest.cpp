#include "library/Geometry.h"

#include "platform/types/Vector.h"
#include "tests/support/PixelFixture.h"
#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace Vek::Chart;
using Library::Geometry;
using Vek::Test::Lines;
using Vek::Test::ReportCapture;
using Vector = Types::Vector3_Base<double>;

namespace {

using Scope = Utility::Scoped<Rgl>;
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

class GeometryCalls : public Vek::Test::RecordingFixture {};
class GeometryPixels : public Vek::Test::PixelFixture {};

/// The three numbers of "Name(x, y, z)".
Vector Numbers(const std::string& p_line) {
  const char* text = p_line.c_str() + p_line.find('(') + 1;
  double values[3];
  for (double& value : values) {
    char* end = nullptr;
    value = std::strtod(text, &end);
    text = end + 1; // the comma
  }
  return {values[0], values[1], values[2]};
}

struct Corner {
  Vector position;
  Vector normal;
};

/// The triangles of a list of Normal and Vertex pairs between Begin and End.
std::vector<Corner> Corners(const Lines& p_lines) {
  std::vector<Corner> corners;
  for (std::size_t i = 1; i + 1 < p_lines.size(); i += 2) {
    EXPECT_EQ(p_lines[i].find("Normal3d("), 0u) << p_lines[i];
    EXPECT_EQ(p_lines[i + 1].find("Vertex3d("), 0u) << p_lines[i + 1];
    corners.push_back({Numbers(p_lines[i + 1]), Numbers(p_lines[i])});
  }
  return corners;
}

using Place = std::array<double, 3>;
Place PlaceOf(const Vector& p_vector) {
  return {p_vector.x, p_vector.y, p_vector.z};
}

/// Each edge is run once in each direction, so that the surface is closed and wound one way.
void ExpectClosed(const std::vector<Corner>& p_corners) {
  std::map<std::pair<Place, Place>, int> edges;
  for (std::size_t i = 0; i < p_corners.size(); i += 3)
    for (std::size_t k = 0; k < 3; ++k)
      ++edges[{PlaceOf(p_corners[i + k].position), PlaceOf(p_corners[i + (k + 1) % 3].position)}];
  for (const auto& [edge, count] : edges) {
    EXPECT_EQ(count, 1) << edge.first[0] << ", " << edge.first[1] << ", " << edge.first[2];
    EXPECT_EQ(edges.count({edge.second, edge.first}), 1u);
  }
}

double Volume(const std::vector<Corner>& p_corners) {
  double volume = 0;
  for (std::size_t i = 0; i < p_corners.size(); i += 3)
    volume += Dot(p_corners[i].position, Cross(p_corners[i + 1].position, p_corners[i + 2].position)) / 6;
  return volume;
}

Lines QuadricLines(const std::string& p_number, const std::string& p_shape) {
  return {"NewQuadric()", "QuadricDrawStyle(quadric" + p_number + ", GLU_FILL)",
          "QuadricNormals(quadric" + p_number + ", GLU_SMOOTH)", p_shape, "DeleteQuadric(quadric" + p_number + ")"};
}

} // namespace

TEST_F(GeometryCalls, RecordsEightListsInOrder) {
  {
    const Geometry geometry(recorder.Handle());
    Lines expected_order;
    for (unsigned int list = CubeList; list <= VoxelList; ++list)
      for (const std::string& line :
           {std::string("GenLists(1)"), "NewList(" + std::to_string(list) + ", GL_COMPILE)", std::string("EndList()")})
        expected_order.push_back(line);
    EXPECT_EQ(recorder.LinesOf({"GenLists", "NewList", "EndList"}), expected_order);

    EXPECT_EQ(recorder.ListLines(2002), QuadricLines("1", "Sphere(quadric1, 0.5, 16, 16)"));
    EXPECT_EQ(recorder.ListLines(2003), QuadricLines("2", "Cylinder(quadric2, 0.5, 0, 1, 16, 16)"));
    EXPECT_EQ(recorder.ListLines(2004), QuadricLines("3", "Cylinder(quadric3, 0.5, 0.5, 1, 16, 16)"));
    EXPECT_EQ(recorder.ListLines(2005), QuadricLines("4", "Disk(quadric4, 0, 0.5, 16, 16)"));
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
  EXPECT_EQ(recorder.ListLines(CubeList), (Lines{"Begin(GL_QUADS)",
                                                 "Normal3d(0, 0, -1)",
                                                 "Vertex3d(-0.5, -0.5, -0.5)",
                                                 "Vertex3d(-0.5, 0.5, -0.5)",
                                                 "Vertex3d(0.5, 0.5, -0.5)",
                                                 "Vertex3d(0.5, -0.5, -0.5)",
                                                 "Normal3d(0, -1, 0)",
                                                 "Vertex3d(-0.5, -0.5, -0.5)",
                                                 "Vertex3d(0.5, -0.5, -0.5)",
                                                 "Vertex3d(0.5, -0.5, 0.5)",
                                                 "Vertex3d(-0.5, -0.5, 0.5)",
                                                 "Normal3d(1, 0, 0)",
                                                 "Vertex3d(0.5, -0.5, -0.5)",
                                                 "Vertex3d(0.5, 0.5, -0.5)",
                                                 "Vertex3d(0.5, 0.5, 0.5)",
                                                 "Vertex3d(0.5, -0.5, 0.5)",
                                                 "Normal3d(0, 1, 0)",
                                                 "Vertex3d(0.5, 0.5, -0.5)",
                                                 "Vertex3d(-0.5, 0.5, -0.5)",
                                                 "Vertex3d(-0.5, 0.5, 0.5)",
                                                 "Vertex3d(0.5, 0.5, 0.5)",
                                                 "Normal3d(-1, 0, 0)",
                                                 "Vertex3d(-0.5, -0.5, -0.5)",
                                                 "Vertex3d(-0.5, -0.5, 0.5)",
                                                 "Vertex3d(-0.5, 0.5, 0.5)",
                                                 "Vertex3d(-0.5, 0.5, -0.5)",
                                                 "Normal3d(0, 0, 1)",
                                                 "Vertex3d(-0.5, -0.5, 0.5)",
                                                 "Vertex3d(0.5, -0.5, 0.5)",
                                                 "Vertex3d(0.5, 0.5, 0.5)",
                                                 "Vertex3d(-0.5, 0.5, 0.5)",
                                                 "End()"}));
}

TEST_F(GeometryCalls, VoxelIsTheTexturedCubeOnUnit0) {
  const Geometry geometry(recorder.Handle());
  const Lines lines = recorder.ListLines(VoxelList);
  ASSERT_EQ(lines.size(), 6u * 10);
  EXPECT_EQ(
      Lines(lines.begin(), lines.begin() + 10),
      (Lines{"Begin(GL_QUADS)", "MultiTexCoord3d(GL_TEXTURE0, 0, 0, 0)", "Vertex3d(0, 0, 0)",
             "MultiTexCoord3d(GL_TEXTURE0, 0, 0, 1)", "Vertex3d(0, 0, 1)", "MultiTexCoord3d(GL_TEXTURE0, 0, 1, 1)",
             "Vertex3d(0, 1, 1)", "MultiTexCoord3d(GL_TEXTURE0, 0, 1, 0)", "Vertex3d(0, 1, 0)", "End()"}));
}

TEST_F(GeometryCalls, CircularArrowIsAClosedSolid) {
  const Geometry geometry(recorder.Handle());
  const Lines lines = recorder.ListLines(ArrowList);
  EXPECT_EQ(lines.front(), "Begin(GL_TRIANGLES)");
  EXPECT_EQ(lines.back(), "End()");
  const std::vector<Corner> corners = Corners(lines);
  ASSERT_EQ(corners.size(), 300u);
  ExpectClosed(corners);
  EXPECT_GT(Volume(corners), 0.25);
  EXPECT_LT(Volume(corners), 0.6);

  Vector least = corners[0].position, most = least;
  std::set<Place> outline;
  for (const auto& [position, normal] : corners) {
    least = {std::min(least.x, position.x), std::min(least.y, position.y), std::min(least.z, position.z)};
    most = {std::max(most.x, position.x), std::max(most.y, position.y), std::max(most.z, position.z)};
    EXPECT_NEAR(Length(normal), 1, 1e-6);
    EXPECT_TRUE(normal.z == 0 || std::abs(normal.z) == 1);
    EXPECT_EQ(std::abs(position.z), 0.5) << "0 and 0.15 / 0.15 in single precision";
    outline.insert({position.x, position.y, 0});
  }
  const auto single = [](float p_y) { return static_cast<double>(p_y - 0.5f); };
  EXPECT_EQ(least, Vector(-0.499f, single(0.011f), -0.5));
  EXPECT_EQ(most, Vector(0.499f, single(0.95f), 0.5));
  EXPECT_EQ(outline.size(), 26u);

  for (std::size_t i = 0; i < corners.size(); i += 3) {
    const Vector face =
        Normalize(Cross(corners[i + 1].position - corners[i].position, corners[i + 2].position - corners[i].position));
    for (std::size_t k = i; k < i + 3; ++k)
      EXPECT_GT(Dot(face, corners[k].normal), 0.4) << "triangle " << i / 3 << " faces another way than its normals";
  }
  // The vertices that are stored first: the wall's normal, and those of the two faces.
  std::set<Place> at_first;
  for (const auto& [position, normal] : corners)
    if (position == Vector(-0.499f, single(0.464f), -0.5) || position == Vector(-0.499f, single(0.464f), 0.5))
      at_first.insert({std::round(normal.x * 1000), std::round(normal.y * 1000), normal.z});
  EXPECT_EQ(at_first, (std::set<Place>{{-997, -71, 0}, {0, 0, -1}, {0, 0, 1}}));
}

TEST_F(GeometryCalls, ReportsAndLeavesOutAQuadricThatCannotBeMade) {
  const char* const names[] = {"DrawSphere", "DrawCone", "DrawCylinder", "DrawDisk"};
  for (std::size_t i = 0; i < std::size(names); ++i) {
    Vek::Chart::Ogl::RecordingGl one;
    one.Fail("NewQuadric", i + 1);
    const ReportCapture reports;
    {
      const Geometry geometry(one.Handle());
      EXPECT_EQ(reports.Texts(), Lines{std::string("\"void*(obj)\" - void __cdecl `anonymous-namespace'::") + names[i] +
                                       "(class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)"});
      EXPECT_EQ(one.ListLines(2002 + static_cast<unsigned int>(i)), Lines{"NewQuadric()"});
      EXPECT_EQ(one.ListLines(VoxelList).size(), 60u) << "the others are recorded";
    }
    EXPECT_EQ(one.Complaints(), Lines());
  }
}

TEST_F(GeometryCalls, DrawsNothingNowWhenAListCannotBeMade) {
  recorder.Fail("GenLists", 1);
  const ReportCapture reports;
  const Geometry geometry(recorder.Handle());
  EXPECT_EQ(reports.Texts().size(), 1u);
  EXPECT_EQ(recorder.LinesOf({"Normal3d"}).size(), 300u) << "the arrow's; none of the cube";
  const Scope gl(recorder.Handle());
  recorder.Clear();
  geometry.Cube(gl);
  EXPECT_EQ(recorder.Lines(), Lines());
}

TEST_F(GeometryPixels, ShapesCoverTheirExtent) {
  // Seen along x, with z to the right and y up, then along z; 16 pixels a unit around the pixel (20, 18).
  const struct {
    const char* name;
    Draw draw;
    double z0, z1;         ///< extent along z
    double x0, x1, y0, y1; ///< extent across
  } cases[] = {
      {"cube", &Geometry::Cube, -0.5, 0.5, -0.5, 0.5, -0.5, 0.5},
      {"sphere", &Geometry::Sphere, -0.5, 0.5, -0.5, 0.5, -0.5, 0.5},
      {"cone", &Geometry::Cone, 0, 1, -0.5, 0.5, -0.5, 0.5},
      {"cylinder", &Geometry::Cylinder, 0, 1, -0.5, 0.5, -0.5, 0.5},
      {"disk", &Geometry::Disk, 0, 0, -0.5, 0.5, -0.5, 0.5},
      {"arrow", &Geometry::CircularArrow, -0.5, 0.5, -0.499, 0.499, -0.489, 0.45},
      {"ring", &Geometry::Ring, 0, 0, 0, 0, 0, 0},
      {"voxel", &Geometry::Voxel, 0, 1, 0, 1, 0, 1},
  };
  Scope gl(Handle());
  const Geometry geometry(Handle());
  const auto pixels = gl->PixelProjection({0, 0, FrameSize.width, FrameSize.height});
  gl->MatrixMode(RGL_PROJECTION);
  gl->LoadIdentity();
  gl->Ortho(0, FrameSize.width, 0, FrameSize.height, -100, 100);
  gl->MatrixMode(RGL_MODELVIEW);
  const auto bounds = [&](Draw p_draw, bool p_along_x) {
    gl->Clear(RGL_COLOR_BUFFER_BIT);
    gl->LoadIdentity();
    gl->Translate({20, 18, 0});
    gl->Scale({16, 16, 16});
    if (p_along_x)
      gl->Rotate(Types::Angle::FromDegrees(90), {0, 1, 0}); // +z comes to lie along +x
    gl->Color(Qt::white);
    (geometry.*p_draw)(gl);
    const QImage image = Image();
    std::array<int, 4> box{1000, -1000, 1000, -1000};
    for (int y = 0; y < FrameSize.height; ++y)
      for (int x = 0; x < FrameSize.width; ++x)
        if (qAlpha(Vek::Test::PixelAt(image, x, y)) != 0)
          box = {std::min(box[0], x), std::max(box[1], x + 1), std::min(box[2], y), std::max(box[3], y + 1)};
    return box;
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::array<int, 4> front = bounds(c.draw, false), side = bounds(c.draw, true);
    if (c.x0 == c.x1) {
      EXPECT_EQ(front[1], -1000) << "draws nothing";
      EXPECT_EQ(side[1], -1000) << "draws nothing";
      continue;
    }
    // Within two pixels: shapes of 16 slices narrow towards their outermost points, where no pixel's centre is met.
    if (std::string(c.name) == "cylinder") {
      EXPECT_EQ(front[1], -1000) << "open at both ends";
      EXPECT_NEAR(side[2], 18 + 16 * c.y0, 2);
      EXPECT_NEAR(side[3], 18 + 16 * c.y1, 2);
      EXPECT_NEAR(side[0], 20 + 16 * c.z0, 2);
      EXPECT_NEAR(side[1], 20 + 16 * c.z1, 2);
      continue;
    }
    EXPECT_NEAR(front[0], 20 + 16 * c.x0, 2);
    EXPECT_NEAR(front[1], 20 + 16 * c.x1, 2);
    EXPECT_NEAR(front[2], 18 + 16 * c.y0, 2);
    EXPECT_NEAR(front[3], 18 + 16 * c.y1, 2);
    if (c.z0 != c.z1) {
      EXPECT_NEAR(side[0], 20 + 16 * c.z0, 2);
      EXPECT_NEAR(side[1], 20 + 16 * c.z1, 3);
    }
  }
}
