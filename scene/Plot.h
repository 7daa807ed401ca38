#pragma once

#include "scene/Array.h"
#include "scene/Export.h"

#include "platform/types/Range.h"

#include <QColor>
#include <QString>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace Vek::Chart::Scene {

namespace Private {
class PlotContent;
}

/// One layer of data in a Figure, which makes and owns it: a quiver, a scatter plot. See ColoredPlot for the settings
/// that all plots have.
///
/// \ingroup plots
class VEK_SCENE_API Plot {
public:
  virtual ~Plot();
  Plot(const Plot&) = delete;
  Plot& operator=(const Plot&) = delete;

  /// Whether the plot is drawn. Hidden plots do not count for limits, colour bars and keys either.
  bool IsVisible() const;
  /// 0 (nothing to see) to 1.
  double Opacity() const;
  /// The name of the plot.
  const QString& Label() const;
  /// How many elements the plot has, missing ones included.
  std::size_t Count() const;
  /// The values of the first and the last colour: as set, otherwise as chosen (see ColoredPlot::ColorRange).
  Types::MinMax_Base<double> ColorRange() const;

protected:
  /// Takes over what Figure draws.
  explicit Plot(std::unique_ptr<Private::PlotContent> p_content);
  /// What Figure draws, to be changed.
  Private::PlotContent& Content();

  ///@{
  /// The settings of ColoredPlot, without the type of the plot.
  void ChangeVisible(bool p_visible);
  void ChangeOpacity(double p_opacity);
  void ChangeLabel(const QString& p_label);
  void ChangeColor(const QColor& p_color);
  void ChangeValues(const Array1& p_values);
  void ChangeColors(const std::string& p_name);
  void ChangeColors(std::vector<QColor> p_colors);
  void ChangeColorRange(double p_low, double p_high);
  void ChangeColorExtremes(double p_least, double p_largest);
  void FindColorRange();
  void ChangeColorScale(bool p_logarithmic);
  void ChangeColorTitle(const QString& p_title);
  void ChangeMissingColor(const QColor& p_color);
  ///@}

private:
  friend class Figure;
  std::unique_ptr<Private::PlotContent> _content;
};

/// The settings of all plots. Each returns the plot, so that they can be chained:
///
///     figure.Scatter(points).ColorBy(depth).ColorMap("magma").ColorTitle("Depth in km").Label("Earthquakes");
///
/// Arrays are read during the call, and nothing of them is kept. Settings upload nothing at the next drawing but new
/// values.
///
/// Errors: std::invalid_argument with what was expected and what came; the plot is unchanged then.
///
/// \ingroup plots
template <class Derived>
class ColoredPlot : public Plot {
public:
  using Plot::ColorRange;
  using Plot::Label;

  /// Shows or hides the plot.
  Derived& SetVisible(bool p_visible) { return ChangeVisible(p_visible), Self(); }
  /// 0 to 1, of each surface: of a half-transparent sphere, front and back are seen. See Figure for what is behind.
  Derived& SetOpacity(double p_opacity) { return ChangeOpacity(p_opacity), Self(); }
  /// The name of the plot.
  Derived& Label(const QString& p_label) { return ChangeLabel(p_label), Self(); }

  /// One colour for all elements. Removes the values. Without colour and values, each plot of a figure has another one.
  Derived& Color(const QColor& p_color) { return ChangeColor(p_color), Self(); }
  /// A value for each element, which gets its colour from the map, and the figure a colour bar. NaN is missing. Called
  /// again, it replaces the values; an empty array removes them.
  Derived& ColorBy(const Array1& p_values) { return ChangeValues(p_values), Self(); }
  /// Likewise, with the title of the colour bar.
  Derived& ColorBy(const Array1& p_values, const QString& p_title) { return ColorBy(p_values).ColorTitle(p_title); }
  /// A map of Library::NamedColors by its name; "viridis" by default.
  Derived& ColorMap(const std::string& p_name) { return ChangeColors(p_name), Self(); }
  /// Colours from the lowest to the highest value, evenly spaced and blended.
  Derived& ColorMap(const std::vector<QColor>& p_colors) { return ChangeColors(p_colors), Self(); }
  /// Likewise.
  Derived& ColorMap(std::initializer_list<QColor> p_colors) { return ChangeColors(p_colors), Self(); }
  /// The values of the first and the last colour, finite and ascending. By default the smallest and the largest value,
  /// rounded outward; where their span exceeds four times that of the quantiles of 2 % and 98 %, those quantiles, and
  /// the colour bar has pointed ends and the true extremes.
  Derived& ColorRange(double p_low, double p_high) { return ChangeColorRange(p_low, p_high), Self(); }
  /// The smallest and the largest of all values, for a plot that has a share of them: the default range of the colours
  /// goes from one to the other, and the ends of the colour bar show them. The plot has a colour bar then even without
  /// a value of its own. Finite and ascending or equal. Removed by `Color`.
  Derived& ColorExtremes(double p_least, double p_largest) { return ChangeColorExtremes(p_least, p_largest), Self(); }
  /// Chooses the range by the values again, the default (see ColorRange).
  Derived& AutoColorRange() { return FindColorRange(), Self(); }
  /// Equal ratios of values take equal parts of the colour map. Values that are not above 0 have the first colour.
  Derived& LogScale(bool p_logarithmic = true) { return ChangeColorScale(p_logarithmic), Self(); }
  /// The title of the colour bar: what the values are, and their unit. Plots with equal title, map and range share a
  /// bar.
  Derived& ColorTitle(const QString& p_title) { return ChangeColorTitle(p_title), Self(); }
  /// The colour of elements whose value is missing, a grey by default; transparent to leave them out.
  Derived& MissingColor(const QColor& p_color) { return ChangeMissingColor(p_color), Self(); }

protected:
  using Plot::Plot; ///< takes over what Figure draws

private:
  Derived& Self() { return static_cast<Derived&>(*this); }
};

} // namespace Vek::Chart::Scene
