#include "library/Pattern.h"

#include <array>
#include <cstddef>
#include <string>

namespace Vek::Chart::Library {

namespace {

// Each table begins with pattern 1, which also stands for the numbers that have no row.

constexpr std::array<unsigned short, 10> LineStipples = {
    0xFFFF, 0xEEEE, 0xAAAA, 0x8888, 0xCCCC, 0xF0F0, 0xFF00, 0xE4E4, 0xEAEA, 0xF1E4,
};

using Mask = std::array<unsigned char, 128>;

/// Four rows, each of four equal bytes, repeated eight times.
constexpr Mask Repeat(unsigned char p_row0, unsigned char p_row1, unsigned char p_row2, unsigned char p_row3) {
  const unsigned char rows[4] = {p_row0, p_row1, p_row2, p_row3};
  Mask mask{};
  for (std::size_t i = 0; i < mask.size(); ++i)
    mask[i] = rows[i / 4 % 4];
  return mask;
}

constexpr std::array<Mask, 12> FillStipples = {
    Repeat(0xFF, 0xFF, 0xFF, 0xFF), // solid
    Repeat(0x77, 0xDD, 0x77, 0xDD), // dense
    Repeat(0x55, 0xAA, 0x55, 0xAA), // half
    Repeat(0x44, 0x11, 0x44, 0x11), // sparse
    Repeat(0xFF, 0x00, 0x00, 0x00), // horizontal
    Repeat(0x11, 0x11, 0x11, 0x11), // vertical
    Repeat(0xFF, 0x11, 0x11, 0x11), // grid
    Repeat(0x88, 0x44, 0x22, 0x11), // diagonal
    Repeat(0x11, 0x22, 0x44, 0x88), // back diagonal
    Repeat(0xAA, 0x44, 0xAA, 0x11), // cross-hatch
    Repeat(0x66, 0x99, 0x66, 0x99), // weave
    Repeat(0x99, 0x66, 0x99, 0x66), // back weave
};

constexpr std::array<const char*, 8> PointShapes = {
    "rect", "ellipse", "diamond", "hexagon", "triangle", "cross", "xCross", "star",
};

/// The row of a pattern; 0 wraps around and is past the end, like all numbers without a row.
template <class Row, std::size_t Rows>
constexpr const Row& RowOf(const std::array<Row, Rows>& p_rows, std::uint32_t p_pattern) {
  const std::uint32_t row = p_pattern - 1;
  return p_rows[row < Rows ? row : 0];
}

} // namespace

unsigned short Pattern::LineStipplePattern(LinePattern p_pattern) {
  return RowOf(LineStipples, p_pattern);
}

const unsigned char* Pattern::PolygonStipplePattern(FillPattern p_pattern) {
  return RowOf(FillStipples, p_pattern).data();
}

boost::shared_ptr<Texture> Pattern::PointSpritePattern(PointPattern p_pattern, const Assets::Resource& p_resource,
                                                       Assets::ImageCache& p_cache, Utility::Scoped<Rgl>& p_gl) {
  const std::string name = std::string("symbol_") + RowOf(PointShapes, p_pattern);
  const QImage& image = p_cache.Image(p_resource.ImageFile(name));
  const boost::shared_ptr<Texture> texture(new Texture(image, p_gl));
  texture->environment = Texture::Modulate;
  return texture;
}

} // namespace Vek::Chart::Library
