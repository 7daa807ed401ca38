#pragma once

#include "apps/viewer/ShownPicture.h"
#include "apps/viewer/SurfacePicker.h"

#include "apps/gallery/Picture.h"
#include "scene/OrbitController.h"

#include <QColor>
#include <QElapsedTimer>
#include <QImage>
#include <QOpenGLWidget>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

namespace Vek::Chart::Viewer {

/// Shows a picture in a window. Drag to rotate, middle-drag or Shift-drag to pan, right-drag to zoom, scroll to zoom to
/// the cursor. Without a button, Pointed reports the surface under the cursor.
///
/// It draws when something has changed, and only then. While a hand moves the camera of a picture that takes long to
/// draw, edges are not smoothed. The GL objects of pictures are released with the widget's context current: when
/// another picture comes, and when the context goes.
class PictureView : public QOpenGLWidget {
  Q_OBJECT
public:
  /// `p_gl` is to work on whatever context is current, as Rgl::OnCurrentContext() does.
  explicit PictureView(const Utility::Unscoped<Rgl>& p_gl, QWidget* p_parent = nullptr);
  ~PictureView() override;

  /// The format that its context needs; for QSurfaceFormat::setDefaultFormat before the first window.
  static QSurfaceFormat Format();

  /// Shows a picture from its start camera as soon as the widget is drawn; followed by Shown, or by Rejected when its
  /// first drawing throws. Then, and until then, the picture before stays.
  void Show(std::unique_ptr<Gallery::Picture> p_picture, const ShownPicture& p_about);
  /// The picture that is shown; null before the first one.
  const Gallery::Picture* Picture() const { return _shown.picture.get(); }
  const ShownPicture& About() const { return _shown.about; }

  // Of the picture that is shown; see Gallery::Picture.
  void SetColors(const std::vector<QColor>& p_colors);
  void SetShape(std::size_t p_index);
  void ResetCamera();

  /// What is drawn, in pixels of the device.
  Scene::View View() const;
  /// The picture as it is shown.
  QImage Image();
  /// The surface below a place of the widget.
  std::optional<SurfacePoint> SurfaceAt(const QPointF& p_place);
  /// How often the surfaces of pictures were drawn for picking.
  int PickDrawings() const { return _picker ? _picker->Drawings() : 0; }

signals:
  void Shown();
  /// A picture cannot be drawn.
  void Rejected(const QString& p_reason);
  /// The pointer rests on a surface, or on none.
  void Pointed(const std::optional<Vek::Chart::Viewer::SurfacePoint>& p_point);

protected:
  void initializeGL() override;
  void paintGL() override;
  void resizeGL(int p_width, int p_height) override;
  void mousePressEvent(QMouseEvent* p_event) override;
  void mouseMoveEvent(QMouseEvent* p_event) override;
  void wheelEvent(QWheelEvent* p_event) override;
  void leaveEvent(QEvent* p_event) override;

private:
  struct Content {
    std::unique_ptr<Gallery::Picture> picture;
    ShownPicture about;
  };

  /// Calls with a scope while the context is current; not at all before there is one.
  template <class Function>
  void WithContext(const Function& p_function);
  void Release();
  /// True when the picture that waits was drawn, and took the place of the one before.
  bool DrawIncoming(Utility::Scoped<Rgl>& p_gl);
  /// False when drawing threw, which is told.
  bool Draw(Utility::Scoped<Rgl>& p_gl, const Content& p_content, const Scene::View& p_view);
  /// A hand moves the camera.
  void Move();
  /// Continues the background of pictures above and below one.
  void DrawAround(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_picture) const;
  void SurfacesChanged();
  /// The part of the widget that the camera fills, in pixels of the device.
  Types::Viewport<0> CameraViewport() const;
  void Point();

  Utility::Unscoped<Rgl> _gl;
  Content _shown;
  Content _incoming; ///< not drawn yet
  Scene::OrbitController _orbit;
  std::optional<SurfacePicker> _picker;
  QTimer _pointSoon;               ///< once for all moves of the pointer that wait in the queue
  std::optional<QPointF> _pointer; ///< while it is above the widget
  QPointF _dragFrom;
  bool _isMoving = false; ///< the picture is to come soon, rather than smooth
  QElapsedTimer _painting;
  qint64 _paintMs = 0; ///< how long the last picture took
};

} // namespace Vek::Chart::Viewer
