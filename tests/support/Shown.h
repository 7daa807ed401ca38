#pragma once

#include "platform/ogl/OffscreenContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <gtest/gtest.h>

#include <QImage>

#include <string>

namespace Vek::Test {

/// Makes the application object that Qt needs for fonts, without a screen, unless there is one. It lives until the
/// program ends: a second one would leak the screen of the first.
void MakeApplication();

/// Keeps the image of a part for its reference page, as `docs/images/<p_name>.png` in the build folder, from which
/// `scripts/thumbnails --parts` makes `docs/images/parts/<p_name>.png`. The test fails if nothing is seen: if each row
/// of the image has one colour, which a background with a vertical gradient has, too.
void Shown(const QImage& p_image, const std::string& p_name);

/// A fixture for snippets whose image is shown: an application for fonts, a cleared multisampled frame buffer, an open
/// scope, and the viewport that covers the frame buffer. Draw with PointSize pixels a point: pages show half the size.
///
///     TEST_F(LegendSnippetPixels, Canvas) { // LegendSnippetPixels is ShownFixture
///       //! [Canvas]
///       Canvas canvas(gl, viewport, text, PointSize);
///       //! [Canvas]
///       Show("Canvas"); // the one check
///     }
class ShownFixture : public ::testing::Test {
public:
  static constexpr Chart::Types::Size FrameSize{1280, 800}; ///< the default size in pixels
  static constexpr double PointSize = 2;                    ///< pixels of a point
  /// With a frame buffer of that size. All tests of a program that ask for one size share a context.
  explicit ShownFixture(Chart::Types::Size p_size = FrameSize);

  Chart::Ogl::OffscreenContext& context;
  const Chart::Utility::Unscoped<Chart::Rgl>& handle; ///< on which further scopes are opened
  Chart::Utility::Scoped<Chart::Rgl> gl;              ///< the open scope
  Chart::Types::Viewport<0> viewport;                 ///< all of the frame buffer

protected:
  void SetUp() override;
  /// Fails if the snippet has left an error of GL or attributes pushed.
  void TearDown() override;
  /// Calls `Shown` with what has been drawn.
  void Show(const std::string& p_name) { Shown(context.Image(), p_name); }
};

} // namespace Vek::Test
