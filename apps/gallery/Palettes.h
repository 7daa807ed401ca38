#pragma once

#include <QColor>

#include <vector>

namespace Vek::Chart::Gallery::Palettes {

/// A colour at a place of a palette.
struct Stop {
  double place;
  unsigned int rgb; ///< 0xRRGGBB
};

/// `p_count` colours at even steps along the stops, which are in ascending order; linear between them.
std::vector<QColor> Sampled(const std::vector<Stop>& p_stops, int p_count);

// 256 colours of the part from `p_from` to `p_to` of a named map; p_from > p_to reverses it.
std::vector<QColor> Viridis(double p_from = 0, double p_to = 1);
std::vector<QColor> Plasma(double p_from = 0, double p_to = 1);
std::vector<QColor> Inferno(double p_from = 0, double p_to = 1);
std::vector<QColor> Magma(double p_from = 0, double p_to = 1);

/// CIE L* of an opaque sRGB colour: how light it looks, from 0 for black to 100 for white.
double Lightness(const QColor& p_color);

} // namespace Vek::Chart::Gallery::Palettes
