#pragma once

#include "platform/types/Vector.h"
#include "testing/RecordingFixture.h"
#include "tests/support/ErrorOf.h"

#include <QColor>
#include <QImage>

#include <array>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// What the tests of this project write often.

namespace Vek::Test {

using Chart::Testing::Lines;
using Scope = Chart::Utility::Scoped<Chart::Rgl>;
using Point = Chart::Types::Vector3_Base<double>;
using Doubles = std::vector<double>;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

/// A call that returns nothing, of an expression that may have braces.
#define VEK_CALL(...) [&] { static_cast<void>(__VA_ARGS__); }

/// Calls that must throw, each after its message.
using Refusals = std::vector<std::pair<std::string, std::function<void()>>>;

template <class Error = std::invalid_argument>
void ExpectErrors(const Refusals& p_refusals) {
  for (const auto& [message, call] : p_refusals)
    EXPECT_EQ(ErrorOf<Error>(call), message);
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
inline std::string SettingCalls(const std::string& p_filter, const std::string& p_environment) {
  return TexParameters("2D", {"BASE_LEVEL, 0", "MAX_LEVEL, 0", "WRAP_S, GL_CLAMP_TO_EDGE", "WRAP_T, GL_CLAMP_TO_EDGE",
                              "MIN_FILTER, " + p_filter, "MAG_FILTER, " + p_filter}) +
         (p_environment.empty() ? "" : "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, " + p_environment + "); ") +
         "Enable(GL_TEXTURE_2D); Disable(GL_TEXTURE_GEN_S); Disable(GL_TEXTURE_GEN_T)";
}

/// The bytes of each range that was mapped since the last call, which every upload of a part does.
inline std::vector<std::size_t> UploadsOf(Chart::Testing::RecordingGl& p_recorder) {
  std::vector<std::size_t> bytes;
  bool isStream = false; // of what each frame draws anew: letters, lines
  for (const std::string& line : p_recorder.LinesOf({"BufferData", "MapBufferRange"}))
    if (line[0] == 'B')
      isStream = line.find("GL_STREAM_DRAW") != std::string::npos;
    else if (!std::exchange(isStream, false))
      bytes.push_back(std::stoul(line.substr(line.find(", 0, ") + 5)));
  EXPECT_EQ(p_recorder.LinesOf({"BufferSubData"}), Lines());
  p_recorder.Clear();
  return bytes;
}

/// State of a driver that drawing could leave changed.
inline std::map<Chart::Ogl::GlEnum, std::array<double, 16>> StateOf(const Scope& p_gl) {
  std::map<Chart::Ogl::GlEnum, std::array<double, 16>> state;
  for (const Chart::Ogl::GlEnum name : {RGL_ACTIVE_TEXTURE,
                                        RGL_ALPHA_TEST,
                                        RGL_ATTRIB_STACK_DEPTH,
                                        RGL_BLEND,
                                        RGL_BLEND_DST_RGB,
                                        RGL_BLEND_SRC_RGB,
                                        RGL_CLIP_PLANE0,
                                        RGL_COLOR_CLEAR_VALUE,
                                        RGL_COLOR_WRITEMASK,
                                        RGL_CULL_FACE,
                                        RGL_CURRENT_COLOR,
                                        RGL_CURRENT_PROGRAM,
                                        RGL_CURRENT_TEXTURE_COORDS,
                                        RGL_DEPTH_CLEAR_VALUE,
                                        RGL_DEPTH_FUNC,
                                        RGL_DEPTH_RANGE,
                                        RGL_DEPTH_TEST,
                                        RGL_DEPTH_WRITEMASK,
                                        RGL_DRAW_FRAMEBUFFER_BINDING,
                                        RGL_LIGHTING,
                                        RGL_MATRIX_MODE,
                                        RGL_MODELVIEW_STACK_DEPTH,
                                        RGL_PACK_ALIGNMENT,
                                        RGL_POLYGON_MODE,
                                        RGL_PROJECTION_STACK_DEPTH,
                                        RGL_READ_FRAMEBUFFER_BINDING,
                                        RGL_RENDERBUFFER_BINDING,
                                        RGL_SCISSOR_BOX,
                                        RGL_SCISSOR_TEST,
                                        RGL_SHADE_MODEL,
                                        RGL_STENCIL_CLEAR_VALUE,
                                        RGL_STENCIL_WRITEMASK,
                                        RGL_TEXTURE_2D,
                                        RGL_TEXTURE_3D,
                                        RGL_TEXTURE_BINDING_2D,
                                        RGL_TEXTURE_BINDING_3D,
                                        RGL_UNPACK_ALIGNMENT,
                                        RGL_UNPACK_SKIP_ROWS,
                                        RGL_VIEWPORT})
    p_gl->GetDoublev(name, state[name].data());
  return state;
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

/// How many pixels of an image have a colour.
inline int CountPixels(const QImage& p_image, const QColor& p_color) {
  int count = 0;
  for (int y = 0; y < p_image.height(); ++y)
    for (int x = 0; x < p_image.width(); ++x)
      count += p_image.pixel(x, y) == p_color.rgba();
  return count;
}

} // namespace Vek::Test
