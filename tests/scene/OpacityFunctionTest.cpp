#include "scene/OpacityFunction.h"

#include "tests/support/Test.h"

TEST(OpacityFunction, IsLinearBetweenPointsAndConstantBeyondThem) {
  const OpacityFunction function({{-1, 0.2}, {1, 0.4}, {1, 0.9}, {3, 0.1}});
  const std::pair<double, double> cases[] = {{-9, 0.2}, {-1, 0.2}, {0, 0.3}, {0.5, 0.35}, {1, 0.9},
                                             {2, 0.5},  {3, 0.1},  {4, 0.1}, {NAN, 0}};
  for (const auto& [value, expected] : cases)
    EXPECT_DOUBLE_EQ(function(value), expected) << value;
  EXPECT_EQ(OpacityFunction(0.25)(7), 0.25);
  EXPECT_EQ(OpacityFunction::Ramp(2, 4, 0.5)(3), 0.25);
}

TEST(OpacityFunction, RefusesPointsThatAreNoFunction) {
  using Points = std::vector<OpacityFunction::Point>;
  for (const Points& points :
       {Points(), Points{{1, 0}, {0.5, 1}}, Points{{0, 1.01}}, Points{{0, -0.01}}, Points{{NAN, 1}}, Points{{0, NAN}}})
    EXPECT_THROW(OpacityFunction{points}, std::invalid_argument) << points.size();
}
