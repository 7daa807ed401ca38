#include "widgets/FigureView.h"

#include <QHelpEvent>
#include <QLineF>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

// Input of a FigureView.

namespace Vek::Chart::Widgets {

namespace {

using Position = Types::Vector3_Base<double>;

/// Qt 5 and Qt 6 have other names for it.
QPointF PlaceOf(const QMouseEvent& p_event) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
  return p_event.position();
#else
  return p_event.localPos();
#endif
}

QPoint GlobalPlaceOf(const QMouseEvent& p_event) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
  return p_event.globalPosition().toPoint();
#else
  return p_event.globalPos();
#endif
}

double& At(Position& p_position, int p_axis) {
  return p_axis == 0 ? p_position.x : p_axis == 1 ? p_position.y : p_position.z;
}

} // namespace

bool FigureView::event(QEvent* p_event) {
  if (context() == nullptr)
    KeepSamples();
  if (p_event->type() != QEvent::ToolTip)
    return QOpenGLWidget::event(p_event);
  const auto& help = static_cast<const QHelpEvent&>(*p_event);
  ShowReadOut(help.pos(), help.globalPos());
  return true;
}

void FigureView::mousePressEvent(QMouseEvent* p_event) {
  if (p_event->buttons() != p_event->button())
    return; // another button is down already
  _press = _last = PlaceOf(*p_event);
  _isDrag = false;
  _isClick = true;
  _slice.reset();
  if (p_event->button() == Qt::LeftButton && p_event->modifiers() == Qt::ControlModifier)
    BeginSlice(_press);
}

/// Of the slices that meet at the place, the one whose plane is nearest to the hit.
void FigureView::BeginSlice(const QPointF& p_place) {
  const std::optional<Scene::Figure::Hit> hit = HitAt(p_place);
  // The figure is the view's to change, as are its plots.
  auto* const plot = hit ? const_cast<Scene::SlicesPlot*>(dynamic_cast<const Scene::SlicesPlot*>(hit->plot)) : nullptr;
  if (plot == nullptr)
    return;
  const Position scene = _figure->ToScene(hit->position);
  double nearest = HUGE_VAL;
  for (std::size_t i = 0; i < plot->SliceCount(); ++i) {
    const Scene::SlicesPlot::Slice slice = plot->SliceAt(i);
    if (slice.axis < 0) // oblique
      continue;
    Position on = hit->position;
    At(on, slice.axis) = slice.position;
    const Position offset = _figure->ToScene(on) - scene;
    const double distance = Length(offset);
    if (distance < nearest)
      nearest = distance, _slice = DraggedSlice{plot, i, slice.axis, scene, p_place};
  }
}

/// Along the axis as it is seen at the hit, within the limits of the axes.
void FigureView::DragSlice(const QPointF& p_place) {
  const Scene::Camera camera = Camera();
  const Types::Viewport<0> viewport = Viewport();
  constexpr double Step = 1e-3; // of the scene, whose longest edge is about 1
  Position further = _slice->scene;
  At(further, _slice->axis) += Step;
  const Scene::Camera::Pixel from = camera.Project(_slice->scene, viewport), to = camera.Project(further, viewport);
  const double x = (to.x - from.x) / Step, y = (to.y - from.y) / Step;
  const QPointF moved = (p_place - _slice->place) * devicePixelRatioF();
  constexpr double LeastSquare = 100; // an axis that is seen end-on
  Position scene = _slice->scene;
  At(scene, _slice->axis) += (moved.x() * x - moved.y() * y) / std::fmax(x * x + y * y, LeastSquare);
  const auto limits = _figure->Limits();
  Position place = _figure->ToData(scene), low = limits.Min(), high = limits.Max();
  const double position = std::clamp(At(place, _slice->axis), At(low, _slice->axis), At(high, _slice->axis));
  _slice->plot->Move(_slice->number, position);
  update();
  emit SliceMoved(_slice->plot, _slice->number, position);
}

void FigureView::mouseMoveEvent(QMouseEvent* p_event) {
  const Qt::MouseButtons buttons = p_event->buttons();
  const QPointF place = PlaceOf(*p_event);
  if (buttons == Qt::NoButton) {
    _pointer = place;
    _pointTimer.start();
    return;
  }
  if (!_isDrag && QLineF(_press, place).length() < ClickDistance)
    return;
  _isDrag = _isMoving = true;
  _wheelTimer.start(); // the hand may rest with a button down
  const QPointF moved = place - std::exchange(_last, place);
  if (_slice) {
    DragSlice(place);
  } else if (buttons == Qt::LeftButton && !p_event->modifiers().testFlag(Qt::ShiftModifier)) {
    Move([&](Scene::OrbitController& p_orbit) { p_orbit.Rotate(moved.x(), -moved.y()); });
  } else {
    const QPointF pixels = moved * devicePixelRatioF();
    Move([&](Scene::OrbitController& p_orbit) { p_orbit.Pan(pixels.x(), -pixels.y(), Viewport()); });
  }
}

void FigureView::Rest() {
  if (std::exchange(_isMoving, false))
    update();
}

void FigureView::mouseReleaseEvent(QMouseEvent* p_event) {
  if (p_event->buttons() == Qt::NoButton) {
    Rest();
    _slice.reset();
  }
  if (p_event->button() != Qt::LeftButton || !std::exchange(_isClick, false) || _isDrag)
    return;
  const QPointF place = PlaceOf(*p_event);
  ShowReadOut(place, GlobalPlaceOf(*p_event));
  emit Picked(HitAt(place));
}

void FigureView::mouseDoubleClickEvent(QMouseEvent* p_event) {
  _press = _last = PlaceOf(*p_event);
  _isDrag = _isClick = false;
  if (p_event->button() != Qt::LeftButton)
    return;
  if (const std::optional<Scene::Figure::Hit> hit = HitAt(_press))
    Move([&](Scene::OrbitController& p_orbit) { p_orbit.CenterOn(_figure->ToScene(hit->position)); });
}

void FigureView::wheelEvent(QWheelEvent* p_event) {
  constexpr double Notch = 120; // of Qt
  const double notches = p_event->angleDelta().y() / Notch;
  if (notches == 0)
    return;
  _isMoving = true;
  _wheelTimer.start();
  const Types::Viewport<0> viewport = Viewport();
  const QPointF pixel = p_event->position() * devicePixelRatioF();
  const Scene::Camera::Pixel cursor{pixel.x(), static_cast<double>(viewport.height) - pixel.y(), true};
  Move([&](Scene::OrbitController& p_orbit) { p_orbit.Zoom(notches, cursor, viewport); });
}

void FigureView::leaveEvent(QEvent* p_event) {
  QOpenGLWidget::leaveEvent(p_event);
  _pointTimer.stop();
  if (hasMouseTracking())
    emit Pointed({});
}

bool FigureView::PressKey(int p_key) {
  using View = Scene::Camera::StandardView;
  using Projection = Scene::Camera::Projection;
  switch (p_key) {
  case Qt::Key_R:
    Fit();
    return true;
  case Qt::Key_1:
    Look(View::Front);
    return true;
  case Qt::Key_3:
    Look(View::Right);
    return true;
  case Qt::Key_7:
    Look(View::Top);
    return true;
  case Qt::Key_5:
    SetProjection(Camera().projection == Projection::Parallel ? Projection::Perspective : Projection::Parallel);
    return true;
  default:
    return false;
  }
}

void FigureView::keyPressEvent(QKeyEvent* p_event) {
  const bool isPlain = (p_event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (p_event->matches(QKeySequence::Save))
    AskWhereToSave();
  else if (p_event->matches(QKeySequence::Copy))
    Copy();
  else if (!isPlain || !PressKey(p_event->key()))
    QOpenGLWidget::keyPressEvent(p_event);
}

} // namespace Vek::Chart::Widgets
