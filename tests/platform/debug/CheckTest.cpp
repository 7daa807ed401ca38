#include "platform/debug/ContainerTypeName.h"
#include "tests/support/Test.h"

namespace {

/// A signature that must not be built unless a check fails.
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
  const auto where = [&built] { return vekdebug::detail{"a.obj", std::uint64_t(++built)}; };
  EXPECT_TRUE(VEK_ENSURE_AT(index > 3, "index > 3", "F", where()));
  EXPECT_TRUE(VEK_CHECK_RANGE_AT(index, 5, "index", "F", where()));
  EXPECT_TRUE(VEK_CHECK_POINTER_AT(&index, "F", where()));
  EXPECT_EQ(built, 0);
  EXPECT_TRUE(reports.Entries().empty());
}

TEST(Check, ReportsExpressionAndSignature) {
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

TEST(Check, PassesOnTheDetail) {
  const ReportCapture reports;
  const int* const object = nullptr;
  VEK_ENSURE_AT(object != nullptr, "text", "F", {"a.obj", 3, "x"});
  VEK_CHECK_RANGE_AT(-1, 5, "index", "F", {"b.obj"});
  VEK_CHECK_RANGE(7, 5, "index", "F");
  VEK_CHECK_POINTER_AT(object, "F", {{}, 4});
  VEK_SENTRY_AT("F", 280, {{}, 0, "y"});
  vekdebug::warn("two\nlines", {"c.obj"});
  EXPECT_EQ(reports.Details(), (Texts{"a.obj:3, found \"x\"", "b.obj, index 18446744073709551615, count 5",
                                      "index 7, count 5", "line 4", "found \"y\"", "c.obj", "c.obj"}));
  EXPECT_EQ(reports.Texts()[5] + reports.Texts()[6], "WARNING: twolines");
}

TEST(Check, KeepsAMessageWhileItsSinkReports) {
  struct ReportingSink : vekdebug::sink {
    void write(const vekdebug::report& p_report) override {
      if (texts.empty() && p_report.text != "\"inner\" - F")
        vekdebug::fail_ensure("inner", "F");
      texts.push_back(p_report.text);
    }
    Texts texts;
  };
  const auto sink = std::make_shared<ReportingSink>();
  const auto previous = vekdebug::logger::instance().set_sink(sink);
  vekdebug::fail_ensure("outer", "F");
  vekdebug::logger::instance().set_sink(previous);
  EXPECT_EQ(sink->texts, (Texts{"\"inner\" - F", "\"outer\" - F"}));
}

TEST(TypeName, WritesTypesAsTheHostPlatform) {
  EXPECT_EQ(vekdebug::TypeName<std::size_t>::Text(), "unsigned __int64");
  EXPECT_EQ(vekdebug::TypeName<unsigned long long>::Text(), "unsigned __int64");
  EXPECT_EQ(vekdebug::TypeName<std::int64_t>::Text(), "__int64");
  EXPECT_EQ((vekdebug::TypeName<std::vector<boost::array<float, 2>>>::Text()),
            "class std::vector<class boost::array<float,2>,class std::allocator<class boost::array<float,2> > >");
  EXPECT_EQ(vekdebug::TypeName<std::vector<double>>::Text(), "class std::vector<double,class std::allocator<double> >");
}
