// Fails unless each image of the command line shows data: colours in its middle, where axes and letters are grey.

#include <QColor>
#include <QImage>

#include <cstdio>

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const QImage image(QString::fromLocal8Bit(argv[i]));
    const QImage middle = image.copy(image.width() / 4, image.height() / 4, image.width() / 2, image.height() / 2);
    int colored = 0;
    for (int y = 0; y < middle.height(); ++y)
      for (int x = 0; x < middle.width(); ++x)
        colored += middle.pixelColor(x, y).hsvSaturation() > 60 ? 1 : 0;
    if (middle.isNull() || 100 * colored < middle.width() * middle.height()) {
      std::printf("%s: %d x %d pixels, %d of them coloured in the middle\n", argv[i], image.width(), image.height(),
                  colored);
      return 1;
    }
  }
  return argc < 2;
}
