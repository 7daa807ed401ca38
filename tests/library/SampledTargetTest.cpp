#include "library/SampledTarget.h"
#include "tests/support/Test.h"

namespace {

using Written = SampledTarget::Written;

class SampledTargetPixels : public PixelScopeFixture {
protected:
  /// A triangle at a depth, over red.
  void Draw(const SampledTarget& p_target, double p_right, double p_z) {
    const auto bound = p_target.BindForDraw(gl);
    gl->ClearColor(Qt::red);
    gl->ClearDepth(1);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    const auto state = gl->PushAttribScope(RGL_ENABLE_BIT);
    gl->Enable(RGL_DEPTH_TEST);
    gl->Begin(RGL_TRIANGLES);
    gl->Vertex(-0.9, -0.8, p_z);
    gl->Vertex(p_right, -0.7, p_z);
    gl->Vertex(-0.1, 0.95, p_z);
    gl->End();
  }
};

TEST_F(SampledTargetPixels, PutsSamplesIntoAnotherTarget) {
  for (const int samples : {0, 4}) {
    const Types::Size size(23, 17);
    const SampledTarget drawn(gl, size, samples), other(gl, size, samples), whole(gl, size, samples);
    EXPECT_EQ(drawn.Count(), std::max(samples, 1));
    Draw(drawn, 0.9, 0.25);
    const QImage expected = drawn.Image(gl);
    {
      const auto bound = other.BindForDraw(gl);
      gl->ClearColor(Qt::red);
      gl->Clear(RGL_COLOR_BUFFER_BIT);
    }
    float nearest = 1;
    for (int sample = 0; sample < drawn.Count(); ++sample) {
      const SampledTarget::Samples values = drawn.Read(gl, sample);
      nearest = std::min(nearest, *std::min_element(values.depths.begin(), values.depths.end()));
      other.Write(gl, sample, values, Written::Depths);
      EXPECT_EQ(other.Read(gl, sample).depths, values.depths);
      other.Write(gl, sample, values, Written::Colors);
    }
    EXPECT_NEAR(nearest, 0.625, 1e-6);
    EXPECT_EQ(other.Image(gl), expected) << samples;
    // Half of white over red, in one sample of four.
    SampledTarget::Samples half = drawn.Read(gl, 0);
    for (std::size_t i = 0; i < half.colors.size(); ++i)
      half.colors[i] = 128;
    {
      const auto bound = whole.BindForDraw(gl);
      gl->ClearColor(Qt::red);
      gl->Clear(RGL_COLOR_BUFFER_BIT);
    }
    whole.Write(gl, drawn.Count() - 1, half, Written::Blended);
    EXPECT_NEAR(qGreen(whole.Image(gl).pixel(5, 5)), 128 / drawn.Count(), 1);
    EXPECT_EQ(qRed(whole.Image(gl).pixel(5, 5)), 255);
  }
}

TEST_F(SampledTargetPixels, RefusesOtherSizes) {
  const SampledTarget target(gl, {4, 3}, 4);
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { target.Write(gl, 0, {}, Written::Colors); }),
            "SampledTarget: expected 12 colours and depths, got 0 and 0");
  EXPECT_FALSE(ErrorOf<std::runtime_error>([&] { SampledTarget(gl, {0, 3}, 4); }).empty());
  while (gl->GetError() != RGL_NO_ERROR) {
  }
}

} // namespace
