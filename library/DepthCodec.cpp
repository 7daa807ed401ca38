#include "library/DepthCodec.h"

#include "platform/ogl/HitRecord.h"
#include "platform/types/Vector.h"

#include <boost/endian/conversion.hpp>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <locale>
#include <sstream>

namespace Vek::Chart::Library {

namespace {

static_assert(FLT_EVAL_METHOD == 0, "the packing is fixed in single precision, without excess precision");

using Vector4 = Types::Vector4_Base<float>;

constexpr Vector4 EncodeScale(1.0F, 255.0F, 65025.0F, 16581375.0F);
// The floats as they are listed for the packing; the last two are no powers of the reciprocal below.
constexpr Vector4 DecodeWeights(0x1p+0F, 0x1.010102p-8F, 0x1.020304p-16F, 0x1.03060ap-24F);
// Stands for every division by 255.
constexpr float Reciprocal = 0x1.010102p-8F;
constexpr float LargestBelowOne = 0x1.fffffep-1F;

float Fraction(float p_value) {
  return p_value - std::floor(p_value);
}

// The low 8 bits of what is left of the decimal point. Fractions keep the value far inside an int, or NaN.
unsigned char LowByte(float p_value) {
  return std::isnan(p_value) ? 0 : static_cast<unsigned char>(static_cast<int>(p_value) & 0xff);
}

// A float as a GLSL literal that reads back as the same float.
std::string Literal(float p_value) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(FLT_DECIMAL_DIG);
  text << std::showpoint << p_value;
  return text.str();
}

std::string Literal(const Vector4& p_v) {
  return "vec4(" + Literal(p_v.x) + ", " + Literal(p_v.y) + ", " + Literal(p_v.z) + ", " + Literal(p_v.w) + ")";
}

} // namespace

boost::array<unsigned char, 4> DepthCodec::Encode(float p_depth) {
  const Vector4 scaled = EncodeScale * p_depth;
  const Vector4 e(Fraction(scaled.x), Fraction(scaled.y), Fraction(scaled.z), Fraction(scaled.w));
  const Vector4 next(e.y * Reciprocal, e.z * Reciprocal, e.w * Reciprocal, 0.0F);
  const Vector4 channels = (e - next) * 255.0F;
  return {{LowByte(channels.x), LowByte(channels.y), LowByte(channels.z), LowByte(channels.w)}};
}

namespace {

float DecodeBytes(const Vector4& p_bytes) {
  return Dot(p_bytes * Reciprocal, DecodeWeights);
}

} // namespace

float DepthCodec::Decode(const boost::array<unsigned char, 4>& p_bytes) {
  if (p_bytes[0] == 0 && p_bytes[1] == 0 && p_bytes[2] == 0 && p_bytes[3] == 0)
    return static_cast<float>(Ogl::HitRecord::DepthFarthest);
  return DecodeBytes({static_cast<float>(p_bytes[0]), static_cast<float>(p_bytes[1]), static_cast<float>(p_bytes[2]),
                      static_cast<float>(p_bytes[3])});
}

void DepthCodec::Decode(const unsigned char* p_bytes, std::size_t p_count, float* p_depths) {
  // Blocks are copied, channels taken from whole words, and the farthest depth is added to the 0 of an empty pixel, so
  // that the compiler vectorises the loop.
  constexpr std::size_t Block = 256;
  std::array<std::uint32_t, Block> words;
  const auto channel = [](std::uint32_t p_word, int p_shift) {
    return static_cast<float>(static_cast<std::int32_t>(p_word >> p_shift & 255U));
  };
  for (std::size_t first = 0; first < p_count; first += Block) {
    const std::size_t count = std::min(Block, p_count - first);
    std::memcpy(words.data(), p_bytes + 4 * first, 4 * count);
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint32_t word = boost::endian::little_to_native(words[i]);
      const float depth = DecodeBytes({channel(word, 0), channel(word, 8), channel(word, 16), channel(word, 24)});
      p_depths[first + i] = depth + (word == 0 ? static_cast<float>(Ogl::HitRecord::DepthFarthest) : 0.0F);
    }
  }
}

std::string DepthCodec::Glsl() {
  // The target rounds a channel times 255 to the nearest step, so that a whole number of steps is kept. What is below
  // zero by rounding becomes 0 when it is cut off.
  return "vec4 EncodeDepth(float depth) {\n"
         "  vec4 e = fract(" +
         Literal(EncodeScale) +
         " * depth);\n"
         "  e = e - vec4(e.yzw * " +
         Literal(Reciprocal) +
         ", 0.0);\n"
         "  return floor(max(e * 255.0, 0.0)) / 255.0;\n"
         "}\n";
}

std::string DepthCodec::PreciseGlsl() {
  // Each channel takes whole steps, as Decode weighs them, and leaves the exact remainder to the next one. The scales
  // are slightly below 255, 255^2 and 255^3, so that rounding never takes more than is there. The target clamps a last
  // channel of 256 steps.
  return "vec4 EncodeDepth(float depth) {\n"
         "  vec4 steps;\n"
         "  float rest = min(depth, " +
         Literal(LargestBelowOne) +
         ");\n"
         "  steps.x = floor(rest * 254.9999);\n"
         "  rest -= steps.x * " +
         Literal(Reciprocal) +
         ";\n"
         "  steps.y = floor(rest * 65024.98);\n"
         "  rest -= steps.y * " +
         Literal(Reciprocal) + " * " + Literal(DecodeWeights.y) +
         ";\n"
         "  steps.z = floor(rest * 16581370.0);\n"
         "  rest -= steps.z * " +
         Literal(Reciprocal) + " * " + Literal(DecodeWeights.z) +
         ";\n"
         "  steps.w = floor(rest * 4228250625.0 + 0.5);\n"
         "  return steps / 255.0;\n"
         "}\n";
}

} // namespace Vek::Chart::Library
