#include "scene/ArrowKey.h"

#include "scene/Ticks.h"
#include "scene/private/LegendShapes.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

double ArrowKey::Value() const {
  const double most = mostLength / pointsPerUnit;
  if (!(pointsPerUnit > 0 && mostLength > 0) || !std::isfinite(pointsPerUnit) || !std::isfinite(mostLength) ||
      !std::isnormal(most))
    throw std::invalid_argument("An arrow key needs lengths above 0, got " + std::to_string(pointsPerUnit) +
                                " points per unit and at most " + std::to_string(mostLength) + " points");
  const int exponent = static_cast<int>(std::floor(std::log10(most)));
  double value = 0;
  for (const char* digits : {"5e", "1e", "2e", "2.5e", "5e"}) {
    const int power = exponent - (value == 0 ? 1 : 0);
    const double next = (digits + QString::number(power)).toDouble();
    if (next <= most * (1 + 1e-12))
      value = next;
  }
  return value;
}

LegendBlock ArrowKey::Layout(const Theme& p_theme, double p_pointSize) const {
  const double value = Value(), length = value * pointsPerUnit;
  const TextStyle style = p_theme.SmallStyle();
  const double height = style.size * 0.8, gap = style.size / 4;
  LegendBlock block(p_pointSize);
  Private::AddArrow(block, {0, height / 2}, length, height, color);
  block.Add(LegendBlock::String{Ticks().Format(value, unit), {length / 2, -gap}, {0.5, 1}, style});
  block.Add(LegendBlock::String{title, {block.Bounds().left, height + gap}, {0, 0}, p_theme.BodyStyle()});
  return block;
}

} // namespace Vek::Chart::Scene
