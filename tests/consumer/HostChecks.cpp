// A test of a host's own draw function, with the installed package and GoogleTest only.

#include "testing/PixelFixture.h"
#include "testing/RecordingFixture.h"
#include "testing/ReportCapture.h"
#include "testing/Surface.h"
#include "testing/TempFolder.h"

using namespace Vek::Chart;

namespace {

void Draw(Utility::Scoped<Rgl>& p_gl) {
  p_gl->ClearColor(Qt::red);
  p_gl->Clear(RGL_COLOR_BUFFER_BIT);
}

using HostCalls = Testing::RecordingFixture;

TEST_F(HostCalls, Clears) {
  Utility::Scoped<Rgl> gl(recorder.Handle());
  Draw(gl);
  EXPECT_EQ(recorder.Lines(), Testing::Calls("ClearColor(1, 0, 0, 1); Clear(GL_COLOR_BUFFER_BIT)"));
}

class HostPixels : public Testing::PixelScopeFixture {
protected:
  HostPixels()
      : PixelScopeFixture({8, 5}) {}
};

TEST_F(HostPixels, AreRed) {
  const Testing::ReportCapture reports;
  Draw(gl);
  QImage red(8, 5, QImage::Format_ARGB32);
  red.fill(Qt::red);
  EXPECT_TRUE(Testing::SameImage(Image(), red));
  EXPECT_TRUE(reports.Texts().empty() && !Testing::IsClosed({}));
}

} // namespace
