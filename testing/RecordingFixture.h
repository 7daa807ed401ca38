#pragma once

#include "testing/RecordingGl.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Vek::Chart::Testing {

/// Calls of GL, one line each, as RecordingGl writes them.
using Lines = std::vector<std::string>;

/// The lines of a text that has "; " between them: "Enable(GL_BLEND); LineWidth(2)" are two.
/// \ingroup testing
inline Lines Calls(const std::string& p_text) {
  Lines lines;
  for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 2) {
    end = p_text.find("; ", begin);
    lines.push_back(p_text.substr(begin, end - begin));
  }
  return lines;
}

/// A fixture of GoogleTest with a recorder of its own for each test. A test fails if the recorder has complaints at the
/// end: misuse of GL, objects that were not deleted, open pairs. A test that expects misuse takes it with
/// `recorder.TakeComplaints()`.
///
/// The header needs GoogleTest (`GTest::gtest`), the library does not.
///
/// \snippet HostSnippets.cpp RecordingFixture
/// \ingroup testing
class RecordingFixture : public ::testing::Test {
public:
  /// All calls so far but queries, which only read GL's state.
  Lines Changes() const {
    return recorder.LinesWithout({"GetError", "GetFloatv", "GetIntegerv", "GetString", "IsEnabled"});
  }

  RecordingGl recorder; ///< receives the calls of scopes on `recorder.Handle()`

protected:
  /// Checks the complaints. A derived fixture that overrides it calls it last.
  void TearDown() override {
    { const Utility::Scoped<Rgl> freesWhatEndedOutsideScopes(recorder.Handle()); }
    EXPECT_EQ(recorder.Complaints(), Lines());
  }
};

/// A RecordingFixture with a scope that is open while the test runs.
/// \ingroup testing
class RecordingScopeFixture : public RecordingFixture {
public:
  Utility::Scoped<Rgl> gl{recorder.Handle()}; ///< GL's functions
};

} // namespace Vek::Chart::Testing
