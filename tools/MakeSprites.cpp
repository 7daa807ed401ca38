// Writes the point sprites of the library into a folder: symbol_rect.png, symbol_ellipse.png, ...
//
// Each is white, 64 × 64 texels; its alpha is the share of the texel that the shape covers, counted at 16 × 16 samples.
// All shapes stay two texels away from the edge, so that linear filtering and small sizes do not cut them. Texels
// outside are white too (and transparent), so that filtering does not darken the edge.

#include <QImage>
#include <QString>

#include <cmath>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace {

constexpr int Size = 64;
constexpr int Samples = 16; // along a texel's side

const double Root2 = std::sqrt(2.0);
const double Root3 = std::sqrt(3.0);

// The shapes: x to the right, y up, the origin in the middle, within ±30. The sign of x never counts.

bool InRect(double p_x, double p_y) {
  return p_x <= 27 && std::abs(p_y) <= 27;
}

bool InEllipse(double p_x, double p_y) {
  return p_x * p_x + p_y * p_y <= 29.5 * 29.5;
}

bool InDiamond(double p_x, double p_y) {
  return p_x + std::abs(p_y) <= 30;
}

/// Points up, with a radius of 30.
bool InHexagon(double p_x, double p_y) {
  const double innerRadius = 15 * Root3;
  return p_x <= innerRadius && p_x / 2 + std::abs(p_y) * Root3 / 2 <= innerRadius;
}

/// Equilateral, with an edge of 60.
bool InTriangle(double p_x, double p_y) {
  const double halfHeight = 15 * Root3;
  return p_y >= -halfHeight && p_x * Root3 + p_y <= halfHeight;
}

bool InCross(double p_x, double p_y) {
  constexpr double HalfWidth = 9;
  const double y = std::abs(p_y);
  return (p_x <= 30 && y <= HalfWidth) || (p_x <= HalfWidth && y <= 30);
}

bool InXCross(double p_x, double p_y) {
  constexpr double HalfWidth = 8;
  const double halfLength = 30 * Root2 - HalfWidth;
  // As seen from the diagonals, of which the longer coordinate counts as the length.
  const double u = (p_x + std::abs(p_y)) / Root2, v = std::abs(p_x - std::abs(p_y)) / Root2;
  return u <= halfLength && v <= HalfWidth;
}

/// Five points, the first up; moved down so that as much is left free above as below.
bool InStar(double p_x, double p_y) {
  constexpr double Radius = 31.5, InnerRadius = 13, Shift = 3;
  const double y = p_y + Shift;
  const double turn = 2 * std::acos(-1.0) / 5;
  // Folded into the half of a point next to +y: between the point at angle 0 and the notch at half a turn.
  double angle = std::abs(std::atan2(p_x, y));
  angle = std::abs(angle - turn * std::round(angle / turn));
  const double r = std::hypot(p_x, y);
  const double across = r * std::sin(angle), along = r * std::cos(angle);
  const double notchAcross = InnerRadius * std::sin(turn / 2), notchAlong = InnerRadius * std::cos(turn / 2);
  return (Radius - along) * notchAcross >= (Radius - notchAlong) * across;
}

constexpr struct {
  const char* word;
  bool (*inside)(double p_x, double p_y);
} Shapes[] = {
    {"rect", InRect},         {"ellipse", InEllipse}, {"diamond", InDiamond}, {"hexagon", InHexagon},
    {"triangle", InTriangle}, {"cross", InCross},     {"xCross", InXCross},   {"star", InStar},
};

/// The alpha of a texel, from its lower left corner.
int Coverage(bool (*p_inside)(double, double), int p_x, int p_y) {
  int count = 0;
  for (int j = 0; j < Samples; ++j)
    for (int i = 0; i < Samples; ++i) {
      const double x = p_x + (i + 0.5) / Samples, y = p_y + (j + 0.5) / Samples;
      count += p_inside(std::abs(x), y) ? 1 : 0;
    }
  return (count * 255 + Samples * Samples / 2) / (Samples * Samples);
}

QImage Sprite(bool (*p_inside)(double, double)) {
  QImage image(Size, Size, QImage::Format_ARGB32);
  for (int row = 0; row < Size; ++row)
    for (int column = 0; column < Size; ++column)
      image.setPixel(column, row, qRgba(255, 255, 255, Coverage(p_inside, column - Size / 2, Size / 2 - 1 - row)));
  return image;
}

} // namespace

int main(int p_count, char** p_arguments) {
  if (p_count != 2) {
    std::fprintf(stderr, "usage: vek-make-sprites FOLDER\n");
    return 2;
  }
  try {
    for (const auto& [word, inside] : Shapes) {
      const std::string path = std::string(p_arguments[1]) + "/symbol_" + word + ".png";
      if (!Sprite(inside).save(QString::fromStdString(path), "PNG"))
        throw std::runtime_error("Cannot write " + path + ".");
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vek-make-sprites: %s\n", error.what());
    return 1;
  }
  return 0;
}
