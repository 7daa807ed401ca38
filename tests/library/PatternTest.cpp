#include "library/Pattern.h"
#include "tests/support/Test.h"

namespace {

using PatternCalls = RecordingScopeFixture;
using P = Pattern;

/// Whether a list of enumerators counts from 0; callers have the numbers compiled in.
template <class Enumerators>
constexpr bool Counts(const Enumerators& p_enumerators) {
  std::uint32_t number = 0;
  for (const auto enumerator : p_enumerators)
    if (enumerator != number++)
      return false;
  return true;
}
static_assert(Counts(std::array{P::LineNone, P::LineSolid, P::LineDense, P::LineDots, P::LineSparse, P::LineShort,
                                P::LineMedium, P::LineLong, P::LineDotDash, P::LineDotsDash, P::LineLongDotDash}));
static_assert(Counts(std::array{P::FillNone, P::FillSolid, P::FillDense, P::FillHalf, P::FillSparse, P::FillHorizontal,
                                P::FillVertical, P::FillGrid, P::FillDiagonal, P::FillBackDiagonal, P::FillCrossHatch,
                                P::FillWeave, P::FillBackWeave}));
static_assert(Counts(std::array{P::PointNone, P::PointRectangle, P::PointEllipse, P::PointDiamond, P::PointHexagon,
                                P::PointTriangle, P::PointCross, P::PointXCross, P::PointStar}));

} // namespace

TEST(Pattern, LineStipples) {
  const unsigned short expected[] = {0xFFFF, 0xFFFF, 0xEEEE, 0xAAAA, 0x8888, 0xCCCC, 0xF0F0,
                                     0xFF00, 0xE4E4, 0xEAEA, 0xF1E4, 0xFFFF, 0xFFFF};
  for (std::uint32_t i = 0; i < std::size(expected); ++i)
    EXPECT_EQ(P::LineStipplePattern(static_cast<P::LinePattern>(i)), expected[i]) << i;
  EXPECT_EQ(P::LineStipplePattern(static_cast<P::LinePattern>(0xFFFFFFFFU)), 0xFFFF);
}

TEST(Pattern, FillStipples) {
  const auto mask = [](std::uint32_t p_pattern) {
    return P::PolygonStipplePattern(static_cast<P::FillPattern>(p_pattern));
  };
  // The bytes of the first four rows, which are repeated.
  const unsigned char expected[][4] = {{0xFF, 0xFF, 0xFF, 0xFF}, {0x77, 0xDD, 0x77, 0xDD}, {0x55, 0xAA, 0x55, 0xAA},
                                       {0x44, 0x11, 0x44, 0x11}, {0xFF, 0x00, 0x00, 0x00}, {0x11, 0x11, 0x11, 0x11},
                                       {0xFF, 0x11, 0x11, 0x11}, {0x88, 0x44, 0x22, 0x11}, {0x11, 0x22, 0x44, 0x88},
                                       {0xAA, 0x44, 0xAA, 0x11}, {0x66, 0x99, 0x66, 0x99}, {0x99, 0x66, 0x99, 0x66}};
  for (std::uint32_t pattern = 1; pattern <= std::size(expected); ++pattern)
    for (int i = 0; i < 128; ++i)
      EXPECT_EQ(mask(pattern)[i], expected[pattern - 1][i / 4 % 4]) << "pattern " << pattern << ", byte " << i;
  for (const std::uint32_t solid : {0U, 13U, 99U, 0xFFFFFFFFU})
    EXPECT_EQ(mask(solid), mask(1)) << solid;
}

TEST_F(PatternCalls, PointSpritesComeFromTheSpritesFolder) {
  const Assets::Resource sprites(vekfile::filepath(VEK_SOURCE_DIR "/sprites")), nowhere(vekfile::filepath("nowhere"));
  const std::pair<std::uint32_t, const char*> shapes[] = {
      {0, "rect"},  {1, "rect"},   {2, "ellipse"}, {3, "diamond"}, {4, "hexagon"},        {5, "triangle"},
      {6, "cross"}, {7, "xCross"}, {8, "star"},    {9, "rect"},    {0xFFFFFFFFU, "rect"},
  };
  for (const auto& [pattern, word] : shapes) {
    SCOPED_TRACE(pattern);
    Assets::ImageCache cache;
    const ReportCapture reports;
    const auto make = [&, number = pattern](const Assets::Resource& p_resource) {
      return P::PointSpritePattern(static_cast<P::PointPattern>(number), p_resource, cache, gl);
    };
    const boost::shared_ptr<Texture> sprite = make(sprites);
    EXPECT_EQ(reports.Texts(), Lines());
    EXPECT_TRUE(sprite->Width() == 64 && sprite->Height() == 64);
    EXPECT_TRUE(sprite->minFilter == Texture::Linear && sprite->magFilter == Texture::Linear);
    EXPECT_TRUE(sprite->wrapS == Texture::ClampToEdge && sprite->wrapT == Texture::ClampToEdge);
    EXPECT_NE(sprite, make(sprites));

    const boost::shared_ptr<Texture> missing = make(nowhere);
    EXPECT_TRUE(sprite->environment == Texture::Modulate && missing->environment == Texture::Modulate);
    ASSERT_EQ(reports.Texts().size(), 2u);
    EXPECT_EQ(reports.Texts()[0],
              std::string("WARNING: Assets::ImageCache::Image: cannot read \"nowhere/symbol_") + word + ".png\"");
    EXPECT_EQ(reports.Texts()[1].find("\"_width > 0 && _height > 0 && \"Invalid Texture Size\"\" - "), 0u);
  }
  EXPECT_EQ(Changes(), Lines()) << "no upload before a bind";
}
