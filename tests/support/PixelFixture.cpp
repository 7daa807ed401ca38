#include "tests/support/PixelFixture.h"

#include <cstdlib>

namespace Vek::Test {

using namespace Chart;

Ogl::OffscreenContext& PixelFixture::Context() {
  // Never destroyed: drivers end themselves before static objects do.
  static auto* const Context = new Ogl::OffscreenContext(FrameSize);
  return *Context;
}

void PixelFixture::SetUp() {
  Context().BindFrameBuffer();
  const Scope gl(Handle());
  gl->PushAttrib(RGL_ALL_ATTRIB_BITS);
  gl->ClearColor(Qt::transparent);
  gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
}

QImage PixelFixture::Image() {
  EXPECT_TRUE(Scope(Handle())->CheckError("before the image is read"));
  return Context().Image();
}

void PixelFixture::TearDown() {
  if (HasFatalFailure())
    return;
  const Scope gl(Handle());
  const auto depth = [&gl](Ogl::GlEnum p_name) {
    int value = 0;
    gl->GetIntegerv(p_name, &value);
    return value;
  };
  EXPECT_TRUE(gl->CheckError("end of the test"));
  EXPECT_EQ(depth(RGL_ATTRIB_STACK_DEPTH), 1) << "PushAttrib and PopAttrib";
  EXPECT_EQ(depth(RGL_MODELVIEW_STACK_DEPTH), 1) << "PushMatrix and PopMatrix";
  EXPECT_EQ(depth(RGL_PROJECTION_STACK_DEPTH), 1) << "PushMatrix and PopMatrix";
  // The next test starts from the same state, whatever this one left.
  while (depth(RGL_ATTRIB_STACK_DEPTH) > 0)
    gl->PopAttrib();
  for (const Ogl::GlEnum mode : {RGL_PROJECTION, RGL_MODELVIEW}) {
    gl->MatrixMode(mode);
    while (depth(mode == RGL_PROJECTION ? RGL_PROJECTION_STACK_DEPTH : RGL_MODELVIEW_STACK_DEPTH) > 1)
      gl->PopMatrix();
    gl->LoadIdentity();
  }
}

QColor PixelScopeFixture::At(int p_x, int p_y) {
  return QColor::fromRgba(PixelAt(Image(), p_x, p_y));
}

void DrawTexturedSquare(const Scope& p_gl, double p_repeats) {
  p_gl->Begin(RGL_QUADS);
  for (const auto& [s, t] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1), std::pair(0, 1)}) {
    p_gl->TexCoord(s * p_repeats, t * p_repeats);
    p_gl->Vertex(2 * s - 1, 2 * t - 1, 0);
  }
  p_gl->End();
}

QRgb PixelAt(const QImage& p_image, int p_x, int p_y) {
  return p_image.pixel(p_x, p_image.height() - 1 - p_y);
}

std::string Map(const QImage& p_image, const QColor& p_foreground, const QColor& p_background) {
  std::string map;
  for (int y = 0; y < p_image.height(); ++y) {
    for (int x = 0; x < p_image.width(); ++x) {
      const QRgb pixel = p_image.pixel(x, y);
      map += pixel == p_background.rgba() ? '.' : pixel == p_foreground.rgba() ? '#' : '?';
    }
    map += '\n';
  }
  return map;
}

namespace {

bool Near(QRgb p_a, QRgb p_b, int p_tolerance) {
  return std::abs(qRed(p_a) - qRed(p_b)) <= p_tolerance && std::abs(qGreen(p_a) - qGreen(p_b)) <= p_tolerance &&
         std::abs(qBlue(p_a) - qBlue(p_b)) <= p_tolerance && std::abs(qAlpha(p_a) - qAlpha(p_b)) <= p_tolerance;
}

std::string Text(QRgb p_color) {
  return "(" + std::to_string(qRed(p_color)) + ", " + std::to_string(qGreen(p_color)) + ", " +
         std::to_string(qBlue(p_color)) + ", " + std::to_string(qAlpha(p_color)) + ")";
}

std::string Text(const QImage& p_image) {
  return std::to_string(p_image.width()) + " x " + std::to_string(p_image.height());
}

} // namespace

testing::AssertionResult SameColor(QRgb p_actual, const QColor& p_expected, int p_tolerance) {
  if (Near(p_actual, p_expected.rgba(), p_tolerance))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << Text(p_actual) << " is not " << Text(p_expected.rgba())
                                     << " (red, green, blue, alpha; tolerance " << p_tolerance << ")";
}

testing::AssertionResult SameImage(const QImage& p_actual, const QImage& p_expected, int p_tolerance) {
  if (p_actual.size() != p_expected.size())
    return testing::AssertionFailure() << Text(p_actual) << " is not " << Text(p_expected);
  for (int y = 0; y < p_actual.height(); ++y)
    for (int x = 0; x < p_actual.width(); ++x)
      if (!Near(p_actual.pixel(x, y), p_expected.pixel(x, y), p_tolerance))
        return testing::AssertionFailure() << "pixel (" << x << ", " << y << "): " << Text(p_actual.pixel(x, y))
                                           << " is not " << Text(p_expected.pixel(x, y));
  return testing::AssertionSuccess();
}

} // namespace Vek::Test
