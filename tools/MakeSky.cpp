// vek-make-sky: writes a panorama of a clear sky over the sea as a Radiance HDR file (run-length encoded).
//
//     vek-make-sky FILE [WIDTH]       512 columns unless said otherwise, half as many rows
//
// The sky is computed, not painted: sunlight scattered once by air and haze and absorbed by ozone, marched through a
// round atmosphere. Values are radiances in W/(sr·m²), such that 179 lumen per watt give the luminance. Light that is
// scattered more than once is left out, which makes the sky about a third darker than it is.
//
// The sea mirrors the sky in waves whose slopes are spread as a breeze of 4 m/s spreads them, with the sun's glitter.
//
// Method: T. Nishita et al., "Display of the Earth taking into account atmospheric scattering", 1993; coefficients as
// in E. Bruneton, "A qualitative and quantitative evaluation of 8 clear sky models", 2017, for 680, 550 and 440 nm;
// slopes of waves as in C. Cox and W. Munk, "Measurement of the roughness of the sea surface from photographs of the
// sun's glitter", 1954.

#include "platform/types/Angle.h"
#include "platform/types/Vector.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

using Vek::Chart::Types::Angle;
using Vector = Vek::Chart::Types::Vector3_Base<double>;
using Rgb = Vector; ///< red, green, blue

Rgb Times(const Rgb& p_a, const Rgb& p_b) {
  return {p_a.x * p_b.x, p_a.y * p_b.y, p_a.z * p_b.z};
}
Rgb Exp(const Rgb& p_a) {
  return {std::exp(p_a.x), std::exp(p_a.y), std::exp(p_a.z)};
}

// Metres, and 1 / metres at sea level.
constexpr double GroundRadius = 6360e3;
constexpr double TopRadius = 6420e3;
constexpr double EyeHeight = 50;
constexpr Rgb AirScattering(5.802e-6, 13.558e-6, 33.1e-6);
constexpr double AirScaleHeight = 8000;
constexpr double HazeScattering = 3.996e-6;
constexpr double HazeExtinction = 4.44e-6;
constexpr double HazeScaleHeight = 1200;
constexpr double HazeForward = 0.8; ///< how much haze scatters forwards, −1 to 1
constexpr Rgb OzoneAbsorption(0.650e-6, 1.881e-6, 0.085e-6);

constexpr double SunElevation = 18;                         ///< degrees
constexpr double SunAzimuth = 35;                           ///< degrees from the middle of the picture to the right
constexpr double SunRadius = 0.266;                         ///< degrees
constexpr double SunIrradiance = 743;                       ///< W/m² a channel above the atmosphere: 133,000 lux
constexpr double SlopeVariance = (0.003 + 0.00512 * 4) / 2; ///< of each component of the waves' slope
constexpr Rgb WaterAlbedo(0.008, 0.03, 0.045);              ///< of the light that comes back out of the water

/// How much of air, haze and ozone there is at a height, relative to sea level (ozone: to its densest layer).
struct Density {
  explicit Density(double p_height)
      : air(std::exp(-p_height / AirScaleHeight))
      , haze(std::exp(-p_height / HazeScaleHeight))
      , ozone(std::max(0.0, 1 - std::abs(p_height - 25e3) / 15e3)) {}
  Rgb Extinction() const {
    return AirScattering * air + Rgb(1, 1, 1) * (HazeExtinction * haze) + OzoneAbsorption * ozone;
  }
  double air;
  double haze;
  double ozone;
};

/// How far it is from a point to a sphere around the Earth's centre, along a unit direction; negative where it is
/// missed.
double DistanceToSphere(const Vector& p_from, const Vector& p_direction, double p_radius) {
  const double b = Dot(p_from, p_direction);
  const double root = b * b - Dot(p_from, p_from) + p_radius * p_radius;
  return root < 0 ? -1 : -b + std::sqrt(root);
}

bool HitsGround(const Vector& p_from, const Vector& p_direction) {
  const double b = Dot(p_from, p_direction);
  return b < 0 && b * b - Dot(p_from, p_from) + GroundRadius * GroundRadius > 0;
}

/// The share of light that comes through from the top of the atmosphere to a point.
Rgb Transmittance(const Vector& p_at, const Vector& p_direction) {
  constexpr int Steps = 24;
  const double step = DistanceToSphere(p_at, p_direction, TopRadius) / Steps;
  Rgb depth;
  for (int i = 0; i < Steps; ++i)
    depth += Density(Length(p_at + p_direction * ((i + 0.5) * step)) - GroundRadius).Extinction() * step;
  return Exp(-depth);
}

Vector DirectionOf(double p_azimuth, double p_elevation) {
  const double azimuth = Angle::FromDegrees(p_azimuth).Radians();
  const double elevation = Angle::FromDegrees(p_elevation).Radians();
  return {std::sin(azimuth) * std::cos(elevation), std::cos(azimuth) * std::cos(elevation), std::sin(elevation)};
}

const Vector Sun = DirectionOf(SunAzimuth, SunElevation);
const Vector Eye(0, 0, GroundRadius + EyeHeight);

/// Sunlight scattered once towards the eye.
Rgb Scattered(const Vector& p_direction) {
  constexpr int Steps = 64;
  const double cosine = Dot(p_direction, Sun);
  const double airPhase = 3 / (16 * Angle::Pi) * (1 + cosine * cosine);
  const double g = HazeForward;
  const double hazePhase = 3 / (8 * Angle::Pi) * (1 - g * g) * (1 + cosine * cosine) /
                           ((2 + g * g) * std::pow(1 + g * g - 2 * g * cosine, 1.5));
  const double length = DistanceToSphere(Eye, p_direction, TopRadius);
  Rgb depth;
  Rgb radiance;
  double before = 0;
  for (int i = 0; i < Steps; ++i) {
    // Steps grow with the distance: most of the light comes from below the first kilometres.
    const double end = length * std::pow((i + 1.0) / Steps, 2);
    const double step = end - before;
    const Vector at = Eye + p_direction * (before + step / 2);
    const Density density(Length(at) - GroundRadius);
    const Rgb here = depth + density.Extinction() * (step / 2);
    if (!HitsGround(at, Sun)) {
      const Rgb scattering =
          AirScattering * (density.air * airPhase) + Rgb(1, 1, 1) * (HazeScattering * density.haze * hazePhase);
      radiance += Times(Times(scattering, Exp(-here)), Transmittance(at, Sun)) * (SunIrradiance * step);
    }
    depth += density.Extinction() * step;
    before = end;
  }
  return radiance;
}

/// The radiance of the sun's disc, darker towards its limb.
Rgb SunDisc(const Vector& p_direction) {
  const double angle = std::acos(std::clamp(Dot(p_direction, Sun), -1.0, 1.0)) * 180 / Angle::Pi;
  if (angle >= SunRadius)
    return {};
  const double mu = std::sqrt(1 - angle * angle / (SunRadius * SunRadius));
  const double solidAngle = 2 * Angle::Pi * (1 - std::cos(Angle::FromDegrees(SunRadius).Radians()));
  constexpr double Darkening = 0.6; // linear; its mean over the disc is 1 − 0.6 / 3
  const double limb = (1 - Darkening * (1 - mu)) / (1 - Darkening / 3);
  return Transmittance(Eye, Sun) * (SunIrradiance / solidAngle * limb);
}

/// The part of a panorama above the horizon, without the sun's disc: what the sea mirrors.
class Sky {
public:
  explicit Sky(int p_width)
      : _width(p_width)
      , _rows(p_width / 4)
      , _size(360.0 / p_width) {
    for (int row = 0; row < _rows; ++row)
      for (int column = 0; column < _width; ++column)
        _pixels.push_back(Scattered(DirectionOf(Azimuth(column), Elevation(row))));
  }

  double Size() const { return _size; } ///< of a pixel, in degrees
  double Azimuth(int p_column) const { return (p_column + 0.5) * _size - 180; }
  double Elevation(int p_row) const { return 90 - (p_row + 0.5) * _size; }

  const Rgb& Pixel(int p_column, int p_row) const {
    const int column = (p_column % _width + _width) % _width;
    return _pixels[static_cast<std::size_t>(std::clamp(p_row, 0, _rows - 1) * _width + column)];
  }

  /// Between the pixels; directions below the horizon show the lowest row.
  Rgb At(const Vector& p_direction) const {
    const double azimuth = std::atan2(p_direction.x, p_direction.y) * 180 / Angle::Pi;
    const double elevation = std::asin(std::clamp(p_direction.z, 0.0, 1.0)) * 180 / Angle::Pi;
    const double x = (azimuth + 180) / _size - 0.5;
    const double y = (90 - elevation) / _size - 0.5;
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const Rgb upper = Pixel(column, row) * (column + 1 - x) + Pixel(column + 1, row) * (x - column);
    const Rgb lower = Pixel(column, row + 1) * (column + 1 - x) + Pixel(column + 1, row + 1) * (x - column);
    return upper * (row + 1 - y) + lower * (y - row);
  }

  /// What the sun and the whole sky shed on flat ground.
  Rgb Irradiance() const {
    Rgb irradiance = Transmittance(Eye, Sun) * (SunIrradiance * Sun.z);
    const double side = Angle::FromDegrees(_size).Radians();
    for (int row = 0; row < _rows; ++row) {
      const double elevation = Angle::FromDegrees(Elevation(row)).Radians();
      for (int column = 0; column < _width; ++column)
        irradiance += Pixel(column, row) * (std::sin(elevation) * std::cos(elevation) * side * side);
    }
    return irradiance;
  }

private:
  int _width;
  int _rows;
  double _size;
  std::vector<Rgb> _pixels;
};

/// The share of light that water mirrors, by the cosine of the angle of incidence (Schlick's approximation).
double Mirrored(double p_cosine) {
  return 0.02 + 0.98 * std::pow(1 - std::clamp(p_cosine, 0.0, 1.0), 5);
}

/// What the sea shows in a direction below the horizon.
Rgb SeaRadiance(const Vector& p_direction, const Sky& p_sky, const Rgb& p_water) {
  const Vector toEye = -p_direction;
  const double deviation = std::sqrt(SlopeVariance);
  constexpr int Reach = 5; // slopes up to two and a half deviations
  Rgb mirrored;
  double passed = 0;
  double weights = 0;
  for (int i = -Reach; i <= Reach; ++i)
    for (int j = -Reach; j <= Reach; ++j) {
      const Vector normal = Normalize(Vector(i * deviation / 2, j * deviation / 2, 1));
      const double facing = Dot(normal, toEye);
      if (facing <= 0)
        continue;
      const double weight = std::exp(-(i * i + j * j) / 8.0) * facing / normal.z;
      const double share = Mirrored(facing);
      mirrored += p_sky.At(normal * (2 * facing) - toEye) * (weight * share);
      passed += weight * (1 - share);
      weights += weight;
    }
  // The glitter: waves that lean half-way between the eye and the sun.
  const Vector half = Normalize(toEye + Sun);
  const double slope = (half.x * half.x + half.y * half.y) / (half.z * half.z);
  const double density = std::exp(-slope / (2 * SlopeVariance)) / (2 * Angle::Pi * SlopeVariance);
  constexpr double Grazing = 0.04; // waves hide each other towards the horizon
  const double glitter = Mirrored(Dot(half, Sun)) * density / (4 * std::max(toEye.z, Grazing) * std::pow(half.z, 4));
  return (mirrored + p_water * passed) * (1 / weights) + Transmittance(Eye, Sun) * (SunIrradiance * glitter);
}

/// The mean over a pixel; the sun's disc is smaller than one and is sampled finely.
Rgb PixelRadiance(int p_column, int p_row, const Sky& p_sky, const Rgb& p_water) {
  const double size = p_sky.Size();
  const double azimuth = p_sky.Azimuth(p_column);
  const double elevation = p_sky.Elevation(p_row);
  if (elevation <= 0)
    return SeaRadiance(DirectionOf(azimuth, elevation), p_sky, p_water);
  Rgb radiance = p_sky.Pixel(p_column, p_row);
  if (std::abs(elevation - SunElevation) < size + SunRadius && std::abs(azimuth - SunAzimuth) < size + 2 * SunRadius) {
    constexpr int Fine = 16;
    Rgb sun;
    for (int i = 0; i < Fine * Fine; ++i)
      sun += SunDisc(DirectionOf(azimuth + ((i % Fine + 0.5) / Fine - 0.5) * size,
                                 elevation + ((i / Fine + 0.5) / Fine - 0.5) * size));
    radiance += sun * (1.0 / (Fine * Fine));
  }
  return radiance;
}

using Rgbe = std::array<unsigned char, 4>;

/// Three mantissas of 8 bits, cut off, and the exponent of the largest.
Rgbe Encode(const Rgb& p_color) {
  const double largest = std::max({p_color.x, p_color.y, p_color.z});
  int exponent = 0;
  std::frexp(largest, &exponent);
  if (!(largest > 0) || exponent < -127)
    return {0, 0, 0, 0};
  const auto mantissa = [exponent](double p_value) {
    return static_cast<unsigned char>(std::ldexp(std::max(p_value, 0.0), 8 - exponent));
  };
  return {mantissa(p_color.x), mantissa(p_color.y), mantissa(p_color.z), static_cast<unsigned char>(exponent + 128)};
}

/// One component of a scanline: runs of four and more as two bytes, everything else as literals.
void WriteComponent(std::ostream& p_out, const std::vector<Rgbe>& p_line, std::size_t p_component) {
  const auto byte = [&](std::size_t p_x) { return p_line[p_x][p_component]; };
  const auto runAt = [&](std::size_t p_x) {
    std::size_t end = p_x + 1;
    while (end < p_line.size() && end - p_x < 127 && byte(end) == byte(p_x))
      ++end;
    return end - p_x;
  };
  for (std::size_t x = 0; x < p_line.size();) {
    if (const std::size_t run = runAt(x); run >= 4) {
      p_out.put(static_cast<char>(128 + run)).put(static_cast<char>(byte(x)));
      x += run;
      continue;
    }
    std::size_t end = x;
    while (end < p_line.size() && end - x < 128 && runAt(end) < 4)
      ++end;
    p_out.put(static_cast<char>(end - x));
    for (; x < end; ++x)
      p_out.put(static_cast<char>(byte(x)));
  }
}

void WriteSky(std::ostream& p_out, int p_width) {
  const int height = p_width / 2;
  p_out << "#?RADIANCE\n# A clear sky over the sea, computed; the sun stands at " << SunElevation << " degrees\n"
        << "SOFTWARE=vek-make-sky\nFORMAT=32-bit_rle_rgbe\n\n-Y " << height << " +X " << p_width << "\n";
  const Sky sky(p_width);
  const Rgb water = Times(WaterAlbedo, sky.Irradiance()) * (1 / Angle::Pi);
  std::vector<Rgbe> line(static_cast<std::size_t>(p_width));
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < p_width; ++column)
      line[static_cast<std::size_t>(column)] = Encode(PixelRadiance(column, row, sky, water));
    p_out.put(2).put(2).put(static_cast<char>(p_width / 256)).put(static_cast<char>(p_width % 256));
    for (std::size_t component = 0; component < 4; ++component)
      WriteComponent(p_out, line, component);
  }
}

} // namespace

int main(int argc, char** argv) {
  const int width = argc > 2 ? std::atoi(argv[2]) : 512;
  if (argc < 2 || argc > 3 || width < 8 || width > 8192 || width % 4 != 0) {
    std::fputs("usage: vek-make-sky FILE [WIDTH]   (a width from 8 to 8192, a multiple of 4)\n", stderr);
    return 2;
  }
  std::ofstream file(argv[1], std::ios::binary);
  WriteSky(file, width);
  file.close();
  if (!file) {
    std::fprintf(stderr, "vek-make-sky: %s: cannot be written\n", argv[1]);
    return 1;
  }
}
