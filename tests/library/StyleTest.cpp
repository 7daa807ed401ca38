#include "library/Style.h"

#include "library/Pattern.h"
#include "tests/support/Test.h"

namespace {

using DrawFunction = boost::function<void(Scope&)>;

const QColor Clear(255, 0, 0, 0);
const QColor Faint(0, 0, 0, 1);

template <class Record>
Record Colored(Record p_style, const QColor& p_color, const QColor& p_second) {
  p_style.color.Set(p_color);
  p_style.secondColor.Set(p_second);
  return p_style;
}

Types::FillStyle Fill(std::uint32_t p_pattern, const QColor& p_color, const QColor& p_second = Clear) {
  Types::FillStyle style;
  style.pattern.Set(p_pattern);
  return Colored(style, p_color, p_second);
}

Types::LineStyle Line(std::uint32_t p_pattern, float p_width, const QColor& p_color, const QColor& p_second = Clear) {
  Types::LineStyle style;
  style.pattern.Set(p_pattern);
  style.width.Set(p_width);
  return Colored(style, p_color, p_second);
}

Types::SymbolStyle Symbol(std::uint32_t p_shape, std::uint32_t p_size, const QColor& p_color, const QColor& p_second) {
  Types::SymbolStyle style;
  style.shape.Set(p_shape);
  style.size.Set(p_size);
  return Colored(style, p_color, p_second);
}

const std::string FirstPass = "Color4d(1, 0, 0, 1)", SecondPass = "Color4d(0, 0, 1, 1)", Draw = "DepthFunc(GL_LESS)";

class StyleCalls : public RecordingScopeFixture {
protected:
  template <class Record>
  Lines Drawn(const Record& p_style) {
    recorder.Clear();
    DrawFunction draw = [](Scope& p_gl) { p_gl->DepthFunc(RGL_LESS); };
    Style::DrawInternal(p_style, gl, draw);
    return Changes();
  }
};
using StylePixels = PixelScopeFixture;

} // namespace

TEST(Style, SaysWhatIsVisible) {
  const ReportCapture anEmptyMapIsReported;
  const auto gradient = [](const std::vector<QColor>& p_colors) {
    return boost::make_shared<Library::ColorMap>(p_colors, Library::ColorMap::Interpolated);
  };
  const auto empty = gradient({}), full = gradient({Qt::red, Qt::blue});
  const auto check = [&](const auto& p_has, const char* p_name, const auto& p_style, bool p_plain, bool p_full) {
    EXPECT_EQ(p_has(p_style), p_plain) << p_name;
    EXPECT_EQ(p_has(p_style, boost::shared_ptr<Library::ColorMap>()), p_plain) << p_name;
    EXPECT_EQ(p_has(p_style, empty), p_plain) << p_name;
    EXPECT_EQ(p_has(p_style, full), p_full) << p_name;
  };
  const auto fill = [](const auto&... p_arguments) { return Style::HasFill(p_arguments...); };
  check(fill, "none", Fill(0, Qt::red), false, false);
  check(fill, "solid", Fill(1, Faint), true, true);
  check(fill, "transparent", Fill(1, Clear, Qt::red), false, true);
  const auto line = [](const auto&... p_arguments) { return Style::HasLine(p_arguments...); };
  check(line, "none", Line(0, 1, Qt::red), false, false);
  check(line, "thin", Line(1, 1e-30f, Faint), true, true);
  for (const float width : {0.f, -1.f, NAN})
    check(line, "no width", Line(1, width, Qt::red), false, false);
  check(line, "transparent", Line(3, 2, Clear, Qt::red), false, true);
  const auto symbol = [](const auto&... p_arguments) { return Style::HasSymbol(p_arguments...); };
  check(symbol, "none", Symbol(0, 5, Qt::red, Qt::red), false, false);
  check(symbol, "without a size", Symbol(1, 0, Qt::red, Qt::red), false, false);
  check(symbol, "fill only", Symbol(1, 1, Faint, Clear), true, true);
  check(symbol, "outline only", Symbol(1, 1, Clear, Faint), true, true);
  check(symbol, "transparent", Symbol(1, 1, Clear, Clear), false, true);

  Types::FillStyle inherited;
  inherited.color.SetDefault(Clear);
  check(fill, "inherited", inherited, false, true);
}

TEST(Style, SaysWhatAColourMapHas) {
  const struct {
    std::size_t colors, weights;
    bool flag, gradient, weightings;
  } cases[] = {
      {0, 0, true, false, false}, {1, 1, true, false, false}, {2, 0, true, true, false}, {2, 2, false, false, true},
      {2, 3, true, true, false},  {3, 2, true, true, false},  {3, 3, true, true, true},
  };
  for (const auto& c : cases) {
    Types::ColorMap map;
    map.colors.Set(std::vector<QColor>(c.colors, Qt::red));
    map.weights.Set(std::vector<double>(c.weights, 1));
    map.gradient.Set(c.flag);
    EXPECT_EQ(Style::HasColorMapGradient(map), c.gradient) << c.colors << " " << c.weights;
    EXPECT_EQ(Style::HasColorMapWeightings(map), c.weightings) << c.colors << " " << c.weights;
  }
}

TEST(Style, AppliesATextStyle) {
  boost::shared_ptr<Ogl::Text> text(new Ogl::Text);
  Types::TextStyle style = Colored(Types::TextStyle(), Qt::red, Qt::blue);
  style.flag.Set(true);
  const std::pair<std::uint32_t, unsigned int> sizes[] = {{0, 2}, {3, 3}, {97, 96}, {0xFFFFFFFFU, 96}, {1, 2}};
  for (const auto& [size, expected] : sizes) {
    style.size.Set(size);
    Style::ApplyStyle(text, style);
    EXPECT_EQ(text->size.Value(), expected) << size;
  }
  EXPECT_EQ(text->firstColor.Value(), QColor(Qt::red));
  EXPECT_EQ(text->secondColor.Value(), QColor(Qt::blue));
  EXPECT_TRUE(text->flag.Value());
  boost::shared_ptr<Ogl::Text> nothing;
  const ReportCapture reports;
  Style::ApplyStyle(nothing, {});
  EXPECT_EQ(reports.Texts(),
            Lines{"\"void*(obj)\" - void __cdecl Vek::Chart::Library::Style::ApplyStyle(class boost::shared_ptr<class "
                  "Vek::Chart::Ogl::Text> &,const class Vek::Chart::Types::TextStyle &)"});
}

TEST_F(StyleCalls, FillsInUpToTwoPasses) {
  gl->PolygonStipple(Pattern::PolygonStipplePattern(Pattern::FillDiagonal));
  const std::string mask = recorder.Lines().back(), on = "Enable(GL_POLYGON_STIPPLE)", pop = "PopAttrib()";
  const std::string push = "PushAttrib(GL_CURRENT_BIT|GL_POLYGON_BIT|GL_ENABLE_BIT)";
  const std::tuple<const char*, Types::FillStyle, Lines> cases[] = {
      {"none", Fill(0, Qt::red, Qt::blue), {}},
      {"solid", Fill(1, Qt::red, Qt::blue), {push, FirstPass, Draw, pop}},
      {"pattern", Fill(8, Qt::red, Qt::blue), {push, SecondPass, Draw, on, mask, FirstPass, Draw, pop}},
      {"pattern over nothing is solid", Fill(8, Qt::red, Clear), {push, FirstPass, Draw, pop}},
      {"only the second colour", Fill(8, Clear, Qt::blue), {push, SecondPass, Draw, on, mask, pop}},
      {"invisible", Fill(1, Clear, Clear), {push, pop}},
  };
  for (const auto& [name, style, expected] : cases)
    EXPECT_EQ(Drawn(style), expected) << name;
}

TEST_F(StyleCalls, LinesInUpToTwoPasses) {
  const auto pushed = [](const std::string& p_smooth, const std::string& p_width) {
    return Lines{"PushAttrib(GL_CURRENT_BIT|GL_LINE_BIT|GL_ENABLE_BIT)", p_smooth + "(GL_LINE_SMOOTH)",
                 "LineWidth(" + p_width + ")"};
  };
  Types::LineStyle smooth = Line(1, 2.5f, Qt::red, Qt::blue);
  smooth.smooth.Set(true);
  const std::string on = "Enable(GL_LINE_STIPPLE)", dots = "LineStipple(3, 0xAAAA)", pop = "PopAttrib()";
  const std::pair<Types::LineStyle, Lines> cases[] = {
      {Line(0, 1, Qt::red, Qt::blue), {}},
      {smooth, pushed("Enable", "2.5") + Lines{FirstPass, Draw, pop}},
      {Line(3, 3, Qt::red, Qt::blue), pushed("Disable", "3") + Lines{SecondPass, Draw, on, dots, FirstPass, Draw, pop}},
      {Line(3, 3, Qt::red, Clear), pushed("Disable", "3") + Lines{FirstPass, Draw, pop}}};
  for (const auto& [style, expected] : cases)
    EXPECT_EQ(Drawn(style), expected);

  const std::pair<float, std::string> factors[] = {{0.5f, "0"}, {0, "0"},     {-3, "0"},
                                                   {NAN, "0"},  {1.99f, "1"}, {1e30f, "2147483647"}};
  for (const auto& [width, factor] : factors) {
    Drawn(Line(7, width, Qt::red, Qt::blue));
    EXPECT_EQ(recorder.LinesOf({"LineStipple"}), Lines{"LineStipple(" + factor + ", 0xFF00)"}) << width;
  }
  EXPECT_EQ(recorder.TakeComplaints(), Lines(3, "LineWidth: not above 0")) << "GL refuses 0, -3 and NAN";
}

TEST_F(StyleCalls, DrawsWithAnyCallableAndWithRealGaps) {
  const std::string mask = "LineStipple(3, 0xAAAA)";
  const auto drawn = [&](const auto& p_style, bool p_gaps) {
    recorder.Clear();
    const auto draw = [&, own = std::make_unique<int>()](Scope& p_gl) { p_gl->DepthFunc(RGL_LESS); };
    if (p_gaps)
      Style::DrawWithGaps(p_style, gl, draw);
    else
      Style::Draw(p_style, gl, [&] { draw(gl); });
    return recorder.LinesOf({"Enable", "Color4d", "DepthFunc", "LineStipple"});
  };
  const std::string line = "Enable(GL_LINE_STIPPLE)", fill = "Enable(GL_POLYGON_STIPPLE)";
  const std::tuple<Types::LineStyle, bool, Lines> lines[] = {
      {Line(3, 3, Qt::red, Clear), false, {FirstPass, Draw}},
      {Line(3, 3, Qt::red, Clear), true, {line, mask, FirstPass, Draw}},
      {Line(3, 3, Qt::red, Qt::blue), true, {SecondPass, Draw, line, mask, FirstPass, Draw}},
      {Line(3, 3, Clear, Clear), true, {line, mask}},
      {Line(1, 3, Qt::red, Clear), true, {FirstPass, Draw}},
      {Line(0, 3, Qt::red, Clear), true, {}},
  };
  for (const auto& [style, gaps, expected] : lines)
    EXPECT_EQ(drawn(style, gaps), expected) << style.pattern.Effective() << gaps;
  EXPECT_EQ(drawn(Fill(8, Qt::red, Clear), false), (Lines{FirstPass, Draw}));
  EXPECT_EQ(drawn(Fill(8, Qt::red, Clear), true), (Lines{fill, FirstPass, Draw}));
}

TEST_F(StyleCalls, RestoresTheStateWhenDrawingThrows) {
  DrawFunction draw = [](Scope&) { throw std::runtime_error("draw"); };
  EXPECT_THROW(Style::DrawInternal(Fill(5, Qt::red, Qt::blue), gl, draw), std::runtime_error);
  EXPECT_THROW(Style::DrawInternal(Line(5, 1, Qt::red, Qt::blue), gl, draw), std::runtime_error);
  EXPECT_EQ(recorder.LinesOf({"PopAttrib"}).size(), 2u);
  DrawFunction empty;
  EXPECT_THROW(Style::DrawInternal(Fill(1, Qt::red), gl, empty), boost::bad_function_call);
  EXPECT_NO_THROW(Style::DrawInternal(Fill(1, Clear), gl, empty)) << "nothing to draw, so not called";
}

TEST_F(StylePixels, EveryFillPatternBitForBit) {
  const auto pixels = gl->PixelProjection({0, 0, FrameSize.width, FrameSize.height});
  DrawFunction draw = [](Scope& p_gl) {
    p_gl->Begin(RGL_QUADS);
    for (const auto& [x, y] : {std::pair(3, 2), {58, 2}, {58, 36}, {3, 36}})
      p_gl->Pixel(x, y);
    p_gl->End();
  };
  gl->PixelStorei(RGL_UNPACK_LSB_FIRST, 1); // the host's
  for (std::uint32_t pattern = 1; pattern <= 13; ++pattern) {
    gl->Clear(RGL_COLOR_BUFFER_BIT);
    Style::DrawInternal(Fill(pattern, Qt::red, Qt::blue), gl, draw);
    const unsigned char* const mask = Pattern::PolygonStipplePattern(static_cast<Pattern::FillPattern>(pattern));
    QImage expected(FrameSize.width, FrameSize.height, QImage::Format_ARGB32);
    expected.fill(Qt::transparent);
    for (int y = 2; y < 36; ++y)
      for (int x = 3; x < 58; ++x) {
        // Anchored at the window's corner; the first bit of a row is its byte's most significant one.
        const bool set = (mask[y % 32 * 4 + x % 32 / 8] >> (7 - x % 8) & 1) != 0;
        expected.setPixelColor(x, FrameSize.height - 1 - y, set ? Qt::red : Qt::blue);
      }
    EXPECT_TRUE(SameImage(Image(), expected)) << "pattern " << pattern;
  }
  gl->PixelStorei(RGL_UNPACK_LSB_FIRST, 0);
}

TEST_F(StylePixels, ADashedLineHasGaps) {
  const auto pixels = gl->PixelProjection({0, 0, FrameSize.width, FrameSize.height});
  const auto draw = [&] {
    gl->Begin(RGL_LINES);
    gl->Vertex(0.5, 10.5, 0);
    gl->Vertex(48.5, 10.5, 0);
    gl->End();
  };
  Style::DrawWithGaps(Line(Pattern::LineLong, 1, Qt::red), gl, draw);
  for (int x = 0; x < 48; ++x) // eight pixels off, eight on
    EXPECT_EQ(At(x, 10).alpha(), x % 16 < 8 ? 0 : 255) << x;
}
