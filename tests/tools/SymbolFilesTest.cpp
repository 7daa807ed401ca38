// The files of symbols/: that they are what the program of tools/ writes, and that they are good models.

#include "library/ObjModel.h"
#include "library/VectorSymbol.h"
#include "tests/support/Surface.h"
#include "tests/support/Test.h"

#include <iterator>

using namespace Vek::Chart::Model::Symbol;

namespace {

const fs::path Folder = fs::path(VEK_SOURCE_DIR) / "symbols";

/// Those that agree with VectorSymbol vertex by vertex.
const std::pair<const char*, Shape> Glyphs[] = {
    {"ArrowHead1D.obj", ShapeArrowHead1D},
    {"Arrow1D.obj", ShapeArrow1D},
    {"ArrowHead2D.obj", ShapeArrowHead2D},
    {"Arrow2D.obj", ShapeArrow2D},
    {"Plane.obj", ShapePlane},
    {"ArrowHead3D.obj", ShapeArrowHead3D},
    {"Arrow3D.obj", ShapeArrow3D},
    {"Cylinder.obj", ShapeCylinder},
    {"Cone.obj", ShapeCone},
    {"Cube.obj", ShapeCube},
    {"Crosshair.obj", ShapeCrosshair},
    {"CircularArrow3D.obj", ShapeCircularArrow3D},
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

std::vector<Vector> Vectors(const Library::ObjModel::VertexArray& p_array) {
  std::vector<Vector> vectors;
  for (const auto& element : p_array)
    vectors.emplace_back(element.x, element.y, element.z);
  return vectors;
}

struct Mesh : Surface {
  Ogl::VertexBuffer::PrimitiveType type;

  explicit Mesh(const std::string& p_name) {
    const auto model = Library::LoadPolygonObjFile((Folder / p_name).string());
    positions = Vectors(*model->Vertices());
    normals = Vectors(*model->Normals());
    for (const auto& group : *model->Groups())
      indices.insert(indices.end(), group->indices.begin(), group->indices.end());
    type = model->PrimitiveType();
  }
  explicit Mesh(Shape p_shape) {
    Ogl::VertexData glyph;
    EXPECT_TRUE(Library::VectorSymbol(p_shape, 24).BuildShape(glyph));
    static_cast<Surface&>(*this) = SurfaceOf(glyph);
    type = glyph.PrimitiveType().Value();
    if (type != Ogl::VertexBuffer::Triangles) // the files of these have none
      normals.clear();
  }
};

/// Passes when the surface has no edge, faces outwards as its normals do, and has that many handles.
void ExpectSolid(const Surface& p_mesh, int p_handles) {
  EXPECT_TRUE(IsClosed(p_mesh));
  EXPECT_GT(EnclosedVolume(p_mesh), 0);
  EXPECT_EQ(EulerNumber(p_mesh), 2 - 2 * p_handles);
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3) {
    const Vector first = p_mesh.Corner(i), face = Cross(p_mesh.Corner(i + 1) - first, p_mesh.Corner(i + 2) - first);
    for (std::size_t k = i; k < i + 3; ++k)
      ASSERT_GT(Dot(face, p_mesh.normals[p_mesh.indices[k]]), 0) << "triangle " << i / 3;
  }
}

} // namespace

TEST(SymbolFiles, AreThoseThatTheProgramWrites) {
#if !defined(VEK_MAKE_SYMBOLS)
  GTEST_SKIP() << "vek-make-symbols is not built (VEK_BUILD_EXAMPLES is off)";
#else
  const Vek::Test::TempFolder temporary;
  EXPECT_EQ(std::system((std::string(VEK_MAKE_SYMBOLS) + " '" + temporary.Path().string() + "'").c_str()), 0);
  EXPECT_EQ(Names(temporary.Path()), Names(Folder));
  for (const std::string& name : Names(Folder))
    EXPECT_TRUE(Bytes(temporary.Path() / name) == Bytes(Folder / name)) << name;
#endif
}

TEST(SymbolFiles, GiveEachVertexOneNormalAndTheOneDimensionalOnesNone) {
  const Vek::Test::ReportCapture reports;
  const std::set<std::string> names = Names(Folder);
  EXPECT_EQ(names.size(), std::size(Glyphs) + 2); // the sphere and the torus
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    std::map<std::string, std::string> normalOf;
    std::istringstream text(Bytes(Folder / name));
    for (std::string word; text >> word;) { // only corners have slashes
      const std::size_t slashes = word.find("//");
      if (slashes != std::string::npos) {
        const std::string normal = word.substr(slashes + 2);
        ASSERT_EQ(normalOf.try_emplace(word.substr(0, slashes), normal).first->second, normal) << word;
      }
    }
    const Mesh mesh(name);
    const bool lines = mesh.type == Ogl::VertexBuffer::LineSegments;
    EXPECT_EQ(normalOf.size(), lines ? 0 : mesh.positions.size()); // no vertex is idle
    EXPECT_EQ(mesh.normals.size(), lines ? 0 : mesh.positions.size());
    for (const Vector& normal : mesh.normals)
      ASSERT_NEAR(Length(normal), 1, 1e-6);
  }
  EXPECT_TRUE(reports.Texts().empty());
}

TEST(SymbolFiles, ReadBackAsTheGlyphs) {
  for (const auto& [name, shape] : Glyphs) {
    SCOPED_TRACE(name);
    const Mesh mesh(name), glyph(shape);
    EXPECT_EQ(mesh.type, glyph.type);
    EXPECT_EQ(mesh.positions, glyph.positions);
    EXPECT_EQ(mesh.normals, glyph.normals);
    EXPECT_EQ(mesh.indices, glyph.indices);
  }
}

TEST(SymbolFiles, HoldARoundSphereOfTheGlyphsSize) {
  const Mesh sphere("IcoSphere.obj");
  EXPECT_TRUE(BoundsOf(sphere.positions) == BoundsOf(Mesh(ShapeSphere).positions));
  for (std::size_t i = 0; i < sphere.positions.size(); ++i) {
    ASSERT_NEAR(Length(sphere.positions[i]), 0.5, 1e-7);
    ASSERT_NEAR(Length(sphere.positions[i] - sphere.normals[i] * 0.5), 0, 1e-7);
  }
  ExpectSolid(sphere, 0);
}

TEST(SymbolFiles, HoldATorusOfOneUnit) {
  const Mesh torus("Torus.obj");
  const auto box = BoundsOf(torus.positions);
  EXPECT_EQ(box.Min(), Vector(-0.5, -0.5, -double(0.15f)));
  EXPECT_EQ(box.Max(), Vector(0.5, 0.5, double(0.15f)));
  for (std::size_t i = 0; i < torus.positions.size(); ++i) {
    const Vector& p = torus.positions[i];
    const Vector centre = Normalize(Vector(p.x, p.y, 0)) * 0.35;
    ASSERT_NEAR(Length(p - centre), 0.15, 1e-7);
    ASSERT_NEAR(Length(Normalize(p - centre) - torus.normals[i]), 0, 1e-6);
  }
  ExpectSolid(torus, 1);
}
