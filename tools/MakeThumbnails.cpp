// vek-make-thumbnails: images for the pages of the documentation, at most 640 pixels wide.
//
//     vek-make-thumbnails FROM TO [png]     each FROM/*.png becomes TO/*.jpg, or TO/*.png

#include <QImage>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  constexpr int MaxWidth = 640;
  constexpr int Quality = 85; // of JPEG; PNG's is its compression, always the best here
  const bool png = argc == 4 && std::strcmp(argv[3], "png") == 0;
  if ((argc != 3 && !png) || !fs::is_directory(argv[1]) || !fs::is_directory(argv[2])) {
    std::fputs("usage: vek-make-thumbnails FROM TO [png]   (both folders must exist)\n", stderr);
    return 2;
  }
  int written = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(argv[1])) {
    if (entry.path().extension() != ".png")
      continue;
    const fs::path target = fs::path(argv[2]) / entry.path().stem().replace_extension(png ? ".png" : ".jpg");
    const QImage image(QString::fromStdString(entry.path().string()));
    // A null image cannot be saved either.
    if (!image.scaledToWidth(std::min(image.width(), MaxWidth), Qt::SmoothTransformation)
             .save(QString::fromStdString(target.string()), png ? "PNG" : "JPG", png ? 0 : Quality)) {
      std::fprintf(stderr, "vek-make-thumbnails: %s: cannot be written\n", target.string().c_str());
      return 1;
    }
    ++written;
  }
  std::printf("%d images\n", written);
  return written == 0;
}
