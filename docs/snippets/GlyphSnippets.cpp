// The examples of the reference for glyphs and models: what stands between two marks is shown there.

#include "library/ColorMap.h"
#include "library/ComputeNormals.h"
#include "library/Icosphere.h"
#include "library/ModelCache.h"
#include "library/ObjModel.h"
#include "library/StreamLineShape.h"
#include "library/SymbolRegistry.h"
#include "library/TriangulatePolygon.h"
#include "library/VectorSymbol.h"
#include "platform/ogl/BufferDraw.h"
#include "platform/ogl/ShaderProgram.h"
#include "testing/Surface.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Library;
using Types::Matrix3;

namespace {

using GlyphSnippetPixels = Testing::PixelScopeFixture;

const char* const Ship = "v -1 -1 0\nv 1 -1 0\nv 0 1 0\nf 1 2 3\n";

TEST_F(GlyphSnippetPixels, VectorSymbol) {
  const double speed = 0.5;
  //! [VectorSymbol]
  const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 16); // 16 segments around
  const Matrix3 toEast = Matrix3::FromAxis({1, 0, 0});       // its axis becomes +x
  const Point point(-0.75, 0, 0);
  Ogl::VertexData data;
  if (arrow.OrientShape(speed, 0, point, false, 0, 1, toEast, data)) // false for a speed of 0
    data.Draw(gl);
  //! [VectorSymbol]
  EXPECT_EQ(At(20, 18), QColor(Qt::white));
}

TEST(GlyphSnippets, ArrowLength) {
  //! [ArrowLength]
  const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 16);
  const double scale = 0.25 / arrow.Length(); // 1 m/s shall be 0.25 long
  const double speed = 12;                    // m/s
  const Matrix3 toEast = Matrix3::FromAxis({1, 0, 0});
  Ogl::VertexData data;
  arrow.OrientShape(speed, 0, {10, 0, 0}, false, 0, scale, toEast, data); // from x = 10 to 10 + 12 × 0.25 = 13
  //! [ArrowLength]
  const auto bounds = Testing::BoundsOf(Testing::VectorsOf(data.Vertices()));
  EXPECT_NEAR(bounds.Max().x, 13, 1e-5);
}

TEST(GlyphSnippets, Frame) {
  const Point direction(1, 2, 2);
  //! [Frame]
  const Point up(0, 0, 1); // flat glyphs face upwards
  const Matrix3 frame = Matrix3::FromAxis(direction, up);
  //! [Frame]
  EXPECT_NEAR(Types::Length(frame * Point(0, 0, 3) - direction), 0, 1e-12);
}

TEST(GlyphSnippets, Layer) {
  //! [Layer]
  const std::vector<Point> positions = {{0, 0, 0}, {5, 0, 0}, {9, 0, 0}};
  const std::vector<Matrix3> rotations(positions.size()); // all along +z
  const std::vector<double> speeds = {1, 0, 2};

  VectorSymbol::Instances instances;
  instances.count = positions.size();
  instances.positions = positions.data();
  instances.rotations = rotations.data();
  instances.sizes = speeds.data();
  instances.texCoords = speeds.data(); // to be looked up in a ColorMap

  const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 8);
  Ogl::VertexData data; // kept: a layer that is built again writes into the same arrays
  const std::size_t shown = arrow.OrientShapes(instances, 0, 1, data); // 2: the calm one is left out
  //! [Layer]
  EXPECT_EQ(shown, 2U);
}

TEST(GlyphSnippets, DirectedLayer) {
  //! [DirectedLayer]
  const std::vector<Point> positions = {{0, 0, 0}, {5, 0, 0}, {9, 0, 0}};
  const std::vector<Point> winds = {{3, 4, 0}, {0, 0, 0}, {0, -2, 0}}; // m/s

  const VectorSymbol arrow(Model::Symbol::ShapeArrow2D, 8);
  VectorSymbol::DirectedInstances instances;
  instances.count = positions.size();
  instances.positions = positions.data();
  instances.directions = winds.data(); // their lengths are the sizes, since there are no others
  Ogl::VertexData data;
  const VectorSymbol::DirectedCounts counts = arrow.OrientAlong(instances, 0, 1 / arrow.Length(), data);
  // counts.written is 2; counts.undirected is 1, the calm one
  //! [DirectedLayer]
  EXPECT_EQ(std::pair(counts.written, counts.undirected), std::pair(std::size_t(2), std::size_t(1)));
}

TEST(GlyphSnippets, ComputeNormals) {
  //! [ComputeNormals]
  const std::vector<Point> positions = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}};
  const std::vector<std::uint32_t> triangles = {0, 1, 2, 0, 2, 3};
  const std::vector<Point> normals =
      ComputeNormals(positions.data(), positions.size(), triangles.data(), triangles.size());
  //! [ComputeNormals]
  EXPECT_EQ(normals, std::vector<Point>(4, {0, 0, 1}));
}

TEST(GlyphSnippets, TriangulatePolygon) {
  //! [TriangulatePolygon]
  const std::vector<Point> arrowHead = {{0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {0, 4, 0}}; // concave at its third corner
  const std::vector<std::uint32_t> triangles = TriangulatePolygon(arrowHead.data(), arrowHead.size());
  //! [TriangulatePolygon]
  EXPECT_EQ(triangles.size(), 6u);
}

TEST(GlyphSnippets, Icosphere) {
  //! [Icosphere]
  const Icosphere sphere(2); // 320 triangles
  const double radius = 5;
  std::vector<Point> positions;
  for (const Point& point : sphere.positions)
    positions.push_back(point * radius);
  //! [Icosphere]
  EXPECT_EQ(std::pair(positions.size(), sphere.indices.size()), std::pair(std::size_t(162), std::size_t(960)));
}

TEST_F(GlyphSnippetPixels, MappedLayer) {
  const std::vector<Point> positions = {{-0.6, 0, 0}, {0, 0, 0}, {0.6, 0, 0}};
  const std::vector<Matrix3> rotations(3);
  const std::vector<double> sizes(3, 0.5), values = {0, 0.5, 1};
  VectorSymbol::Instances instances;
  instances.count = 3;
  instances.positions = positions.data();
  instances.rotations = rotations.data();
  instances.sizes = sizes.data();
  instances.texCoords = values.data();
  const VectorSymbol glyph(Model::Symbol::ShapePlane, 8);
  const ColorMap colors({Qt::red, Qt::green, Qt::blue}, ColorMap::Discrete);
  std::size_t written = 0;
  //! [MappedLayer]
  const std::size_t vertices = instances.count * glyph.VertexCount(), indices = instances.count * glyph.IndexCount();
  Ogl::BufferDraw draw;
  draw.type = Ogl::VertexBuffer::Triangles;
  draw.attributes = Ogl::BufferDraw::Positions | Ogl::BufferDraw::TexCoords; // normals are not wanted here
  draw.texCoordOffset = static_cast<unsigned int>(3 * vertices * sizeof(float));
  using Record = Ogl::Attribute<Ogl::Vec3<float>>;
  using Index = Ogl::Attribute<Ogl::Vec1<unsigned int>>;
  draw.vertices = gl->GetBufferPool().CreateBuffer<Record>((4 * vertices + 2) / 3, Ogl::BufferUsage::Stream);
  draw.indices = gl->GetBufferPool().CreateBuffer<Index>(indices, Ogl::BufferUsage::Stream);
  {
    using Ogl::BufferPool;
    const BufferPool::WriteArray<Record> mapped(draw.vertices, 0, draw.vertices.Count(), RGL_ARRAY_BUFFER);
    const BufferPool::WriteArray<Index> mappedIndices(draw.indices, 0, indices, RGL_ELEMENT_ARRAY_BUFFER);
    VectorSymbol::LayerMemory memory;
    memory.indices = mappedIndices;
    if (mapped.Count() != 0) {
      memory.vertices = {&mapped.Data()->x, 3 * vertices};
      memory.texCoords = {&mapped.Data()->x + 3 * vertices, vertices};
      written = glyph.OrientShapes(instances, 0.5, 1, memory);
    }
  } // unmapped: the buffers may be drawn from
  colors(gl, RGL_TEXTURE0);
  if (written == instances.count)
    draw.Draw(gl);
  //! [MappedLayer]
  const auto at = [&](int p_x) { return At(p_x, FrameSize.height / 2); };
  EXPECT_EQ(std::tuple(at(FrameSize.width / 5), at(FrameSize.width / 2), at(FrameSize.width * 4 / 5)),
            std::tuple(QColor(Qt::red), QColor(Qt::green), QColor(Qt::blue)));
}

TEST(GlyphSnippets, StreamLineShape) {
  const struct {
    double width;
    Point position;
    Matrix3 frame;
  } line[] = {{0.5, {0, 0, 0}, {}}, {0.5, {0, 0, 1}, {}}};
  std::size_t vertices = 0;
  const auto append = [&](const std::vector<Point>& p_ring, const std::vector<Point>&) { vertices += p_ring.size(); };
  //! [StreamLineShape]
  const StreamLineShape tube(StreamLineShape::ShapeTube, {});
  std::vector<Point> ring;
  std::vector<Point> normals;
  for (const auto& sample : line)
    if (tube.OrientShape(sample.width, sample.position, 1.0, sample.frame, ring, normals)) // into the same vectors
      append(ring, normals);
  //! [StreamLineShape]
  EXPECT_EQ(vertices, 24U);
}

TEST(GlyphSnippets, ObjModel) {
  std::size_t drawn = 0;
  const auto draw = [&](Ogl::VertexBuffer::PrimitiveType, const std::vector<std::uint32_t>& p_indices) {
    drawn += p_indices.size();
  };
  const vekfile::filepath symbols(VEK_SOURCE_DIR "/symbols");
  //! [ObjModel]
  const boost::shared_ptr<ObjModel> cube = LoadPolygonObjFile(symbols + "Cube.obj");
  const double width = cube->Bounds().Extent().x; // 1
  for (const boost::shared_ptr<ObjModel::ObjGroup>& group : *cube->Groups())
    draw(cube->PrimitiveType(), group->indices); // into *cube->Vertices() and *cube->Normals()
  //! [ObjModel]
  EXPECT_EQ(std::pair(width, drawn), std::pair(1.0, std::size_t(36)));
}

TEST_F(GlyphSnippetPixels, ModelCacheAndBufferDraw) {
  const Testing::TempFolder folder;
  const std::string file = folder.Write("ship.obj", Ship);
  //! [ModelCache]
  ModelCache cache(handle);
  const std::size_t ship = cache.Register(file);        // reads it, once
  const ModelCache::Model model = cache.GetModel(ship); // vertices, indices and bounds
  //! [ModelCache]
  //! [BufferDraw]
  const Ogl::BufferDraw draw = ModelDraw(model); // or field by field, for buffers of your own
  draw.Draw(gl);
  //! [BufferDraw]
  EXPECT_EQ(std::pair(At(30, 10), model.bounds.Max()), std::pair(QColor(Qt::white), Point(1, 1, 0)));
}

TEST_F(GlyphSnippetPixels, SymbolRegistry) {
  const Testing::TempFolder folder;
  const vekfile::filepath ship = folder.Write("ship.obj", Ship);
  const vekfile::filepath folderOfSymbols(VEK_SOURCE_DIR "/symbols");
  //! [SymbolRegistry]
  const Core::Ptr<ModelCache> cache(new ModelCache(handle));
  SymbolRegistry symbols(cache, folderOfSymbols); // reads the built-in models
  const ModelCache::IndexBuffer cone = symbols.GetIndexBuffer(Model::Symbol::ShapeCone);

  symbols.LoadModel(ship); // one of your own
  const ModelCache::VertexBuffer hull = symbols.GetVertexBuffer(ship);
  //! [SymbolRegistry]
  EXPECT_TRUE(cone.count > 0 && hull.buffer.Count() == 3);
}

} // namespace
