#include "library/DepthCodec.h"
#include "platform/ogl/HitRecord.h"
#include "platform/ogl/ShaderProgram.h"
#include "tests/support/Test.h"

namespace {

using Bytes = boost::array<unsigned char, 4>;

float FromBits(std::uint32_t p_bits) {
  float value;
  std::memcpy(&value, &p_bits, sizeof value);
  return value;
}
std::uint32_t BitsOf(float p_value) {
  std::uint32_t bits;
  std::memcpy(&bits, &p_value, sizeof bits);
  return bits;
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
  const float scale[] = {FromBits(0x3F800000), FromBits(0x437F0000), FromBits(0x477E0100), FromBits(0x4B7D02FF)};
  float e[4];
  for (int i = 0; i < 4; ++i) {
    const float product = multiply(scale[i], p_depth);
    e[i] = subtract(product, static_cast<float>(std::floor(double(product))));
  }
  Bytes bytes;
  for (int i = 0; i < 4; ++i) {
    const float rest = i == 3 ? e[3] : subtract(e[i], multiply(e[i + 1], FromBits(0x3B808081)));
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
  const float k = FromBits(0x3B808081);
  const float weights[] = {1, k, FromBits(0x37810182), FromBits(0x33818305)};
  for (std::uint32_t i = 1; i < 100000; ++i) {
    const std::uint32_t r = i * 2654435761U;
    const Bytes bytes = {{static_cast<unsigned char>(r >> 24), static_cast<unsigned char>(r >> 16),
                          static_cast<unsigned char>(r >> 8), static_cast<unsigned char>(r)}};
    float sum = 0;
    for (int c = 0; c < 4; ++c) {
      const auto channel = static_cast<float>(double(bytes[c]) * double(k));
      const auto term = static_cast<float>(double(channel) * double(weights[c]));
      sum = static_cast<float>(double(sum) + double(term));
    }
    ASSERT_EQ(BitsOf(DepthCodec::Decode(bytes)), BitsOf(sum)) << Text(bytes);
  }
}

TEST(DepthCodec, HandsOutItsConstantsAsGlsl) {
  EXPECT_EQ(DepthCodec::Glsl(), "vec4 EncodeDepth(float depth) {\n"
                                "  vec4 e = fract(vec4(1.00000000, 255.000000, 65025.0000, 16581375.0) * depth);\n"
                                "  e = e - vec4(e.yzw * 0.00392156886, 0.0);\n"
                                "  return floor(max(e * 255.0, 0.0)) / 255.0;\n"
                                "}\n");
}

class DepthCodecPixels : public Vek::Test::PixelFixture {};

// One depth a pixel. The device may round its products differently, which may lose or keep a step of a channel: the
// decoded depth has the bounds of `Encode`, and nearly all pixels have its bytes. The precise packing has no such
// steps.
TEST_F(DepthCodecPixels, TheShadersPackLikeEncodeAndPrecisely) {
  for (const bool precise : {false, true}) {
    SCOPED_TRACE(precise);
    Utility::Scoped<Ogl::Rgl> gl(Handle());
    const Ogl::ShaderProgram program(gl, "void main() { gl_Position = gl_Vertex; }",
                                     (precise ? DepthCodec::PreciseGlsl() : DepthCodec::Glsl()) +
                                         "void main() {\n"
                                         "  vec2 pixel = floor(gl_FragCoord.xy);\n"
                                         "  gl_FragColor = EncodeDepth((pixel.x + 64.0 * pixel.y + 0.375) / 2368.0);\n"
                                         "}\n");
    ASSERT_TRUE(program.Linked());
    const boost::shared_ptr<void> inUse = program.Use(gl);
    gl->Begin(RGL_QUADS);
    for (const auto& [x, y] : {std::pair(-1, -1), {1, -1}, {1, 1}, {-1, 1}})
      gl->Vertex(x, y, 0);
    gl->End();

    const QImage image = Image();
    int same = 0;
    for (int y = 0; y < FrameSize.height; ++y)
      for (int x = 0; x < FrameSize.width; ++x) {
        const QRgb pixel = Vek::Test::PixelAt(image, x, y);
        const Bytes bytes = {{static_cast<unsigned char>(qRed(pixel)), static_cast<unsigned char>(qGreen(pixel)),
                              static_cast<unsigned char>(qBlue(pixel)), static_cast<unsigned char>(qAlpha(pixel))}};
        const float depth = (static_cast<float>(x + 64 * y) + 0.375F) / 2368.0F;
        if (precise) {
          ASSERT_NEAR(DepthCodec::Decode(bytes), depth, 0x1p-23) << x << ' ' << y;
          continue;
        }
        ASSERT_LE(DepthCodec::Decode(bytes), depth + 1e-6F) << x << ' ' << y;
        ASSERT_GE(DepthCodec::Decode(bytes), depth - 1.01F / 255) << x << ' ' << y;
        same += bytes == DepthCodec::Encode(depth) ? 1 : 0;
      }
    EXPECT_GE(same, precise ? 0 : FrameSize.width * FrameSize.height * 9 / 10);
  }
}

} // namespace
