#include "platform/ogl/OffscreenContext.h"

#include "tests/support/PixelFixture.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

using namespace Vek::Chart;
using Vek::Test::SameColor;

namespace {

using Scope = Utility::Scoped<Rgl>;

void Clear(const Ogl::OffscreenContext& p_context, const QColor& p_color) {
  const Scope gl(p_context.Handle());
  gl->ClearColor(p_color);
  gl->Clear(RGL_COLOR_BUFFER_BIT);
}

int Integer(const Rgl& p_gl, Ogl::GlEnum p_name) {
  int value = -1;
  p_gl.GetIntegerv(p_name, &value);
  return value;
}

TEST(OffscreenContextPixels, TheImageHoldsTheClearedColourAtAnySize) {
  const Types::Size sizes[] = {{1, 1}, {9, 3}, {3, 9}, {29, 14}, {257, 1}};
  for (const Types::Size size : sizes)
    for (const int samples : {0, 4}) {
      Ogl::OffscreenContext context(size, samples);
      EXPECT_EQ(context.Size(), size);
      const QColor color(10, 20, 200, 128);
      Clear(context, color);
      QImage expected(size.width, size.height, QImage::Format_ARGB32);
      expected.fill(color.rgba());
      const QImage image = context.Image();
      EXPECT_EQ(image.format(), QImage::Format_ARGB32);
      EXPECT_TRUE(Vek::Test::SameImage(image, expected)) << samples << " samples";
    }
}

TEST(OffscreenContextPixels, TheFirstRowOfTheImageIsTheTop) {
  Ogl::OffscreenContext context({3, 2});
  Clear(context, Qt::red);
  {
    const Scope gl(context.Handle());
    gl->Enable(RGL_SCISSOR_TEST);
    gl->Scissor(0, 1, 3, 1); // GL's upper row
    Clear(context, Qt::green);
  }
  EXPECT_TRUE(SameColor(context.Image().pixel(0, 0), Qt::green));
  EXPECT_TRUE(SameColor(context.Image().pixel(0, 1), Qt::red));
}

TEST(OffscreenContextPixels, ViewportAndDepthBufferCoverTheFrame) {
  const Ogl::OffscreenContext context({29, 14});
  const Scope gl(context.Handle());
  int viewport[4] = {};
  gl->GetIntegerv(RGL_VIEWPORT, viewport);
  EXPECT_EQ(std::vector<int>(viewport, viewport + 4), (std::vector<int>{0, 0, 29, 14}));
  float depth = 0;
  gl->ClearDepth(0.25);
  gl->Clear(RGL_DEPTH_BUFFER_BIT);
  gl->ReadPixels(28, 13, 1, 1, RGL_DEPTH_COMPONENT, RGL_FLOAT, &depth);
  EXPECT_NEAR(depth, 0.25F, 1e-6F);
}

// An edge through the middle of a pixel column: with samples it is half covered, without it is all or nothing.
TEST(OffscreenContextPixels, SamplesAreResolvedToTheirMean) {
  for (const int samples : {0, 4}) {
    Ogl::OffscreenContext context({5, 3}, samples);
    Clear(context, Qt::black);
    {
      const Scope gl(context.Handle());
      const boost::shared_ptr<void> projection = gl->PixelProjection({0, 0, 5, 3});
      gl->Color(Qt::white);
      gl->Begin(RGL_QUADS);
      for (const auto& [x, y] : {std::pair(0.0, 0.0), {2.4, 0.0}, {2.4, 3.0}, {0.0, 3.0}})
        gl->Vertex(x, y, 0);
      gl->End();
      gl->Enable(RGL_SCISSOR_TEST); // must not cut the resolving copy
      gl->Scissor(0, 0, 1, 1);
    }
    const int edge = qRed(context.Image().pixel(2, 1));
    EXPECT_TRUE(SameColor(context.Image().pixel(1, 1), Qt::white));
    EXPECT_TRUE(SameColor(context.Image().pixel(3, 1), Qt::black));
    if (samples == 0)
      EXPECT_EQ(edge, 0);
    else
      EXPECT_TRUE(edge > 32 && edge < 224) << edge;
  }
}

TEST(OffscreenContextPixels, MoreSamplesThanThereAreAreLowered) {
  Ogl::OffscreenContext context({9, 3}, 100000);
  Clear(context, Qt::yellow);
  EXPECT_TRUE(SameColor(context.Image().pixel(8, 2), Qt::yellow));
}

TEST(OffscreenContextPixels, TwoContextsKeepApart) {
  Ogl::OffscreenContext first({9, 3});
  Ogl::OffscreenContext second({3, 9});
  Clear(first, Qt::red);
  Clear(second, Qt::blue);
  const Scope outer(first.Handle());
  {
    const Scope inner(second.Handle());
    inner->LineWidth(3);
  }
  EXPECT_EQ(Integer(*outer, RGL_LINE_WIDTH), 1) << "the first context is current again";
  EXPECT_TRUE(SameColor(first.Image().pixel(8, 2), Qt::red));
  EXPECT_TRUE(SameColor(second.Image().pixel(2, 8), Qt::blue));
  EXPECT_EQ(Integer(*outer, RGL_LINE_WIDTH), 1);
}

TEST(OffscreenContextPixels, AContextThatEndsLeavesTheOtherCurrent) {
  const Ogl::OffscreenContext first({9, 3});
  const Scope gl(first.Handle());
  gl->LineWidth(2);
  {
    Ogl::OffscreenContext second({3, 9});
    EXPECT_EQ(Integer(*gl, RGL_LINE_WIDTH), 2) << "making a context switches back";
  }
  EXPECT_EQ(Integer(*gl, RGL_LINE_WIDTH), 2);
  EXPECT_TRUE(gl->CheckError("test"));
}

TEST(OffscreenContextPixels, ReadingTheImageKeepsTheHostsState) {
  for (const int samples : {0, 4}) {
    Ogl::OffscreenContext context({9, 3}, samples);
    Clear(context, Qt::cyan);
    const Scope gl(context.Handle());
    const boost::shared_ptr<Ogl::FrameBufferObject> own = gl->GenFrameBufferObject();
    gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, own->Name());
    const int drawn = Integer(*gl, RGL_DRAW_FRAMEBUFFER_BINDING);
    gl->PixelStorei(RGL_PACK_SKIP_PIXELS, 2);
    gl->PixelStorei(RGL_PACK_ROW_LENGTH, 50);
    EXPECT_TRUE(SameColor(context.Image().pixel(8, 2), Qt::cyan));
    EXPECT_EQ(Integer(*gl, RGL_READ_FRAMEBUFFER_BINDING), static_cast<int>(own->Name()));
    EXPECT_EQ(Integer(*gl, RGL_DRAW_FRAMEBUFFER_BINDING), drawn);
    EXPECT_EQ(Integer(*gl, RGL_PACK_SKIP_PIXELS), 2);
    EXPECT_EQ(Integer(*gl, RGL_PACK_ROW_LENGTH), 50);
    EXPECT_TRUE(gl->CheckError("test"));
  }
}

TEST(OffscreenContextPixels, ImpossibleSizesAreRefusedWithAReason) {
  struct Case {
    Types::Size size;
    const char* start;
  };
  const Case cases[] = {
      {{0, 3}, "No off-screen frame buffer of 0 x 3 pixels: each side must be 1 to "},
      {{9, -1}, "No off-screen frame buffer of 9 x -1 pixels: each side must be 1 to "},
      {{2000000000, 2}, "No off-screen frame buffer of 2000000000 x 2 pixels: each side must be 1 to "},
  };
  for (const Case& row : cases) {
    try {
      Ogl::OffscreenContext context(row.size);
      ADD_FAILURE() << row.start;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(std::string(error.what()).rfind(row.start, 0), 0U) << error.what();
    }
  }
}

TEST(OffscreenContextPixels, TheRendererHasAName) {
  EXPECT_FALSE(Ogl::OffscreenContext({9, 3}).Renderer().empty());
}

TEST(OffscreenContextPixels, AHostsContextIsUsedAsItIs) {
  Ogl::OffscreenContext context({9, 3});
  const Scope outer(context.Handle()); // stands for the host that made its context current
  const Utility::Unscoped<Rgl> handle = Rgl::OnCurrentContext();
  const Scope gl(handle);
  gl->ClearColor(Qt::magenta);
  gl->Clear(RGL_COLOR_BUFFER_BIT);
  EXPECT_TRUE(SameColor(context.Image().pixel(0, 0), Qt::magenta));
}

// A machine without drivers: the message must say what to install. In a process of its own, before EGL is used in it.
TEST(OffscreenContextPixels, WithoutADriverTheErrorSaysWhatToInstall) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto try_context = [] {
    setenv("__EGL_VENDOR_LIBRARY_DIRS", "/nonexistent", 1);
    try {
      Ogl::OffscreenContext context({9, 3});
    } catch (const std::runtime_error& error) {
      std::fprintf(stderr, "%s\n", error.what());
      std::exit(3);
    }
    std::exit(0);
  };
  EXPECT_EXIT(try_context(), testing::ExitedWithCode(3),
              "No off-screen GL context: .*needs the packages libegl1, libegl-mesa0 and libgl1-mesa-dri");
}

} // namespace
