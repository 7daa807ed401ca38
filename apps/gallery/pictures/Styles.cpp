// A sheet of all patterns and text sizes. Shows how a Style draws lines and areas with stipples, how a Pattern becomes
// a point sprite, and how text takes its style. Stipples count in pixels of the screen, so the sheet is drawn without
// smoothing.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "library/NamedColors.h"
#include "library/Pattern.h"
#include "library/Style.h"
#include "library/TexturedQuad.h"

#include "platform/assets/ImageCache.h"
#include "platform/assets/Resource.h"
#include "platform/ogl/Text.h"
#include "platform/ogl/TextImage.h"

#include <boost/make_shared.hpp>

#include <QFont>
#include <QFontMetrics>

#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Library::Pattern;
using DrawFunction = boost::function<void(Utility::Scoped<Rgl>&)>;
using Rect = Sheet::Rect;

// The patterns by number, from 1.
constexpr const char* LineNames[] = {"solid",  "dense", "dots",     "sparse",    "short",
                                     "medium", "long",  "dot-dash", "dots-dash", "long dot-dash"};
constexpr const char* FillNames[] = {"solid", "dense",    "half",          "sparse",      "horizontal", "vertical",
                                     "grid",  "diagonal", "back diagonal", "cross-hatch", "weave",      "back weave"};
constexpr const char* PointNames[] = {"rectangle", "ellipse", "diamond", "hexagon",
                                      "triangle",  "cross",   "x-cross", "star"};
constexpr unsigned int TextSizes[] = {96, 72, 48, 36, 28, 24, 20, 16, 14, 12, 10, 8, 6, 4, 2};

constexpr double Left = 51;   ///< of the columns of lines and point sprites
constexpr double Right = 800; ///< of those of fills and texts
constexpr double Upper = 840; ///< of the headings of lines and fills
constexpr double Lower = 346; ///< of those of point sprites and texts

const QColor UnderLines(0x48617C); ///< the second colours
const QColor UnderFills(0x283A4C);

int Rounded(double p_value) {
  return static_cast<int>(std::lround(p_value));
}

QString Numbered(std::size_t p_index, const char* p_name) {
  return QString("%1  %2").arg(p_index + 1).arg(p_name);
}

/// The pixels between four borders, in the colour that is current.
void FillPixels(Utility::Scoped<Rgl>& p_gl, int p_left, int p_bottom, int p_right, int p_top) {
  p_gl->Begin(RGL_QUADS);
  p_gl->Pixel(p_left, p_bottom);
  p_gl->Pixel(p_right, p_bottom);
  p_gl->Pixel(p_right, p_top);
  p_gl->Pixel(p_left, p_top);
  p_gl->End();
}

/// A level line through the middle of a row of pixels.
void DrawLine(Utility::Scoped<Rgl>& p_gl, const Types::LineStyle& p_style, int p_left, int p_right, int p_row) {
  DrawFunction draw = [&](Utility::Scoped<Rgl>& p_scoped) {
    p_scoped->Begin(RGL_LINES);
    p_scoped->Vertex(p_left, p_row + 0.5, 0.0);
    p_scoped->Vertex(p_right, p_row + 0.5, 0.0);
    p_scoped->End();
  };
  Library::Style::DrawInternal(p_style, p_gl, draw);
}

void DrawFill(Utility::Scoped<Rgl>& p_gl, const Types::FillStyle& p_style, int p_left, int p_bottom, int p_right,
              int p_top) {
  DrawFunction draw = [&](Utility::Scoped<Rgl>& p_scoped) { FillPixels(p_scoped, p_left, p_bottom, p_right, p_top); };
  Library::Style::DrawInternal(p_style, p_gl, draw);
}

std::vector<QColor> Colors(const char* p_name, double p_from) {
  return Library::NamedColors::Colors(p_name, 256, p_from, 0.95);
}

void DrawLines(Sheet& p_sheet) {
  const struct {
    float width;
    double left, right;
    const char* name;
    QColor under;
  } columns[] = {{1, 226, 326, "1 px", UnderLines},
                 {3, 348, 466, "3 px", UnderLines},
                 {6, 488, 624, "6 px", UnderLines},
                 {3, 646, 736, "one colour", Qt::transparent}};
  constexpr double Pitch = 43.5;
  const std::vector<QColor> colors = Colors("plasma", 0.4);
  p_sheet.Heading("Lines", Left - 2, Upper);
  for (const auto& column : columns)
    p_sheet.Label(column.name, column.left - 2, Upper);
  const double point = p_sheet.canvas.PointSize();
  for (std::size_t i = 0; i < std::size(LineNames); ++i) {
    const double y = Upper - 40 - Pitch * static_cast<double>(i);
    p_sheet.Label(Numbered(i, LineNames[i]), Left - 2, y);
    Types::LineStyle style;
    style.pattern.Set(static_cast<std::uint32_t>(i + 1));
    style.color.Set(colors[i * (colors.size() - 1) / (std::size(LineNames) - 1)]);
    for (const auto& column : columns) {
      style.width.Set(column.width);
      style.secondColor.Set(column.under);
      DrawLine(p_sheet.scope, style, Rounded(column.left * point), Rounded(column.right * point), Rounded(y * point));
    }
  }
}

/// The pattern with both colours, below it with the first only, and beside it its first pixels enlarged.
void DrawSwatch(Sheet& p_sheet, const Rect& p_rect, std::uint32_t p_pattern, const QColor& p_color) {
  const double point = p_sheet.canvas.PointSize();
  const int left = Rounded(p_rect.left * point);
  const int right = Rounded(p_rect.right * point);
  Types::FillStyle style;
  style.pattern.Set(p_pattern);
  style.color.Set(p_color);
  DrawFill(p_sheet.scope, style, left, Rounded(p_rect.bottom * point), right, Rounded((p_rect.bottom + 16) * point));
  style.secondColor.Set(UnderFills);
  DrawFill(p_sheet.scope, style, left, Rounded((p_rect.bottom + 20) * point), right, Rounded(p_rect.top * point));

  constexpr int Shown = 12;
  const double pixel = (p_rect.top - p_rect.bottom) / Shown;
  const double x0 = p_rect.right + 4;
  const unsigned char* const mask = Pattern::PolygonStipplePattern(static_cast<Pattern::FillPattern>(p_pattern));
  for (int y = 0; y < Shown; ++y)
    for (int x = 0; x < Shown; ++x) {
      const bool set = (mask[4 * y + x / 8] >> (7 - x % 8) & 1) != 0;
      const double x1 = x0 + x * pixel;
      const double y1 = p_rect.bottom + y * pixel;
      p_sheet.canvas.Fill({x1, y1, x1 + pixel, y1 + pixel}, set ? p_color : UnderFills);
    }
}

void DrawFills(Sheet& p_sheet) {
  constexpr std::size_t Columns = 4;
  const std::vector<QColor> colors = Colors("viridis", 0.4);
  p_sheet.Heading("Fills", Right - 2, Upper);
  p_sheet.Remark("below: without second colour, solid; right: 12 × 12 pixels, enlarged", Right + 66, Upper);
  for (std::size_t i = 0; i < std::size(FillNames); ++i) {
    const double left = Right + 193 * static_cast<double>(i % Columns);
    const double top = Upper - 28 - 147 * static_cast<double>(i / Columns);
    DrawSwatch(p_sheet, {left, top - 84, left + 84, top}, static_cast<std::uint32_t>(i + 1),
               colors[i * (colors.size() - 1) / (std::size(FillNames) - 1)]);
    p_sheet.Label(Numbered(i, FillNames[i]), left - 2, top - 102);
  }
}

void DrawSprites(Sheet& p_sheet, const Assets::Resource& p_folder) {
  constexpr double Pitch = 88;
  const double point = p_sheet.canvas.PointSize();
  const std::vector<QColor> colors = Colors("plasma", 0.3);
  const auto pixels = [&](int p_points) { return Rounded(p_points * point); };
  p_sheet.Heading("Point sprites", Left - 2, Lower);
  p_sheet.Remark(QString("of %1, %2, %3 and %4 pixels").arg(pixels(64)).arg(pixels(32)).arg(pixels(16)).arg(pixels(8)),
                 Left + 172, Lower);
  Assets::ImageCache cache;
  for (std::size_t i = 0; i < std::size(PointNames); ++i) {
    const auto sprite =
        Pattern::PointSpritePattern(static_cast<Pattern::PointPattern>(i + 1), p_folder, cache, p_sheet.scope);
    const double x = Left + 36 + Pitch * static_cast<double>(i);
    Library::TexturedQuad quad;
    quad.color = colors[i * (colors.size() - 1) / (std::size(PointNames) - 1)];
    for (const auto& [size, y] : {std::pair(64, 274), {32, 204}, {16, 160}, {8, 128}}) {
      const auto side = static_cast<float>(pixels(size));
      quad.rect = {static_cast<float>(Rounded((x - size / 2) * point)),
                   static_cast<float>(Rounded((y - size / 2) * point)), side, side};
      quad(p_sheet.scope.Handle(), *sprite);
    }
    p_sheet.Label(QString::number(i + 1), x, 92, {0.5, 0.5});
    p_sheet.canvas.Text(PointNames[i], {x, 66}, {0.5, 0.5}, {15, p_sheet.theme.text});
  }
}

/// Returns the width of the letters.
double DrawOnBaseLine(Utility::Scoped<Rgl>& p_gl, Ogl::Text& p_text, double p_x, double p_y) {
  const QFontMetrics metrics(Ogl::TextFont(static_cast<int>(p_text.size.Value())));
  const int margin = (p_text.Image().height() - metrics.height()) / 2;
  p_text.position = {Rounded(p_x) - margin, Rounded(p_y) - margin - metrics.descent()};
  p_text(p_gl);
  return metrics.horizontalAdvance(p_text.text.Value());
}

/// The sizes on one base line, each written in itself, and the three kinds of text.
void DrawTexts(Sheet& p_sheet) {
  const double point = p_sheet.canvas.PointSize();
  p_sheet.Heading("Texts", Right - 2, Lower);
  p_sheet.Remark("in the sizes that they name, 2 to 96 pixels", Right + 76, Lower);
  Types::TextStyle style;
  style.color.Set(p_sheet.theme.title);
  double x = Right * point;
  for (const unsigned int size : TextSizes) {
    auto text = boost::make_shared<Ogl::Text>();
    style.size.Set(static_cast<std::uint32_t>(std::max(1, Rounded(size * point))));
    Library::Style::ApplyStyle(text, style);
    text->text = QString::number(text->size);
    x += DrawOnBaseLine(p_sheet.scope, *text, x, 200 * point) + 16 * point;
  }
  const struct {
    const char* text;
    const char* note;
    QColor second;
    bool flag;
  } kinds[] = {{"One colour", "second colour transparent", Qt::transparent, false},
               {"Outlined", "flag off", QColor(0xB0413E), false},
               {"In a box", "flag on", QColor(0x1F5FA8), true}};
  style.size.Set(static_cast<std::uint32_t>(Rounded(32 * point)));
  double left = Right;
  for (const auto& kind : kinds) {
    auto text = boost::make_shared<Ogl::Text>(kind.text);
    style.secondColor.Set(kind.second);
    style.flag.Set(kind.flag);
    Library::Style::ApplyStyle(text, style);
    DrawOnBaseLine(p_sheet.scope, *text, left * point, 106 * point);
    p_sheet.Label(kind.note, left, 66);
    left += 266;
  }
}

} // namespace

QImage StylesImage(const Inputs& p_inputs, Types::Size p_size) {
  const auto draw = [&](Sheet& p_sheet) {
    DrawLines(p_sheet);
    DrawFills(p_sheet);
    DrawSprites(p_sheet, Assets::Resource(p_inputs.sprites));
    DrawTexts(p_sheet);
  };
  return DrawSheet("Styles",
                   "All patterns by their numbers, pixel by pixel. 0 draws nothing, unknown numbers are solid.", p_size,
                   draw, false);
}

} // namespace Vek::Chart::Gallery
