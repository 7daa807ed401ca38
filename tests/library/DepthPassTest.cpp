#include "library/DepthPass.h"

#include "library/DepthCodec.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

namespace {

struct Row {
  const char* name;
  std::vector<Ogl::GlEnum> enabled;
  std::function<void(Scope&)> set;
};

#define VEK_SET(p_call) [](Scope& p_gl) { p_gl->p_call; }
const Row HostState[] = {
    {"nothing", {}, {}},
    {"scissor", {RGL_SCISSOR_TEST}, VEK_SET(Scissor(0, 0, 1, 1))},
    {"alpha test", {RGL_ALPHA_TEST}, VEK_SET(AlphaFunc(RGL_NEVER, 0))},
    {"stencil test", {RGL_STENCIL_TEST}, VEK_SET(StencilFunc(RGL_NEVER, 0, 0))},
    {"blending", {RGL_BLEND}, VEK_SET(BlendFunc(RGL_ZERO, RGL_ONE))},
    {"logic operation", {RGL_COLOR_LOGIC_OP}, VEK_SET(LogicOp(RGL_NOOP))},
    {"polygon stipple", {RGL_POLYGON_STIPPLE}, VEK_SET(PolygonStipple(std::array<unsigned char, 128>{}.data()))},
    {"polygon offset", {RGL_POLYGON_OFFSET_FILL}, VEK_SET(PolygonOffset(0, 1e6F))},
    {"fog", {RGL_FOG}, {}},
    {"lighting", {RGL_LIGHTING}, {}},
    {"without effect on this scene or device",
     {RGL_DITHER, RGL_MULTISAMPLE, RGL_FRAMEBUFFER_SRGB, RGL_POLYGON_SMOOTH, RGL_LINE_SMOOTH, RGL_POINT_SMOOTH,
      RGL_LINE_STIPPLE, RGL_POLYGON_OFFSET_POINT, RGL_POLYGON_OFFSET_LINE, RGL_DEPTH_CLAMP},
     {}},
    {"polygon mode", {}, VEK_SET(PolygonMode(RGL_FRONT_AND_BACK, RGL_POINT))},
    {"colour mask", {}, VEK_SET(ColorMask(false, false, false, true))},
    {"alpha mask", {}, VEK_SET(ColorMask(true, true, true, false))},
    {"depth mask", {}, VEK_SET(DepthMask(false))},
    {"no depth test", {}, VEK_SET(Disable(RGL_DEPTH_TEST))},
    {"depth function", {}, VEK_SET(DepthFunc(RGL_ALWAYS))},
    {"depth range", {}, VEK_SET(DepthRange(1, 0))},
    {"depth clear value", {}, VEK_SET(ClearDepth(0))},
    {"clear colour", {}, VEK_SET(ClearColor(0.5F, 0, 0, 0))},
    {"stencil clear value", {}, VEK_SET(ClearStencil(7))},
    {"stencil mask",
     {},
     VEK_SET(StencilMask(~0U); p_gl->ClearStencil(7); p_gl->Clear(RGL_STENCIL_BUFFER_BIT); p_gl->StencilMask(0))},
};

using Depths = std::array<float, 2>;

class DepthPassPixels : public PixelScopeFixture {
public:
  /// Packed by the shader in the left half of the viewport, drawn without one in the right half.
  void Draw(double p_depth) {
    const auto bytes = DepthCodec::Encode(static_cast<float>(p_depth));
    gl->Color4d(bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0);
    for (const int left : {-1, 0}) {
      const auto used = left < 0 ? packing.Use(gl) : nullptr;
      gl->Begin(RGL_QUADS);
      for (const auto& [x, y] : {std::pair(left, -1), {left + 1, -1}, {left + 1, 1}, {left, 1}})
        gl->Vertex(x, y, 2 * p_depth - 1);
      gl->End();
    }
  }

  void Set(const Row& p_row) {
    for (const Ogl::GlEnum capability : p_row.enabled)
      gl->Enable(capability);
    if (p_row.set)
      p_row.set(gl);
  }

  /// What picks find in the two halves, to six digits, after `p_depths` were drawn behind each other; 1 for nothing.
  Depths Picked(const Row& p_row, const std::vector<double>& p_depths) {
    Depths found = {1, 1};
    const Core::TimeStamp stamp;
    for (const int x : {3, 9})
      picker.GetDepthAt(
          gl, {0, 0, 12, 6}, {x, 3}, stamp, [&](DepthCodec::Encoding) { DrawUnderPass(p_row, p_depths); },
          [&](unsigned int, float p_depth) { found.at(x / 6) = std::round(p_depth * 1e6F) / 1e6F; });
    return found;
  }

  void DrawUnderPass(const Row& p_row, const std::vector<double>& p_depths) {
    Set(p_row);
    const std::vector<double> state = State();
    {
      const DepthPass pass(gl);
      for (const Ogl::GlEnum capability : p_row.enabled)
        EXPECT_FALSE(gl->IsEnabled(capability)) << capability;
      gl->Enable(RGL_STENCIL_TEST); // the scene's own, which expects a cleared stencil buffer
      gl->StencilFunc(RGL_EQUAL, 0, ~0U);
      for (const double depth : p_depths)
        Draw(depth);
    }
    EXPECT_EQ(State(), state) << "restored";
  }

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
      for (const Ogl::GlEnum capability : row.enabled)
        state.push_back(gl->IsEnabled(capability));
    return state;
  }

  const Ogl::ShaderProgram packing{gl, "void main() { gl_Position = ftransform(); }",
                                   DepthCodec::PreciseGlsl() +
                                       "void main() { gl_FragColor = EncodeDepth(gl_FragCoord.z); }"};
  TopMostFragmentDepthBuffer picker;
};

TEST_F(DepthPassPixels, NoHostStateSpoilsAPick) {
  const Depths shown = {0.25F, std::round(DepthCodec::Decode(DepthCodec::Encode(0.25F)) * 1e6F) / 1e6F};
  for (const Row& row : HostState) {
    SCOPED_TRACE(row.name);
    const auto saved = gl->PushAttribScope(RGL_ALL_ATTRIB_BITS);
    EXPECT_NE(Picked(HostState[0], {0.75}), (Depths{1, 1}));
    Set(row);
    EXPECT_EQ(Picked(row, {}), (Depths{1, 1}));
    EXPECT_EQ(Picked(row, {0.25, 0.5}), shown);
  }
}

} // namespace
