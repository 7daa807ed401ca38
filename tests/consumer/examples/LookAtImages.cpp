// Fails unless each image of the command line shows something: its middle has many colours beside that of its corner.

#include <QImage>

#include <cstdio>
#include <set>

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const QImage image(QString::fromLocal8Bit(argv[i]));
    const QImage middle = image.copy(image.width() / 4, image.height() / 4, image.width() / 2, image.height() / 2);
    int drawn = 0;
    std::set<QRgb> colors;
    for (int y = 0; y < middle.height(); ++y)
      for (int x = 0; x < middle.width(); ++x) {
        colors.insert(middle.pixel(x, y));
        drawn += middle.pixel(x, y) != image.pixel(0, 0) ? 1 : 0;
      }
    constexpr int LeastColors = 50;
    if (colors.size() < LeastColors || 50 * drawn < middle.width() * middle.height()) {
      std::printf("%s: %d x %d pixels, %d of them drawn in the middle, %d colours\n", argv[i], image.width(),
                  image.height(), drawn, static_cast<int>(colors.size()));
      return 1;
    }
  }
  return argc < 2;
}
