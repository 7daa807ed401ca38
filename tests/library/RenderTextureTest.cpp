#include "library/RenderTexture.h"
#include "tests/support/Test.h"

namespace {

using Floats = std::vector<float>;

std::string Incomplete(const std::string& p_status) {
  return "\"status == RGL_FRAMEBUFFER_COMPLETE && \"" + p_status +
         "\"\" - __cdecl Vek::Chart::Library::RenderTexture::RenderTexture(class Vek::Chart::Types::Size,enum "
         "Vek::Chart::Library::RenderTexture::ColorFormat,enum Vek::Chart::Library::RenderTexture::Space,int)";
}

int Integer(Scope& p_gl, Ogl::GlEnum p_name) {
  int value = -1;
  p_gl->GetIntegerv(p_name, &value);
  return value;
}

/// Clears the whole target, with floats that a QColor could not hold.
void Fill(Scope& p_gl, const RenderTexture& p_target, const std::array<float, 4>& p_color) {
  const boost::shared_ptr<void> bound = p_target.BindForDraw(p_gl);
  p_gl->ClearColor(p_color[0], p_color[1], p_color[2], p_color[3]);
  p_gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
}

/// A white rectangle, in pixels of the target, at depth 0.25.
void DrawRectangle(Scope& p_gl, const RenderTexture& p_target, double p_left, double p_bottom, double p_right,
                   double p_top) {
  const boost::shared_ptr<void> bound = p_target.BindForDraw(p_gl);
  const boost::shared_ptr<void> enables = p_gl->PushAttribScope(RGL_ENABLE_BIT);
  p_gl->Enable(RGL_DEPTH_TEST);
  p_gl->PushMatrix();
  p_gl->LoadIdentity();
  p_gl->Ortho(0, p_target.Size().width, 0, p_target.Size().height, -1, 1);
  p_gl->Color(Qt::white);
  p_gl->Begin(RGL_QUADS);
  for (const auto& [x, y] : {std::pair(p_left, p_bottom), {p_right, p_bottom}, {p_right, p_top}, {p_left, p_top}})
    p_gl->Vertex(x, y, 0.5);
  p_gl->End();
  p_gl->PopMatrix();
}

using RenderTextureCalls = RecordingScopeFixture;
using RenderTexturePixels = PixelScopeFixture;

TEST(MipInfo, HalvesDownToOneTexel) {
  const std::pair<Types::Size, std::vector<Types::Size>> cases[] = {
      {{5, 3}, {{5, 3}, {2, 1}, {1, 1}}}, {{1, 9}, {{1, 9}, {1, 4}, {1, 2}, {1, 1}}}, {{0, 3}, {}}, {{7, -1}, {}}};
  for (const auto& [size, expected] : cases) {
    const MipInfo mips(size);
    std::vector<Types::Size> sizes;
    for (int level = 0; level < mips.Levels(); ++level)
      sizes.push_back(mips.LevelSize(level));
    EXPECT_EQ(sizes, expected);
    EXPECT_EQ(mips.LevelSize(mips.Levels()), Types::Size());
    EXPECT_EQ(mips.LevelSize(-1), Types::Size());
  }
  EXPECT_EQ(MipInfo({2147483647, 1}).LevelSize(30), Types::Size(1, 1));
}

TEST_F(RenderTextureCalls, MakesItsObjectsOnceAndRestoresWhatWasBound) {
  const RenderTexture target({9, 3});
  EXPECT_EQ(recorder.Lines(), Lines());
  EXPECT_EQ(target.DepthTexture(gl)->Name(), 1002);
  {
    const boost::shared_ptr<void> bound = target.BindForRead(gl);
    EXPECT_EQ(Integer(gl, RGL_DRAW_FRAMEBUFFER_BINDING), 4001);
    EXPECT_EQ(Integer(gl, RGL_READ_FRAMEBUFFER_BINDING), 4001);
  }
  EXPECT_EQ(recorder.LinesOf({"TexImage2D", "BindTexture", "BindFramebuffer", "FramebufferTexture2D"}),
            Calls("BindTexture(GL_TEXTURE_2D, 1001); "
                  "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 9, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null); "
                  "BindTexture(GL_TEXTURE_2D, 1002); "
                  "TexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH24_STENCIL8, 9, 3, 0, GL_DEPTH_STENCIL, "
                  "GL_UNSIGNED_INT_24_8, null); BindTexture(GL_TEXTURE_2D, 0); "
                  "BindFramebuffer(GL_FRAMEBUFFER, 4001); "
                  "FramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 1001, 0); "
                  "FramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D, 1002, 0); "
                  "BindFramebuffer(GL_FRAMEBUFFER, 0); BindFramebuffer(GL_FRAMEBUFFER, 4001); "
                  "BindFramebuffer(GL_FRAMEBUFFER, 0)"));
  recorder.Clear();
  const RenderTexture copy = target;
  copy.BindColor(gl, RGL_TEXTURE0 + 2);
  copy.BindDepth(gl, RGL_TEXTURE0);
  EXPECT_EQ(Changes(), Calls("ActiveTexture(GL_TEXTURE2); BindTexture(GL_TEXTURE_2D, 1001); "
                             "Enable(GL_TEXTURE_2D); ActiveTexture(GL_TEXTURE0); "
                             "BindTexture(GL_TEXTURE_2D, 1002); Enable(GL_TEXTURE_2D)"));
}

TEST_F(RenderTextureCalls, SamplesAreLoweredAndResolvedOnceAfterDrawing) {
  recorder.SetInteger(RGL_MAX_SAMPLES, {4});
  const RenderTexture target({9, 3}, RenderTexture::Rgba8, RenderTexture::Srgb, 16);
  const auto resolves = [&] { return recorder.LinesOf({"BlitFramebuffer"}); };
  const std::string resolve =
      "BlitFramebuffer(0, 0, 9, 3, 0, 0, 9, 3, GL_DEPTH_BUFFER_BIT|GL_COLOR_BUFFER_BIT, GL_NEAREST)";
  target.BindForRead(gl);
  {
    const boost::shared_ptr<void> bound = target.BindForDraw(gl);
    EXPECT_EQ(Integer(gl, RGL_DRAW_FRAMEBUFFER_BINDING), 4002);
    EXPECT_EQ(Integer(gl, RGL_RENDERBUFFER_BINDING), 0);
    EXPECT_EQ(resolves(), Lines());
    target.ToImage(gl);
    target.ToImage(gl); // more may have been drawn
    EXPECT_EQ(resolves(), Lines(2, resolve));
  }
  target.DepthTexture(gl);
  target.ReadColors(gl);
  const RenderTexture copy = target;
  copy.BindColor(gl, RGL_TEXTURE0);
  EXPECT_EQ(resolves(), Lines(3, resolve));
  EXPECT_EQ(recorder.LinesOf({"RenderbufferStorageMultisample", "FramebufferRenderbuffer"}),
            Calls("RenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_SRGB8_ALPHA8, 9, 3); "
                  "FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, 5001); "
                  "RenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_DEPTH24_STENCIL8, 9, 3); "
                  "FramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, 5002)"));
}

TEST_F(RenderTextureCalls, MipsAreMadeAgainAfterDrawing) {
  const RenderTexture target({9, 3});
  const auto made = [&] { return recorder.LinesOf({"GenerateMipmap"}).size(); };
  target.BindForDraw(gl);
  target.BindColor(gl, RGL_TEXTURE0);
  EXPECT_EQ(made(), 0) << "not asked for";
  target.GenerateMips(gl);
  target.BindColor(gl, RGL_TEXTURE0);
  EXPECT_EQ(made(), 1);
  for (const bool draw : {true, false}) {
    draw ? target.BindForDraw(gl) : target.BindForRead(gl);
    target.ToImage(gl);
    target.ColorTexture(gl);
    target.BindColor(gl, RGL_TEXTURE0);
    EXPECT_EQ(made(), draw ? 2 : 3);
  }
  const boost::shared_ptr<void> drawing = target.BindForDraw(gl);
  for (const std::size_t count : {4, 5}) { // more may have been drawn
    target.BindColor(gl, RGL_TEXTURE0);
    EXPECT_EQ(made(), count);
  }
}

TEST_F(RenderTextureCalls, IncompleteFrameBuffersAreReportedByName) {
  const std::pair<Ogl::GlEnum, std::string> cases[] = {
      {RGL_FRAMEBUFFER_UNDEFINED, "UNDEFINED"},
      {RGL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, "INCOMPLETE_ATTACHMENT"},
      {RGL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT, "INCOMPLETE_MISSING_ATTACHMENT"},
      {RGL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER, "INCOMPLETE_DRAW_BUFFER"},
      {RGL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER, "INCOMPLETE_READ_BUFFER"},
      {RGL_FRAMEBUFFER_UNSUPPORTED, "UNSUPPORTED"},
      {RGL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE, "INCOMPLETE_MULTISAMPLE"},
  };
  for (const auto& [status, name] : cases) {
    const ReportCapture reports;
    recorder.SetFramebufferStatus(status);
    const RenderTexture target({9, 3}, RenderTexture::Float, RenderTexture::Linear, 4);
    target.GenerateMips(gl);
    EXPECT_EQ(target.ReadDepths(gl), Floats());
    EXPECT_FALSE(target.Complete());
    EXPECT_EQ(reports.Texts(), Lines(2, Incomplete("GL_FRAMEBUFFER_" + name + ", 9 x 3, 0 samples"))) << "each attempt";
  }
  EXPECT_EQ(recorder.LinesOf({"ReadPixels", "GenerateMipmap", "GenRenderbuffers"}), Lines());
}

TEST_F(RenderTextureCalls, AFailureIsReportedAndTheNextReadSucceeds) {
  recorder.SetInteger(RGL_MAX_SAMPLES, {4});
  // The call that fails, what is reported, the values read at once, whether samples are drawn to afterwards.
  const std::tuple<const char*, std::size_t, std::string, std::size_t, bool> cases[] = {
      {"GenTextures", 2, "GenTexture(void)", 0, true},
      {"TexImage2D", 1, "GL_OUT_OF_MEMORY - __cdecl Vek::Chart::Library::RenderTexture::RenderTexture(", 0, true},
      {"GenFramebuffers", 1, "GenFrameBufferObject(void)", 0, true},
      {"CheckFramebufferStatus", 1, "status 0, 9 x 3, 0 samples", 0, true},
      {"GetIntegerv", 1, "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, 9 x 3, 0 samples", 0, true},
      {"ReadPixels", 1, "GL_OUT_OF_MEMORY - class std::vector", 0, true},
      {"GenRenderbuffers", 2, "GenRenderBuffer(void)", 27, false},
      {"CheckFramebufferStatus", 2, "status 0, 9 x 3, 4 samples", 27, false},
  };
  for (const auto& [call, number, report, values, sampled] : cases) {
    SCOPED_TRACE(call + std::to_string(number));
    const ReportCapture reports;
    recorder.Clear();
    recorder.Fail(call, number);
    const RenderTexture target({9, 3}, RenderTexture::Float, RenderTexture::Linear, 8);
    EXPECT_EQ(target.ReadDepths(gl).size(), values);
    ASSERT_NE(reports.Texts(), Lines());
    EXPECT_NE(reports.Texts()[0].find(report), std::string::npos) << reports.Texts()[0];
    EXPECT_EQ(target.ToImage(gl).size(), QSize(9, 3));
    const auto name = [&](const boost::shared_ptr<void>&) { return Integer(gl, RGL_DRAW_FRAMEBUFFER_BINDING); };
    EXPECT_EQ(name(target.BindForDraw(gl)) != name(target.BindForRead(gl)), sampled);
  }
}

TEST_F(RenderTextureCalls, WithoutAFrameBufferNothingIsBound) {
  const ReportCapture reports;
  const RenderTexture target({9, 3});
  for (const bool draw : {true, false}) {
    recorder.Fail("GenFramebuffers");
    EXPECT_EQ(draw ? target.BindForDraw(gl) : target.BindForRead(gl), nullptr);
  }
  EXPECT_EQ(recorder.LinesOf({"BindFramebuffer", "Viewport"}), Lines());
}

TEST_F(RenderTexturePixels, KnownClearsComeBack) {
  const std::tuple<RenderTexture::ColorFormat, std::array<float, 4>, Floats> cases[] = {
      {RenderTexture::Rgba8, {0.2F, 1.5F, -1, 0.6F}, {0.2F, 1, 0, 0.6F}},
      {RenderTexture::ColorFormat(4), {0.2F, 1.5F, -1, 0.6F}, {0.2F, 1, 0, 0.6F}}, // unlisted
      {RenderTexture::RgbaHalf, {0.5F, 60000, -3, 0.25F}, {0.5F, 60000, -3, 0.25F}},
      {RenderTexture::RgbaFloat, {1e10F, -1e10F, 1e-30F, 7}, {1e10F, -1e10F, 1e-30F, 7}},
      {RenderTexture::Float, {-1e10F, 5, 6, 7}, {-1e10F}},
  };
  for (const auto& [format, color, expected] : cases) {
    SCOPED_TRACE(format);
    const RenderTexture target({5, 3}, format);
    Fill(gl, target, color);
    const Floats colors = target.ReadColors(gl);
    ASSERT_EQ(colors.size(), 15 * expected.size());
    for (std::size_t i = 0; i < colors.size(); ++i)
      EXPECT_FLOAT_EQ(colors[i], expected[i % expected.size()]) << i;
    EXPECT_EQ(target.ReadDepths(gl), Floats(15, 1.0F));
  }
}

TEST_F(RenderTexturePixels, RowsAndDepthsWhateverTheHostHasSet) {
  gl->PushClientAttrib(RGL_CLIENT_PIXEL_STORE_BIT);
  gl->PixelStorei(RGL_PACK_SKIP_ROWS, 100);
  for (const Ogl::GlEnum bias : {RGL_RED_BIAS, RGL_DEPTH_BIAS})
    gl->PixelTransferf(bias, 0.125F);
  const RenderTexture target({5, 3});
  Fill(gl, target, {0, 0, 0, 1});
  DrawRectangle(gl, target, 1, 0, 3, 2);
  EXPECT_EQ(Map(target.ToImage(gl), Qt::white, Qt::black), ".....\n.##..\n.##..\n");
  Floats depths = target.ReadDepths(gl);
  for (float& depth : depths)
    depth = std::round(depth * 1e6F) / 1e6F;
  EXPECT_EQ(depths, (Floats{1, 0.25, 0.25, 1, 1, 1, 0.25, 0.25, 1, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(target.ReadColors(gl)[4 * 1], 1.0F) << "the lowest row is the first";
  EXPECT_EQ(Integer(gl, RGL_PACK_SKIP_ROWS), 100);
  gl->PopClientAttrib();
}

TEST_F(RenderTexturePixels, BindsNest) {
  const auto state = [this] {
    std::array<int, 6> values{
        0, 0, 0, 0, Integer(gl, RGL_DRAW_FRAMEBUFFER_BINDING), Integer(gl, RGL_READ_FRAMEBUFFER_BINDING)};
    gl->GetIntegerv(RGL_VIEWPORT, values.data());
    return values;
  };
  const auto host = state();
  const RenderTexture outer({9, 3}), inner({5, 3});
  {
    const boost::shared_ptr<void> first = outer.BindForDraw(gl);
    const auto drawing = state();
    EXPECT_EQ(drawing, (std::array<int, 6>{0, 0, 9, 3, drawing[4], drawing[4]}));
    inner.BindForRead(gl);
    inner.BindForDraw(gl);
    EXPECT_EQ(state(), drawing);
  }
  EXPECT_EQ(state(), host);
}

TEST_F(RenderTexturePixels, SamplesResolveToGreyAtAnEdge) {
  // Half black, half white.
  for (const auto& [space, grey] : {std::pair(RenderTexture::Linear, 128), {RenderTexture::Srgb, 188}}) {
    SCOPED_TRACE(space);
    const RenderTexture target({5, 3}, RenderTexture::Rgba8, space, 4);
    Fill(gl, target, {0, 0, 0, 1});
    DrawRectangle(gl, target, 0, 0, 2.5, 3);
    gl->Enable(RGL_SCISSOR_TEST); // the host's, which must not cut the resolve
    gl->Scissor(0, 0, 1, 1);
    const QImage image = target.ToImage(gl);
    EXPECT_TRUE(SameColor(image.pixel(1, 0), Qt::white));
    EXPECT_TRUE(SameColor(image.pixel(2, 1), QColor(grey, grey, grey), 2));
    EXPECT_TRUE(SameColor(image.pixel(3, 0), Qt::black));
    EXPECT_NEAR(target.ReadDepths(gl)[1], 0.25, 1e-6);
    gl->Disable(RGL_SCISSOR_TEST);
  }
}

TEST_F(RenderTexturePixels, MipLevelsAreMeans) {
  // Drawn small, the smallest level shows: white in one column of four is a quarter. Level 0 is black in its middle.
  const RenderTexture striped({4, 4}), small({1, 1});
  Fill(gl, striped, {0, 0, 0, 1});
  DrawRectangle(gl, striped, 0, 0, 1, 4);
  striped.BindColor(gl, RGL_TEXTURE0); // bound while the levels are made
  striped.GenerateMips(gl);
  int width = 0;
  gl->GetTexLevelParameteriv(RGL_TEXTURE_2D, striped.Mips().Levels() - 1, RGL_TEXTURE_WIDTH, &width);
  EXPECT_EQ(width, 1);
  gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, static_cast<int>(RGL_REPLACE));
  {
    const boost::shared_ptr<void> bound = small.BindForDraw(gl);
    DrawTexturedSquare(gl);
  }
  EXPECT_TRUE(SameColor(small.ToImage(gl).pixel(0, 0), QColor(64, 64, 64), 1));
}

TEST_F(RenderTexturePixels, SizesThatGlRefusesAreReportedAndHarmless) {
  const int beyond = gl->GetMaxTextureSize() + 1;
  for (const Types::Size size : {Types::Size(0, 3), Types::Size(3, 0), Types::Size(-5, -7), Types::Size(beyond, 1),
                                 Types::Size(1, 2147483647)}) {
    const ReportCapture reports;
    const RenderTexture target(size, RenderTexture::Rgba8, RenderTexture::Linear, 4);
    EXPECT_TRUE(target.ToImage(gl).isNull());
    EXPECT_EQ(target.ReadColors(gl), Floats());
    target.GenerateMips(gl);
    EXPECT_EQ(reports.Texts(), Lines{Incomplete("GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, " + std::to_string(size.width) +
                                                " x " + std::to_string(size.height) + ", 0 samples")});
    EXPECT_TRUE(gl->CheckError("an impossible size"));
  }
}

} // namespace
