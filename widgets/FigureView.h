#pragma once

#include "widgets/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"
#include "scene/Figure.h"
#include "scene/OrbitController.h"

#include <QImage>
#include <QOpenGLWidget>
#include <QPointF>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace Vek::Chart::Widgets {

/// Shows a Scene::Figure in a window, to be rotated, panned, zoomed and read.
///
///     QApplication application(argc, argv);
///     auto figure = std::make_shared<Scene::Figure>("Winds of the world");
///     figure->Quiver(positions, vectors).ColorBy(speed);
///     Widgets::FigureView view(figure);
///     view.show();
///     return application.exec();
///
/// | Input | Effect |
/// |---|---|
/// | drag | rotates as a turntable |
/// | Ctrl+drag on a slice | moves the slice (see Scene::SlicesPlot) and emits SliceMoved |
/// | Shift+drag, middle or right drag | pans |
/// | wheel | zooms to the cursor |
/// | click (less than ClickDistance moved) | emits Picked and shows what lies there |
/// | move, after `setMouseTracking(true)` | emits Pointed |
/// | rest | shows what Describe returns for what lies under the cursor as a tool tip |
/// | double click on data | moves them into the middle |
/// | R | fits the figure into the widget |
/// | 1, 3, 7 | views from the front, the right, the top |
/// | 5 | switches between perspective and parallel projection |
/// | Ctrl+S | asks for a file and writes the image |
/// | Ctrl+C | copies the image |
///
/// Keys need the focus, which a click gives; shortcuts of the host's window come before them. No context menu is
/// requested, unless the host sets another context menu policy.
///
/// **Ownership**: figure and view share the figure, so that either may go first; a host that drops its pointer leaves
/// the figure to the view. Several views may show one figure.
///
/// **Camera**: the view moves the camera of the figure, `Figure::camera`, so that `Figure::Save` writes what was looked
/// at. Until the first movement, and after R and the keys of views, the figure fits its own camera at each drawing,
/// also when the widget is resized. Views of one figure share its camera: connect CameraMoved of each with `update` of
/// the others.
///
/// **Drawing**: only when the widget is exposed or resized, when the camera moves, and after `update()`, which the host
/// calls after it changed the figure. Four samples a pixel; a point of the figure is a pixel of the screen's logical
/// coordinates. While the camera moves, and MovingTime after the wheel, half-transparent plots have one layer (see
/// Scene::Figure::SetMoving).
///
/// **GL**: the constructor requests a compatibility profile, without a version (with one, drivers give a core profile).
/// A host may change the format before the widget is shown. In a core profile nothing but the background is drawn,
/// which is reported once for each context ("WARNING: FigureView: a compatibility profile is needed, this context has a
/// core profile"). GL objects of the figure in the view's context are freed when the context goes: with the view, or
/// when the view gets another window. GUI thread only.
///
/// \snippet FigureViewSnippets.cpp FigureView
/// \image html parts/FigureView.png
/// \ingroup widgets
class VEK_WIDGETS_API FigureView : public QOpenGLWidget {
  Q_OBJECT
public:
  static constexpr double ClickDistance = 4; ///< logical pixels; a button that moves less is a click
  static constexpr int MovingTime = 150;     ///< milliseconds after a turn of the wheel

  /// Without a figure, an empty background is shown.
  explicit FigureView(std::shared_ptr<Scene::Figure> p_figure = {}, QWidget* p_parent = nullptr);
  /// Frees the GL objects of the figure in the view's context.
  ~FigureView() override;

  /// The figure that is shown; may be null.
  const std::shared_ptr<Scene::Figure>& Figure() const { return _figure; }
  /// Shows another figure, or none. Frees the GL objects of the one before in the view's context.
  void SetFigure(std::shared_ptr<Scene::Figure> p_figure);

  /// The camera that the figure is drawn with, for the viewport of the widget in pixels of the device.
  Scene::Camera Camera() const;
  /// The viewport of the figure: all of the widget, in pixels of the device.
  Types::Viewport<0> Viewport() const;
  /// Fits the whole figure into the widget. Direction and projection stay, without roll.
  void Fit();
  /// Looks from a usual direction and fits the figure into the widget. The projection stays.
  void Look(Scene::Camera::StandardView p_view);
  /// Switches between perspective and parallel projection; the target's plane keeps its scale.
  void SetProjection(Scene::Camera::Projection p_projection);

  /// What lies at a point of the widget (see Scene::Figure::Pick); empty where there are no data, outside the widget,
  /// and before the widget was shown. `p_place` is in logical pixels from the upper left corner, as mouse events have
  /// it.
  std::optional<Scene::Figure::Hit> HitAt(const QPointF& p_place);

  /// The label of the plot, the element, the position and the value of a hit, a line each. Positions have the titles of
  /// their axes and as many digits as a pixel is worth, in degrees on a map; values have six digits and the title of
  /// their colour bar.
  QString Describe(const Scene::Figure::Hit& p_hit) const;

  /// What is shown, in pixels of the device; null before the widget was shown.
  QImage Image();
  /// Writes that image to a file, in the format that its suffix names (PNG and what Qt supports). Throws
  /// std::runtime_error with path and reason.
  void Save(const QString& p_path);
  /// Copies that image to the clipboard.
  void Copy();

signals:
  /// A click: what lies under the cursor; empty beside the data.
  void Picked(const std::optional<Vek::Chart::Scene::Figure::Hit>& p_hit);
  /// What lies under the cursor, which moved without a button; empty beside the data, and when the cursor leaves. With
  /// mouse tracking alone. Moves that wait for a drawing are skipped.
  void Pointed(const std::optional<Vek::Chart::Scene::Figure::Hit>& p_hit);
  /// A slice was dragged to a position along its axis, in data units.
  void SliceMoved(const Vek::Chart::Scene::SlicesPlot* p_plot, std::size_t p_slice, double p_position);
  /// The camera of the figure was moved by the view.
  void CameraMoved();

protected:
  ///@{
  /// Of QOpenGLWidget.
  void initializeGL() override;
  void paintGL() override;
  bool event(QEvent* p_event) override;
  void mousePressEvent(QMouseEvent* p_event) override;
  void mouseMoveEvent(QMouseEvent* p_event) override;
  void mouseReleaseEvent(QMouseEvent* p_event) override;
  void mouseDoubleClickEvent(QMouseEvent* p_event) override;
  void wheelEvent(QWheelEvent* p_event) override;
  void leaveEvent(QEvent* p_event) override;
  void keyPressEvent(QKeyEvent* p_event) override;
  ///@}

private:
  /// Calls with a scope while the context is current; not at all without a context.
  template <class Function>
  void WithContext(const Function& p_function);
  void Release();
  /// Qt forgets the samples of the format when the view gets another window.
  void KeepSamples();
  /// Moves the camera of the figure by a function of an OrbitController.
  void Move(const std::function<void(Scene::OrbitController&)>& p_function);
  void LookFrom(const Scene::Camera& p_direction);
  void CameraHasMoved();
  bool PressKey(int p_key);
  void AskWhereToSave();

  void Rest();
  void BeginSlice(const QPointF& p_place);
  void DragSlice(const QPointF& p_place);
  void ShowReadOut(const QPointF& p_place, const QPoint& p_global);

  std::shared_ptr<Scene::Figure> _figure;
  std::optional<Utility::Unscoped<Rgl>> _gl; ///< of the present context
  bool _hasFixedFunctions = false;           ///< of that context
  bool _hadContext = false;
  int _samples = 0; ///< of the format
  Scene::OrbitController _orbit;
  QTimer _wheelTimer;
  QTimer _pointTimer;     ///< once for all moves that wait in the queue
  QPointF _pointer;       ///< the last of them
  bool _isMoving = false; ///< the camera, so that another image follows soon
  QPointF _press, _last;  ///< of the mouse, in logical pixels
  // Doxygen would link to a list of nested classes that it does not make when all are private.
  /// \cond
  struct DraggedSlice {
    Scene::SlicesPlot* plot;
    std::size_t number;
    int axis;
    Types::Vector3_Base<double> scene; // where the cursor met it
    QPointF place;                     // of the cursor then
  };
  /// \endcond
  std::optional<DraggedSlice> _slice; ///< that is dragged
  bool _isDrag = false;               ///< the mouse has moved too far for a click
  bool _isClick = false;              ///< the button that is down is not that of a double click
};

} // namespace Vek::Chart::Widgets
