#include "testing/RecordingGl.h"
#include "tests/support/Test.h"

namespace {

using RecordingGlCalls = RecordingScopeFixture;

/// Uploads pixels of this size to a new texture, from the bound pixel buffer or from nowhere.
void Upload(Rgl& p_gl, int p_width, Ogl::GlEnum p_format, Ogl::GlEnum p_type, std::uintptr_t p_offset = 0) {
  const boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
  p_gl.Bind(texture, Rgl::Sampler2D);
  p_gl.TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGBA, p_width, 2, 0, p_format, p_type,
                  reinterpret_cast<const void*>(p_offset)); // NOLINT: an offset into the buffer
}

/// Draws with a vertex array in a new buffer of 36 bytes: three positions.
template <class Call>
void WithPositions(Rgl& p_gl, Call p_draw) {
  unsigned int buffer = 0;
  p_gl.GenBuffers(1, &buffer);
  p_gl.BindBuffer(RGL_ARRAY_BUFFER, buffer);
  p_gl.BufferData(RGL_ARRAY_BUFFER, 36, nullptr, RGL_STATIC_DRAW);
  p_gl.VertexPointer(3, RGL_FLOAT, 0, nullptr);
  p_gl.EnableClientState(RGL_VERTEX_ARRAY);
  p_draw();
  p_gl.DeleteBuffers(1, &buffer);
}

// Each row has one fault, which the recorder must name.
TEST_F(RecordingGlCalls, ComplainsAboutMisuse) {
  const unsigned int stranger = 77;
  const std::pair<const char*, std::function<void(Rgl&)>> cases[] = {
      {"Enable: not allowed between Begin and End",
       [](Rgl& p_gl) { p_gl.Begin(RGL_LINE_STRIP), p_gl.Enable(RGL_BLEND), p_gl.End(); }},
      {"End: 1 vertices leave a remainder for GL_QUADS",
       [](Rgl& p_gl) { p_gl.Begin(RGL_QUADS), p_gl.Vertex(0, 0, 0), p_gl.End(); }},
      {"End: without Begin", [](Rgl& p_gl) { p_gl.End(); }},
      {"Vertex3d: outside Begin and End", [](Rgl& p_gl) { p_gl.Vertex(0, 0, 0); }},
      {"PopMatrix: without PushMatrix", [](Rgl& p_gl) { p_gl.PopMatrix(); }},
      {"PopAttrib: nothing was pushed", [](Rgl& p_gl) { p_gl.PopAttrib(); }},
      {"LineWidth: not above 0", [](Rgl& p_gl) { p_gl.LineWidth(0); }},
      {"EndList: without NewList", [](Rgl& p_gl) { p_gl.EndList(); }},
      {"EndList: PushMatrix and PopMatrix are not balanced in the list",
       [](Rgl& p_gl) {
         const boost::shared_ptr<Ogl::DisplayList> list = p_gl.GenDisplayList();
         p_gl.NewList(list->Name(), RGL_COMPILE), p_gl.PushMatrix(), p_gl.EndList();
       }},
      {"CallList: 77 names no display list", [](Rgl& p_gl) { p_gl.CallList(77); }},
      {"DeleteTextures: 77 names no texture", [&](Rgl& p_gl) { p_gl.DeleteTextures(1, &stranger); }},
      {"BindBuffer: 77 names no buffer", [&](Rgl& p_gl) { p_gl.BindBuffer(RGL_ARRAY_BUFFER, stranger); }},
      {"TexImage2D: no texture is bound to GL_TEXTURE_2D",
       [](Rgl& p_gl) { p_gl.TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGBA, 1, 1, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, nullptr); }},
      {"Cylinder: no such quadric", [](Rgl& p_gl) { p_gl.Cylinder(nullptr, 1, 1, 1, 8, 1); }},
      {"BindTexture: texture 1001 was bound to GL_TEXTURE_2D before",
       [](Rgl& p_gl) {
         const boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
         p_gl.Bind(texture, Rgl::Sampler2D);
         p_gl.Bind(texture, Rgl::Sampler3D);
       }},
      {"TexImage2D: no pixels of GL_RGB and GL_UNSIGNED_INT_8_8_8_8_REV",
       [](Rgl& p_gl) { Upload(p_gl, 1, RGL_RGB, RGL_UNSIGNED_INT_8_8_8_8_REV); }},
      {"TexImage2D: larger than 4096", [](Rgl& p_gl) { Upload(p_gl, 4097, RGL_RGBA, RGL_UNSIGNED_BYTE); }},
      {"TexImage2D: 40 bytes at 25 in a pixel buffer of 64",
       [](Rgl& p_gl) {
         unsigned int buffer = 0;
         p_gl.GenBuffers(1, &buffer);
         p_gl.BindBuffer(RGL_PIXEL_UNPACK_BUFFER, buffer);
         p_gl.BufferData(RGL_PIXEL_UNPACK_BUFFER, 64, nullptr, RGL_STATIC_DRAW);
         Upload(p_gl, 5, RGL_RGBA, RGL_UNSIGNED_BYTE, 25);
         p_gl.DeleteBuffers(1, &buffer);
       }},
      {"DrawArrays: GL_VERTEX_ARRAY reaches to byte 48 of a buffer of 36",
       [](Rgl& p_gl) { WithPositions(p_gl, [&] { p_gl.DrawArrays(RGL_POINTS, 1, 3); }); }},
      {"DrawElements: GL_VERTEX_ARRAY reaches to byte 48 of a buffer of 36",
       [](Rgl& p_gl) {
         const unsigned short indices[] = {0, 3, 1};
         WithPositions(p_gl, [&] { p_gl.DrawElements(RGL_TRIANGLES, 3, RGL_UNSIGNED_SHORT, indices); });
       }},
      {"DrawArrays: the buffer of GL_VERTEX_ARRAY is mapped",
       [](Rgl& p_gl) {
         WithPositions(p_gl, [&] {
           p_gl.MapBufferRange(RGL_ARRAY_BUFFER, 0, 36, RGL_MAP_WRITE_BIT);
           p_gl.DrawArrays(RGL_POINTS, 0, 3);
           p_gl.UnmapBuffer(RGL_ARRAY_BUFFER);
         });
       }},
      {"UnmapBuffer: the buffer is not mapped",
       [](Rgl& p_gl) { WithPositions(p_gl, [&] { p_gl.UnmapBuffer(RGL_ARRAY_BUFFER); }); }},
      {"DrawArrays: no positions, neither the vertex array nor attribute 0 is enabled",
       [](Rgl& p_gl) { p_gl.DrawArrays(RGL_POINTS, 0, 1); }},
      {"DrawElements: no indices", [](Rgl& p_gl) { p_gl.DrawElements(RGL_POINTS, 1, RGL_UNSIGNED_INT, nullptr); }},
      {"BufferData: no buffer is bound to GL_ARRAY_BUFFER",
       [](Rgl& p_gl) { p_gl.BufferData(RGL_ARRAY_BUFFER, 1, nullptr, RGL_STATIC_DRAW); }},
      {"Ortho: an empty volume", [](Rgl& p_gl) { p_gl.Ortho(0, 1, 2, 2, -1, 1); }},
      {"GenerateMipmap: the texture has no level 0",
       [](Rgl& p_gl) {
         const boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
         p_gl.Bind(texture, Rgl::Sampler2D);
         p_gl.GenerateMipmap(RGL_TEXTURE_2D);
       }},
  };
  for (const auto& [complaint, call] : cases) {
    RecordingGl fresh;
    call(*Scope(fresh.Handle()));
    EXPECT_EQ(fresh.Complaints(), Lines{complaint});
  }
}

TEST(RecorderEndCalls, ComplainsAboutOpenPairsAndLeaks) {
  RecordingGl fresh;
  boost::shared_ptr<Ogl::Texture> texture;
  {
    const Scope open(fresh.Handle());
    texture = open->GenTexture();
    open->NewQuadric();
    open->PushAttrib(RGL_ENABLE_BIT);
    open->PushClientAttrib(RGL_CLIENT_VERTEX_ARRAY_BIT);
    open->MatrixMode(RGL_PROJECTION);
    open->PushMatrix();
    open->NewList(open->GenLists(1), RGL_COMPILE_AND_EXECUTE);
    open->Begin(RGL_QUADS);
  }
  EXPECT_EQ(fresh.Complaints(),
            Calls("Begin(GL_QUADS) without End; NewList(2001) without EndList; "
                  "PushMatrix without PopMatrix: 1 of GL_PROJECTION; PushAttrib without PopAttrib: 1; "
                  "PushClientAttrib without PopClientAttrib: 1; display list 2001 was never deleted; "
                  "texture 1001 was never deleted; quadric1 was never deleted"));
  EXPECT_EQ(fresh.TakeComplaints(), Lines()) << "nothing of this is misuse yet";
}

TEST(RecorderEndCalls, ReportsObjectsThatOutliveIt) {
  auto fresh = std::make_unique<RecordingGl>();
  boost::shared_ptr<Ogl::Texture> texture = Scope(fresh->Handle())->GenTexture();
  fresh.reset();
  const ReportCapture reports;
  texture.reset();
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: RecordingGl: DeleteTextures without a recorder"});
}

TEST_F(RecordingGlCalls, ChosenCallsFail) {
  recorder.Fail("NewQuadric", 2);
  Ogl::GlQuadric* const first = gl->NewQuadric();
  EXPECT_EQ(gl->NewQuadric(), nullptr);
  EXPECT_EQ(gl->GetError(), RGL_NO_ERROR) << "a function of GLU raises no error of GL";
  gl->DeleteQuadric(first);

  recorder.FailCall(2);
  unsigned int names[] = {7, 7};
  gl->GenTextures(1, &names[0]);
  gl->GenTextures(1, &names[1]);
  EXPECT_TRUE(names[0] == 1001 && names[1] == 0);
  EXPECT_EQ(gl->GetError(), RGL_OUT_OF_MEMORY);
  EXPECT_EQ(gl->GetError(), RGL_NO_ERROR);
  gl->DeleteTextures(1, names);
}

} // namespace
