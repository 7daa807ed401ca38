#include "testing/PixelFixture.h"

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

testing::AssertionResult SameColor(QRgb p_actual, const QColor& p_expected, int p_tolerance) {
  for (const int shift : {0, 8, 16, 24})
    if (std::abs(int(p_actual >> shift & 0xFF) - int(p_expected.rgba() >> shift & 0xFF)) > p_tolerance)
      return testing::AssertionFailure() << QColor::fromRgba(p_actual).name(QColor::HexArgb).toStdString() << " is not "
                                         << p_expected.name(QColor::HexArgb).toStdString()
                                         << " (alpha, red, green, blue; tolerance " << p_tolerance << ")";
  return testing::AssertionSuccess();
}

testing::AssertionResult SameImage(const QImage& p_actual, const QImage& p_expected, int p_tolerance) {
  if (p_actual.size() != p_expected.size())
    return testing::AssertionFailure() << p_actual.width() << " x " << p_actual.height() << " is not "
                                       << p_expected.width() << " x " << p_expected.height();
  for (int y = 0; y < p_actual.height(); ++y)
    for (int x = 0; x < p_actual.width(); ++x)
      if (const auto same = SameColor(p_actual.pixel(x, y), p_expected.pixelColor(x, y), p_tolerance); !same)
        return testing::AssertionFailure() << "pixel (" << x << ", " << y << "): " << same.message();
  return testing::AssertionSuccess();
}

} // namespace Vek::Test
