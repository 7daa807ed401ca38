#include "scene/DepthShader.h"

#include "library/RenderTexture.h"
#include "tests/apps/gallery/PictureShots.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

/// A context of the size of a small window, in which pictures are drawn again and again.
class PictureInterfacePixels : public testing::Test {
protected:
  static constexpr Types::Size Window{319, 201};

  QImage Drawn(Picture& p_picture) {
    _context.BindFrameBuffer();
    p_picture.Draw(_gl, ViewOf(p_picture));
    return _context.Image().convertToFormat(QImage::Format_RGB32);
  }
  View ViewOf(const Picture& p_picture) const { return {p_picture.StartCamera(), {0, 0, Window.width, Window.height}}; }

  Ogl::OffscreenContext _context{Window};
  Utility::Scoped<Rgl> _gl{_context.Handle()};
};

} // namespace

TEST_F(PictureInterfacePixels, DrawsAgainTheSameAndTakesColorsAndShapes) {
  for (const PictureEntry& entry : Pictures()) {
    if (!entry.load)
      continue;
    const ReportCapture reports;
    Loading loading;
    const std::unique_ptr<Picture> picture = entry.load(DataInputs(), loading);
    const QImage first = Drawn(*picture);
    EXPECT_TRUE(SameImage(Drawn(*picture), first)) << entry.name;
    if (picture->TakesColors()) {
      picture->SetColors({Qt::white, Qt::cyan});
      EXPECT_NE(Drawn(*picture), first) << entry.name << ": other colours";
      picture->SetColors({});
      EXPECT_TRUE(SameImage(Drawn(*picture), first)) << entry.name << ": its own colours again";
    }
    for (std::size_t i = 1; i < picture->Shapes().size(); ++i) {
      picture->SetShape(i);
      EXPECT_NE(Drawn(*picture), first) << entry.name << ": " << picture->Shapes()[i];
    }
    picture->SetShape(picture->Shapes().size()); // no such shape
    picture->SetShape(0);
    EXPECT_TRUE(SameImage(Drawn(*picture), first)) << entry.name << ": its own shape again";
    EXPECT_TRUE(_gl->CheckError(entry.name));
    EXPECT_EQ(reports.Texts(), std::vector<std::string>{}) << entry.name;
  }
}

TEST_F(PictureInterfacePixels, SurfacesHaveDepthsWhereThePictureShowsThem) {
  const DepthShader shader(_gl);
  for (const PictureEntry& entry : Pictures()) {
    if (!entry.load)
      continue;
    Loading loading;
    const std::unique_ptr<Picture> picture = entry.load(DataInputs(), loading);
    if (!picture->HasSurfaces())
      continue;
    const QImage image = Drawn(*picture);
    const View view = ViewOf(*picture);
    const View part{view.camera, picture->SurfaceViewport(view)};
    const Library::RenderTexture target(
        {static_cast<int>(part.viewport.width), static_cast<int>(part.viewport.height)});
    {
      const auto bound = target.BindForDraw(_gl);
      shader.Draw(_gl, [&] { picture->DrawSurfaces(_gl, part); });
    }
    const QImage depths = target.ToImage(_gl);
    int surface = 0, shown = 0;
    for (int y = 0; y < depths.height(); ++y)
      for (int x = 0; x < depths.width(); ++x) {
        if (depths.pixel(x, y) == 0)
          continue;
        ++surface;
        // The background is the same along a row; no picture reaches its left border.
        const int row = image.height() - static_cast<int>(part.viewport.y) - depths.height() + y;
        shown += image.pixel(static_cast<int>(part.viewport.x) + x, row) != image.pixel(0, row) ? 1 : 0;
      }
    EXPECT_GT(surface, depths.width() * depths.height() / 25) << entry.name;
    EXPECT_GT(shown, surface * 95 / 100) << entry.name;
    EXPECT_TRUE(_gl->CheckError(entry.name));
  }
}

TEST(Loading, ACancelledLoadIsNoInputError) {
  for (const PictureEntry& entry : Pictures()) {
    if (!entry.load)
      continue;
    if (std::set<std::string>{"wind", "streamlines", "earthquakes", "hdr", "volume", "colors"}.count(entry.name) == 0)
      continue; // the others read no file
    Loading loading;
    loading.Cancel();
    EXPECT_THROW(entry.load(DataInputs(), loading), Cancelled) << entry.name;
  }
  // In the middle of a file, whatever way it is read.
  Loading loading;
  const auto stream = loading.Open(DataInputs().winds);
  std::string line;
  std::getline(*stream, line);
  EXPECT_GT(loading.Progress(), 0);
  EXPECT_LT(loading.Progress(), 1);
  loading.Cancel();
  EXPECT_THROW(while (std::getline(*stream, line)){}, Cancelled);
}
