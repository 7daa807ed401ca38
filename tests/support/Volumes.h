#pragma once

#include "library/ColorMap.h"
#include "scene/ValueScale.h"

namespace Vek::Test {

inline Chart::Library::ColorMap Grey() {
  return {{Qt::black, Qt::white}, Chart::Library::ColorMap::Interpolated};
}

inline Chart::Scene::ValueScale Between(double p_lower, double p_upper) {
  Chart::Scene::ValueScale scale;
  scale.lower = p_lower;
  scale.upper = p_upper;
  return scale;
}

} // namespace Vek::Test
