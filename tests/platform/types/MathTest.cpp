#include "platform/types/Math.h"
#include "tests/support/Test.h"

using Vek::Chart::Types::Math::Clamp;

TEST(Clamp, KeepsValuesInsideAndPassesNaN) {
  EXPECT_EQ(Clamp(5, 1, 9), 5);
  EXPECT_EQ(Clamp(-5, 1, 9), 1);
  EXPECT_EQ(Clamp(50, 1, 9), 9);
  EXPECT_TRUE(std::isnan(Clamp(NaN, 0.0, 1.0)));
}

TEST(Clamp, ReportsCrossedBounds) {
  const ReportCapture reports;
  EXPECT_EQ(Clamp(5.0, 9.0, 1.0), 9.0);
  EXPECT_EQ(Clamp(20u, 9u, 1u), 1u);
  ASSERT_EQ(reports.Texts(), (std::vector<std::string>{
                                 "\"p_min <= p_max\" - double __cdecl Vek::Chart::Types::Math::Clamp<double>(const "
                                 "double,const double,const double)",
                                 "\"p_min <= p_max\" - unsigned int __cdecl Vek::Chart::Types::Math::Clamp<unsigned "
                                 "int>(const unsigned int,const unsigned int,const unsigned int)"}));
}
