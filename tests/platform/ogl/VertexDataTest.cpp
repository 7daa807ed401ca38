#include "platform/ogl/VertexData.h"

#include "tests/support/Test.h"

using Ogl::VertexBuffer;
using Ogl::VertexData;

namespace {

/// An array that is not read.
const boost::shared_ptr<const void> Any = boost::make_shared<double>();

VertexData Triangle() {
  VertexData data;
  data.SetVertices(Any, 3, 3, VertexData::Float);
  data.PrimitiveType() = VertexBuffer::Triangles;
  return data;
}

TEST(VertexData, ArraysAreSharedAndNullRemovesThem) {
  VertexData data;
  const boost::shared_ptr<const void> block = boost::make_shared<double>();
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

template <class E>
std::tuple<unsigned int, Ogl::GlEnum> LayoutOf(std::vector<E> p_elements) {
  VertexData data;
  const E* const first = p_elements.data();
  const std::size_t count = p_elements.size();
  if constexpr (Ogl::VertexElement<E>::Count == 1 && !std::is_floating_point_v<E>)
    data.SetIndices(std::move(p_elements));
  else
    data.SetTexCoords(std::move(p_elements));
  const VertexData::Array& array = data.Indices().Empty() ? data.TexCoords() : data.Indices();
  EXPECT_EQ(array.data.get(), first) << "moved in";
  EXPECT_EQ(array.count, count);
  return {array.components, array.type};
}

TEST(VertexData, TakesVectorsWithoutACopy) {
  using Layout = std::tuple<unsigned int, Ogl::GlEnum>;
  EXPECT_EQ(LayoutOf(std::vector<float>(2)), Layout(1, RGL_FLOAT));
  EXPECT_EQ(LayoutOf(std::vector<std::array<float, 2>>(2)), Layout(2, RGL_FLOAT));
  EXPECT_EQ(LayoutOf(std::vector<boost::array<double, 4>>(3)), Layout(4, RGL_DOUBLE));
  EXPECT_EQ(LayoutOf(std::vector<Types::Vector3_Base<double>>(1)), Layout(3, RGL_DOUBLE));
  EXPECT_EQ(LayoutOf(std::vector<Ogl::Attribute<Ogl::Vec3<float>>>(1)), Layout(3, RGL_FLOAT));
  EXPECT_EQ(LayoutOf(std::vector<QVector3D>(1)), Layout(3, RGL_FLOAT));
  EXPECT_EQ(LayoutOf(std::vector<unsigned char>(5)), Layout(1, RGL_UNSIGNED_BYTE));
  EXPECT_EQ(LayoutOf(std::vector<unsigned short>(5)), Layout(1, RGL_UNSIGNED_SHORT));
  EXPECT_EQ(LayoutOf(std::vector<unsigned int>(5)), Layout(1, RGL_UNSIGNED_INT));

  VertexData data;
  data.SetVertices(std::vector<Types::Vector3_Base<float>>{{1, 2, 3}, {4, 5, 6}});
  data.SetNormals(std::vector<Types::Vector3_Base<float>>{{7, 8, 9}});
  EXPECT_EQ(std::tuple(data.Vertices().As<float>()[5], data.Normals().As<float>()[2]), std::tuple(6.0F, 9.0F));
  data.SetVertices(std::vector<Types::Vector3_Base<float>>());
  EXPECT_TRUE(data.Vertices().Empty() && data.Vertices().data == nullptr);
}

using VertexDataCalls = RecordingScopeFixture;

TEST_F(VertexDataCalls, DrawsInOneCallAndRestoresTheHostsState) {
  unsigned int buffer = 0;
  gl->GenBuffers(1, &buffer);
  gl->BindBuffer(RGL_ARRAY_BUFFER, buffer);
  recorder.Clear();
  Triangle().Draw(gl);
  EXPECT_EQ(recorder.LinesWithout({"GetIntegerv"}),
            Calls("PushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT); "
                  "BindBuffer(GL_ARRAY_BUFFER, 0); BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0); "
                  "EnableClientState(GL_VERTEX_ARRAY); DisableClientState(GL_NORMAL_ARRAY); "
                  "DisableClientState(GL_TEXTURE_COORD_ARRAY); "
                  "VertexPointer(3, GL_FLOAT, 0, ptr); DrawArrays(GL_TRIANGLES, 0, 3); PopClientAttrib(); "
                  "BindBuffer(GL_ARRAY_BUFFER, 3001); BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)"));
  gl->DeleteBuffers(1, &buffer);
}

TEST_F(VertexDataCalls, AllArraysAndInstances) {
  VertexData data;
  data.SetVertices(Any, 4, 2, VertexData::Double);
  data.SetNormals(Any, 4, 3, VertexData::Float);
  data.SetTexCoords(Any, 4, 1, VertexData::Float);
  data.SetIndices(boost::make_shared<std::array<unsigned short, 5>>(), 5, VertexData::UnsignedShort);
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
  const auto bytes = boost::make_shared<std::array<unsigned char, 3>>(std::array<unsigned char, 3>{0, 1, 3});
  const auto integers = boost::make_shared<unsigned int>(0xFFFFFFFF);
  const std::string primitive = "_primitiveType.Defined() && _primitiveType != Undecided";
  const auto beyond = static_cast<VertexBuffer::PrimitiveType>(1000);
  const std::pair<std::string, std::function<void(VertexData&)>> cases[] = {
      {"!_vertices.Empty()", [](auto& p_data) { p_data.SetVertices({}, 3, 3, VertexData::Float); }},
      {primitive, [](auto& p_data) { p_data.PrimitiveType() = VertexBuffer::Undecided; }},
      {primitive, [=](auto& p_data) { p_data.PrimitiveType() = beyond; }},
      {"Drawable(_vertices, 2, 4)", [&](auto& p_data) { p_data.SetVertices(Any, 3, 5, VertexData::Float); }},
      {"Drawable(_vertices, 2, 4)", [&](auto& p_data) { p_data.SetVertices(Any, 1, 3, VertexData::UnsignedByte); }},
      {"_normals.Empty() || Drawable(_normals, 3, 3)",
       [&](auto& p_data) { p_data.SetNormals(Any, 3, 2, VertexData::Float); }},
      {"_normals.Empty() || _normals.count >= _vertices.count",
       [&](auto& p_data) { p_data.SetNormals(Any, 2, 3, VertexData::Float); }},
      {"_texCoords.Empty() || _texCoords.count >= _vertices.count",
       [&](auto& p_data) { p_data.SetTexCoords(Any, 2, 2, VertexData::Float); }},
      {"_indices < _vertices.count", [&](auto& p_data) { p_data.SetIndices(bytes, 3, VertexData::UnsignedByte); }},
      {"_indices < _vertices.count", [&](auto& p_data) { p_data.SetIndices(integers, 1, VertexData::UnsignedInt); }},
      {"_indices < _vertices.count", [&](auto& p_data) { p_data.SetIndices(Any, 2, VertexData::Float); }},
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
