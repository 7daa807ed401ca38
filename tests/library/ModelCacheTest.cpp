#include "library/ModelCache.h"
#include "tests/support/Test.h"

using Vector = Types::Vector3_Base<double>;

namespace {

namespace Signature {
const std::string NumPrimitives = "unsigned int __cdecl `anonymous-namespace'::NumPrimitives(const enum "
                                  "Vek::Chart::Ogl::VertexBuffer::PrimitiveType,const unsigned int)";
const std::string Register = "unsigned __int64 __cdecl Vek::Chart::Library::ModelCache::Register(const class ";
const std::string RegisterPath = Register + "vekfile::filepath &)";
const std::string RegisterModel = Register + "Vek::Chart::Library::ObjModel &)";
} // namespace Signature

/// The report of a buffer that was not made, by its components.
std::string NotMade(const std::string& p_expression, const std::string& p_component) {
  return '"' + p_expression +
         "\" - class Vek::Chart::Ogl::Buffer<class Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::" + p_component +
         "> > > __cdecl Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum "
         "Vek::Chart::Ogl::BufferUsage::Kind)";
}
const std::string NoBytes = "p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"";
const std::string NoVertices = NotMade(NoBytes, "Vec3<float");
const std::string NoIndices = NotMade(NoBytes, "Vec1<unsigned int");
const std::string Undecided = Signature::NumPrimitives + " @line50";
const std::string Null = "\"void*(obj)\" - " + Signature::RegisterModel;

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
  EXPECT_EQ(Contents<unsigned int>(cache->GetIndexBuffer(0).buffer.Name()),
            (std::vector<unsigned int>{0, 1, 2, 2, 1, 3, 3, 1, 0}));
  // The box of the floats, not of the numbers in the file.
  EXPECT_EQ(cache->GetBoundingBox(0).Min(), Vector(0, 0, double(0.1f)));
  EXPECT_EQ(cache->GetBoundingBox(0).Max(), Vector(1, 1, double(0.4f)));
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(ModelCacheCalls, PrimitivesAreCountedOverAllIndices) {
  const auto model = Library::LoadPolygonObjFile(folder.Write("tent.obj", Tent)); // 9 indices
  const std::vector<std::uint32_t> counts = {9, 4, 8, 3, 7, 2, 3, 2};             // by type
  for (std::uint32_t type = 0; type < counts.size(); ++type) {
    model->SetPrimitiveType(static_cast<Ogl::VertexBuffer::PrimitiveType>(type));
    const auto indices = cache->GetIndexBuffer(cache->Register(*model));
    EXPECT_TRUE(indices.type == model->PrimitiveType() && indices.count == counts[type]) << type;
  }
}

TEST_F(ModelCacheCalls, FailedRegistrationsTakeNoIdUnknownIdsGiveEmptyRecords) {
  Register("v 0 0 0\nv 1 0 0\nv 0 2 0\nf 1 2 3\n");
  EXPECT_THROW(Register("v 0 0 zero\n"), boost::bad_lexical_cast);
  EXPECT_EQ(Register(Tent), 1u);
  EXPECT_EQ(Register(Tent), 2u) << "a new id each time";
  EXPECT_TRUE(cache->GetIndexBuffer(1).count == 3 && cache->GetBoundingBox(1).Max().y == 1) << "all in step";
  for (const std::size_t id : {std::size_t(3), std::size_t(-1)}) {
    EXPECT_TRUE(cache->GetBoundingBox(id).Empty());
    EXPECT_EQ(cache->GetVertexBuffer(id).attributes + cache->GetVertexBuffer(id).buffer.Name(), 0u);
    EXPECT_EQ(cache->GetIndexBuffer(id).count + cache->GetIndexBuffer(id).buffer.Name(), 0u);
  }
}

TEST_F(ModelCacheCalls, ReleasedModelsFreeTheirBuffersAndKeepTheirIds) {
  const ReportCapture reports;
  Register(Tent);
  Register(Tent);
  Register(Tent);
  const ModelCache copy = *cache; // holds the buffers as well
  Register(Tent);
  const ModelCache::Model held = cache->GetModel(2);
  EXPECT_EQ(held.vertices.buffer.Name(), cache->GetVertexBuffer(2).buffer.Name());
  EXPECT_EQ(std::tuple(held.vertices.attributes, held.indices.count, held.bounds.Max()),
            std::tuple(3u, 3u, cache->GetBoundingBox(2).Max()));
  const unsigned int vertices = cache->GetVertexBuffer(3).buffer.Name();
  const unsigned int indices = cache->GetIndexBuffer(3).buffer.Name();
  recorder.Clear();
  EXPECT_TRUE(cache->Release(1));
  EXPECT_EQ(recorder.LinesOf({"DeleteBuffers"}), Lines());
  EXPECT_TRUE(cache->Release(3));
  EXPECT_EQ(recorder.LinesOf({"DeleteBuffers"}), (Lines{"DeleteBuffers(1, [" + std::to_string(vertices) + "])",
                                                        "DeleteBuffers(1, [" + std::to_string(indices) + "])"}));
  EXPECT_FALSE(cache->Release(3));
  EXPECT_FALSE(cache->Release(4));
  for (const std::size_t id : {1, 3, 4}) {
    const ModelCache::Model model = cache->GetModel(id);
    EXPECT_EQ(model.indices.type, Ogl::VertexBuffer::Undecided);
    EXPECT_TRUE(model.bounds.Empty());
    EXPECT_EQ(model.indices.count + model.indices.buffer.Count() + model.vertices.attributes +
                  model.vertices.positionStride + model.vertices.buffer.Count(),
              0u)
        << id;
  }
  EXPECT_EQ(Register(Tent), 4u) << "ids are not used again";
  EXPECT_EQ(cache->GetIndexBuffer(2).count + copy.GetIndexBuffer(1).count, 6u) << "others stay";
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(ModelCacheCalls, IncompleteModelsAreReported) {
  using Model = Library::ObjModel;
  const std::string fewer = "\"p_model.Normals()->size() >= p_model.Vertices()->size()\" - " + Signature::RegisterModel;
  // What is missing, the reports, vertices, indices.
  const std::tuple<std::function<void(Model&)>, Lines, std::size_t, std::size_t> rows[] = {
      {[](Model& p_model) { p_model.Normals()->resize(3); }, {fewer}, 4, 9},
      {[](Model& p_model) { p_model.SetNormals({}); }, {Null}, 4, 9},
      {[](Model& p_model) { p_model.SetVertices({}); }, {Null, NoVertices}, 0, 9},
      {[](Model& p_model) { p_model.Groups()->at(1).reset(); }, {Null}, 8, 6},
      {[](Model& p_model) { p_model = Model(); }, {Undecided, NoVertices, NoIndices}, 0, 0},
  };
  for (const auto& [spoil, reports, vertices, indices] : rows) {
    const auto model = Library::LoadPolygonObjFile(folder.Write("tent.obj", Tent));
    spoil(*model);
    const ReportCapture capture;
    const std::size_t id = cache->Register(*model);
    EXPECT_EQ(capture.Texts(), reports);
    EXPECT_EQ(cache->GetVertexBuffer(id).buffer.Count(), vertices);
    EXPECT_EQ(cache->GetIndexBuffer(id).buffer.Count(), indices);
  }
  EXPECT_EQ(Layout(0), (std::vector<std::size_t>{1, 12, 0, 0, 0, 4}));
  EXPECT_EQ(Vertices(0), (std::vector<float>{0, 0, 0.1f, 1, 0, 0.2f, 0, 1, 0.3f, 1, 1, 0.4f}));
}

TEST_F(ModelCacheCalls, BuffersThatFailAreReportedAndEmpty) {
  const std::string noName = "storage->Name() != 0";
  const std::string notMapped = "\"p_records.Count() == p_buffer.Count()\" - " + Signature::RegisterPath;
  // The call that fails, the report, whether it is that of the vertices.
  const std::tuple<const char*, std::size_t, std::string, bool> rows[] = {
      {"GenBuffers", 1, NotMade(noName, "Vec3<float"), true},
      {"GenBuffers", 2, NotMade(noName, "Vec1<unsigned int"), false},
      {"MapBufferRange", 1, notMapped, true},
      {"MapBufferRange", 2, notMapped, false},
  };
  for (const auto& [call, number, report, vertices] : rows) {
    SCOPED_TRACE(call);
    const ReportCapture reports;
    recorder.Fail(call, number);
    const std::size_t id = Register(Tent);
    EXPECT_EQ(reports.Texts(), Lines{report});
    EXPECT_EQ(cache->GetVertexBuffer(id).buffer.Count(), vertices ? 0u : 8u);
    const ModelCache::IndexBuffer indices = cache->GetIndexBuffer(id);
    EXPECT_EQ(std::pair(indices.count, indices.buffer.Count()), vertices ? std::pair(3u, 9ul) : std::pair(0u, 0ul));
  }
}

TEST_F(ModelCacheCalls, TheScopeOpensBeforeTheFileIsRead) {
  const boost::shared_ptr<Rgl> lost(
      new Rgl(recorder.Handle().Object()->Functions(), [] { throw std::runtime_error("no context"); }));
  EXPECT_THROW(ModelCache(Utility::Unscoped<Rgl>(lost)).Register(folder.Write("m.obj", "v 0 0 zero\n")),
               std::runtime_error);
}
