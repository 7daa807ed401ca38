// The files of symbols/: written by the program of tools/, equal to the glyphs.

#include "library/ObjModel.h"
#include "library/VectorSymbol.h"
#include "testing/Surface.h"
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

/// The files of a folder: their bytes by name.
std::map<std::string, std::string> Files(const fs::path& p_folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(p_folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    files[entry.path().filename().string()].assign(std::istreambuf_iterator<char>(file), {});
  }
  return files;
}

std::vector<Surface::Vector> Vectors(const Library::ObjModel::VertexArray& p_array) {
  std::vector<Surface::Vector> vectors;
  for (const auto& element : p_array)
    vectors.emplace_back(element.x, element.y, element.z);
  return vectors;
}

} // namespace

TEST(SymbolFiles, AreWrittenByTheProgram) {
#if !defined(VEK_MAKE_SYMBOLS)
  GTEST_SKIP() << "vek-make-symbols is not built (VEK_BUILD_EXAMPLES is off)";
#else
  const TempFolder temporary;
  EXPECT_EQ(std::system((std::string(VEK_MAKE_SYMBOLS) + " '" + temporary.Path().string() + "'").c_str()), 0);
  auto made = Files(temporary.Path()), kept = Files(Folder);
  EXPECT_EQ(made.size(), kept.size());
  for (const auto& [name, bytes] : kept)
    EXPECT_TRUE(made[name] == bytes) << name;
#endif
}

TEST(SymbolFiles, EqualTheGlyphs) {
  for (const auto& [name, shape] : Glyphs) {
    SCOPED_TRACE(name);
    const auto model = Library::LoadPolygonObjFile((Folder / name).string());
    std::vector<unsigned int> indices;
    for (const auto& group : *model->Groups())
      indices.insert(indices.end(), group->indices.begin(), group->indices.end());
    Ogl::VertexData data;
    EXPECT_TRUE(Library::VectorSymbol(shape, 24).BuildShape(data));
    const Surface glyph = SurfaceOf(data);
    EXPECT_EQ(model->PrimitiveType(), data.PrimitiveType().Value());
    EXPECT_EQ(Vectors(*model->Vertices()), glyph.positions);
    const bool triangles = model->PrimitiveType() == Ogl::VertexBuffer::Triangles; // the other files have no normals
    EXPECT_EQ(Vectors(*model->Normals()), triangles ? glyph.normals : std::vector<Surface::Vector>());
    EXPECT_EQ(indices, glyph.indices);
  }
}
