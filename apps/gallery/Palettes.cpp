#include "apps/gallery/Palettes.h"

#include "library/NamedColors.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery::Palettes {

namespace {

QColor Blend(unsigned int p_a, unsigned int p_b, double p_t) {
  const QColor a(p_a);
  const QColor b(p_b);
  return QColor::fromRgbF(a.redF() * (1 - p_t) + b.redF() * p_t, a.greenF() * (1 - p_t) + b.greenF() * p_t,
                          a.blueF() * (1 - p_t) + b.blueF() * p_t);
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
  return Library::NamedColors::Colors("viridis", 256, p_from, p_to);
}
std::vector<QColor> Plasma(double p_from, double p_to) {
  return Library::NamedColors::Colors("plasma", 256, p_from, p_to);
}
std::vector<QColor> Inferno(double p_from, double p_to) {
  return Library::NamedColors::Colors("inferno", 256, p_from, p_to);
}
std::vector<QColor> Magma(double p_from, double p_to) {
  return Library::NamedColors::Colors("magma", 256, p_from, p_to);
}

double Lightness(const QColor& p_color) {
  const auto linear = [](double p_channel) {
    return p_channel <= 0.04045 ? p_channel / 12.92 : std::pow((p_channel + 0.055) / 1.055, 2.4);
  };
  const double luminance =
      0.2126 * linear(p_color.redF()) + 0.7152 * linear(p_color.greenF()) + 0.0722 * linear(p_color.blueF());
  return luminance > 216.0 / 24389 ? 116 * std::cbrt(luminance) - 16 : luminance * 24389 / 27;
}

} // namespace Vek::Chart::Gallery::Palettes
