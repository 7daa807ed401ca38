#include "platform/ogl/Text.h"
#include "platform/ogl/TextImage.h"
#include "tests/support/Test.h"

using Ogl::Text;

namespace {

using TextCalls = RecordingScopeFixture;
using TextPixels = PixelScopeFixture;

} // namespace

// In a process of its own: the other tests make an application, which stays.
TEST_F(TextCalls, WithoutAnApplicationItIsReported) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto drawWithoutFonts = [this] {
    Text text("text");
    const ReportCapture reports;
    text(gl);
    const bool empty = text.Image().isNull() && recorder.Lines().empty();
    MakeApplication();
    const bool later = !text.Image().isNull();
    for (const std::string& report : reports.Texts())
      std::fprintf(stderr, "%s\n", report.c_str());
    std::exit(empty && later ? 3 : 1);
  };
  const std::string report = "\"qGuiApp != nullptr && \"Text needs a QGuiApplication[.]\"\" - const class QImage "
                             "&__cdecl Vek::Chart::Ogl::Text::Image[(]void[)]\n";
  EXPECT_EXIT(drawWithoutFonts(), testing::ExitedWithCode(3), "^(QStandardPaths.*\n)?" + report + report + "$");
}

TEST(Text, PaintsWhatItsPropertiesSay) {
  MakeApplication();
  EXPECT_TRUE(Text().Image().isNull()) << "empty";

  Text text("HH");
  text.size = 40;
  text.firstColor = QColor(Qt::red);
  text.secondColor = QColor(Qt::transparent);
  const QImage plain = text.Image();
  EXPECT_GT(CountPixels(plain, Qt::red), 100);
  EXPECT_EQ(qAlpha(plain.pixel(0, 0)), 0);

  text.secondColor = QColor(Qt::blue);
  const QImage outlined = text.Image();
  EXPECT_GT(CountPixels(outlined, Qt::blue), 100);
  EXPECT_EQ(CountPixels(outlined, Qt::red), CountPixels(plain, Qt::red)) << "the outline lies behind the letters";
  EXPECT_EQ(qAlpha(outlined.pixel(0, 0)), 0);
  for (int x = 0; x < outlined.width(); ++x) {
    EXPECT_LT(qAlpha(outlined.pixel(x, 0)), 255) << "cut off at the top";
    EXPECT_LT(qAlpha(outlined.pixel(x, outlined.height() - 1)), 255) << "cut off at the bottom";
  }

  text.flag = true;
  const QImage boxed = text.Image();
  EXPECT_EQ(boxed.pixel(0, 0), QColor(Qt::blue).rgba());
  EXPECT_EQ(boxed.size(), plain.size());
  EXPECT_EQ(CountPixels(boxed, Qt::red), CountPixels(plain, Qt::red));

  text.text = "HH\nHH";
  EXPECT_EQ(text.Image().width(), plain.width());
  EXPECT_NEAR(CountPixels(text.Image(), Qt::red), 2 * CountPixels(plain, Qt::red), 10);
}

TEST(TextImage, IsAsLargeAsItsLettersAndMargin) {
  MakeApplication();
  Ogl::TextFormat format;
  format.size = 24;
  const QSize plain = Ogl::TextImageSize("Ag", format);
  const QImage image = Ogl::TextImage("Ag", format);
  EXPECT_EQ(image.size(), plain);
  EXPECT_GT(CountPixels(image, Qt::black), 20);
  format.margin = {3, 5};
  const QImage wide = Ogl::TextImage("Ag", format);
  EXPECT_EQ(wide.size(), plain + QSize(6, 10));
  EXPECT_TRUE(SameImage(wide.copy(3, 5, plain.width(), plain.height()), image, 8)) << "the same letters elsewhere";
  format.bold = true;
  EXPECT_GT(Ogl::TextImageSize("Ag", format).width(), wide.width());
  EXPECT_EQ(Ogl::TextImage("", {}).size(), QSize(1, Ogl::TextImageSize("A", {}).height()));

  Text text("Ag"); // the same letters with a text's margin
  text.size = 24;
  format = {};
  format.size = 24;
  format.margin = {6, 6};
  EXPECT_EQ(text.Image(), Ogl::TextImage("Ag", format));
}

TEST(Text, HoldsItsSizeWithinTheLimits) {
  MakeApplication();
  std::vector<int> heights;
  for (const unsigned int size : {0U, 2U, 12U, 96U, 0xFFFFFFFFU}) {
    Text text("x");
    text.size = size;
    heights.push_back(text.Image().height());
  }
  EXPECT_TRUE(heights[0] == heights[1] && heights[1] < heights[2] && heights[2] < heights[3] &&
              heights[3] == heights[4])
      << testing::PrintToString(heights);
}

TEST_F(TextCalls, UploadsAfterAChangeOnly) {
  MakeApplication();
  Text text("text");
  text(gl);
  const std::string width = std::to_string(text.Image().width()), height = std::to_string(text.Image().height());
  EXPECT_EQ(recorder.LinesOf({"PushAttrib", "PopAttrib", "TexParameteri", "Begin", "End", "TexCoord2d", "Vertex2i"}),
            Calls("PushAttrib(GL_CURRENT_BIT|GL_POLYGON_BIT|GL_ENABLE_BIT|GL_COLOR_BUFFER_BIT|GL_TEXTURE_BIT); " +
                  TexParameters("2D", {"MIN_FILTER, GL_NEAREST", "MAG_FILTER, GL_NEAREST", "WRAP_S, GL_CLAMP_TO_EDGE",
                                       "WRAP_T, GL_CLAMP_TO_EDGE"}) +
                  "Begin(GL_QUADS); TexCoord2d(0, 0); Vertex2i(0, 0); TexCoord2d(1, 0); Vertex2i(" + width +
                  ", 0); TexCoord2d(1, 1); Vertex2i(" + width + ", " + height + "); TexCoord2d(0, 1); Vertex2i(0, " +
                  height + "); End(); PopAttrib()"));
  text.firstColor = QColor(Qt::black); // it is
  text(gl);
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).size(), 1u);

  Text copy = text;
  recorder.Clear();
  copy(gl);
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}), Lines()) << "copies share what is equal";
  copy.text = "other";
  copy(gl);
  EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).size(), 1u);
  recorder.Clear();
  text(gl);
  EXPECT_EQ(recorder.LinesOf({"BindTexture"}), Lines{"BindTexture(GL_TEXTURE_2D, 1001)"}) << "and no more than that";

  text.position = {std::numeric_limits<int>::max(), 0}; // beyond any viewport
  recorder.Clear();
  text(gl);
  EXPECT_EQ(recorder.LinesOf({"Vertex2i"})[1], "Vertex2i(2147483647, 0)");
}

TEST_F(TextCalls, AnImageThatCannotBeUploadedIsReported) {
  MakeApplication();
  Text text("text");
  const std::string size = std::to_string(text.Image().width()) + " x " + std::to_string(text.Image().height());
  const std::string end = " - void __cdecl Vek::Chart::Ogl::Text::operator ()(class Vek::Chart::Utility::Scoped<class "
                          "Vek::Chart::Ogl::Rgl> &)";
  const ReportCapture reports;
  recorder.Fail("TexImage2D");
  text(gl);
  recorder.SetInteger(RGL_MAX_TEXTURE_SIZE, {8});
  text(gl);
  EXPECT_EQ(reports.Texts(), (Lines{"WARNING: GL_OUT_OF_MEMORY" + end, "\"largest <= GL_MAX_TEXTURE_SIZE && \"" + size +
                                                                           " texels, the limit is 8\"\"" + end}));
  EXPECT_EQ(recorder.LinesOf({"Begin"}), Lines());
}

TEST_F(TextPixels, StandsAtItsPositionTexelForPixelWhateverTheHostHasSet) {
  MakeApplication();
  const auto pixels = gl->PixelProjection({0, 0, FrameSize.width, FrameSize.height});
  Text text("Ag");
  text.size = 13;
  text.position = {7, 5};
  text.firstColor = QColor(200, 100, 50);
  text.secondColor = QColor(20, 40, 60);
  text.flag = true;
  for (const Ogl::GlEnum leftOn : {RGL_LIGHTING, RGL_POLYGON_STIPPLE, RGL_DEPTH_TEST, RGL_TEXTURE_3D})
    gl->Enable(leftOn);
  gl->PolygonStipple(std::array<unsigned char, 128>{1}.data()); // next to nothing
  gl->DepthFunc(RGL_NEVER);
  gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_LINE);
  gl->PixelStorei(RGL_UNPACK_SKIP_ROWS, 3);
  const auto other = gl->GenTexture();
  gl->ActiveTexture(RGL_TEXTURE0 + 1);
  gl->Bind(other, Rgl::Sampler2D);
  gl->BlendFunc(RGL_DST_COLOR, RGL_ZERO);
  gl->Color(Qt::green);
  const auto before = StateOf(gl);
  text(gl);
  EXPECT_EQ(StateOf(gl), before);
  gl->PixelStorei(RGL_UNPACK_SKIP_ROWS, 0);
  const QImage image = text.Image().convertToFormat(QImage::Format_ARGB32), frame = Image();
  ASSERT_TRUE(image.width() + 7 < FrameSize.width && image.height() + 5 < FrameSize.height);
  EXPECT_TRUE(SameImage(frame.copy(7, FrameSize.height - 5 - image.height(), image.width(), image.height()), image, 1));
  for (const auto& [x, y] : {std::pair(6, 5), {7, 4}, {7 + image.width(), 5}})
    EXPECT_EQ(qAlpha(PixelAt(frame, x, y)), 0) << x << ", " << y;
}
