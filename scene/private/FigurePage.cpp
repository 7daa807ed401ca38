#include "scene/private/FigurePage.h"

#include "scene/private/Elided.h"
#include "scene/private/Wrapped.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Scene {

Canvas::Rect FigureLayout::Block::Rect() const {
  const Canvas::Rect& bounds = content.Bounds();
  return {bounds.left + origin.x, bounds.bottom + origin.y, bounds.right + origin.x, bounds.top + origin.y};
}

namespace Private {

namespace {

constexpr double Margin = 12;      // points around everything
constexpr double Gap = 16;         // between blocks
constexpr double MostShare = 0.45; // of the width, for what stands on the right

double MarginOf(const QSizeF& p_size) {
  return std::min(Margin, std::min(p_size.width(), p_size.height()) / 20);
}

/// Whether keys stand below the scene.
bool IsTall(const QSizeF& p_size) {
  constexpr double TallRatio = 1.15; // of height to width
  return p_size.height() > TallRatio * p_size.width();
}

/// Takes places from the borders of a page, until the scene is left.
class Page {
public:
  Page(const QSizeF& p_size, const Theme& p_theme, double p_pointSize,
       const std::function<void(const std::string&)>& p_report)
      : _theme(p_theme)
      , _pointSize(p_pointSize)
      , _report(p_report) {
    const double margin = MarginOf(p_size);
    _layout.size = p_size;
    _layout.scene = {margin, margin, p_size.width() - margin, p_size.height() - margin};
  }

  void TakeTop(const QString& p_text, const TextStyle& p_style, double p_gap) {
    const LegendBlock block = StringBlock(p_text, p_style);
    if (p_text.isEmpty() || !HasRoom(block))
      return;
    _layout.scene.top -= block.Height();
    Place(block, Free().left, Free().top);
    _layout.scene.top -= p_gap;
  }

  void TakeBottom(const QString& p_text, const TextStyle& p_style) {
    const LegendBlock block = StringBlock(p_text, p_style);
    if (p_text.isEmpty() || !HasRoom(block))
      return;
    Place(block, Free().left, Free().bottom);
    _layout.scene.bottom += block.Height() + Gap / 2;
  }

  /// Bars one above the other, as many columns as they need, keys below.
  void TakeRight(const std::vector<ColorBar>& p_bars, const std::vector<LegendBlock>& p_keys) {
    constexpr double ShareOfHeight = 0.6, LeastLength = 110;
    std::vector<LegendBlock> blocks;
    const double height = FreeHeight();
    double keysHeight = 0;
    for (const LegendBlock& key : p_keys)
      keysHeight += key.Height() + Gap;
    const double room = std::max(height - keysHeight, height / 2);
    const std::size_t most = std::max<std::size_t>(1, static_cast<std::size_t>(room / (LeastLength + 3 * Gap)));
    const std::size_t perColumn = std::min(most, std::max<std::size_t>(1, p_bars.size()));
    for (ColorBar bar : p_bars) {
      bar.orientation = ColorBar::Orientation::Vertical;
      // Strings reach beyond the bar's length: the second layout is as much shorter.
      double length = std::min(ShareOfHeight * height, room / static_cast<double>(perColumn) - Gap);
      LegendBlock block = bar.Layout(length, _theme, _pointSize);
      const double excess = block.Height() - (room / static_cast<double>(perColumn) - Gap);
      if (excess > 0 && length > excess)
        block = bar.Layout(length - excess, _theme, _pointSize);
      blocks.push_back(std::move(block));
    }
    for (std::size_t first = 0; first < blocks.size(); first += perColumn) {
      std::vector<LegendBlock> column(blocks.begin() + static_cast<std::ptrdiff_t>(first),
                                      blocks.begin() +
                                          static_cast<std::ptrdiff_t>(std::min(first + perColumn, blocks.size())));
      if (first == 0)
        column.insert(column.end(), p_keys.begin(), p_keys.end());
      TakeColumn(column);
    }
    if (blocks.empty())
      TakeColumn(p_keys);
  }

  /// Bars one below the other, keys side by side below them.
  void TakeBelow(const std::vector<ColorBar>& p_bars, const std::vector<LegendBlock>& p_keys) {
    constexpr double ShareOfWidth = 0.75;
    TakeRow(p_keys);
    for (auto bar = p_bars.rbegin(); bar != p_bars.rend(); ++bar) {
      ColorBar flat = *bar;
      flat.orientation = ColorBar::Orientation::Horizontal;
      TakeRow({flat.Layout(ShareOfWidth * FreeWidth(), _theme, _pointSize)});
    }
  }

  FigureLayout Result() && { return std::move(_layout); }

private:
  const Canvas::Rect& Free() const { return _layout.scene; }
  double FreeWidth() const { return Free().right - Free().left; }
  double FreeHeight() const { return Free().top - Free().bottom; }

  /// Names a block by its longest string: mostly its title.
  void ReportNoRoom(const LegendBlock& p_block) const {
    QString name;
    for (const LegendBlock::String& string : p_block.Strings())
      if (string.text.size() > name.size())
        name = string.text;
    _report("Figure: no room for the legend \"" + name.replace('\n', ' ').toStdString() + '"');
  }

  bool HasRoom(const LegendBlock& p_block) const {
    constexpr double LeastScene = 0.3; // of the page, in both directions
    const bool fits =
        p_block.Width() <= FreeWidth() + 1 && p_block.Height() <= FreeHeight() - LeastScene * _layout.size.height();
    if (!fits)
      ReportNoRoom(p_block);
    return fits;
  }

  LegendBlock StringBlock(const QString& p_text, const TextStyle& p_style) const {
    QStringList lines = Wrapped(p_text, p_style, FreeWidth(), _pointSize).split('\n');
    for (QString& line : lines) // of one word, such as the name of a file
      line = Elided(line, FreeWidth(), p_style, _pointSize);
    LegendBlock block(_pointSize);
    block.Add(LegendBlock::String{lines.join('\n'), {0, 0}, {0, 0}, p_style, 0});
    return block;
  }

  void Place(const LegendBlock& p_block, double p_left, double p_bottom) {
    _layout.blocks.push_back({p_block, p_block.OriginFor({p_left, p_bottom}), false});
  }

  void TakeColumn(const std::vector<LegendBlock>& p_blocks) {
    double width = 0, height = -Gap;
    std::vector<const LegendBlock*> fitting;
    for (const LegendBlock& block : p_blocks) {
      if (block.Width() > MostShare * FreeWidth() || height + Gap + block.Height() > FreeHeight()) {
        ReportNoRoom(block);
        continue;
      }
      fitting.push_back(&block);
      width = std::max(width, block.Width());
      height += Gap + block.Height();
    }
    if (fitting.empty())
      return;
    const double left = Free().right - width;
    double top = (Free().top + Free().bottom + height) / 2;
    for (const LegendBlock* const block : fitting) {
      top -= block->Height();
      Place(*block, left, top);
      top -= Gap;
    }
    _layout.scene.right = left - Gap;
  }

  void TakeRow(const std::vector<LegendBlock>& p_blocks) {
    double width = -Gap, height = 0;
    std::vector<const LegendBlock*> fitting;
    for (const LegendBlock& block : p_blocks) {
      if (width + Gap + block.Width() > FreeWidth()) {
        ReportNoRoom(block);
        continue;
      }
      if (!HasRoom(block))
        continue;
      fitting.push_back(&block);
      width += Gap + block.Width();
      height = std::max(height, block.Height());
    }
    if (fitting.empty())
      return;
    double left = (Free().left + Free().right - width) / 2; // centred
    for (const LegendBlock* const block : fitting) {
      Place(*block, left, Free().bottom + (height - block->Height()) / 2);
      _layout.blocks.back().isBelowScene = true;
      left += block->Width() + Gap;
    }
    _layout.scene.bottom += height + Gap / 2;
  }

  const Theme& _theme;
  double _pointSize;
  const std::function<void(const std::string&)>& _report;
  FigureLayout _layout;
};

} // namespace

FigureLayout LayOutPage(const QSizeF& p_size, const PageContent& p_content, const Theme& p_theme, double p_pointSize) {
  Page page(p_size, p_theme, p_pointSize, p_content.report);
  page.TakeTop(p_content.title, p_theme.TitleStyle(), p_content.subtitle.isEmpty() ? Gap / 2 : 0);
  page.TakeTop(p_content.subtitle, p_theme.BodyStyle(), Gap / 2);
  TextStyle faint = p_theme.SmallStyle();
  faint.color = p_theme.faint;
  page.TakeBottom(QStringList(p_content.notes.begin(), p_content.notes.end()).join(QStringLiteral(" \u00B7 ")), faint);
  if (IsTall(p_size))
    page.TakeBelow(p_content.bars, p_content.keys);
  else
    page.TakeRight(p_content.bars, p_content.keys);
  FigureLayout layout = std::move(page).Result();
  layout.notes = p_content.notes;
  return layout;
}

QSizeF RoomForKey(const QSizeF& p_size, const std::vector<LegendBlock>& p_others) {
  constexpr double ShareOfHeight = 0.5, LeastShare = 0.1, Untitled = 0.8; // of the height
  double width = p_size.width() - 2 * MarginOf(p_size), height = ShareOfHeight * p_size.height();
  if (IsTall(p_size)) { // side by side
    for (const LegendBlock& other : p_others)
      width -= other.Width() + Gap;
    return {width, height};
  }
  double left = Untitled * p_size.height();
  for (const LegendBlock& other : p_others)
    left -= other.Height() + Gap;
  return {MostShare * width, std::clamp(left, LeastShare * p_size.height(), height)};
}

void CloseUp(FigureLayout& p_layout) {
  const AxesLayout::Rect axes = p_layout.axes.Bounds();
  const double shift = axes.bottom - Gap / 2 - p_layout.scene.bottom;
  if (!(shift > 0) || axes.top <= axes.bottom)
    return;
  for (FigureLayout::Block& block : p_layout.blocks)
    if (block.isBelowScene)
      block.origin.y += shift;
}

} // namespace Private
} // namespace Vek::Chart::Scene
