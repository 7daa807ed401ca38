#include "examples/scene/DepthShader.h"

#include "library/RenderTexture.h"
#include "platform/ogl/OffscreenContext.h"
#include "tests/examples/SceneShots.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

/// A context of the size of a small window, in which scenes are drawn again and again.
class SceneInterfacePixels : public testing::Test {
protected:
  static constexpr Types::Size Window{319, 201};

  QImage Drawn(Scene& p_scene) {
    _context.BindFrameBuffer();
    p_scene.Draw(_gl, ViewOf(p_scene));
    return _context.Image().convertToFormat(QImage::Format_RGB32);
  }
  View ViewOf(const Scene& p_scene) const { return {p_scene.StartCamera(), {0, 0, Window.width, Window.height}}; }

  Ogl::OffscreenContext _context{Window};
  Utility::Scoped<Rgl> _gl{_context.Handle()};
};

} // namespace

TEST_F(SceneInterfacePixels, DrawsAgainTheSameAndTakesColorsAndShapes) {
  for (const SceneEntry& entry : Scenes()) {
    const Testing::ReportCapture reports;
    Loading loading;
    const std::unique_ptr<Scene> scene = entry.load(DataInputs(), loading);
    const QImage first = Drawn(*scene);
    EXPECT_TRUE(Testing::SameImage(Drawn(*scene), first)) << entry.name;
    if (scene->TakesColors()) {
      scene->SetColors({Qt::white, Qt::cyan});
      EXPECT_NE(Drawn(*scene), first) << entry.name << ": other colours";
      scene->SetColors({});
      EXPECT_TRUE(Testing::SameImage(Drawn(*scene), first)) << entry.name << ": its own colours again";
    }
    for (std::size_t i = 1; i < scene->Shapes().size(); ++i) {
      scene->SetShape(i);
      EXPECT_NE(Drawn(*scene), first) << entry.name << ": " << scene->Shapes()[i];
    }
    scene->SetShape(scene->Shapes().size()); // no such shape
    scene->SetShape(0);
    EXPECT_TRUE(Testing::SameImage(Drawn(*scene), first)) << entry.name << ": its own shape again";
    EXPECT_TRUE(_gl->CheckError(entry.name));
    EXPECT_EQ(reports.Texts(), std::vector<std::string>{}) << entry.name;
  }
}

TEST_F(SceneInterfacePixels, SurfacesHaveDepthsWhereThePictureShowsThem) {
  const DepthShader shader(_gl);
  for (const SceneEntry& entry : Scenes()) {
    Loading loading;
    const std::unique_ptr<Scene> scene = entry.load(DataInputs(), loading);
    if (!scene->HasSurfaces())
      continue;
    const QImage picture = Drawn(*scene);
    const View view = ViewOf(*scene);
    const View part{view.camera, scene->SurfaceViewport(view)};
    const Library::RenderTexture target(
        {static_cast<int>(part.viewport.width), static_cast<int>(part.viewport.height)});
    {
      const auto bound = target.BindForDraw(_gl);
      shader.Draw(_gl, [&] { scene->DrawSurfaces(_gl, part); });
    }
    const QImage depths = target.ToImage(_gl);
    int surface = 0, shown = 0;
    for (int y = 0; y < depths.height(); ++y)
      for (int x = 0; x < depths.width(); ++x) {
        if (depths.pixel(x, y) == 0)
          continue;
        ++surface;
        // The background is the same along a row; no scene reaches its left border.
        const int row = picture.height() - static_cast<int>(part.viewport.y) - depths.height() + y;
        shown += picture.pixel(static_cast<int>(part.viewport.x) + x, row) != picture.pixel(0, row) ? 1 : 0;
      }
    EXPECT_GT(surface, depths.width() * depths.height() / 25) << entry.name;
    EXPECT_GT(shown, surface * 95 / 100) << entry.name;
    EXPECT_TRUE(_gl->CheckError(entry.name));
  }
}

TEST(Loading, ACancelledLoadIsNoInputError) {
  for (const SceneEntry& entry : Scenes()) {
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
