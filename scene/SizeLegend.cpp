#include "scene/SizeLegend.h"

#include "scene/Ticks.h"
#include "scene/private/LegendShapes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

namespace {

struct Symbol {
  QString text;
  double diameter;
};

/// The symbols of all ticks that are seen.
std::vector<Symbol> SymbolsOf(const Ticks& p_ticks, const std::function<double(double)>& p_diameter) {
  std::vector<Symbol> symbols;
  for (std::size_t i = 0; i < p_ticks.Values().size(); ++i)
    if (const double diameter = p_diameter(p_ticks.Values()[i]); diameter > 0 && std::isfinite(diameter))
      symbols.push_back({p_ticks.Strings()[i], diameter});
  return symbols;
}

} // namespace

LegendBlock SizeLegend::Layout(const Theme& p_theme, double p_pointSize) const {
  if (!diameter)
    throw std::invalid_argument("A size legend needs the diameters of values, got none");
  constexpr std::size_t Count = 3, MostTicks = 12;
  Ticks ticks;
  std::vector<Symbol> symbols;
  for (std::size_t most = Count; most <= MostTicks && symbols.size() < Count; ++most) {
    ticks = Ticks::Linear(least, largest, most);
    symbols = SymbolsOf(ticks, diameter);
  }
  if (symbols.size() > Count)
    symbols = {symbols.front(), symbols[symbols.size() / 2], symbols.back()};

  LegendBlock block(p_pointSize);
  const TextStyle style = p_theme.SmallStyle();
  const double gap = style.size / 2;
  const QString heading = title + (title.isEmpty() || ticks.Note().isEmpty() ? "" : " ") + ticks.Note();
  block.Add(LegendBlock::String{heading, {0, 0}, {0, 1}, p_theme.BodyStyle()});
  double widest = 0, y = heading.isEmpty() ? 0 : block.Bounds().bottom - gap;
  for (const Symbol& symbol : symbols)
    widest = std::max(widest, symbol.diameter);
  for (const Symbol& symbol : symbols) {
    const double height = std::max(symbol.diameter, TextRenderer::Size(symbol.text, style, p_pointSize).height());
    block.Add(Private::Disk({widest / 2, y - height / 2}, symbol.diameter / 2, p_theme.line));
    block.Add(LegendBlock::String{symbol.text, {widest + gap, y - height / 2}, {0, 0.5}, style});
    y -= height + gap / 2;
  }
  return block;
}

} // namespace Vek::Chart::Scene
