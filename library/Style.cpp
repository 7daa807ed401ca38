#include "library/Style.h"

#include "library/Pattern.h"
#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"
#include "platform/types/Math.h"

#include <limits>

namespace Vek::Chart::Library {

namespace {

namespace Signature {
constexpr const char* ApplyStyle = "void __cdecl Vek::Chart::Library::Style::ApplyStyle(class boost::shared_ptr<class "
                                   "Vek::Chart::Ogl::Text> &,const class Vek::Chart::Types::TextStyle &)";
} // namespace Signature

bool Visible(const Types::StyleProperty<QColor>& p_color) {
  return p_color.Effective().alpha() != 0;
}

bool HasColors(const boost::shared_ptr<ColorMap>& p_map) {
  return p_map && p_map->Size() != 0;
}

bool HasWidth(const Types::LineStyle& p_style) {
  return p_style.pattern.Effective() != 0 && p_style.width.Effective() > 0;
}

bool HasShape(const Types::SymbolStyle& p_style) {
  return p_style.shape.Effective() != 0 && p_style.size.Effective() != 0;
}

/// The width truncated; 0 for NaN and negative widths.
int StippleFactor(float p_width) {
  if (!(p_width >= 0))
    return 0;
  return p_width < static_cast<float>(std::numeric_limits<int>::max()) ? static_cast<int>(p_width)
                                                                       : std::numeric_limits<int>::max();
}

using DrawFunction = boost::function<void(Utility::Scoped<Rgl>&)>;

/// What a pattern draws where its second colour is transparent.
enum class Gaps {
  Filled, ///< as the pattern's set bits: the pattern is solid
  Open,   ///< nothing
};

/// The two passes that fills and lines share; `p_stipple` switches the style's stipple on.
template <class Record, class Stipple>
void DrawPasses(const Record& p_style, Utility::Scoped<Rgl>& p_gl, DrawFunction& p_draw, Gaps p_gaps,
                const Stipple& p_stipple) {
  const bool pattern = p_style.pattern.Effective() != 1;
  const bool second = pattern && Visible(p_style.secondColor);
  if (second) {
    p_gl->Color(p_style.secondColor.Effective());
    p_draw(p_gl);
  }
  if (second || (pattern && p_gaps == Gaps::Open))
    p_stipple();
  if (Visible(p_style.color)) {
    p_gl->Color(p_style.color.Effective());
    p_draw(p_gl);
  }
}

void DrawFill(const Types::FillStyle& p_style, Utility::Scoped<Rgl>& p_gl, DrawFunction& p_draw, Gaps p_gaps) {
  const std::uint32_t pattern = p_style.pattern.Effective();
  if (pattern == 0)
    return;
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_POLYGON_BIT | RGL_CURRENT_BIT);
  DrawPasses(p_style, p_gl, p_draw, p_gaps, [&] {
    p_gl->Enable(RGL_POLYGON_STIPPLE);
    const boost::shared_ptr<void> unpacking = Ogl::ImageUnpackScope(*p_gl);
    p_gl->PolygonStipple(Pattern::PolygonStipplePattern(static_cast<Pattern::FillPattern>(pattern)));
  });
}

void DrawLine(const Types::LineStyle& p_style, Utility::Scoped<Rgl>& p_gl, DrawFunction& p_draw, Gaps p_gaps) {
  const std::uint32_t pattern = p_style.pattern.Effective();
  if (pattern == 0)
    return;
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_LINE_BIT | RGL_CURRENT_BIT);
  if (p_style.smooth.Effective())
    p_gl->Enable(RGL_LINE_SMOOTH);
  else
    p_gl->Disable(RGL_LINE_SMOOTH);
  const float width = p_style.width.Effective();
  p_gl->LineWidth(width);
  DrawPasses(p_style, p_gl, p_draw, p_gaps, [&] {
    p_gl->Enable(RGL_LINE_STIPPLE);
    p_gl->LineStipple(StippleFactor(width), Pattern::LineStipplePattern(static_cast<Pattern::LinePattern>(pattern)));
  });
}

} // namespace

bool Style::HasFill(const Types::FillStyle& p_style) {
  return HasFill(p_style, {});
}

bool Style::HasFill(const Types::FillStyle& p_style, const boost::shared_ptr<ColorMap>& p_map) {
  return p_style.pattern.Effective() != 0 && (HasColors(p_map) || Visible(p_style.color));
}

bool Style::HasLine(const Types::LineStyle& p_style) {
  return HasLine(p_style, {});
}

bool Style::HasLine(const Types::LineStyle& p_style, const boost::shared_ptr<ColorMap>& p_map) {
  return HasWidth(p_style) && (HasColors(p_map) || Visible(p_style.color));
}

bool Style::HasSymbol(const Types::SymbolStyle& p_style) {
  return HasSymbol(p_style, {});
}

bool Style::HasSymbol(const Types::SymbolStyle& p_style, const boost::shared_ptr<ColorMap>& p_map) {
  return HasShape(p_style) && (HasColors(p_map) || Visible(p_style.secondColor) || Visible(p_style.color));
}

bool Style::HasColorMapGradient(const Types::ColorMap& p_map) {
  return p_map.colors.Effective().size() >= 2 && p_map.gradient.Effective();
}

bool Style::HasColorMapWeightings(const Types::ColorMap& p_map) {
  const std::size_t colors = p_map.colors.Effective().size();
  return colors >= 2 && p_map.weights.Effective().size() == colors;
}

void Style::ApplyStyle(boost::shared_ptr<Ogl::Text>& p_text, const Types::TextStyle& p_style) {
  if (!VEK_CHECK_POINTER(p_text.get(), Signature::ApplyStyle))
    return;
  // An equal value leaves a property, and with it the image of the text, unchanged.
  p_text->firstColor = p_style.color.Effective();
  p_text->secondColor = p_style.secondColor.Effective();
  p_text->flag = p_style.flag.Effective();
  p_text->size = Types::Math::Clamp<unsigned int>(p_style.size.Effective(), Ogl::Text::MinSize, Ogl::Text::MaxSize);
}

void Style::DrawInternal(const Types::FillStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                         boost::function<void(Utility::Scoped<Rgl>&)>& p_draw) {
  DrawFill(p_style, p_gl, p_draw, Gaps::Filled);
}

void Style::DrawInternal(const Types::LineStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                         boost::function<void(Utility::Scoped<Rgl>&)>& p_draw) {
  DrawLine(p_style, p_gl, p_draw, Gaps::Filled);
}

void Style::DrawGaps(const Types::FillStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                     boost::function<void(Utility::Scoped<Rgl>&)>& p_draw) {
  DrawFill(p_style, p_gl, p_draw, Gaps::Open);
}

void Style::DrawGaps(const Types::LineStyle& p_style, Utility::Scoped<Rgl>& p_gl,
                     boost::function<void(Utility::Scoped<Rgl>&)>& p_draw) {
  DrawLine(p_style, p_gl, p_draw, Gaps::Open);
}

} // namespace Vek::Chart::Library
