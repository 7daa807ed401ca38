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

TEST(Logger, ChecksReportOnlyWhatFails) {
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

TEST(Logger, AClosedChannelDropsWhatIsWritten) {
  const ReportCapture reports;
  int active = 0;
  const auto write = [&active](vekdebug::dbgostream& p_stream) {
    p_stream << 5 << "text" << std::endl;
    active += p_stream.active(); // what is costly to format asks first
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

TEST(Logger, WhatASinkThrowsReachesTheCallerAndTheStreamsWorkAgain) {
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

TEST(Logger, TheDefaultSinkWritesLinesToStandardError) {
  logger& log = logger::instance();
  const OpenChannel open("LoggerTest");
  const auto previous = log.set_sink(nullptr);
  testing::internal::CaptureStderr();
  log.ensure(false, "broken");
  log.dout("LoggerTest") << "debug" << std::endl;
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "broken\n[LoggerTest] debug\n");
  log.set_sink(previous);
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
