#include "apps/viewer/PictureView.h"

#include "apps/gallery/GalleryTheme.h"
#include "apps/viewer/MousePlace.h"
#include "apps/viewer/PictureFrame.h"

#include <QMouseEvent>
#include <QOpenGLContext>
#include <QWheelEvent>

#include <exception>
#include <utility>

namespace Vek::Chart::Viewer {

using namespace Scene;

PictureView::PictureView(const Utility::Unscoped<Rgl>& p_gl, QWidget* p_parent)
    : QOpenGLWidget(p_parent)
    , _gl(p_gl) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(440, 275); // a narrow window takes room from the list, not from the picture
  _pointSoon.setSingleShot(true);
  _pointSoon.setInterval(0);
  connect(&_pointSoon, &QTimer::timeout, this, &PictureView::Point);
  connect(this, &QOpenGLWidget::frameSwapped, this, [this] { _paintMs = _painting.elapsed(); });
}

PictureView::~PictureView() {
  Release();
  if (context() != nullptr)
    context()->disconnect(this); // it goes when this is but a QOpenGLWidget
}

QSurfaceFormat PictureView::Format() {
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setProfile(QSurfaceFormat::CompatibilityProfile);
  format.setVersion(2, 1); // the least; drivers give the newest that is compatible
  format.setDepthBufferSize(24);
  format.setStencilBufferSize(8);
  format.setAlphaBufferSize(0);
  format.setSamples(4);
  return format;
}

template <class Function>
void PictureView::WithContext(const Function& p_function) {
  if (context() == nullptr)
    return;
  makeCurrent();
  {
    Utility::Scoped<Rgl> gl(_gl);
    p_function(gl);
  }
  doneCurrent();
}

void PictureView::Show(std::unique_ptr<Gallery::Picture> p_picture, const ShownPicture& p_about) {
  _incoming = {std::move(p_picture), p_about}; // one that waits there owns no GL objects yet
  update();
}

void PictureView::SetColors(const std::vector<QColor>& p_colors) {
  WithContext([&](Utility::Scoped<Rgl>&) {
    if (_shown.picture)
      _shown.picture->SetColors(p_colors);
  });
  update();
}

void PictureView::SetShape(std::size_t p_index) {
  WithContext([&](Utility::Scoped<Rgl>&) {
    if (_shown.picture)
      _shown.picture->SetShape(p_index);
  });
  SurfacesChanged();
  update();
}

void PictureView::ResetCamera() {
  _orbit.Reset();
  SurfacesChanged();
  update();
}

Scene::View PictureView::View() const {
  const double ratio = devicePixelRatioF();
  return {_orbit.Camera(), PictureFrame(qRound(width() * ratio), qRound(height() * ratio))};
}

Types::Viewport<0> PictureView::CameraViewport() const {
  const Scene::View view = View();
  return _shown.picture ? _shown.picture->SurfaceViewport(view) : view.viewport;
}

QImage PictureView::Image() {
  _isMoving = false;
  return grabFramebuffer().convertToFormat(QImage::Format_RGB32);
}

std::optional<SurfacePoint> PictureView::SurfaceAt(const QPointF& p_place) {
  std::optional<SurfacePoint> point;
  if (!_shown.picture || !rect().contains(p_place.toPoint()))
    return point;
  const QPointF pixel = p_place * devicePixelRatioF();
  const int top = qRound(height() * devicePixelRatioF()) - 1;
  WithContext([&](Utility::Scoped<Rgl>& p_gl) {
    if (!_picker)
      _picker.emplace();
    point =
        _picker->At(p_gl, *_shown.picture, View(), {static_cast<int>(pixel.x()), top - static_cast<int>(pixel.y())});
  });
  return point;
}

void PictureView::initializeGL() {
  connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &PictureView::Release);
}

void PictureView::Release() {
  WithContext([this](Utility::Scoped<Rgl>&) {
    _incoming.picture.reset();
    _shown.picture.reset();
    _picker.reset();
  });
}

void PictureView::resizeGL(int, int) {
  SurfacesChanged(); // it is drawn in any case
}

void PictureView::paintGL() {
  _painting.start();
  Utility::Scoped<Rgl> gl(_gl);
  const Scene::View view = View();
  if (!DrawIncoming(gl) && _shown.picture && !Draw(gl, _shown, view))
    _shown.picture.reset();
  const Types::Viewport<0>& frame = view.viewport;
  DrawAround(gl, _shown.picture ? frame : Types::Viewport<0>(0, frame.y + frame.height / 2, frame.width, 0));
  gl->CheckError("SceneView");
}

bool PictureView::DrawIncoming(Utility::Scoped<Rgl>& p_gl) {
  if (!_incoming.picture)
    return false;
  Content content = std::exchange(_incoming, {});
  const OrbitController orbit(content.picture->StartCamera());
  if (!Draw(p_gl, content, {orbit.Camera(), View().viewport}))
    return false;
  _shown = std::move(content);
  _orbit = orbit;
  SurfacesChanged();
  QMetaObject::invokeMethod(
      this, [this] { emit Shown(); }, Qt::QueuedConnection);
  return true;
}

bool PictureView::Draw(Utility::Scoped<Rgl>& p_gl, const Content& p_content, const Scene::View& p_view) {
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_VIEWPORT_BIT);
  p_gl->Viewport(p_view.viewport);
  if (p_content.about.truePixels || _isMoving)
    p_gl->Disable(RGL_MULTISAMPLE);
  try {
    p_content.picture->Draw(p_gl, p_view);
    return true;
  } catch (const std::exception& error) {
    const QString reason = QString::fromStdString(p_content.about.name + ": " + error.what());
    QMetaObject::invokeMethod(
        this, [this, reason] { emit Rejected(reason); }, Qt::QueuedConnection);
    return false;
  }
}

void PictureView::DrawAround(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_picture) const {
  const auto state = p_gl->PushAttribScope(RGL_SCISSOR_BIT | RGL_ENABLE_BIT | RGL_COLOR_BUFFER_BIT);
  const int width = static_cast<int>(p_picture.width);
  const int lower = static_cast<int>(p_picture.y);
  const int upper = static_cast<int>(p_picture.y + p_picture.height);
  const int top = qRound(height() * devicePixelRatioF());
  const auto fill = [&](int p_from, int p_to, const QColor& p_color) {
    p_gl->Scissor(0, p_from, width, std::max(p_to - p_from, 0));
    p_gl->ClearColor(p_color);
    p_gl->Clear(RGL_COLOR_BUFFER_BIT);
  };
  p_gl->Enable(RGL_SCISSOR_TEST);
  fill(0, lower, Gallery::GalleryTheme::BackgroundBottom);
  fill(upper, top, Gallery::GalleryTheme::BackgroundTop);
}

void PictureView::SurfacesChanged() {
  constexpr int Rest = 100; // ms without another change
  if (_picker)
    _picker->Invalidate();
  _pointSoon.start(Rest);
}

void PictureView::Move() {
  constexpr qint64 Slow = 40; // ms
  _isMoving = _isMoving || _paintMs > Slow;
  SurfacesChanged();
  update();
}

void PictureView::Point() {
  if (std::exchange(_isMoving, false))
    update();
  if (_pointer)
    emit Pointed(SurfaceAt(*_pointer));
}

void PictureView::mousePressEvent(QMouseEvent* p_event) {
  _dragFrom = MousePlace(*p_event);
}

void PictureView::mouseMoveEvent(QMouseEvent* p_event) {
  const QPointF place = MousePlace(*p_event);
  const QPointF moved = place - std::exchange(_dragFrom, place);
  _pointer = place;
  const Qt::MouseButtons buttons = p_event->buttons();
  const bool shift = p_event->modifiers().testFlag(Qt::ShiftModifier);
  if (buttons == Qt::NoButton) {
    _pointSoon.start(0);
    return;
  }
  const QPointF pixels = moved * devicePixelRatioF();
  if (buttons.testFlag(Qt::MiddleButton) || (buttons.testFlag(Qt::LeftButton) && shift))
    _orbit.Pan(pixels.x(), -pixels.y(), CameraViewport());
  else if (buttons.testFlag(Qt::LeftButton))
    _orbit.Rotate(moved.x(), -moved.y());
  else if (buttons.testFlag(Qt::RightButton))
    _orbit.Zoom(-moved.y() / 24); // that many pixels are a notch of the wheel
  Move();
}

void PictureView::wheelEvent(QWheelEvent* p_event) {
  constexpr double Notch = 120;
  const QPointF pixel = p_event->position() * devicePixelRatioF();
  const double top = qRound(height() * devicePixelRatioF());
  _orbit.Zoom(p_event->angleDelta().y() / Notch, {pixel.x(), top - pixel.y(), true}, CameraViewport());
  Move();
}

void PictureView::leaveEvent(QEvent*) {
  _pointer.reset();
  emit Pointed({});
}

} // namespace Vek::Chart::Viewer
