// Slices through a volume: the salinity of the ocean on a map, at its true depths, or a volume of the user's own.

#include "apps/gallery/PictureFunctions.h"

#include "io/ReadVolume.h"

#include <algorithm>
#include <limits>

namespace Vek::Chart::Gallery {

namespace {

/// The depths of the layers of data/ocean_salinity.txt in metres.
constexpr double Depths[] = {0,   10,  20,  30,   50,   75,   100,  150,  200,  300,
                             400, 600, 800, 1000, 1200, 1500, 2000, 3000, 4000, 5000};

/// Layers of the ocean at their depths, with the first meridian once more at the end, so that the seam closes.
VoxelGrid Ocean(const std::string& p_path) {
  const Io::Volume file = Io::ReadVolume(p_path);
  const auto [columns, rows, layers] = file.size;
  if (columns < 2 || rows < 2 || layers != std::size(Depths))
    throw std::runtime_error(p_path + ": expected " + std::to_string(std::size(Depths)) + " layers, got " +
                             std::to_string(layers));
  const std::vector<float> all = file.Floats();
  std::vector<float> values;
  for (std::size_t row = 0; row < rows * layers; ++row)
    for (std::size_t column = 0; column <= columns; ++column) {
      const float value = all[row * columns + column % columns];
      values.push_back(value > 0 ? value : std::numeric_limits<float>::quiet_NaN()); // 0 is land and sea floor
    }
  std::vector<double> lon, lat, height;
  for (std::size_t i = 0; i <= columns; ++i)
    lon.push_back(19.5 + 360 * (static_cast<double>(i) + 0.5) / static_cast<double>(columns));
  for (std::size_t i = 0; i < rows; ++i)
    lat.push_back(-90.5 + 180 * (static_cast<double>(i) + 0.5) / static_cast<double>(rows));
  for (const double depth : Depths)
    height.push_back(-depth);
  return {values, lon, lat, height};
}

Ticks DepthTicks(double p_low, double p_high, std::size_t p_most) {
  const Ticks heights = Ticks::Linear(p_low, p_high, p_most);
  std::vector<QString> strings = heights.Strings();
  for (QString& string : strings)
    string.remove(QChar(0x2212));
  return {heights.Values(), strings};
}

} // namespace

Figure VolumeFigure(const Inputs& p_inputs) {
  if (!p_inputs.volume.empty()) {
    const VoxelGrid volume = Io::ReadVolume(p_inputs.volume);
    Figure figure("Slices of a volume", VolumeName(p_inputs.volume, volume));
    figure.Slices(volume).ColorTitle(ValueTitle(volume));
    return figure;
  }
  constexpr int Exaggeration = 2000;
  constexpr double MetresPerDegree = 111195; // along a meridian of a sphere of 6371 km
  Figure figure("Salinity of the ocean", QString("Mean of all years at 30° W, 180°, the equator and 1000 m. Depths "
                                                 "are stretched %1 times")
                                             .arg(Exaggeration));
  figure.SetMap().SetLimits(0, 20.5, 380.5).SetLimits(1, -90, 90).SetLimits(2, -5000, 0);
  figure.SetTicks(2, DepthTicks).SetAxisTitles({}, {}, "Depth in m").SetAspect(1, 1, Exaggeration / MetresPerDegree);
  figure.Look(20, 30);
  figure.Slices(Ocean(p_inputs.salinity))
      .At(0, 330)
      .At(0, 180)
      .At(1, 0)
      .At(2, -1000)
      .ColorRange(33.5, 36.5)
      .ColorTitle("Salinity in parts per thousand");
  return figure;
}

} // namespace Vek::Chart::Gallery
