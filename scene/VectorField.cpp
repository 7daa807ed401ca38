#include "scene/VectorField.h"

#include "scene/private/GridAxis.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace Vek::Chart::Scene {

namespace {

using Vector = VectorField::Vector;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

bool IsFinite(const Vector& p_vector) {
  return std::isfinite(p_vector.x) && std::isfinite(p_vector.y) && std::isfinite(p_vector.z);
}

/// The distinct numbers, ascending.
std::vector<double> Distinct(std::vector<double> p_numbers) {
  std::sort(p_numbers.begin(), p_numbers.end());
  p_numbers.erase(std::unique(p_numbers.begin(), p_numbers.end()), p_numbers.end());
  return p_numbers;
}

std::size_t IndexIn(const std::vector<double>& p_sorted, double p_number) {
  return static_cast<std::size_t>(std::lower_bound(p_sorted.begin(), p_sorted.end(), p_number) - p_sorted.begin());
}

std::vector<double> EvenNodes(const char* p_name, std::size_t p_count, double p_first, double p_step) {
  std::vector<double> nodes;
  for (std::size_t i = 0; i < p_count; ++i)
    nodes.push_back(p_first + static_cast<double>(i) * p_step);
  return AxisNodes(p_name, nodes, 1);
}

/// Two nodes of an axis, and the share of the second one.
struct Between {
  std::size_t lower = 0;
  std::size_t upper = 0;
  double share = 0;
};

/// The cell around a position that is not beyond the ends of an axis (`VectorField::NodeAxis`).
template <class Axis>
Between Within(const Axis& p_axis, double p_position) {
  const std::vector<double>& nodes = p_axis.nodes;
  if (nodes.size() == 1)
    return {};
  const double guess = (p_position - nodes.front()) * p_axis.cellsPerUnit, last = static_cast<double>(nodes.size() - 2);
  auto lower = static_cast<std::size_t>(static_cast<std::int64_t>(guess > 0 ? std::min(guess, last) : 0));
  const bool descends = p_axis.cellsPerUnit < 0;
  const auto liesBefore = [&](double p_node) { return descends ? p_node >= p_position : p_node <= p_position; };
  const auto search = [&](std::size_t p_first, std::size_t p_last) {
    const double* const first = nodes.data() + p_first + 1;
    return p_first +
           static_cast<std::size_t>(std::partition_point(first, nodes.data() + p_last + 1, liesBefore) - first);
  };
  if (!p_axis.starts.empty()) {
    const std::size_t most = p_axis.starts[lower + 1];
    lower = p_axis.starts[lower];
    if (most > lower + 1)
      lower = search(lower, most);
    else // without a branch that depends on the position
      lower += static_cast<std::size_t>(most > lower) & static_cast<std::size_t>(liesBefore(nodes[lower + 1]));
  }
  if (!liesBefore(nodes[lower]) || liesBefore(nodes[lower + 1])) // where the guess was rounded
    lower = search(0, nodes.size() - 2);
  const double share = (p_position - nodes[lower]) / (nodes[lower + 1] - nodes[lower]);
  // A position on a node depends on that node alone, whatever lies beyond it.
  if (share <= 0)
    return {lower, lower, 0};
  if (share >= 1)
    return {lower + 1, lower + 1, 0};
  return {lower, lower + 1, share};
}

/// False beyond the ends, and where the position is not finite. A period of 0 is none.
template <class Axis>
bool Locate(const Axis& p_axis, double p_position, double p_period, Between& p_between) {
  if (p_period > 0) {
    p_position -= std::floor((p_position - p_axis.low) / p_period) * p_period;
    if (!std::isfinite(p_position))
      return false;
    const double gap = p_axis.low + p_period - p_axis.high;
    if (p_position > p_axis.high && gap > 0) {
      const std::size_t last = p_axis.nodes.size() - 1;
      p_between = p_axis.cellsPerUnit < 0 ? Between{0, last, 0} : Between{last, 0, 0};
      p_between.share = std::min((p_position - p_axis.high) / gap, 1.0);
      return true;
    }
  } else if (!(p_position >= p_axis.low - p_axis.slack && p_position <= p_axis.high + p_axis.slack)) {
    return false;
  }
  p_between = Within(p_axis, std::clamp(p_position, p_axis.low, p_axis.high));
  return true;
}

/// For an axis divided into as many even parts as it has cells: the cell in which each part begins, and the last cell.
/// Empty where the parts are the cells.
std::vector<std::uint32_t> Starts(const std::vector<double>& p_nodes, double p_cellsPerUnit) {
  std::vector<std::uint32_t> starts;
  bool isEven = true;
  std::uint32_t cell = 0;
  for (std::uint32_t part = 0; part + 1 < p_nodes.size(); ++part) {
    const auto parts = [&](std::size_t p_node) { return (p_nodes[p_node] - p_nodes.front()) * p_cellsPerUnit; };
    while (cell + 2 < p_nodes.size() && parts(cell + 1) <= part)
      ++cell;
    isEven = isEven && std::abs(parts(part) - part) < 1e-6;
    starts.push_back(cell);
  }
  if (isEven)
    return {};
  starts.push_back(static_cast<std::uint32_t>(p_nodes.size() - 2));
  return starts;
}

} // namespace

VectorField::VectorField(std::array<std::vector<double>, 3> p_axes, const Array3& p_vectors) {
  const std::size_t count = Scene::NodeCount("VectorField", {p_axes[0].size(), p_axes[1].size(), p_axes[2].size()});
  RequireCount("VectorField: vectors", p_vectors.Count(), count);
  _vectors = Points(p_vectors);
  for (Vector& vector : _vectors)
    if (!IsFinite(vector)) {
      vector = {NaN, NaN, NaN};
      ++_missing;
    }
  for (std::size_t i = 0; i < 3; ++i) {
    NodeAxis& axis = _axes[i];
    axis.nodes = std::move(p_axes[i]);
    const double first = axis.nodes.front(), last = axis.nodes.back();
    axis.low = std::min(first, last);
    axis.high = std::max(first, last);
    if (axis.nodes.size() > 1)
      axis.cellsPerUnit = static_cast<double>(axis.nodes.size() - 1) / (last - first);
    axis.starts = Starts(axis.nodes, axis.cellsPerUnit);
  }
  const double cell = CellSize();
  for (NodeAxis& axis : _axes) {
    const double largest = std::max(std::abs(axis.low), std::abs(axis.high));
    const double ownCell = axis.nodes.size() > 1 ? 1 / std::abs(axis.cellsPerUnit) : cell;
    axis.slack = 1e-9 * ownCell + 4 * std::numeric_limits<double>::epsilon() * largest;
  }
}

VectorField VectorField::Rectilinear(const Array1& p_x, const Array1& p_y, const Array1& p_z, const Array3& p_vectors) {
  return VectorField(
      {AxisNodes("VectorField: x", p_x, 1), AxisNodes("VectorField: y", p_y, 1), AxisNodes("VectorField: z", p_z, 1)},
      p_vectors);
}

VectorField VectorField::Layer(const Array1& p_x, const Array1& p_y, const Array3& p_vectors, double p_z) {
  return Rectilinear(p_x, p_y, Array1::Constant(p_z, 1), p_vectors);
}

VectorField VectorField::Regular(const Counts& p_counts, const Vector& p_origin, const Vector& p_spacing,
                                 const Array3& p_vectors) {
  RequireCount("VectorField: vectors", p_vectors.Count(), Scene::NodeCount("VectorField", p_counts));
  return VectorField({EvenNodes("VectorField: x", p_counts[0], p_origin.x, p_spacing.x),
                      EvenNodes("VectorField: y", p_counts[1], p_origin.y, p_spacing.y),
                      EvenNodes("VectorField: z", p_counts[2], p_origin.z, p_spacing.z)},
                     p_vectors);
}

VectorField VectorField::FromPoints(const Array3& p_points, const Array3& p_vectors) {
  RequireCount("VectorField: vectors", p_vectors.Count(), p_points.Count());
  const std::vector<Vector> points = Points(p_points), vectors = Points(p_vectors);
  std::array<std::vector<double>, 3> axes;
  std::size_t listed = 0;
  for (const Vector& point : points)
    if (IsFinite(point)) {
      axes[0].push_back(point.x);
      axes[1].push_back(point.y);
      axes[2].push_back(point.z);
      ++listed;
    }
  for (std::vector<double>& axis : axes)
    axis = Distinct(std::move(axis));
  const Counts size{axes[0].size(), axes[1].size(), axes[2].size()};
  if (listed == 0 || static_cast<double>(size[0]) * static_cast<double>(size[1]) * static_cast<double>(size[2]) >
                         4 * static_cast<double>(listed))
    throw std::invalid_argument("VectorField: expected points that form a grid, got " + std::to_string(listed) +
                                " with " + std::to_string(size[0]) + " x, " + std::to_string(size[1]) + " y and " +
                                std::to_string(size[2]) + " z");
  std::vector<Vector> nodes(size[0] * size[1] * size[2], {NaN, NaN, NaN});
  for (std::size_t i = 0; i < points.size(); ++i)
    if (IsFinite(points[i]))
      nodes[IndexIn(axes[0], points[i].x) +
            size[0] * (IndexIn(axes[1], points[i].y) + size[1] * IndexIn(axes[2], points[i].z))] = vectors[i];
  return VectorField(std::move(axes), nodes);
}

void VectorField::WrapX(double p_period) {
  const double length = _axes[0].high - _axes[0].low;
  if (!(p_period > 0 && p_period >= length - _axes[0].slack) || !std::isfinite(p_period)) {
    std::ostringstream message;
    message.imbue(std::locale::classic());
    message << "VectorField: expected a period that is not shorter than the x axis, " << length << ", got " << p_period;
    throw std::invalid_argument(message.str());
  }
  _period = p_period;
}

bool VectorField::Sample(const Vector& p_position, Vector& p_vector) const {
  if (_vectors.empty())
    return false;
  const std::array<double, 3> position{p_position.x, p_position.y, p_position.z};
  std::array<Between, 3> cell;
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (!Locate(_axes[axis], position[axis], axis == 0 ? _period : 0, cell[axis]))
      return false;
  const auto &x = cell[0], &y = cell[1], &z = cell[2];
  const std::size_t columns = _axes[0].nodes.size(), rows = _axes[1].nodes.size();
  const auto alongX = [&](std::size_t p_y, std::size_t p_z) {
    const Vector* const row = _vectors.data() + columns * (p_y + rows * p_z);
    return row[x.lower] * (1 - x.share) + row[x.upper] * x.share;
  };
  const auto alongY = [&](std::size_t p_z) {
    return alongX(y.lower, p_z) * (1 - y.share) + alongX(y.upper, p_z) * y.share;
  };
  const Vector vector =
      z.lower == z.upper ? alongY(z.lower) : alongY(z.lower) * (1 - z.share) + alongY(z.upper) * z.share;
  if (!IsFinite(vector)) // a missing node is NaN, also times 0
    return false;
  p_vector = vector;
  return true;
}

VectorField::Counts VectorField::Size() const {
  return {_axes[0].nodes.size(), _axes[1].nodes.size(), _axes[2].nodes.size()};
}

Types::BoundingBox_Base<double> VectorField::Bounds() const {
  if (_vectors.empty())
    return {};
  return {{_axes[0].low, _axes[1].low, _axes[2].low}, {_axes[0].high, _axes[1].high, _axes[2].high}};
}

Vector VectorField::Spacing() const {
  const auto mean = [this](std::size_t p_axis) {
    const NodeAxis& axis = _axes[p_axis];
    return axis.nodes.size() > 1 ? (axis.high - axis.low) / static_cast<double>(axis.nodes.size() - 1) : 0;
  };
  return {mean(0), mean(1), mean(2)};
}

double VectorField::CellSize() const {
  const Vector spacing = Spacing();
  double smallest = std::numeric_limits<double>::infinity();
  for (const double cell : {spacing.x, spacing.y, spacing.z})
    if (cell > 0)
      smallest = std::min(smallest, cell);
  return std::isfinite(smallest) ? smallest : 1;
}

Types::MinMax_Base<double> VectorField::Speeds() const {
  Types::MinMax_Base<double> range;
  for (const Vector& vector : _vectors)
    range += Length(vector);
  return range;
}

double VectorField::SpeedQuantile(double p_fraction) const {
  std::vector<double> speeds;
  speeds.reserve(_vectors.size());
  for (const Vector& vector : _vectors)
    if (IsFinite(vector))
      speeds.push_back(Length(vector));
  if (speeds.empty())
    return NaN;
  const double fraction = p_fraction >= 0 ? std::min(p_fraction, 1.0) : 0.0;
  const auto nth = speeds.begin() + static_cast<std::ptrdiff_t>(fraction * static_cast<double>(speeds.size() - 1));
  std::nth_element(speeds.begin(), nth, speeds.end());
  return *nth;
}

} // namespace Vek::Chart::Scene
