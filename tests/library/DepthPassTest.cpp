#include "library/DepthPass.h"

#include "library/DepthCodec.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

namespace {

struct Row {
  const char* name;
  Ogl::GlEnum capability; ///< enabled by the host, or none
  std::function<void(Scope&)> set;
};

const Row HostState[] = {
    {"nothing", RGL_NONE, [](Scope&) {}},
    {"scissor", RGL_SCISSOR_TEST, [](Scope& p_gl) { p_gl->Scissor(0, 0, 1, 1); }},
    {"alpha test", RGL_ALPHA_TEST, [](Scope& p_gl) { p_gl->AlphaFunc(RGL_NEVER, 0); }},
    {"stencil test", RGL_STENCIL_TEST, [](Scope& p_gl) { p_gl->StencilFunc(RGL_NEVER, 0, 0); }},
    {"blending", RGL_BLEND, [](Scope& p_gl) { p_gl->BlendFunc(RGL_ZERO, RGL_ONE); }},
    {"dithering", RGL_DITHER, {}},
    {"logic operation", RGL_COLOR_LOGIC_OP, [](Scope& p_gl) { p_gl->LogicOp(RGL_NOOP); }},
    {"multisampling", RGL_MULTISAMPLE, {}},
    {"sRGB", RGL_FRAMEBUFFER_SRGB, {}},
    {"polygon smoothing", RGL_POLYGON_SMOOTH, {}},
    {"line smoothing", RGL_LINE_SMOOTH, {}},
    {"point smoothing", RGL_POINT_SMOOTH, {}},
    {"polygon stipple", RGL_POLYGON_STIPPLE,
     [](Scope& p_gl) { p_gl->PolygonStipple(std::array<unsigned char, 128>{}.data()); }},
    {"line stipple", RGL_LINE_STIPPLE, {}},
    {"point offset", RGL_POLYGON_OFFSET_POINT, {}},
    {"line offset", RGL_POLYGON_OFFSET_LINE, {}},
    {"polygon offset", RGL_POLYGON_OFFSET_FILL, [](Scope& p_gl) { p_gl->PolygonOffset(0, 1e6F); }},
    {"depth clamping", RGL_DEPTH_CLAMP, {}},
    {"fog", RGL_FOG, {}},
    {"lighting", RGL_LIGHTING, {}},
    {"polygon mode", RGL_NONE, [](Scope& p_gl) { p_gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_POINT); }},
    {"colour mask", RGL_NONE, [](Scope& p_gl) { p_gl->ColorMask(false, false, false, true); }},
    {"alpha mask", RGL_NONE, [](Scope& p_gl) { p_gl->ColorMask(true, true, true, false); }},
    {"depth mask", RGL_NONE, [](Scope& p_gl) { p_gl->DepthMask(false); }},
    {"no depth test", RGL_NONE, [](Scope& p_gl) { p_gl->Disable(RGL_DEPTH_TEST); }},
    {"depth function", RGL_NONE, [](Scope& p_gl) { p_gl->DepthFunc(RGL_ALWAYS); }},
    {"depth range", RGL_NONE, [](Scope& p_gl) { p_gl->DepthRange(1, 0); }},
    {"depth clear value", RGL_NONE, [](Scope& p_gl) { p_gl->ClearDepth(0); }},
    {"clear colour", RGL_NONE, [](Scope& p_gl) { p_gl->ClearColor(0.5F, 0, 0, 0); }},
    {"stencil clear value", RGL_NONE, [](Scope& p_gl) { p_gl->ClearStencil(7); }},
    {"stencil mask", RGL_NONE,
     [](Scope& p_gl) {
       p_gl->StencilMask(~0U);
       p_gl->ClearStencil(7);
       p_gl->Clear(RGL_STENCIL_BUFFER_BIT);
       p_gl->StencilMask(0);
     }},
};

/// To what the depth buffer holds, and a little less.
float Rounded(float p_depth) {
  return std::round(p_depth * 1e6F) / 1e6F;
}

class DepthPassPixels : public PixelScopeFixture {
protected:
  /// Packed by the shader in the left half of the viewport, drawn without one in the right half.
  void Draw(double p_depth) {
    const auto quad = [&](int p_left, int p_right) {
      gl->Begin(RGL_QUADS);
      for (const auto& [x, y] : {std::pair(p_left, -1), {p_right, -1}, {p_right, 1}, {p_left, 1}})
        gl->Vertex(x, y, 2 * p_depth - 1);
      gl->End();
    };
    {
      const auto used = packing.Use(gl);
      quad(-1, 0);
    }
    const auto bytes = DepthCodec::Encode(static_cast<float>(p_depth));
    gl->Color4d(bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0);
    quad(0, 1);
  }

  /// The depths found in both halves by a picker whose callback draws `p_depths`, one behind the other; 1 for nothing.
  std::array<float, 2> Picked(const Row& p_row, const std::vector<double>& p_depths) {
    const auto render = [&](DepthCodec::Encoding) {
      Set(p_row);
      const std::vector<double> state = State();
      {
        const DepthPass pass(gl);
        EXPECT_FALSE(p_row.capability != RGL_NONE && gl->IsEnabled(p_row.capability));
        gl->Enable(RGL_STENCIL_TEST); // the scene's own, which expects a cleared stencil buffer
        gl->StencilFunc(RGL_EQUAL, 0, ~0U);
        for (const double depth : p_depths)
          Draw(depth);
      }
      EXPECT_EQ(State(), state) << "restored";
    };
    std::array<float, 2> found = {1, 1};
    const Core::TimeStamp stamp;
    for (int i = 0; i < 2; ++i)
      picker.GetDepthAt(gl, {0, 0, 12, 6}, {3 + 6 * i, 3}, stamp, render,
                        [&](unsigned int, float p_depth) { found[std::size_t(i)] = Rounded(p_depth); });
    return found;
  }

  void Set(const Row& p_row) {
    if (p_row.capability != RGL_NONE)
      gl->Enable(p_row.capability);
    if (p_row.set)
      p_row.set(gl);
  }

  /// What a pass changes.
  std::vector<double> State() {
    std::vector<double> state;
    for (const Ogl::GlEnum name :
         {RGL_POLYGON_MODE, RGL_COLOR_WRITEMASK, RGL_DEPTH_WRITEMASK, RGL_STENCIL_WRITEMASK, RGL_DEPTH_TEST,
          RGL_DEPTH_FUNC, RGL_DEPTH_RANGE, RGL_COLOR_CLEAR_VALUE, RGL_DEPTH_CLEAR_VALUE, RGL_STENCIL_CLEAR_VALUE}) {
      std::array<double, 4> values{};
      gl->GetDoublev(name, values.data());
      state.insert(state.end(), values.begin(), values.end());
    }
    for (const Row& row : HostState)
      if (row.capability != RGL_NONE)
        state.push_back(gl->IsEnabled(row.capability));
    return state;
  }

  const Ogl::ShaderProgram packing{gl, "void main() { gl_Position = ftransform(); }",
                                   DepthCodec::PreciseGlsl() +
                                       "void main() { gl_FragColor = EncodeDepth(gl_FragCoord.z); }"};
  TopMostFragmentDepthBuffer picker;
};

TEST_F(DepthPassPixels, NoHostStateSpoilsAPick) {
  using Depths = std::array<float, 2>;
  const auto packed = [](float p_depth) {
    return Depths{p_depth, Rounded(DepthCodec::Decode(DepthCodec::Encode(p_depth)))};
  };
  for (const Row& row : HostState) {
    SCOPED_TRACE(row.name);
    const auto saved = gl->PushAttribScope(RGL_ALL_ATTRIB_BITS);
    EXPECT_EQ(Picked(HostState[0], {0.75}), packed(0.75F));
    Set(row);
    EXPECT_EQ(Picked(row, {}), (Depths{1, 1}));
    EXPECT_EQ(Picked(row, {0.25, 0.5}), packed(0.25F));
  }
}

} // namespace
