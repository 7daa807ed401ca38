#include "platform/assets/ImageCache.h"
#include "platform/assets/Resource.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Assets;

TEST(Resource, ImageFileIsTheNameInItsFolderWithTheEndingPng) {
  EXPECT_EQ(Resource(vekfile::filepath("art/sprites")).ImageFile("symbol_star").str(), "art/sprites/symbol_star.png");
  EXPECT_EQ(Resource(vekfile::filepath("art/")).ImageFile("a.b").str(), "art/a.b.png");
  EXPECT_EQ(Resource(vekfile::filepath()).ImageFile("symbol_star").str(), "symbol_star.png");
}

namespace {

class ImageCacheTest : public testing::Test {
protected:
  vekfile::filepath File(const std::string& p_name) const { return (_folder.Path() / p_name).string(); }
  void Save(const std::string& p_name, QColor p_color) const {
    QImage image(3, 5, QImage::Format_ARGB32);
    image.fill(p_color);
    ASSERT_TRUE(image.save(QString::fromStdString(File(p_name).str())));
  }
  static std::string Warning(const std::string& p_path) {
    return "WARNING: Assets::ImageCache::Image: cannot read \"" + p_path + "\"";
  }
  TempFolder _folder;
  ImageCache _cache;
};

} // namespace

TEST_F(ImageCacheTest, ReadsAFileOnceAndKeepsItsAddress) {
  Save("red.png", Qt::red);
  const QImage& first = _cache.Image(File("red.png"));
  EXPECT_EQ(first.size(), QSize(3, 5));
  EXPECT_EQ(first.pixelColor(2, 4), QColor(Qt::red));
  Save("red.png", Qt::blue);
  const ReportCapture reports;
  for (int i = 0; i < 100; ++i) // they crowd the cache
    _cache.Image(File(std::to_string(i) + ".png"));
  EXPECT_EQ(&_cache.Image(File("red.png")), &first);
  EXPECT_EQ(first.pixelColor(0, 0), QColor(Qt::red));
  Save("0.png", Qt::green);
  EXPECT_TRUE(_cache.Image(File("0.png")).isNull()) << "it came late";
  _cache.Clear();
  EXPECT_EQ(_cache.Image(File("red.png")).pixelColor(0, 0), QColor(Qt::blue));
}

TEST_F(ImageCacheTest, ReadsPathsThatAreNotUtf8) {
  Save("red.png", Qt::red);
  fs::rename(File("red.png").str(), File("caf\xe9.png").str());
  EXPECT_EQ(_cache.Image(File("caf\xe9.png")).size(), QSize(3, 5));
  const ReportCapture reports;
  for (const std::string name : {"\xe9.png", "\xe9"}) {
    fs::create_directory(File("\xe9").str());
    EXPECT_TRUE(_cache.Image(File(name)).isNull());
    EXPECT_EQ(reports.Texts().back(), Warning(File(name).str()));
  }
}

TEST_F(ImageCacheTest, ABadFileIsANullImageAndOneWarning) {
  std::ofstream(File("broken.png").str()) << "no picture";
  for (const vekfile::filepath& file : {File("missing.png"), File("broken.png"), File(""), vekfile::filepath()}) {
    const ReportCapture reports;
    const QImage& image = _cache.Image(file);
    EXPECT_TRUE(image.isNull());
    EXPECT_EQ(&_cache.Image(file), &image);
    EXPECT_EQ(reports.Texts(), Texts{Warning(file.str())});
  }
}
