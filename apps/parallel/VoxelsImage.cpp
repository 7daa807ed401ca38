#include "apps/parallel/FieldParts.h"

#include "scene/Figure.h"

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
using Scene::Figure;
using Scene::VoxelGrid;
using Sizes = GridSplit::Sizes;

/// What a process has of the file.
struct Part {
  Io::Volume volume; ///< without its values
  std::optional<VoxelGrid> grid;
  Processes::Range values;
  Box box, whole;
};

/// Where a process reads.
struct Share {
  Sizes first{}, last{}; ///< the corners of its block
  Io::GridRegion region; ///< the block and its neighbours
};

/// Of the whole volume.
Box CheckedBox(const FieldOptions& p_options, const WholeAxes& p_axes) {
  for (const auto& axis : p_axes)
    if (axis.size() < 2)
      throw std::runtime_error(p_options.path + ": expected a volume of two nodes and more along each axis");
  const Box whole = BoxBetween(p_axes, {0, 0, 0}, {p_axes[0].size() - 1, p_axes[1].size() - 1, p_axes[2].size() - 1});
  for (const auto& [axis, position] : p_options.slices)
    if (const double low = (&whole.Min().x)[axis], high = (&whole.Max().x)[axis]; position < low || position > high)
      throw std::invalid_argument("--slice: expected " + std::to_string(low) + " to " + std::to_string(high) +
                                  ", got " + std::to_string(position));
  return whole;
}

/// None where there are more processes than cells.
std::optional<Share> ShareOf(const Processes& p_all, const WholeAxes& p_axes) {
  constexpr std::size_t Beyond = 2; // voxels of the neighbours, for values and gradients at the faces
  const GridSplit::Block block =
      GridSplit({p_axes[0].size() - 1, p_axes[1].size() - 1, p_axes[2].size() - 1}, p_all.Count()).At(p_all.Rank());
  if (block.Empty())
    return std::nullopt;
  Share share;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::size_t first = block.first[axis], last = first + block.count[axis];
    share.first[axis] = first;
    share.last[axis] = last;
    share.region.first[axis] = first - std::min(first, Beyond);
    share.region.count[axis] = std::min(last + Beyond + 1, p_axes[axis].size()) - share.region.first[axis];
  }
  return share;
}

Part ReadPart(const Processes& p_all, const FieldOptions& p_options) {
  Io::VolumeOptions options;
  options.variable = p_options.variables.empty() ? std::string() : p_options.variables[0];
  options.step = p_options.time;
  options.region = OneNode;
  Part part;
  part.volume = Io::ReadVolume(p_options.path, options);
  const WholeAxes axes = part.volume.wholeAxes;
  part.whole = CheckedBox(p_options, axes);
  const std::optional<Share> share = ShareOf(p_all, axes);
  if (!share)
    return part;
  part.box = BoxBetween(axes, share->first, share->last);
  options.region = share->region;
  part.volume = Io::ReadVolume(p_options.path, options);
  std::vector<float> numbers = part.volume.Floats();
  part.volume.values = {};
  for (const float number : numbers)
    if (std::isfinite(number))
      part.values += static_cast<double>(number);
  WholeAxes own;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto from = axes[axis].begin() + static_cast<std::ptrdiff_t>(share->region.first[axis]);
    own[axis] = {from, from + static_cast<std::ptrdiff_t>(share->region.count[axis])};
  }
  part.grid.emplace(numbers, own[0], own[1], own[2]);
  return part;
}

/// Of all voxels. Collective.
FigureDescription Described(const Processes& p_all, const FieldOptions& p_options, const Part& p_part) {
  const Io::Volume& volume = p_part.volume;
  FigureDescription description = DescriptionOf(p_options, volume.times);
  description.values = p_all.Union(p_part.values);
  description.extent = p_part.whole;
  for (std::size_t axis = 0; axis < 3; ++axis)
    description.axisTitles[axis] =
        TitleOf(volume.axisNames[axis], volume.axisUnits[axis].empty() ? volume.lengthUnit : volume.axisUnits[axis]);
  description.colorTitle = TitleOf(volume.name, volume.unit);
  return FigureDescription::Broadcast(p_all, description);
}

/// The figure of a process. Takes the voxels of the part.
Figure MakeFigure(const FigureDescription& p_description, const FieldOptions& p_options, Part& p_part) {
  const WholeAxes& axes = p_part.volume.wholeAxes;
  const WholeAxes cell{{{axes[0][0], axes[0][1]}, {axes[1][0], axes[1][1]}, {axes[2][0], axes[2][1]}}};
  // Process 0 has the colour bar even if it has no voxel.
  const VoxelGrid voxels =
      p_part.grid ? *p_part.grid : VoxelGrid(std::vector<float>(8, NAN), cell[0], cell[1], cell[2]);
  p_part.grid.reset();
  const Box drawn = p_part.box.Empty() ? BoxBetween(cell, {0, 0, 0}, {1, 1, 1}) : p_part.box;
  const WholeAxes knots = VoxelGrid::KnotsOf(axes[0], axes[1], axes[2]);
  Figure figure = p_description.MakeFigure();
  if (p_options.kind == FieldOptions::Kind::Volume) {
    p_description.Apply(figure.Volume(voxels).Block(drawn, knots));
    return figure;
  }
  std::vector<std::pair<int, double>> slices = p_options.slices;
  if (const auto middle = p_part.whole.Center(); slices.empty())
    slices = {{0, middle.x}, {1, middle.y}, {2, middle.z}};
  auto& plot = p_description.Apply(figure.Slices(voxels).Block(drawn, knots));
  for (const auto& [axis, position] : slices)
    plot.At(axis, position);
  return figure;
}

} // namespace

QImage DrawVoxels(const Parallel::Compositor& p_compositor, const FieldOptions& p_options) {
  const Processes& all = p_compositor.Group();
  Part part;
  all.Together([&] { part = ReadPart(all, p_options); });
  const FigureDescription description = Described(all, p_options, part);
  std::optional<Figure> figure;
  all.Together([&] { figure = MakeFigure(description, p_options, part); });
  return p_compositor.Image(*figure, part.box, p_options.size);
}

} // namespace Vek::Chart::Apps
