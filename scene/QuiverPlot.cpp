#include "scene/QuiverPlot.h"

#include "scene/private/QuiverContent.h"

#include <cmath>
#include <stdexcept>

namespace Vek::Chart::Scene {

namespace {

Private::QuiverContent& Quiver(Private::PlotContent& p_content) {
  return static_cast<Private::QuiverContent&>(p_content);
}

} // namespace

QuiverPlot::QuiverPlot(const Array3& p_positions, const Array3& p_vectors)
    : ColoredPlot(std::make_unique<Private::QuiverContent>(p_positions, p_vectors)) {}

QuiverPlot& QuiverPlot::ColorByLength() {
  Quiver(Content()).ColorByLength();
  return *this;
}

QuiverPlot& QuiverPlot::UnitLength(double p_fraction) {
  if (!(p_fraction > 0 && std::isfinite(p_fraction)))
    throw std::invalid_argument("UnitLength: expected a finite number above 0, got " + std::to_string(p_fraction));
  Quiver(Content()).SetUnitLength(p_fraction);
  return *this;
}

QuiverPlot& QuiverPlot::Typical(double p_length, double p_fraction) {
  for (const double number : {p_length, p_fraction})
    if (!(number > 0 && std::isfinite(number)))
      throw std::invalid_argument("Typical: expected finite numbers above 0, got " + std::to_string(number));
  Quiver(Content()).SetTypical(p_length, p_fraction);
  return *this;
}

QuiverPlot& QuiverPlot::LengthTitle(const QString& p_title) {
  Quiver(Content()).SetLengthTitle(p_title);
  return *this;
}

QuiverPlot& QuiverPlot::Most(std::size_t p_count) {
  if (p_count == 0)
    throw std::invalid_argument("Most: expected at least 1 arrow, got 0");
  Quiver(Content()).SetMost(p_count);
  return *this;
}

QuiverPlot& QuiverPlot::UpdatePositions(const Array3& p_positions) {
  Quiver(Content()).UpdatePositions(p_positions);
  return *this;
}

QuiverPlot& QuiverPlot::UpdateVectors(const Array3& p_vectors) {
  Quiver(Content()).UpdateVectors(p_vectors);
  return *this;
}

} // namespace Vek::Chart::Scene
