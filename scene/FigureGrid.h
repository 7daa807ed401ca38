#pragma once

#include "scene/Camera.h"
#include "scene/Export.h"
#include "scene/Figure.h"
#include "scene/LegendBlock.h"
#include "scene/TextRenderer.h"
#include "scene/Theme.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QImage>
#include <QSizeF>
#include <QString>

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene {

/// Figures in rows and columns under a common title, drawn to one image, file or viewport.
///
///     FigureGrid grid(1, 2, "Winds of 1987");
///     grid.At(0, 0).Quiver(positions, january).ColorTitle("Speed in m/s");
///     grid.At(0, 1).Quiver(positions, july).ColorTitle("Speed in m/s");
///     grid.LinkCameras().Save("winds.png", {1600, 700});
///
/// Cells have equal sizes; each figure lays out its own titles, axes and legends in its cell. Rows are counted from the
/// top, columns from the left, both from 0. Figures keep their addresses as long as the grid, also when it is moved.
///
/// **Linked cameras** have the same direction and projection, and the same zoom and pan relative to the view that is
/// fitted to the data of each figure, which may have units of its own. At each drawing, the first figure whose camera
/// or direction was changed since the last one moves the others.
///
/// Ownership, threads and errors are those of Figure.
///
/// \snippet SceneMapSnippets.cpp FigureGrid
/// \image html parts/FigureGrid.png
/// \ingroup plots
class VEK_SCENE_API FigureGrid {
public:
  /// Empty figures. Throws std::invalid_argument for less than one or more than 100 rows or columns.
  FigureGrid(std::size_t p_rows, std::size_t p_columns, const QString& p_title = {}, const QString& p_subtitle = {});

  /// How many rows there are.
  std::size_t Rows() const { return _rows; }
  /// How many columns there are.
  std::size_t Columns() const { return _columns; }
  /// A figure. Throws std::invalid_argument for a cell that there is not.
  Figure& At(std::size_t p_row, std::size_t p_column);

  /// Sets the theme of the title and of all figures. Figures with the background of the grid share its gradient.
  FigureGrid& SetTheme(const Theme& p_theme);
  /// Links the cameras of all figures, or ends that.
  FigureGrid& LinkCameras(bool p_linked = true);

  /// The part of a viewport that a figure is drawn in, in whole pixels. Throws as `At`. Needs a QGuiApplication where
  /// there is a title.
  Types::Viewport<0> Cell(std::size_t p_row, std::size_t p_column, const Types::Viewport<0>& p_viewport,
                          double p_pixelRatio = 1) const;
  /// The figure under a pixel of the window, from its lower left corner; null where there is none.
  Figure* FigureAt(const Camera::Pixel& p_pixel, const Types::Viewport<0>& p_viewport, double p_pixelRatio = 1);

  /// Draws all figures; see Figure::Draw.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, double p_pixelRatio = 1);
  /// Draws into a new image; see Figure::Image.
  QImage Image(Types::Size p_size = {1600, 1000}, int p_samples = 4, double p_pixelRatio = 1);
  /// Writes an image or a PDF; see Figure::Save.
  void Save(const QString& p_path, Types::Size p_size = {1600, 1000}, double p_resolution = 200);
  /// Paints a page of `p_size` points; see Figure::Paint.
  void Paint(QPainter& p_painter, const QSizeF& p_size, double p_resolution = 200);
  /// Frees the GL objects of the scope's context.
  void Release(const Utility::Scoped<Rgl>& p_gl) const;

private:
  // Doxygen would link to a list of nested classes that it does not make when all are private.
  /// \cond
  struct View {                   // how a figure was drawn last
    std::optional<Camera> camera; // of the figure
    Camera direction;             // its angles and projection
  };
  /// \endcond

  /// Of a cell. Throws as `At`.
  std::size_t IndexOf(std::size_t p_row, std::size_t p_column) const;
  Types::Viewport<0> Cell(std::size_t p_index, const Types::Viewport<0>& p_viewport, double p_pixelRatio) const;
  LegendBlock TitleBlock(double p_pixelRatio) const;
  using CellFunction = std::function<void(Figure&, const Types::Viewport<0>&)>;
  /// Calls with each figure that has room, while it has its part of the background.
  void ForEachCell(const Types::Viewport<0>& p_viewport, double p_pixelRatio, const CellFunction& p_function);
  void Link(const Types::Viewport<0>& p_viewport, double p_pixelRatio);
  void Follow(std::size_t p_leader, const Types::Viewport<0>& p_viewport, double p_pixelRatio);

  std::size_t _rows, _columns;
  QString _title, _subtitle;
  Theme _theme;
  std::vector<Figure> _figures; ///< row by row
  bool _isLinked = false;
  std::vector<View> _views; ///< of all figures; empty before the first drawing
  TextRenderer _text;
};

} // namespace Vek::Chart::Scene
