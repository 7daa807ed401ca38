#include "scene/FigureGrid.h"

#include "scene/Background.h"
#include "scene/Canvas.h"
#include "scene/SaveImage.h"
#include "scene/private/ImageFile.h"
#include "scene/private/OffscreenApplication.h"
#include "scene/private/PagePainter.h"
#include "scene/private/PdfFile.h"

#include "platform/debug/Check.h"
#include "platform/ogl/OffscreenContext.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

constexpr double Margin = 12; // points around the title

bool HaveSameDirection(const Camera& p_a, const Camera& p_b) {
  return p_a.azimuth == p_b.azimuth && p_a.elevation == p_b.elevation && p_a.projection == p_b.projection;
}

QColor Blended(const QColor& p_a, const QColor& p_b, double p_share) {
  const auto between = [p_share](int p_from, int p_to) { return qRound(p_from + p_share * (p_to - p_from)); };
  return {between(p_a.red(), p_b.red()), between(p_a.green(), p_b.green()), between(p_a.blue(), p_b.blue())};
}

/// While it lives, a figure that has the background of its grid has the part of it that lies behind its cell. Borders
/// of the cell are shares of the grid's height, from below.
class SharedBackground {
public:
  SharedBackground(Figure& p_figure, const Theme& p_grid, double p_bottom, double p_top)
      : _figure(p_figure)
      , _theme(p_figure.theme) {
    const QColor &top = p_grid.backgroundTop, &bottom = p_grid.backgroundBottom;
    if (_theme.backgroundTop != top || _theme.backgroundBottom != bottom)
      return;
    _figure.theme.backgroundTop = Blended(bottom, top, p_top);
    _figure.theme.backgroundBottom = Blended(bottom, top, p_bottom);
  }
  ~SharedBackground() { _figure.theme = _theme; }
  SharedBackground(const SharedBackground&) = delete;
  SharedBackground& operator=(const SharedBackground&) = delete;

private:
  Figure& _figure;
  Theme _theme;
};

/// The camera that fits the data of a figure in a direction. The figure has no other one afterwards.
Camera Fitted(Figure& p_figure, const Camera& p_direction, const Types::Viewport<0>& p_cell, double p_pixelRatio) {
  p_figure.camera.reset();
  p_figure.Look(p_direction.azimuth, p_direction.elevation, p_direction.projection);
  return p_figure.Layout(p_cell, p_pixelRatio).camera;
}

} // namespace

FigureGrid::FigureGrid(std::size_t p_rows, std::size_t p_columns, const QString& p_title, const QString& p_subtitle)
    : _rows(p_rows)
    , _columns(p_columns)
    , _title(p_title)
    , _subtitle(p_subtitle) {
  constexpr std::size_t Most = 100;
  if (p_rows < 1 || p_columns < 1 || p_rows > Most || p_columns > Most)
    throw std::invalid_argument("FigureGrid: expected 1 to 100 rows and columns, got " + std::to_string(p_rows) +
                                " x " + std::to_string(p_columns));
  _figures.resize(p_rows * p_columns);
}

std::size_t FigureGrid::IndexOf(std::size_t p_row, std::size_t p_column) const {
  if (p_row >= _rows || p_column >= _columns)
    throw std::invalid_argument("FigureGrid: expected a cell of " + std::to_string(_rows) + " x " +
                                std::to_string(_columns) + ", got row " + std::to_string(p_row) + ", column " +
                                std::to_string(p_column));
  return p_row * _columns + p_column;
}

Figure& FigureGrid::At(std::size_t p_row, std::size_t p_column) {
  return _figures[IndexOf(p_row, p_column)];
}

FigureGrid& FigureGrid::SetTheme(const Theme& p_theme) {
  _theme = p_theme;
  for (Figure& figure : _figures)
    figure.theme = p_theme;
  return *this;
}

FigureGrid& FigureGrid::LinkCameras(bool p_linked) {
  _isLinked = p_linked;
  _views.clear();
  return *this;
}

/// The titles one below the other; the origin is the upper left corner.
LegendBlock FigureGrid::TitleBlock(double p_pixelRatio) const {
  LegendBlock block(p_pixelRatio);
  for (const auto& [text, style] : {std::pair(_title, _theme.TitleStyle()), {_subtitle, _theme.BodyStyle()}})
    block.Add(LegendBlock::String{text, {0, block.Bounds().bottom}, {0, 1}, style, 0});
  return block;
}

Types::Viewport<0> FigureGrid::Cell(std::size_t p_index, const Types::Viewport<0>& p_viewport,
                                    double p_pixelRatio) const {
  const double title = TitleBlock(p_pixelRatio).Height();
  const double width = static_cast<double>(p_viewport.width);
  const double height = static_cast<double>(p_viewport.height) - (title > 0 ? (title + Margin) * p_pixelRatio : 0);
  const auto border = [](double p_length, std::size_t p_at, std::size_t p_count) {
    return std::floor(std::max(p_length, 0.0) * static_cast<double>(p_at) / static_cast<double>(p_count));
  };
  const std::size_t column = p_index % _columns, rowFromBelow = _rows - 1 - p_index / _columns;
  const double left = border(width, column, _columns), bottom = border(height, rowFromBelow, _rows);
  return {p_viewport.x + static_cast<float>(left), p_viewport.y + static_cast<float>(bottom),
          static_cast<float>(border(width, column + 1, _columns) - left),
          static_cast<float>(border(height, rowFromBelow + 1, _rows) - bottom)};
}

Types::Viewport<0> FigureGrid::Cell(std::size_t p_row, std::size_t p_column, const Types::Viewport<0>& p_viewport,
                                    double p_pixelRatio) const {
  return Cell(IndexOf(p_row, p_column), p_viewport, p_pixelRatio > 0 ? p_pixelRatio : 1);
}

Figure* FigureGrid::FigureAt(const Camera::Pixel& p_pixel, const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  for (std::size_t i = 0; i < _figures.size(); ++i) {
    const Types::Viewport<0> cell = Cell(i, p_viewport, p_pixelRatio > 0 ? p_pixelRatio : 1);
    const double x = p_pixel.x - static_cast<double>(cell.x), y = p_pixel.y - static_cast<double>(cell.y);
    if (x >= 0 && y >= 0 && x < static_cast<double>(cell.width) && y < static_cast<double>(cell.height))
      return &_figures[i];
  }
  return nullptr;
}

void FigureGrid::Follow(std::size_t p_leader, const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  const auto cell = [&](std::size_t p_index) { return Cell(p_index, p_viewport, p_pixelRatio); };
  Figure& leader = _figures[p_leader];
  const Camera view = leader.Layout(cell(p_leader), p_pixelRatio).camera;
  if (!(std::isfinite(view.azimuth) && std::abs(view.elevation) <= 90))
    return;
  const std::optional<Camera> own = leader.camera;
  const Camera fit = Fitted(leader, view, cell(p_leader), p_pixelRatio);
  leader.camera = own;
  for (std::size_t i = 0; i < _figures.size(); ++i) {
    if (i == p_leader)
      continue;
    Camera other = Fitted(_figures[i], view, cell(i), p_pixelRatio);
    if (!own)
      continue;
    const double scale = other.distance / fit.distance;
    other.target = other.target + (view.target - fit.target) * scale;
    other.distance = view.distance * scale;
    other.fieldOfView = view.fieldOfView;
    other.roll = view.roll;
    _figures[i].camera = other;
  }
}

/// Moves all cameras after the first that was changed since the last drawing.
void FigureGrid::Link(const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  const auto viewOf = [&](std::size_t p_index) {
    return View{_figures[p_index].camera,
                _figures[p_index].Layout(Cell(p_index, p_viewport, p_pixelRatio), p_pixelRatio).camera};
  };
  std::optional<std::size_t> leader;
  for (std::size_t i = 0; i < _figures.size() && !leader; ++i) {
    const bool isChanged = _views.empty() ? _figures[i].camera.has_value()
                                          : _figures[i].camera != _views[i].camera ||
                                                !HaveSameDirection(viewOf(i).direction, _views[i].direction);
    if (isChanged)
      leader = i;
  }
  if (!leader && !_views.empty())
    return;
  Follow(leader.value_or(0), p_viewport, p_pixelRatio);
  _views.clear();
  for (std::size_t i = 0; i < _figures.size(); ++i)
    _views.push_back(viewOf(i));
}

void FigureGrid::ForEachCell(const Types::Viewport<0>& p_viewport, double p_pixelRatio,
                             const CellFunction& p_function) {
  for (std::size_t i = 0; i < _figures.size(); ++i) {
    const Types::Viewport<0> cell = Cell(i, p_viewport, p_pixelRatio);
    if (!(cell.width > 0 && cell.height > 0))
      continue;
    const double bottom = static_cast<double>((cell.y - p_viewport.y) / p_viewport.height);
    const SharedBackground background(_figures[i], _theme, bottom,
                                      bottom + static_cast<double>(cell.height / p_viewport.height));
    p_function(_figures[i], cell);
  }
}

void FigureGrid::Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  if (!VEK_ENSURE(p_viewport.width > 0 && p_viewport.height > 0, "void Vek::Chart::Scene::FigureGrid::Draw(...)"))
    return;
  const double ratio = p_pixelRatio > 0 ? p_pixelRatio : 1;
  if (_isLinked)
    Link(p_viewport, ratio);
  DrawBackground(p_gl, p_viewport, _theme);
  ForEachCell(p_viewport, ratio,
              [&](Figure& p_figure, const Types::Viewport<0>& p_cell) { p_figure.Draw(p_gl, p_cell, ratio); });
  Canvas canvas(p_gl, p_viewport, _text, ratio);
  TitleBlock(ratio).Draw(canvas, {Margin, canvas.Height() - Margin});
}

QImage FigureGrid::Image(Types::Size p_size, int p_samples, double p_pixelRatio) {
  const double ratio = p_pixelRatio > 0 ? p_pixelRatio : 1;
  const bool hasTransparent =
      std::any_of(_figures.begin(), _figures.end(), [](const Figure& p_figure) { return p_figure.HasTransparent(); });
  return Private::DrawnImage(
      p_size, p_samples, hasTransparent,
      [&](auto& p_gl, const auto& p_viewport, double p_factor) { Draw(p_gl, p_viewport, p_factor * ratio); });
}

void FigureGrid::Save(const QString& p_path, Types::Size p_size, double p_resolution) {
  if (!Private::IsPdf(p_path))
    return SaveImage(Image(p_size), p_path);
  const Private::OffscreenApplication application;
  const QSizeF size(p_size.width, p_size.height);
  Private::WritePdf(p_path, _title, size, [&](QPainter& p_painter) { Paint(p_painter, size, p_resolution); });
}

void FigureGrid::Paint(QPainter& p_painter, const QSizeF& p_size, double p_resolution) {
  const Types::Viewport<0> page(0, 0, static_cast<float>(p_size.width()), static_cast<float>(p_size.height()));
  if (_isLinked)
    Link(page, 1);
  Private::PagePainter(p_painter, p_size).Background(_theme);
  ForEachCell(page, 1, [&](Figure& p_figure, const Types::Viewport<0>& p_cell) {
    const QSizeF size(static_cast<double>(p_cell.width), static_cast<double>(p_cell.height));
    p_painter.save();
    p_painter.translate(static_cast<double>(p_cell.x), p_size.height() - static_cast<double>(p_cell.y) - size.height());
    p_figure.Paint(p_painter, size, p_resolution);
    p_painter.restore();
  });
  Private::PagePainter(p_painter, p_size).Paint(TitleBlock(1), {Margin, p_size.height() - Margin});
}

void FigureGrid::Release(const Utility::Scoped<Rgl>& p_gl) const {
  for (const Figure& figure : _figures)
    figure.Release(p_gl);
  _text.Release(p_gl);
}

} // namespace Vek::Chart::Scene
