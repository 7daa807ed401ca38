#include "platform/types/ColorMap.h"
#include "platform/types/FillStyle.h"
#include "platform/types/LineStyle.h"
#include "platform/types/SymbolStyle.h"
#include "platform/types/TextStyle.h"

#include <gtest/gtest.h>

using namespace Vek::Chart::Types;

TEST(StyleProperty, TheOwnValueCountsBeforeTheDefault) {
  StyleProperty<int> property(4);
  EXPECT_FALSE(property.IsSet());
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

TEST(StyleRecords, NewRecordsAreDrawnSolidWithNothingUnderneath) {
  EXPECT_EQ(FillStyle().pattern.Effective(), 1u);
  EXPECT_EQ(FillStyle().color.Effective().alpha(), 255);
  EXPECT_EQ(FillStyle().secondColor.Effective().alpha(), 0);
  EXPECT_EQ(LineStyle().pattern.Effective(), 1u);
  EXPECT_EQ(LineStyle().width.Effective(), 1.0f);
  EXPECT_EQ(LineStyle().color.Effective().alpha(), 255);
  EXPECT_EQ(LineStyle().secondColor.Effective().alpha(), 0);
  EXPECT_FALSE(LineStyle().smooth.Effective());
  EXPECT_NE(SymbolStyle().shape.Effective(), 0u);
  EXPECT_NE(SymbolStyle().size.Effective(), 0u);
  EXPECT_EQ(SymbolStyle().secondColor.Effective().alpha(), 0);
  EXPECT_GE(TextStyle().size.Effective(), 2u);
  EXPECT_LE(TextStyle().size.Effective(), 96u);
  EXPECT_TRUE(ColorMap().colors.Effective().empty());
  EXPECT_TRUE(ColorMap().weights.Effective().empty());
}
