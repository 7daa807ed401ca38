#include "scene/AxesLayout.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene {

std::array<AxesLayout::Position, 4> AxesLayout::Label::Corners() const {
  const double angle = Types::Angle::FromDegrees(rotation).Radians();
  const Position along = Position(std::cos(angle), std::sin(angle)) * (size.width() / 2);
  const Position across = Position(-std::sin(angle), std::cos(angle)) * (size.height() / 2);
  return {center - along - across, center + along - across, center + along + across, center - along + across};
}

AxesLayout::Rect AxesLayout::Bounds() const {
  std::vector<Position> positions = corners;
  for (const Label& label : labels)
    for (const Position& corner : label.Corners())
      positions.push_back(corner);
  for (const Line& line : lines)
    if (line.kind == Line::Kind::Tick)
      positions.insert(positions.end(), {line.from, line.to});
  if (positions.empty())
    return {};
  Rect rect{positions[0].x, positions[0].y, positions[0].x, positions[0].y};
  for (const auto& [x, y] : positions) {
    rect = {std::min(rect.left, x), std::min(rect.bottom, y), std::max(rect.right, x), std::max(rect.top, y)};
  }
  return rect;
}

} // namespace Vek::Chart::Scene
