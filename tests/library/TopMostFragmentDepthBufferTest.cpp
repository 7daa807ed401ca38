#include "library/TopMostFragmentDepthBuffer.h"

#include "library/DepthPass.h"
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
  int renders = 0;
  bool hit = false;
  std::vector<std::pair<unsigned int, float>> results;

  Pick(
      Scope& p_gl, TopMostFragmentDepthBuffer& p_picker, const Types::Viewport<0>& p_viewport,
      const Types::Pos& p_position, const Core::TimeStamp& p_stamp, const boost::function<void()>& p_render = [] {}) {
    const auto render = [&](DepthCodec::Encoding p_encoding) {
      EXPECT_EQ(p_encoding, 0);
      ++renders;
      p_render();
    };
    hit = p_picker.GetDepthAt(p_gl, p_viewport, p_position, p_stamp, render,
                              [&](unsigned int p_index, float p_depth) { results.emplace_back(p_index, p_depth); });
  }
};

class TopMostFragmentDepthBufferCalls : public RecordingScopeFixture {
public:
  void TearDown() override {
    owner.reset();
    RecordingScopeFixture::TearDown();
  }
  int Renders(const Core::TimeStamp& p_stamp, Types::Viewport<0> p_viewport = {0, 0, 9, 3}) {
    return Pick(gl, picker, p_viewport, {0, 0}, p_stamp).renders;
  }

  std::unique_ptr<TopMostFragmentDepthBuffer> owner = std::make_unique<TopMostFragmentDepthBuffer>();
  TopMostFragmentDepthBuffer& picker = *owner;
  const Core::TimeStamp stamp, other;
};

using TopMostFragmentDepthBufferPixels = PixelScopeFixture;

TEST_F(TopMostFragmentDepthBufferCalls, StepsInOrder) {
  // Making the target, and asking for the host's settings.
  const Lines quiet =
      Calls("GenTextures; BindTexture; TexImage2D; TexParameteri; GenFramebuffers; BindBuffer; GetIntegerv; "
            "FramebufferTexture2D; PushClientAttrib; PopClientAttrib; PixelStorei; "
            "GetTexLevelParameteriv; GetFloatv; CheckFramebufferStatus; GetString");
  const std::string start = "PushAttrib(GL_VIEWPORT_BIT|GL_ENABLE_BIT|GL_COLOR_BUFFER_BIT); "
                            "BindFramebuffer(GL_FRAMEBUFFER, 4001); ";
  const std::string bound = "Viewport(0, 0, 9, 3); Disable(GL_FRAMEBUFFER_SRGB); ";
  const std::string end = "GetError(); BindFramebuffer(GL_FRAMEBUFFER, 0); PopAttrib()";
  recorder.SetPixel(4, 1, {127, 127, 127, 127});
  recorder.QueueError(RGL_INVALID_OPERATION);
  const ReportCapture reports;
  // The viewport's corner does not count, fractions of its size are truncated.
  const Pick first(gl, picker, {40, 50, 9.75F, 3.5F}, {4, 1}, stamp, [&] { gl->Enable(RGL_BLEND); });
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: GL_INVALID_OPERATION - " + Location});
  EXPECT_TRUE(first.hit);
  EXPECT_EQ(first.results, (decltype(first.results){{0U, DepthCodec::Decode({{127, 127, 127, 127}})}}));
  EXPECT_EQ(recorder.LinesWithout(quiet),
            Calls(start + "BindFramebuffer(GL_FRAMEBUFFER, 0); BindFramebuffer(GL_FRAMEBUFFER, 4001); " + bound +
                  "ClearColor(0, 0, 0, 0); Clear(GL_DEPTH_BUFFER_BIT|GL_STENCIL_BUFFER_BIT|GL_COLOR_BUFFER_BIT); "
                  "Disable(GL_STENCIL_TEST); Enable(GL_DEPTH_TEST); Enable(GL_BLEND); "
                  "ReadPixels(4, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, ptr); GetError(); " +
                  end));
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).at(0),
            "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 9, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)");

  recorder.Clear();
  const Pick second(gl, picker, {0, 0, 9, 3}, {5, 1}, stamp);
  EXPECT_FALSE(second.hit || second.renders != 0 || !second.results.empty());
  EXPECT_EQ(recorder.LinesWithout(quiet),
            Calls(start + bound + "ReadPixels(5, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, ptr); " + end));
}

TEST_F(TopMostFragmentDepthBufferCalls, DrawsAgainForNewStampsAndSizesAndAfterFailures) {
  const std::tuple<const char*, Types::Viewport<0>, Core::TimeStamp, int, std::size_t> cases[] = {
      {"first", {0, 0, 9, 3}, stamp, 1, 1},        {"same", {0, 0, 9, 3}, stamp, 0, 0},
      {"elsewhere", {7, 7, 9.5F, 3}, stamp, 0, 0}, {"new scene", {0, 0, 9, 3}, other, 1, 0},
      {"back", {0, 0, 9, 3}, stamp, 1, 0},         {"wider", {0, 0, 10, 3}, stamp, 1, 1},
      {"lower", {0, 0, 10, 2}, stamp, 1, 1},       {"GenFramebuffers", {0, 0, 20, 3}, stamp, 0, 1},        // fails
      {"made again", {0, 0, 20, 3}, stamp, 1, 1},  {"CheckFramebufferStatus", {0, 0, 21, 3}, stamp, 1, 1}, // fails
      {"drawn again", {0, 0, 21, 3}, stamp, 1, 1}, {"same again", {0, 0, 21, 3}, stamp, 0, 0},
  };
  const ReportCapture reports;
  for (const auto& [name, viewport, scene, renders, targets] : cases) {
    recorder.Clear();
    recorder.Fail(name);
    EXPECT_EQ(Renders(scene, viewport), renders) << name;
    EXPECT_EQ(recorder.LinesOf({"Clear"}).size(), renders) << name << ", never the host's window";
    EXPECT_EQ(recorder.LinesOf({"GenFramebuffers"}).size(), targets) << name;
  }
}

TEST_F(TopMostFragmentDepthBufferCalls, AfterAThrowingCallbackEachPickDraws) {
  EXPECT_EQ(Renders(stamp), 1);
  recorder.Clear();
  EXPECT_THROW(Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, other, [] { throw std::runtime_error("no scene"); }),
               std::runtime_error);
  const Lines lines = recorder.Lines();
  EXPECT_EQ(Lines(lines.end() - 2, lines.end()), (Lines{"BindFramebuffer(GL_FRAMEBUFFER, 0)", "PopAttrib()"}));
  EXPECT_EQ(recorder.LinesOf({"ReadPixels"}), Lines());
  EXPECT_EQ(Renders(stamp), 1) << "the target holds half of the other scene";
  EXPECT_EQ(Renders(stamp), 0);
  EXPECT_EQ(Renders(other), 1);
}

TEST_F(TopMostFragmentDepthBufferCalls, ReadsASnapshotOncePerSceneAndSize) {
  const std::tuple<const char*, Types::Viewport<0>, Core::TimeStamp, int, int, bool> cases[] = {
      // failing call, viewport, stamp, drawn, read, empty
      {"", {0, 0, 9, 3}, stamp, 1, 1, false},
      {"", {5, 6, 9.5F, 3}, stamp, 0, 0, false},
      {"", {0, 0, 9, 3}, other, 1, 1, false},
      {"", {0, 0, 9, 4}, other, 1, 1, false},
      {"GenFramebuffers", {0, 0, 8, 4}, other, 0, 0, true},
      {"CheckFramebufferStatus", {0, 0, 7, 4}, other, 1, 0, true},
      {"", {0, 0, 7, 4}, other, 1, 1, false},
      {"", {0, 0, 7, 4}, other, 0, 0, false},
  };
  const ReportCapture reports;
  for (const auto& [fails, viewport, scene, drawn, read, empty] : cases) {
    recorder.Clear();
    recorder.Fail(fails);
    int renders = 0;
    const DepthImage& image = picker.Snapshot(gl, viewport, scene, [&] { ++renders; });
    EXPECT_EQ(std::tuple(renders, recorder.LinesOf({"ReadPixels"}).size(), image.Empty()),
              std::tuple(drawn, read, empty))
        << fails << viewport.width;
    EXPECT_EQ(recorder.Lines().empty(), drawn == 0 && fails[0] == 0) << "no GL call for a kept image";
  }
  EXPECT_EQ(Renders(other, {0, 0, 7, 4}), 0) << "the same target";
  EXPECT_EQ(Renders(stamp, {0, 0, 7, 4}), 1);
  EXPECT_EQ(picker.Snapshot(gl, {0, 0, 7, 4}, other, [] { FAIL(); }).Size(), Types::Size(7, 4)) << "still kept";

  EXPECT_THROW(picker.Snapshot(gl, {0, 0, 7, 4}, {}, [] { throw std::runtime_error("no scene"); }), std::runtime_error);
  const auto render = [&](DepthCodec::Encoding) { recorder.QueueError(RGL_INVALID_OPERATION); };
  recorder.Fail("ReadPixels");
  EXPECT_TRUE(picker.Snapshot(gl, {0, 0, 7, 4}, other, render).Empty());
  EXPECT_FALSE(picker.Snapshot(gl, {0, 0, 7, 4}, stamp, render).Empty()) << "an error of the host's drawing";
}

TEST(TopMostFragmentDepthBufferDeviceCalls, OldDevicesAreAskedForNothingThatTheyLack) {
  const std::tuple<const char*, const char*, int, int> cases[] = {
      {"2.1", "GL_ARB_framebuffer_object", 0, 0},
      {"2.1", "GL_ARB_framebuffer_object GL_EXT_framebuffer_sRGB", 2, 0}, // by the picker and by the pass
      {"3.2", "", 2, 1},
  };
  for (const auto& [version, extensions, srgb, clamp] : cases) {
    RecordingGl device;
    device.SetVersion(version);
    device.SetExtensions(extensions);
    Scope gl(device.Handle());
    TopMostFragmentDepthBuffer picker;
    Pick(gl, picker, {0, 0, 9, 3}, {0, 0}, Core::TimeStamp(), [&] { const DepthPass pass(gl); });
    const Lines lines = device.Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Disable(GL_FRAMEBUFFER_SRGB)"), srgb) << version << extensions;
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Disable(GL_DEPTH_CLAMP)"), clamp) << version;
  }
}

TEST_F(TopMostFragmentDepthBufferPixels, PicksTheNearestSurfaceAndRestoresTheHost) {
  gl->Enable(RGL_STENCIL_TEST);
  gl->Disable(RGL_DEPTH_TEST);
  gl->Enable(RGL_FRAMEBUFFER_SRGB);
  gl->PixelTransferf(RGL_RED_SCALE, 0.5F);
  TopMostFragmentDepthBuffer picker;
  for (const auto& depths : {std::vector({0.75, 0.5}), {0.25, 0.5}, {}}) {
    const Pick pick(gl, picker, {0, 0, 5, 3}, {2, 1}, Core::TimeStamp(), [&] {
      for (const double depth : depths) {
        const auto bytes = DepthCodec::Encode(static_cast<float>(depth));
        gl->Color4d(bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0);
        gl->DepthRange(depth, depth);
        DrawTexturedSquare(gl);
      }
    });
    ASSERT_EQ(pick.hit, !depths.empty());
    const auto nearest = static_cast<float>(pick.hit ? std::min(depths[0], depths[1]) : 1);
    EXPECT_EQ(pick.hit ? pick.results.at(0).second : 1, DepthCodec::Decode(DepthCodec::Encode(nearest)));
  }
  float scale = 0;
  gl->GetFloatv(RGL_RED_SCALE, &scale);
  EXPECT_EQ(scale, 0.5F);
  EXPECT_TRUE(gl->IsEnabled(RGL_STENCIL_TEST) && !gl->IsEnabled(RGL_DEPTH_TEST) && gl->IsEnabled(RGL_FRAMEBUFFER_SRGB));
  EXPECT_EQ(At(2, 1).alpha(), 0) << "nothing was drawn to the host's frame buffer";
}

TEST_F(TopMostFragmentDepthBufferPixels, ImagesHoldTheDepthsOfPicks) {
  constexpr Types::Viewport<0> Viewport(0, 0, 7, 5);
  const Core::TimeStamp stamp;
  const auto render = [&] { // two depths, and a corner without any
    gl->Enable(RGL_SCISSOR_TEST);
    for (const auto& [x, depth] : {std::pair(2, 0.25F), {4, 0.75F}}) {
      const auto bytes = DepthCodec::Encode(depth);
      gl->Scissor(x, 1, 2, 4);
      gl->ClearColor(QColor(bytes[0], bytes[1], bytes[2], bytes[3]));
      gl->Clear(RGL_COLOR_BUFFER_BIT);
    }
  };
  gl->PixelStorei(RGL_PACK_ROW_LENGTH, 40); // the host's
  TopMostFragmentDepthBuffer picker;
  const DepthImage all = picker.Snapshot(gl, Viewport, stamp, render);
  constexpr int Min = std::numeric_limits<int>::min(), Max = std::numeric_limits<int>::max();
  const std::tuple<Types::Pos, Types::Size, Types::Pos, Types::Size> rectangles[] = {
      {{3, 2}, {2, 3}, {3, 2}, {2, 3}},     {{-2, 3}, {5, 9}, {0, 3}, {3, 2}}, {{Min, Min}, {Max, Max}, {}, {}},
      {{1, 1}, {Max, Max}, {1, 1}, {6, 4}}, {{7, 0}, {1, 1}, {}, {}},          {{2, 2}, {Min, 1}, {}, {}},
  };
  for (const auto& [corner, size, expectedCorner, expectedSize] : rectangles) {
    const DepthImage image = picker.Read(gl, Viewport, corner, size, stamp, [] { FAIL() << "drawn again"; });
    ASSERT_EQ(std::tuple(image.Corner(), image.Size()), std::tuple(expectedCorner, expectedSize));
    for (int y = -1; y < 6; ++y)
      for (int x = -1; x < 8; ++x) {
        const bool inside = x >= image.Corner().x && x < image.Corner().x + image.Size().width &&
                            y >= image.Corner().y && y < image.Corner().y + image.Size().height;
        EXPECT_EQ(image.DepthAt({x, y}), inside ? all.DepthAt({x, y}) : 1) << x << ", " << y;
      }
  }
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 7; ++x) {
      const Pick pick(gl, picker, Viewport, {x, y}, stamp);
      EXPECT_EQ(all.DepthAt({x, y}), pick.hit ? pick.results.at(0).second : 1) << x << ", " << y;
    }
  EXPECT_EQ(all.DepthAt({3, 1}), DepthCodec::Decode(DepthCodec::Encode(0.25F)));
  for (const Types::Pos& outside : {Types::Pos(-1, 2), {7, 2}, {2, 5}, {Min, Max}, {Max, Min}})
    EXPECT_EQ(all.DepthAt(outside), 1) << outside.x;
  EXPECT_THROW(DepthImage({0, 0}, {2, 2}, std::vector<float>(3)), std::invalid_argument);
  EXPECT_THROW(DepthImage({0, -1}, {1, 1}, std::vector<float>(1)), std::invalid_argument);
  EXPECT_THROW(DepthImage({0, 0}, {-1, -1}, std::vector<float>(1)), std::invalid_argument);
  gl->PixelStorei(RGL_PACK_ROW_LENGTH, 0);
}

} // namespace
