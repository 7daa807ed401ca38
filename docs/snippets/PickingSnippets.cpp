// Examples of the reference for render targets and picking; it shows what lies between two marks.

#include "library/DepthCodec.h"
#include "library/DepthImage.h"
#include "library/DepthPass.h"
#include "library/MipInfo.h"
#include "library/RenderTexture.h"
#include "library/SampledTarget.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Library;

namespace {

class PickingSnippetPixels : public Testing::PixelScopeFixture {
protected:
  /// The left half of the frame, at depth 0.75.
  void DrawScene() const {
    gl->Begin(RGL_QUADS);
    for (const auto& [x, y] : {std::pair(-1, -1), {0, -1}, {0, 1}, {-1, 1}})
      gl->Vertex(x, y, 0.5);
    gl->End();
  }
};

TEST(PickingSnippets, DepthCodec) {
  //! [DepthCodec]
  const boost::array<unsigned char, 4> bytes = DepthCodec::Encode(0.7F); // red, green, blue, alpha
  const float depth = DepthCodec::Decode(bytes);
  const bool nothing = DepthCodec::Decode({{0, 0, 0, 0}}) == 1.0F; // the depth of the far plane
  //! [DepthCodec]
  EXPECT_TRUE(nothing && std::abs(depth - 0.7F) < 1.0F / 128);
}

TEST_F(PickingSnippetPixels, TopMostFragmentDepthBuffer) {
  const Types::Viewport<0> viewport(0, 0, 61, 37);
  const Types::Pos mouse(10, 20);
  //! [DepthShader]
  const Ogl::ShaderProgram depthShader(gl, "void main() { gl_Position = ftransform(); }",
                                       DepthCodec::PreciseGlsl() +
                                           "void main() { gl_FragColor = EncodeDepth(gl_FragCoord.z); }");
  //! [DepthShader]
  //! [Callback]
  const auto drawDepths = [&](DepthCodec::Encoding) {
    const DepthPass pass(gl); // no state of the host spoils a depth
    const auto used = depthShader.Use(gl);
    DrawScene();
  };
  //! [Callback]
  //! [TopMostFragmentDepthBuffer]
  TopMostFragmentDepthBuffer picker; // kept with the scene
  Core::TimeStamp stamp;             // a new one whenever the scene or the camera changes
  float nearest = 1;
  const bool hit = picker.GetDepthAt(gl, viewport, mouse, stamp, drawDepths, // which is called once per stamp
                                     [&](unsigned int, float p_depth) { nearest = p_depth; });
  //! [TopMostFragmentDepthBuffer]
  //! [Snapshot]
  const DepthImage& depths = picker.Snapshot(gl, viewport, stamp, drawDepths); // no GL call on an unchanged scene
  const float under = depths.DepthAt(mouse);                                   // 1: nothing there
  //! [Snapshot]
  EXPECT_EQ(under, nearest);
  EXPECT_TRUE(hit && std::abs(nearest - 0.75F) < 1.0F / 128);
}

TEST_F(PickingSnippetPixels, SampledTarget) {
  //! [SampledTarget]
  const SampledTarget target(gl, {32, 16}, 4), composited(gl, {32, 16}, 4);
  {
    const auto bound = target.BindForDraw(gl);
    gl->ClearColor(Qt::darkGray);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    DrawScene();
  }
  for (int sample = 0; sample < target.Count(); ++sample) // or what was read in another process
    composited.Write(gl, sample, target.Read(gl, sample), SampledTarget::Written::Colors);
  const QImage image = composited.Image(gl);
  //! [SampledTarget]
  EXPECT_EQ(image.size(), QSize(32, 16));
}

TEST_F(PickingSnippetPixels, RenderTexture) {
  //! [RenderTexture]
  const RenderTexture target({32, 16}, RenderTexture::Rgba8, RenderTexture::Linear, 4); // four samples per pixel
  {
    const auto bound = target.BindForDraw(gl); // the viewport covers the target
    gl->ClearColor(Qt::darkGray);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    DrawScene();
  } // what was bound before is bound again
  const QImage image = target.ToImage(gl);
  target.BindColor(gl, RGL_TEXTURE0); // or used as a texture
  //! [RenderTexture]
  EXPECT_EQ(std::pair(image.pixel(4, 8), image.pixel(28, 8)),
            std::pair(QColor(Qt::white).rgba(), QColor(Qt::darkGray).rgba()));
}

TEST(PickingSnippets, MipInfo) {
  //! [MipInfo]
  const MipInfo mips({5, 3});
  const int levels = mips.Levels();               // 3
  const Types::Size second = mips.LevelSize(1);   // 2 × 1
  const Types::Size smallest = mips.LevelSize(2); // 1 × 1
  //! [MipInfo]
  EXPECT_EQ(std::tuple(levels, second, smallest), std::tuple(3, Types::Size(2, 1), Types::Size(1, 1)));
}

} // namespace
