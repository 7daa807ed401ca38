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
  const auto signature = [](const std::string& p_vector) {
    return "\" - class Vek::Chart::Ogl::Buffer<class Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::" + p_vector +
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
  const std::string none = "\"p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"";
  EXPECT_EQ(reports.Texts(), (Lines{none + signature("Vec3<float>"), none + signature("Vec1<unsigned int>"),
                                    "\"p_count <= max_size / sizeof(T)" + signature("Vec3<float>"),
                                    "\"storage->Name() != 0" + signature("Vec3<float>")}));
}

TEST_F(BufferPoolCalls, WriteArraysMapTheirRangeOnly) {
  const Ogl::Buffer<Index> buffer = Make<Index>(4);
  for (unsigned int i = 0; i < 4; ++i)
    WriteArray<Index>(buffer, i, 1, RGL_ARRAY_BUFFER).Data()->x = 100 + i;
  gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, buffer.Name()); // the host's
  recorder.Clear();
  {
    const WriteArray<Index> middle(buffer, 1, 2, RGL_ELEMENT_ARRAY_BUFFER);
    ASSERT_EQ(middle.Count(), 2U);
    middle.Data()[0].x = 7;
    middle.Data()[1].x = 8;
  }
  EXPECT_EQ(recorder.LinesWithout({"GetIntegerv"}),
            Calls("BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001); "
                  "MapBufferRange(GL_ELEMENT_ARRAY_BUFFER, 4, 8, GL_MAP_WRITE_BIT|GL_MAP_INVALIDATE_RANGE_BIT); "
                  "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001); UnmapBuffer(GL_ELEMENT_ARRAY_BUFFER); "
                  "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001)"));
  gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, 0);
  const unsigned int contents[] = {100, 7, 8, 103};
  const std::vector<unsigned char> bytes = recorder.BufferBytes(buffer.Name());
  ASSERT_EQ(bytes.size(), sizeof(contents));
  EXPECT_EQ(std::memcmp(bytes.data(), contents, sizeof(contents)), 0);
}

TEST_F(BufferPoolCalls, RangesOutsideTheBufferMapNothing) {
  const std::tuple<const char*, std::size_t, std::size_t> cases[] = {
      {"one too many", 0, 5},         {"starts at the end", 4, 1}, {"starts beyond", 5, 0},
      {"the sum wraps", 2, Most - 1}, {"nothing", 2, 0},           {"first wraps", Most, 2},
      {"bytes wrap", Most / 4 + 1, 1}};
  const Ogl::Buffer<Index> buffer = Make<Index>(4);
  recorder.Clear();
  for (const auto& [name, first, count] : cases) {
    const WriteArray<Index> array(buffer, first, count, RGL_ARRAY_BUFFER);
    EXPECT_TRUE(array.Count() == 0 && array.Data() == nullptr) << name;
  }
  const WriteArray<Index> empty(Ogl::Buffer<Index>(), 0, 1, RGL_ARRAY_BUFFER);
  EXPECT_EQ(empty.Count(), 0U);
  EXPECT_EQ(recorder.Lines(), Lines()) << "GL was not asked";
}

TEST_F(BufferPoolCalls, FailuresRestoreTheBinding) {
  const Ogl::Buffer<Index> buffer = Make<Index>(4);
  const Ogl::Buffer<Index> host = Make<Index>(1);
  gl->BindBuffer(RGL_ARRAY_BUFFER, host.Name());
  recorder.Fail("MapBufferRange");
  {
    const WriteArray<Index> array(buffer, 0, 4, RGL_ARRAY_BUFFER);
    EXPECT_TRUE(array.Count() == 0 && array.Data() == nullptr);
    EXPECT_EQ(recorder.LinesOf({"BindBuffer"}).back(), "BindBuffer(GL_ARRAY_BUFFER, 3002)");
    EXPECT_TRUE(buffer.Storage()->ContentsLost());
  }
  { const WriteArray<Index> array(buffer, 0, 4, RGL_ARRAY_BUFFER); }
  EXPECT_FALSE(buffer.Storage()->ContentsLost());
  EXPECT_EQ(reports.Texts(), Lines());

  struct ThrowingSink : vekdebug::sink {
    void write(const vekdebug::report& p_report) override { throw std::runtime_error(p_report.text); }
  };
  for (const bool throws : {false, true}) {
    recorder.Clear();
    {
      const WriteArray<Index> array(buffer, 0, 4, RGL_ARRAY_BUFFER);
      recorder.Fail("UnmapBuffer");
      if (throws)
        vekdebug::logger::instance().set_sink(std::make_shared<ThrowingSink>());
    }
    EXPECT_EQ(recorder.LinesOf({"BindBuffer"}).back(), "BindBuffer(GL_ARRAY_BUFFER, 3002)");
    EXPECT_TRUE(buffer.Storage()->ContentsLost());
    gl->BindBuffer(RGL_ARRAY_BUFFER, buffer.Name()); // still mapped in the recorder, whose call failed
    gl->UnmapBuffer(RGL_ARRAY_BUFFER);
    gl->BindBuffer(RGL_ARRAY_BUFFER, host.Name());
  }
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: The contents of a mapped buffer were lost."});
}

} // namespace
