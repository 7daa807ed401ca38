#include "platform/ogl/VertexData.h"

#include "tests/support/Test.h"

using Ogl::VertexBuffer;
using Ogl::VertexData;

namespace {

/// A shared array of exactly this size, so that memory checkers see its ends.
template <class T>
boost::shared_ptr<const void> Shared(const std::vector<T>& p_values) {
  boost::shared_ptr<T> block(new T[p_values.size()], [](T* p_block) { delete[] p_block; });
  std::copy(p_values.begin(), p_values.end(), block.get());
  return block;
}

VertexData Triangle() {
  VertexData data;
  data.SetVertices(Shared<float>({0, 0, 0, 4, 0, 0, 0, 4, 0}), 3, 3, VertexData::Float);
  data.PrimitiveType() = VertexBuffer::Triangles;
  return data;
}

TEST(VertexData, ArraysAreSharedAndNullRemovesThem) {
  VertexData data;
  const boost::shared_ptr<const void> block = Shared<double>({1, 2, 3, 4, 5, 6});
  data.SetNormals(block, 2, 3, VertexData::Double);
  EXPECT_EQ(data.Normals().data, block);
  EXPECT_EQ(block.use_count(), 2);
  data.SetNormals(block, 0, 3, VertexData::Double);
  EXPECT_TRUE(data.Normals().Empty());
  EXPECT_EQ(block.use_count(), 1);
  data.SetIndices(nullptr, 7, VertexData::UnsignedInt);
  EXPECT_EQ(data.Indices().count, 0U);
  EXPECT_FALSE(data.PrimitiveType().Defined());
  EXPECT_EQ(data.PrimitiveType().Value(), VertexBuffer::Undecided);
}

using VertexDataCalls = RecordingScopeFixture;

TEST_F(VertexDataCalls, DrawsInOneCallAndRestoresTheHostsState) {
  unsigned int buffers[2] = {};
  gl->GenBuffers(2, buffers);
  gl->BindBuffer(RGL_ARRAY_BUFFER, buffers[0]);
  gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, buffers[1]);
  recorder.Clear();
  Triangle().Draw(gl);
  EXPECT_EQ(recorder.LinesWithout({"GetIntegerv"}),
            Calls("PushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT); "
                  "BindBuffer(GL_ARRAY_BUFFER, 0); BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0); "
                  "EnableClientState(GL_VERTEX_ARRAY); DisableClientState(GL_NORMAL_ARRAY); "
                  "DisableClientState(GL_TEXTURE_COORD_ARRAY); "
                  "VertexPointer(3, GL_FLOAT, 0, ptr); DrawArrays(GL_TRIANGLES, 0, 3); PopClientAttrib(); "
                  "BindBuffer(GL_ARRAY_BUFFER, 3001); BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3002)"));
  gl->DeleteBuffers(2, buffers);
}

TEST_F(VertexDataCalls, AllArraysAndInstances) {
  VertexData data;
  data.SetVertices(Shared<double>({0, 0, 4, 0, 0, 4, 4, 4}), 4, 2, VertexData::Double);
  data.SetNormals(Shared<float>(std::vector<float>(12, 1)), 4, 3, VertexData::Float);
  data.SetTexCoords(Shared<float>({0, 1, 2, 3}), 4, 1, VertexData::Float);
  data.SetIndices(Shared<unsigned short>({0, 1, 2, 3, 2}), 5, VertexData::UnsignedShort);
  data.PrimitiveType() = VertexBuffer::TriangleStrip;
  data.Draw(gl);
  data.Draw(gl, 7);
  data.SetIndices({}, 0, VertexData::UnsignedShort);
  data.Draw(gl, 1);
  data.Draw(gl, 0);
  const std::string pointers =
      "VertexPointer(2, GL_DOUBLE, 0, ptr); NormalPointer(GL_FLOAT, 0, ptr); TexCoordPointer(1, GL_FLOAT, 0, ptr); ";
  EXPECT_EQ(recorder.LinesOf({"VertexPointer", "NormalPointer", "TexCoordPointer", "DrawArrays", "DrawElements",
                              "DrawArraysInstanced", "DrawElementsInstanced"}),
            Calls(pointers + "DrawElements(GL_TRIANGLE_STRIP, 5, GL_UNSIGNED_SHORT, ptr); " + pointers +
                  "DrawElementsInstanced(GL_TRIANGLE_STRIP, 5, GL_UNSIGNED_SHORT, ptr, 7); " + pointers +
                  "DrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, 1)"));
}

TEST_F(VertexDataCalls, EveryKindHasItsPrimitive) {
  VertexData data = Triangle();
  int type = VertexBuffer::Points;
  for (const std::string token :
       {"POINTS", "LINES", "LINE_STRIP", "TRIANGLES", "TRIANGLE_STRIP", "LINES_ADJACENCY", "QUAD_STRIP", "QUADS"}) {
    data.PrimitiveType() = static_cast<VertexBuffer::PrimitiveType>(type++);
    data.Draw(gl);
    EXPECT_EQ(recorder.LinesOf({"DrawArrays"}).back(), "DrawArrays(GL_" + token + ", 0, 3)");
  }
}

TEST_F(VertexDataCalls, UndrawableDataIsReported) {
  const auto floats = [](std::size_t p_count) { return Shared(std::vector<float>(p_count, 1)); };
  const auto bytes = Shared<unsigned char>({0, 1, 3});
  const auto integers = Shared<unsigned int>({0xFFFFFFFF, 0});
  const std::string primitive = "_primitiveType.Defined() && _primitiveType != Undecided";
  const auto beyond = static_cast<VertexBuffer::PrimitiveType>(1000);
  const std::pair<std::string, std::function<void(VertexData&)>> cases[] = {
      {"!_vertices.Empty()", [](auto& p_data) { p_data.SetVertices({}, 3, 3, VertexData::Float); }},
      {primitive, [](auto& p_data) { p_data.PrimitiveType() = VertexBuffer::Undecided; }},
      {primitive, [=](auto& p_data) { p_data.PrimitiveType() = beyond; }},
      {"Drawable(_vertices, 2, 4)", [&](auto& p_data) { p_data.SetVertices(floats(15), 3, 5, VertexData::Float); }},
      {"Drawable(_vertices, 2, 4)", [&](auto& p_data) { p_data.SetVertices(bytes, 1, 3, VertexData::UnsignedByte); }},
      {"_normals.Empty() || Drawable(_normals, 3, 3)",
       [&](auto& p_data) { p_data.SetNormals(floats(6), 3, 2, VertexData::Float); }},
      {"_normals.Empty() || _normals.count >= _vertices.count",
       [&](auto& p_data) { p_data.SetNormals(floats(6), 2, 3, VertexData::Float); }},
      {"_texCoords.Empty() || _texCoords.count >= _vertices.count",
       [&](auto& p_data) { p_data.SetTexCoords(floats(4), 2, 2, VertexData::Float); }},
      {"_indices < _vertices.count", [&](auto& p_data) { p_data.SetIndices(bytes, 3, VertexData::UnsignedByte); }},
      {"_indices < _vertices.count", [&](auto& p_data) { p_data.SetIndices(integers, 2, VertexData::UnsignedInt); }},
      {"_indices < _vertices.count", [&](auto& p_data) { p_data.SetIndices(floats(2), 2, VertexData::Float); }},
  };
  const std::string signature = "\" - void __cdecl Vek::Chart::Ogl::VertexData::Draw("
                                "class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &";
  for (const auto& [expression, spoil] : cases) {
    VertexData data = Triangle();
    spoil(data);
    ReportCapture reports;
    data.Draw(gl);
    data.Draw(gl, 2);
    const std::string start = '"' + expression + signature;
    EXPECT_EQ(reports.Texts(), (Lines{start + ") const", start + ",unsigned int) const"}));
  }
  EXPECT_EQ(recorder.Lines(), Lines());

  recorder.SetVersion("2.1");
  const ReportCapture reports;
  Triangle().Draw(gl, 3);
  EXPECT_EQ(reports.Texts(), Lines{"\"p_gl->Features().Supported(DeviceFeatures::FeatureInstancing)" + signature +
                                   ",unsigned int) const"});
  EXPECT_EQ(recorder.LinesOf({"DrawArraysInstanced"}), Lines());
}

} // namespace
