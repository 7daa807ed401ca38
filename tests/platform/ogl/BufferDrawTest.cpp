#include "platform/ogl/BufferDraw.h"

#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

using Ogl::BufferDraw;

namespace {

using Record = Ogl::Attribute<Ogl::Vec3<float>>;
using Index = Ogl::Attribute<Ogl::Vec1<unsigned int>>;

/// Nothing is written when the buffer cannot be mapped.
template <class T, class Number>
Ogl::Buffer<T> MakeBuffer(const Rgl& p_gl, const std::vector<Number>& p_numbers) {
  const std::size_t count = p_numbers.size() * sizeof(Number) / sizeof(T);
  const Ogl::Buffer<T> buffer = p_gl.GetBufferPool().CreateBuffer<T>(count, Ogl::BufferUsage::Default);
  const Ogl::BufferPool::WriteArray<T> array(buffer, 0, count, RGL_ARRAY_BUFFER);
  if (array.Count() != 0)
    std::memcpy(static_cast<void*>(array.Data()), p_numbers.data(), array.Count() * sizeof(T));
  return buffer;
}

/// A square over the pixels (0, 0) to (2, 2), with positions and normals interleaved.
BufferDraw Square(const Rgl& p_gl) {
  BufferDraw draw;
  draw.type = Ogl::VertexBuffer::Triangles;
  draw.indices = MakeBuffer<Index, unsigned int>(p_gl, {0, 1, 2, 2, 3, 0});
  draw.vertices =
      MakeBuffer<Record, float>(p_gl, {0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 1, 2, 2, 0, 0, 0, 1, 0, 2, 0, 0, 0, 1});
  draw.attributes = BufferDraw::Positions | BufferDraw::Normals;
  draw.positionStride = 24;
  draw.normalStride = 24;
  draw.normalOffset = 12;
  return draw;
}

class BufferDrawCalls : public RecordingScopeFixture {
public:
  /// A buffer whose mapping failed.
  template <class T>
  Ogl::Buffer<T> Unwritten() {
    recorder.Fail("MapBufferRange");
    return MakeBuffer<T>(*gl, std::vector<float>(24));
  }
};
using BufferDrawPixels = PixelScopeFixture;

TEST_F(BufferDrawCalls, DrawsFromItsBuffersAndRestoresTheBindings) {
  BufferDraw draw = Square(*gl);
  draw.instanceAttributes = {{6, MakeBuffer<Record, float>(*gl, {4, 1, 0, 7, 3, 0})}};
  const Lines begin = Calls("PushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT); "
                            "BindBuffer(GL_ARRAY_BUFFER, 0); BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0); "
                            "EnableClientState(GL_VERTEX_ARRAY); EnableClientState(GL_NORMAL_ARRAY); "
                            "DisableClientState(GL_TEXTURE_COORD_ARRAY); "
                            "BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001); BindBuffer(GL_ARRAY_BUFFER, 3002); "
                            "VertexPointer(3, GL_FLOAT, 24, null); NormalPointer(GL_FLOAT, 24, ptr)");
  const Lines end =
      Calls("PopClientAttrib(); BindBuffer(GL_ARRAY_BUFFER, 3003); BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 3001)");
  gl->BindBuffer(RGL_ARRAY_BUFFER, 3003); // the host's bindings
  gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, 3001);
  recorder.Clear();
  draw.Draw(gl);
  EXPECT_EQ(recorder.LinesWithout({"GetIntegerv"}),
            begin + Calls("DrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_INT, null)") + end);
  recorder.Clear();
  draw.Draw(gl, 2);
  EXPECT_EQ(recorder.LinesWithout({"GetIntegerv", "GetString"}),
            begin +
                Calls("BindBuffer(GL_ARRAY_BUFFER, 3003); EnableVertexAttribArray(6); "
                      "VertexAttribPointer(6, 3, GL_FLOAT, GL_FALSE, 0, null); VertexAttribDivisor(6, 1); "
                      "DrawElementsInstanced(GL_TRIANGLES, 6, GL_UNSIGNED_INT, null, 2)") +
                end);
}

TEST_F(BufferDrawCalls, BindsTextureCoordinates) {
  BufferDraw draw = Square(*gl);
  draw.attributes |= BufferDraw::TexCoords;
  draw.texCoordComponents = 2;
  draw.texCoordStride = 24;
  draw.texCoordOffset = 16;
  recorder.Clear();
  draw.Draw(gl);
  EXPECT_EQ(recorder.LinesOf({"EnableClientState", "DisableClientState", "TexCoordPointer"}),
            Calls("EnableClientState(GL_VERTEX_ARRAY); EnableClientState(GL_NORMAL_ARRAY); "
                  "EnableClientState(GL_TEXTURE_COORD_ARRAY); TexCoordPointer(2, GL_FLOAT, 24, ptr)"));
}

TEST_F(BufferDrawCalls, UndrawableBuffersAreReported) {
  const std::pair<const char*, std::function<void(BufferDraw&)>> cases[] = {
      {"type != VertexBuffer::Undecided", [](BufferDraw& p_draw) { p_draw.type = Ogl::VertexBuffer::Undecided; }},
      {"indices.Count() != 0", [](BufferDraw& p_draw) { p_draw.indices = {}; }},
      {"vertices.Count() != 0", [](BufferDraw& p_draw) { p_draw.vertices = {}; }},
      {"positionOffset + 12 <= vertices bytes", [](BufferDraw& p_draw) { p_draw.positionOffset = 85; }},
      {"positionOffset + 12 <= vertices bytes", [](BufferDraw& p_draw) { p_draw.positionOffset = 0xFFFFFFFF; }},
      {"normalOffset + 12 <= vertices bytes", [](BufferDraw& p_draw) { p_draw.normalStride = 0x80000000; }},
      {"1 <= texCoordComponents <= 4",
       [](BufferDraw& p_draw) { p_draw.attributes |= BufferDraw::TexCoords, p_draw.texCoordComponents = 5; }},
      {"texCoordOffset + 4 * texCoordComponents <= vertices bytes",
       [](BufferDraw& p_draw) { p_draw.attributes |= BufferDraw::TexCoords, p_draw.texCoordOffset = 93; }},
      {"instanceAttribute.records.Count() >= instances",
       [](BufferDraw& p_draw) { p_draw.instanceAttributes.resize(1); }},
      {"indices.Count() != 0", [](BufferDraw& p_draw) { p_draw.indices = Ogl::Buffer<Index>(nullptr, 6); }},
      {"!indices.Storage()->ContentsLost()", [this](BufferDraw& p_draw) { p_draw.indices = Unwritten<Index>(); }},
      {"!vertices.Storage()->ContentsLost()", [this](BufferDraw& p_draw) { p_draw.vertices = Unwritten<Record>(); }},
  };
  for (const auto& [expression, spoil] : cases) {
    BufferDraw draw = Square(*gl);
    spoil(draw);
    recorder.Clear();
    ReportCapture reports;
    draw.Draw(gl, 2);
    EXPECT_EQ(reports.Texts(), Lines{"\"" + std::string(expression) +
                                     "\" - void __cdecl Vek::Chart::Ogl::BufferDraw::Draw(class "
                                     "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int) const"});
    EXPECT_EQ(recorder.LinesOf({"DrawElementsInstanced", "PushClientAttrib"}), Lines());
  }
}

TEST_F(BufferDrawPixels, InstancesLieWhereTheirAttributesSay) {
  const boost::shared_ptr<void> projection = gl->PixelProjection({0, 0, FrameSize.width, FrameSize.height});
  BufferDraw draw = Square(*gl);
  gl->Color(Qt::red);
  draw.Draw(gl); // with the fixed functions, in the lower left corner
  const Ogl::ShaderProgram program(gl,
                                   "attribute vec3 offset; varying vec4 color;\n"
                                   "void main() {\n"
                                   "  color = vec4(gl_Normal.z, 0.0, 0.0, 1.0);\n"
                                   "  gl_Position = gl_ModelViewProjectionMatrix * (gl_Vertex + vec4(offset, 0.0));\n"
                                   "}\n",
                                   "varying vec4 color; void main() { gl_FragColor = color; }\n",
                                   {"", "", "", "", "", "", "offset"});
  ASSERT_TRUE(program.Linked());
  const boost::shared_ptr<void> inUse = program.Use(gl);
  draw.instanceAttributes = {{6, MakeBuffer<Record, float>(*gl, {4, 1, 0, 7, 3, 0})}};
  draw.Draw(gl, 2);
  draw.Draw(gl, 0);
  EXPECT_EQ(Map(Corner(9, 5), Qt::red), ".......##\n"
                                        ".......##\n"
                                        "....##...\n"
                                        "##..##...\n"
                                        "##.......\n");
}

} // namespace
