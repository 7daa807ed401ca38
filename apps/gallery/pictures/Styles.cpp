// A sheet of all patterns and text sizes. Shows how a Style draws lines and areas with stipples, how a Pattern becomes
// a point sprite, and how text takes its style. Stipples count in pixels of the screen, so the sheet is drawn without
// smoothing.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Palettes.h"
#include "scene/Canvas.h"
#include "scene/TextRenderer.h"

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

using namespace Scene;

namespace {

using Library::Pattern;
using DrawFunction = boost::function<void(Utility::Scoped<Rgl>&)>;
using Rect = Canvas::Rect;

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
constexpr double Upper = 836; ///< of the headings of lines and fills
constexpr double Lower = 358; ///< of those of point sprites and texts

const TextRenderer::Style Heading{GalleryTheme::TextSize, GalleryTheme::Title, true};
const TextRenderer::Style Label{GalleryTheme::SmallSize, GalleryTheme::Text, false};
const TextRenderer::Style Small{15, GalleryTheme::Text, false};
const TextRenderer::Style Note{16, GalleryTheme::Faint, false};

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

class StylesPicture : public Picture {
public:
  explicit StylesPicture(const Inputs& p_inputs)
      : _resource(p_inputs.sprites) {
    for (std::size_t i = 0; i < std::size(TextSizes); ++i)
      _ladder.push_back(boost::make_shared<Ogl::Text>());
    for (const char* text : {"One colour", "Outlined", "In a box"})
      _kinds.push_back(boost::make_shared<Ogl::Text>(text));
  }

  /// The sheet is flat: no camera moves it.
  Camera StartCamera() const override { return {}; }

  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) override {
    DrawBackground(p_gl, p_view);
    if (_sprites.empty())
      LoadSprites(p_gl);
    Canvas canvas(p_gl, p_view.viewport, _text, PointSize(p_view));
    DrawTitle(canvas, "Styles",
              "Every pattern by its number, pixel by pixel; 0 draws nothing, unknown numbers are solid");
    DrawLines(p_gl, canvas);
    DrawFills(p_gl, canvas);
    DrawSprites(p_gl, canvas);
    DrawTexts(p_gl, canvas);
  }

private:
  void LoadSprites(Utility::Scoped<Rgl>& p_gl) {
    Assets::ImageCache cache;
    for (std::uint32_t i = 0; i < std::size(PointNames); ++i)
      _sprites.push_back(
          Pattern::PointSpritePattern(static_cast<Pattern::PointPattern>(i + 1), _resource, cache, p_gl));
  }

  static void DrawLines(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) {
    const struct {
      float width;
      double left, right;
      const char* name;
      QColor under;
    } columns[] = {{1, 226, 326, "1 px", UnderLines},
                   {3, 348, 466, "3 px", UnderLines},
                   {6, 488, 624, "6 px", UnderLines},
                   {3, 646, 736, "one colour", Qt::transparent}};
    constexpr double Pitch = 41;
    const std::vector<QColor> colors = Palettes::Plasma(0.4, 0.95);
    p_canvas.Text("Lines", {Left - 2, Upper}, {0, 0.5}, Heading);
    for (const auto& column : columns)
      p_canvas.Text(column.name, {column.left - 2, Upper}, {0, 0.5}, Label);
    const double point = p_canvas.PointSize();
    for (std::size_t i = 0; i < std::size(LineNames); ++i) {
      const double y = Upper - 40 - Pitch * static_cast<double>(i);
      p_canvas.Text(Numbered(i, LineNames[i]), {Left - 2, y}, {0, 0.5}, Label);
      Types::LineStyle style;
      style.pattern.Set(static_cast<std::uint32_t>(i + 1));
      style.color.Set(colors[i * (colors.size() - 1) / (std::size(LineNames) - 1)]);
      for (const auto& column : columns) {
        style.width.Set(column.width);
        style.secondColor.Set(column.under);
        DrawLine(p_gl, style, Rounded(column.left * point), Rounded(column.right * point), Rounded(y * point));
      }
    }
  }

  static void DrawFills(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) {
    constexpr std::size_t Columns = 4;
    const std::vector<QColor> colors = Palettes::Viridis(0.4, 0.95);
    p_canvas.Text("Fills", {Right - 2, Upper}, {0, 0.5}, Heading);
    p_canvas.Text("strip: second colour transparent, so solid; right: 12 × 12 pixels, enlarged", {Right + 66, Upper},
                  {0, 0.5}, Note);
    for (std::size_t i = 0; i < std::size(FillNames); ++i) {
      const double left = Right + 193 * static_cast<double>(i % Columns);
      const double top = Upper - 28 - 141 * static_cast<double>(i / Columns);
      DrawSwatch(p_gl, p_canvas, {left, top - 84, left + 84, top}, static_cast<std::uint32_t>(i + 1),
                 colors[i * (colors.size() - 1) / (std::size(FillNames) - 1)]);
      p_canvas.Text(Numbered(i, FillNames[i]), {left - 2, top - 102}, {0, 0.5}, Label);
    }
  }

  /// The pattern with both colours, below it with the first only, and beside it its first pixels enlarged.
  static void DrawSwatch(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas, const Rect& p_rect, std::uint32_t p_pattern,
                         const QColor& p_color) {
    const double point = p_canvas.PointSize();
    const int left = Rounded(p_rect.left * point);
    const int right = Rounded(p_rect.right * point);
    Types::FillStyle style;
    style.pattern.Set(p_pattern);
    style.color.Set(p_color);
    DrawFill(p_gl, style, left, Rounded(p_rect.bottom * point), right, Rounded((p_rect.bottom + 16) * point));
    style.secondColor.Set(UnderFills);
    DrawFill(p_gl, style, left, Rounded((p_rect.bottom + 20) * point), right, Rounded(p_rect.top * point));

    constexpr int Shown = 12;
    const double pixel = (p_rect.top - p_rect.bottom) / Shown;
    const double x0 = p_rect.right + 4;
    const unsigned char* const mask = Pattern::PolygonStipplePattern(static_cast<Pattern::FillPattern>(p_pattern));
    for (int y = 0; y < Shown; ++y)
      for (int x = 0; x < Shown; ++x) {
        const bool set = (mask[4 * y + x / 8] >> (7 - x % 8) & 1) != 0;
        const double x1 = x0 + x * pixel;
        const double y1 = p_rect.bottom + y * pixel;
        p_canvas.Fill({x1, y1, x1 + pixel, y1 + pixel}, set ? p_color : UnderFills);
      }
  }

  void DrawSprites(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) const {
    constexpr double Pitch = 88;
    const double point = p_canvas.PointSize();
    const std::vector<QColor> colors = Palettes::Plasma(0.3, 0.95);
    p_canvas.Text("Point sprites", {Left - 2, Lower}, {0, 0.5}, Heading);
    const auto pixels = [&](int p_points) { return Rounded(p_points * point); };
    p_canvas.Text(QString("of %1, %2, %3 and %4 pixels").arg(pixels(64)).arg(pixels(32)).arg(pixels(16)).arg(pixels(8)),
                  {Left + 166, Lower}, {0, 0.5}, Note);
    for (std::size_t i = 0; i < _sprites.size(); ++i) {
      const double x = Left + 36 + Pitch * static_cast<double>(i);
      Library::TexturedQuad quad;
      quad.color = colors[i * (colors.size() - 1) / (_sprites.size() - 1)];
      for (const auto& [size, y] : {std::pair(64, 286), {32, 216}, {16, 172}, {8, 140}}) {
        const float side = static_cast<float>(pixels(size));
        quad.rect = {static_cast<float>(Rounded((x - size / 2) * point)),
                     static_cast<float>(Rounded((y - size / 2) * point)), side, side};
        quad(p_gl.Handle(), *_sprites[i]);
      }
      p_canvas.Text(QString::number(i + 1), {x, 106}, {0.5, 0.5}, Label);
      p_canvas.Text(PointNames[i], {x, 82}, {0.5, 0.5}, Small);
    }
  }

  /// The sizes on one base line, each written in itself, and the three kinds of text.
  void DrawTexts(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) {
    const double point = p_canvas.PointSize();
    p_canvas.Text("Texts", {Right - 2, Lower}, {0, 0.5}, Heading);
    p_canvas.Text("each says its size in pixels, 2 to 96", {Right + 76, Lower}, {0, 0.5}, Note);
    Types::TextStyle style;
    style.color.Set(GalleryTheme::Title);
    double x = Right * point;
    for (std::size_t i = 0; i < _ladder.size(); ++i) {
      style.size.Set(static_cast<std::uint32_t>(std::max(1, Rounded(TextSizes[i] * point))));
      Library::Style::ApplyStyle(_ladder[i], style);
      _ladder[i]->text = QString::number(_ladder[i]->size);
      x += DrawOnBaseLine(p_gl, *_ladder[i], x, 210 * point) + 16 * point;
    }

    const struct {
      const char* note;
      QColor second;
      bool flag;
    } kinds[] = {{"second colour transparent", Qt::transparent, false},
                 {"flag off", QColor(0xB0413E), false},
                 {"flag on", QColor(0x1F5FA8), true}};
    style.size.Set(static_cast<std::uint32_t>(Rounded(32 * point)));
    for (std::size_t i = 0; i < _kinds.size(); ++i) {
      style.secondColor.Set(kinds[i].second);
      style.flag.Set(kinds[i].flag);
      Library::Style::ApplyStyle(_kinds[i], style);
      const double left = Right + 266 * static_cast<double>(i);
      DrawOnBaseLine(p_gl, *_kinds[i], left * point, 118 * point);
      p_canvas.Text(kinds[i].note, {left, 80}, {0, 0.5}, Label);
    }
  }

  /// Returns the width of the letters.
  static double DrawOnBaseLine(Utility::Scoped<Rgl>& p_gl, Ogl::Text& p_text, double p_x, double p_y) {
    const QFontMetrics metrics(Ogl::TextFont(static_cast<int>(p_text.size.Value())));
    const int margin = (p_text.Image().height() - metrics.height()) / 2;
    p_text.position = {Rounded(p_x) - margin, Rounded(p_y) - margin - metrics.descent()};
    p_text(p_gl);
    return metrics.horizontalAdvance(p_text.text.Value());
  }

  Assets::Resource _resource; ///< the folder of the sprites
  std::vector<boost::shared_ptr<Library::Texture>> _sprites;
  std::vector<boost::shared_ptr<Ogl::Text>> _ladder;
  std::vector<boost::shared_ptr<Ogl::Text>> _kinds;
  TextRenderer _text;
};

} // namespace

std::unique_ptr<Picture> LoadStyles(const Inputs& p_inputs, Loading&) {
  return std::make_unique<StylesPicture>(p_inputs);
}

} // namespace Vek::Chart::Gallery
