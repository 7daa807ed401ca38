#pragma once

#include "platform/ogl/OffscreenContext.h"
#include "testing/Images.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace Vek::Chart::Testing {

/// A fixture of GoogleTest for tests that draw on a real rasteriser and look at the pixels: an off-screen context whose
/// frame buffer is transparent black at first.
///
/// All tests of a program that ask for one size share the context, which lives until the program ends. Each test starts
/// with GL's initial attributes, identity matrices and the frame buffer bound. At the end a test fails if it has left a
/// GL error, or an unbalanced matrix or attribute stack. It fails, and is never skipped, if no context can be made; the
/// message names the packages to install.
///
/// The header needs GoogleTest (`GTest::gtest`), the library does not.
///
/// \snippet HostSnippets.cpp PixelFixture
/// \ingroup testing
class PixelFixture : public ::testing::Test {
public:
  /// The default size in pixels: odd and unequal, so that swapped axes and rounded centres are noticed.
  static constexpr Types::Size FrameSize{61, 37};
  /// The context of that size that all tests of this program share. Throws std::runtime_error as OffscreenContext does.
  static Ogl::OffscreenContext& ContextOf(Types::Size p_size) {
    // Never destroyed: drivers end themselves before static objects do.
    static auto& contexts = *new std::map<std::pair<int, int>, Ogl::OffscreenContext*>;
    Ogl::OffscreenContext*& context = contexts[{p_size.width, p_size.height}];
    if (context == nullptr)
      context = new Ogl::OffscreenContext(p_size);
    return *context;
  }

  /// With a frame buffer of that size.
  explicit PixelFixture(Types::Size p_size = FrameSize)
      : _context(ContextOf(p_size)) {}

  /// The context that this test shares.
  Ogl::OffscreenContext& Context() const { return _context; }
  /// The handle on which rendering scopes are opened.
  const Utility::Unscoped<Rgl>& Handle() const { return _context.Handle(); }
  /// The frame buffer as it is now, the first row on top. The test fails if a GL error is pending.
  QImage Image() const {
    EXPECT_TRUE(Utility::Scoped<Rgl>(Handle())->CheckError("before the image is read"));
    return _context.Image();
  }
  /// So many pixels of it, in the lower left corner.
  QImage Corner(int p_width, int p_height) const {
    return Image().copy(0, _context.Size().height - p_height, p_width, p_height);
  }

protected:
  /// Brings the context to its first state. A derived fixture that overrides it calls it first.
  void SetUp() override {
    _context.BindFrameBuffer();
    const Utility::Scoped<Rgl> gl(Handle());
    gl->PushAttrib(RGL_ALL_ATTRIB_BITS);
    gl->PushClientAttrib(RGL_CLIENT_ALL_ATTRIB_BITS);
    gl->ClearColor(Qt::transparent);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
  }

  /// Checks the state at the end and restores it. A derived fixture that overrides it calls it last.
  void TearDown() override {
    const Utility::Scoped<Rgl> gl(Handle());
    EXPECT_TRUE(gl->CheckError("end of the test"));
    ExpectDepth(gl, RGL_ATTRIB_STACK_DEPTH, "PushAttrib and PopAttrib");
    ExpectDepth(gl, RGL_CLIENT_ATTRIB_STACK_DEPTH, "PushClientAttrib and PopClientAttrib");
    ExpectDepth(gl, RGL_MODELVIEW_STACK_DEPTH, "PushMatrix and PopMatrix");
    ExpectDepth(gl, RGL_PROJECTION_STACK_DEPTH, "PushMatrix and PopMatrix");
    // The next test starts from the same state, whatever this one has left.
    while (Depth(gl, RGL_CLIENT_ATTRIB_STACK_DEPTH) > 0)
      gl->PopClientAttrib();
    while (Depth(gl, RGL_ATTRIB_STACK_DEPTH) > 0)
      gl->PopAttrib();
    for (const auto& [mode, depth] :
         {std::pair(RGL_PROJECTION, RGL_PROJECTION_STACK_DEPTH), std::pair(RGL_MODELVIEW, RGL_MODELVIEW_STACK_DEPTH)}) {
      gl->MatrixMode(mode);
      while (Depth(gl, depth) > 1)
        gl->PopMatrix();
      gl->LoadIdentity();
    }
  }

private:
  static int Depth(const Utility::Scoped<Rgl>& p_gl, Ogl::GlEnum p_stack) {
    int depth = 0;
    p_gl->GetIntegerv(p_stack, &depth);
    return depth;
  }
  /// Each stack has one entry of SetUp's, or the matrix that it always has.
  static void ExpectDepth(const Utility::Scoped<Rgl>& p_gl, Ogl::GlEnum p_stack, const char* p_calls) {
    EXPECT_EQ(Depth(p_gl, p_stack), 1) << p_calls << " are not balanced";
  }

  Ogl::OffscreenContext& _context;
};

/// A PixelFixture with a scope that is open while the test runs.
/// \ingroup testing
class PixelScopeFixture : public PixelFixture {
public:
  /// With a frame buffer of that size.
  explicit PixelScopeFixture(Types::Size p_size = FrameSize)
      : PixelFixture(p_size) {}

  /// A pixel of the frame buffer as it is now, counted from the lower left corner. Throws std::out_of_range outside it.
  QColor At(int p_x, int p_y) const { return QColor::fromRgba(PixelAt(Image(), p_x, p_y)); }

  const Utility::Unscoped<Rgl>& handle = Handle(); ///< for further scopes, nested in `gl`
  Utility::Scoped<Rgl> gl{handle};                 ///< GL's functions
};

/// Passes if there is no difference; otherwise the failure has its message.
/// \ingroup testing
inline ::testing::AssertionResult SameColor(QRgb p_actual, const QColor& p_expected, int p_tolerance = 0) {
  const std::string difference = ColorDifference(p_actual, p_expected, p_tolerance);
  return difference.empty() ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << difference;
}
/// Passes if there is no difference; otherwise the failure has its message.
/// \ingroup testing
inline ::testing::AssertionResult SameImage(const QImage& p_actual, const QImage& p_expected, int p_tolerance = 0) {
  const std::string difference = ImageDifference(p_actual, p_expected, p_tolerance);
  return difference.empty() ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << difference;
}

} // namespace Vek::Chart::Testing
