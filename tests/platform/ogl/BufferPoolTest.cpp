#include "platform/ogl/BufferPool.h"

#include "platform/ogl/Vec.h"
#include "tests/support/Test.h"

namespace {

using Record = Ogl::Attribute<Ogl::Vec3<float>>;
using Index = Ogl::Attribute<Ogl::Vec1<unsigned int>>;
constexpr std::size_t Most = std::numeric_limits<std::size_t>::max();
template <class T>
using WriteArray = Ogl::BufferPool::WriteArray<T>;

class BufferPoolCalls : public RecordingScopeFixture {
public:
  template <class T>
  Ogl::Buffer<T> Make(std::size_t p_count, Ogl::BufferUsage::Kind p_usage = Ogl::BufferUsage::Default) const {
    return gl->GetBufferPool().CreateBuffer<T>(p_count, p_usage);
  }
  const ReportCapture reports;
};

TEST_F(BufferPoolCalls, BuffersAreSizedAndDeletedWithTheirLastHandle) {
  unsigned int host = 0;
  gl->GenBuffers(1, &host);
  gl->BindBuffer(RGL_ARRAY_BUFFER, host);
  recorder.Clear();
  Ogl::Buffer<Record> copy;
  {
    const Ogl::Buffer<Record> buffer = Make<Record>(5);
    EXPECT_EQ(buffer.Count(), 5U);
    copy = buffer;
  }
  Make<Index>(3, Ogl::BufferUsage::Dynamic);
  Make<Index>(1, Ogl::BufferUsage::Stream);
  copy = {};
  EXPECT_EQ(recorder.LinesWithout({"BindBuffer", "GetIntegerv"}),
            Calls("GenBuffers(1, [3002]); BufferData(GL_ARRAY_BUFFER, 60, null, GL_STATIC_DRAW); "
                  "GenBuffers(1, [3003]); BufferData(GL_ARRAY_BUFFER, 12, null, GL_DYNAMIC_DRAW); "
                  "DeleteBuffers(1, [3003]); GenBuffers(1, [3004]); "
                  "BufferData(GL_ARRAY_BUFFER, 4, null, GL_STREAM_DRAW); DeleteBuffers(1, [3004]); "
                  "DeleteBuffers(1, [3002])"));
  EXPECT_EQ(recorder.LinesOf({"BindBuffer"}).back(), "BindBuffer(GL_ARRAY_BUFFER, 3001)") << "the host's own";
  gl->DeleteBuffers(1, &host);
}

TEST_F(BufferPoolCalls, CountsThatMakeNoBufferAreReported) {
  const auto report = [](const std::string& p_expression, const std::string& p_vector) {
    return '"' + p_expression +
           "\" - class Vek::Chart::Ogl::Buffer<class Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::" + p_vector +
           " > > __cdecl Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum "
           "Vek::Chart::Ogl::BufferUsage::Kind)";
  };
  EXPECT_EQ(Make<Record>(0).Name(), 0U);
  EXPECT_EQ(Make<Index>(0).Count(), 0U);
  EXPECT_EQ(Make<Record>(Most / 12 + 2).Count(), 0U); // so many wrap around to 8 bytes
  EXPECT_EQ(recorder.Lines(), Lines());
  recorder.Fail("GenBuffers");
  EXPECT_EQ(Make<Record>(1).Count(), 0U);
  EXPECT_EQ(recorder.LinesOf({"BufferData", "DeleteBuffers"}), Lines()) << "not into the host's buffer";
  const std::string none = "p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"";
  EXPECT_EQ(reports.Texts(), (Lines{report(none, "Vec3<float>"), report(none, "Vec1<unsigned int>"),
                                    report("p_count <= max_size / sizeof(T)", "Vec3<float>"),
                                    report("storage->Name() != 0", "Vec3<float>")}));
}

TEST_F(BufferPoolCalls, WriteArraysMapTheirRangeOnly) {
  const Ogl::Buffer<Index> buffer = Make<Index>(4);
  for (unsigned int i = 0; i < 4; ++i)
    WriteArray<Index>(buffer, i, 1, RGL_ARRAY_BUFFER).Data()->x = 100 + i;
  gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, buffer.Name()); // the host's
  recorder.Clear();
  {
    const WriteArray<Index> middle(buffer, 1, 2, RGL_ELEMENT_ARRAY_BUFFER);
    EXPECT_EQ(middle.Count(), 2U);
    middle.Data()[0].x = 7;
    middle.Data()[1].x = 8;
  }
  EXPECT_EQ(recorder.LinesWithout({"GetIntegerv"}),
            Calls("BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001); "
                  "MapBufferRange(GL_ELEMENT_ARRAY_BUFFER, 4, 8, GL_MAP_WRITE_BIT|GL_MAP_INVALIDATE_RANGE_BIT); "
                  "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001); UnmapBuffer(GL_ELEMENT_ARRAY_BUFFER); "
                  "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001)"));
  gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, 0);
  std::vector<unsigned int> contents(4);
  std::memcpy(contents.data(), recorder.BufferBytes(buffer.Name()).data(), 16);
  EXPECT_EQ(contents, (std::vector<unsigned int>{100, 7, 8, 103}));
}

TEST_F(BufferPoolCalls, RangesOutsideTheBufferMapNothing) {
  const Ogl::Buffer<Index> buffer = Make<Index>(4), none;
  const std::tuple<const char*, Ogl::Buffer<Index>, std::size_t, std::size_t> cases[] = {
      {"one too many", buffer, 0, 5},
      {"starts at the end", buffer, 4, 1},
      {"starts beyond", buffer, 5, 0},
      {"the sum wraps", buffer, 2, Most - 1},
      {"nothing", buffer, 2, 0},
      {"first wraps", buffer, Most, 2},
      {"bytes wrap", buffer, Most / 4 + 1, 1},
      {"no buffer", none, 0, 1}};
  recorder.Clear();
  for (const auto& [name, from, first, count] : cases) {
    const WriteArray<Index> array(from, first, count, RGL_ARRAY_BUFFER);
    EXPECT_TRUE(array.Count() == 0 && array.Data() == nullptr) << name;
  }
  EXPECT_EQ(recorder.Lines(), Lines()) << "GL was not asked";
}

TEST_F(BufferPoolCalls, ContentsAreLostUntilTheyAreWritten) {
  const Ogl::Buffer<Index> buffer = Make<Index>(4), host = Make<Index>(1);
  gl->BindBuffer(RGL_ARRAY_BUFFER, host.Name());
  const ReportCapture throwing(true); // an array ends in a destructor, which must not throw
  for (const char* const failing : {"MapBufferRange", "none", "UnmapBuffer"}) {
    recorder.Fail(failing);
    { const WriteArray<Index> array(buffer, 0, 4, RGL_ARRAY_BUFFER); }
    EXPECT_EQ(buffer.Storage()->ContentsLost(), failing != std::string("none")) << failing;
    EXPECT_EQ(recorder.LinesOf({"BindBuffer"}).back(), "BindBuffer(GL_ARRAY_BUFFER, 3002)") << failing;
  }
  EXPECT_EQ(throwing.Texts(), Lines{"WARNING: The contents of a mapped buffer were lost."});
  gl->BindBuffer(RGL_ARRAY_BUFFER, buffer.Name()); // still mapped in the recorder, whose call failed
  gl->UnmapBuffer(RGL_ARRAY_BUFFER);
}

} // namespace
