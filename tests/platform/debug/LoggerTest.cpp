#include "platform/debug/Logger.h"
#include "tests/support/Test.h"

using vekdebug::logger;

namespace {

/// A channel that is open while this lives.
struct OpenChannel {
  explicit OpenChannel(std::string p_name)
      : name(std::move(p_name)) {
    logger::instance().open(name);
  }
  ~OpenChannel() { logger::instance().close(name); }
  std::string name;
};

class ThrowingSink : public vekdebug::sink {
public:
  void write(const vekdebug::report& p_report) override { throw std::runtime_error(p_report.text); }
};

} // namespace

TEST(Logger, ChecksReportFailuresOnly) {
  const ReportCapture reports;
  logger& log = Vek::Chart::Utility::GetLogger();
  log.ensure(true, "held");
  log.chkptr(&log, "there");
  log.chkrng(3, 3, 5, "first");
  log.chkrng(4, 3, 5, "last");
  log.ensure(false, "broken");
  log.sentry("reached");
  log.chkptr(nullptr, "null");
  log.chkrng(2, 3, 5, "below");
  log.chkrng(5, 3, 5, "end");
  EXPECT_EQ(reports.Texts(), (Texts{"broken", "reached", "null", "below", "end"}));
  std::vector<severity> kinds;
  for (const ReportCapture::Entry& entry : reports.Entries())
    kinds.push_back(entry.kind);
  EXPECT_EQ(kinds, (std::vector<severity>{severity::ensure, severity::sentry, severity::pointer, severity::range,
                                          severity::range}));
}

TEST(Logger, EveryFullLineIsOneReport) {
  const ReportCapture reports;
  std::ostream& error = logger::instance().derr();
  error << "one" << 1 << '\n' << "two\n\nfour" << std::flush;
  EXPECT_EQ(reports.Texts(), (Texts{"one1", "two", ""}));
  error << "teen" << std::endl;
  EXPECT_EQ(reports.Texts().back(), "fourteen");
  EXPECT_EQ(reports.Entries().back().kind, severity::error);
}

TEST(Logger, ClosedChannelsDropTheirOutput) {
  const ReportCapture reports;
  int active = 0;
  const auto write = [&active](vekdebug::dbgostream& p_stream) {
    p_stream << 5 << "text" << std::endl;
    active += p_stream.active();
  };
  write(logger::instance().dout("LoggerTest"));
  const OpenChannel open("LoggerTest");
  write(logger::instance().dout("LoggerTest2"));
  EXPECT_EQ(active, 0);
  EXPECT_EQ(reports.Texts(), Texts());
  write(logger::instance().dout("LoggerTest"));
  EXPECT_EQ(active, 1);
  EXPECT_EQ(reports.Texts(), Texts{"5text"});
  EXPECT_EQ(reports.Entries()[0].kind, severity::debug);
  EXPECT_EQ(reports.Entries()[0].channel, "LoggerTest");
}

TEST(Logger, ExceptionsOfASinkReachTheCallerAndTheStreamsWorkAgain) {
  const OpenChannel open("LoggerTest");
  logger& log = logger::instance();
  const ReportCapture reports;
  const auto previous = log.set_sink(std::make_shared<ThrowingSink>());
  EXPECT_THROW(log.ensure(false, "x"), std::runtime_error);
  for (int i = 0; i < 2; ++i) {
    EXPECT_THROW(log.derr() << "lost" << std::endl, std::runtime_error);
    EXPECT_THROW(log.dout("LoggerTest") << "lost" << std::endl, std::runtime_error);
  }
  log.set_sink(previous);
  log.derr() << "error" << std::endl;
  log.dout("LoggerTest") << "debug" << std::endl;
  EXPECT_EQ(reports.Texts(), (Texts{"error", "debug"}));
}

namespace {

/// What the default sink writes to standard error for some reports, and when another sink is installed.
std::pair<std::string, std::string> DefaultOutput(const std::function<void(logger&)>& p_report) {
  logger& log = logger::instance();
  const auto previous = log.set_sink(nullptr);
  testing::internal::CaptureStderr();
  p_report(log);
  const std::string atOnce = testing::internal::GetCapturedStderr();
  testing::internal::CaptureStderr();
  log.set_sink(previous);
  return {atOnce, testing::internal::GetCapturedStderr()};
}

} // namespace

TEST(Logger, WritesDetails) {
  using vekdebug::detail;
  const std::string longText = std::string(79, 'a') + "\xc3\xa4";
  const std::pair<detail, std::string> rows[] = {
      {{}, ""},
      {{"a b.obj"}, "a b.obj"},
      {{"a.obj", 12}, "a.obj:12"},
      {{{}, 12}, "line 12"},
      {{{}, 0, "\"x\t\x7f\n\xc3\xa4"}, "found \"\"x???\xc3\xa4\""},
      {{{}, 0, longText}, "found \"" + std::string(79, 'a') + "…\""},
      {{"a.obj", 1, "", 0, 0, 0.0}, "a.obj:1, found \"\", index 0, count 0, value 0"},
      {{{}, 0, {}, {}, std::uint64_t(-1), -0.1}, "count 18446744073709551615, value -0.1"},
      {{{}, 0, {}, {}, {}, std::nan("")}, "value nan"},
  };
  for (const auto& [where, expected] : rows)
    EXPECT_EQ(detail_text(where), expected);
}

TEST(Logger, DefaultSinkWritesAndFoldsLines) {
  const OpenChannel open("LoggerTest");
  const std::pair<std::function<void(logger&)>, std::string> rows[] = {
      {[](logger& p_log) {
         p_log.ensure(false, "a", {"b.obj", 7});
       },
       "a (b.obj:7)\n"},
      {[](logger& p_log) { p_log.dout("LoggerTest") << "a" << std::endl; }, "[LoggerTest] a\n"},
      {[](logger& p_log) {
         p_log.sentry("a", {"b.obj", 7});
         p_log.sentry("a", {"b.obj", 1234567});
         p_log.sentry("b", {"b.obj", 7});
       },
       "a (b.obj:7)\n… 1 more, to line 1,234,567\nb (b.obj:7)\n"},
      {[](logger& p_log) {
         p_log.chkrng(3, 0, 3, "a");
         p_log.chkrng(1000, 0, 3, "a");
       },
       "a (index 3, count 3)\n… 1 more, to index 1,000\n"},
      {[](logger& p_log) {
         p_log.sentry("a", {"b.obj", 7});
         p_log.sentry("a", {"c.obj", 7});
       },
       "a (b.obj:7)\n… 1 more, to c.obj, line 7\n"},
      {[](logger& p_log) {
         p_log.sentry("a");
         p_log.ensure(false, "a"); // of another kind
         p_log.dout("LoggerTest") << "a" << std::endl;
         p_log.ensure(false, "a");
         p_log.ensure(false, "a");
       },
       "a\na\n[LoggerTest] a\na\n… 1 more\n"},
      {[](logger& p_log) { p_log.ensure(false, "a"); }, "a\n"}, // no repetition of what stood before another sink
  };
  for (const auto& [report, expected] : rows) {
    const auto [atOnce, later] = DefaultOutput(report);
    EXPECT_EQ(atOnce + later, expected);
  }
}

TEST(Logger, DefaultSinkWritesItsCountAfterASecond) {
  const auto [atOnce, later] = DefaultOutput([](logger& p_log) {
    p_log.ensure(false, "a");
    std::this_thread::sleep_for(std::chrono::milliseconds(1050));
    p_log.ensure(false, "a");
    p_log.ensure(false, "a");
  });
  EXPECT_EQ(atOnce.substr(0, 13), "a\n… 1 more\n");
  EXPECT_EQ(atOnce.substr(13) + later, "… 1 more\n");
}

namespace {

/// Reports after the logger's own end of the process, since it exists before the logger.
struct ReportsLast {
  ~ReportsLast() {
    for (int i = 0; i < count; ++i)
      logger::instance().ensure(false, "late");
  }
  int count = 0;
} reportsLast;

} // namespace

TEST(Logger, DefaultSinkWritesItsCountAtTheEndOfTheProcess) {
  const auto end = [] {
    logger::instance().set_sink(nullptr);
    for (int i = 0; i < 2; ++i)
      logger::instance().ensure(false, "a");
    reportsLast.count = 2;
    std::exit(0);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(0), "a\n… 1 more\nlate\nlate\n$");
}

TEST(Logger, LinesOfTwoThreadsNeverMix) {
  const ReportCapture reports;
  constexpr int Count = 500;
  const auto write = [](const char* p_name) {
    for (int i = 0; i < Count; ++i)
      logger::instance().derr() << p_name << ' ' << i << std::endl;
  };
  std::thread first(write, "a");
  std::thread second(write, "b");
  first.join();
  second.join();
  // Whole lines, each thread's in its order.
  int next[2] = {};
  for (const std::string& text : reports.Texts()) {
    int& number = next[text[0] == 'a' ? 0 : 1];
    EXPECT_EQ(text.substr(1), ' ' + std::to_string(number++));
  }
  EXPECT_EQ(next[0] + next[1], 2 * Count);
}

namespace {

struct ReportsAtTheEnd {
  ~ReportsAtTheEnd() {
    for (int i = 0; i < 2; ++i) {
      logger::instance().derr() << "late error" << std::endl;
      logger::instance().dout("LoggerTest") << "late debug" << std::endl;
    }
  }
  bool touched = false;
};

} // namespace

TEST(Logger, DestructorsMayReportWhenTheirThreadHasEnded) {
  const ReportCapture reports;
  const OpenChannel open("LoggerTest");
  std::thread([] {
    // Made before the thread's streams, so destroyed after them.
    thread_local ReportsAtTheEnd last;
    last.touched = true;
    logger::instance().derr() << "early" << std::endl;
    logger::instance().dout("LoggerTest") << "early" << std::endl;
  }).join();
  EXPECT_EQ(reports.Texts(), (Texts{"early", "early", "late error", "late debug", "late error", "late debug"}));
}
