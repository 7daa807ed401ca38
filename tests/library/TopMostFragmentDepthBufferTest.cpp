#include "library/TopMostFragmentDepthBuffer.h"

#include "library/RenderTexture.h"
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
  // The viewport's corner does not count, fractions of its size are cut off.
  const Pick first(gl, picker, {40, 50, 9.75F, 3.5F}, {4, 1}, stamp, [&] { gl->Enable(RGL_BLEND); });
  EXPECT_TRUE(first.hit);
  EXPECT_EQ(first.renders, 1);
  EXPECT_EQ(first.results,
            (std::vector<std::pair<unsigned int, float>>{{0U, DepthCodec::Decode({{127, 127, 127, 127}})}}));
  const Lines making = {
      "GenTextures", "BindTexture", "TexImage2D",       "TexParameteri",   "GenFramebuffers", "FramebufferTexture2D",
      "GetIntegerv", "PixelStorei", "PushClientAttrib", "PopClientAttrib", "BindBuffer",      "CheckFramebufferStatus",
      "GetFloatv",   "GetString"};
  Lines lines = recorder.LinesWithout(making);
  // While it was made, the frame buffer was bound once.
  lines.erase(lines.begin() + 1, lines.begin() + 3);
  EXPECT_EQ(
      lines,
      (Lines{"PushAttrib(GL_VIEWPORT_BIT|GL_ENABLE_BIT|GL_COLOR_BUFFER_BIT)", "BindFramebuffer(GL_FRAMEBUFFER, 4001)",
             "Viewport(0, 0, 9, 3)", "Disable(GL_FRAMEBUFFER_SRGB)", "ClearColor(0, 0, 0, 0)",
             "Clear(GL_DEPTH_BUFFER_BIT|GL_STENCIL_BUFFER_BIT|GL_COLOR_BUFFER_BIT)", "Disable(GL_STENCIL_TEST)",
             "Enable(GL_DEPTH_TEST)", "Enable(GL_BLEND)", "ReadPixels(4, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, ptr)",
             "GetError()", "BindFramebuffer(GL_FRAMEBUFFER, 0)", "PopAttrib()"}));
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

TEST_F(TopMostFragmentDepthBufferCalls, ErrorsGoToTheLogWithTheLocation) {
  Scope gl(recorder.Handle());
  TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp stamp;
  recorder.SetPixel(0, 0, {0, 0, 0, 1}); // only four zeros are empty
  recorder.QueueError(RGL_INVALID_OPERATION);
  const ReportCapture reports;
  EXPECT_TRUE(Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, stamp).hit);
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: GL_INVALID_OPERATION - " + Location});
}

TEST_F(TopMostFragmentDepthBufferCalls, LeavesSrgbAloneWhereThereIsNone) {
  struct Case {
    const char* version;
    const char* extensions;
    std::size_t disables;
  };
  for (const Case& row : {Case{"2.1", "GL_ARB_framebuffer_object", 0},
                          Case{"2.1", "GL_ARB_framebuffer_object GL_EXT_framebuffer_sRGB", 1}, Case{"3.0", "", 1}}) {
    Ogl::RecordingGl device;
    {
      device.SetVersion(row.version);
      device.SetExtensions(row.extensions);
      Scope gl(device.Handle());
      TopMostFragmentDepthBuffer picker;
      Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, Core::TimeStamp());
      Lines disabled = device.LinesOf({"Disable"});
      EXPECT_EQ(std::count(disabled.begin(), disabled.end(), "Disable(GL_FRAMEBUFFER_SRGB)"), row.disables)
          << row.version << ' ' << row.extensions;
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
  EXPECT_EQ(Vek::Test::PixelAt(Image(), 2, 1), qRgba(0, 0, 0, 0)); // nothing was drawn to the host's frame buffer
}

TEST_F(TopMostFragmentDepthBufferPixels, ReadsOnlyItsFourBytesWhateverTheHostHasSet) {
  Scope gl(Handle());
  unsigned int buffer = 0;
  gl->GenBuffers(1, &buffer);
  TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp stamp;
  const auto clear = [&] {
    gl->ClearColor(63 / 255.0F, 191 / 255.0F, 63 / 255.0F, 191 / 255.0F);
    gl->Clear(RGL_COLOR_BUFFER_BIT);
  };
  for (const Ogl::GlEnum setting : {RGL_PIXEL_PACK_BUFFER_BINDING, RGL_PACK_SKIP_PIXELS, RGL_PACK_SKIP_ROWS,
                                    RGL_PACK_ROW_LENGTH, RGL_PACK_ALIGNMENT, RGL_PACK_SWAP_BYTES}) {
    const int value = setting == RGL_PACK_SWAP_BYTES ? 1 : setting == RGL_PACK_ALIGNMENT ? 8 : 1000;
    if (setting == RGL_PIXEL_PACK_BUFFER_BINDING)
      gl->BindBuffer(RGL_PIXEL_PACK_BUFFER, buffer);
    else
      gl->PixelStorei(setting, value);
    const Pick pick(gl, picker, {0, 0, 5, 3}, {1, 1}, stamp, clear);
    ASSERT_TRUE(pick.hit) << setting;
    EXPECT_EQ(pick.results.at(0).second, DepthCodec::Decode({{63, 191, 63, 191}})) << setting;
    int after = 0;
    gl->GetIntegerv(setting, &after);
    if (setting == RGL_PIXEL_PACK_BUFFER_BINDING) {
      EXPECT_EQ(after, static_cast<int>(buffer));
      gl->BindBuffer(RGL_PIXEL_PACK_BUFFER, 0);
    } else {
      EXPECT_EQ(after, value) << setting;
      gl->PixelStorei(setting, setting == RGL_PACK_ALIGNMENT ? 4 : 0);
    }
  }
  gl->DeleteBuffers(1, &buffer);
}

// What is cut off a channel loses one step of it, and of the ones behind: 1 / 255 + 1 / 65025 + … at worst.
TEST_F(TopMostFragmentDepthBufferPixels, PackedDepthsFollowTheDepthBuffer) {
  Scope gl(Handle());
  const DepthScene scene(gl);
  constexpr int Count = 1021;
  std::vector<double> depths(Count);
  for (int i = 0; i < Count; ++i)
    depths[static_cast<std::size_t>(i)] = (i + 0.5) / Count;
  const RenderTexture target({Count, 1});
  {
    const boost::shared_ptr<void> bound = target.BindForDraw(gl);
    const boost::shared_ptr<void> enables = gl->PushAttribScope(RGL_ENABLE_BIT);
    gl->ClearColor(Qt::transparent);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    gl->Enable(RGL_DEPTH_TEST);
    gl->Disable(RGL_DITHER);
    scene.Draw(gl, depths);
  }
  const QImage image = target.ToImage(gl);
  const std::vector<float> truth = target.ReadDepths(gl);
  int close = 0;
  for (int x = 0; x < Count; ++x) {
    const auto i = static_cast<std::size_t>(x);
    ASSERT_NEAR(truth[i], depths[i], 1e-6) << x;
    const QRgb pixel = image.pixel(x, 0);
    const auto byte = [](int p_value) { return static_cast<unsigned char>(p_value); };
    const float decoded =
        DepthCodec::Decode({{byte(qRed(pixel)), byte(qGreen(pixel)), byte(qBlue(pixel)), byte(qAlpha(pixel))}});
    EXPECT_LE(decoded, truth[i] + 1e-6F) << x;
    EXPECT_GE(decoded, truth[i] - 1.0F / 254 - 1e-6F) << x;
    close += decoded > truth[i] - 2.0F / 65025 ? 1 : 0;
  }
  EXPECT_GT(close, Count / 2);
}

} // namespace
