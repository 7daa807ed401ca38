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

// Perceptually even palettes: equal steps of the value look equally far apart, and lightness alone tells the order.
// Samples of the colour maps of the same names by Nathaniel Smith, Stéfan van der Walt and Eric Firing (CC0).
// `p_from` and `p_to` cut out a part of the range 0 to 1; p_from > p_to reverses it.
std::vector<QColor> Viridis(double p_from = 0, double p_to = 1);
std::vector<QColor> Plasma(double p_from = 0, double p_to = 1);
std::vector<QColor> Inferno(double p_from = 0, double p_to = 1);
std::vector<QColor> Magma(double p_from = 0, double p_to = 1);

} // namespace Vek::Chart::Gallery::Palettes
