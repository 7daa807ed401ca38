#pragma once

#include "platform/ogl/OffscreenContext.h"
#include "testing/Scope.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QImage>

#include <string>

namespace Vek::Test {

/// Gives pixel tests an off-screen context that they share, in GL's first state and cleared to transparent black. A
/// test fails, and is never skipped, when no context can be made; it fails as well when it leaves a GL error or an
/// unbalanced matrix or attribute stack behind.
class PixelFixture : public testing::Test {
public:
  void SetUp() override;
  void TearDown() override;

  static constexpr Chart::Types::Size FrameSize{61, 37};
  static Chart::Ogl::OffscreenContext& Context();
  static const Chart::Utility::Unscoped<Chart::Ogl::Rgl>& Handle() { return Context().Handle(); }
  /// The frame buffer; the first row on top. The test fails when a GL error is pending.
  static QImage Image();
  /// So many pixels of it, in the lower left corner.
  static QImage Corner(int p_width, int p_height) {
    return Image().copy(0, FrameSize.height - p_height, p_width, p_height);
  }
};

/// The same, with GL's functions at hand while the test runs.
class PixelScopeFixture : public PixelFixture {
public:
  /// A pixel of the frame buffer as it is now, counted from the lower left.
  static QColor At(int p_x, int p_y);

  const Chart::Utility::Unscoped<Chart::Rgl>& handle = Handle();
  Scope gl{handle};
};

/// A square that fills the viewport under identity matrices; texture coordinates from 0 to `p_repeats`.
void DrawTexturedSquare(const Scope& p_gl, double p_repeats = 1);

/// The colour of a pixel counted from the lower left corner, as GL counts.
QRgb PixelAt(const QImage& p_image, int p_x, int p_y);

/// The rows of an image from top to bottom, one character a pixel: '.' for `p_background`, '#' for `p_foreground`, '?'
/// for anything else. Shows where something was drawn.
std::string Map(const QImage& p_image, const QColor& p_foreground, const QColor& p_background = Qt::transparent);

/// Passes when no channel differs by more than the tolerance; says which ones do.
testing::AssertionResult SameColor(QRgb p_actual, const QColor& p_expected, int p_tolerance = 0);
/// Passes when the images have one size and no channel of any pixel differs by more than the tolerance; names the first
/// pixel that does, counted from the upper left.
testing::AssertionResult SameImage(const QImage& p_actual, const QImage& p_expected, int p_tolerance = 0);

} // namespace Vek::Test
