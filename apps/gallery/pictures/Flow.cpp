// A flow in space as evenly spaced streamlines: a Burgers vortex that is computed here, or a field of the user's own.

#include "apps/gallery/PictureFunctions.h"

#include "io/FileError.h"
#include "io/ReadVectorField.h"
#include "library/NamedColors.h"
#include "scene/Figure.h"

#include <array>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Point = std::array<double, 3>;

/// A vortex in water that is drawn in from the sides and stretched along its axis, an exact solution of the
/// Navier-Stokes equations (Burgers 1948). Lengths in cm, velocities in cm/s.
Point BurgersVortex(const Point& p_place) {
  constexpr double Strain = 0.35;    // 1/s
  constexpr double Circulation = 4;  // cm²/s
  constexpr double Viscosity = 0.01; // cm²/s, of water at 20 °C
  const double square = p_place[0] * p_place[0] + p_place[1] * p_place[1];
  const double turns = -Circulation / (2 * M_PI) * std::expm1(-Strain * square / (4 * Viscosity));
  const double swirl = square > 0 ? turns / square : 0;
  return {-Strain / 2 * p_place[0] - swirl * p_place[1], -Strain / 2 * p_place[1] + swirl * p_place[0],
          Strain * p_place[2]};
}

Io::VectorField BurgersField() {
  constexpr int Count = 61;
  Io::VectorField field;
  const std::array<double, 3> half{1, 1, 0.8};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    field.axes[axis].clear();
    for (int i = 0; i < Count; ++i)
      field.axes[axis].push_back(half[axis] * (2.0 * i / (Count - 1) - 1));
  }
  field.axisNames = {"x", "y", "z"};
  field.axisUnits = {"cm", "cm", "cm"};
  field.unit = "cm/s";
  for (const Point& position : field.Positions())
    field.vectors.push_back(BurgersVortex(position));
  return field;
}

QString Titled(const std::string& p_name, const std::string& p_unit) {
  const QString unit = QString::fromStdString(p_unit);
  return QString::fromStdString(p_name) + (unit.isEmpty() ? QString() : " in " + unit);
}

} // namespace

Scene::Figure FlowFigure(const Inputs& p_inputs) {
  const bool isComputed = p_inputs.flow.empty();
  const Io::VectorField flow = isComputed ? BurgersField() : Io::ReadVectorField(p_inputs.flow);
  const Scene::VectorField field =
      Scene::VectorField::Rectilinear(flow.axes[0], flow.axes[1], flow.axes[2], flow.vectors);
  if (!(field.Speeds().max > 0))
    throw Io::FileError(p_inputs.flow, "expected a flow, got vectors that are all zero");

  Scene::Figure figure(isComputed ? "A Burgers vortex" : "Flow",
                       isComputed ? QString("In water, computed: drawn in from the sides, stretched along its axis")
                                  : QString("%1, a grid of %2 \u00D7 %3 \u00D7 %4 nodes")
                                        .arg(NameOfFile(p_inputs.flow))
                                        .arg(field.Size()[0])
                                        .arg(field.Size()[1])
                                        .arg(field.Size()[2]));
  figure.theme = Theme::Dark();
  figure.SetAxisTitles(Titled(flow.axisNames[0], flow.axisUnits[0]), Titled(flow.axisNames[1], flow.axisUnits[1]),
                       Titled(flow.axisNames[2], flow.axisUnits[2]));
  figure.Streamlines(field)
      .Width(0.18)
      .ColorMap(Library::NamedColors::Colors("plasma", 256, 0.12, 1))
      .ColorTitle(Titled("Speed", flow.unit));
  return figure.Look(-28, 24), std::move(figure);
}

} // namespace Vek::Chart::Gallery
