#include "platform/ogl/OffscreenContext.h"
#include "tests/support/Test.h"

#include <cstdio>

namespace {

void Clear(const Ogl::OffscreenContext& p_context, const QColor& p_color) {
  const Scope gl(p_context.Handle());
  gl->ClearColor(p_color);
  gl->Clear(RGL_COLOR_BUFFER_BIT);
}

/// The message of the exception that the constructor throws.
std::string ErrorOf(const Types::Size& p_size) {
  try {
    Ogl::OffscreenContext context(p_size);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

int Integer(const Rgl& p_gl, Ogl::GlEnum p_name) {
  int values[4] = {-1, -1, -1, -1}; // colours have four
  p_gl.GetIntegerv(p_name, values);
  return values[0];
}

TEST(OffscreenContextPixels, ImageHasTheFrame) {
  for (const Types::Size size : {Types::Size(1, 1), Types::Size(9, 3), Types::Size(29, 14), Types::Size(257, 1)})
    for (const int samples : {0, 4, 100000}) { // more than there are is lowered
      SCOPED_TRACE(std::to_string(size.width) + " wide, " + std::to_string(samples) + " samples");
      Ogl::OffscreenContext context(size, samples);
      const QColor color(10, 20, 200, 128);
      Clear(context, color);
      QImage expected(size.width, size.height, QImage::Format_ARGB32);
      expected.fill(color.rgba());
      EXPECT_EQ(context.Image().format(), QImage::Format_ARGB32);
      EXPECT_TRUE(SameImage(context.Image(), expected));
      std::vector<int> viewport(4);
      Scope(context.Handle())->GetIntegerv(RGL_VIEWPORT, viewport.data());
      EXPECT_EQ(viewport, (std::vector<int>{0, 0, size.width, size.height}));
    }
}

// An edge through the middle of a pixel column: with samples it is half covered, without it is all or nothing. The host
// has settings and a frame buffer of its own.
TEST(OffscreenContextPixels, ImageResolvesSamplesTopRowFirstAndRestoresHostState) {
  for (const int samples : {0, 4}) {
    Ogl::OffscreenContext context({5, 3}, samples);
    const Scope outer(context.Handle()); // stands for the host that made its context current
    const Scope gl(Rgl::OnCurrentContext());
    Clear(context, Qt::black);
    const boost::shared_ptr<void> projection = gl->PixelProjection({0, 0, 5, 3});
    gl->Color(Qt::cyan);
    gl->Begin(RGL_QUADS);
    for (const auto& [x, y] : {std::pair(0.0, 1.0), {2.4, 1.0}, {2.4, 3.0}, {0.0, 3.0}})
      gl->Vertex(x, y, 0);
    gl->End();
    gl->Enable(RGL_SCISSOR_TEST); // must not cut the resolving copy
    gl->Scissor(0, 0, 1, 1);
    const boost::shared_ptr<Ogl::FrameBufferObject> own = gl->GenFrameBufferObject();
    gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, own->Name());
    gl->PixelStorei(RGL_PACK_SKIP_PIXELS, 2);
    gl->PixelStorei(RGL_PACK_ROW_LENGTH, 50);
    gl->PixelTransferf(RGL_BLUE_SCALE, 0.5F);
    const auto state = [&gl] {
      return std::vector<int>{Integer(*gl, RGL_READ_FRAMEBUFFER_BINDING), Integer(*gl, RGL_DRAW_FRAMEBUFFER_BINDING),
                              Integer(*gl, RGL_PACK_SKIP_PIXELS), Integer(*gl, RGL_PACK_ROW_LENGTH)};
    };
    const std::vector<int> before = state();
    const QImage image = context.Image();
    EXPECT_EQ(state(), before);
    const int edge = qGreen(image.pixel(2, 1));
    EXPECT_TRUE(SameColor(image.pixel(1, 0), Qt::cyan));
    EXPECT_TRUE(SameColor(image.pixel(3, 0), Qt::black));
    EXPECT_TRUE(SameColor(image.pixel(1, 2), Qt::black)) << "the last row is GL's first";
    EXPECT_TRUE(samples == 0 ? edge == 0 : edge > 32 && edge < 224) << edge;
    EXPECT_TRUE(gl->CheckError("test"));
  }
}

TEST(OffscreenContextPixels, ContextsAreSeparate) {
  Ogl::OffscreenContext first({9, 3});
  const Scope outer(first.Handle());
  outer->LineWidth(2);
  {
    Ogl::OffscreenContext second({3, 9});
    EXPECT_EQ(Integer(*outer, RGL_LINE_WIDTH), 2) << "making a context switches back";
    Clear(first, Qt::red);
    Clear(second, Qt::blue);
    Scope(second.Handle())->LineWidth(3);
    EXPECT_EQ(Integer(*outer, RGL_LINE_WIDTH), 2) << "the first context is current again";
    EXPECT_TRUE(SameColor(first.Image().pixel(8, 2), Qt::red));
    EXPECT_TRUE(SameColor(second.Image().pixel(2, 8), Qt::blue));
  }
  EXPECT_EQ(Integer(*outer, RGL_LINE_WIDTH), 2) << "the end of a context leaves the other one current";
  EXPECT_TRUE(outer->CheckError("test"));
}

TEST(OffscreenContextPixels, ReportsFailedReads) {
  Ogl::OffscreenContext context({9, 3});
  Clear(context, Qt::red);
  const Scope gl(context.Handle());
  const auto frameBuffer = static_cast<unsigned int>(Integer(*gl, RGL_FRAMEBUFFER_BINDING));
  gl->DeleteFramebuffers(1, &frameBuffer); // without its knowledge
  gl->Enable(0x7777);
  const ReportCapture reports;
  EXPECT_EQ(Map(context.Image(), Qt::red), ".........\n.........\n.........\n");
  const Lines texts = reports.Texts();
  ASSERT_GE(texts.size(), 2U);
  EXPECT_EQ(texts.front(), "WARNING: GL_INVALID_ENUM - before OffscreenContext::Image");
  EXPECT_NE(texts.back().find(" - OffscreenContext::Image"), std::string::npos);
}

// Late deletions must reach neither the loader library nor objects of the host with the same names.
TEST(OffscreenContextPixels, HandlesAndObjectsOutliveTheContext) {
  for (const bool throws : {false, true}) {
    const ReportCapture reports(throws);
    auto context = std::make_unique<Ogl::OffscreenContext>(Types::Size(9, 3));
    const Utility::Unscoped<Rgl> handle = context->Handle();
    std::vector<boost::shared_ptr<void>> objects;
    auto gl = std::make_unique<Scope>(handle);
    objects = {(*gl)->GenTexture(), (*gl)->GenFrameBufferObject(), (*gl)->GenRenderBuffer(), (*gl)->GenDisplayList()};
    Ogl::GlQuadric* const quadric = (*gl)->NewQuadric();
    context.reset(); // within its scope
    gl.reset();

    Ogl::OffscreenContext host({3, 9});
    const Scope hostGl(host.Handle());
    const boost::shared_ptr<Ogl::Texture> texture = hostGl->GenTexture(); // the same name
    hostGl->Bind(texture, Rgl::Sampler2D);
    objects.clear();
    EXPECT_EQ(Integer(*hostGl, RGL_TEXTURE_BINDING_2D), static_cast<int>(texture->Name()));
    Lines expected;
    for (const std::string name : {"Textures", "Framebuffers", "Renderbuffers", "Lists"})
      expected.push_back("WARNING: OffscreenContext: glDelete" + name + " after the end of the context");
    EXPECT_EQ(reports.Texts(), expected);
    if (throws) {
      EXPECT_THROW(Scope{handle}, std::runtime_error);
    } else {
      const Scope late(handle);
      EXPECT_EQ(late->GetString(RGL_VERSION), nullptr);
      late->ClearColor(Qt::red);
    }
    EXPECT_EQ(reports.Texts().back(), "WARNING: OffscreenContext: a scope was opened after the end of the context; its "
                                      "calls do nothing");
    EXPECT_EQ(Integer(*hostGl, RGL_COLOR_CLEAR_VALUE), 0);
    handle.Object()->DeleteQuadric(quadric); // memory, which no context owns
  }
}

TEST(OffscreenContextPixels, ThrowsOnInvalidSizes) {
  for (const Types::Size size : {Types::Size(0, 3), Types::Size(9, -1), Types::Size(2000000000, 2)}) {
    const std::string start = "No off-screen frame buffer of " + std::to_string(size.width) + " x " +
                              std::to_string(size.height) + " pixels: each side must be 1 to ";
    EXPECT_EQ(ErrorOf(size).rfind(start, 0), 0U) << ErrorOf(size);
  }
}

// The next tests run in processes of their own, since drivers read the variables once.

// The message must name the packages to install.
TEST(OffscreenContextPixels, ThrowsWithoutADriver) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto tryContext = [] {
    setenv("__EGL_VENDOR_LIBRARY_DIRS", "/nonexistent", 1);
    std::fputs(ErrorOf({9, 3}).c_str(), stderr);
    std::exit(3);
  };
  EXPECT_EXIT(tryContext(), testing::ExitedWithCode(3),
              "No off-screen GL context: .*needs the packages libegl1, libegl-mesa0 and libgl1-mesa-dri");
}

TEST(OffscreenContextPixels, ReportsMissingFunctions) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto mapOnOldGl = [] {
    setenv("MESA_GL_VERSION_OVERRIDE", "2.1", 1);
    setenv("MESA_EXTENSION_OVERRIDE", "-GL_ARB_map_buffer_range -GL_ARB_draw_instanced", 1);
    const Ogl::OffscreenContext context({9, 3});
    const Scope gl(context.Handle());
    const void* const mapped = gl->MapBufferRange(RGL_ARRAY_BUFFER, 0, 1, RGL_MAP_WRITE_BIT);
    gl->MapBufferRange(RGL_ARRAY_BUFFER, 0, 1, RGL_MAP_WRITE_BIT); // is not reported again
    gl->DrawArraysInstanced(RGL_POINTS, 0, 1, 1);
    std::exit(mapped == nullptr && gl->CheckError("test") ? 3 : 2);
  };
  EXPECT_EXIT(mapOnOldGl(), testing::ExitedWithCode(3),
              "^WARNING: glMapBufferRange needs GL 3.0 or GL_ARB_map_buffer_range; the current context has GL 2.1.*\n"
              "WARNING: glDrawArraysInstanced needs GL 3.1 or GL_ARB_draw_instanced; [^\n]*\n$");
}

} // namespace
