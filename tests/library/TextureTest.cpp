#include "library/Texture.h"
#include "tests/support/Test.h"

namespace {

/// 9 × 3 texels, all different.
QImage Checked() {
  QImage image(9, 3, QImage::Format_ARGB32);
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 9; ++x)
      image.setPixel(x, y, qRgba(20 * x, 80 * y, 255 - 20 * x, 255));
  return image;
}

using TextureCalls = RecordingScopeFixture;
using TexturePixels = PixelScopeFixture;

} // namespace

TEST_F(TextureCalls, UploadsOnceAndAppliesItsSettingsAtEachBind) {
  Texture texture(Checked(), gl);
  EXPECT_FALSE(texture.Handle());
  recorder.Clear();
  texture(gl, RGL_TEXTURE0 + 2);
  EXPECT_EQ(Changes(), Calls("ActiveTexture(GL_TEXTURE2); GenTextures(1, [1001]); BindTexture(GL_TEXTURE_2D, 1001); "
                             "PixelStorei(GL_UNPACK_ALIGNMENT, 1); "
                             "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 9, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr); " +
                             SettingCalls("GL_LINEAR", "GL_REPLACE")));
  EXPECT_EQ(texture.Handle()->Name(), 1001u);

  const auto rebound = [&] {
    recorder.Clear();
    texture(gl, RGL_TEXTURE0);
    return recorder.LinesOf({"BindTexture", "TexImage2D", "TexParameteri", "TexEnvi", "Enable"});
  };
  const std::string bind = "BindTexture(GL_TEXTURE_2D, 1001); ";
  texture.sRgb = true; // too late
  texture.wrapS = Texture::Repeat;
  texture.minFilter = Texture::Nearest;
  texture.wrapT = texture.magFilter = 2; // not listed
  texture.environment = Texture::Decal;
  EXPECT_EQ(rebound(), Calls(bind +
                             TexParameters("2D", {"BASE_LEVEL, 0", "MAX_LEVEL, 0", "WRAP_S, GL_REPEAT",
                                                  "MIN_FILTER, GL_NEAREST"}) +
                             "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL); Enable(GL_TEXTURE_2D)"));
  std::swap(texture.wrapS, texture.wrapT);
  std::swap(texture.minFilter, texture.magFilter);
  texture.environment = 3; // not listed
  EXPECT_EQ(rebound(), Calls(bind +
                             TexParameters("2D", {"BASE_LEVEL, 0", "MAX_LEVEL, 0", "WRAP_T, GL_REPEAT",
                                                  "MAG_FILTER, GL_NEAREST"}) +
                             "Enable(GL_TEXTURE_2D)"));

  Texture linear(Checked(), gl);
  linear.sRgb = true;
  linear(gl, RGL_TEXTURE0);
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}),
            Lines{"TexImage2D(GL_TEXTURE_2D, 0, GL_SRGB8_ALPHA8, 9, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)"});
}

TEST_F(TextureCalls, SizesTheImageForTheVersion) {
  const std::tuple<const char*, QSize, Types::Size, bool> cases[] = {
      {"1.5 Vendor", {100, 30}, {128, 32}, true}, {"1.5.2", {64, 64}, {64, 64}, true},
      {"1.4", {65, 1}, {128, 1}, true},           {"1.5", {0, 0}, {1, 1}, false},
      {"2.0", {100, 30}, {100, 30}, true},        {"4.5 (Compatibility)", {100, 30}, {100, 30}, true}};
  const ReportCapture reports;
  for (const auto& [version, size, expected, uploads] : cases) {
    recorder.SetVersion(version);
    recorder.Clear();
    const Texture texture(QImage(size, QImage::Format_ARGB32), gl);
    EXPECT_EQ(Types::Size(texture.Width(), texture.Height()), expected);
    texture(gl, RGL_TEXTURE0);
    const std::string upload = "TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, " + std::to_string(expected.width) + ", " +
                               std::to_string(expected.height) + ", 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)";
    EXPECT_EQ(recorder.LinesOf({"TexImage2D"}), uploads ? Lines{upload} : Lines()) << version;
  }
  EXPECT_EQ(reports.Texts(), Lines());
  Texture({}, gl)(gl, RGL_TEXTURE0);
  EXPECT_EQ(reports.Texts(), Lines{"\"_width > 0 && _height > 0 && \"Invalid Texture Size\"\" - __cdecl "
                                   "Vek::Chart::Library::Texture::Texture(const class QImage &,class "
                                   "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)"});
}

TEST_F(TextureCalls, ScalesWithoutMixingColours) {
  recorder.SetVersion("1.5");
  const Texture texture(Checked(), gl);
  texture(gl, RGL_TEXTURE0);
  const auto& level = recorder.FindTexture(texture.Handle()->Name())->levels.at(0);
  ASSERT_EQ(Types::Size(level.width, level.height), Types::Size(16, 4));
  for (int i = 0; i < 16 * 4; ++i) {
    // The texel of the image that lies below the middle of this one; the lowest row comes first.
    const QRgb nearest = Checked().pixel((2 * (i % 16) + 1) * 9 / 32, 2 - (2 * (i / 16) + 1) * 3 / 8);
    const unsigned char* const texel = level.pixels.data() + 4 * i;
    EXPECT_EQ(qRgba(texel[0], texel[1], texel[2], texel[3]), nearest) << "texel " << i;
  }
}

TEST_F(TexturePixels, ShowsTheImageUpright) {
  gl->Viewport(0, 0, 9, 3);
  Texture texture(Checked(), gl);
  texture.minFilter = texture.magFilter = Texture::Nearest;
  texture(gl, RGL_TEXTURE0);
  gl->Color(Qt::red); // replaced
  DrawTexturedSquare(gl);
  EXPECT_TRUE(SameImage(Corner(9, 3), Checked()));
  texture.wrapS = Texture::Repeat;
  texture.environment = Texture::Modulate;
  texture(gl, RGL_TEXTURE0);
  DrawTexturedSquare(gl, 3);
  EXPECT_EQ(PixelAt(Image(), 4, 0), qRgb(80, 0, 0)) << "the fifth texel again, in red";
}

TEST_F(TexturePixels, TakesEveryFormatAsBytesOfRedGreenBlueAndAlpha) {
  QImage source(5, 3, QImage::Format_ARGB32);
  for (int i = 0; i < 15; ++i)
    source.setPixel(i % 5, i / 5, qRgba(17 * i, 255 - 13 * i, (91 * i) % 256, 255 - 16 * i));
  for (const QImage::Format format :
       {QImage::Format_ARGB32, QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_RGBA8888,
        QImage::Format_RGBA8888_Premultiplied, QImage::Format_RGB888, QImage::Format_RGB16, QImage::Format_Indexed8,
        QImage::Format_Grayscale8, QImage::Format_Mono, QImage::Format_RGBA64}) {
    const QImage image = source.convertToFormat(format);
    const Texture texture(image, gl);
    texture(gl, RGL_TEXTURE0);
    std::vector<unsigned char> bytes(5 * 3 * 4);
    gl->GetTexImage(RGL_TEXTURE_2D, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, bytes.data());
    std::vector<unsigned char> expected;
    for (int y = 2; y >= 0; --y) // GL counts rows from below
      for (int x = 0; x < 5; ++x) {
        const QColor pixel = image.pixelColor(x, y);
        for (const int channel : {pixel.red(), pixel.green(), pixel.blue(), pixel.alpha()})
          expected.push_back(static_cast<unsigned char>(channel));
      }
    EXPECT_EQ(bytes, expected) << "format " << format;
  }
}
