#pragma once

#include "platform/ogl/RecordingGl.h"
#include "tests/support/Scope.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Vek::Test {

using Lines = std::vector<std::string>;

/// The calls of a text that has "; " between them, as the recorder writes them: one line each.
inline Lines Calls(const std::string& p_text) {
  Lines lines;
  for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 2) {
    end = p_text.find("; ", begin);
    lines.push_back(p_text.substr(begin, end - begin));
  }
  return lines;
}

/// The calls of one list, then those of the other.
inline Lines operator+(Lines p_first, const Lines& p_second) {
  p_first.insert(p_first.end(), p_second.begin(), p_second.end());
  return p_first;
}

/// What a texture of one filter sets at each bind, as `Calls` reads it; no environment stands for one without effect.
inline std::string TextureSettings(const std::string& p_filter, const std::string& p_environment) {
  const std::string set = "TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_";
  return set + "BASE_LEVEL, 0); " + set + "MAX_LEVEL, 0); " + set + "WRAP_S, GL_CLAMP_TO_EDGE); " + set +
         "WRAP_T, GL_CLAMP_TO_EDGE); " + set + "MIN_FILTER, " + p_filter + "); " + set + "MAG_FILTER, " + p_filter +
         "); " +
         (p_environment.empty() ? "" : "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, " + p_environment + "); ") +
         "Enable(GL_TEXTURE_2D); Disable(GL_TEXTURE_GEN_S); Disable(GL_TEXTURE_GEN_T)";
}

/// Gives each test a recorder of its own, and fails the test when the recorder has complaints at the end: misuse of GL,
/// leaked objects, open pairs. A test that expects misuse takes it with `recorder.TakeComplaints()`.
class RecordingFixture : public testing::Test {
public:
  void TearDown() override { EXPECT_EQ(recorder.Complaints(), Lines()); }

  /// All calls so far but queries, which only read GL's state.
  Lines Changes() const {
    return recorder.LinesWithout({"GetError", "GetFloatv", "GetIntegerv", "GetString", "IsEnabled"});
  }

  Chart::Ogl::RecordingGl recorder;
};

/// A recorder whose functions are at hand while the test runs.
class RecordingScopeFixture : public RecordingFixture {
public:
  Scope gl{recorder.Handle()};
};

} // namespace Vek::Test
