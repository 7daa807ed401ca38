#include "scene/Plot.h"

#include "scene/private/PlotContent.h"

#include "library/ColorMap.h"
#include "library/NamedColors.h"

#include <cmath>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene {

Plot::Plot(std::unique_ptr<Private::PlotContent> p_content)
    : _content(std::move(p_content)) {}
Plot::~Plot() = default;

bool Plot::IsVisible() const {
  return _content->isVisible;
}
double Plot::Opacity() const {
  return _content->opacity;
}
const QString& Plot::Label() const {
  return _content->label;
}
std::size_t Plot::Count() const {
  return _content->Count();
}
Types::MinMax_Base<double> Plot::ColorRange() const {
  return _content->coloring.EffectiveRange();
}

Private::PlotContent& Plot::Content() {
  ++_content->revision;
  return *_content;
}

void Plot::ChangeVisible(bool p_visible) {
  Content().isVisible = p_visible;
}

void Plot::ChangeOpacity(double p_opacity) {
  if (!(p_opacity >= 0 && p_opacity <= 1))
    throw std::invalid_argument("SetOpacity: expected 0 to 1, got " + std::to_string(p_opacity));
  Content().opacity = p_opacity;
  Content().coloring.SetOpacity(p_opacity);
}

void Plot::ChangeLabel(const QString& p_label) {
  Content().label = p_label;
}

void Plot::ChangeColor(const QColor& p_color) {
  if (!p_color.isValid())
    throw std::invalid_argument("Color: expected a valid colour, got an invalid one");
  Content().coloring.SetColor(p_color);
  Content().ValuesChanged();
}

void Plot::ChangeValues(const Array1& p_values) {
  if (p_values.Count() != 0)
    RequireCount("ColorBy", p_values.Count(), Content().Count());
  Content().SetColorValues(Values(p_values));
  Content().ValuesChanged();
}

void Plot::ChangeColors(const std::string& p_name) {
  Library::ColorMap::Named(p_name); // throws for an unknown name
  Content().coloring.SetMap(Library::NamedColors::Colors(p_name));
}

void Plot::ChangeColors(std::vector<QColor> p_colors) {
  if (p_colors.empty())
    throw std::invalid_argument("ColorMap: expected at least one colour, got none");
  Content().coloring.SetMap(std::move(p_colors));
}

void Plot::ChangeColorRange(double p_low, double p_high) {
  Content().coloring.SetRange(p_low, p_high);
}

void Plot::ChangeColorExtremes(double p_least, double p_largest) {
  if (!(std::isfinite(p_least) && std::isfinite(p_largest) && p_least <= p_largest))
    throw std::invalid_argument("ColorExtremes: expected finite, ascending values, got " + std::to_string(p_least) +
                                " and " + std::to_string(p_largest));
  Content().coloring.SetExtremes({p_least, p_largest});
}

void Plot::FindColorRange() {
  Content().coloring.FindRange();
}

void Plot::ChangeColorScale(bool p_logarithmic) {
  Content().coloring.SetLogarithmic(p_logarithmic);
}

void Plot::ChangeColorTitle(const QString& p_title) {
  Content().coloring.SetTitle(p_title);
}

void Plot::ChangeMissingColor(const QColor& p_color) {
  Content().coloring.SetMissing(p_color);
}

} // namespace Vek::Chart::Scene
