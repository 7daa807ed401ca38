#include "library/ModelCache.h"
#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"
#include "tests/support/TempFolder.h"

#include <boost/lexical_cast.hpp>

#include <cstring>
#include <memory>

using namespace Vek::Chart;
using Library::ModelCache;
using Vek::Test::Lines;
using Vek::Test::ReportCapture;
using Vek::Test::TempFolder;
using Vector = Types::Vector3_Base<double>;

namespace {

const std::string Undecided = "unsigned int __cdecl `anonymous-namespace'::NumPrimitives(const enum "
                              "Vek::Chart::Ogl::VertexBuffer::PrimitiveType,const unsigned int) @line50";
const std::string NoVertices =
    "\"p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"\" - class Vek::Chart::Ogl::Buffer<class "
    "Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec3<float> > > __cdecl "
    "Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum Vek::Chart::Ogl::BufferUsage::Kind)";
const std::string NoIndices =
    "\"p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"\" - class Vek::Chart::Ogl::Buffer<class "
    "Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec1<unsigned int> > > __cdecl "
    "Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum Vek::Chart::Ogl::BufferUsage::Kind)";
const std::string NotMapped = "\"p_records.Count() == p_buffer.Count()\" - unsigned __int64 __cdecl "
                              "Vek::Chart::Library::ModelCache::Register(const class vekfile::filepath &)";

const char* const Triangle = "v 0 0 0\nv 1 0 0\nv 0 2 0\nf 1 2 3\n";
// Two named groups behind the default one, which stays empty.
const char* const Tent =
    "g front\nv 0 0 0.1\nv 1 0 0.2\nv 0 1 0.3\nv 1 1 0.4\nvn 1 0 0\nvn 0 1 0\nvn 0 0 1\nvn 0 0 -1\n"
    "f 1//1 2//2 3//3\ng back\nf 3//3 2//2 4//4\nf 4//4 2//2 1//1\n";

class ModelCacheCalls : public Vek::Test::RecordingFixture {
protected:
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
  const ModelCache::VertexBuffer vertices = cache->GetVertexBuffer(0);
  EXPECT_EQ(vertices.attributes, 3u);
  EXPECT_EQ(vertices.positionStride, 24u);
  EXPECT_EQ(vertices.normalStride, 24u);
  EXPECT_EQ(vertices.positionOffset, 0u);
  EXPECT_EQ(vertices.normalOffset, 12u);
  EXPECT_EQ(vertices.buffer.Count(), 8u);
  EXPECT_EQ(Vertices(0), (std::vector<float>{0, 0, 0.1f, 1, 0, 0, 1, 0, 0.2f, 0, 1, 0, //
                                             0, 1, 0.3f, 0, 0, 1, 1, 1, 0.4f, 0, 0, -1}));
  const ModelCache::IndexBuffer indices = cache->GetIndexBuffer(0);
  EXPECT_EQ(indices.type, Ogl::VertexBuffer::Triangles);
  EXPECT_EQ(indices.first, 0u);
  EXPECT_EQ(indices.count, 3u);
  EXPECT_EQ(indices.buffer.Count(), 9u);
  EXPECT_EQ(Indices(0), (std::vector<unsigned int>{0, 1, 2, 2, 1, 3, 3, 1, 0}));
  // The box of the floats, not of the numbers in the file.
  EXPECT_EQ(cache->GetBoundingBox(0).Min(), Vector(0, 0, double(0.1f)));
  EXPECT_EQ(cache->GetBoundingBox(0).Max(), Vector(1, 1, double(0.4f)));
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(ModelCacheCalls, PositionsAloneAreTight) {
  Register(Triangle);
  const ModelCache::VertexBuffer vertices = cache->GetVertexBuffer(0);
  EXPECT_EQ(vertices.attributes, 1u);
  EXPECT_EQ(vertices.positionStride, 12u);
  EXPECT_EQ(vertices.normalStride, 0u);
  EXPECT_EQ(vertices.normalOffset, 0u);
  EXPECT_EQ(Vertices(0), (std::vector<float>{0, 0, 0, 1, 0, 0, 0, 2, 0}));
  EXPECT_EQ(cache->GetIndexBuffer(0).count, 1u);
}

TEST_F(ModelCacheCalls, BuffersAreMadeAndMappedThroughTheArrayTarget) {
  Register(Triangle);
  const Lines uploads = recorder.LinesOf({"GenBuffers", "BindBuffer", "BufferData", "MapBufferRange", "UnmapBuffer"});
  const Lines expected{
      "GenBuffers(1, [3001])",
      "BindBuffer(GL_ARRAY_BUFFER, 3001)",
      "BufferData(GL_ARRAY_BUFFER, 36, null, GL_STATIC_DRAW)",
      "BindBuffer(GL_ARRAY_BUFFER, 0)",
      "GenBuffers(1, [3002])",
      "BindBuffer(GL_ARRAY_BUFFER, 3002)",
      "BufferData(GL_ARRAY_BUFFER, 12, null, GL_STATIC_DRAW)",
      "BindBuffer(GL_ARRAY_BUFFER, 0)",
      "BindBuffer(GL_ARRAY_BUFFER, 3001)",
      "MapBufferRange(GL_ARRAY_BUFFER, 0, 36, GL_MAP_WRITE_BIT|GL_MAP_INVALIDATE_RANGE_BIT)",
      "BindBuffer(GL_ARRAY_BUFFER, 3001)",
      "UnmapBuffer(GL_ARRAY_BUFFER)",
      "BindBuffer(GL_ARRAY_BUFFER, 0)",
      "BindBuffer(GL_ARRAY_BUFFER, 3002)",
      "MapBufferRange(GL_ARRAY_BUFFER, 0, 12, GL_MAP_WRITE_BIT|GL_MAP_INVALIDATE_RANGE_BIT)",
      "BindBuffer(GL_ARRAY_BUFFER, 3002)",
      "UnmapBuffer(GL_ARRAY_BUFFER)",
      "BindBuffer(GL_ARRAY_BUFFER, 0)",
  };
  EXPECT_EQ(uploads, expected);
}

TEST_F(ModelCacheCalls, PrimitivesAreCountedOverAllIndices) {
  struct Case {
    const char* name;
    std::string lines;
    Ogl::VertexBuffer::PrimitiveType type;
    std::uint32_t count;
    std::size_t indices;
  };
  const std::string vertices = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
  std::string twelve;
  for (int i = 0; i < 12; ++i)
    twelve += (i == 5 ? "g second\nf 1 2 3\n" : "f 1 2 3\n");
  const Case cases[] = {
      {"segments", "l 1 2\nl 2 3\n", Ogl::VertexBuffer::LineSegments, 2, 4},
      {"twelve triangles in two groups", twelve, Ogl::VertexBuffer::Triangles, 12, 36},
      {"a segment behind triangles", "f 1 2 3\nf 1 2 3\nl 1 2\n", Ogl::VertexBuffer::Triangles, 2, 8},
      {"a triangle behind a segment", "l 1 2\nf 1 2 3\n", Ogl::VertexBuffer::LineSegments, 2, 5},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    const ModelCache::IndexBuffer indices = cache->GetIndexBuffer(Register(vertices + row.lines));
    EXPECT_EQ(indices.type, row.type);
    EXPECT_EQ(indices.count, row.count);
    EXPECT_EQ(indices.buffer.Count(), row.indices);
  }
}

TEST_F(ModelCacheCalls, AnIndexOutsideIsUploadedAsRead) {
  const ReportCapture reports;
  Register("v 0 0 0\nf 1 0 9\n");
  EXPECT_EQ(Indices(0), (std::vector<unsigned int>{0, 4294967295u, 8}));
}

TEST_F(ModelCacheCalls, EmptyModelsAreReportedAndRegistered) {
  struct Case {
    const char* name;
    std::string path;
    Lines reports;
    std::size_t vertices, indices;
  };
  const Case cases[] = {
      {"missing", (folder.Path() / "missing.obj").string(), {Undecided, NoVertices, NoIndices}, 0, 0},
      {"positions only", folder.Write("v.obj", "v 1 2 3\n"), {Undecided, NoIndices}, 1, 0},
  };
  std::size_t id = 0;
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    const ReportCapture reports;
    EXPECT_EQ(cache->Register(row.path), id);
    EXPECT_EQ(reports.Texts(), row.reports);
    EXPECT_EQ(cache->GetVertexBuffer(id).attributes, 1u);
    EXPECT_EQ(cache->GetVertexBuffer(id).buffer.Count(), row.vertices);
    EXPECT_EQ(cache->GetIndexBuffer(id).buffer.Count(), row.indices);
    EXPECT_EQ(cache->GetIndexBuffer(id).count, 0u);
    EXPECT_EQ(cache->GetBoundingBox(id).Empty(), row.vertices == 0);
    ++id;
  }
}

TEST_F(ModelCacheCalls, EachRegistrationGetsItsOwnId) {
  const std::string path = folder.Write("twice.obj", Triangle);
  EXPECT_EQ(cache->Register(path), 0u);
  EXPECT_EQ(cache->Register(path), 1u);
  EXPECT_NE(cache->GetVertexBuffer(0).buffer.Name(), cache->GetVertexBuffer(1).buffer.Name());
}

TEST_F(ModelCacheCalls, AFailedRegistrationLeavesNothingBehind) {
  Register(Triangle);
  const Lines before = recorder.Lines();
  EXPECT_THROW(Register("v 0 0 zero\n"), boost::bad_lexical_cast);
  EXPECT_EQ(recorder.Lines(), before);
  EXPECT_EQ(Register(Tent), 1u);
  EXPECT_EQ(cache->GetIndexBuffer(1).count, 3u);
  EXPECT_EQ(cache->GetVertexBuffer(1).attributes, 3u);
  EXPECT_EQ(cache->GetBoundingBox(1).Max().x, 1);
  EXPECT_EQ(Vertices(1).size(), 24u);
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
    EXPECT_EQ(cache->GetVertexBuffer(id).attributes, 0u);
    EXPECT_EQ(cache->GetVertexBuffer(id).buffer.Name(), 0u);
    EXPECT_EQ(cache->GetIndexBuffer(id).count, 0u);
    EXPECT_EQ(cache->GetIndexBuffer(id).buffer.Name(), 0u);
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
