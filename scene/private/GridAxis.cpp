#include "scene/private/GridAxis.h"

#include <cmath>
#include <sstream>
#include <stdexcept>

namespace Vek::Chart::Scene {

std::vector<double> AxisNodes(const std::string& p_name, const Array1& p_axis, std::size_t p_least) {
  if (p_axis.Count() < p_least)
    throw std::invalid_argument(p_name + ": expected " + std::to_string(p_least) + " nodes at least, got " +
                                std::to_string(p_axis.Count()));
  std::vector<double> nodes = Values(p_axis);
  const bool descends = nodes.size() > 1 && nodes[1] < nodes[0];
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const bool inOrder = i == 0 || (descends ? nodes[i] < nodes[i - 1] : nodes[i] > nodes[i - 1]);
    if (inOrder && std::isfinite(nodes[i]))
      continue;
    std::ostringstream message;
    message.imbue(std::locale::classic());
    message << p_name << ": expected ascending or descending finite numbers, got " << nodes[i];
    if (i > 0)
      message << " after " << nodes[i - 1];
    throw std::invalid_argument(message.str());
  }
  return nodes;
}

std::size_t NodeCount(const std::string& p_name, const std::array<std::size_t, 3>& p_counts) {
  constexpr std::size_t Most = std::size_t{1} << 40U;
  std::size_t count = 1;
  for (const std::size_t factor : p_counts) {
    if (factor != 0 && count > Most / factor)
      throw std::invalid_argument(p_name + ": expected 2^40 nodes at most, got " + std::to_string(p_counts[0]) + " x " +
                                  std::to_string(p_counts[1]) + " x " + std::to_string(p_counts[2]));
    count *= factor;
  }
  return count;
}

} // namespace Vek::Chart::Scene
