#include "library/SymbolRegistry.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Model::Symbol;

namespace {

const std::string BuiltIn = std::string(VEK_SOURCE_DIR) + "/symbols";

const std::string Class = "Vek::Chart::Library::SymbolRegistry::";
const std::string NoShape =
    "\"result != p_symbols.size() && \"No model loaded for this shape!\"\" - unsigned __int64 __cdecl " + Class +
    "FindSymbol(const class std::vector<struct " + Class + "SymbolID,class std::allocator<struct " + Class +
    "SymbolID> > &,const enum Vek::Chart::Model::Symbol::Shape)";
const std::string NoPath =
    "\"hashIndex < p_hashes.size() && \"No model loaded with this path, call LoadModel first.\"\" - unsigned __int64 "
    "__cdecl " +
    Class + "FindHashedSymbol(const class std::vector<struct " + Class + "HashID,class std::allocator<struct " + Class +
    "HashID> > &,const class vekfile::filepath &)";

/// A model of `p_count` equal triangles.
std::string Triangles(int p_count) {
  std::string text = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
  for (int i = 0; i < p_count; ++i)
    text += "f 1 2 3\n";
  return text;
}

class SymbolRegistryCalls : public RecordingFixture {
public:
  void TearDown() override {
    cache.reset();
    RecordingFixture::TearDown();
  }
  const TempFolder folder;
  Core::Ptr<ModelCache> cache{new ModelCache(recorder.Handle())};
};

} // namespace

TEST(PathHash, KnownValues) {
  for (const auto& [path, hash] :
       {std::pair("", 0), {"ab", 1229154139}, {"symbols/Cone.obj", 1987357810}, {"\xc3\xa9\xff.obj", 2121495954}})
    EXPECT_EQ(SymbolRegistry::HashID(path, 3).hash, hash) << path;
}

TEST_F(SymbolRegistryCalls, EveryShapeHasItsModel) {
  const ReportCapture reports;
  const SymbolRegistry symbols(cache, BuiltIn);
  const std::uint32_t primitives[] = {0, 0, 2, 3, 1, 3, 2, 48, 144, 48, 24, 164, 3, 12, 1280, 1024}; // by shape
  for (int i = ShapeArrowHead1D; i <= ShapeCustom; ++i) {
    SCOPED_TRACE(i);
    const Shape shape = static_cast<Shape>(i);
    const bool lines = i <= ShapeArrow1D || i == ShapeCrosshair;
    EXPECT_EQ(symbols.GetIndexBuffer(shape).type,
              lines ? Ogl::VertexBuffer::LineSegments : Ogl::VertexBuffer::Triangles);
    EXPECT_EQ(symbols.GetIndexBuffer(shape).count, primitives[i]);
    EXPECT_EQ(symbols.GetVertexBuffer(shape).attributes, lines ? 1u : 3u);
    EXPECT_FALSE(symbols.GetBoundingBox(shape).Empty());
    EXPECT_EQ(symbols.GetIndexBuffer(shape).buffer.Name(), cache->GetIndexBuffer(std::size_t(i) - 2).buffer.Name());
  }
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(SymbolRegistryCalls, ShapesWithoutModelUseTheNextId) {
  SymbolRegistry symbols(cache, BuiltIn);
  const ReportCapture reports;
  for (const int shape : {0, 1, 16, -1})
    EXPECT_EQ(symbols.GetIndexBuffer(static_cast<Shape>(shape)).count, 0u) << shape;
  EXPECT_TRUE(symbols.GetBoundingBox(ShapePoint).Empty());
  EXPECT_EQ(symbols.GetVertexBuffer(ShapePoint).attributes, 0u);
  EXPECT_EQ(reports.Texts(), Lines(6, NoShape));
  // The first user model has that id.
  symbols.LoadModel(folder.Write("user.obj", Triangles(7)));
  EXPECT_EQ(symbols.GetIndexBuffer(ShapePoint).count, 7u);
}

TEST_F(SymbolRegistryCalls, PathsAreLoadedOncePerByteString) {
  SymbolRegistry symbols(cache, BuiltIn);
  const ReportCapture reports;
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  EXPECT_EQ(SymbolRegistry::HashID("gab.obj", 0).hash, SymbolRegistry::HashID("fzpwjmb.obj", 1).hash);
  const std::pair<const char*, int> models[] = {{"gab.obj", 5}, {"fzpwjmb.obj", 6}, {"Gab.obj", 7}};
  for (const auto& [name, count] : models) {
    folder.Write(name, Triangles(count));
    symbols.LoadModel(name);
    symbols.LoadModel(name);
  }
  folder.Write("gab.obj", Triangles(50)); // a change of the file is not seen
  symbols.LoadModel("gab.obj");
  fs::current_path(before);

  for (const auto& [name, count] : models)
    EXPECT_EQ(symbols.GetIndexBuffer(vekfile::filepath(name)).count, std::uint32_t(count)) << name;
  EXPECT_EQ(cache->GetIndexBuffer(17).count, 0u); // 14 + 3 and no more
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(SymbolRegistryCalls, UnloadedPathsGiveTheFirstModel) {
  SymbolRegistry symbols(cache, BuiltIn);
  const vekfile::filepath path = folder.Write("late.obj", "v 1 2 three\n");
  EXPECT_THROW(symbols.LoadModel(path), boost::bad_lexical_cast);
  const ReportCapture reports;
  EXPECT_EQ(symbols.GetIndexBuffer(path).buffer.Name(), cache->GetIndexBuffer(0).buffer.Name());
  EXPECT_EQ(symbols.GetVertexBuffer(path).buffer.Name(), cache->GetVertexBuffer(0).buffer.Name());
  EXPECT_TRUE(symbols.GetBoundingBox(path) == cache->GetBoundingBox(0));
  EXPECT_EQ(reports.Texts(), Lines(3, NoPath));
  folder.Write("late.obj", Triangles(4));
  symbols.LoadModel(path); // after a failure the path may be loaded again
  EXPECT_EQ(symbols.GetIndexBuffer(path).count, 4u);
}

TEST_F(SymbolRegistryCalls, SinksMayLoadOtherModels) {
  struct Sink : vekdebug::sink {
    void write(const vekdebug::report&) override { symbols->LoadModel(path); }
    SymbolRegistry* symbols = nullptr;
    vekfile::filepath path;
  };
  SymbolRegistry symbols(cache, BuiltIn);
  const vekfile::filepath reported = folder.Write("points.obj", "v 0 0 0\nv 1 0 0\n");
  const auto sink = std::make_shared<Sink>();
  sink->symbols = &symbols;
  sink->path = folder.Write("other.obj", Triangles(7));
  const std::shared_ptr<vekdebug::sink> previous = vekdebug::logger::instance().set_sink(sink);
  symbols.LoadModel(reported);
  vekdebug::logger::instance().set_sink(previous);
  EXPECT_EQ(symbols.GetVertexBuffer(reported).buffer.Count(), 2u);
  EXPECT_EQ(symbols.GetIndexBuffer(sink->path).count, 7u);
}

TEST_F(SymbolRegistryCalls, ReleasedPathsAreLoadedAnew) {
  SymbolRegistry symbols(cache, BuiltIn);
  const vekfile::filepath path = folder.Write("ship.obj", Triangles(4));
  EXPECT_FALSE(symbols.ReleaseModel(path));
  symbols.LoadModel(path);
  EXPECT_EQ(symbols.GetModel(path).indices.count, 4u);
  EXPECT_EQ(symbols.GetModel(ShapeCube).indices.count, 12u);
  EXPECT_TRUE(symbols.ReleaseModel(path));
  EXPECT_FALSE(symbols.ReleaseModel(path));
  EXPECT_EQ(cache->GetIndexBuffer(14).count, 0u);
  const ReportCapture reports;
  EXPECT_EQ(symbols.GetModel(path).vertices.buffer.Name(), cache->GetVertexBuffer(0).buffer.Name());
  EXPECT_EQ(reports.Texts(), Lines{NoPath}) << "once for all records";
  folder.Write("ship.obj", Triangles(9));
  symbols.LoadModel(path);
  EXPECT_EQ(cache->GetIndexBuffer(15).count, 9u);
}

TEST_F(SymbolRegistryCalls, EmptyOnMissingBuiltInThrowsOnBrokenOne) {
  const ReportCapture reports;
  EXPECT_EQ(SymbolRegistry(cache, folder.Path().string()).GetIndexBuffer(ShapeCone).buffer.Count(), 0u);
  folder.Write("ArrowHead1D.obj", "v 0 0 none\n");
  EXPECT_THROW(SymbolRegistry(cache, folder.Path().string()), boost::bad_lexical_cast);
  // Built-in models follow those that are in the cache already.
  EXPECT_EQ(SymbolRegistry(cache, BuiltIn).GetIndexBuffer(ShapeCube).count, 12u);
}
