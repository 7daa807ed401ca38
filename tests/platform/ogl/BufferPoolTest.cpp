#include "platform/ogl/BufferPool.h"

#include "platform/ogl/Vec.h"
#include "tests/support/PixelFixture.h"
#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"

#include <cstring>
#include <limits>

using namespace Vek::Chart;
using Vek::Test::Lines;
using Vek::Test::ReportCapture;

namespace {

using Scope = Utility::Scoped<Rgl>;
using Record = Ogl::Attribute<Ogl::Vec3<float>>;
using Index = Ogl::Attribute<Ogl::Vec1<unsigned int>>;
template <class T>
using WriteArray = Ogl::BufferPool::WriteArray<T>;

class BufferPoolCalls : public Vek::Test::RecordingFixture {};

TEST_F(BufferPoolCalls, BuffersAreSizedAndDeletedWithTheirLastHandle) {
  const Scope gl(recorder.Handle());
  Ogl::Buffer<Record> copy;
  {
    const Ogl::Buffer<Record> buffer = gl->GetBufferPool().CreateBuffer<Record>(5, Ogl::BufferUsage::Default);
    EXPECT_EQ(buffer.Count(), 5U);
    copy = buffer;
  }
  gl->GetBufferPool().CreateBuffer<Index>(3, Ogl::BufferUsage::Dynamic);
  gl->GetBufferPool().CreateBuffer<Index>(1, Ogl::BufferUsage::Stream);
  copy = {};
  const Lines expected = {"GenBuffers(1, [3001])",
                          "BufferData(GL_ARRAY_BUFFER, 60, null, GL_STATIC_DRAW)",
                          "GenBuffers(1, [3002])",
                          "BufferData(GL_ARRAY_BUFFER, 12, null, GL_DYNAMIC_DRAW)",
                          "DeleteBuffers(1, [3002])",
                          "GenBuffers(1, [3003])",
                          "BufferData(GL_ARRAY_BUFFER, 4, null, GL_STREAM_DRAW)",
                          "DeleteBuffers(1, [3003])",
                          "DeleteBuffers(1, [3001])"};
  EXPECT_EQ(recorder.LinesWithout({"BindBuffer", "GetIntegerv"}), expected);
}

TEST_F(BufferPoolCalls, MakingABufferKeepsTheOneThatIsBound) {
  const Scope gl(recorder.Handle());
  unsigned int host = 0;
  gl->GenBuffers(1, &host);
  gl->BindBuffer(RGL_ARRAY_BUFFER, host);
  gl->GetBufferPool().CreateBuffer<Index>(3, Ogl::BufferUsage::Default);
  int bound = 0;
  gl->GetIntegerv(RGL_ARRAY_BUFFER_BINDING, &bound);
  EXPECT_EQ(bound, static_cast<int>(host));
  gl->DeleteBuffers(1, &host);
}

TEST_F(BufferPoolCalls, CountsThatMakeNoBufferAreReported) {
  const Scope gl(recorder.Handle());
  ReportCapture reports;
  const std::string vertices = "class Vek::Chart::Ogl::Buffer<class Vek::Chart::Ogl::Attribute<class "
                               "Vek::Chart::Ogl::Vec3<float> > > __cdecl "
                               "Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum "
                               "Vek::Chart::Ogl::BufferUsage::Kind)";
  const std::string indices = "class Vek::Chart::Ogl::Buffer<class Vek::Chart::Ogl::Attribute<class "
                              "Vek::Chart::Ogl::Vec1<unsigned int> > > __cdecl "
                              "Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum "
                              "Vek::Chart::Ogl::BufferUsage::Kind)";
  const Ogl::Buffer<Record> none = gl->GetBufferPool().CreateBuffer<Record>(0, Ogl::BufferUsage::Default);
  EXPECT_EQ(none.Count(), 0U);
  EXPECT_EQ(none.Name(), 0U);
  EXPECT_EQ(gl->GetBufferPool().CreateBuffer<Index>(0, Ogl::BufferUsage::Default).Count(), 0U);
  const std::size_t too_many = std::numeric_limits<std::size_t>::max() / 12 + 2; // 12 of them wrap around to 8 bytes
  EXPECT_EQ(gl->GetBufferPool().CreateBuffer<Record>(too_many, Ogl::BufferUsage::Default).Count(), 0U);
  const Lines expected = {"\"p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"\" - " + vertices,
                          "\"p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"\" - " + indices,
                          "\"p_count <= max_size / sizeof(T)\" - " + vertices};
  EXPECT_EQ(reports.Texts(), expected);
  EXPECT_EQ(recorder.Lines(), Lines());
}

TEST_F(BufferPoolCalls, WriteArraysMapTheirRangeOnly) {
  const Scope gl(recorder.Handle());
  const Ogl::Buffer<Index> buffer = gl->GetBufferPool().CreateBuffer<Index>(4, Ogl::BufferUsage::Default);
  {
    const WriteArray<Index> all(buffer, 0, 4, RGL_ARRAY_BUFFER);
    for (unsigned int i = 0; i < 4; ++i)
      all.Data()[i].x = 100 + i;
  }
  recorder.Clear();
  {
    const WriteArray<Index> middle(buffer, 1, 2, RGL_ELEMENT_ARRAY_BUFFER);
    ASSERT_EQ(middle.Count(), 2U);
    middle.Data()[0].x = 7;
    middle.Data()[1].x = 8;
  }
  const Lines expected = {
      "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001)",
      "MapBufferRange(GL_ELEMENT_ARRAY_BUFFER, 4, 8, GL_MAP_WRITE_BIT|GL_MAP_INVALIDATE_RANGE_BIT)",
      "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001)",
      "UnmapBuffer(GL_ELEMENT_ARRAY_BUFFER)",
      "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)",
  };
  EXPECT_EQ(recorder.Lines(), expected);
  const unsigned int contents[] = {100, 7, 8, 103};
  const std::vector<unsigned char> bytes = recorder.BufferBytes(buffer.Name());
  ASSERT_EQ(bytes.size(), sizeof(contents));
  EXPECT_EQ(std::memcmp(bytes.data(), contents, sizeof(contents)), 0);
}

TEST_F(BufferPoolCalls, RangesOutsideTheBufferMapNothing) {
  struct Case {
    const char* name;
    std::size_t first;
    std::size_t count;
  };
  const std::size_t most = std::numeric_limits<std::size_t>::max();
  const Case cases[] = {{"one too many", 0, 5},         {"starts at the end", 4, 1}, {"starts beyond", 5, 0},
                        {"the sum wraps", 2, most - 1}, {"nothing", 2, 0},           {"first wraps", most, 2},
                        {"bytes wrap", most / 4 + 1, 1}};
  const Scope gl(recorder.Handle());
  const Ogl::Buffer<Index> buffer = gl->GetBufferPool().CreateBuffer<Index>(4, Ogl::BufferUsage::Default);
  recorder.Clear();
  for (const Case& row : cases) {
    const WriteArray<Index> array(buffer, row.first, row.count, RGL_ARRAY_BUFFER);
    EXPECT_EQ(array.Count(), 0U) << row.name;
    EXPECT_EQ(array.Data(), nullptr) << row.name;
  }
  const WriteArray<Index> empty(Ogl::Buffer<Index>(), 0, 1, RGL_ARRAY_BUFFER);
  EXPECT_EQ(empty.Count(), 0U);
  EXPECT_EQ(recorder.Lines(), Lines()) << "GL was not asked";
}

TEST_F(BufferPoolCalls, AMappingThatFailsLeavesNothingBound) {
  const Scope gl(recorder.Handle());
  const Ogl::Buffer<Index> buffer = gl->GetBufferPool().CreateBuffer<Index>(4, Ogl::BufferUsage::Default);
  recorder.Fail("MapBufferRange");
  const WriteArray<Index> array(buffer, 0, 4, RGL_ARRAY_BUFFER);
  EXPECT_EQ(array.Count(), 0U);
  EXPECT_EQ(array.Data(), nullptr);
  int bound = -1;
  gl->GetIntegerv(RGL_ARRAY_BUFFER_BINDING, &bound);
  EXPECT_EQ(bound, 0);
}

TEST_F(BufferPoolCalls, LostContentsAreReported) {
  const Scope gl(recorder.Handle());
  const Ogl::Buffer<Index> buffer = gl->GetBufferPool().CreateBuffer<Index>(4, Ogl::BufferUsage::Default);
  ReportCapture reports;
  {
    const WriteArray<Index> array(buffer, 0, 4, RGL_ARRAY_BUFFER);
    recorder.Fail("UnmapBuffer");
  }
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: The contents of a mapped buffer were lost."});
  EXPECT_EQ(recorder.LinesOf({"BindBuffer"}).back(), "BindBuffer(GL_ARRAY_BUFFER, 0)");
  EXPECT_EQ(gl->UnmapBuffer(RGL_ARRAY_BUFFER), 0); // it stays mapped in the recorder, whose call failed
  gl->BindBuffer(RGL_ARRAY_BUFFER, buffer.Name());
  gl->UnmapBuffer(RGL_ARRAY_BUFFER);
  EXPECT_EQ(recorder.TakeComplaints(), Lines{"UnmapBuffer: no buffer is bound to GL_ARRAY_BUFFER"});
}

class BufferPoolPixels : public Vek::Test::PixelFixture {};

TEST_F(BufferPoolPixels, WhatIsWrittenLiesOnTheDevice) {
  const Scope gl(Handle());
  const Ogl::Buffer<Record> buffer = gl->GetBufferPool().CreateBuffer<Record>(3, Ogl::BufferUsage::Default);
  {
    const WriteArray<Record> array(buffer, 0, 3, RGL_ARRAY_BUFFER);
    ASSERT_EQ(array.Count(), 3U);
    for (int i = 0; i < 3; ++i)
      array.Data()[i] = Ogl::Vec3<float>{static_cast<float>(i), 0.5F, -1};
  }
  Record read[3];
  gl->BindBuffer(RGL_ARRAY_BUFFER, buffer.Name());
  gl->GetBufferSubData(RGL_ARRAY_BUFFER, 0, sizeof(read), read);
  gl->BindBuffer(RGL_ARRAY_BUFFER, 0);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(read[i], (Ogl::Vec3<float>{static_cast<float>(i), 0.5F, -1}));
}

} // namespace
