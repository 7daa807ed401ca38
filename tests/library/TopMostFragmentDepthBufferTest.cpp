#include "library/TopMostFragmentDepthBuffer.h"

#include "library/DepthPass.h"
#include "platform/ogl/HitRecord.h"
#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

namespace {

const std::string Location =
    "bool __cdecl Vek::Chart::Library::TopMostFragmentDepthBuffer::GetDepthAt(class Vek::Chart::Utility::Scoped<class "
    "Vek::Chart::Ogl::Rgl> &,const class Vek::Chart::Types::Viewport<0>,const class Vek::Chart::Types::Pos &,const "
    "class Vek::Chart::Core::TimeStamp &,const class boost::function<void __cdecl(enum "
    "Vek::Chart::Library::DepthCodec::Encoding)> &,const class boost::function<void __cdecl(unsigned int,float)> &) "
    "@line86";

/// One pick, and what it called.
struct Pick {
  bool hit = false;
  int renders = 0;
  std::vector<std::pair<unsigned int, float>> results;

  Pick(Scope& p_gl, TopMostFragmentDepthBuffer& p_picker, const Types::Viewport<0>& p_viewport,
       const Types::Pos& p_position, const Core::TimeStamp& p_stamp, const boost::function<void()>& p_render = {}) {
    hit = p_picker.GetDepthAt(
        p_gl, p_viewport, p_position, p_stamp,
        [&](DepthCodec::Encoding p_encoding) {
          EXPECT_EQ(p_encoding, 0);
          ++renders;
          if (p_render)
            p_render();
        },
        [&](unsigned int p_index, float p_depth) { results.emplace_back(p_index, p_depth); });
  }
};

class TopMostFragmentDepthBufferCalls : public Vek::Test::RecordingFixture {};
class TopMostFragmentDepthBufferPixels : public Vek::Test::PixelFixture {};

TEST_F(TopMostFragmentDepthBufferCalls, StepsInOrder) {
  Scope gl(recorder.Handle());
  gl->Features();
  TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp stamp;
  recorder.Clear();
  recorder.SetPixel(4, 1, {127, 127, 127, 127});
  recorder.QueueError(RGL_INVALID_OPERATION);
  const ReportCapture reports;
  // The viewport's corner does not count, fractions of its size are cut off.
  const Pick first(gl, picker, {40, 50, 9.75F, 3.5F}, {4, 1}, stamp, [&] { gl->Enable(RGL_BLEND); });
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: GL_INVALID_OPERATION - " + Location});
  EXPECT_TRUE(first.hit);
  EXPECT_EQ(first.renders, 1);
  EXPECT_EQ(first.results,
            (std::vector<std::pair<unsigned int, float>>{{0U, DepthCodec::Decode({{127, 127, 127, 127}})}}));
  const Lines making = {"GenTextures",
                        "BindTexture",
                        "TexImage2D",
                        "TexParameteri",
                        "GenFramebuffers",
                        "FramebufferTexture2D",
                        "GetIntegerv",
                        "PixelStorei",
                        "GetTexLevelParameteriv",
                        "PushClientAttrib",
                        "PopClientAttrib",
                        "BindBuffer",
                        "CheckFramebufferStatus",
                        "GetFloatv",
                        "GetString"};
  Lines lines = recorder.LinesWithout(making);
  // While it was made, the frame buffer was bound once.
  lines.erase(lines.begin() + 1, lines.begin() + 3);
  EXPECT_EQ(
      lines,
      (Lines{"PushAttrib(GL_VIEWPORT_BIT|GL_ENABLE_BIT|GL_COLOR_BUFFER_BIT)", "BindFramebuffer(GL_FRAMEBUFFER, 4001)",
             "Viewport(0, 0, 9, 3)", "Disable(GL_FRAMEBUFFER_SRGB)", "ClearColor(0, 0, 0, 0)",
             "Clear(GL_DEPTH_BUFFER_BIT|GL_STENCIL_BUFFER_BIT|GL_COLOR_BUFFER_BIT)", "Disable(GL_STENCIL_TEST)",
             "Enable(GL_DEPTH_TEST)", "Enable(GL_BLEND)", "ReadPixels(4, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, ptr)",
             "GetError()", "GetError()", "BindFramebuffer(GL_FRAMEBUFFER, 0)", "PopAttrib()"}));
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).at(0),
            "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 9, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)");

  recorder.Clear();
  const Pick second(gl, picker, {0, 0, 9, 3}, {5, 1}, stamp);
  EXPECT_FALSE(second.hit); // nothing there
  EXPECT_EQ(second.renders, 0);
  EXPECT_TRUE(second.results.empty());
  EXPECT_EQ(recorder.LinesWithout({"GetIntegerv", "GetFloatv"}),
            (Lines{"PushAttrib(GL_VIEWPORT_BIT|GL_ENABLE_BIT|GL_COLOR_BUFFER_BIT)",
                   "BindFramebuffer(GL_FRAMEBUFFER, 4001)", "Viewport(0, 0, 9, 3)", "Disable(GL_FRAMEBUFFER_SRGB)",
                   "ReadPixels(5, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, ptr)", "GetError()",
                   "BindFramebuffer(GL_FRAMEBUFFER, 0)", "PopAttrib()"}));
}

TEST_F(TopMostFragmentDepthBufferCalls, DrawsAgainForNewStampsAndSizesOnly) {
  struct Case {
    const char* name;
    Types::Viewport<0> viewport;
    int stamp;
    int renders;
    std::size_t targets; ///< made for this pick
  };
  const Case cases[] = {
      {"first", {0, 0, 9, 3}, 0, 1, 1},        {"same", {0, 0, 9, 3}, 0, 0, 0},
      {"elsewhere", {7, 7, 9.5F, 3}, 0, 0, 0}, {"new scene", {0, 0, 9, 3}, 1, 1, 0},
      {"back", {0, 0, 9, 3}, 0, 1, 0},         {"wider", {0, 0, 10, 3}, 0, 1, 1},
      {"same again", {0, 0, 10, 3}, 0, 0, 0},  {"lower", {0, 0, 10, 2}, 0, 1, 1},
  };
  Scope gl(recorder.Handle());
  TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp stamps[2];
  for (const Case& row : cases) {
    recorder.Clear();
    const Pick pick(gl, picker, row.viewport, {0, 0}, stamps[row.stamp]);
    EXPECT_EQ(pick.renders, row.renders) << row.name;
    EXPECT_EQ(recorder.LinesOf({"GenFramebuffers"}).size(), row.targets) << row.name;
    EXPECT_EQ(recorder.LinesOf({"DeleteFramebuffers"}).size(),
              pick.renders == 1 && row.name[0] != 'f' ? row.targets : 0)
        << row.name;
  }
}

TEST_F(TopMostFragmentDepthBufferCalls, AfterAThrowingCallbackEachPickDraws) {
  Scope gl(recorder.Handle());
  TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp shown, broken;
  const auto renders = [&](const Core::TimeStamp& p_stamp) {
    return Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, p_stamp).renders;
  };
  EXPECT_EQ(renders(shown), 1);
  recorder.Clear();
  EXPECT_THROW(Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, broken, [] { throw std::runtime_error("no scene"); }),
               std::runtime_error);
  const Lines lines = recorder.Lines();
  EXPECT_EQ(Lines(lines.end() - 2, lines.end()), (Lines{"BindFramebuffer(GL_FRAMEBUFFER, 0)", "PopAttrib()"}));
  EXPECT_EQ(recorder.LinesOf({"ReadPixels"}), Lines());
  EXPECT_EQ(renders(shown), 1) << "the target holds half of the broken scene";
  EXPECT_EQ(renders(shown), 0);
  EXPECT_EQ(renders(broken), 1);
}

TEST_F(TopMostFragmentDepthBufferCalls, AFailedTargetIsMadeAndDrawnByTheNextPick) {
  Scope gl(recorder.Handle());
  for (const auto& [call, renders] : {std::pair("GenFramebuffers", 0), {"CheckFramebufferStatus", 1}}) {
    const ReportCapture reports;
    recorder.Clear();
    recorder.Fail(call);
    TopMostFragmentDepthBuffer picker;
    const Core::TimeStamp stamp;
    EXPECT_EQ(Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, stamp).renders, renders) << call;
    EXPECT_EQ(recorder.LinesOf({"Clear"}).size(), renders) << "the host's window";
    EXPECT_FALSE(reports.Texts().empty());
    EXPECT_EQ(Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, stamp).renders, 1) << call;
    EXPECT_EQ(Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, stamp).renders, 0) << call;
  }
}

TEST_F(TopMostFragmentDepthBufferCalls, OldDevicesAreAskedForNothingThatTheyLack) {
  const std::tuple<const char*, const char*, Lines> cases[] = {
      {"2.1", "GL_ARB_framebuffer_object", {}},
      {"2.1", "GL_ARB_framebuffer_object GL_EXT_framebuffer_sRGB", {"Disable(GL_FRAMEBUFFER_SRGB)"}},
      {"3.2", "", {"Disable(GL_FRAMEBUFFER_SRGB)", "Disable(GL_DEPTH_CLAMP)"}},
  };
  for (const auto& [version, extensions, expected] : cases) {
    Ogl::RecordingGl device;
    {
      device.SetVersion(version);
      device.SetExtensions(extensions);
      Scope gl(device.Handle());
      TopMostFragmentDepthBuffer picker;
      Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, Core::TimeStamp(), [&] { DepthPass pass(gl); });
      std::set<std::string> disabled;
      for (const std::string& line : device.LinesOf({"Disable"}))
        if (line == "Disable(GL_FRAMEBUFFER_SRGB)" || line == "Disable(GL_DEPTH_CLAMP)")
          disabled.insert(line);
      EXPECT_EQ(disabled, std::set<std::string>(expected.begin(), expected.end())) << version << ' ' << extensions;
    }
    EXPECT_EQ(device.Complaints(), Lines());
  }
}

// On the real rasteriser

/// Writes the packed depth of each fragment, or plain colours.
class DepthScene {
public:
  explicit DepthScene(Scope& p_gl)
      : _program(p_gl, "void main() { gl_Position = gl_Vertex; }",
                 DepthCodec::Glsl() + "void main() { gl_FragColor = EncodeDepth(gl_FragCoord.z); }") {}

  /// Columns of one pixel, column i at a depth of `p_depths[i]`; below -1 none.
  void Draw(Scope& p_gl, const std::vector<double>& p_depths) const {
    const boost::shared_ptr<void> used = _program.Use(p_gl);
    const auto columns = static_cast<double>(p_depths.size());
    p_gl->Begin(RGL_QUADS);
    for (std::size_t i = 0; i < p_depths.size(); ++i) {
      const double left = 2 * static_cast<double>(i) / columns - 1;
      const double right = 2 * static_cast<double>(i + 1) / columns - 1;
      const double z = 2 * p_depths[i] - 1;
      p_gl->Vertex(left, -1, z);
      p_gl->Vertex(right, -1, z);
      p_gl->Vertex(right, 1, z);
      p_gl->Vertex(left, 1, z);
    }
    p_gl->End();
  }

private:
  Ogl::ShaderProgram _program;
};

TEST_F(TopMostFragmentDepthBufferPixels, PicksTheNearestSurface) {
  Scope gl(Handle());
  const DepthScene scene(gl);
  TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp stamp;
  const auto draw = [&] {
    scene.Draw(gl, {0.75, 0.25, 0.625, 5, 0.375}); // the fourth column is clipped away
    scene.Draw(gl, {0.5, 0.5, 5, 5, 0.5});
  };
  // The host's state, which must come back.
  gl->Enable(RGL_STENCIL_TEST);
  gl->Disable(RGL_DEPTH_TEST);
  gl->Enable(RGL_FRAMEBUFFER_SRGB);
  gl->PixelTransferf(RGL_RED_SCALE, 0.5F);
  const double expected[] = {0.5, 0.25, 0.625, -1, 0.375};
  int renders = 0;
  for (int x = 0; x < 5; ++x) {
    const Pick pick(gl, picker, {0, 0, 5, 3}, {x, 1}, stamp, draw);
    renders += pick.renders;
    ASSERT_EQ(pick.hit, expected[x] >= 0) << x;
    if (pick.hit) {
      EXPECT_NEAR(pick.results.at(0).second, expected[x], 1e-6) << x;
    }
  }
  EXPECT_EQ(renders, 1);
  EXPECT_TRUE(gl->IsEnabled(RGL_STENCIL_TEST));
  EXPECT_FALSE(gl->IsEnabled(RGL_DEPTH_TEST));
  EXPECT_TRUE(gl->IsEnabled(RGL_FRAMEBUFFER_SRGB));
  float scale = 0;
  gl->GetFloatv(RGL_RED_SCALE, &scale);
  EXPECT_EQ(scale, 0.5F);
  EXPECT_EQ(Vek::Test::PixelAt(Image(), 2, 1), qRgba(0, 0, 0, 0)); // nothing was drawn to the host's frame buffer
}

} // namespace
