#pragma once

#include "testing/RecordingGl.h"
#include "testing/Scope.h"

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

/// The calls that set parameters of a texture, as `Calls` reads them; a parameter is its name, a comma and its value.
inline std::string TexParameters(const std::string& p_target, const Lines& p_parameters) {
  std::string calls;
  for (const std::string& parameter : p_parameters)
    calls += "TexParameteri(GL_TEXTURE_" + p_target + ", GL_TEXTURE_" + parameter + "); ";
  return calls;
}

/// What a texture of one filter sets at each bind, as `Calls` reads it; no environment stands for one without effect.
inline std::string TextureSettings(const std::string& p_filter, const std::string& p_environment) {
  return TexParameters("2D", {"BASE_LEVEL, 0", "MAX_LEVEL, 0", "WRAP_S, GL_CLAMP_TO_EDGE", "WRAP_T, GL_CLAMP_TO_EDGE",
                              "MIN_FILTER, " + p_filter, "MAG_FILTER, " + p_filter}) +
         (p_environment.empty() ? "" : "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, " + p_environment + "); ") +
         "Enable(GL_TEXTURE_2D); Disable(GL_TEXTURE_GEN_S); Disable(GL_TEXTURE_GEN_T)";
}

/// Gives each test a recorder of its own, and fails the test when the recorder has complaints at the end: misuse of GL,
/// leaked objects, open pairs. A test that expects misuse takes it with `recorder.TakeComplaints()`.
class RecordingFixture : public testing::Test {
public:
  void TearDown() override {
    { const Scope freesWhatEndedOutsideScopes(recorder.Handle()); }
    EXPECT_EQ(recorder.Complaints(), Lines());
  }

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
