#pragma once

#include "scene/Array.h"
#include "scene/Axes.h"
#include "scene/BarsPlot.h"
#include "scene/Camera.h"
#include "scene/Export.h"
#include "scene/FigureLayout.h"
#include "scene/IsosurfacePlot.h"
#include "scene/LinesPlot.h"
#include "scene/MeshPlot.h"
#include "scene/Plot.h"
#include "scene/QuiverPlot.h"
#include "scene/ScatterPlot.h"
#include "scene/SlicesPlot.h"
#include "scene/StreamlinesPlot.h"
#include "scene/SurfacePlot.h"
#include "scene/Theme.h"
#include "scene/VectorField.h"
#include "scene/VolumePlot.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/types/Size.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QImage>
#include <QSizeF>
#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

class QPainter;

namespace Vek::Chart::Library {
class ObjModel;
struct ObjScene;
} // namespace Vek::Chart::Library

namespace Vek::Chart::Scene {

/// A chart: plots of data in axes, with titles, colour bars, keys and notes, drawn to an image, a file, or a rendering
/// scope of a host.
///
///     Figure figure("Winds of the world", "January 1987");
///     figure.Quiver(positions, vectors).ColorBy(speed).ColorMap("inferno").ColorTitle("Speed in m/s");
///     figure.Save("wind.png", {1600, 1000});
///
/// **Data** are read during the call; nothing of the caller's is kept. Positions are in double precision: numbers of
/// 10⁷ and more keep their digits. NaN is missing. What is missing, left out or stretched is said in the figure.
///
/// **Limits** of the axes are round numbers around all data with their whole glyphs. Units are equal on all axes unless
/// their spans differ by more than four; then y is stretched against x, and z against the longer one of both, by a
/// round factor, which the figure says ("z × 50").
///
/// **View**: a perspective of 30° from azimuth −30° (matplotlib's −60°) and elevation 30°, z up; data in one plane z =
/// const with vectors in it are seen from above, in parallel projection, later plots above earlier ones. The camera is
/// fitted so that axes and all strings lie in the image.
///
/// **Scene units**: the camera's. Differences of data, times the same power of two on all axes times the stretch, so
/// that the longest edge of the axes is about 1; on a logarithmic axis, of decimal logarithms. See ToScene.
///
/// **Half-transparent plots** are seen through each other in the right order, whatever the order of their elements: up
/// to four layers for each pixel (depth peeling), without samples, behind them what is opaque. Volumes lie behind all
/// surfaces that are half-transparent.
///
/// **Ownership**: the figure owns its plots; a reference to one is valid until Remove, also when the figure is moved.
/// GL objects are kept in each context as `Ogl::PerContext` describes, so that figures end before or after contexts.
/// One thread a figure.
///
/// **Errors**: std::invalid_argument for wrong arguments, with what was expected and what came; std::runtime_error for
/// a file that cannot be written, with path and reason. A plot without any finite point is reported ("WARNING: Figure:
/// plot 1 has no point to show") and the axes are drawn.
///
/// \snippet SceneFigureSnippets.cpp Figure
/// \image html parts/Figure.png
/// \ingroup plots
class VEK_SCENE_API Figure {
public:
  /// A figure without plots; titles may be empty.
  explicit Figure(const QString& p_title = {}, const QString& p_subtitle = {});
  ~Figure();
  /// Takes over plots and GL objects; the other figure may only be destroyed or assigned to.
  Figure(Figure&& p_other) noexcept;
  /// Likewise.
  Figure& operator=(Figure&& p_other) noexcept;

  Theme theme; ///< colours, font and sizes of what is not data; light by default
  /// The camera, in scene units. Without one, the figure has its own, fitted to the data at each drawing.
  std::optional<Scene::Camera> camera;

  ///@{
  /// Adds a plot.
  QuiverPlot& Quiver(const Array3& p_positions, const Array3& p_vectors);
  ScatterPlot& Scatter(const Array3& p_positions);
  /// One line through all points, or several one after the other: `p_lengths` are their numbers of points, which add up
  /// to all.
  LinesPlot& Lines(const Array3& p_positions, std::vector<std::size_t> p_lengths = {});
  BarsPlot& Bars(const Array1& p_x, const Array1& p_y, const Array1& p_heights);
  StreamlinesPlot& Streamlines(const VectorField& p_field);
  SurfacePlot& Surface(const Array1& p_x, const Array1& p_y, const Array1& p_heights);
  MeshPlot& Mesh(const Array3& p_positions, const std::vector<std::array<unsigned, 3>>& p_triangles);
  /// Likewise, with three indices for each triangle one after the other. (A template, so that lists in braces are not
  /// ambiguous.) Throws std::invalid_argument for a number of indices that is no multiple of three.
  template <class Index, std::enable_if_t<std::is_same_v<Index, std::uint32_t>, int> = 0>
  MeshPlot& Mesh(const Array3& p_positions, const std::vector<Index>& p_indices) {
    return IndexedMesh(p_positions, p_indices);
  }
  /// The triangles of an `Io::Mesh` with their normals, colours and textures, without its lines and points.
  MeshPlot& Mesh(const Library::ObjScene& p_mesh);
  /// The triangles of all groups of a model.
  MeshPlot& Mesh(const Library::ObjModel& p_model);
  /// Slices through a volume: an `Io::Volume`, or numbers with their place.
  SlicesPlot& Slices(const VoxelGrid& p_volume);
  /// A volume that is looked through.
  VolumePlot& Volume(const VoxelGrid& p_volume);
  /// The surface on which the values of a volume equal a level.
  IsosurfacePlot& Isosurface(const VoxelGrid& p_volume, double p_level);
  /// The surfaces of several levels, one at least.
  IsosurfacePlot& Isosurface(const VoxelGrid& p_volume, const std::vector<double>& p_levels);
  ///@}
  /// Removes a plot and frees its GL objects. Throws std::invalid_argument for a plot of another figure.
  void Remove(const Plot& p_plot);

  /// Replaces the titles.
  Figure& SetTitle(const QString& p_title, const QString& p_subtitle = {});
  /// What the axes measure, with units; by default x, y and z for spatial data, nothing for flat data.
  Figure& SetAxisTitles(const QString& p_x, const QString& p_y, const QString& p_z = {});
  /// Names in place of values on an axis, 0 to 2 for x to z: at 0, 1, 2, … Of more than Axes::MostTicks, and of those
  /// that have no room beside each other, every second, third, … is shown.
  Figure& SetAxisNames(int p_axis, const std::vector<QString>& p_names);
  /// The ticks of an axis, 0 to 2 for x to z: `&Ticks::Dates`, for example. By default decimal values.
  Figure& SetTicks(int p_axis, Axes::TickMaker p_ticks);
  /// The limits of an axis, 0 to 2 for x to z: finite and ascending, above 0 on a logarithmic axis; of a map, latitudes
  /// from −90 to 90, longitudes from −360 to 720 up to 360 apart. Points outside are left out, which is said. Surfaces
  /// and meshes are cut at the limits. On a map this holds for its borders alone; beyond other limits of a map, and
  /// where limits and cutting planes are more than six, they end at the last vertices within.
  Figure& SetLimits(int p_axis, double p_low, double p_high);
  /// Makes an axis logarithmic, and no axis of dates or of a map. Points that are not above 0 are left out, which is
  /// said. Limits and cutting planes must be above 0.
  Figure& SetLogAxis(int p_axis, bool p_logarithmic = true);
  /// Makes an axis one of dates: values are seconds since 1970-01-01 00:00 UTC (see Ticks::Dates), which
  /// Io::Table::Times makes of the cells of a table. Its unit compares to no other one, so that it is stretched without
  /// a note. Not logarithmic, and not of a map.
  ///
  /// \snippet SceneMapSnippets.cpp Dates
  /// \image html parts/Dates.png
  Figure& SetDateAxis(int p_axis, bool p_dates = true);
  /// Makes x a longitude and y a latitude, both in degrees, on an equirectangular map: meridians and parallels have
  /// their names ("30° N"), and degrees of longitude their true length in the middle of a map that is narrower than
  /// half the world (see Graticule). Neither x nor y is logarithmic or a date then; z has a unit of its own.
  ///
  /// Longitudes from −360 to 720 are drawn wherever the map has them, and what leaves it at one border enters at the
  /// other. Nothing is drawn beyond the borders. Points beyond a pole are left out, which is said. The borders are
  /// round limits around the data, or the whole world for data wider than 300°: 0 to 360 without negative longitudes,
  /// else −180 to 180. SetLimits(0, 150, 240) makes a map across the date line.
  ///
  /// Throws std::invalid_argument for limits that are no map (see SetLimits) and for more than two cutting planes, as
  /// the borders take four.
  ///
  /// \snippet SceneMapSnippets.cpp Map
  /// \image html parts/Map.png
  Figure& SetMap(bool p_isMap = true);
  /// Makes the axes for a box in data units, as if it were the one around all data with their whole glyphs: for figures
  /// that have a share of the data each and the same axes. A box that is flat along z makes the figure flat. An empty
  /// box stands for the own data again, as at first. Throws std::invalid_argument for a box that is not finite.
  Figure& SetExtent(const Types::BoundingBox_Base<double>& p_box);
  /// Replaces what the figure notes about its data, for a figure with a share of them.
  Figure& SetNotes(const std::vector<QString>& p_notes);
  /// Lengths of units along the axes relative to each other, above 0; {1, 1, 1} for equal units whatever the spans.
  Figure& SetAspect(double p_x, double p_y, double p_z);
  /// The direction of the own camera, in degrees (see Camera), and a projection; it stays fitted to the data.
  Figure& Look(double p_azimuth, double p_elevation, Camera::Projection p_projection = Camera::Projection::Perspective);

  /// The side of a cutting plane that stays.
  enum class Side {
    Below, ///< smaller positions
    Above, ///< larger positions
  };
  /// Cuts all plots: only what lies on the side of the plane that its normal points to is drawn and picked. Point and
  /// normal are in data units; along a logarithmic axis, the normal counts in decades. Limits and axes stay. The
  /// outline of the cut is drawn, and the figure says that it is cut. Throws std::invalid_argument for a plane that is
  /// not finite or has no normal, for a number that is not above 0 on a logarithmic axis, and for the seventh plane, on
  /// a map the third.
  Figure& Clip(const Types::Plane& p_plane);
  /// Likewise, across an axis, 0 to 2 for x to z, at a position in data units.
  Figure& Clip(int p_axis, double p_position, Side p_kept);
  /// The cutting planes, in the order of their calls.
  const std::vector<Types::Plane>& Clips() const;
  /// Removes the cutting plane of a number, counted from 0. Throws std::invalid_argument for a number past the end.
  Figure& RemoveClip(std::size_t p_number);

  /// Shows which way the axes point by an OrientationTriad in the lower left corner of the scene, in figures that are
  /// not flat; by default not. `Paint` and PDFs have none.
  Figure& SetTriad(bool p_isShown = true);

  /// Whether further drawings follow soon, while a user moves the camera, for example. Half-transparent plots then have
  /// one layer, volumes fewer samples, and glyphs and lines coarser levels. Of many glyphs or segments, every k-th is
  /// drawn, which the upper left corner says. False at first. From the first call on, with either value, drawings at
  /// rest prepare what moving ones need.
  Figure& SetMoving(bool p_isMoving);

  /// Draws everything into a viewport of the window and clears what was there. All GL state is restored. With
  /// half-transparent plots, no GL query of samples may be active.
  ///
  /// Errors: a viewport without area, or a core context, is reported, and nothing is drawn: fixed functions are needed,
  /// of a compatibility profile ("Figure: a compatibility profile is needed, this context has a core profile"). With
  /// Qt, ask for the profile alone: QSurfaceFormat::setProfile without setVersion.
  ///
  /// \param p_gl an open scope of the context
  /// \param p_viewport in pixels of the frame buffer
  /// \param p_pixelRatio pixels of a point, in which letters and lines are measured: the device pixel ratio
  void Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, double p_pixelRatio = 1);
  /// A part of what `Draw` draws. All of them in this order, with one layout, make the same image.
  enum class Layer {
    Background,  ///< the background, which clears what was there, and the axes
    Opaque,      ///< opaque plots, which write depths, and the outlines of cuts
    Transparent, ///< volumes and half-transparent plots, blended with what is there
    Legends,     ///< titles, colour bars, keys, notes and the triad
  };
  /// Draws one layer, for images that are composited of the drawings of several figures: each with its share of the
  /// data (see SetExtent), and the axes and legends of one of them. The depths of opaque plots are compared with those
  /// that the frame buffer has, and clearing these is up to the caller. Errors: as `Draw`.
  ///
  /// \param p_gl an open scope of the context
  /// \param p_viewport in pixels of the frame buffer
  /// \param p_layout of this viewport and ratio; another camera may be set in it
  /// \param p_layer what is drawn
  /// \param p_pixelRatio pixels of a point
  void Draw(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const FigureLayout& p_layout,
            Layer p_layer, double p_pixelRatio = 1);
  /// Whether a visible plot is half-transparent. Volumes do not count.
  bool HasTransparent() const;
  /// Whether a visible plot is a volume that is looked through.
  bool HasVolume() const;

  /// Draws into a new image with `p_samples` samples a pixel and `p_pixelRatio` pixels a point. With half-transparent
  /// plots, it is drawn at twice the size with a quarter of the samples, and averaged, where no side is longer than
  /// 4096 pixels. Needs no display, no context and no application object: where there is none, a QGuiApplication of the
  /// platform "offscreen" lives during the call, so that a QApplication can be made afterwards. Main thread, where
  /// there is no application object.
  ///
  /// Throws std::invalid_argument for a size that is not positive, std::runtime_error where no context can be made.
  QImage Image(Types::Size p_size = {1200, 800}, int p_samples = 4, double p_pixelRatio = 1);
  /// The same without background: drawn on black and on white, it has the opacity by which both differ. Throws as
  /// `Image`.
  QImage ImageWithoutBackground(Types::Size p_size = {1200, 800}, int p_samples = 4);
  /// Writes what `Image` draws to a file, in the format that its suffix names (PNG and what Qt supports), or a PDF: one
  /// page of `p_size` points (1/72 inch) as `Paint` paints it, with the fonts embedded. Throws as `Image`, and
  /// std::runtime_error with path and reason for a file that cannot be written whole; an older one stays then.
  ///
  /// \param p_path ends in ".pdf" for a PDF
  /// \param p_size in pixels or points
  /// \param p_resolution of the data in a PDF, in pixels per inch
  void Save(const QString& p_path, Types::Size p_size = {1200, 800}, double p_resolution = 200);
  /// Paints a page of `p_size` points by QPainter, for printers and vector formats: the data as an image without
  /// background, of `p_resolution` pixels per inch; titles, axes, legends and notes as lines and letters. A unit of the
  /// painter is a point, its origin the upper left corner of the page. Needs a QGuiApplication and no context.
  ///
  /// Throws std::invalid_argument for a page that has no pixel or more than 32768 a side, std::runtime_error where no
  /// context can be made.
  void Paint(QPainter& p_painter, const QSizeF& p_size, double p_resolution = 200);

  /// What lies under a pixel.
  struct Hit {
    const Plot* plot = nullptr; ///< valid until Figure::Remove
    QString label;              ///< of the plot
    /// The number of the element: a point, an arrow, or the nearest vertex, node or point of a line. Empty for plots
    /// with 2^24 elements and more, which is reported, and on devices below GL 3.2 for meshes, surfaces and lines.
    std::optional<std::size_t> element;
    /// In data units: that of a point or an arrow as it was given, otherwise the position under the pixel.
    Types::Vector3_Base<double> position;
    std::optional<double> value; ///< of the element, in a plot with values; NaN if it is missing
    QString valueTitle;          ///< of the colour bar
  };
  /// What `Draw` shows at a pixel of the window, counted from the lower left corner of the frame buffer, for the same
  /// viewport and ratio: of half-transparent plots, the nearest one. Empty beside the data. What is left out of the
  /// drawing is not picked.
  ///
  /// The first call for a scene draws depths and numbers of elements off-screen, without samples, and reads them (8
  /// bytes a pixel). Further calls for the same scene make no GL call. All GL state is restored.
  ///
  /// Errors: as `Draw`. More than 255 visible plots are reported, and nothing is hit.
  std::optional<Hit> Pick(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const Types::Pos& p_pixel,
                          double p_pixelRatio = 1);
  /// What `Image` shows at a pixel of an image of that size, counted from its upper left corner. Makes a context for
  /// the call, as `Image` does, and throws as it does.
  std::optional<Hit> Pick(const Types::Pos& p_pixel, Types::Size p_size = {1200, 800});

  /// Where everything lies that `Draw` would draw for the same arguments. Calls no GL. Needs a QGuiApplication. The
  /// last layout is kept until something changes that it depends on. With functions for ticks, each call makes another
  /// one.
  FigureLayout Layout(const Types::Viewport<0>& p_viewport, double p_pixelRatio = 1);
  ///@{
  /// Between data and scene units, as of the last drawing or layout.
  Types::Vector3_Base<double> ToScene(const Types::Vector3_Base<double>& p_data) const;
  Types::Vector3_Base<double> ToData(const Types::Vector3_Base<double>& p_scene) const;
  ///@}

  /// The limits of the axes in data units, as of the last drawing or layout; empty before.
  Types::BoundingBox_Base<double> Limits() const;
  /// The title of an axis, 0 to 2 for x to z: as set, otherwise "x", "y" and "z", of a map "longitude" and "latitude".
  QString AxisTitle(int p_axis) const;
  /// A position along an axis, 0 to 2 for x to z, as a string of its own: "12.5"; in degrees on a map, "30.5° W"; or a
  /// date. It has as many digits as `p_step` is worth, of which 0 is taken as 1.
  QString Format(int p_axis, double p_position, double p_step) const;

  /// Frees the GL objects of the scope's context.
  void Release(const Utility::Scoped<Rgl>& p_gl) const;

private:
  friend class FigureGrid;
  static bool CanDraw(const Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport);
  void DrawAxes(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const FigureLayout& p_layout,
                double p_pixelRatio);
  void DrawLegends(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const FigureLayout& p_layout,
                   double p_pixelRatio);
  MeshPlot& IndexedMesh(const Array3& p_positions, std::vector<std::uint32_t> p_indices);

  struct State;
  std::unique_ptr<State> _state;
};

} // namespace Vek::Chart::Scene
