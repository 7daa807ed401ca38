#include "apps/parallel/FieldImage.h"

#include "io/GridSplit.h"
#include "io/ReadVectorField.h"
#include "io/ReadVolume.h"
#include "parallel/FigureDescription.h"
#include "scene/Figure.h"

#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

namespace Vek::Chart::Apps {

namespace {

using Box = Types::BoundingBox_Base<double>;
using Io::GridSplit;
using Parallel::FigureDescription;
using Parallel::Processes;
using Point = Types::Vector3_Base<double>;
using Scene::Figure;
using Sizes = GridSplit::Sizes;
using WholeAxes = std::array<std::vector<double>, 3>;

constexpr double LegibleArrows = 10000;
constexpr Io::GridRegion OneNode{{0, 0, 0}, {1, 1, 1}};

/// "1,234,567".
QString Grouped(double p_count) {
  return QLocale(QLocale::English).toString(static_cast<qulonglong>(p_count));
}

QString TitleOf(const std::string& p_name, const std::string& p_unit) {
  return QString::fromStdString(p_unit.empty() ? p_name : p_name + " in " + p_unit);
}

FigureDescription DescriptionOf(const FieldOptions& p_options, const std::vector<std::string>& p_times) {
  FigureDescription description;
  if (p_options.time < p_times.size())
    description.subtitle = QString::fromStdString(p_times[p_options.time]);
  description.title =
      p_options.title.isEmpty() ? QFileInfo(QString::fromStdString(p_options.path)).fileName() : p_options.title;
  description.colorMap = p_options.colorMap;
  description.colorRange = p_options.range;
  description.opacity = p_options.opacity;
  description.azimuth = p_options.look[0];
  description.elevation = p_options.look[1];
  return description;
}

Point PointOf(const WholeAxes& p_axes, const Sizes& p_node) {
  return {p_axes[0][p_node[0]], p_axes[1][p_node[1]], p_axes[2][p_node[2]]};
}

/// The box between two nodes.
Box BoxBetween(const WholeAxes& p_axes, const Sizes& p_first, const Sizes& p_last) {
  Box box;
  box += PointOf(p_axes, p_first);
  box += PointOf(p_axes, p_last);
  return box;
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
        arrows.positions.push_back(PointOf(p_field.axes, {i, j, k}));
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

QImage DrawArrows(const Parallel::Compositor& p_compositor, const FieldOptions& p_options) {
  const Processes& all = p_compositor.Group();
  Io::FieldSelection selection{p_options.variables, p_options.time, 0, OneNode};
  Io::VectorField field;
  Arrows arrows;
  Sizes nodes{};
  std::size_t every = std::max<std::size_t>(p_options.every, 1);
  GridSplit::Block block;
  all.Together([&] {
    field = Io::ReadVectorField(p_options.path, selection);
    double count = 1;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      nodes[axis] = field.wholeAxes[axis].size();
      count *= static_cast<double>(nodes[axis]);
    }
    const int dimensions =
        static_cast<int>(std::count_if(nodes.begin(), nodes.end(), [](auto p_n) { return p_n > 1; }));
    if (p_options.every == 0 && count > LegibleArrows)
      every = static_cast<std::size_t>(std::ceil(std::pow(count / LegibleArrows, 1.0 / std::max(dimensions, 1))));
    block = GridSplit(nodes, all.Count()).At(all.Rank());
    if (block.Empty())
      return;
    selection.region = Io::GridRegion{block.first, block.count};
    field = Io::ReadVectorField(p_options.path, selection);
    arrows = ArrowsOf(field, block.first, every);
    decltype(field.vectors)().swap(field.vectors); // frees them, which `= {}` does not
  });

  FigureDescription description = DescriptionOf(p_options, field.times);
  description.values = all.Union(arrows.lengths);
  const double longest = description.values.Empty() ? 0 : description.values.max;
  const double typical = TypicalLength(all, arrows, longest);
  const auto counts = all.Sum({static_cast<double>(arrows.positions.size()), arrows.missing});
  const bool isFlat = nodes[2] == 1 && !all.Any(arrows.leavesPlane);

  Point step;
  step.x = StepOf(field.wholeAxes[0]) * static_cast<double>(every);
  step.y = StepOf(field.wholeAxes[1]) * static_cast<double>(every);
  step.z = nodes[2] > 1 ? StepOf(field.wholeAxes[2]) * static_cast<double>(every)
           : isFlat     ? 0
                        : std::min(step.x, step.y);
  description.extent = BoxBetween(field.wholeAxes, {0, 0, 0}, {nodes[0] - 1, nodes[1] - 1, nodes[2] - 1});
  description.extent = {description.extent.Min() - step, description.extent.Max() + step};
  for (std::size_t axis = 0; axis < 3; ++axis)
    description.axisTitles[axis] = TitleOf(field.axisNames[axis], field.axisUnits[axis]);
  if (isFlat)
    description.elevation = 90, description.azimuth = 0, description.isParallel = true;
  description.colorTitle = TitleOf("Length", field.unit);
  const double total = static_cast<double>(nodes[0]) * static_cast<double>(nodes[1]) * static_cast<double>(nodes[2]);
  if (every > 1)
    description.notes.push_back(Grouped(counts[0]) + " of " + Grouped(total) + " nodes drawn");
  if (counts[1] > 0)
    description.notes.push_back(Grouped(counts[1]) + " vectors missing");
  description = FigureDescription::Broadcast(all, description);

  std::optional<Figure> figure;
  all.Together([&] {
    figure = description.MakeFigure();
    figure->Layout({0, 0, static_cast<float>(p_options.size.width), static_cast<float>(p_options.size.height)});
    const Point low = figure->ToScene(description.extent.Min());
    const double diagonal = Length(figure->ToScene(description.extent.Max()) - low);
    double spacing = diagonal;
    for (const Point& neighbour : {Point(step.x, 0, 0), Point(0, step.y, 0), Point(0, 0, step.z)})
      if (const double distance = Length(figure->ToScene(description.extent.Min() + neighbour) - low); distance > 0)
        spacing = std::min(spacing, distance);
    auto& plot = figure->Quiver(arrows.positions, arrows.vectors).ColorByLength().Typical(typical, spacing / diagonal);
    plot.Most(std::max<std::size_t>(arrows.positions.size(), 1)).LengthTitle(description.colorTitle);
    description.Apply(plot);
    arrows = {};
  });
  Box box;
  if (!block.Empty()) {
    Sizes last{};
    for (std::size_t axis = 0; axis < 3; ++axis)
      last[axis] = block.first[axis] + block.count[axis] - 1;
    box = BoxBetween(field.wholeAxes, block.first, last);
  }
  return p_compositor.Image(*figure, box, p_options.size);
}

QImage DrawVolume(const Parallel::Compositor& p_compositor, const FieldOptions& p_options) {
  constexpr std::size_t Beyond = 2; // voxels of the neighbours, for values and gradients at the faces
  const Processes& all = p_compositor.Group();
  Io::VolumeOptions options;
  options.variable = p_options.variables.empty() ? std::string() : p_options.variables[0];
  options.step = p_options.time;
  options.region = OneNode;
  Io::Volume volume;
  std::optional<Scene::VoxelGrid> grid;
  Processes::Range values;
  Box part, whole;
  WholeAxes knots;
  all.Together([&] {
    volume = Io::ReadVolume(p_options.path, options);
    const WholeAxes axes = volume.wholeAxes;
    Sizes cells{}, last{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (axes[axis].size() < 2)
        throw std::runtime_error(p_options.path + ": expected a volume of two nodes and more along each axis");
      last[axis] = cells[axis] = axes[axis].size() - 1;
    }
    whole = BoxBetween(axes, {0, 0, 0}, last);
    for (const auto& [axis, position] : p_options.slices)
      if (const double low = (&whole.Min().x)[axis], high = (&whole.Max().x)[axis]; position < low || position > high)
        throw std::invalid_argument("--slice: expected " + std::to_string(low) + " to " + std::to_string(high) +
                                    ", got " + std::to_string(position));
    knots = Scene::VoxelGrid::KnotsOf(axes[0], axes[1], axes[2]);
    const GridSplit::Block block = GridSplit(cells, all.Count()).At(all.Rank());
    if (block.Empty())
      return;
    Io::GridRegion region;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const std::size_t first = block.first[axis], end = first + block.count[axis];
      last[axis] = end;
      region.first[axis] = first - std::min(first, Beyond);
      region.count[axis] = std::min(end + Beyond + 1, axes[axis].size()) - region.first[axis];
    }
    part = BoxBetween(axes, block.first, last);
    options.region = region;
    volume = Io::ReadVolume(p_options.path, options);
    std::vector<float> numbers = volume.Floats();
    volume.values = {};
    WholeAxes own;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const auto from = axes[axis].begin() + static_cast<std::ptrdiff_t>(region.first[axis]);
      own[axis] = {from, from + static_cast<std::ptrdiff_t>(region.count[axis])};
    }
    for (const float number : numbers)
      if (std::isfinite(number))
        values += static_cast<double>(number);
    grid.emplace(numbers, own[0], own[1], own[2]);
  });

  FigureDescription description = DescriptionOf(p_options, volume.times);
  description.values = all.Union(values);
  description.extent = whole;
  for (std::size_t axis = 0; axis < 3; ++axis)
    description.axisTitles[axis] =
        TitleOf(volume.axisNames[axis], volume.axisUnits[axis].empty() ? volume.lengthUnit : volume.axisUnits[axis]);
  description.colorTitle = TitleOf(volume.name, volume.unit);
  description = FigureDescription::Broadcast(all, description);
  std::vector<std::pair<int, double>> slices = p_options.slices;
  const Point middle = whole.Center();
  if (slices.empty())
    slices = {{0, middle.x}, {1, middle.y}, {2, middle.z}};

  WholeAxes first; // the first cell
  for (std::size_t axis = 0; axis < 3; ++axis)
    first[axis] = {volume.wholeAxes[axis][0], volume.wholeAxes[axis][1]};
  std::optional<Figure> figure;
  all.Together([&] {
    figure = description.MakeFigure();
    // Process 0 has the colour bar even if it has no voxel.
    const Scene::VoxelGrid voxels =
        grid ? *grid : Scene::VoxelGrid(std::vector<float>(8, NAN), first[0], first[1], first[2]);
    grid.reset();
    const Box drawn = part.Empty() ? BoxBetween(first, {0, 0, 0}, {1, 1, 1}) : part;
    if (p_options.kind == FieldOptions::Kind::Volume) {
      description.Apply(figure->Volume(voxels).Block(drawn, knots));
      return;
    }
    auto& plot = description.Apply(figure->Slices(voxels).Block(drawn, knots));
    for (const auto& [axis, position] : slices)
      plot.At(axis, position);
  });
  return p_compositor.Image(*figure, part, p_options.size);
}

} // namespace

QImage DrawField(const Parallel::Compositor& p_compositor, const FieldOptions& p_options) {
  return p_options.kind == FieldOptions::Kind::Arrows ? DrawArrows(p_compositor, p_options)
                                                      : DrawVolume(p_compositor, p_options);
}

} // namespace Vek::Chart::Apps
