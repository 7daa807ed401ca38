#include "platform/ogl/RecordingGl.h"

#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"

#include <functional>

using namespace Vek::Chart;
using Vek::Test::Lines;

namespace {

using Scope = Utility::Scoped<Rgl>;

class RecordingGlCalls : public Vek::Test::RecordingFixture {};

TEST_F(RecordingGlCalls, WritesArgumentsByNameAndValue) {
  struct Case {
    const char* line;
    std::function<void(Rgl&)> call;
  };
  const double matrix[16] = {1, 0, 0, 0, 0, 0.1, 0, 0, 0, 0, -0.0, 0, 1e300, 0, 0, 1};
  const float light[4] = {0.1F, 1, 0, 0.5F};
  unsigned char mask[128] = {};
  int value = 0;
  const Case cases[] = {
      {"Begin(GL_POINTS)", [](Rgl& p_gl) { p_gl.Begin(RGL_POINTS); }},
      {"End()", [](Rgl& p_gl) { p_gl.End(); }},
      {"Begin(GL_LINES)", [](Rgl& p_gl) { p_gl.Begin(RGL_LINES); }},
      {"Color4d(0.2, 0.4, 1, 0)", [](Rgl& p_gl) { p_gl.Color(QColor::fromRgbF(0.2, 0.4, 1, 0)); }},
      {"Vertex3d(-1.5, 0, 1e-20)", [](Rgl& p_gl) { p_gl.Vertex(-1.5, 0, 1e-20); }},
      {"Vertex2i(-3, 7)", [](Rgl& p_gl) { p_gl.Pixel(-3, 7); }},
      {"MultiTexCoord3d(GL_TEXTURE3, 1, 2, 3)",
       [](Rgl& p_gl) {
         p_gl.MultiTexCoord(RGL_TEXTURE0 + 3, {1, 2, 3});
       }},
      {"End()", [](Rgl& p_gl) { p_gl.End(); }},
      {"BlendFuncSeparate(GL_DST_COLOR, GL_ZERO, GL_ONE, GL_SRC_ALPHA)",
       [](Rgl& p_gl) { p_gl.BlendFuncSeparate(RGL_DST_COLOR, RGL_ZERO, RGL_ONE, RGL_SRC_ALPHA); }},
      {"DrawBuffer(GL_NONE)", [](Rgl& p_gl) { p_gl.DrawBuffer(RGL_NONE); }},
      {"Hint(GL_LINE_SMOOTH_HINT, 0x7777)", [](Rgl& p_gl) { p_gl.Hint(RGL_LINE_SMOOTH_HINT, 0x7777); }},
      {"Clear(GL_DEPTH_BUFFER_BIT|GL_STENCIL_BUFFER_BIT|GL_COLOR_BUFFER_BIT)",
       [](Rgl& p_gl) { p_gl.Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT); }},
      {"Clear(0)", [](Rgl& p_gl) { p_gl.Clear(0); }},
      {"PushAttrib(GL_ALL_ATTRIB_BITS)", [](Rgl& p_gl) { p_gl.PushAttrib(RGL_ALL_ATTRIB_BITS); }},
      {"PopAttrib()", [](Rgl& p_gl) { p_gl.PopAttrib(); }},
      {"PushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT|GL_CLIENT_VERTEX_ARRAY_BIT)",
       [](Rgl& p_gl) { p_gl.PushClientAttrib(3); }},
      {"PopClientAttrib()", [](Rgl& p_gl) { p_gl.PopClientAttrib(); }},
      {"DepthMask(GL_FALSE)", [](Rgl& p_gl) { p_gl.DepthMask(0); }},
      {"LineStipple(2, 0x00FF)", [](Rgl& p_gl) { p_gl.LineStipple(2, 0xFF); }},
      {"ClearColor(0.1, 0, 0, 1)", [](Rgl& p_gl) { p_gl.ClearColor(0.1F, 0, 0, 1); }},
      {"LoadMatrixd([1 0 0 0 0 0.1 0 0 0 0 -0 0 1e+300 0 0 1])", [&](Rgl& p_gl) { p_gl.LoadMatrixd(matrix); }},
      {"Lightfv(GL_LIGHT0, GL_POSITION, [0.1 1 0 0.5])",
       [&](Rgl& p_gl) { p_gl.Lightfv(RGL_LIGHT0, RGL_POSITION, light); }},
      {"Materialfv(GL_FRONT, GL_SHININESS, [0.1])",
       [&](Rgl& p_gl) { p_gl.Materialfv(RGL_FRONT, RGL_SHININESS, light); }},
      {"PolygonStipple(mask 0x8421AE126C7CED25)", [&](Rgl& p_gl) { p_gl.PolygonStipple(mask); }},
      {"GetIntegerv(GL_MATRIX_MODE, ptr)", [&](Rgl& p_gl) { p_gl.GetIntegerv(RGL_MATRIX_MODE, &value); }},
      {"TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE)",
       [](Rgl& p_gl) { p_gl.TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE); }},
      {"TexEnvi(GL_POINT_SPRITE, GL_COORD_REPLACE, 1)",
       [](Rgl& p_gl) { p_gl.TexEnvi(RGL_POINT_SPRITE, RGL_COORD_REPLACE, 1); }},
  };
  const Scope gl(recorder.Handle());
  for (const Case& row : cases) {
    recorder.Clear();
    row.call(*gl);
    EXPECT_EQ(recorder.Lines(), Lines{row.line});
  }
}

// Every row is a fault; the recorder must name it.
TEST_F(RecordingGlCalls, ComplainsAboutMisuse) {
  struct Case {
    const char* complaint;
    std::function<void(Rgl&)> call;
  };
  const unsigned int stranger = 77;
  static const unsigned char pixels[64] = {};
  const Case cases[] = {
      {"Enable: not allowed between Begin and End",
       [](Rgl& p_gl) {
         p_gl.Begin(RGL_LINE_STRIP);
         p_gl.Enable(RGL_BLEND);
         p_gl.End();
       }},
      {"End: 5 vertices leave a remainder for GL_QUADS",
       [](Rgl& p_gl) {
         p_gl.Begin(RGL_QUADS);
         for (int i = 0; i < 5; ++i)
           p_gl.Vertex(i, 0, 0);
         p_gl.End();
       }},
      {"End: without Begin", [](Rgl& p_gl) { p_gl.End(); }},
      {"Vertex3d: outside Begin and End", [](Rgl& p_gl) { p_gl.Vertex(0, 0, 0); }},
      {"PopMatrix: without PushMatrix", [](Rgl& p_gl) { p_gl.PopMatrix(); }},
      {"PopAttrib: nothing was pushed", [](Rgl& p_gl) { p_gl.PopAttrib(); }},
      {"LineWidth: not above 0", [](Rgl& p_gl) { p_gl.LineWidth(0); }},
      {"EndList: without NewList", [](Rgl& p_gl) { p_gl.EndList(); }},
      {"CallList: 77 names no display list", [](Rgl& p_gl) { p_gl.CallList(77); }},
      {"DeleteTextures: 77 names no texture", [&](Rgl& p_gl) { p_gl.DeleteTextures(1, &stranger); }},
      {"BindBuffer: 77 names no buffer", [&](Rgl& p_gl) { p_gl.BindBuffer(RGL_ARRAY_BUFFER, stranger); }},
      {"TexImage2D: no texture is bound to GL_TEXTURE_2D",
       [](Rgl& p_gl) { p_gl.TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGBA, 1, 1, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, pixels); }},
      {"Cylinder: no such quadric", [](Rgl& p_gl) { p_gl.Cylinder(nullptr, 1, 1, 1, 8, 1); }},
      {"BindTexture: texture 1001 was bound to GL_TEXTURE_2D before",
       [](Rgl& p_gl) {
         const boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
         p_gl.Bind(texture, Rgl::Sampler2D);
         p_gl.Bind(texture, Rgl::Sampler3D);
       }},
      {"TexImage2D: no pixels of GL_RGB and GL_UNSIGNED_INT_8_8_8_8_REV",
       [](Rgl& p_gl) {
         const boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
         p_gl.Bind(texture, Rgl::Sampler2D);
         p_gl.TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGB, 1, 1, 0, RGL_RGB, RGL_UNSIGNED_INT_8_8_8_8_REV, pixels);
       }},
      {"TexImage2D: larger than 4096",
       [](Rgl& p_gl) {
         const boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
         p_gl.Bind(texture, Rgl::Sampler2D);
         p_gl.TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGBA, 4097, 1, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, nullptr);
       }},
      {"TexImage2D: 40 bytes at 25 in a pixel buffer of 64",
       [](Rgl& p_gl) {
         unsigned int buffer = 0;
         p_gl.GenBuffers(1, &buffer);
         p_gl.BindBuffer(RGL_PIXEL_UNPACK_BUFFER, buffer);
         p_gl.BufferData(RGL_PIXEL_UNPACK_BUFFER, 64, pixels, RGL_STATIC_DRAW);
         const boost::shared_ptr<Ogl::Texture> texture = p_gl.GenTexture();
         p_gl.Bind(texture, Rgl::Sampler2D);
         // NOLINTNEXTLINE: an offset into the buffer
         p_gl.TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGBA, 5, 2, 0, RGL_RGBA, RGL_UNSIGNED_BYTE,
                         reinterpret_cast<const void*>(25));
         p_gl.DeleteBuffers(1, &buffer);
       }},
  };
  for (const Case& row : cases) {
    Ogl::RecordingGl fresh;
    row.call(*Scope(fresh.Handle()));
    EXPECT_EQ(fresh.Complaints(), Lines{row.complaint});
  }
}

TEST_F(RecordingGlCalls, ComplainsAboutWhatIsLeftOpen) {
  Ogl::RecordingGl fresh;
  boost::shared_ptr<Ogl::Texture> texture;
  {
    const Scope gl(fresh.Handle());
    texture = gl->GenTexture();
    gl->NewQuadric();
    gl->PushAttrib(RGL_ENABLE_BIT);
    gl->PushClientAttrib(RGL_CLIENT_VERTEX_ARRAY_BIT);
    gl->MatrixMode(RGL_PROJECTION);
    gl->PushMatrix();
    gl->NewList(gl->GenLists(1), RGL_COMPILE_AND_EXECUTE);
    gl->Begin(RGL_QUADS);
  }
  const Lines expected = {"Begin(GL_QUADS) without End",
                          "NewList(2001) without EndList",
                          "PushMatrix without PopMatrix: 1 of GL_PROJECTION",
                          "PushAttrib without PopAttrib: 1",
                          "PushClientAttrib without PopClientAttrib: 1",
                          "display list 2001 was never deleted",
                          "texture 1001 was never deleted",
                          "quadric1 was never deleted"};
  EXPECT_EQ(fresh.Complaints(), expected);
  EXPECT_EQ(fresh.TakeComplaints(), Lines()) << "nothing of this is misuse yet";
}

TEST_F(RecordingGlCalls, AnObjectThatOutlivesItsRecorderIsReported) {
  boost::shared_ptr<Ogl::Texture> texture;
  {
    Ogl::RecordingGl fresh;
    texture = Scope(fresh.Handle())->GenTexture();
  }
  Vek::Test::ReportCapture reports;
  texture.reset();
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: RecordingGl: DeleteTextures without a recorder"});
}

TEST_F(RecordingGlCalls, AttributeGroupsRestoreTheirStateOnly) {
  const Scope gl(recorder.Handle());
  const auto integer = [&gl](Ogl::GlEnum p_name) {
    int value = -1;
    gl->GetIntegerv(p_name, &value);
    return value;
  };
  gl->LineWidth(3);
  gl->PushAttrib(RGL_LINE_BIT | RGL_ENABLE_BIT);
  gl->LineWidth(5);
  gl->Enable(RGL_BLEND);
  gl->DepthFunc(RGL_ALWAYS);
  gl->PopAttrib();
  EXPECT_EQ(integer(RGL_LINE_WIDTH), 3);
  EXPECT_FALSE(gl->IsEnabled(RGL_BLEND));
  EXPECT_EQ(integer(RGL_DEPTH_FUNC), static_cast<int>(RGL_ALWAYS)) << "not in the groups that were pushed";
  gl->ActiveTexture(RGL_TEXTURE0 + 1);
  gl->Enable(RGL_TEXTURE_2D);
  gl->ActiveTexture(RGL_TEXTURE0);
  EXPECT_FALSE(gl->IsEnabled(RGL_TEXTURE_2D)) << "enabled on unit 1 only";
}

TEST_F(RecordingGlCalls, MatricesMultiplyAsInGl) {
  const Scope gl(recorder.Handle());
  gl->Translate({1, 2, 3});
  gl->Scale({2, 4, 8});
  double matrix[16] = {};
  gl->GetDoublev(RGL_MODELVIEW_MATRIX, matrix);
  const double expected[16] = {2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 8, 0, 1, 2, 3, 1};
  EXPECT_TRUE(std::equal(expected, expected + 16, matrix));
  gl->LoadIdentity();
  gl->Rotate(Types::Angle::FromDegrees(90), {0, 0, 1});
  gl->GetDoublev(RGL_MODELVIEW_MATRIX, matrix);
  EXPECT_NEAR(matrix[1], 1, 1e-15) << "x turns to y";
  EXPECT_NEAR(matrix[4], -1, 1e-15) << "y turns to -x";
}

TEST_F(RecordingGlCalls, CompiledListsChangeNoState) {
  const Scope gl(recorder.Handle());
  const boost::shared_ptr<Ogl::DisplayList> list = gl->GenDisplayList();
  {
    const boost::shared_ptr<void> recording = list->Compile();
    gl->Enable(RGL_LIGHTING);
    gl->Translate({1, 0, 0});
  }
  EXPECT_FALSE(gl->IsEnabled(RGL_LIGHTING));
  EXPECT_EQ(recorder.ListLines(list->Name()), (Lines{"Enable(GL_LIGHTING)", "Translated(1, 0, 0)"}));
}

TEST_F(RecordingGlCalls, TexturesHoldWhatTheUnpackStateSelects) {
  const Scope gl(recorder.Handle());
  const boost::shared_ptr<Ogl::Texture> texture = gl->GenTexture();
  gl->Bind(texture, Rgl::Sampler2D);
  // Two rows of three bytes; GL's first alignment of 4 pads each row to four.
  const unsigned char padded[] = {1, 2, 3, 99, 4, 5, 6};
  gl->TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGB8, 1, 2, 0, RGL_RGB, RGL_UNSIGNED_BYTE, padded);
  const Ogl::RecordingGl::TextureLevel& level = recorder.FindTexture(texture->Name())->levels.at(0);
  EXPECT_EQ(level.pixels, (std::vector<unsigned char>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(level.internal_format, RGL_RGB8);
  const unsigned char tight[] = {1, 2, 3, 4, 5, 6};
  gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 1);
  gl->TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGB8, 1, 2, 0, RGL_RGB, RGL_UNSIGNED_BYTE, tight);
  EXPECT_EQ(level.pixels, (std::vector<unsigned char>{1, 2, 3, 4, 5, 6}));
}

TEST_F(RecordingGlCalls, ReadPixelsFindsTheColoursThatWereSet) {
  recorder.SetPixel(4, 2, {1, 2, 3, 4});
  const Scope gl(recorder.Handle());
  unsigned char rgba[8] = {9, 9, 9, 9, 9, 9, 9, 9};
  gl->ReadPixels(3, 2, 2, 1, RGL_RGBA, RGL_UNSIGNED_BYTE, rgba);
  EXPECT_EQ(std::vector<int>(rgba, rgba + 8), (std::vector<int>{0, 0, 0, 0, 1, 2, 3, 4}));
  gl->ReadPixels(4, 2, 1, 1, RGL_BGRA, RGL_UNSIGNED_INT_8_8_8_8_REV, rgba);
  EXPECT_EQ(std::vector<int>(rgba, rgba + 4), (std::vector<int>{3, 2, 1, 4}));
}

TEST_F(RecordingGlCalls, ChosenCallsFail) {
  const Scope gl(recorder.Handle());
  recorder.Fail("NewQuadric", 2);
  Ogl::GlQuadric* const first = gl->NewQuadric();
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(gl->NewQuadric(), nullptr);
  EXPECT_EQ(gl->GetError(), RGL_NO_ERROR) << "a function of GLU raises no error of GL";
  gl->DeleteQuadric(first);

  unsigned int name = 123;
  recorder.Fail("GenTextures");
  gl->GenTextures(1, &name);
  EXPECT_EQ(name, 0U);
  EXPECT_EQ(gl->GetError(), RGL_OUT_OF_MEMORY);
  EXPECT_EQ(gl->GetError(), RGL_NO_ERROR);

  recorder.FailCall(2);
  gl->Enable(RGL_BLEND);
  gl->Enable(RGL_LIGHTING);
  EXPECT_TRUE(gl->IsEnabled(RGL_BLEND));
  EXPECT_FALSE(gl->IsEnabled(RGL_LIGHTING));
}

TEST_F(RecordingGlCalls, LinesCanBeChosenByName) {
  const Scope gl(recorder.Handle());
  gl->Enable(RGL_BLEND);
  gl->IsEnabled(RGL_BLEND);
  gl->Disable(RGL_BLEND);
  EXPECT_EQ(recorder.LinesOf({"Disable", "Enable"}), (Lines{"Enable(GL_BLEND)", "Disable(GL_BLEND)"}));
  EXPECT_EQ(recorder.LinesWithout({"Disable", "Enable"}), Lines{"IsEnabled(GL_BLEND)"});
}

TEST_F(RecordingGlCalls, EachScopeCallsItsOwnRecorder) {
  Ogl::RecordingGl other;
  const Scope gl(recorder.Handle());
  {
    const Scope other_gl(other.Handle());
    other_gl->Finish();
  }
  Scope(recorder.Handle())->LoadIdentity();
  EXPECT_EQ(other.Lines(), Lines{"Finish()"});
}

} // namespace
