// An image with high dynamic range as light: spheres that reflect all of it, and spheres that reflect what a screen can
// show of it. Below, the image at five exposures, and the luminance along one of its rows.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "io/ReadImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace Vek::Chart::Gallery {

namespace {

using Direction = Types::Vector3_Base<double>;
using Color = std::array<double, 3>; ///< linear red, green, blue

double Luminance(const Color& p_color) {
  return 0.265 * p_color[0] + 0.670 * p_color[1] + 0.065 * p_color[2];
}

/// What comes from all directions: longitudes from left to right, latitudes from the bottom row to the top one.
struct Panorama {
  int width = 0, height = 0;
  std::vector<Color> pixels;

  Color& At(int p_x, int p_y) { return pixels[static_cast<std::size_t>(p_y) * std::size_t(width) + std::size_t(p_x)]; }
  const Color& At(int p_x, int p_y) const { return const_cast<Panorama*>(this)->At(p_x, p_y); }
  Direction DirectionOf(int p_x, int p_y) const {
    const double lon = 2 * M_PI * (p_x + 0.5) / width, lat = M_PI * ((p_y + 0.5) / height - 0.5);
    return {std::cos(lat) * std::sin(lon), std::cos(lat) * std::cos(lon), std::sin(lat)};
  }
  /// The solid angle of a pixel of a row.
  double SolidAngle(int p_y) const {
    return 2 * M_PI / width *
           (std::sin(M_PI * ((p_y + 1.0) / height - 0.5)) - std::sin(M_PI * (double(p_y) / height - 0.5)));
  }
  /// Linear between the centres of pixels.
  Color In(const Direction& p_direction) const {
    const double lon = std::atan2(p_direction.x, p_direction.y) / (2 * M_PI);
    const double x = (lon - std::floor(lon)) * width - 0.5;
    const double y = (std::asin(std::clamp(p_direction.z, -1.0, 1.0)) / M_PI + 0.5) * height - 0.5;
    const int left = int(std::floor(x)), lower = int(std::floor(y));
    Color color{};
    for (const int i : {0, 1})
      for (const int j : {0, 1}) {
        const double weight = (1 - std::abs(x - left - i)) * (1 - std::abs(y - lower - j));
        const Color& pixel = At((left + i + width) % width, std::clamp(lower + j, 0, height - 1));
        for (std::size_t c = 0; c < 3; ++c)
          color[c] += weight * pixel[c];
      }
    return color;
  }
};

Panorama ReadPanorama(const std::string& p_path) {
  const Io::Image image = Io::ReadImage(p_path, {true, true, true, {}});
  Panorama panorama{int(image.width), int(image.height), {}};
  for (std::size_t i = 0; i < image.width * image.height; ++i) {
    Color color{};
    for (std::size_t c = 0; c < 3; ++c) {
      const auto value = static_cast<double>(image.pixels[i * image.channels + (image.channels < 3 ? 0 : c)]);
      color[c] = std::isfinite(value) ? std::max(value, 0.0) : 0;
    }
    panorama.pixels.push_back(color);
  }
  return panorama;
}

/// Each pixel the mean of a block, so that at most so many are left in a row.
Panorama Reduced(const Panorama& p_panorama, int p_most) {
  const int step = (std::max(p_panorama.width, p_panorama.height) + p_most - 1) / p_most;
  Panorama reduced{std::max(p_panorama.width / step, 1), std::max(p_panorama.height / step, 1), {}};
  reduced.pixels.resize(std::size_t(reduced.width) * std::size_t(reduced.height));
  const int columns = std::min(step, p_panorama.width), rows = std::min(step, p_panorama.height);
  for (int y = 0; y < reduced.height; ++y)
    for (int x = 0; x < reduced.width; ++x)
      for (int i = 0; i < rows * columns; ++i)
        for (std::size_t c = 0; c < 3; ++c)
          reduced.At(x, y)[c] += p_panorama.At(x * step + i % columns, y * step + i / columns)[c] / (rows * columns);
  return reduced;
}

Panorama Exposed(Panorama p_panorama, double p_gain, double p_most) {
  for (Color& pixel : p_panorama.pixels)
    for (double& channel : pixel)
      channel = std::min(channel * p_gain, p_most);
  return p_panorama;
}

/// What a surface reflects towards each direction: the mean of the panorama weighted by the cosine of the angle, to the
/// power of `p_exponent` (Phong's lobe; 1 is a matte surface, see Ramamoorthi and Hanrahan, "An Efficient
/// Representation for Irradiance Environment Maps", 2001).
Panorama Blurred(const Panorama& p_panorama, double p_exponent) {
  const Panorama light = Reduced(p_panorama, p_exponent > 100 ? 128 : 64);
  std::vector<Direction> directions;
  for (int y = 0; y < light.height; ++y)
    for (int x = 0; x < light.width; ++x)
      directions.push_back(light.DirectionOf(x, y));
  const double least = std::pow(1e-3, 1 / p_exponent); // weights below a thousandth are left out
  Panorama blurred{light.width, light.height, {}};
  for (const Direction& towards : directions) {
    Color sum{};
    double weights = 0;
    for (std::size_t i = 0; i < directions.size(); ++i) {
      const double cosine = Dot(towards, directions[i]);
      if (cosine < least)
        continue;
      const double weight = std::pow(cosine, p_exponent) * light.SolidAngle(int(i) / light.width);
      for (std::size_t c = 0; c < 3; ++c)
        sum[c] += weight * light.pixels[i][c];
      weights += weight;
    }
    for (double& channel : sum)
      channel /= weights;
    blurred.pixels.push_back(sum);
  }
  return blurred;
}

/// A linear value as sRGB, 0 to 255.
int Encoded(double p_value) {
  const double v = std::clamp(p_value, 0.0, 1.0);
  return int(std::lround(255 * (v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055)));
}

QColor Encoded(const Color& p_color) {
  return {Encoded(p_color[0]), Encoded(p_color[1]), Encoded(p_color[2])};
}

QImage ImageOf(const Panorama& p_panorama) {
  QImage image(p_panorama.width, p_panorama.height, QImage::Format_RGB32);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      image.setPixelColor(x, image.height() - 1 - y, Encoded(p_panorama.At(x, y)));
  return image;
}

/// The front of a unit sphere, seen along +y, in the colours that `p_colorAt` gives its normals.
template <class ColorAt>
QImage SphereImage(int p_pixels, const ColorAt& p_colorAt) {
  constexpr double MostRadius = 1 - 1e-9; // pixels at the rim, whose centres are outside, have the colour of the rim
  QImage image(p_pixels, p_pixels, QImage::Format_ARGB32);
  for (int row = 0; row < p_pixels; ++row)
    for (int column = 0; column < p_pixels; ++column) {
      const double x = (2 * column + 1.0) / p_pixels - 1, z = 1 - (2 * row + 1.0) / p_pixels;
      const double radius = std::hypot(x, z), inside = std::min(1.0, MostRadius / radius);
      const Direction normal(x * inside, -std::sqrt(1 - std::pow(radius * inside, 2)), z * inside);
      QColor color = Encoded(p_colorAt(normal));
      color.setAlphaF(std::clamp((1 - radius) * p_pixels / 2 + 0.5, 0.0, 1.0));
      image.setPixelColor(column, row, color);
    }
  return image;
}

struct Finish {
  const char* name;
  double exponent; ///< of the lobe; 0 for a mirror
};
constexpr Finish Finishes[] = {{"mirror", 0}, {"polished", 800}, {"satin", 60}, {"rough", 10}, {"matte", 1}};

/// A row of spheres under one light. `p_back` is the longitude behind the viewer.
void DrawSpheres(Sheet& p_sheet, const Panorama& p_light, double p_back, const Canvas::Position& p_first) {
  constexpr double Pitch = 208, Radius = 100, Albedo = 0.9;
  const double sine = std::sin(p_back), cosine = std::cos(p_back);
  const int pixels = int(std::ceil(2 * Radius * p_sheet.canvas.PointSize()));
  for (std::size_t i = 0; i < std::size(Finishes); ++i) {
    const bool isMatte = Finishes[i].exponent == 1;
    const Panorama light = Finishes[i].exponent == 0 ? p_light : Blurred(p_light, Finishes[i].exponent);
    const QImage sphere = SphereImage(pixels, [&](const Direction& p_normal) {
      // A matte surface faces its normal, the others the mirrored line of sight, which runs along +y.
      const Direction out = isMatte ? p_normal : Direction(0, 1, 0) - p_normal * (2 * p_normal.y);
      Color color = light.In({-out.x * cosine - out.y * sine, out.x * sine - out.y * cosine, out.z});
      for (double& channel : color)
        channel *= Albedo;
      return color;
    });
    const double x = p_first.x + Pitch * double(i);
    p_sheet.canvas.Image({x - Radius, p_first.y - Radius, x + Radius, p_first.y + Radius}, sphere);
  }
}

/// The factor by which the geometric mean of all luminances above 0 becomes a middle grey.
double MiddleGain(const Panorama& p_panorama) {
  double sum = 0, count = 0;
  for (const Color& pixel : p_panorama.pixels)
    if (const double luminance = Luminance(pixel); luminance > 0) {
      sum += std::log(luminance);
      ++count;
    }
  return count > 0 ? 0.18 / std::exp(sum / count) : 1;
}

/// The factor that keeps a matte surface from being brighter than white wherever it faces; at most 1.
double MatteGain(const Panorama& p_light) {
  double most = 1;
  for (const Color& color : Blurred(p_light, 1).pixels)
    for (const double channel : color)
      most = std::max(most, channel);
  return 1 / most;
}

/// From one that shows the shadows to one that shows only the brightest thousandth of all pixels, which is dark in it.
std::array<int, 5> Stops(const Panorama& p_panorama, double p_gain) {
  std::vector<double> luminances;
  for (const Color& pixel : p_panorama.pixels)
    luminances.push_back(Luminance(pixel));
  const auto bright = luminances.begin() + static_cast<std::ptrdiff_t>(luminances.size() * 999 / 1000);
  std::nth_element(luminances.begin(), bright, luminances.end());
  const double least = std::clamp(std::log2(std::max(*bright * p_gain, 1e-9) / 0.03), 3.0, 40.0);
  return {2, 0, -int(std::lround(least / 3)), -int(std::lround(least * 2 / 3)), -int(std::lround(least))};
}

/// The luminance along the row of the brightest pixel, and the largest one that a screen shows.
Figure LuminanceAlong(const Panorama& p_panorama, int p_row) {
  std::vector<double> x, y;
  for (int i = 0; i < p_panorama.width; ++i) {
    x.push_back(360 * (i + 0.5) / p_panorama.width - 180);
    y.push_back(std::max(Luminance(p_panorama.At(i, p_row)), 1e-6));
  }
  const std::vector<double> flat(x.size(), 0);
  Figure figure;
  figure.SetLogAxis(1).SetAxisTitles("Degrees from the middle", "Luminance").SetLimits(0, -180, 180);
  figure.SetTicks(0, [](double p_low, double p_high, std::size_t p_most) {
    return Ticks::Degrees(p_low, p_high, std::min<std::size_t>(p_most, 5));
  });
  figure.Lines(Array3(x, y, flat)).Color(QColor(0xF2B04B));
  figure.Lines(std::vector<Types::Vector3_Base<double>>{{-180, 1, 0}, {180, 1, 0}}).Color(QColor(0x8FA3B8)).Width(1);
  // As high as it is wide.
  const auto [least, most] = std::minmax_element(y.begin(), y.end());
  figure.SetAspect(1, 360 / std::max(std::log10(*most / *least), 1.0), 1);
  return figure;
}

} // namespace

QImage HdrImage(const Inputs& p_inputs, Types::Size p_size) {
  const Panorama file = ReadPanorama(p_inputs.hdr);
  const double gain = MiddleGain(file);
  const std::array<int, 5> stops = Stops(file, gain);
  const Panorama light = Reduced(Exposed(file, gain, std::numeric_limits<double>::max()), 1024);
  const auto brightest =
      std::max_element(light.pixels.begin(), light.pixels.end(),
                       [](const Color& p_a, const Color& p_b) { return Luminance(p_a) < Luminance(p_b); });
  const int index = int(brightest - light.pixels.begin());
  const int column = index % light.width, row = index / light.width;
  const QString size = QString("%1, %2 × %3 pixels").arg(NameOfFile(p_inputs.hdr)).arg(file.width).arg(file.height);
  return DrawSheet("High dynamic range", size, p_size, [&](Sheet& p_sheet) {
    // The brightest pixel shines over the left shoulder of the viewer.
    const double back = 2 * M_PI * (column + 0.5) / light.width - M_PI / 3;
    const double matte = MatteGain(light);
    p_sheet.Heading("Lit by the image", 48, 838);
    DrawSpheres(p_sheet, Exposed(light, matte, std::numeric_limits<double>::max()), back, {148, 714});
    p_sheet.Heading("Lit by what a screen shows of it", 48, 576);
    DrawSpheres(p_sheet, Exposed(light, matte, 1), back, {148, 452});
    for (std::size_t i = 0; i < std::size(Finishes); ++i)
      p_sheet.Label(Finishes[i].name, 148 + 208 * double(i), 326, {0.5, 0.5});

    Figure plot = LuminanceAlong(light, row);
    p_sheet.Heading("Luminance along the marked row", 1110, 838);
    p_sheet.Label("1 is the most that a screen shows", 1110, 810);
    p_sheet.Draw(plot, {1090, 306, 1590, 790});

    p_sheet.Heading("Five exposures", 48, 252);
    constexpr double Width = 288, Gap = 16, Top = 224;
    const double height = std::min(Width * light.height / light.width, 200.0);
    for (std::size_t i = 0; i < stops.size(); ++i) {
      const double left = 48 + (Width + Gap) * double(i);
      p_sheet.canvas.Image({left, Top - height, left + height * light.width / light.height, Top},
                           ImageOf(Exposed(light, std::exp2(stops[i]), 1)));
      p_sheet.Label(stops[i] == 0  ? QString("mean as middle grey")
                    : stops[i] > 0 ? QString("%1 stops more: × %2").arg(stops[i]).arg(1L << stops[i])
                                   : QString("%1 stops less: ÷ %2").arg(-stops[i]).arg(1L << -stops[i]),
                    left, Top - height - 22);
      if (stops[i] == 0) {
        const double y = Top - height + height * (row + 0.5) / light.height;
        p_sheet.canvas.Line({left, y}, {left + Width, y}, 1.5, QColor(0xF2B04B));
      }
    }
  });
}

} // namespace Vek::Chart::Gallery
