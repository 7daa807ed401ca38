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

// Each operation in double, rounded to float: for sums, differences and products of two floats, the correct rounding.
float Product(float p_a, float p_b) {
  return static_cast<float>(double(p_a) * double(p_b));
}
float Sum(float p_a, float p_b) {
  return static_cast<float>(double(p_a) + double(p_b));
}
Bytes ReferenceEncode(float p_depth) {
  Bytes bytes;
  float following = 0;
  for (std::size_t i = 4; i-- > 0;) {
    const float product = Product(Scale[i], p_depth);
    const float fraction = Sum(product, -std::floor(product));
    const float rest = Sum(fraction, -Product(following, K));
    bytes[i] = static_cast<unsigned char>(static_cast<long long>(std::trunc(Product(rest, 255))) & 255);
    following = fraction;
  }
  return bytes;
}

TEST(DepthCodec, EncodesKnownDepths) {
  const std::pair<float, Bytes> cases[] = {
      {-0.0F, {{0, 0, 0, 0}}},
      {1.0F, {{0, 0, 0, 0}}},
      {0.5F, {{127, 127, 127, 127}}},
      {0.25F, {{63, 191, 63, 191}}},
      {-0.25F, {{191, 63, 191, 63}}},
      {0.123456F, {{30, 122, 185, 63}}},
      {1.5F, {{127, 127, 127, 0}}}, // the largest product has no bit left for its half
      {INFINITY, {{0, 0, 0, 0}}},
      {NAN, {{0, 0, 0, 0}}},
      {std::numeric_limits<float>::max(), {{0, 0, 0, 0}}}, // the larger products overflow
  };
  for (const auto& [depth, expected] : cases)
    EXPECT_EQ(Text(DepthCodec::Encode(depth)), Text(expected)) << depth;
}

TEST(DepthCodec, EncodesInSinglePrecisionStepByStep) {
  for (std::uint32_t bits = 0; bits < 0x72000000; bits += 19997) // subnormals included, up to where products overflow
    for (const std::uint32_t sign : {0U, 0x80000000U}) {
      const float depth = FromBits(bits | sign);
      ASSERT_EQ(Text(DepthCodec::Encode(depth)), Text(ReferenceEncode(depth))) << depth;
    }
}

TEST(DepthCodec, DecodesWithTheListedWeights) {
  EXPECT_EQ(DepthCodec::Decode({{0, 0, 0, 0}}), Ogl::HitRecord::DepthFarthest);
  EXPECT_NEAR(DepthCodec::Decode({{0, 0, 0, 1}}), 2.3e-10, 1e-11); // the smallest hit
  std::vector<std::uint32_t> many;
  std::vector<float> expected;
  for (std::uint32_t i = 1; i < 100000; ++i) {
    const std::uint32_t r = i * 2654435761U;
    const Bytes bytes = {{static_cast<unsigned char>(r >> 24), static_cast<unsigned char>(r >> 16),
                          static_cast<unsigned char>(r >> 8), static_cast<unsigned char>(r)}};
    float sum = 0;
    for (std::size_t c = 0; c < 4; ++c)
      sum = Sum(sum, Product(Product(bytes[c], K), Weights[c]));
    ASSERT_EQ(DepthCodec::Decode(bytes), sum) << Text(bytes);
    for (const Bytes& pixel : {bytes, Bytes{{0, 0, 0, 0}}}) {
      std::memcpy(&many.emplace_back(), pixel.data(), 4);
      expected.push_back(DepthCodec::Decode(pixel));
    }
  }
  // All at once, in place.
  std::vector<float> decoded(many.size() + 1, -1);
  std::memcpy(decoded.data(), many.data(), 4 * many.size());
  DepthCodec::Decode(reinterpret_cast<const unsigned char*>(decoded.data()), many.size(), decoded.data());
  expected.push_back(-1);
  EXPECT_EQ(decoded, expected);
}

constexpr float LargestBelowOne = 0x1.fffffep-1F;

// Depths at 1 come back just below, as nothing is drawn at 1. Small depths lose no more than a step of the last channel
// and the rounding of a few floats.
testing::AssertionResult IsPrecise(const Bytes& p_bytes, float p_depth) {
  const float decoded = DepthCodec::Decode(p_bytes);
  const double bound = std::min(0x1p-23, 0x1p-32 + 0x1p-22 * double(p_depth));
  if (decoded < 1 && std::abs(double(decoded) - double(p_depth)) <= bound &&
      (p_depth < LargestBelowOne || decoded == LargestBelowOne))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << double(p_depth) << " as " << Text(p_bytes) << "is " << double(decoded);
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
