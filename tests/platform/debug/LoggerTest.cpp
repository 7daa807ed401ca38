#include "platform/debug/Logger.h"
#include "tests/support/Test.h"

using vekdebug::logger;

namespace {

constexpr const char* Open = "LoggerTest"; // a channel that all tests but one leave open

struct Call {
  severity kind;
  std::string text;
  vekdebug::detail where = {};
  std::string channel = Open;
};

void Make(const Call& p_call) {
  logger& log = logger::instance();
  if (p_call.kind == severity::debug)
    log.dout(p_call.channel) << p_call.text << std::endl;
  else
    p_call.kind == severity::ensure ? log.ensure(false, p_call.text, p_call.where)
                                    : log.sentry(p_call.text, p_call.where);
}

/// What the default sink writes to standard error for some calls, and when another sink is installed.
std::pair<std::string, std::string> DefaultOutput(const std::vector<Call>& p_calls, int p_pauseAfterFirst = 0) {
  const auto previous = logger::instance().set_sink(nullptr);
  testing::internal::CaptureStderr();
  for (const Call& call : p_calls) {
    Make(call);
    std::this_thread::sleep_for(std::chrono::milliseconds(std::exchange(p_pauseAfterFirst, 0)));
  }
  const std::string atOnce = testing::internal::GetCapturedStderr();
  testing::internal::CaptureStderr();
  logger::instance().set_sink(previous);
  return {atOnce, testing::internal::GetCapturedStderr()};
}

const Call A = {severity::ensure, "a"};

/// Reports on the streams when it is destroyed.
struct ReportsAtTheEnd {
  ~ReportsAtTheEnd() {
    for (int i = 0; i < count; ++i) {
      logger::instance().derr() << "late error" << std::endl;
      logger::instance().dout(Open) << "late debug" << std::endl;
    }
  }
  int count = 0;
} afterTheLogger; // exists before the logger, so reports after the logger's own end of the process

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
  logger& log = logger::instance();
  int active = 0;
  const auto write = [&](const std::string& p_channel, const char* p_text) {
    log.dout(p_channel) << 5 << p_text << std::endl;
    active += log.dout(p_channel).active();
  };
  write("A", "before");
  log.open("A");
  write("A", "open");
  write("A2", "other");
  log.close("A");
  write("A", "after");
  EXPECT_EQ(active, 1);
  EXPECT_EQ(reports.Texts(), Texts{"5open"});
  EXPECT_EQ(reports.Entries()[0].kind, severity::debug);
  EXPECT_EQ(reports.Entries()[0].channel, "A");
}

TEST(Logger, ExceptionsOfASinkReachTheCallerAndTheStreamsWorkAgain) {
  logger::instance().open(Open);
  logger& log = logger::instance();
  for (int i = 0; i < 2; ++i) {
    const ReportCapture throwing(true);
    EXPECT_THROW(log.ensure(false, "x"), std::runtime_error);
    EXPECT_THROW(log.derr() << "lost" << std::endl, std::runtime_error);
    EXPECT_THROW(log.dout(Open) << "lost" << std::endl, std::runtime_error);
  }
  const ReportCapture reports;
  log.derr() << "error" << std::endl;
  log.dout(Open) << "debug" << std::endl;
  EXPECT_EQ(reports.Texts(), (Texts{"error", "debug"}));
}

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
  logger::instance().open(Open);
  logger::instance().open("Other");
  const Call debug = {severity::debug, "a"}, sentry = {severity::sentry, "a", {"b.obj", 7}};
  const std::pair<std::vector<Call>, std::string> rows[] = {
      {{A}, "a\n"},
      {{A}, "a\n"}, // repeats none that came before another sink
      {{debug, debug, A, A}, "[LoggerTest] a\n… 1 more\na\n… 1 more\n"},
      {{A, sentry}, "a\na (b.obj:7)\n"},
      {{debug, {severity::debug, "a", {}, "Other"}}, "[LoggerTest] a\n[Other] a\n"},
      {{sentry, {severity::sentry, "a", {"b.obj", 1234567}}, {severity::sentry, "b"}},
       "a (b.obj:7)\n… 1 more, to line 1,234,567\nb\n"},
      {{sentry, {severity::sentry, "a", {"c.obj", 123}}}, "a (b.obj:7)\n… 1 more, to c.obj, line 123\n"},
      {{A, {severity::ensure, "a", {{}, 0, {}, 1000}}}, "a\n… 1 more, to index 1,000\n"},
  };
  for (const auto& [calls, expected] : rows) {
    const auto [atOnce, later] = DefaultOutput(calls);
    EXPECT_EQ(atOnce + later, expected);
  }
}

TEST(Logger, DefaultSinkWritesItsCountAfterASecond) {
  const auto [atOnce, later] = DefaultOutput({A, A, A}, 1050);
  EXPECT_EQ(atOnce.substr(0, 13), "a\n… 1 more\n");
  EXPECT_EQ(atOnce.substr(13) + later, "… 1 more\n");
}

TEST(Logger, DefaultSinkWritesItsCountAtTheEndOfTheProcess) {
  const auto end = [] {
    logger::instance().set_sink(nullptr);
    logger::instance().close(Open);
    Make(A);
    Make(A);
    afterTheLogger.count = 2;
    std::exit(0);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(0), "a\n… 1 more\nlate error\nlate error\n$");
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

TEST(Logger, DestructorsMayReportWhenTheirThreadHasEnded) {
  const ReportCapture reports;
  logger::instance().open(Open);
  std::thread([] {
    // Made before the thread's streams, so destroyed after them.
    thread_local ReportsAtTheEnd last;
    last.count = 2;
    logger::instance().derr() << "early" << std::endl;
    logger::instance().dout(Open) << "early" << std::endl;
  }).join();
  EXPECT_EQ(reports.Texts(), (Texts{"early", "early", "late error", "late debug", "late error", "late debug"}));
}
