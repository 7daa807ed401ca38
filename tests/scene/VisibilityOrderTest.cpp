#include "scene/VisibilityOrder.h"

#include "io/GridSplit.h"
#include "tests/support/Test.h"

namespace {

using Box = Types::BoundingBox_Base<double>;

Box BoxOf(const Io::GridSplit::Block& p_block) {
  const auto corner = [&](bool p_isHigh) {
    const auto at = [&](std::size_t p_axis) {
      return static_cast<double>(p_block.first[p_axis] + (p_isHigh ? p_block.count[p_axis] : 0));
    };
    return Point(at(0), at(1), at(2));
  };
  return {corner(false), corner(true)};
}

/// Where a line of sight leaves a box; behind the eye if they do not meet.
double ExitOf(const Box& p_box, const Point& p_from, const Point& p_along) {
  double enter = -1e9, leave = 1e9;
  for (const auto& [low, high, from, along] : {std::tuple(p_box.Min().x, p_box.Max().x, p_from.x, p_along.x),
                                               {p_box.Min().y, p_box.Max().y, p_from.y, p_along.y},
                                               {p_box.Min().z, p_box.Max().z, p_from.z, p_along.z}}) {
    enter = std::max(enter, std::min((low - from) / along, (high - from) / along));
    leave = std::min(leave, std::max((low - from) / along, (high - from) / along));
  }
  return enter < leave ? leave : -1e9;
}

TEST(VisibilityOrder, NoBoxHidesAnEarlierOne) {
  std::mt19937 generator(3);
  std::uniform_real_distribution<double> number(-1, 1);
  for (int round = 0; round < 300; ++round) {
    const Io::GridSplit split({9, 7, 5}, 1 + round % 24);
    std::vector<Box> boxes;
    for (int i = 0; i < 1 + round % 24; ++i)
      boxes.push_back(BoxOf(split.At(i)));
    std::shuffle(boxes.begin(), boxes.end(), generator);
    Camera camera;
    camera.target = {4 + 4 * number(generator), 3 + 3 * number(generator), 2 + 2 * number(generator)};
    camera.distance = 1 + 20 * std::abs(number(generator)); // also among the boxes
    camera.azimuth = round % 5 == 0 ? 90 * (round % 4) : 180 * number(generator);
    camera.elevation = round % 5 == 0 ? 0 : 90 * number(generator);
    camera.projection = round % 2 == 0 ? Camera::Projection::Parallel : Camera::Projection::Perspective;
    const std::vector<std::size_t> order = VisibilityOrder(boxes, camera);
    ASSERT_EQ(std::set<std::size_t>(order.begin(), order.end()).size(), boxes.size());
    for (int ray = 0; ray < 50; ++ray) {
      const Point through(4 + 5 * number(generator), 3 + 4 * number(generator), 2 + 3 * number(generator));
      const bool isParallel = camera.projection == Camera::Projection::Parallel;
      const Point from = isParallel ? through + camera.Directions().back * 1000.0 : camera.Eye();
      Point along = isParallel ? camera.Directions().back * -1.0 : through - from;
      along += Point(1e-9, 1e-9, 1e-9); // no division by 0
      double last = 0;
      for (const std::size_t box : order)
        if (const double at = ExitOf(boxes[box], from, along); at > 0) {
          EXPECT_GE(at, last) << round;
          last = at;
        }
    }
  }
}

TEST(VisibilityOrder, PutsEmptyBoxesLast) {
  const std::vector<Box> boxes{Box(), Box({0, 0, 0}, {1, 1, 1}), Box(), Box({0, -2, 0}, {1, -1, 1})};
  Camera camera; // looks along +y
  EXPECT_EQ(VisibilityOrder(boxes, camera), (std::vector<std::size_t>{3, 1, 0, 2}));
}

} // namespace
