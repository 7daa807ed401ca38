#include "widgets/FigureView.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PerContext.h"
#include "scene/Background.h"

#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QImageWriter>
#include <QLineF>
#include <QMessageBox>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QStringList>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

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

QSurfaceFormat NeededFormat() {
  QSurfaceFormat format; // without a version: from 3.2 on, drivers give a core profile
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setProfile(QSurfaceFormat::CompatibilityProfile);
  format.setDepthBufferSize(24);
  format.setStencilBufferSize(8);
  format.setAlphaBufferSize(0);
  format.setSamples(4);
  return format;
}

} // namespace

FigureView::FigureView(std::shared_ptr<Scene::Figure> p_figure, QWidget* p_parent)
    : QOpenGLWidget(p_parent)
    , _figure(std::move(p_figure)) {
  setFormat(NeededFormat());
  setFocusPolicy(Qt::StrongFocus);
  setContextMenuPolicy(Qt::PreventContextMenu); // the right button pans
  _wheelTimer.setSingleShot(true);
  _wheelTimer.setInterval(MovingTime);
  connect(&_wheelTimer, &QTimer::timeout, this, &FigureView::Rest);
  _pointTimer.setSingleShot(true);
  connect(&_pointTimer, &QTimer::timeout, this, [this] { emit Pointed(HitAt(_pointer)); });
}

FigureView::~FigureView() {
  Release();
  if (context() != nullptr)
    context()->disconnect(this); // it goes when this is but a QOpenGLWidget
}

template <class Function>
void FigureView::WithContext(const Function& p_function) {
  if (context() == nullptr || !_gl)
    return;
  makeCurrent();
  {
    Utility::Scoped<Rgl> gl(*_gl);
    p_function(gl);
  }
  doneCurrent();
}

void FigureView::Release() {
  WithContext([](const Utility::Scoped<Rgl>& p_gl) { Ogl::Release(p_gl); });
  _gl.reset();
}

void FigureView::SetFigure(std::shared_ptr<Scene::Figure> p_figure) {
  if (_figure == p_figure)
    return;
  _slice.reset();
  WithContext([this](const Utility::Scoped<Rgl>& p_gl) {
    if (_figure)
      _figure->Release(p_gl);
  });
  _figure = std::move(p_figure);
  update();
}

// Drawing

void FigureView::KeepSamples() {
  QSurfaceFormat needed = format();
  if (!_hadContext) {
    _samples = needed.samples();
  } else if (needed.samples() != _samples) {
    needed.setSamples(_samples);
    setFormat(needed);
  }
}

void FigureView::initializeGL() {
  connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &FigureView::Release);
  _hadContext = true;
  _gl = Rgl::OnCurrentContext();
  _hasFixedFunctions = context()->format().profile() != QSurfaceFormat::CoreProfile;
  if (!_hasFixedFunctions)
    vekdebug::warn("FigureView: a compatibility profile is needed, this context has a core profile");
}

void FigureView::paintGL() {
  Utility::Scoped<Rgl> gl(*_gl);
  if (_figure && _hasFixedFunctions) {
    _figure->SetMoving(_isMoving); // other views may show it as well
    _figure->Draw(gl, Viewport(), devicePixelRatioF());
    _figure->SetMoving(false);
  } else {
    gl->ClearColor(_figure ? _figure->theme.backgroundTop : Scene::Theme().backgroundTop);
    gl->Clear(RGL_COLOR_BUFFER_BIT);
  }
  gl->CheckError("void Vek::Chart::Widgets::FigureView::paintGL()");
}

Types::Viewport<0> FigureView::Viewport() const {
  const auto pixels = [this](int p_length) {
    return static_cast<float>(std::max(qRound(p_length * devicePixelRatioF()), 1));
  };
  return {0, 0, pixels(width()), pixels(height())};
}

QImage FigureView::Image() {
  return grabFramebuffer().convertToFormat(QImage::Format_RGB32); // opaque: blending has changed alpha
}

void FigureView::Save(const QString& p_path) {
  const QImage image = Image();
  if (image.isNull())
    throw std::runtime_error(p_path.toStdString() + ": the image cannot be written: nothing has been drawn");
  QImageWriter writer(p_path);
  if (!writer.write(image))
    throw std::runtime_error(p_path.toStdString() +
                             ": the image cannot be written: " + writer.errorString().toStdString());
}

void FigureView::Copy() {
  QGuiApplication::clipboard()->setImage(Image());
}

void FigureView::AskWhereToSave() {
  auto* const dialog = new QFileDialog(this, tr("Save image"), QString(), tr("Images (*.png *.jpg *.bmp)"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("png"));
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& p_path) {
    try {
      Save(p_path);
    } catch (const std::runtime_error& error) {
      auto* const box = new QMessageBox(QMessageBox::Warning, tr("Save image"), QString::fromUtf8(error.what()),
                                        QMessageBox::Ok, this);
      box->setAttribute(Qt::WA_DeleteOnClose);
      box->open();
    }
  });
  dialog->open();
}

// Camera

Scene::Camera FigureView::Camera() const {
  if (!_figure)
    return {};
  return _figure->camera ? *_figure->camera : _figure->Layout(Viewport(), devicePixelRatioF()).camera;
}

template <class Function>
void FigureView::Move(const Function& p_function) {
  if (!_figure)
    return;
  const Scene::Camera present = Camera();
  if (present != _orbit.Camera()) // fitted, or changed by the host
    _orbit = Scene::OrbitController(present);
  p_function(_orbit);
  _figure->camera = _orbit.Camera();
  CameraHasMoved();
}

void FigureView::LookFrom(const Scene::Camera& p_direction) {
  if (std::isfinite(p_direction.azimuth) && std::abs(p_direction.elevation) <= 90) // otherwise that of the figure
    _figure->Look(p_direction.azimuth, p_direction.elevation, p_direction.projection);
  _figure->camera.reset();
  CameraHasMoved();
}

void FigureView::CameraHasMoved() {
  update();
  emit CameraMoved();
}

void FigureView::Fit() {
  if (_figure)
    LookFrom(Camera());
}

void FigureView::Look(Scene::Camera::StandardView p_view) {
  if (!_figure)
    return;
  Scene::Camera direction = Camera();
  direction.Look(p_view);
  LookFrom(direction);
}

void FigureView::SetProjection(Scene::Camera::Projection p_projection) {
  Move([=](Scene::OrbitController& p_orbit) { p_orbit.SetProjection(p_projection); });
}

// Picking

std::optional<Scene::Figure::Hit> FigureView::HitAt(const QPointF& p_place) {
  const Types::Viewport<0> viewport = Viewport();
  const double x = std::floor(p_place.x() * devicePixelRatioF());
  const double y = static_cast<double>(viewport.height) - 1 - std::floor(p_place.y() * devicePixelRatioF());
  std::optional<Scene::Figure::Hit> hit;
  if (_figure && x >= 0 && y >= 0 && x < static_cast<double>(viewport.width) &&
      y < static_cast<double>(viewport.height))
    WithContext([&](Utility::Scoped<Rgl>& p_gl) {
      if (_hasFixedFunctions)
        hit = _figure->Pick(p_gl, viewport, {static_cast<int>(x), static_cast<int>(y)}, devicePixelRatioF());
    });
  return hit;
}

QString FigureView::Describe(const Scene::Figure::Hit& p_hit) const {
  QStringList lines;
  if (!p_hit.label.isEmpty())
    lines << p_hit.label;
  if (p_hit.element)
    lines << tr("element %1").arg(*p_hit.element);
  const Position scene = _figure->ToScene(p_hit.position);
  const double pixel = 1 / Camera().PixelsPerUnit(scene, Viewport()); // in scene units
  const Position step = _figure->ToData({scene.x + pixel, scene.y + pixel, scene.z + pixel}) - p_hit.position;
  const auto add = [&](int p_axis, double p_position, double p_step) {
    const QString title = _figure->AxisTitle(p_axis);
    lines << title + (title.size() > 1 ? ": " : " ") + _figure->Format(p_axis, p_position, p_step);
  };
  add(0, p_hit.position.x, step.x);
  add(1, p_hit.position.y, step.y);
  add(2, p_hit.position.z, step.z);
  if (p_hit.value) {
    constexpr int Digits = 6; // of single precision
    const QString title = p_hit.valueTitle.isEmpty() ? tr("value") : p_hit.valueTitle;
    lines << title + ": " + (std::isnan(*p_hit.value) ? tr("missing") : QString::number(*p_hit.value, 'g', Digits));
  }
  return lines.join('\n');
}

void FigureView::ShowReadOut(const QPointF& p_place, const QPoint& p_global) {
  const std::optional<Scene::Figure::Hit> hit = HitAt(p_place);
  QToolTip::showText(p_global, hit ? Describe(*hit) : QString(), this); // hidden without a string
}

// Events

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

namespace {

double& At(Position& p_position, int p_axis) {
  return p_axis == 0 ? p_position.x : p_axis == 1 ? p_position.y : p_position.z;
}

} // namespace

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
