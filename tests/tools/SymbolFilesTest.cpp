// The files of symbols/: that they are what the program of tools/ writes, and that they are good models.

#include "library/ObjModel.h"
#include "library/VectorSymbol.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include <unistd.h>

using namespace Vek::Chart;
namespace fs = std::filesystem;
using Vector = Types::Vector3_Base<double>;

namespace {

const fs::path Folder = fs::path(VEK_SOURCE_DIR) / "symbols";

struct SymbolFile {
  Model::Symbol::Shape shape;
  const char* name;
  bool glyph;  // agrees with VectorSymbol vertex by vertex
  bool closed; // a surface without an edge
};
const SymbolFile Files[] = {
    {Model::Symbol::ShapeArrowHead1D, "ArrowHead1D.obj", true, false},
    {Model::Symbol::ShapeArrow1D, "Arrow1D.obj", true, false},
    {Model::Symbol::ShapeArrowHead2D, "ArrowHead2D.obj", true, false},
    {Model::Symbol::ShapeArrow2D, "Arrow2D.obj", true, false},
    {Model::Symbol::ShapePlane, "Plane.obj", true, false},
    {Model::Symbol::ShapeArrowHead3D, "ArrowHead3D.obj", true, true},
    {Model::Symbol::ShapeArrow3D, "Arrow3D.obj", true, true},
    {Model::Symbol::ShapeCylinder, "Cylinder.obj", true, false},
    {Model::Symbol::ShapeCone, "Cone.obj", true, false},
    {Model::Symbol::ShapeCircularArrow3D, "CircularArrow3D.obj", true, true},
    {Model::Symbol::ShapeCrosshair, "Crosshair.obj", true, false},
    {Model::Symbol::ShapeCube, "Cube.obj", true, true},
    {Model::Symbol::ShapeSphere, "IcoSphere.obj", false, true},
    {Model::Symbol::ShapeCustom, "Torus.obj", false, true},
};

std::string Bytes(const fs::path& p_path) {
  std::ifstream file(p_path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::set<std::string> Names(const fs::path& p_folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(p_folder))
    names.insert(entry.path().filename().string());
  return names;
}

struct Mesh {
  std::vector<Vector> positions;
  std::vector<Vector> normals;
  std::vector<std::uint32_t> indices;
  Ogl::VertexBuffer::PrimitiveType type;

  explicit Mesh(const std::string& p_name) {
    const auto model = Library::LoadPolygonObjFile((Folder / p_name).string());
    for (const auto& position : *model->Vertices())
      positions.emplace_back(position.x, position.y, position.z);
    for (const auto& normal : *model->Normals())
      normals.emplace_back(normal.x, normal.y, normal.z);
    for (const auto& group : *model->Groups())
      indices.insert(indices.end(), group->indices.begin(), group->indices.end());
    type = model->PrimitiveType();
  }
  Types::BoundingBox_Base<double> Box() const {
    Types::BoundingBox_Base<double> box;
    for (const Vector& position : positions)
      box += position;
    return box;
  }
};

std::vector<Vector> Vectors(const Ogl::VertexData::Array& p_array) {
  std::vector<Vector> vectors;
  for (std::size_t i = 0; i < p_array.count; ++i) {
    const float* const scalars = p_array.As<float>() + 3 * i;
    vectors.emplace_back(scalars[0], scalars[1], scalars[2]);
  }
  return vectors;
}

// Edges as pairs of places, so that vertices doubled for the sake of their normals count as one.
std::map<std::pair<int, int>, int> EdgesByPlace(const Mesh& p_mesh) {
  std::map<std::array<double, 3>, int> places;
  std::vector<int> place;
  for (const Vector& p : p_mesh.positions)
    place.push_back(places.try_emplace({p.x, p.y, p.z}, int(places.size())).first->second);
  std::map<std::pair<int, int>, int> edges;
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3)
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = place[p_mesh.indices[i + k]], b = place[p_mesh.indices[i + (k + 1) % 3]];
      if (a != b)
        ++edges[{a, b}];
    }
  return edges;
}

double Volume(const Mesh& p_mesh) {
  double volume = 0;
  for (std::size_t i = 0; i + 2 < p_mesh.indices.size(); i += 3)
    volume += Dot(p_mesh.positions[p_mesh.indices[i]],
                  Cross(p_mesh.positions[p_mesh.indices[i + 1]], p_mesh.positions[p_mesh.indices[i + 2]]));
  return volume / 6;
}

} // namespace

TEST(SymbolFiles, AreThoseThatTheProgramWrites) {
#if !defined(VEK_MAKE_SYMBOLS)
  GTEST_SKIP() << "vek-make-symbols is not built (VEK_BUILD_EXAMPLES is off)";
#else
  const fs::path temporary = fs::temp_directory_path() / ("vek-symbols-" + std::to_string(::getpid()));
  fs::create_directory(temporary);
  EXPECT_EQ(std::system((std::string(VEK_MAKE_SYMBOLS) + " '" + temporary.string() + "'").c_str()), 0);
  EXPECT_EQ(Names(temporary), Names(Folder));
  for (const std::string& name : Names(temporary))
    EXPECT_TRUE(Bytes(temporary / name) == Bytes(Folder / name)) << name;
  fs::remove_all(temporary);
#endif
}

TEST(SymbolFiles, GiveEachVertexOneNormalAndTheOneDimensionalOnesNone) {
  const Vek::Test::ReportCapture reports;
  std::set<std::string> names;
  for (const SymbolFile& file : Files) {
    SCOPED_TRACE(file.name);
    names.insert(file.name);
    std::map<std::string, std::string> normal_of;
    std::istringstream text(Bytes(Folder / file.name));
    for (std::string line; std::getline(text, line);) {
      std::istringstream parts(line);
      std::string keyword;
      parts >> keyword;
      if (keyword != "f")
        continue;
      for (std::string corner; parts >> corner;) {
        const std::size_t slashes = corner.find("//");
        ASSERT_NE(slashes, std::string::npos) << line;
        const std::string normal = corner.substr(slashes + 2);
        ASSERT_EQ(normal_of.try_emplace(corner.substr(0, slashes), normal).first->second, normal) << line;
      }
    }
    const Mesh mesh(file.name);
    const bool lines = mesh.type == Ogl::VertexBuffer::LineSegments;
    EXPECT_EQ(normal_of.size(), lines ? 0 : mesh.positions.size()); // no vertex is idle
    EXPECT_EQ(mesh.normals.size(), lines ? 0 : mesh.positions.size());
    for (const Vector& normal : mesh.normals)
      ASSERT_NEAR(Length(normal), 1, 1e-6);
  }
  EXPECT_EQ(names, Names(Folder));
  EXPECT_TRUE(reports.Texts().empty());
}

TEST(SymbolFiles, ReadBackAsTheGlyphs) {
  for (const SymbolFile& file : Files) {
    if (!file.glyph)
      continue;
    SCOPED_TRACE(file.name);
    const Mesh mesh(file.name);
    Ogl::VertexData glyph;
    ASSERT_TRUE(Library::VectorSymbol(file.shape, 24).BuildShape(glyph));
    EXPECT_EQ(mesh.type, glyph.PrimitiveType().Value());
    EXPECT_EQ(mesh.positions, Vectors(glyph.Vertices()));
    const bool lines = mesh.type == Ogl::VertexBuffer::LineSegments;
    EXPECT_EQ(mesh.normals, lines ? std::vector<Vector>() : Vectors(glyph.Normals()));
    const unsigned int* const indices = glyph.Indices().As<unsigned int>();
    EXPECT_EQ(mesh.indices, std::vector<std::uint32_t>(indices, indices + glyph.Indices().count));
  }
}

TEST(SymbolFiles, AreClosedAndWoundOutwardsWhereTheyAreSolid) {
  for (const SymbolFile& file : Files) {
    SCOPED_TRACE(file.name);
    const Mesh mesh(file.name);
    if (mesh.type != Ogl::VertexBuffer::Triangles)
      continue;
    const auto edges = EdgesByPlace(mesh);
    std::size_t open = 0;
    for (const auto& [edge, count] : edges) {
      const auto reverse = edges.find({edge.second, edge.first});
      open += reverse == edges.end() || reverse->second != count;
    }
    EXPECT_EQ(open == 0, file.closed) << open;
    EXPECT_GT(file.closed ? Volume(mesh) : 1, 0.01);
    // The normals of the corners look to the side from which the corners run counter-clockwise.
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
      const std::uint32_t* const t = &mesh.indices[i];
      const Vector face =
          Cross(mesh.positions[t[1]] - mesh.positions[t[0]], mesh.positions[t[2]] - mesh.positions[t[0]]);
      for (int k = 0; k < 3; ++k)
        ASSERT_GT(Dot(face, mesh.normals[t[k]]), 0) << "triangle " << i / 3;
    }
  }
}

TEST(SymbolFiles, HoldARoundSphereOfTheGlyphsSize) {
  const Mesh sphere("IcoSphere.obj");
  Ogl::VertexData glyph;
  ASSERT_TRUE(Library::VectorSymbol(Model::Symbol::ShapeSphere, 24).BuildShape(glyph));
  Types::BoundingBox_Base<double> box;
  for (const Vector& position : Vectors(glyph.Vertices()))
    box += position;
  EXPECT_TRUE(sphere.Box() == box);
  for (std::size_t i = 0; i < sphere.positions.size(); ++i) {
    ASSERT_NEAR(Length(sphere.positions[i]), 0.5, 1e-7);
    ASSERT_NEAR(Length(sphere.positions[i] - sphere.normals[i] * 0.5), 0, 1e-7);
  }
  // Euler's number of a sphere; edges are counted once in each direction.
  EXPECT_EQ(int(sphere.positions.size()) - int(EdgesByPlace(sphere).size() / 2) + int(sphere.indices.size() / 3), 2);
}

TEST(SymbolFiles, HoldATorusOfOneUnit) {
  const Mesh torus("Torus.obj");
  const auto box = torus.Box();
  EXPECT_EQ(box.Min(), Vector(-0.5, -0.5, -double(0.15f)));
  EXPECT_EQ(box.Max(), Vector(0.5, 0.5, double(0.15f)));
  for (std::size_t i = 0; i < torus.positions.size(); ++i) {
    const Vector& p = torus.positions[i];
    const Vector centre = Normalize(Vector(p.x, p.y, 0)) * 0.35;
    ASSERT_NEAR(Length(p - centre), 0.15, 1e-7);
    ASSERT_NEAR(Length(Normalize(p - centre) - torus.normals[i]), 0, 1e-6);
  }
  EXPECT_EQ(int(torus.positions.size()) - int(EdgesByPlace(torus).size() / 2) + int(torus.indices.size() / 3), 0);
}
