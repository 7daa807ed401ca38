#include "scene/SaveImage.h"

#include "testing/TempFolder.h"
#include "tests/support/Figures.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>

namespace {

/// Files cannot grow beyond a number of bytes, as on a full disk.
class LongestFile {
public:
  explicit LongestFile(rlim_t p_bytes)
      : _before(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &_limit);
    const rlimit limit{p_bytes, _limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~LongestFile() {
    ::setrlimit(RLIMIT_FSIZE, &_limit);
    std::signal(SIGXFSZ, _before);
  }
  LongestFile(const LongestFile&) = delete;
  LongestFile& operator=(const LongestFile&) = delete;

private:
  void (*_before)(int);
  rlimit _limit{};
};

/// An image that no format compresses below 100 000 bytes.
QImage Noise() {
  QImage image(256, 256, QImage::Format_RGB32);
  std::mt19937 random(7);
  for (int i = 0; i < 256 * 256; ++i)
    image.setPixel(i % 256, i / 256, 0xFF000000U | random());
  return image;
}

std::string Bytes(const std::string& p_path) {
  std::ifstream file(p_path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t FilesIn(const TempFolder& p_folder) {
  const std::filesystem::directory_iterator files(p_folder.Path());
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

class SaveImageTest : public FigureFixture {
protected:
  const TempFolder folder;
};

TEST_F(SaveImageTest, FormatBySuffix) {
  const QImage image = Noise();
  for (const char* const name : {"a.png", "b.PNG", "c.bmp", "d.two.png"}) {
    SaveImage(image, QString::fromStdString(folder.File(name)));
    EXPECT_EQ(QImage(QString::fromStdString(folder.File(name))).convertToFormat(QImage::Format_RGB32), image) << name;
  }
  EXPECT_EQ(Bytes(folder.File("b.PNG")).substr(1, 3), "PNG");
  EXPECT_EQ(Bytes(folder.File("c.bmp")).substr(0, 2), "BM");
}

TEST_F(SaveImageTest, WholeOrNotAtAll) {
  Figure figure;
  QImage image = Noise();
  const auto paint = [&](const std::string& p_path) {
    if (p_path.back() == 'f')
      figure.Save(QString::fromStdString(p_path), {400, 300});
    else
      SaveImage(image, QString::fromStdString(p_path));
  };
  figure.Image({40, 30}); // what the driver caches has been written before the limit
  for (const char* const name : {"a.png", "a.bmp", "a.pdf"}) {
    const std::string fresh = folder.File(std::string("new-") + name), old = folder.Write(name, "older");
    {
      const LongestFile limit(1000);
      for (const std::string& path : {fresh, old}) {
        const std::string error = ErrorOf<std::runtime_error>([&] { paint(path); });
        EXPECT_EQ(error.find(path + ": the "), 0U) << error;
        EXPECT_NE(error.find(" cannot be written: File too large"), std::string::npos) << error;
      }
    }
    EXPECT_EQ(Bytes(old), "older");
    EXPECT_FALSE(std::filesystem::exists(fresh));
    paint(old);
    EXPECT_GT(Bytes(old).size(), 1000U);
  }
  EXPECT_EQ(FilesIn(folder), 3U);
}

TEST_F(SaveImageTest, RefusesWhatItCannotWrite) {
  const auto path = [&](const char* p_name) { return QString::fromStdString(folder.File(p_name)); };
  std::filesystem::create_directory(folder.File("folder.png"));
  const std::string start = ": the image cannot be written: ";
  ExpectErrors<std::runtime_error>({
      {folder.File("no/a.png") + start + "No such file or directory", [&] { SaveImage(Noise(), path("no/a.png")); }},
      {folder.File("folder.png") + start + "Is a directory", [&] { SaveImage(Noise(), path("folder.png")); }},
      {folder.File("a.xyz") + start + "Unsupported image format", [&] { SaveImage(Noise(), path("a.xyz")); }},
      {folder.File("a") + start + "Unsupported image format", [&] { SaveImage(Noise(), path("a")); }},
      {folder.File("a.png") + start + "Image is empty", [&] { SaveImage({}, path("a.png")); }},
  });
  EXPECT_EQ(FilesIn(folder), 1U);
}

TEST_F(SaveImageTest, LinksAndDevicesStay) {
  const std::string target = folder.Write("target.png", "older"), link = folder.File("link.png");
  std::filesystem::create_symlink(target, link);
  SaveImage(Noise(), QString::fromStdString(link));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(Bytes(target).substr(1, 3), "PNG");

  const std::string device = folder.File("full.png");
  std::filesystem::create_symlink("/dev/full", device);
  const std::string error = ErrorOf<std::runtime_error>([&] { SaveImage(Noise(), QString::fromStdString(device)); });
  EXPECT_NE(error.find("No space left on device"), std::string::npos) << error;
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

} // namespace
