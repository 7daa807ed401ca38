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
  const auto where = [&built] { return vekdebug::detail{"a.obj", std::uint64_t(++built)}; };
  EXPECT_TRUE(VEK_ENSURE_AT(index > 3, "index > 3", Signature(built), where()));
  EXPECT_TRUE(VEK_CHECK_RANGE_AT(index, 5, "index", Signature(built), where()));
  EXPECT_TRUE(VEK_CHECK_POINTER_AT(&index, Signature(built), where()));
  EXPECT_EQ(built, 0);
  EXPECT_EQ(reports.Texts(), Texts{});
}

TEST(Check, ReportsKindTextAndDetail) {
  const ReportCapture reports;
  int built = 0;
  const double size = std::nan("");
  const int* const object = nullptr;
  EXPECT_FALSE(VEK_ENSURE(size > 0, Signature(built)));
  EXPECT_FALSE(VEK_ENSURE_AT(size > 0, "count > 0", Signature(built), {"a.obj", 3, "x"}));
  EXPECT_FALSE(VEK_CHECK_RANGE_AT(-1, 5, "p_index < 5", Signature(built), {"b.obj"}));
  EXPECT_FALSE(VEK_CHECK_RANGE(5, 5, "p_index < 5", Signature(built)));
  EXPECT_FALSE(VEK_CHECK_POINTER_AT(object, Signature(built), {{}, 4}));
  EXPECT_FALSE(VEK_SENTRY_AT(Signature(built), 280, {{}, 0, "y"}));
  EXPECT_FALSE(vekdebug::warn("two\nlines", {"c.obj"}));
  EXPECT_EQ(built, 6);
  const std::string end = "\" - void __cdecl F(void)";
  const std::tuple<severity, std::string, std::string> expected[] = {
      {severity::ensure, "\"size > 0" + end, ""},
      {severity::ensure, "\"count > 0" + end, "a.obj:3, found \"x\""},
      {severity::range, "\"p_index < 5" + end, "b.obj, index 18446744073709551615, count 5"},
      {severity::range, "\"p_index < 5" + end, "index 5, count 5"},
      {severity::pointer, "\"void*(obj)" + end, "line 4"},
      {severity::sentry, "void __cdecl F(void) @line280", "found \"y\""},
      {severity::error, "WARNING: two", "c.obj"},
      {severity::error, "lines", "c.obj"},
  };
  ASSERT_EQ(reports.Entries().size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    const ReportCapture::Entry entry = reports.Entries()[i];
    EXPECT_EQ(std::tuple(entry.kind, entry.text, entry.where), expected[i]) << entry.text;
  }
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

TEST(Check, ReportsFromDestructorsAtTheEndOfAThread) {
  struct Last {
    int reports = 0;
    ~Last() {
      for (int i = 0; i < reports; ++i)
        vekdebug::fail_ensure("late, longer than texts that strings keep without memory", "F");
    }
  };
  const ReportCapture reports;
  std::thread([] {
    thread_local Last last; // made before the memory of messages, so destroyed after it
    last.reports = 2;
    vekdebug::fail_ensure("early, longer than texts that strings keep without memory", "F");
  }).join();
  const std::string late = "\"late, longer than texts that strings keep without memory\" - F";
  EXPECT_EQ(reports.Texts(), (Texts{"\"early, longer than texts that strings keep without memory\" - F", late, late}));
}

TEST(TypeName, WritesTypesAsTheHostPlatform) {
  EXPECT_EQ(vekdebug::TypeName<std::size_t>::Text(), "unsigned __int64");
  EXPECT_EQ(vekdebug::TypeName<unsigned long long>::Text(), "unsigned __int64");
  EXPECT_EQ(vekdebug::TypeName<std::int64_t>::Text(), "__int64");
  EXPECT_EQ((vekdebug::TypeName<std::vector<boost::array<float, 2>>>::Text()),
            "class std::vector<class boost::array<float,2>,class std::allocator<class boost::array<float,2> > >");
  EXPECT_EQ(vekdebug::TypeName<std::vector<double>>::Text(), "class std::vector<double,class std::allocator<double> >");
}
