// The files of symbols/: written by the program of tools/, equal to the glyphs.

#include "library/ObjModel.h"
#include "library/VectorSymbol.h"
#include "tests/support/Surface.h"
#include "tests/support/Test.h"

#include <iterator>

using namespace Vek::Chart::Model::Symbol;

namespace {

const fs::path Folder = fs::path(VEK_SOURCE_DIR) / "symbols";

/// The files whose vertices are those of VectorSymbol.
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
    if (type != Ogl::VertexBuffer::Triangles) // their files have none
      normals.clear();
  }
};

} // namespace

TEST(SymbolFiles, AreWrittenByTheProgram) {
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

TEST(SymbolFiles, EqualTheGlyphs) {
  for (const auto& [name, shape] : Glyphs) {
    SCOPED_TRACE(name);
    const Mesh mesh(name), glyph(shape);
    EXPECT_EQ(mesh.type, glyph.type);
    EXPECT_EQ(mesh.positions, glyph.positions);
    EXPECT_EQ(mesh.normals, glyph.normals);
    EXPECT_EQ(mesh.indices, glyph.indices);
  }
}
