#include "scene/SaveImage.h"
#include "scene/private/FigureState.h"
#include "scene/private/ImageFile.h"
#include "scene/private/OffscreenApplication.h"
#include "scene/private/PagePainter.h"
#include "scene/private/PdfFile.h"
#include "scene/private/SceneState.h"

#include "platform/ogl/OffscreenContext.h"

#include <boost/shared_ptr.hpp>

#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

void Figure::Paint(QPainter& p_painter, const QSizeF& p_size, double p_resolution) {
  constexpr double PointsPerInch = 72;
  const double ratio = p_resolution / PointsPerInch;
  const double width = std::ceil(p_size.width() * ratio), height = std::ceil(p_size.height() * ratio);
  constexpr double Most = 1 << 15; // pixels a side
  if (!(width > 0 && height > 0 && width <= Most && height <= Most))
    throw std::invalid_argument("Paint: expected 1 to 32768 pixels a side, got " + std::to_string(width) + " x " +
                                std::to_string(height));
  const Types::Viewport<0> viewport(0, 0, static_cast<float>(width), static_cast<float>(height));
  const FigureLayout layout = Layout(viewport, ratio);
  Private::PagePainter page(p_painter, p_size);
  page.Background(theme);
  page.Paint(layout.axes, theme);
  page.Paint(_state->DataImage(*this, layout, viewport, ratio));
  for (const FigureLayout::Block& block : layout.blocks)
    page.Paint(block.content, block.origin);
}

QImage Figure::State::DataImage(const Figure& p_figure, const FigureLayout& p_layout,
                                const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  const int samples = HasTransparent() ? 0 : 4; // layers of half-transparent plots have single samples
  Ogl::OffscreenContext context({static_cast<int>(p_viewport.width), static_cast<int>(p_viewport.height)}, samples);
  const auto imageOn = [&](const QColor& p_background) {
    {
      Utility::Scoped<Rgl> gl(context.Handle());
      if (!Private::HasFixedFunctions(gl))
        return QImage(1, 1, QImage::Format_RGB32);
      gl->ClearColor(p_background);
      gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
      DrawPlots(gl, {p_layout.camera, p_viewport, p_pixelRatio, p_figure.theme.title, p_figure.theme.line});
    }
    return context.Image();
  };
  const QImage onBlack = imageOn(Qt::black);
  return Private::WithoutBackground(onBlack, imageOn(Qt::white));
}

QImage Figure::ImageWithoutBackground(Types::Size p_size, int p_samples) {
  const auto kept = boost::shared_ptr<void>(nullptr, [this, before = theme](void*) { theme = before; });
  const auto imageOn = [&](const QColor& p_background) {
    theme.backgroundTop = theme.backgroundBottom = p_background;
    return Image(p_size, p_samples);
  };
  const QImage onBlack = imageOn(Qt::black);
  return Private::WithoutBackground(onBlack, imageOn(Qt::white));
}

void Figure::Save(const QString& p_path, Types::Size p_size, double p_resolution) {
  if (!Private::IsPdf(p_path))
    return SaveImage(Image(p_size), p_path);
  const Private::OffscreenApplication application;
  const QSizeF size(p_size.width, p_size.height);
  Private::WritePdf(p_path, _state->title, size, [&](QPainter& p_painter) { Paint(p_painter, size, p_resolution); });
}

} // namespace Vek::Chart::Scene
