#include "library/ModelCache.h"
#include "tests/support/Test.h"

using Vector = Types::Vector3_Base<double>;

namespace {

const std::string Undecided = "unsigned int __cdecl `anonymous-namespace'::NumPrimitives(const enum "
                              "Vek::Chart::Ogl::VertexBuffer::PrimitiveType,const unsigned int) @line50";
/// No buffer of that many components is made for nothing.
std::string NoBytes(const std::string& p_component) {
  return "\"p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"\" - class Vek::Chart::Ogl::Buffer<class "
         "Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::" +
         p_component +
         "> > > __cdecl Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum "
         "Vek::Chart::Ogl::BufferUsage::Kind)";
}
const std::string NoVertices = NoBytes("Vec3<float");
const std::string NoIndices = NoBytes("Vec1<unsigned int");
const std::string NotMapped = "\"p_records.Count() == p_buffer.Count()\" - unsigned __int64 __cdecl "
                              "Vek::Chart::Library::ModelCache::Register(const class vekfile::filepath &)";

const char* const Triangle = "v 0 0 0\nv 1 0 0\nv 0 2 0\nf 1 2 3\n";
// Two named groups behind the default one, which stays empty.
const char* const Tent =
    "g front\nv 0 0 0.1\nv 1 0 0.2\nv 0 1 0.3\nv 1 1 0.4\nvn 1 0 0\nvn 0 1 0\nvn 0 0 1\nvn 0 0 -1\n"
    "f 1//1 2//2 3//3\ng back\nf 3//3 2//2 4//4\nf 4//4 2//2 1//1\n";

class ModelCacheCalls : public RecordingFixture {
public:
  template <class T>
  std::vector<T> Contents(unsigned int p_buffer) const {
    const std::vector<unsigned char> bytes = recorder.BufferBytes(p_buffer);
    std::vector<T> scalars(bytes.size() / sizeof(T));
    std::memcpy(scalars.data(), bytes.data(), bytes.size());
    return scalars;
  }
  std::vector<float> Vertices(std::size_t p_id) const {
    return Contents<float>(cache->GetVertexBuffer(p_id).buffer.Name());
  }
  std::vector<unsigned int> Indices(std::size_t p_id) const {
    return Contents<unsigned int>(cache->GetIndexBuffer(p_id).buffer.Name());
  }
  /// Attributes, strides and offsets of positions and normals, and the count.
  std::vector<std::size_t> Layout(std::size_t p_id) const {
    const ModelCache::VertexBuffer v = cache->GetVertexBuffer(p_id);
    return {v.attributes, v.positionStride, v.normalStride, v.positionOffset, v.normalOffset, v.buffer.Count()};
  }
  std::size_t Register(const std::string& p_text) { return cache->Register(folder.Write("model.obj", p_text)); }
  void TearDown() override {
    cache.reset();
    RecordingFixture::TearDown();
  }

  const TempFolder folder;
  std::unique_ptr<ModelCache> cache = std::make_unique<ModelCache>(recorder.Handle());
};

} // namespace

TEST_F(ModelCacheCalls, NormalsLieBetweenThePositions) {
  const ReportCapture reports;
  EXPECT_EQ(Register(Tent), 0u);
  EXPECT_EQ(Layout(0), (std::vector<std::size_t>{3, 24, 24, 0, 12, 8}));
  EXPECT_EQ(Vertices(0), (std::vector<float>{0, 0, 0.1f, 1, 0, 0, 1, 0, 0.2f, 0, 1, 0, //
                                             0, 1, 0.3f, 0, 0, 1, 1, 1, 0.4f, 0, 0, -1}));
  EXPECT_EQ(cache->GetIndexBuffer(0).first, 0u);
  EXPECT_EQ(Indices(0), (std::vector<unsigned int>{0, 1, 2, 2, 1, 3, 3, 1, 0}));
  // The box of the floats, not of the numbers in the file.
  EXPECT_EQ(cache->GetBoundingBox(0).Min(), Vector(0, 0, double(0.1f)));
  EXPECT_EQ(cache->GetBoundingBox(0).Max(), Vector(1, 1, double(0.4f)));
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(ModelCacheCalls, PositionsAloneAreTightAndIndicesAreUploadedAsRead) {
  const ReportCapture reports;
  Register("v 0 0 0\nv 1 0 0\nf 1 0 9\n");
  EXPECT_EQ(Layout(0), (std::vector<std::size_t>{1, 12, 0, 0, 0, 2}));
  EXPECT_EQ(Vertices(0), (std::vector<float>{0, 0, 0, 1, 0, 0}));
  EXPECT_EQ(Indices(0), (std::vector<unsigned int>{0, 4294967295u, 8}));
}

TEST_F(ModelCacheCalls, BuffersAreMadeAndMappedThroughTheArrayTarget) {
  Register(Triangle);
  const std::string map = ", GL_MAP_WRITE_BIT|GL_MAP_INVALIDATE_RANGE_BIT); ";
  EXPECT_EQ(recorder.LinesOf({"GenBuffers", "BufferData", "MapBufferRange", "UnmapBuffer"}),
            Calls("GenBuffers(1, [3001]); BufferData(GL_ARRAY_BUFFER, 36, null, GL_STATIC_DRAW); "
                  "GenBuffers(1, [3002]); BufferData(GL_ARRAY_BUFFER, 12, null, GL_STATIC_DRAW); "
                  "MapBufferRange(GL_ARRAY_BUFFER, 0, 36" +
                  map + "UnmapBuffer(GL_ARRAY_BUFFER); MapBufferRange(GL_ARRAY_BUFFER, 0, 12" + map +
                  "UnmapBuffer(GL_ARRAY_BUFFER)"));
}

TEST_F(ModelCacheCalls, PrimitivesAreCountedOverAllIndices) {
  const std::tuple<std::string, Ogl::VertexBuffer::PrimitiveType, std::uint32_t, std::size_t> rows[] = {
      {"l 1 2\nl 2 3\n", Ogl::VertexBuffer::LineSegments, 2, 4},
      {"f 1 2 3\ng second\nf 1 2 3\nf 3 2 1\n", Ogl::VertexBuffer::Triangles, 3, 9},
      {"f 1 2 3\nf 1 2 3\nl 1 2\n", Ogl::VertexBuffer::Triangles, 2, 8},
      {"l 1 2\nf 1 2 3\n", Ogl::VertexBuffer::LineSegments, 2, 5},
  };
  for (const auto& [lines, type, primitives, indices] : rows) {
    const auto buffer = cache->GetIndexBuffer(Register("v 0 0 0\nv 1 0 0\nv 0 1 0\n" + lines));
    EXPECT_EQ(std::tuple(buffer.type, buffer.count, buffer.buffer.Count()), std::tuple(type, primitives, indices))
        << lines;
  }
}

TEST_F(ModelCacheCalls, EmptyModelsAreReportedAndRegistered) {
  const std::pair<std::string, Lines> rows[] = {
      {(folder.Path() / "missing.obj").string(), {Undecided, NoVertices, NoIndices}},
      {folder.Write("v.obj", "v 1 2 3\n"), {Undecided, NoIndices}},
  };
  for (std::size_t id : {0, 1}) {
    SCOPED_TRACE(id);
    const ReportCapture reports;
    EXPECT_EQ(cache->Register(rows[id].first), id);
    EXPECT_EQ(reports.Texts(), rows[id].second);
    EXPECT_EQ(Layout(id), (std::vector<std::size_t>{1, 12, 0, 0, 0, id}));
    EXPECT_TRUE(cache->GetIndexBuffer(id).buffer.Count() == 0 && cache->GetIndexBuffer(id).count == 0);
    EXPECT_EQ(cache->GetBoundingBox(id).Empty(), id == 0);
  }
}

TEST_F(ModelCacheCalls, AFailedRegistrationLeavesNothingBehind) {
  Register(Triangle);
  const Lines before = recorder.Lines();
  EXPECT_THROW(Register("v 0 0 zero\n"), boost::bad_lexical_cast);
  EXPECT_EQ(recorder.Lines(), before);
  EXPECT_EQ(Register(Tent), 1u);
  EXPECT_EQ(Register(Tent), 2u) << "each has its own";
  EXPECT_EQ(Vertices(1), Vertices(2));
  EXPECT_NE(cache->GetVertexBuffer(1).buffer.Name(), cache->GetVertexBuffer(2).buffer.Name());
  EXPECT_TRUE(cache->GetIndexBuffer(1).count == 3 && cache->GetBoundingBox(1).Max().y == 1) << "all in step";
}

TEST_F(ModelCacheCalls, BuffersThatCannotBeMappedAreReportedOnce) {
  const ReportCapture reports;
  recorder.Fail("MapBufferRange");
  recorder.Fail("MapBufferRange", 2);
  Register(Tent);
  EXPECT_EQ(reports.Texts(), (Lines{NotMapped, NotMapped}));
  EXPECT_EQ(cache->GetVertexBuffer(0).buffer.Count(), 8u);
  recorder.TakeComplaints();
}

TEST_F(ModelCacheCalls, UnknownIdsGiveEmptyRecords) {
  Register(Triangle);
  const ReportCapture reports;
  for (const std::size_t id : {std::size_t(1), std::size_t(-1)}) {
    EXPECT_TRUE(cache->GetBoundingBox(id).Empty());
    EXPECT_TRUE(cache->GetVertexBuffer(id).attributes == 0 && cache->GetVertexBuffer(id).buffer.Name() == 0);
    EXPECT_TRUE(cache->GetIndexBuffer(id).count == 0 && cache->GetIndexBuffer(id).buffer.Name() == 0);
  }
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(ModelCacheCalls, ACopySharesTheBuffersAndGoesOnAlone) {
  Register(Triangle);
  auto copy = std::make_unique<ModelCache>(*cache);
  EXPECT_EQ(copy->GetVertexBuffer(0).buffer.Name(), cache->GetVertexBuffer(0).buffer.Name());
  EXPECT_EQ(Register(Tent), 1u);
  EXPECT_EQ(copy->GetIndexBuffer(1).count, 0u);
  recorder.Clear();
  cache.reset();
  EXPECT_EQ(recorder.LinesOf({"DeleteBuffers"}).size(), 2u); // those of the tent
  EXPECT_EQ(copy->GetIndexBuffer(0).count, 1u);
  copy.reset();
  EXPECT_EQ(recorder.LinesOf({"DeleteBuffers"}).size(), 4u);
}
