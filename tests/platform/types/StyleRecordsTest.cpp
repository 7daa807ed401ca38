#include "platform/types/StyleProperty.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Types;

TEST(StyleProperty, OwnValueOverridesTheDefault) {
  StyleProperty<int> property(4);
  EXPECT_EQ(property.Effective(), 4);
  property.Set(0); // the value-initialised value counts as set, too
  EXPECT_TRUE(property.IsSet());
  EXPECT_EQ(property.Effective(), 0);
  property.SetDefault(9);
  EXPECT_EQ(property.Effective(), 0);
  property.Reset();
  EXPECT_FALSE(property.IsSet());
  EXPECT_EQ(property.Effective(), 9);
  EXPECT_EQ(StyleProperty<double>().Effective(), 0.0);
}
