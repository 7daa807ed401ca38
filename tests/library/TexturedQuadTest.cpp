#include "library/TexturedQuad.h"
#include "tests/support/Test.h"

namespace {

using Rect = Types::Viewport<0>;

QImage Plain(int p_width, int p_height, const QColor& p_color = Qt::red) {
  QImage image(p_width, p_height, QImage::Format_ARGB32);
  image.fill(p_color);
  return image;
}

boost::shared_ptr<Texture> Layer(Scope& p_gl, std::uint32_t p_environment, const QImage& p_image = Plain(9, 3)) {
  boost::shared_ptr<Texture> texture(new Texture(p_image, p_gl));
  texture->minFilter = texture->magFilter = Texture::Nearest;
  texture->environment = p_environment;
  return texture;
}

TexturedQuad Quad(const Rect& p_rect, std::uint32_t p_border = 0) {
  TexturedQuad quad;
  quad.rect = p_rect;
  quad.border = p_border;
  return quad;
}

class TexturedQuadCalls : public RecordingScopeFixture {
protected:
  /// The calls that send corners.
  Lines Corners(const TexturedQuad& p_quad, const QImage& p_image, const std::vector<std::string>& p_calls) {
    const Texture texture(p_image, gl);
    recorder.Clear();
    p_quad(recorder.Handle(), texture);
    return recorder.LinesOf(p_calls);
  }
};

using TexturedQuadPixels = PixelScopeFixture;

const std::string OneQuad = "Begin(GL_QUADS); TexCoord2d(0, 0); Vertex2i(1, 2); TexCoord2d(1, 0); Vertex2i(4, 2); "
                            "TexCoord2d(1, 1); Vertex2i(4, 6); TexCoord2d(0, 1); Vertex2i(1, 6); End(); ";

std::string Bind(unsigned int p_name, const std::string& p_environment) {
  return "ActiveTexture(GL_TEXTURE0); BindTexture(GL_TEXTURE_2D, " + std::to_string(p_name) + "); " +
         SettingCalls("GL_NEAREST", p_environment) + "; ";
}

} // namespace

TEST_F(TexturedQuadCalls, OneTexture) {
  const auto texture = Layer(gl, Texture::Modulate);
  (*texture)(gl, RGL_TEXTURE0);
  TexturedQuad quad = Quad({1.9f, 2.5f, 3, 4});
  quad.color = QColor(255, 0, 51, 102);
  recorder.Clear();
  quad(recorder.Handle(), *texture);
  EXPECT_EQ(Changes(), Calls("Color4d(1, 0, 0.2, 0.4); PushAttrib(GL_ENABLE_BIT|GL_TEXTURE_BIT); " +
                             Bind(1001, "GL_MODULATE") + OneQuad + "PopAttrib()"));
}

TEST_F(TexturedQuadCalls, Layers) {
  // The lowest layer's setting does not count; 7 leaves everything as it is.
  std::vector<boost::shared_ptr<Texture>> textures;
  for (const std::uint32_t environment : {1U, 2U, 1U, 0U, 7U}) {
    textures.push_back(Layer(gl, environment));
    (*textures.back())(gl, RGL_TEXTURE0);
  }
  recorder.Clear();
  Quad({1, 2, 3, 4})(recorder.Handle(), textures);
  const std::string always = "DepthFunc(GL_ALWAYS); ";
  const std::string replaced = "TexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE); " + OneQuad;
  EXPECT_EQ(Changes(),
            Calls("Color4d(1, 1, 1, 1); PushAttrib(GL_DEPTH_BUFFER_BIT|GL_ENABLE_BIT|GL_TEXTURE_BIT); " +
                  Bind(1001, "GL_DECAL") + OneQuad + //
                  always + "Disable(GL_BLEND); " + Bind(1002, "GL_REPLACE") + replaced + always +
                  "Enable(GL_BLEND); BlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ZERO, GL_ONE); " +
                  Bind(1003, "GL_DECAL") + replaced + always +
                  "Enable(GL_BLEND); BlendFuncSeparate(GL_DST_COLOR, GL_ZERO, GL_DST_ALPHA, GL_ZERO); " +
                  Bind(1004, "GL_MODULATE") + replaced + always + Bind(1005, "") + replaced + "PopAttrib()"));
}

TEST_F(TexturedQuadCalls, NothingWithoutASize) {
  const auto texture = Layer(gl, 0);
  for (const Rect& rect :
       {Rect(0, 0, 0, 5), {0, 0, 5, 0}, {0, 0, -1, 5}, {0, 0, 5, -1}, {0, 0, NAN, 5}, {0, 0, 5, NAN}}) {
    Quad(rect)(recorder.Handle(), *texture);
    Quad(rect, 3)(recorder.Handle(), {texture, texture});
  }
  EXPECT_EQ(Changes(), Lines());
}

TEST_F(TexturedQuadCalls, LeavesOutAMissingLayer) {
  const auto texture = Layer(gl, Texture::Replace);
  const ReportCapture reports;
  Quad({1, 2, 3, 4})(recorder.Handle(), {{}, texture});
  EXPECT_EQ(reports.Texts(),
            Lines{"\"void*(obj)\" - void __cdecl Vek::Chart::Library::TexturedQuad::operator ()(const class "
                  "Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &,class std::vector<class "
                  "boost::shared_ptr<class Vek::Chart::Library::Texture>,class std::allocator<class "
                  "boost::shared_ptr<class Vek::Chart::Library::Texture> > >) const"});
  EXPECT_EQ(recorder.LinesOf({"Vertex2i"}).size(), 4u);
}

TEST_F(TexturedQuadCalls, NinePatch) {
  // The rectangle ends at trunc(trunc(2.9) + 50.2) = 52, not at 53.
  const std::string s[] = {"0", "0.15625", "0.84375", "1"}; // 10 of 64 texels
  const std::string t[] = {"0", "0.3125", "0.6875", "1"};   // 10 of 32
  const std::string x[] = {"2", "12", "42", "52"}, y[] = {"3", "13", "33", "43"};
  Lines expected;
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column)
      for (const auto& [i, j] : {std::pair(column, row), {column + 1, row}, {column + 1, row + 1}, {column, row + 1}}) {
        expected.push_back("TexCoord2d(" + s[i] + ", " + t[j] + ")");
        expected.push_back("Vertex2i(" + x[i] + ", " + y[j] + ")");
      }
  EXPECT_EQ(Corners(Quad({2.9f, 3, 50.2f, 40}, 10), Plain(64, 32), {"TexCoord2d", "Vertex2i"}), expected);
}

TEST_F(TexturedQuadCalls, PixelsOfEachQuad) {
  const struct {
    const char* name;
    Rect rect;
    std::uint32_t border;
    Lines expected; ///< lower left and upper right pixel of each quad
  } cases[] = {
      {"truncated at both ends", {1.75f, 1.75f, 3.5f, 1.125f}, 0, {"1 1-5 2"}},
      {"truncated toward zero", {-1.75f, -0.5f, 3, 4}, 0, {"-1 0-1 3"}},
      {"summed in single precision", {16777216, 0, 1, 1}, 0, {"16777216 0-16777216 1"}}, // 2^24 + 1 is no float
      {"far out", {-1e20f, 0, 2e20f, 1}, 0, {"-2147483648 0-2147483647 1"}},
      {"no middle column, whose centre is sent all the same",
       {0, 0, 15, 40},
       10,
       {"0 0-10 10", "10 0-15 10", "0 10-10 30", "10 10-10 30", "10 10-15 30", "0 30-10 40", "10 30-15 40"}},
      {"no middle row",
       {0, 0, 40, 15},
       10,
       {"0 0-10 10", "10 0-30 10", "30 0-40 10", "0 10-10 15", "10 10-30 15", "30 10-40 15"}},
      {"summed in single precision, so without a width",
       {16777216, 0, 1, 15},
       10,
       {"16777216 0-16777226 10", "16777226 0-16777216 10", "16777216 10-16777226 15", "16777226 10-16777216 15"}},
      {"just without a middle", {0, 0, 20, 20}, 10, {"0 0-10 10", "10 0-20 10", "0 10-10 20", "10 10-20 20"}},
      {"smaller than a border", {5, 5, 4, 4}, 10, {"5 5-15 15", "15 5-9 15", "5 15-15 9", "15 15-9 9"}},
  };
  for (const auto& c : cases) {
    Lines pixels, quads;
    for (const std::string& line : Corners(Quad(c.rect, c.border), Plain(64, 64), {"Vertex2i"}))
      pixels.push_back(std::regex_replace(line, std::regex(".*[(](.*), (.*)[)]"), "$1 $2"));
    for (std::size_t i = 0; i < pixels.size(); i += 4)
      quads.push_back(pixels[i] + "-" + pixels[i + 2]);
    EXPECT_EQ(quads, c.expected) << c.name;
  }
  EXPECT_EQ(Corners(Quad({0, 0, 4, 4}, 0xFFFFFFFFU), Plain(64, 64), {"Vertex2i"}).size(), 16u) << "a border beyond all";
  const ReportCapture reports;
  EXPECT_EQ(Corners(Quad({0, 0, 40, 40}, 10), QImage(), {"Vertex2i"}).size(), 36u) << "coordinates may be infinite";
}

TEST_F(TexturedQuadPixels, BlendsLayers) {
  const auto pixels = gl->PixelProjection({0, 0, FrameSize.width, FrameSize.height});
  gl->Enable(RGL_DEPTH_TEST); // without ALWAYS no further layer would pass: all have one depth
  const auto lowest = Layer(gl, 2, Plain(4, 4, QColor(100, 100, 50, 204)));
  const struct {
    const char* name;
    std::uint32_t environment;
    QColor over, expected;
  } cases[] = {
      {"replaced", 2, QColor(10, 20, 30, 40), QColor(10, 20, 30, 40)},
      {"blended by alpha, whose own alpha is kept", 1, QColor(255, 0, 85, 51), QColor(131, 80, 57, 204)},
      {"multiplied", 0, QColor(51, 255, 0, 128), QColor(20, 100, 0, 102)},
  };
  TexturedQuad quad = Quad({2, 2, 20, 10});
  quad.color = Qt::red; // for the first layer only, and its environment is Replace
  for (const auto& c : cases) {
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    quad(Handle(), {lowest, Layer(gl, c.environment, Plain(5, 3, c.over))});
    EXPECT_TRUE(SameColor(PixelAt(Image(), 10, 6), c.expected, 1)) << c.name;
    EXPECT_EQ(qAlpha(PixelAt(Image(), 22, 6)), 0) << c.name;
  }
}
