#include "scene/private/VoxelAxis.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Scene::Private {

VoxelAxis::VoxelAxis(int p_size, double p_low, double p_high, bool p_descends)
    : _size(p_size)
    , _low(p_low)
    , _high(p_high)
    , _first(p_descends ? 1 : 0)
    , _last(p_descends ? 0 : 1) {}

VoxelAxis::VoxelAxis(std::vector<double> p_knots)
    : _size(static_cast<int>(p_knots.size() / 2))
    , _low(std::min(p_knots.front(), p_knots.back()))
    , _high(std::max(p_knots.front(), p_knots.back()))
    , _knots(std::move(p_knots)) {
  // Even if all knots but the ends lie on the line through two of them.
  constexpr double Tolerance = 1e-3; // of a cell: positions were often rounded to float
  const std::size_t second = _size > 1 ? 1 : 0, last = _knots.size() - 1 - second;
  const double step = (_knots[last] - _knots[second]) / static_cast<double>(last - second);
  for (std::size_t i = second; i <= last; ++i)
    if (!(std::abs(_knots[i] - (_knots[second] + step * static_cast<double>(i - second))) <=
          Tolerance * std::abs(step)))
      return;
  const auto coordinate = [&](double p_position) {
    const double knot = (p_position - _knots[second]) / step + static_cast<double>(second);
    const double share = knot / (2 * _size);
    return std::abs(share - std::round(share)) < Tolerance / _size ? std::round(share) : share;
  };
  _first = coordinate(_low);
  _last = coordinate(_high);
  _knots.clear();
}

VoxelAxis VoxelAxis::OfNodes(const std::vector<double>& p_nodes) {
  std::vector<double> knots{p_nodes.front()};
  for (std::size_t i = 0; i < p_nodes.size(); ++i) {
    knots.push_back(p_nodes[i]);
    knots.push_back(i + 1 < p_nodes.size() ? p_nodes[i] / 2 + p_nodes[i + 1] / 2 : p_nodes[i]);
  }
  return VoxelAxis(std::move(knots));
}

VoxelAxis VoxelAxis::OfBounds(const std::vector<double>& p_bounds) {
  std::vector<double> knots{p_bounds.front()};
  for (std::size_t i = 1; i < p_bounds.size(); ++i) {
    knots.push_back(p_bounds[i - 1] / 2 + p_bounds[i] / 2);
    knots.push_back(p_bounds[i]);
  }
  return VoxelAxis(std::move(knots));
}

double VoxelAxis::ShortestCell() const {
  if (IsEven())
    return (_high - _low) / (_size * std::abs(_last - _first));
  // The half cells at both ends of nodes may have no length.
  double shortest = _high - _low;
  for (std::size_t i = 1; i + 3 < _knots.size(); ++i)
    shortest = std::min(shortest, std::abs(_knots[i + 2] - _knots[i]));
  return shortest;
}

double VoxelAxis::MeanCell() const {
  return IsEven() ? ShortestCell() : std::abs(_knots[_knots.size() - 2] - _knots[1]) / std::max(1, _size - 1);
}

double VoxelAxis::Coordinate(double p_position) const {
  if (IsEven())
    return _first + Share(p_position) * (_last - _first);
  const bool descends = _knots.back() < _knots.front();
  const auto isBefore = [&](double p_knot) { return descends ? p_knot >= p_position : p_knot <= p_position; };
  const auto after = std::partition_point(_knots.begin() + 1, _knots.end() - 1, isBefore);
  const double low = *(after - 1), width = *after - low;
  const double part = width != 0 ? (p_position - low) / width : 0;
  return (static_cast<double>(after - 1 - _knots.begin()) + part) / (2 * _size);
}

double VoxelAxis::NearestCenter(double p_position) const {
  const double position = std::clamp(p_position, _low, _high);
  const auto indexOf = [&](double p_coordinate) {
    return std::clamp(std::floor(p_coordinate * _size), 0.0, _size - 1.0);
  };
  if (!IsEven())
    return _knots[2 * static_cast<std::size_t>(indexOf(Coordinate(position))) + 1];
  const bool isWhole = std::min(_first, _last) == 0 && std::max(_first, _last) == 1;
  if (isWhole) // from below, also where cells descend
    return _low + (_high - _low) * ((indexOf(Share(position)) + 0.5) / _size);
  const double center = (indexOf(Coordinate(position)) + 0.5) / _size;
  return _low + (_high - _low) * ((center - _first) / (_last - _first));
}

std::vector<double> VoxelAxis::Knots() const {
  if (!IsEven())
    return _knots;
  std::vector<double> knots(2 * static_cast<std::size_t>(_size) + 1);
  for (std::size_t i = 0; i < knots.size(); ++i) {
    const double coordinate = static_cast<double>(i) / static_cast<double>(knots.size() - 1);
    const double share = std::clamp((coordinate - _first) / (_last - _first), 0.0, 1.0);
    knots[i] = _low * (1 - share) + _high * share;
  }
  return knots;
}

} // namespace Vek::Chart::Scene::Private
