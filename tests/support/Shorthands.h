#pragma once

#include "testing/RecordingFixture.h"

// What the tests of this project write often.

namespace Vek::Test {

using Chart::Testing::Lines;
using Scope = Chart::Utility::Scoped<Chart::Rgl>;

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
inline std::string SettingCalls(const std::string& p_filter, const std::string& p_environment) {
  return TexParameters("2D", {"BASE_LEVEL, 0", "MAX_LEVEL, 0", "WRAP_S, GL_CLAMP_TO_EDGE", "WRAP_T, GL_CLAMP_TO_EDGE",
                              "MIN_FILTER, " + p_filter, "MAG_FILTER, " + p_filter}) +
         (p_environment.empty() ? "" : "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, " + p_environment + "); ") +
         "Enable(GL_TEXTURE_2D); Disable(GL_TEXTURE_GEN_S); Disable(GL_TEXTURE_GEN_T)";
}

/// A square that fills the viewport under identity matrices; texture coordinates from 0 to `p_repeats`.
inline void DrawTexturedSquare(const Scope& p_gl, double p_repeats = 1) {
  p_gl->Begin(RGL_QUADS);
  for (const auto& [s, t] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1), std::pair(0, 1)}) {
    p_gl->TexCoord(s * p_repeats, t * p_repeats);
    p_gl->Vertex(2 * s - 1, 2 * t - 1, 0);
  }
  p_gl->End();
}

} // namespace Vek::Test
