#include "library/DepthCodec.h"

#include "library/RenderTexture.h"
#include "platform/ogl/HitRecord.h"
#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

namespace {

using Bytes = boost::array<unsigned char, 4>;

constexpr float Scale[] = {0x1p+0F, 0x1.fep+7F, 0x1.fc02p+15F, 0x1.fa05fep+23F};
constexpr float Weights[] = {0x1p+0F, 0x1.010102p-8F, 0x1.020304p-16F, 0x1.03060ap-24F};
constexpr float K = Weights[1];

float FromBits(std::uint32_t p_bits) {
  float value;
  std::memcpy(&value, &p_bits, sizeof value);
  return value;
}
std::string Text(const Bytes& p_bytes) {
  std::string text;
  for (const unsigned char byte : p_bytes)
    text += std::to_string(int(byte)) + ' ';
  return text;
}

// The packing with every single operation done in double and rounded to float: for sums, differences and products of
// two floats that is the correctly rounded result.
Bytes ReferenceEncode(float p_depth) {
  const auto multiply = [](float p_a, float p_b) { return static_cast<float>(double(p_a) * double(p_b)); };
  const auto subtract = [](float p_a, float p_b) { return static_cast<float>(double(p_a) - double(p_b)); };
  float e[4];
  for (int i = 0; i < 4; ++i) {
    const float product = multiply(Scale[i], p_depth);
    e[i] = subtract(product, static_cast<float>(std::floor(double(product))));
  }
  Bytes bytes;
  for (int i = 0; i < 4; ++i) {
    const float rest = i == 3 ? e[3] : subtract(e[i], multiply(e[i + 1], K));
    bytes[i] = static_cast<unsigned char>(static_cast<long long>(std::trunc(multiply(rest, 255))) & 255);
  }
  return bytes;
}

TEST(DepthCodec, EncodesKnownDepths) {
  const struct {
    float depth;
    Bytes expected;
  } cases[] = {
      {-0.0F, {{0, 0, 0, 0}}},
      {1.0F, {{0, 0, 0, 0}}},
      {0.5F, {{127, 127, 127, 127}}},
      {0.25F, {{63, 191, 63, 191}}},
      {-0.25F, {{191, 63, 191, 63}}},
      {0.123456F, {{30, 122, 185, 63}}},
      {1.5F, {{127, 127, 127, 0}}}, // the largest product has no bit left for its half
      {std::numeric_limits<float>::infinity(), {{0, 0, 0, 0}}},
      {std::numeric_limits<float>::quiet_NaN(), {{0, 0, 0, 0}}},
      {std::numeric_limits<float>::max(), {{0, 0, 0, 0}}}, // the larger products overflow
  };
  for (const auto& c : cases)
    EXPECT_EQ(Text(DepthCodec::Encode(c.depth)), Text(c.expected)) << c.depth;
}

TEST(DepthCodec, EncodesInSinglePrecisionStepByStep) {
  const auto check = [&](std::uint32_t p_bits) {
    const float depth = FromBits(p_bits);
    ASSERT_EQ(Text(DepthCodec::Encode(depth)), Text(ReferenceEncode(depth))) << depth;
  };
  for (std::uint32_t bits = 0; bits < 0x3F900000; bits += 19997) // zero to a little above one, subnormals included
    ASSERT_NO_FATAL_FAILURE(check(bits));
  for (std::uint32_t bits = 0x3F900000; bits < 0x72000000; bits += 19997) { // up to where products overflow
    ASSERT_NO_FATAL_FAILURE(check(bits));
    ASSERT_NO_FATAL_FAILURE(check(bits | 0x80000000));
  }
}

TEST(DepthCodec, DecodesWithTheListedWeights) {
  EXPECT_EQ(DepthCodec::Decode({{0, 0, 0, 0}}), Ogl::HitRecord::DepthFarthest);
  EXPECT_NEAR(DepthCodec::Decode({{0, 0, 0, 1}}), 2.3e-10, 1e-11); // the smallest hit
  for (std::uint32_t i = 1; i < 100000; ++i) {
    const std::uint32_t r = i * 2654435761U;
    const Bytes bytes = {{static_cast<unsigned char>(r >> 24), static_cast<unsigned char>(r >> 16),
                          static_cast<unsigned char>(r >> 8), static_cast<unsigned char>(r)}};
    float sum = 0;
    for (int c = 0; c < 4; ++c) {
      const auto channel = static_cast<float>(double(bytes[c]) * double(K));
      const auto term = static_cast<float>(double(channel) * double(Weights[c]));
      sum = static_cast<float>(double(sum) + double(term));
    }
    ASSERT_EQ(DepthCodec::Decode(bytes), sum) << Text(bytes);
  }
}

constexpr float LargestBelowOne = 0x1.fffffep-1F;

// Depths at 1 come back just below, as nothing is drawn at 1.
testing::AssertionResult IsPrecise(const Bytes& p_bytes, float p_depth) {
  const float decoded = DepthCodec::Decode(p_bytes);
  if (decoded < 1 && std::abs(double(decoded) - double(p_depth)) <= 0x1p-23 &&
      (p_depth < LargestBelowOne || decoded == LargestBelowOne))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << double(p_depth) << " as " << Text(p_bytes) << "is " << double(decoded);
}

// The arithmetic of PreciseGlsl on a device that rounds each operation, or fuses products with sums.
Bytes PreciseEncode(float p_depth, bool p_fused) {
  const auto madd = [p_fused](float p_a, float p_b, float p_c) {
    return p_fused ? std::fma(p_a, p_b, p_c) : p_a * p_b + p_c;
  };
  float rest = std::min(p_depth, LargestBelowOne);
  const float x = std::floor(rest * 254.9999F);
  rest = madd(-x, K, rest);
  const float y = std::floor(rest * 65024.98F);
  rest = madd(-y * K, Weights[1], rest);
  const float z = std::floor(rest * 16581370.0F);
  rest = madd(-z * K, Weights[2], rest);
  const float w = std::min(std::floor(madd(rest, 4228250625.0F, 0.5F)), 255.0F);
  const auto byte = [](float p_step) { return static_cast<unsigned char>(p_step); };
  return {{byte(x), byte(y), byte(z), byte(w)}};
}

TEST(DepthCodec, PreciseArithmeticKeepsItsBound) {
  for (std::uint32_t step = 1; step < 1U << 24; ++step)
    for (const bool fused : {false, true}) {
      const float depth = static_cast<float>(step / 16777215.0); // all that a 24-bit depth buffer holds
      ASSERT_TRUE(IsPrecise(PreciseEncode(depth, fused), depth)) << fused;
    }
}

class DepthCodecPixels : public PixelScopeFixture {
protected:
  /// Fills a target with a packing; `p_depth` is the depth in terms of `pixel`, counted from the lower left.
  std::vector<Bytes> Packed(const std::string& p_packing, const std::string& p_depth, Types::Size p_size) {
    const Ogl::ShaderProgram program(gl, "void main() { gl_Position = gl_Vertex; }",
                                     p_packing +
                                         "void main() {\n"
                                         "  vec2 pixel = floor(gl_FragCoord.xy);\n"
                                         "  gl_FragColor = EncodeDepth(" +
                                         p_depth + ");\n}\n");
    const RenderTexture target(p_size);
    const auto bound = target.BindForDraw(gl);
    const auto inUse = program.Use(gl);
    DrawTexturedSquare(gl);
    std::vector<Bytes> pixels(static_cast<std::size_t>(p_size.width) * static_cast<std::size_t>(p_size.height));
    gl->ReadPixels(0, 0, p_size.width, p_size.height, RGL_RGBA, RGL_UNSIGNED_BYTE, pixels.data());
    return pixels;
  }
};

// The device may round its products differently, which may lose or keep a step of a channel: the decoded depth has the
// bounds of `Encode`, and nearly all pixels have its bytes.
TEST_F(DepthCodecPixels, TheShaderPacksLikeEncode) {
  const std::vector<Bytes> pixels = Packed(DepthCodec::Glsl(), "(pixel.x + 64.0 * pixel.y + 0.375) / 2368.0", {64, 37});
  int same = 0;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const float depth = (static_cast<float>(i) + 0.375F) / 2368.0F;
    ASSERT_LE(DepthCodec::Decode(pixels[i]), depth + 1e-6F) << i;
    ASSERT_GE(DepthCodec::Decode(pixels[i]), depth - 1.01F / 255) << i;
    same += pixels[i] == DepthCodec::Encode(depth) ? 1 : 0;
  }
  EXPECT_GE(same, 64 * 37 * 9 / 10);
}

TEST_F(DepthCodecPixels, ThePreciseShaderKeepsItsBound) {
  const std::vector<Bytes> pixels =
      Packed(DepthCodec::PreciseGlsl(), "(pixel.x + 4096.0 * pixel.y + 1.0) / 16777216.0", {4096, 4096});
  for (std::size_t i = 0; i < pixels.size(); ++i) // the last depth is 1
    ASSERT_TRUE(IsPrecise(pixels[i], static_cast<float>(i + 1) / 16777216.0F));
}

} // namespace
