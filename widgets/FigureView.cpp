#include "widgets/FigureView.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PerContext.h"
#include "scene/Background.h"
#include "scene/SaveImage.h"
#include "scene/SurfacePlot.h"

#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QOpenGLContext>
#include <QStringList>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Widgets {

namespace {

using Position = Types::Vector3_Base<double>;

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
  Scene::SaveImage(image, p_path);
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

void FigureView::Move(const std::function<void(Scene::OrbitController&)>& p_function) {
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
  const auto limits = _figure->Limits();
  const bool hasHeight = limits.Min().z < limits.Max().z; // not in flat figures
  if (hasHeight)
    add(2, p_hit.position.z, step.z);
  // Points may have the position along an axis as their value, reliefs their height.
  const bool isRelief = dynamic_cast<const Scene::SurfacePlot*>(p_hit.plot) != nullptr;
  const auto isValue = [&](int p_axis, double p_position) {
    return p_hit.valueTitle == _figure->AxisTitle(p_axis) &&
           (static_cast<float>(p_position) == static_cast<float>(*p_hit.value) || (isRelief && p_axis == 2));
  };
  const Position& at = p_hit.position;
  if (p_hit.value && !isValue(0, at.x) && !isValue(1, at.y) && !(hasHeight && isValue(2, at.z))) {
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

} // namespace Vek::Chart::Widgets
