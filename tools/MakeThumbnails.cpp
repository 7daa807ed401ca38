// vek-make-thumbnails: the gallery's pictures, 640 pixels wide as JPEG, for the pages of the documentation.
//
//     vek-make-thumbnails GALLERY FOLDER     every GALLERY/*.png becomes FOLDER/*.jpg

#include <QImage>
#include <QString>

#include <cstdio>
#include <filesystem>

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  constexpr int Width = 640;
  constexpr int Quality = 85;
  if (argc != 3 || !fs::is_directory(argv[1]) || !fs::is_directory(argv[2])) {
    std::fputs("usage: vek-make-thumbnails GALLERY FOLDER   (both must be there)\n", stderr);
    return 2;
  }
  int written = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(argv[1])) {
    if (entry.path().extension() != ".png")
      continue;
    const std::string target = (fs::path(argv[2]) / entry.path().stem()).string() + ".jpg";
    const QImage picture(QString::fromStdString(entry.path().string()));
    // A null picture cannot be saved either.
    if (!picture.scaledToWidth(Width, Qt::SmoothTransformation).save(QString::fromStdString(target), "JPG", Quality)) {
      std::fprintf(stderr, "vek-make-thumbnails: %s: cannot be written\n", target.c_str());
      return 1;
    }
    ++written;
  }
  std::printf("%d pictures\n", written);
  return written == 0;
}
