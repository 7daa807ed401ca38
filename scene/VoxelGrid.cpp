#include "scene/VoxelGrid.h"

#include "scene/private/DataTransform.h"
#include "scene/private/DrawnPlaces.h"
#include "scene/private/GridAxis.h"
#include "scene/private/VolumeLayout.h"
#include "scene/private/VoxelPlaces.h"
#include "scene/private/VoxelValues.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Library::VolumeImage;
using Private::VoxelAxis;
using Private::VoxelPlaces;
using Private::VoxelValues;
using Point = VoxelGrid::Point;
using Box = VoxelGrid::Box;
using Sizes = VoxelGrid::Sizes;
using Axes = std::array<VoxelAxis, 3>;

constexpr double Missing = std::numeric_limits<double>::quiet_NaN();

Axes AxesOf(const Box& p_box, const Sizes& p_sizes, VoxelGrid::Layers p_layers) {
  const auto axis = [&](std::size_t p_axis, bool p_descends) {
    return VoxelAxis(p_sizes[p_axis], Private::At(p_box.Min(), p_axis), Private::At(p_box.Max(), p_axis), p_descends);
  };
  return {axis(0, false), axis(1, false), axis(2, p_layers == VoxelGrid::Layers::Downwards)};
}

VoxelAxis AxisOf(const char* p_name, const Array1& p_positions, VoxelGrid::Positions p_kind) {
  const std::vector<double> positions = AxisNodes(p_name, p_positions, 2);
  if (positions.size() > static_cast<std::size_t>(std::numeric_limits<int>::max() / 2))
    throw std::invalid_argument(std::string(p_name) + ": expected at most 2^30 positions, got " +
                                std::to_string(positions.size()));
  return p_kind == VoxelGrid::Positions::OfNodes ? VoxelAxis::OfNodes(positions) : VoxelAxis::OfBounds(positions);
}

Sizes SizesOf(const Axes& p_axes) {
  return {p_axes[0].Size(), p_axes[1].Size(), p_axes[2].Size()};
}

/// Two texels of an axis and the weight of the second one, as GL's linear filter takes them for a coordinate.
struct Neighbours {
  int first, second;
  double weight;
};
Neighbours NeighboursOf(double p_coordinate, int p_size) {
  const double at = std::clamp(p_coordinate * p_size - 0.5, 0.0, p_size - 1.0);
  const int first = static_cast<int>(at);
  return {first, std::min(first + 1, p_size - 1), at - first};
}

int NearestOf(double p_coordinate, int p_size) {
  return static_cast<int>(std::clamp(std::floor(p_coordinate * p_size), 0.0, p_size - 1.0));
}

/// The knots of blocks of cells: at odd numbers the middle of the block, which is a centre or a bound of a cell.
std::vector<double> Thinned(const std::vector<double>& p_knots, int p_factor) {
  const std::size_t last = p_knots.size() - 1, step = 2 * static_cast<std::size_t>(p_factor);
  std::vector<double> knots{p_knots.front()};
  for (std::size_t begin = 0; begin < last; begin += step) {
    const std::size_t end = std::min(begin + step, last);
    knots.push_back(p_knots[(begin + end) / 2]);
    knots.push_back(p_knots[end]);
  }
  return knots;
}

} // namespace

VoxelGrid::VoxelGrid(boost::shared_ptr<const VoxelValues> p_voxels, const Axes& p_axes)
    : _voxels(std::move(p_voxels))
    , _places(boost::make_shared<const VoxelPlaces>(p_axes)) {}

VoxelGrid::VoxelGrid(const Array1& p_values, const Sizes& p_sizes, const Box& p_box, Layers p_layers)
    : VoxelGrid(boost::make_shared<const VoxelValues>(FloatValues(p_values), p_sizes),
                AxesOf(p_box, p_sizes, p_layers)) {}

VoxelGrid::VoxelGrid(boost::shared_ptr<const VolumeImage> p_image, const Box& p_box, Layers p_layers,
                     ZeroVoxels p_zeros)
    : _voxels(boost::make_shared<const VoxelValues>(std::move(p_image), p_zeros))
    , _places(boost::make_shared<const VoxelPlaces>(AxesOf(p_box, Size(), p_layers))) {}

VoxelGrid::VoxelGrid(const Array1& p_values, const Array1& p_x, const Array1& p_y, const Array1& p_z,
                     Positions p_positions) {
  const Axes axes{AxisOf("VoxelGrid: x", p_x, p_positions), AxisOf("VoxelGrid: y", p_y, p_positions),
                  AxisOf("VoxelGrid: z", p_z, p_positions)};
  _places = boost::make_shared<const VoxelPlaces>(axes);
  _voxels = boost::make_shared<const VoxelValues>(FloatValues(p_values), SizesOf(axes));
}

VoxelGrid::VoxelGrid(const Io::Volume& p_volume, std::size_t p_channel) {
  Private::VolumeLayout layout = Private::LayOut(p_volume, p_channel);
  _places = boost::make_shared<const VoxelPlaces>(layout.axes);
  _voxels = boost::make_shared<const VoxelValues>(std::move(layout.values), SizesOf(layout.axes));
  name = layout.name;
  unit = layout.unit;
  lengthUnit = layout.lengthUnit;
  _tilt = layout.tilt;
}

/// Another grid with the names of this one.
VoxelGrid VoxelGrid::Named(VoxelGrid p_other) const {
  p_other.name = name;
  p_other.unit = unit;
  p_other.lengthUnit = lengthUnit;
  p_other._tilt = _tilt;
  return p_other;
}

VoxelGrid VoxelGrid::WithValues(const Array1& p_values) const {
  VoxelGrid other = *this;
  other._voxels = boost::make_shared<const VoxelValues>(FloatValues(p_values), Size());
  return other;
}

VoxelGrid VoxelGrid::MovedTo(const VoxelGrid& p_places) const {
  if (Size() != p_places.Size())
    throw std::invalid_argument("VoxelGrid: expected places of " + std::to_string(Count()) + " voxels, got " +
                                std::to_string(p_places.Count()) + ", or others along the axes");
  VoxelGrid other = *this;
  other._places = p_places._places;
  other._whole = p_places._whole;
  other._first = p_places._first;
  return other;
}

VoxelGrid VoxelGrid::MovedTo(const std::array<std::vector<double>, 3>& p_knots) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    RequireCount("VoxelGrid: knots", p_knots[axis].size(), 2 * static_cast<std::size_t>(Size()[axis]) + 1);
    const std::vector<double>& knots = p_knots[axis];
    const bool isOrdered = std::is_sorted(knots.begin(), knots.end()) || std::is_sorted(knots.rbegin(), knots.rend());
    if (!isOrdered || std::any_of(knots.begin(), knots.end(), [](double p_knot) { return !std::isfinite(p_knot); }))
      throw std::invalid_argument("VoxelGrid: expected ascending or descending finite knots");
  }
  return Named(VoxelGrid(_voxels, {VoxelAxis(p_knots[0]), VoxelAxis(p_knots[1]), VoxelAxis(p_knots[2])}));
}

VoxelGrid VoxelGrid::BlockOf(const std::array<std::vector<double>, 3>& p_knots) const {
  constexpr double Tolerance = 0.25; // of a cell
  VoxelGrid block = *this;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::vector<double>&whole = p_knots[axis], own = Knots(static_cast<int>(axis));
    const std::size_t size = own.size() / 2;
    std::size_t first = 0;
    const auto distance = [&](std::size_t p_whole, std::size_t p_own) {
      return std::abs(whole[2 * p_whole + 1] - own[2 * p_own + 1]);
    };
    for (std::size_t i = 1; 2 * (i + size) < whole.size(); ++i)
      if (distance(i, 0) < distance(first, 0))
        first = i;
    const double cell = std::abs(own.back() - own.front()) / static_cast<double>(size);
    if (2 * size >= whole.size() || !(distance(first, 0) <= Tolerance * cell) ||
        !(distance(first + size - 1, size - 1) <= Tolerance * cell))
      throw std::invalid_argument("VoxelGrid: expected a block of the larger grid along axis " + std::to_string(axis));
    block._first[axis] = static_cast<int>(first);
  }
  const Axes axes{VoxelAxis(p_knots[0]), VoxelAxis(p_knots[1]), VoxelAxis(p_knots[2])};
  block._whole = boost::make_shared<const VoxelPlaces>(axes);
  return block;
}

std::array<std::vector<double>, 3> VoxelGrid::KnotsOf(const Array1& p_x, const Array1& p_y, const Array1& p_z,
                                                      Positions p_positions) {
  return {AxisOf("VoxelGrid: x", p_x, p_positions).Knots(), AxisOf("VoxelGrid: y", p_y, p_positions).Knots(),
          AxisOf("VoxelGrid: z", p_z, p_positions).Knots()};
}

VoxelGrid VoxelGrid::Coarsened(int p_factor) const {
  if (p_factor < 1)
    throw std::invalid_argument("VoxelGrid: expected a factor of 1 at least, got " + std::to_string(p_factor));
  const Axes axes{VoxelAxis(Thinned(Knots(0), p_factor)), VoxelAxis(Thinned(Knots(1), p_factor)),
                  VoxelAxis(Thinned(Knots(2), p_factor))};
  const Sizes sizes = SizesOf(axes);
  std::vector<double> sums(Private::VoxelCount(sizes));
  std::vector<float> counts(sums.size());
  const Sizes& n = Size();
  for (int k = 0; k < n[2]; ++k)
    for (int j = 0; j < n[1]; ++j) {
      const auto row = static_cast<std::size_t>(k / p_factor) * static_cast<std::size_t>(sizes[1]) +
                       static_cast<std::size_t>(j / p_factor);
      for (int i = 0; i < n[0]; ++i)
        if (const double value = _voxels->Value(i, j, k); !std::isnan(value)) {
          const std::size_t block = row * static_cast<std::size_t>(sizes[0]) + static_cast<std::size_t>(i / p_factor);
          sums[block] += value;
          ++counts[block];
        }
    }
  std::vector<float> means(sums.size());
  for (std::size_t i = 0; i < means.size(); ++i)
    means[i] = static_cast<float>(sums[i] / static_cast<double>(counts[i])); // NaN where there are none
  return Named(VoxelGrid(boost::make_shared<const VoxelValues>(std::move(means), sizes), axes));
}

std::vector<double> VoxelGrid::Knots(int p_axis) const {
  if (p_axis < 0 || p_axis > 2)
    throw std::invalid_argument("VoxelGrid: expected an axis of 0 to 2, got " + std::to_string(p_axis));
  return _places->Axis(static_cast<std::size_t>(p_axis)).Knots();
}

Box VoxelGrid::CellBounds(const Sizes& p_sizes, const Point& p_first, const Point& p_spacing) {
  const Point extent(p_spacing.x * p_sizes[0], p_spacing.y * p_sizes[1], p_spacing.z * p_sizes[2]);
  const Point low = p_first - p_spacing * 0.5;
  return {low, low + extent};
}

Box VoxelGrid::CubicBounds(const Sizes& p_sizes, double p_longest) {
  const Point voxels(p_sizes[0], p_sizes[1], p_sizes[2]);
  const Point size = voxels * (p_longest / std::max({voxels.x, voxels.y, voxels.z}));
  return {size * -0.5, size * 0.5};
}

const Sizes& VoxelGrid::Size() const {
  return _voxels->sizes;
}

const Box& VoxelGrid::Bounds() const {
  return _places->Bounds();
}

Point VoxelGrid::VoxelSize() const {
  return {_places->Axis(0).ShortestCell(), _places->Axis(1).ShortestCell(), _places->Axis(2).ShortestCell()};
}

Point VoxelGrid::MeanVoxelSize() const {
  return {_places->Axis(0).MeanCell(), _places->Axis(1).MeanCell(), _places->Axis(2).MeanCell()};
}

bool VoxelGrid::IsEven() const {
  return _places->AreEven();
}

const Types::MinMax_Base<double>& VoxelGrid::Range() const {
  return _voxels->range;
}

std::size_t VoxelGrid::MissingCount() const {
  return _voxels->missing;
}

std::size_t VoxelGrid::Count() const {
  return _voxels->Count();
}

double VoxelGrid::Value(int p_i, int p_j, int p_k) const {
  const Sizes& n = Size();
  const bool inside = p_i >= 0 && p_j >= 0 && p_k >= 0 && p_i < n[0] && p_j < n[1] && p_k < n[2];
  return inside ? _voxels->Value(p_i, p_j, p_k) : Missing;
}

std::vector<float> VoxelGrid::Values() const {
  std::vector<float> values(Count());
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = static_cast<float>(_voxels->Value(i));
  return values;
}

double VoxelGrid::Sample(const Point& p_position, Filter p_filter) const {
  const Point share = Share(p_position);
  if (!(share.x >= 0 && share.y >= 0 && share.z >= 0 && share.x <= 1 && share.y <= 1 && share.z <= 1))
    return Missing;
  const Point at = TexCoord(p_position);
  const Sizes& n = Size();
  if (p_filter == Filter::Nearest)
    return Value(NearestOf(at.x, n[0]), NearestOf(at.y, n[1]), NearestOf(at.z, n[2]));
  const Neighbours x = NeighboursOf(at.x, n[0]), y = NeighboursOf(at.y, n[1]), z = NeighboursOf(at.z, n[2]);
  double sum = 0, weights = 0;
  for (int corner = 0; corner < 8; ++corner) {
    const bool i = (corner & 1) != 0, j = (corner & 2) != 0, k = (corner & 4) != 0;
    const double weight = (i ? x.weight : 1 - x.weight) * (j ? y.weight : 1 - y.weight) * (k ? z.weight : 1 - z.weight);
    const double value = Value(i ? x.second : x.first, j ? y.second : y.first, k ? z.second : z.first);
    if (!std::isnan(value)) {
      sum += weight * value;
      weights += weight;
    }
  }
  return weights >= 0.5 ? sum / weights : Missing;
}

Point VoxelGrid::NearestCenter(const Point& p_position) const {
  return {_places->Axis(0).NearestCenter(p_position.x), _places->Axis(1).NearestCenter(p_position.y),
          _places->Axis(2).NearestCenter(p_position.z)};
}

Point VoxelGrid::TexCoord(const Point& p_position) const {
  return _places->Coordinate(p_position);
}

Point VoxelGrid::Share(const Point& p_position) const {
  return _places->Share(p_position);
}

bool VoxelGrid::Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, Filter p_filter) const {
  return _voxels->Bind(p_gl, p_unit, p_filter);
}

bool VoxelGrid::BindPlaces(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  return _places->BindTable(p_gl, p_unit);
}

void VoxelGrid::Release(const Utility::Scoped<Rgl>& p_gl) const {
  _voxels->Release(p_gl);
  _places->Release(p_gl);
  if (_whole)
    _whole->Release(p_gl);
}

Private::DrawnPlaces::DrawnPlaces(const VoxelGrid& p_grid)
    : places(p_grid._whole ? *p_grid._whole : *p_grid._places) {
  for (std::size_t axis = 0; axis < 3 && p_grid._whole; ++axis) {
    const double size = p_grid.Size()[axis];
    At(scale, axis) = places.Axis(axis).Size() / size;
    At(shift, axis) = -p_grid._first[axis] / size;
  }
}

} // namespace Vek::Chart::Scene
