#include "examples/scene/Palettes.h"

#include <algorithm>
#include <array>

namespace Vek::Chart::Gallery::Palettes {

namespace {

// Each table holds the colours at 0, 1/16, ... 1.
using Table = std::array<unsigned int, 17>;

constexpr Table ViridisTable = {0x440154, 0x48186A, 0x472D7B, 0x424086, 0x3B528B, 0x33638D,
                                0x2C728E, 0x26828E, 0x21918C, 0x1FA088, 0x28AE80, 0x3FBC73,
                                0x5EC962, 0x84D44B, 0xADDC30, 0xD8E219, 0xFDE725};
constexpr Table PlasmaTable = {0x0D0887, 0x310597, 0x4C02A1, 0x6600A7, 0x7E03A8, 0x9511A1, 0xAA2395, 0xBC3587, 0xCC4778,
                               0xDA5A6A, 0xE66C5C, 0xF0804E, 0xF89540, 0xFDAC33, 0xFDC527, 0xF8DF25, 0xF0F921};
constexpr Table InfernoTable = {0x000004, 0x0B0724, 0x210C4A, 0x3D0965, 0x57106E, 0x71196E,
                                0x8A226A, 0xA32C61, 0xBC3754, 0xD24644, 0xE45A31, 0xF1731D,
                                0xF98E09, 0xFCAC11, 0xF9CB35, 0xF2EA69, 0xFCFFA4};
constexpr Table MagmaTable = {0x000004, 0x0A0822, 0x1D1147, 0x36106B, 0x51127C, 0x6A1C81, 0x832681, 0x9C2E7F, 0xB73779,
                              0xD0416F, 0xE75263, 0xF56B5C, 0xFC8961, 0xFEA772, 0xFEC488, 0xFDE2A3, 0xFCFDBF};

QColor Blend(unsigned int p_a, unsigned int p_b, double p_t) {
  const QColor a(p_a);
  const QColor b(p_b);
  return QColor::fromRgbF(a.redF() * (1 - p_t) + b.redF() * p_t, a.greenF() * (1 - p_t) + b.greenF() * p_t,
                          a.blueF() * (1 - p_t) + b.blueF() * p_t);
}

std::vector<QColor> Cut(const Table& p_table, double p_from, double p_to) {
  constexpr int Count = 256;
  std::vector<QColor> colors;
  for (int i = 0; i < Count; ++i) {
    const double place = std::clamp(p_from + (p_to - p_from) * i / (Count - 1), 0.0, 1.0) * (p_table.size() - 1);
    const std::size_t index = std::min(static_cast<std::size_t>(place), p_table.size() - 2);
    colors.push_back(Blend(p_table[index], p_table[index + 1], place - static_cast<double>(index)));
  }
  return colors;
}

} // namespace

std::vector<QColor> Sampled(const std::vector<Stop>& p_stops, int p_count) {
  std::vector<QColor> colors;
  std::size_t next = 1;
  for (int i = 0; i < p_count && p_stops.size() > 1; ++i) {
    const double place =
        p_stops.front().place + (p_stops.back().place - p_stops.front().place) * i / std::max(1, p_count - 1);
    while (next + 1 < p_stops.size() && place > p_stops[next].place)
      ++next;
    const Stop& a = p_stops[next - 1];
    const Stop& b = p_stops[next];
    const double width = b.place - a.place;
    colors.push_back(Blend(a.rgb, b.rgb, width > 0 ? std::clamp((place - a.place) / width, 0.0, 1.0) : 1.0));
  }
  return colors;
}

std::vector<QColor> Viridis(double p_from, double p_to) {
  return Cut(ViridisTable, p_from, p_to);
}
std::vector<QColor> Plasma(double p_from, double p_to) {
  return Cut(PlasmaTable, p_from, p_to);
}
std::vector<QColor> Inferno(double p_from, double p_to) {
  return Cut(InfernoTable, p_from, p_to);
}
std::vector<QColor> Magma(double p_from, double p_to) {
  return Cut(MagmaTable, p_from, p_to);
}

} // namespace Vek::Chart::Gallery::Palettes
