// The examples of the reference for colours and styles: what stands between two marks is shown there.

#include "library/ColorAtlas.h"
#include "library/ColorMap.h"
#include "library/ColorScale.h"
#include "library/NamedColors.h"
#include "library/Pattern.h"
#include "library/Style.h"
#include "library/Texture.h"
#include "tests/support/PixelFixture.h"
#include "tests/support/ReportCapture.h"

#include <limits>

using namespace Vek::Chart;
using namespace Vek::Chart::Library;
using Vek::Test::PixelAt;
using Vek::Test::SameColor;

namespace {

class ColorSnippetPixels : public Vek::Test::PixelFixture {
protected:
  Utility::Scoped<Rgl> gl{Handle()};
};

/// A rectangle over the whole frame.
void DrawFrame(Utility::Scoped<Rgl>& p_gl) {
  p_gl->Begin(RGL_QUADS);
  for (const auto& [x, y] : {std::pair(-1, -1), {1, -1}, {1, 1}, {-1, 1}})
    p_gl->Vertex(x, y, 0);
  p_gl->End();
}

TEST_F(ColorSnippetPixels, ColorMap) {
  //! [ColorMap]
  const ColorMap map({Qt::blue, Qt::white, Qt::red}, ColorMap::Interpolated);
  const QColor legend = map.Color(0.25); // half-way from blue to white

  map(gl, RGL_TEXTURE0); // bound; uploaded, since this is the first time
  gl->Begin(RGL_QUADS);
  for (const auto& [x, y] : {std::pair(-1, -1), {1, -1}, {1, 1}, {-1, 1}}) {
    gl->TexCoord(0.5 + 0.5 * x, 0.5); // the value, 0 on the left and 1 on the right
    gl->Vertex(x, y, 0);
  }
  gl->End();
  //! [ColorMap]
  EXPECT_TRUE(SameColor(legend.rgba(), QColor(127, 127, 255), 1));
  EXPECT_TRUE(SameColor(PixelAt(Image(), 0, 18), Qt::blue, 5));
  EXPECT_TRUE(SameColor(PixelAt(Image(), 60, 18), Qt::red, 5));
}

TEST(ColorSnippets, Weights) {
  //! [Weights]
  const ColorMap depths({Qt::darkBlue, Qt::blue, Qt::cyan}, {3, 1, 1}, ColorMap::Discrete);
  const QColor deep = depths.Color(0.59);    // dark blue has three fifths of the range
  const QColor shallow = depths.Color(0.61); // blue begins there
  //! [Weights]
  EXPECT_EQ(deep.rgba(), QColor(Qt::darkBlue).rgba());
  EXPECT_EQ(shallow.rgba(), QColor(Qt::blue).rgba());
}

TEST(ColorSnippets, Segments) {
  //! [Segments]
  const ColorMap map({Qt::black, Qt::red, Qt::white}, {1, 1, 3}, ColorMap::Interpolated);
  const QColor middle = map.Color(1.0 / 3); // red: the first segment has the weight 1, the second 2
  //! [Segments]
  EXPECT_TRUE(SameColor(middle.rgba(), Qt::red, 1));
}

// What the page about colours says of look-ups on the edge, and of weights that are left out.
TEST(ColorSnippets, Rules) {
  Vek::Test::ReportCapture reports;
  const auto left = [](const std::vector<double>& p_weights) {
    return ColorMap({Qt::red, Qt::green, Qt::blue}, p_weights, ColorMap::Discrete).Weightings();
  };
  EXPECT_EQ(left({1, 0, 2}), (std::vector<double>{1, 2}));
  EXPECT_TRUE(reports.Texts().empty()) << "a weight of 0 is no fault";
  EXPECT_EQ(left({1, -1, 2}), (std::vector<double>{1, 2}));
  EXPECT_EQ(left({1, std::numeric_limits<double>::quiet_NaN(), 2}), (std::vector<double>{1, 2}));
  ASSERT_EQ(reports.Texts().size(), 2U);
  EXPECT_EQ(reports.Texts().front().substr(0, 9), "WARNING: ");
  EXPECT_EQ(left({0, 0, 0}), (std::vector<double>{1, 1, 1}));
  reports.Clear();
  EXPECT_EQ(left({1, 2}), (std::vector<double>{1, 2}));
  EXPECT_EQ(left({1, 2, 3, 4}), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(reports.Texts().size(), 2U);

  const ColorMap map({Qt::black, Qt::white}, ColorMap::Interpolated);
  const QImage texels = ColorMap(map).GetImage();
  const double last = map.Size() - 1;
  EXPECT_EQ(map.Color(0.999999).rgba(), texels.pixel(static_cast<int>(last) - 1, 0)) << "only 1 gives the last texel";
  EXPECT_EQ(map.Color(1.0).rgba(), texels.pixel(static_cast<int>(last), 0));
  EXPECT_EQ(map.Color(-1).rgba(), map.Color(0xFFFFFFFFU).rgba());
  EXPECT_EQ(ColorMap({}, ColorMap::Discrete).Color(0.5).alpha(), 0);
}

TEST(ColorSnippets, LookUps) {
  //! [LookUps]
  const ColorMap bands({Qt::red, Qt::green, Qt::blue}, ColorMap::Discrete);
  const int texels = bands.Size();                                              // 4095: three equal bands
  const QColor below = bands.Color(-7.5);                                       // red: clamped to 0
  const QColor above = bands.Color(7.5);                                        // blue: clamped to 1
  const QColor number = bands.Color(texels);                                    // red: numbers start over
  const QColor missing = bands.Color(std::numeric_limits<double>::quiet_NaN()); // red, like 0
  //! [LookUps]
  EXPECT_EQ(texels, 4095);
  EXPECT_EQ(above.rgba(), QColor(Qt::blue).rgba());
  for (const QColor& color : {below, number, missing})
    EXPECT_EQ(color.rgba(), QColor(Qt::red).rgba());
}

TEST(ColorSnippets, Logarithm) {
  //! [Logarithm]
  const ColorMap map({Qt::white, Qt::black}, ColorMap::Interpolated);
  const double lowest = 0.1;
  const double highest = 1000;
  const double value = 10;
  const double place = std::log(value / lowest) / std::log(highest / lowest); // 0.5
  const QColor color = map.Color(place);
  //! [Logarithm]
  EXPECT_TRUE(SameColor(color.rgba(), QColor(127, 127, 127), 1));
}

TEST(ColorSnippets, NamedColors) {
  //! [NamedColors]
  const ColorMap blended(NamedColors::Colors("viridis"), ColorMap::Interpolated);
  const ColorMap classed(NamedColors::Colors("viridis", 7), ColorMap::Discrete);
  const ColorMap downwards(NamedColors::Colors("magma", 256, 0.9, 0.1), ColorMap::Interpolated);
  //! [NamedColors]
  EXPECT_EQ(blended.Color(0.0).rgba(), classed.Color(0.1).rgba()) << "the first class is the lowest colour";
  EXPECT_GT(downwards.Color(0.0).lightness(), downwards.Color(1.0).lightness());
}

TEST(ColorSnippets, ColorScale) {
  //! [ColorScale]
  const std::vector<float> values = {0.1F, 10, 1000, 0, std::numeric_limits<float>::quiet_NaN()};
  ColorScale::Outside outside;
  outside.below = Qt::black; // what is zero or less has no logarithm, and is below
  outside.nan = Qt::gray;
  const ColorScale scale(NamedColors::Colors("viridis"), 0.1, 1000, ColorScale::Logarithmic, outside);
  std::vector<unsigned char> rgba(4 * values.size());
  scale.Map(values.data(), values.size(), rgba.data());
  //! [ColorScale]
  const auto color = [&](std::size_t p_index) {
    return QColor(rgba[4 * p_index], rgba[4 * p_index + 1], rgba[4 * p_index + 2], rgba[4 * p_index + 3]);
  };
  const std::vector<QColor> viridis = NamedColors::Colors("viridis");
  EXPECT_EQ(color(0), scale.Color(0.1F));
  EXPECT_EQ(color(1), viridis[128]) << "half the decades";
  EXPECT_EQ(color(2), viridis.back());
  EXPECT_EQ(color(3), QColor(Qt::black));
  EXPECT_EQ(color(4), QColor(Qt::gray));
}

TEST_F(ColorSnippetPixels, ColorAtlas) {
  //! [ColorAtlas]
  ColorAtlas atlas;
  const unsigned int body = atlas.AddColor(Qt::red, atlas.RootAtlasId());
  const unsigned int edge = atlas.AddColor(Qt::black, body);
  const unsigned int blue = atlas.AddInstance(body, {{body, QColor(Qt::blue)}});
  atlas.BuildAtlas(gl);

  const auto coordinate = [&](unsigned int p_color) {
    const ColorAtlas::TexelSpace& space = atlas.TexelCoordSpace();
    const ColorCoords::Pixel pixel = atlas.ColorAt(p_color).coords.First();
    return Ogl::Vec2<float>{static_cast<float>(pixel.x) * space.texel.x + space.centre.x,
                            1 - (static_cast<float>(pixel.y) * space.texel.y + space.centre.y)};
  };
  const Ogl::Vec2<float> offset = atlas.InstanceOffset(blue); // to be added, for the copy in blue
  (*atlas.Texture())(gl, RGL_TEXTURE0);
  gl->TexCoord(coordinate(body).x + offset.x, coordinate(body).y + offset.y);
  //! [ColorAtlas]
  DrawFrame(gl);
  EXPECT_TRUE(SameColor(PixelAt(Image(), 30, 18), Qt::blue));
  gl->TexCoord(coordinate(edge).x, coordinate(edge).y);
  DrawFrame(gl);
  EXPECT_TRUE(SameColor(PixelAt(Image(), 30, 18), Qt::black));
}

TEST_F(ColorSnippetPixels, Texture) {
  QImage image(3, 5, QImage::Format_ARGB32);
  image.fill(Qt::white);
  //! [Texture]
  Texture sprite(image, gl);
  sprite.environment = Texture::Modulate; // the settings count at each bind, sRgb at the first only
  sprite(gl, RGL_TEXTURE0);
  gl->Color(Qt::green); // tints it
  //! [Texture]
  DrawFrame(gl);
  EXPECT_TRUE(SameColor(PixelAt(Image(), 30, 18), Qt::green));
}

TEST_F(ColorSnippetPixels, Pattern) {
  //! [Pattern]
  const Assets::Resource sprites(VEK_SOURCE_DIR "/sprites"); // finds "symbol_star" there
  Assets::ImageCache images;
  const boost::shared_ptr<Texture> star = Pattern::PointSpritePattern(Pattern::PointStar, sprites, images, gl);

  gl->LineStipple(2, Pattern::LineStipplePattern(Pattern::LineDotDash)); // each bit two pixels long
  gl->PolygonStipple(Pattern::PolygonStipplePattern(Pattern::FillCrossHatch));
  //! [Pattern]
  EXPECT_GT(star->Width(), 0);
  int stipple = 0;
  gl->GetIntegerv(RGL_LINE_STIPPLE_PATTERN, &stipple);
  EXPECT_EQ(stipple, 0xE4E4);
}

TEST_F(ColorSnippetPixels, Style) {
  //! [Style]
  Types::FillStyle style;
  style.pattern.Set(Pattern::FillHorizontal);
  style.color.Set(Qt::red);
  style.secondColor.Set(Qt::yellow); // lies under the gaps

  boost::function<void(Utility::Scoped<Rgl>&)> draw = DrawFrame; // what the style is for
  if (Style::HasFill(style))
    Style::DrawInternal(style, gl, draw);
  //! [Style]
  EXPECT_TRUE(SameColor(PixelAt(Image(), 30, 4), Qt::red));
  EXPECT_TRUE(SameColor(PixelAt(Image(), 30, 5), Qt::yellow));
}

} // namespace
