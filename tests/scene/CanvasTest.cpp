#include "scene/Canvas.h"
#include "platform/ogl/BufferPool.h"
#include "scene/Background.h"
#include "tests/support/Test.h"

namespace {

using CanvasCalls = RecordingScopeFixture;

class CanvasPixels : public PixelScopeFixture {
public:
  CanvasPixels() { MakeApplication(); }

  /// The rows of a viewport with 7 × 4 points of two pixels, from above and without what is empty at their ends, after
  /// something was drawn in white of half opacity over black: '#' for what was drawn once, '?' for what was drawn twice
  /// or by a part.
  std::string Drawn(const std::function<void(Canvas&)>& p_draw) {
    gl->ClearColor(Qt::black);
    gl->Clear(RGL_COLOR_BUFFER_BIT);
    {
      Canvas canvas(gl, {20, 10, 14, 8}, text, 2);
      p_draw(canvas);
    }
    const QImage image = Image().convertToFormat(QImage::Format_RGB32); // without alpha
    const QRect part(20, FrameSize.height - 18, 14, 8);
    QImage around = image;
    for (int y = part.top(); y <= part.bottom(); ++y)
      for (int x = part.left(); x <= part.right(); ++x)
        around.setPixelColor(x, y, Qt::black);
    EXPECT_EQ(Map(around, Qt::white, Qt::black).find_first_not_of(".\n"), std::string::npos) << "beside the viewport";
    return std::regex_replace(std::regex_replace(Map(image.copy(part), grey, Qt::black), std::regex("[.]*\n"), "/"),
                              std::regex("^/+$"), "nothing");
  }

  TextRenderer text;
  const QColor color{255, 255, 255, 128};
  const QColor grey{128, 128, 128};
};

} // namespace

#define VEK_ON(...) [&](Canvas& p_canvas) { p_canvas.__VA_ARGS__; }

TEST_F(CanvasPixels, DrawsInPoints) {
  const std::string box = ".############/", sides = ".##........##/", ends = ".##......##/";
  const std::tuple<const char*, std::function<void(Canvas&)>, std::string> cases[] = {
      {"fill", VEK_ON(Fill({1, 1, 3, 2}, color)), "////..####/..####///"},
      {"a frame, each pixel once", VEK_ON(Frame({1, 1, 6, 3}, 1, color)),
       "/" + box + box + sides + sides + box + box + "/"},
      {"line", VEK_ON(Line({1, 2}, {6, 2}, 2, color)), "//..##########/..##########/..##########/..##########///"},
      {"a line of at least one pixel", VEK_ON(Line({1, 1.1}, {6, 1.1}, 0.01, color)), "/////..##########///"},
      {"no line from a point to itself", VEK_ON(Line({1, 2}, {1, 2}, 2, color)), "nothing"},
      {"mitred joints, each pixel once", VEK_ON(Polyline({{1, 0.5}, {1, 3}, {1, 3}, {5, 3}, {5, 0.5}}, 1, color)),
       "/.##########/.##########/" + ends + ends + ends + ends + "/"},
      {"an interrupted line", VEK_ON(Polyline({{1, 2}, {2, 2}, {NaN, 2}, {4, 2}, {6, 2}, {6, NaN}, {6, 1}}, 1, color)),
       "///..##....####/..##....####////"},
      {"polygon", VEK_ON(Polygon({{1, 1}, {4, 1}, {4, 2}, {1, 2}}, color)), "////..######/..######///"},
      {"no polygon of two corners", VEK_ON(Polygon({{1, 1}, {4, 1}}, color)), "nothing"},
  };
  for (const auto& [name, draw, expected] : cases)
    EXPECT_EQ(Drawn(draw), expected) << name;
}

TEST_F(CanvasPixels, LimitsMiters) {
  // A hairpin, whose miter would reach to x = 49 points.
  const std::string drawn = Drawn([&](Canvas& p_canvas) {
    p_canvas.Polyline({{1, 1.9}, {4, 2}, {1, 2.1}}, 1, Qt::white);
  });
  const QImage image = Image();
  EXPECT_EQ(QColor(image.pixel(20 + 6, FrameSize.height - 14)), QColor(Qt::white));
  for (int x = 20 + 11; x < 34; ++x)
    for (int y = FrameSize.height - 18; y < FrameSize.height - 10; ++y)
      ASSERT_EQ(QColor(image.pixel(x, y)), QColor(Qt::black)) << x << "\n" << drawn;
}

TEST_F(CanvasPixels, DrawsImagesUpright) {
  QImage image(2, 2, QImage::Format_ARGB32);
  image.setPixelColor(0, 0, Qt::red);
  image.setPixelColor(1, 0, Qt::green);
  image.setPixelColor(0, 1, Qt::blue);
  image.setPixelColor(1, 1, QColor(255, 255, 255, 0)); // transparent
  Drawn([&](Canvas& p_canvas) { p_canvas.Image({1, 1, 2, 2}, image); });
  EXPECT_EQ(At(22, 13), QColor(Qt::red));
  EXPECT_EQ(At(23, 13), QColor(Qt::green));
  EXPECT_EQ(At(22, 12), QColor(Qt::blue));
  EXPECT_EQ(At(23, 12), QColor(Qt::black));
  Library::Texture texture(image, gl);
  texture.environment = Library::Texture::Modulate;
  Drawn([&](Canvas& p_canvas) {
    p_canvas.Fill({0, 0, 1, 1}, Qt::green);
    p_canvas.Image({1, 1, 2, 2}, texture);
  });
  EXPECT_EQ(At(22, 13), QColor(Qt::red)) << "its colours, whatever was drawn before";
  Drawn([&](Canvas& p_canvas) { p_canvas.Fill({0, 0, 7, 4}, Qt::black, Qt::white); });
  for (int y = 0; y < 8; ++y)
    EXPECT_NEAR(At(25, 10 + y).red(), (y + 0.5) * 255 / 8, 1.5) << "a gradient upwards";
}

TEST_F(CanvasPixels, PutsStringsAtPointsOfTheScene) {
  View view;
  view.viewport = {20, 10, 14, 8};
  view.camera.distance = 10;
  const Types::Vector3_Base<double> point(0.3, 0, 0.4);
  const Camera::Pixel pixel = view.Project(point);
  ASSERT_TRUE(pixel.visible);
  const TextStyle style{4, Qt::white};
  Drawn([&](Canvas& p_canvas) { p_canvas.TextAt("x", view, point, {0.5, -0.5}, {0.5, 0.5}, style); });
  const QImage projected = Image();
  Drawn([&](Canvas& p_canvas) {
    p_canvas.Text("x", {(pixel.x - 20) / 2 + 0.5, (pixel.y - 10) / 2 - 0.5}, {0.5, 0.5}, style);
  });
  EXPECT_EQ(Image(), projected);
  const auto behind = [&](Canvas& p_canvas) {
    p_canvas.TextAt("x", view, view.camera.Eye() * 2.0, {12, 6}, {0.5, 0.5}, style);
  };
  EXPECT_EQ(Drawn(behind), "nothing") << "behind the camera";
  EXPECT_NE(Image(), projected);
}

TEST_F(CanvasPixels, HasItsSizeAndPartsInPoints) {
  const Canvas canvas(gl, {20, 10, 30, 18}, text, 1.5);
  EXPECT_EQ(std::pair(canvas.Width(), canvas.Height()), std::pair(20.0, 12.0));
  EXPECT_EQ(canvas.Part({1, 2, 7, 11}), Types::Viewport<0>(21, 13, 9, 13)) << "whole pixels";
  EXPECT_EQ(Canvas::ThousandthOfHeight({0, 0, 800, 600}), 0.6);
}

/// All state that the host has set, whatever is drawn; and the same pixels, whatever it has set.
TEST_F(CanvasPixels, NeitherChangesNorTakesTheHostsState) {
  const auto draw = [&] {
    DrawBackground(gl, {2, 3, 40, 30}, Theme::Dark());
    Canvas canvas(gl, {2, 3, 40, 30}, text, 1);
    canvas.Fill({1, 1, 12, 8}, color, Qt::red);
    canvas.Polyline({{3, 3}, {20, 20}, {30, 4}}, 2, color);
    QImage image(5, 3, QImage::Format_ARGB32);
    image.fill(Qt::yellow);
    canvas.Image({20, 10, 32, 28}, image);
    Theme theme;
    canvas.Text("Ag", {4, 18}, {0, 0.5}, theme.WithHalo(theme.SmallStyle()));
    canvas.Text("Up", {33, 2}, {0, 1}, theme.SmallStyle(), 90);
  };
  draw(); // Qt paints letters slightly differently for the first time
  text = TextRenderer();
  draw();
  const QImage expected = Image().copy(2, FrameSize.height - 33, 40, 30);
  text = TextRenderer(); // uploads again
  gl->ClearColor(Qt::magenta);
  gl->Clear(RGL_COLOR_BUFFER_BIT);
  for (const Ogl::GlEnum leftOn :
       {RGL_LIGHTING, RGL_FOG, RGL_DEPTH_TEST, RGL_STENCIL_TEST, RGL_CULL_FACE, RGL_ALPHA_TEST, RGL_COLOR_LOGIC_OP,
        RGL_TEXTURE_1D, RGL_TEXTURE_2D, RGL_TEXTURE_3D, RGL_TEXTURE_GEN_S, RGL_POLYGON_STIPPLE, RGL_CLIP_PLANE0})
    gl->Enable(leftOn);
  gl->PolygonStipple(std::array<unsigned char, 128>{1}.data()); // next to nothing
  gl->DepthFunc(RGL_NEVER);
  gl->DepthMask(false);
  gl->StencilFunc(RGL_NEVER, 1, ~0U);
  gl->StencilMask(0);
  gl->AlphaFunc(RGL_NEVER, 0);
  gl->ClearDepth(0.5);
  gl->CullFace(RGL_FRONT_AND_BACK);
  gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_LINE);
  gl->ShadeModel(RGL_FLAT);
  gl->BlendFunc(RGL_DST_COLOR, RGL_ZERO);
  gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_DECAL);
  gl->PixelStorei(RGL_UNPACK_SKIP_ROWS, 2);
  gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 8);
  gl->MatrixMode(RGL_TEXTURE);
  gl->Viewport({1, 2, 3, 4});
  gl->Color(Qt::green);
  const auto zeros = gl->GetBufferPool().CreateBuffer<float>(3000, Ogl::BufferUsage::Default);
  gl->BindBuffer(RGL_ARRAY_BUFFER, zeros.Name());
  gl->EnableVertexAttribArray(0); // instead of gl_Vertex
  gl->VertexAttribPointer(0, 3, RGL_FLOAT, 0, 0, nullptr);
  const auto before = StateOf(gl);
  draw();
  EXPECT_EQ(StateOf(gl), before);
  gl->DisableVertexAttribArray(0);
  gl->BindBuffer(RGL_ARRAY_BUFFER, 0);
  gl->PixelStorei(RGL_UNPACK_SKIP_ROWS, 0);
  gl->MatrixMode(RGL_MODELVIEW);
  for (int x = 2; x < 42; ++x)
    ASSERT_EQ(At(x, 12).alpha(), 255) << x << ": what is opaque stays so";
  EXPECT_TRUE(SameImage(Image().copy(2, FrameSize.height - 33, 40, 30), expected, 3))
      << "but for letters painted again";
}

TEST_F(CanvasPixels, BackgroundStaysInItsViewport) {
  gl->ClearColor(Qt::blue);
  gl->ClearDepth(0.25);
  gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
  gl->DepthMask(false);
  Theme theme;
  theme.backgroundTop = theme.backgroundBottom = QColor(10, 20, 30);
  DrawBackground(gl, {5, 6, 20, 10}, theme);
  const QImage image = Image();
  for (const auto& [x, y, inside] :
       {std::tuple(5, 6, true), {24, 15, true}, {4, 6, false}, {25, 15, false}, {24, 16, false}}) {
    float depth = -1;
    gl->ReadPixels(x, y, 1, 1, RGL_DEPTH_COMPONENT, RGL_FLOAT, &depth);
    EXPECT_NEAR(depth, inside ? 1 : 0.25, 1e-5) << x << ", " << y;
    EXPECT_EQ(QColor::fromRgba(PixelAt(image, x, y)), inside ? QColor(10, 20, 30) : QColor(Qt::blue)) << x << ", " << y;
  }
}

TEST_F(CanvasCalls, LeavesNothingBehind) {
  MakeApplication();
  const TextRenderer text;
  {
    Canvas canvas(gl, {0, 0, 30, 20}, text, 2);
    canvas.Image({0, 0, 1, 1}, QImage(3, 3, QImage::Format_ARGB32));
    EXPECT_EQ(recorder.LinesOf({"DeleteTextures"}).size(), 1U) << "made for the call";
    const Library::Texture kept(QImage(3, 3, QImage::Format_ARGB32), gl);
    recorder.Clear();
    canvas.Image({0, 0, 1, 1}, kept);
    canvas.Image({0, 0, 1, 1}, kept);
    EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).size(), 1U);
  }
  const ReportCapture reports;
  { const Canvas empty(gl, {0, 0, 0, 20}, text); }
  EXPECT_EQ(reports.Texts().size(), 1U);
}

TEST_F(CanvasCalls, DrawsInTheOrderOfItsCallsWithFewDrawCalls) {
  MakeApplication();
  const TextRenderer text;
  const auto drawn = [&] { return recorder.LinesOf({"DrawArrays", "Begin"}); };
  {
    Canvas canvas(gl, {0, 0, 30, 20}, text, 2);
    recorder.Clear();
    canvas.Frame({0, 0, 9, 9}, 1, Qt::red);
    canvas.Text("a", {1, 1}, {}, Theme().WithHalo(Theme().SmallStyle()));
    canvas.Polyline({{0, 0}, {4, 4}, {8, 0}}, 1, Qt::red);
    EXPECT_EQ(drawn(), Lines());
    canvas.Flush();
    EXPECT_EQ(drawn(), Calls("DrawArrays(GL_TRIANGLES, 0, 48)")) << "frame, halo, letter and line";
    EXPECT_EQ(recorder.LinesOf({"TexImage2D"}).size(), 1U) << "halo and letter";
    recorder.Clear();
    canvas.Flush();
    EXPECT_EQ(recorder.Lines(), Lines());
    // "W" has a page of its own.
    for (const auto& [string, size] : {std::pair("a", 9), {"W", 600}, {"a", 9}}) {
      canvas.Text(string, {1, 1}, {}, {static_cast<double>(size)});
      canvas.Fill({0, 0, 1, 1}, Qt::red);
    }
    canvas.Image({0, 0, 1, 1}, QImage(3, 3, QImage::Format_ARGB32));
    EXPECT_EQ(drawn(), Calls("DrawArrays(GL_TRIANGLES, 0, 12); DrawArrays(GL_TRIANGLES, 12, 12); "
                             "DrawArrays(GL_TRIANGLES, 24, 12); DrawArrays(GL_QUADS, 0, 4)"));
    recorder.Clear();
    canvas.Fill({0, 0, 1, 1}, Qt::red);
  }
  EXPECT_EQ(drawn(), Lines{"DrawArrays(GL_TRIANGLES, 0, 6)"}) << "at its end";
}
