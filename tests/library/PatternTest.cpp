#include "library/Pattern.h"
#include "tests/support/Test.h"

namespace {

using PatternCalls = RecordingFixture;

const unsigned char* Mask(std::uint32_t p_pattern) {
  return Pattern::PolygonStipplePattern(static_cast<Pattern::FillPattern>(p_pattern));
}

/// The rows of a mask in hex digits.
std::vector<std::string> Rows(const unsigned char* p_mask) {
  std::vector<std::string> rows;
  for (int i = 0; i < 128; ++i) {
    constexpr char Digits[] = "0123456789ABCDEF";
    if (i % 4 == 0)
      rows.emplace_back();
    rows.back() += Digits[p_mask[i] >> 4];
    rows.back() += Digits[p_mask[i] & 15];
  }
  return rows;
}

/// Remembers what it was asked for.
class AskedResource : public Assets::Resource {
public:
  AskedResource()
      : Resource(vekfile::filepath(VEK_SOURCE_DIR "/sprites")) {}
  vekfile::filepath ImageFile(const std::string& p_name) const override {
    names.push_back(p_name);
    return Resource::ImageFile(p_name);
  }
  mutable std::vector<std::string> names;
};

/// Whether a list of enumerators counts from 0; callers have the numbers compiled in.
template <class Enumerators>
constexpr bool Counts(const Enumerators& p_enumerators) {
  std::uint32_t number = 0;
  for (const auto enumerator : p_enumerators)
    if (enumerator != number++)
      return false;
  return true;
}
static_assert(Counts(std::array{Pattern::LineNone, Pattern::LineSolid, Pattern::LineDense, Pattern::LineDots,
                                Pattern::LineSparse, Pattern::LineShort, Pattern::LineMedium, Pattern::LineLong,
                                Pattern::LineDotDash, Pattern::LineDotsDash, Pattern::LineLongDotDash}));
static_assert(Counts(std::array{Pattern::FillNone, Pattern::FillSolid, Pattern::FillDense, Pattern::FillHalf,
                                Pattern::FillSparse, Pattern::FillHorizontal, Pattern::FillVertical, Pattern::FillGrid,
                                Pattern::FillDiagonal, Pattern::FillBackDiagonal, Pattern::FillCrossHatch,
                                Pattern::FillWeave, Pattern::FillBackWeave}));
static_assert(Counts(std::array{Pattern::PointNone, Pattern::PointRectangle, Pattern::PointEllipse,
                                Pattern::PointDiamond, Pattern::PointHexagon, Pattern::PointTriangle,
                                Pattern::PointCross, Pattern::PointXCross, Pattern::PointStar}));

constexpr struct {
  std::uint32_t pattern;
  const char* word;
} Shapes[] = {
    {0, "rect"},  {1, "rect"},   {2, "ellipse"}, {3, "diamond"}, {4, "hexagon"},        {5, "triangle"},
    {6, "cross"}, {7, "xCross"}, {8, "star"},    {9, "rect"},    {0xFFFFFFFFU, "rect"},
};

} // namespace

TEST(Pattern, LineStipples) {
  const unsigned short expected[] = {0xFFFF, 0xFFFF, 0xEEEE, 0xAAAA, 0x8888, 0xCCCC, 0xF0F0,
                                     0xFF00, 0xE4E4, 0xEAEA, 0xF1E4, 0xFFFF, 0xFFFF};
  for (std::uint32_t i = 0; i < std::size(expected); ++i)
    EXPECT_EQ(Pattern::LineStipplePattern(static_cast<Pattern::LinePattern>(i)), expected[i]) << i;
  for (const std::uint32_t i : {99U, 0x80000000U, 0xFFFFFFFFU})
    EXPECT_EQ(Pattern::LineStipplePattern(static_cast<Pattern::LinePattern>(i)), 0xFFFF) << i;
}

TEST(Pattern, FillStipples) {
  const std::vector<std::string> expected[] = {
      {"FFFFFFFF", "FFFFFFFF", "FFFFFFFF", "FFFFFFFF"}, {"77777777", "DDDDDDDD", "77777777", "DDDDDDDD"},
      {"55555555", "AAAAAAAA", "55555555", "AAAAAAAA"}, {"44444444", "11111111", "44444444", "11111111"},
      {"FFFFFFFF", "00000000", "00000000", "00000000"}, {"11111111", "11111111", "11111111", "11111111"},
      {"FFFFFFFF", "11111111", "11111111", "11111111"}, {"88888888", "44444444", "22222222", "11111111"},
      {"11111111", "22222222", "44444444", "88888888"}, {"AAAAAAAA", "44444444", "AAAAAAAA", "11111111"},
      {"66666666", "99999999", "66666666", "99999999"}, {"99999999", "66666666", "99999999", "66666666"},
  };
  for (std::uint32_t pattern = 1; pattern <= std::size(expected); ++pattern) {
    const std::vector<std::string> rows = Rows(Mask(pattern));
    for (std::size_t row = 0; row < 32; ++row)
      EXPECT_EQ(rows[row], expected[pattern - 1][row % 4]) << "pattern " << pattern << ", row " << row;
    EXPECT_EQ(Mask(pattern), Mask(pattern));
  }
  for (const std::uint32_t solid : {0U, 13U, 99U, 0xFFFFFFFFU})
    EXPECT_EQ(Mask(solid), Mask(1)) << solid;
}

TEST_F(PatternCalls, PointSpritesComeFromTheSpritesFolder) {
  Utility::Scoped<Rgl> gl(recorder.Handle());
  Assets::ImageCache cache;
  for (const auto& [pattern, word] : Shapes) {
    SCOPED_TRACE(pattern);
    const AskedResource resource;
    const ReportCapture reports;
    const boost::shared_ptr<Texture> sprite =
        Pattern::PointSpritePattern(static_cast<Pattern::PointPattern>(pattern), resource, cache, gl);
    EXPECT_EQ(resource.names, std::vector<std::string>{std::string("symbol_") + word});
    EXPECT_EQ(reports.Texts(), Lines());
    EXPECT_TRUE(sprite->Width() == 64 && sprite->Height() == 64);
    EXPECT_EQ(sprite->environment, Texture::Modulate);
    EXPECT_TRUE(sprite->minFilter == Texture::Linear && sprite->magFilter == Texture::Linear);
    EXPECT_TRUE(sprite->wrapS == Texture::ClampToEdge && sprite->wrapT == Texture::ClampToEdge);
    EXPECT_NE(sprite, Pattern::PointSpritePattern(static_cast<Pattern::PointPattern>(pattern), resource, cache, gl));
  }
  EXPECT_EQ(Changes(), Lines()) << "no upload before a bind";
}

TEST_F(PatternCalls, AMissingSpriteIsReportedByName) {
  Utility::Scoped<Rgl> gl(recorder.Handle());
  Assets::ImageCache cache;
  const Assets::Resource nowhere(vekfile::filepath("no/such/folder"));
  const ReportCapture reports;
  const boost::shared_ptr<Texture> sprite = Pattern::PointSpritePattern(Pattern::PointXCross, nowhere, cache, gl);
  EXPECT_EQ(reports.Texts(),
            (Lines{"WARNING: Assets::ImageCache::Image: cannot read \"no/such/folder/symbol_xCross.png\"",
                   "\"_width > 0 && _height > 0 && \"Invalid Texture Size\"\" - __cdecl "
                   "Vek::Chart::Library::Texture::Texture(const class QImage &,class "
                   "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)"}));
  ASSERT_TRUE(sprite);
  EXPECT_EQ(sprite->environment, Texture::Modulate);
}
