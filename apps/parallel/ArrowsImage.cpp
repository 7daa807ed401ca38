#include "apps/parallel/FieldParts.h"

#include "io/ReadVectorField.h"
#include "scene/Figure.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Vek::Chart::Apps {

namespace {

using Box = Types::BoundingBox_Base<double>;
using Io::GridSplit;
using Parallel::FigureDescription;
using Parallel::Processes;
using Point = Types::Vector3_Base<double>;
using Scene::Figure;
using Sizes = GridSplit::Sizes;

constexpr double LegibleArrows = 10000;

/// "1,234,567".
QString Grouped(double p_count) {
  return QLocale(QLocale::English).toString(static_cast<qulonglong>(p_count));
}

/// The mean distance of neighbours along an axis; 0 for a single node.
double StepOf(const std::vector<double>& p_axis) {
  return p_axis.size() < 2 ? 0 : std::abs(p_axis.back() - p_axis.front()) / static_cast<double>(p_axis.size() - 1);
}

/// Arrows of a block.
struct Arrows {
  std::vector<Point> positions;
  std::vector<Io::VectorField::Vector> vectors;
  double missing = 0; ///< nodes that have no vector
  Processes::Range lengths;
  bool leavesPlane = false;
};

/// What a process has of the file.
struct Part {
  Io::VectorField field; ///< without its vectors
  Arrows arrows;
  Sizes nodes{}; ///< of the whole grid
  GridSplit::Block block;
  std::size_t every = 1;

  double Total() const {
    return static_cast<double>(nodes[0]) * static_cast<double>(nodes[1]) * static_cast<double>(nodes[2]);
  }
};

double LengthOf(const Io::VectorField::Vector& p_vector) {
  return std::sqrt(p_vector[0] * p_vector[0] + p_vector[1] * p_vector[1] + p_vector[2] * p_vector[2]);
}

/// Every k-th node of the whole grid along each axis with more than k / 2 nodes.
Arrows ArrowsOf(const Io::VectorField& p_field, const Sizes& p_first, std::size_t p_every) {
  Arrows arrows;
  const auto isDrawn = [&](std::size_t p_axis, std::size_t p_index) {
    const std::size_t every = std::min(p_every, p_field.wholeAxes[p_axis].size());
    return (p_first[p_axis] + p_index) % every == every / 2;
  };
  std::size_t node = 0, most = 1;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    std::size_t drawn = 0;
    for (std::size_t i = 0; i < p_field.axes[axis].size(); ++i)
      drawn += isDrawn(axis, i) ? 1 : 0;
    most *= drawn;
  }
  arrows.positions.reserve(most);
  arrows.vectors.reserve(most);
  for (std::size_t k = 0; k < p_field.axes[2].size(); ++k)
    for (std::size_t j = 0; j < p_field.axes[1].size(); ++j)
      for (std::size_t i = 0; i < p_field.axes[0].size(); ++i, ++node) {
        if (!isDrawn(0, i) || !isDrawn(1, j) || !isDrawn(2, k))
          continue;
        const double length = LengthOf(p_field.vectors[node]);
        if (!std::isfinite(length)) {
          ++arrows.missing;
          continue;
        }
        arrows.lengths += length;
        arrows.leavesPlane = arrows.leavesPlane || p_field.vectors[node][2] != 0;
        arrows.positions.push_back({p_field.axes[0][i], p_field.axes[1][j], p_field.axes[2][k]});
        arrows.vectors.push_back(p_field.vectors[node]);
      }
  return arrows;
}

/// The length that 98 % of all arrows do not exceed.
double TypicalLength(const Processes& p_all, const Arrows& p_arrows, double p_longest) {
  constexpr std::size_t Bins = 4096;
  constexpr double Share = 0.98;
  std::vector<double> counts(Bins);
  double own = 0;
  for (const auto& vector : p_arrows.vectors)
    if (const double length = LengthOf(vector); length > 0 && p_longest > 0) {
      ++counts[std::min(static_cast<std::size_t>(length / p_longest * Bins), Bins - 1)];
      ++own;
    }
  counts.push_back(own);
  counts = p_all.Sum(std::move(counts));
  double below = 0;
  for (std::size_t bin = 0; bin < Bins; ++bin)
    if ((below += counts[bin]) >= Share * counts.back() && counts.back() > 0)
      return p_longest * static_cast<double>(bin + 1) / Bins;
  return 1;
}

/// As many nodes apart along each axis that the arrows are legible.
std::size_t LegibleStep(const Part& p_part) {
  const auto dimensions = std::count_if(p_part.nodes.begin(), p_part.nodes.end(), [](auto p_n) { return p_n > 1; });
  if (p_part.Total() <= LegibleArrows)
    return 1;
  const double exponent = 1.0 / static_cast<double>(std::max<std::ptrdiff_t>(dimensions, 1));
  return static_cast<std::size_t>(std::ceil(std::pow(p_part.Total() / LegibleArrows, exponent)));
}

Part ReadPart(const Processes& p_all, const FieldOptions& p_options) {
  Io::FieldSelection selection{p_options.variables, p_options.time, 0, OneNode};
  Part part;
  part.field = Io::ReadVectorField(p_options.path, selection);
  for (std::size_t axis = 0; axis < 3; ++axis)
    part.nodes[axis] = part.field.wholeAxes[axis].size();
  part.every = p_options.every == 0 ? LegibleStep(part) : p_options.every;
  part.block = GridSplit(part.nodes, p_all.Count()).At(p_all.Rank());
  if (part.block.Empty())
    return part;
  selection.region = Io::GridRegion{part.block.first, part.block.count};
  part.field = Io::ReadVectorField(p_options.path, selection);
  part.arrows = ArrowsOf(part.field, part.block.first, part.every);
  decltype(part.field.vectors)().swap(part.field.vectors); // frees them, which `= {}` does not
  return part;
}

/// How far apart arrows stand along each axis; 0 along z for those in a plane.
Point Steps(const Part& p_part, bool p_isFlat) {
  const auto& axes = p_part.field.wholeAxes;
  const double every = static_cast<double>(p_part.every);
  Point step(StepOf(axes[0]) * every, StepOf(axes[1]) * every, 0);
  if (p_part.nodes[2] > 1)
    step.z = StepOf(axes[2]) * every;
  else if (!p_isFlat)
    step.z = std::min(step.x, step.y);
  return step;
}

/// Of all arrows. Collective.
FigureDescription Described(const Processes& p_all, const FieldOptions& p_options, const Part& p_part, bool p_isFlat) {
  FigureDescription description = DescriptionOf(p_options, p_part.field.times);
  description.values = p_all.Union(p_part.arrows.lengths);
  const auto counts = p_all.Sum({static_cast<double>(p_part.arrows.positions.size()), p_part.arrows.missing});
  const Point step = Steps(p_part, p_isFlat);
  const Sizes last{p_part.nodes[0] - 1, p_part.nodes[1] - 1, p_part.nodes[2] - 1};
  const Box grid = BoxBetween(p_part.field.wholeAxes, {0, 0, 0}, last);
  description.extent = {grid.Min() - step, grid.Max() + step};
  for (std::size_t axis = 0; axis < 3; ++axis)
    description.axisTitles[axis] = TitleOf(p_part.field.axisNames[axis], p_part.field.axisUnits[axis]);
  if (p_isFlat) {
    description.elevation = 90;
    description.azimuth = 0;
    description.isParallel = true;
  }
  description.colorTitle = TitleOf("Length", p_part.field.unit);
  if (p_part.every > 1)
    description.notes.push_back(Grouped(counts[0]) + " of " + Grouped(p_part.Total()) + " nodes drawn");
  if (counts[1] > 0)
    description.notes.push_back(Grouped(counts[1]) + " vectors missing");
  return FigureDescription::Broadcast(p_all, description);
}

/// The figure of a process. An arrow of the length `p_typical` reaches to the next node.
Figure MakeFigure(const FigureDescription& p_description, const FieldOptions& p_options, const Arrows& p_arrows,
                  const Point& p_step, double p_typical) {
  Figure figure = p_description.MakeFigure();
  figure.Layout({0, 0, static_cast<float>(p_options.size.width), static_cast<float>(p_options.size.height)});
  const Point low = figure.ToScene(p_description.extent.Min());
  const double diagonal = Length(figure.ToScene(p_description.extent.Max()) - low);
  double spacing = diagonal;
  for (const Point& neighbour : {Point(p_step.x, 0, 0), Point(0, p_step.y, 0), Point(0, 0, p_step.z)})
    if (const double distance = Length(figure.ToScene(p_description.extent.Min() + neighbour) - low); distance > 0)
      spacing = std::min(spacing, distance);
  auto& plot = figure.Quiver(p_arrows.positions, p_arrows.vectors).ColorByLength();
  plot.Typical(p_typical, spacing / diagonal).Most(std::max<std::size_t>(p_arrows.positions.size(), 1));
  p_description.Apply(plot.LengthTitle(p_description.colorTitle));
  return figure;
}

} // namespace

QImage DrawArrows(const Parallel::Compositor& p_compositor, const FieldOptions& p_options) {
  const Processes& all = p_compositor.Group();
  Part part;
  all.Together([&] { part = ReadPart(all, p_options); });
  const bool isFlat = part.nodes[2] == 1 && !all.Any(part.arrows.leavesPlane);
  const FigureDescription description = Described(all, p_options, part, isFlat);
  const double longest = description.values.Empty() ? 0 : description.values.max;
  const double typical = TypicalLength(all, part.arrows, longest);

  std::optional<Figure> figure;
  all.Together([&] {
    figure = MakeFigure(description, p_options, part.arrows, Steps(part, isFlat), typical);
    part.arrows = {};
  });
  Box box;
  if (!part.block.Empty()) {
    Sizes last{};
    for (std::size_t axis = 0; axis < 3; ++axis)
      last[axis] = part.block.first[axis] + part.block.count[axis] - 1;
    box = BoxBetween(part.field.wholeAxes, part.block.first, last);
  }
  return p_compositor.Image(*figure, box, p_options.size);
}

} // namespace Vek::Chart::Apps
