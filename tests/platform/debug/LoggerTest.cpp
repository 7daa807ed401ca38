#include "platform/debug/Logger.h"
#include "platform/utility/GetLogger.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <thread>

using Vek::Test::ReportCapture;
using vekdebug::logger;
using vekdebug::severity;

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

/// Counts how often it is formatted.
struct Costly {
  int* formatted;
  friend std::ostream& operator<<(std::ostream& p_stream, const Costly& p_item) {
    ++*p_item.formatted;
    return p_stream << "costly";
  }
};

class ThrowingSink : public vekdebug::sink {
public:
  void write(const vekdebug::report& p_report) override { throw std::runtime_error(p_report.text); }
};

} // namespace

TEST(Logger, ChecksReportOnlyWhatFails) {
  const ReportCapture reports;
  logger& log = Vek::Chart::Utility::GetLogger();
  const int object = 0;
  log.ensure(true, "held");
  log.chkptr(&object, "there");
  log.chkrng(3, 3, 5, "first");
  log.chkrng(4, 3, 5, "last");
  EXPECT_TRUE(reports.Entries().empty());

  log.ensure(false, "broken");
  log.sentry("reached");
  log.chkptr(nullptr, "null");
  log.chkrng(2, 3, 5, "below");
  log.chkrng(5, 3, 5, "end");
  const std::vector<ReportCapture::Entry> entries = reports.Entries();
  const std::vector<std::pair<severity, std::string>> expected{{severity::ensure, "broken"},
                                                               {severity::sentry, "reached"},
                                                               {severity::pointer, "null"},
                                                               {severity::range, "below"},
                                                               {severity::range, "end"}};
  ASSERT_EQ(entries.size(), expected.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    EXPECT_EQ(entries[i].kind, expected[i].first) << i;
    EXPECT_EQ(entries[i].text, expected[i].second) << i;
    EXPECT_EQ(entries[i].channel, "") << i;
  }
}

TEST(Logger, EveryFullLineIsOneReport) {
  const ReportCapture reports;
  std::ostream& error = logger::instance().derr();
  error << "one" << 1 << '\n' << "two\n\nfour" << std::flush;
  EXPECT_EQ(reports.Texts(), (std::vector<std::string>{"one1", "two", ""}));
  error << "teen" << std::endl;
  EXPECT_EQ(reports.Texts().back(), "fourteen");
  EXPECT_EQ(reports.Entries().back().kind, severity::error);
}

TEST(Logger, AClosedChannelDropsWhatIsWrittenUnformatted) {
  const ReportCapture reports;
  int formatted = 0;
  vekdebug::dbgostream& closed = logger::instance().dout("LoggerTest");
  EXPECT_FALSE(closed.active());
  closed << 5 << "text" << std::endl;
  if (closed.active())
    closed << Costly{&formatted} << std::endl;
  EXPECT_EQ(formatted, 0);
  EXPECT_TRUE(reports.Entries().empty());

  const OpenChannel open("LoggerTest");
  EXPECT_FALSE(logger::instance().dout("LoggerTest2").active());
  vekdebug::dbgostream& stream = logger::instance().dout("LoggerTest");
  ASSERT_TRUE(stream.active());
  stream << Costly{&formatted} << std::endl;
  ASSERT_EQ(reports.Entries().size(), 1u);
  EXPECT_EQ(reports.Entries()[0].kind, severity::debug);
  EXPECT_EQ(reports.Entries()[0].text, "costly");
  EXPECT_EQ(reports.Entries()[0].channel, "LoggerTest");
  EXPECT_EQ(formatted, 1);
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
  EXPECT_EQ(reports.Texts(), (std::vector<std::string>{"error", "debug"}));
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
  constexpr int count = 500;
  const auto write = [](const char* p_name) {
    for (int i = 0; i < count; ++i)
      logger::instance().derr() << p_name << ' ' << i << std::endl;
  };
  std::thread first(write, "a");
  std::thread second(write, "b");
  first.join();
  second.join();
  std::multiset<std::string> expected;
  for (int i = 0; i < count; ++i)
    for (const char* name : {"a ", "b "})
      expected.insert(name + std::to_string(i));
  const std::vector<std::string> texts = reports.Texts();
  EXPECT_EQ(std::multiset<std::string>(texts.begin(), texts.end()), expected);
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
  EXPECT_EQ(reports.Texts(),
            (std::vector<std::string>{"early", "early", "late error", "late debug", "late error", "late debug"}));
}
