#include "platform/debug/TypeName.h"
#include "tests/support/Test.h"

namespace {

/// A signature whose text must not be built unless a check fails.
std::string Signature(int& p_built) {
  ++p_built;
  return "void __cdecl F(void)";
}

} // namespace

TEST(Check, PassesWithoutBuildingItsMessage) {
  const ReportCapture reports;
  int built = 0;
  const int index = 4;
  EXPECT_TRUE(VEK_ENSURE(index > 3, Signature(built)));
  EXPECT_TRUE(VEK_ENSURE_TEXT(index, "index", Signature(built)));
  EXPECT_TRUE(VEK_CHECK_RANGE(index, 5, "index", Signature(built)));
  EXPECT_TRUE(VEK_CHECK_POINTER(&index, Signature(built)));
  EXPECT_EQ(built, 0);
  EXPECT_TRUE(reports.Entries().empty());
}

TEST(Check, ReportsTheExpressionAndTheSignature) {
  const ReportCapture reports;
  int built = 0;
  const double size = std::nan("");
  const int index = -1;
  const int* const object = nullptr;
  EXPECT_FALSE(VEK_ENSURE(size > 0, Signature(built)));
  EXPECT_FALSE(VEK_ENSURE_TEXT(size > 0, "count > 0", Signature(built)));
  EXPECT_FALSE(VEK_CHECK_RANGE(index, 5, "p_index < 5", Signature(built)));
  EXPECT_FALSE(VEK_CHECK_RANGE(5, 5, "p_index < 5", Signature(built)));
  EXPECT_FALSE(VEK_CHECK_POINTER(object, Signature(built)));
  EXPECT_FALSE(VEK_SENTRY(Signature(built), 280));
  EXPECT_FALSE(vekdebug::warn("too late"));
  EXPECT_EQ(built, 6);
  const std::string end = "\" - void __cdecl F(void)";
  EXPECT_EQ(reports.Texts(), (std::vector<std::string>{"\"size > 0" + end, "\"count > 0" + end, "\"p_index < 5" + end,
                                                       "\"p_index < 5" + end, "\"void*(obj)" + end,
                                                       "void __cdecl F(void) @line280", "WARNING: too late"}));
  const severity kinds[] = {severity::ensure,  severity::ensure, severity::range, severity::range,
                            severity::pointer, severity::sentry, severity::error};
  for (std::size_t i = 0; i < std::size(kinds); ++i)
    EXPECT_EQ(reports.Entries()[i].kind, kinds[i]) << i;
}

TEST(TypeName, WritesTypesAsTheHostPlatformDoes) {
  EXPECT_EQ(vekdebug::TypeName<std::size_t>::text(), "unsigned __int64");
  EXPECT_EQ(vekdebug::TypeName<unsigned long long>::text(), "unsigned __int64");
  EXPECT_EQ(vekdebug::TypeName<std::int64_t>::text(), "__int64");
  EXPECT_EQ(vekdebug::TypeName<unsigned short>::text(), "unsigned short");
}
