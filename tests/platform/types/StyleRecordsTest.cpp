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

TEST(StyleProperty, IsAssignedAsItsValue) {
  StyleProperty<QColor> color{QColor(Qt::black)}, other;
  color = Qt::red;
  EXPECT_TRUE(color.IsSet());
  EXPECT_EQ(color.Effective(), QColor(Qt::red));
  other = color; // the whole property
  color.Reset();
  EXPECT_EQ(color.Effective(), QColor(Qt::black));
  EXPECT_EQ(other.Effective(), QColor(Qt::red));
  StyleProperty<std::uint32_t> number(3);
  number = {};
  EXPECT_FALSE(number.IsSet()) << "a new property";
  static_assert(!std::is_assignable_v<StyleProperty<QColor>&, std::string>);
}
