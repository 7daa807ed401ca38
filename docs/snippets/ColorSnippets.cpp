// The examples of the reference for colours and styles: what stands between two marks is shown there.

#include "library/ColorAtlas.h"
#include "library/ColorMap.h"
#include "library/ColorScale.h"
#include "library/NamedColors.h"
#include "library/Pattern.h"
#include "library/Style.h"
#include "library/Texture.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Library;

namespace {

using ColorSnippetPixels = Testing::PixelScopeFixture;

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
  EXPECT_TRUE(SameColor(At(15, 18).rgba(), legend, 5));
}

TEST_F(ColorSnippetPixels, ColorMapBind) {
  //! [ColorMapBind]
  const ColorMap map = ColorMap::Named("viridis");
  {
    const auto bound = map.Bind(gl, RGL_TEXTURE0, Texture::Replace);
    gl->TexCoord(0.75, 0.5);
    DrawFrame(gl); // in the colour of the value 0.75
  }                // the host's textures are bound again
  //! [ColorMapBind]
  EXPECT_TRUE(SameColor(At(15, 18).rgba(), map.Color(0.75), 1));
}

TEST(ColorSnippets, Weights) {
  //! [Weights]
  const ColorMap depths({Qt::darkBlue, Qt::blue, Qt::cyan}, {3, 1, 1}, ColorMap::Discrete);
  const QColor deep = depths.Color(0.59);    // dark blue has three fifths of the range
  const QColor shallow = depths.Color(0.61); // blue begins there
  //! [Weights]
  EXPECT_EQ(std::pair(deep, shallow), std::pair(QColor(Qt::darkBlue), QColor(Qt::blue)));
}

TEST(ColorSnippets, Segments) {
  //! [Segments]
  const ColorMap map({Qt::black, Qt::red, Qt::white}, {1, 1, 3}, ColorMap::Interpolated);
  const QColor middle = map.Color(1.0 / 3); // red: the first segment has the weight 1, the second 2
  //! [Segments]
  EXPECT_TRUE(SameColor(middle.rgba(), Qt::red, 1));
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
  EXPECT_EQ((std::vector{below, above, number, missing}), (std::vector<QColor>{Qt::red, Qt::blue, Qt::red, Qt::red}));
}

TEST(ColorSnippets, Logarithm) {
  //! [Logarithm]
  const ColorMap map({Qt::white, Qt::black}, ColorMap::Interpolated);
  const double lowest = 0.1;
  const double highest = 1000;
  const double value = 10;
  const double position = std::log(value / lowest) / std::log(highest / lowest); // 0.5
  const QColor color = map.Color(position);
  //! [Logarithm]
  EXPECT_TRUE(SameColor(color.rgba(), QColor(127, 127, 127), 1));
}

TEST(ColorSnippets, NamedColors) {
  //! [NamedColors]
  const ColorMap blended = ColorMap::Named("viridis");
  const ColorMap classed(NamedColors::Colors("viridis", 7), ColorMap::Discrete);
  const ColorMap downwards(NamedColors::Colors("magma", 256, 0.9, 0.1), ColorMap::Interpolated);
  //! [NamedColors]
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
  EXPECT_EQ(QColor(rgba[4], rgba[5], rgba[6], rgba[7]), NamedColors::Colors("viridis")[128]) << "half the decades";
}

TEST_F(ColorSnippetPixels, ColorAtlas) {
  //! [ColorAtlas]
  ColorAtlas atlas;
  const unsigned int body = atlas.AddColor(Qt::red, atlas.RootAtlasId());
  atlas.AddColor(Qt::black, body); // its outline
  const unsigned int blue = atlas.AddInstance(body, {{body, QColor(Qt::blue)}});
  atlas.BuildAtlas(gl);

  const Ogl::Vec2<float> coordinate = atlas.TexCoord(body, blue); // of the body in the blue copy
  (*atlas.Texture())(gl, RGL_TEXTURE0);
  gl->TexCoord(coordinate.x, coordinate.y);
  //! [ColorAtlas]
  DrawFrame(gl);
  EXPECT_EQ(At(30, 18), QColor(Qt::blue));
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
  EXPECT_EQ(At(30, 18), QColor(Qt::green));
}

TEST_F(ColorSnippetPixels, TextureSettings) {
  Texture texture(QImage(3, 5, QImage::Format_ARGB32), gl);
  //! [TextureSettings]
  TextureSettings tiles; // to be used for several textures
  tiles.magFilter = TextureSettings::Nearest;
  tiles.wrapS = tiles.wrapT = TextureSettings::Repeat;
  static_cast<TextureSettings&>(texture) = tiles;
  //! [TextureSettings]
  EXPECT_EQ(texture.wrapT, Texture::Repeat);
}

TEST_F(ColorSnippetPixels, Pattern) {
  //! [Pattern]
  const Assets::Resource sprites(VEK_SOURCE_DIR "/sprites"); // finds "symbol_star" there
  Assets::ImageCache images;
  const boost::shared_ptr<Texture> star = Pattern::PointSpritePattern(Pattern::PointStar, sprites, images, gl);

  gl->LineStipple(2, Pattern::LineStipplePattern(Pattern::LineDotDash)); // each bit two pixels long
  gl->PolygonStipple(Pattern::PolygonStipplePattern(Pattern::FillCrossHatch));
  //! [Pattern]
  int stipple = 0;
  gl->GetIntegerv(RGL_LINE_STIPPLE_PATTERN, &stipple);
  EXPECT_EQ(stipple, 0xE4E4);
}

TEST_F(ColorSnippetPixels, Style) {
  //! [Style]
  Types::FillStyle style;
  style.pattern = Pattern::FillHorizontal;
  style.color = Qt::red;
  style.secondColor = Qt::yellow; // lies under the gaps
  if (Style::HasFill(style))
    Style::Draw(style, gl, [&] { DrawFrame(gl); }); // what the style is for

  Types::LineStyle dashes;
  dashes.pattern = Pattern::LineMedium;
  Style::DrawWithGaps(dashes, gl, [&] { /* a line, of which every other four pixels are drawn */ });
  //! [Style]
  EXPECT_EQ(std::pair(At(30, 4), At(30, 5)), std::pair(QColor(Qt::red), QColor(Qt::yellow)));
}

} // namespace
