#pragma once

#include "scene/LegendBlock.h"

#include <QColor>

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene::Private {

/// A filled circle.
inline LegendBlock::Shape Disk(const LegendBlock::Position& p_middle, double p_radius, const QColor& p_color) {
  constexpr int Corners = 48;
  constexpr double Turn = 6.283185307179586;
  LegendBlock::Shape disk{{}, p_color};
  for (int i = 0; i < Corners; ++i)
    disk.corners.push_back(
        {p_middle.x + p_radius * std::cos(Turn * i / Corners), p_middle.y + p_radius * std::sin(Turn * i / Corners)});
  return disk;
}

/// An arrow to the right, from the middle of its end. Its head is as long as it is high, at most half of the arrow.
inline void AddArrow(LegendBlock& p_block, const LegendBlock::Position& p_from, double p_length, double p_height,
                     const QColor& p_color) {
  const double head = std::min(p_height, p_length / 2), neck = p_from.x + p_length - head;
  const double shaft = p_height / 8, half = p_height / 2, y = p_from.y;
  p_block.Add(LegendBlock::Shape{{{p_from.x, y - shaft}, {neck, y - shaft}, {neck, y + shaft}, {p_from.x, y + shaft}},
                                 p_color});
  p_block.Add(LegendBlock::Shape{{{neck, y - half}, {p_from.x + p_length, y}, {neck, y + half}}, p_color});
}

} // namespace Vek::Chart::Scene::Private
