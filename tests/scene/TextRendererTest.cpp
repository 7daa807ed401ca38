#include "scene/TextRenderer.h"
#include "platform/ogl/TextImage.h"
#include "tests/support/Test.h"

#include <QTransform>

namespace {

using TextRendererCalls = RecordingScopeFixture;

/// Pixels that differ from transparent black.
QRect Drawn(const QImage& p_image) {
  QRect drawn;
  for (int y = 0; y < p_image.height(); ++y)
    for (int x = 0; x < p_image.width(); ++x)
      if (p_image.pixel(x, y) != 0)
        drawn |= QRect(x, y, 1, 1);
  return drawn;
}

class TextRendererPixels : public PixelScopeFixture {
public:
  static constexpr int Side = 101;
  TextRendererPixels()
      : PixelScopeFixture({Side, Side}) {
    MakeApplication();
    style.size = 16;
    style.color = Qt::white;
  }
  /// What a string looks like with an anchor in the middle of the frame buffer.
  QImage Draw(const QString& p_text, TextRenderer::Anchor p_anchor, double p_rotation = 0, double p_pointSize = 1) {
    gl->Clear(RGL_COLOR_BUFFER_BIT);
    const auto pixels = gl->PixelProjection({0, 0, Side, Side});
    text.Draw(gl, p_text, {50, 50}, p_anchor, style, p_pointSize, p_rotation);
    return Image();
  }
  TextRenderer text;
  TextRenderer::Style style;
};

} // namespace

// In a process of its own: the other tests make an application, which stays.
TEST_F(TextRendererCalls, WithoutAnApplicationItIsReported) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto drawWithoutFonts = [this] {
    const ReportCapture reports;
    const TextRenderer text;
    text.Draw(gl, "text", {0, 0}, {}, {});
    const bool nothing = TextRenderer::Size("text", {}).isEmpty() && recorder.Lines().empty();
    for (const std::string& report : reports.Texts())
      std::fprintf(stderr, "%s\n", report.c_str());
    std::exit(nothing ? 3 : 1);
  };
  const std::string report = "\"qGuiApp != nullptr && \"Text needs a QGuiApplication[.]\"\" - ";
  EXPECT_EXIT(drawWithoutFonts(), testing::ExitedWithCode(3),
              "^" + report + "void Vek::Chart::Scene::TextRenderer::Draw\n" + report +
                  "QSizeF Vek::Chart::Scene::TextRenderer::Size\n$");
}

TEST_F(TextRendererPixels, DrawsInItsBox) {
  for (const double pointSize : {1.0, 2.0}) {
    const QSize size = (TextRenderer::Size("Agl", style, pointSize) * pointSize).toSize();
    for (const double x : {0.0, 0.5, 1.0})
      for (const double y : {0.0, 0.5, 1.0}) {
        const QRect box(qRound(50 - x * size.width()), Side - qRound(50 - y * size.height()) - size.height(),
                        size.width(), size.height());
        const QRect drawn = Drawn(Draw("Agl", {x, y}, 0, pointSize));
        EXPECT_TRUE(box.contains(drawn)) << x << ", " << y;
        EXPECT_GT(drawn.width(), 0.7 * box.width()) << x << ", " << y;
        EXPECT_GT(drawn.height(), 0.6 * box.height()) << x << ", " << y;
      }
  }
  Ogl::TextFormat format;
  format.size = 16;
  format.margin = {2, 0};
  EXPECT_EQ(TextRenderer::Size("Agl", style), QSizeF(Ogl::TextImageSize("Agl", format)));
  const QSizeF one = TextRenderer::Size("Agl", style), two = TextRenderer::Size("Agl\nAgl", style);
  EXPECT_NEAR(two.height(), 2 * one.height(), 2);
  EXPECT_EQ(two.width(), one.width());
  EXPECT_NEAR(TextRenderer::Size("Agl", style, 8).width(), one.width(), 1.5) << "points, not pixels";
  style.halo = Qt::black;
  EXPECT_EQ(TextRenderer::Size("Agl", style), one) << "with or without a halo";
}

TEST_F(TextRendererPixels, RotatesAboutTheAnchor) {
  const QImage upright = Draw("Ag", {0.5, 0.5});
  for (const int quarters : {1, 2, 3, -1, 4}) {
    // Whole pixels: the box of an odd size is half a pixel to one side.
    const QImage rotated = Draw("Ag", {0.5, 0.5}, 90 * quarters);
    const QImage expected = upright.copy(Drawn(upright)).transformed(QTransform().rotate(-90 * quarters));
    EXPECT_TRUE(SameImage(rotated.copy(Drawn(rotated)), expected, 1)) << quarters;
    const QPoint distance = Drawn(rotated).center() - QRect(0, 0, Side, Side).center();
    EXPECT_LE(std::max(std::abs(distance.x()), std::abs(distance.y())), 3) << quarters;
  }
  for (const double degrees : {30.0, 200.0, -75.0}) {
    const QImage image = Draw("MMM", {0, 0.5}, degrees);
    double x = 0, y = 0;
    for (int row = 0; row < Side; ++row)
      for (int column = 0; column < Side; ++column) {
        x += qAlpha(image.pixel(column, row)) * (column + 0.5 - 50);
        y += qAlpha(image.pixel(column, row)) * (Side - row - 0.5 - 50);
      }
    EXPECT_NEAR(std::remainder(std::atan2(y, x) * 180 / std::acos(-1.0) - degrees, 360), 0, 4) << degrees;
  }
}

TEST_F(TextRendererPixels, SurroundsLettersWithTheHalo) {
  const QImage plain = Draw("II", {0.5, 0.5});
  style.halo = Qt::blue;
  style.haloWidth = 3;
  const QImage haloed = Draw("II", {0.5, 0.5});
  EXPECT_EQ(CountPixels(haloed, Qt::white), CountPixels(plain, Qt::white)) << "the letters are not covered";
  EXPECT_GT(CountPixels(haloed, Qt::blue), 50);
  const QRect inner = Drawn(plain), outer = Drawn(haloed);
  for (const int reach : {inner.left() - outer.left(), outer.right() - inner.right(), inner.top() - outer.top(),
                          outer.bottom() - inner.bottom()}) {
    EXPECT_GE(reach, 2);
    EXPECT_LE(reach, 4);
  }
}

TEST_F(TextRendererCalls, KeepsWhatWasDrawnLast) {
  MakeApplication();
  const TextRenderer text;
  const auto draw = [&](const QString& p_text, double p_size = 8) {
    recorder.Clear();
    text.Draw(gl, p_text, {0, 0}, {}, {p_size});
    EXPECT_EQ(recorder.LinesOf({"DrawArrays"}), Lines{"DrawArrays(GL_TRIANGLES, 0, 6)"});
    return recorder.LinesOf({"TexImage2D"}).size();
  };
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(draw(QString::number(i)), 1U) << i;
  EXPECT_EQ(draw("0") + draw("99"), 0U);
  EXPECT_NE(recorder.FindTexture(1001), nullptr);
  EXPECT_EQ(recorder.FindTexture(1002), nullptr) << "one page for all of them";

  const QStringList large = {"MMMM", "MMMN", "MMNN", "MNNN", "NNNN", "NNNM", "NNMM", "NMMM", "MNMN"};
  const std::size_t pages = TextRenderer::MostTexels / (2048 * 1024); // of as many texels each
  ASSERT_EQ(static_cast<int>(pages) + 1, large.size());
  for (const QString& string : large)
    EXPECT_EQ(draw(string, 512), 1U);
  EXPECT_EQ(recorder.FindTexture(1001), nullptr) << "not drawn for the longest time";
  for (int i = 1; i < large.size(); ++i)
    EXPECT_EQ(draw(large[i], 512), 0U) << "as many as fit";
  EXPECT_EQ(draw(large[0], 512), 1U);
}

TEST_F(TextRendererCalls, ReportsWhatCannotBeDrawn) {
  MakeApplication();
  const ReportCapture reports;
  const TextRenderer text;
  recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {64});
  text.Draw(gl, QString(50, 'M'), {0, 0}, {}, {12});
  ASSERT_EQ(reports.Texts().size(), 1U);
  EXPECT_NE(reports.Texts()[0].find(" texels, the limit is 64\"\" - void Vek::Chart::Scene::TextRenderer::Draw"),
            std::string::npos)
      << reports.Texts()[0];
  recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {4096});
  for (const char* const failing : {"GenTextures", "TexImage2D", "GenBuffers", "MapBufferRange"}) {
    const std::size_t before = reports.Texts().size();
    recorder.Fail(failing);
    text.Draw(gl, "text", {0, 0}, {}, {12});
    EXPECT_GT(reports.Texts().size(), before) << failing;
  }
  for (const double bad : {NaN, Infinity}) {
    text.Draw(gl, "text", {bad, 0}, {}, {12});
    text.Draw(gl, "text", {0, 0}, {}, {12}, 1, bad);
  }
  text.Draw(gl, "", {0, 0}, {}, {12});
  EXPECT_EQ(recorder.LinesOf({"DrawArrays"}), Lines());
  text.Draw(gl, "text", {0, 0}, {}, {12});
  EXPECT_EQ(recorder.LinesOf({"DrawArrays"}).size(), 1U) << "tried again";
}
