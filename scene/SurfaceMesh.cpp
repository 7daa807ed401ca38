#include "scene/SurfaceMesh.h"

#include "scene/private/GridAxis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace Vek::Chart::Scene {

namespace {

using Vector3 = Types::Vector3_Base<double>;

/// Scaled positions along one axis.
std::vector<double> ScaledNodes(const char* p_name, const Array1& p_axis, double p_origin, double p_scale) {
  std::vector<double> nodes = AxisNodes(p_name, p_axis, 2);
  for (double& node : nodes)
    node = (node - p_origin) * p_scale;
  return nodes;
}

/// Heights of the scene on the whole grid, halo included; NaN where missing.
class Heights {
public:
  Heights(std::vector<double> p_x, std::vector<double> p_y, std::vector<double> p_heights)
      : _x(std::move(p_x))
      , _y(std::move(p_y))
      , _heights(std::move(p_heights)) {}

  std::size_t Columns() const { return _x.size(); }
  std::size_t Rows() const { return _y.size(); }
  double X(std::size_t p_column) const { return _x[p_column]; }
  double Y(std::size_t p_row) const { return _y[p_row]; }
  double At(std::size_t p_column, std::size_t p_row) const { return _heights[p_column + _x.size() * p_row]; }
  Vector3 Normal(std::size_t p_column, std::size_t p_row) const {
    const double* const at = _heights.data() + p_column + _x.size() * p_row;
    return Normalize(Vector3(-SlopeAlong(_x, p_column, at, 1), -SlopeAlong(_y, p_row, at, _x.size()), 1));
  }

private:
  static double SlopeAlong(const std::vector<double>& p_axis, std::size_t p_index, const double* p_at,
                           std::size_t p_step) {
    constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
    const bool first = p_index == 0, last = p_index + 1 == p_axis.size();
    return Slope(first ? NaN : *(p_at - p_step), *p_at, last ? NaN : *(p_at + p_step),
                 first ? 1 : p_axis[p_index] - p_axis[p_index - 1], last ? 1 : p_axis[p_index + 1] - p_axis[p_index]);
  }

  std::vector<double> _x, _y;
  std::vector<double> _heights;
};

Types::Vector3_Base<float> Rounded(const Vector3& p_vector) {
  return {static_cast<float>(p_vector.x), static_cast<float>(p_vector.y), static_cast<float>(p_vector.z)};
}

/// The triangles between every `p_step`-th node.
std::vector<unsigned int> GridIndices(std::size_t p_columns, std::size_t p_rows, std::size_t p_step, bool p_mirrored,
                                      const std::vector<bool>& p_missing) {
  std::vector<unsigned int> indices;
  const std::size_t cells = ((p_columns - 2) / p_step + 1) * ((p_rows - 2) / p_step + 1);
  indices.reserve(6 * cells);
  const auto add = [&](std::size_t p_a, std::size_t p_b, std::size_t p_c) {
    for (const std::size_t corner : {p_a, p_mirrored ? p_c : p_b, p_mirrored ? p_b : p_c})
      indices.push_back(static_cast<unsigned int>(corner));
  };
  for (std::size_t row = 0; row + 1 < p_rows; row += p_step)
    for (std::size_t column = 0; column + 1 < p_columns; column += p_step) {
      const std::size_t right = std::min(column + p_step, p_columns - 1), up = std::min(row + p_step, p_rows - 1);
      // Around the cell, counter-clockwise where x and y grow.
      const std::array<std::size_t, 4> corners = {row * p_columns + column, row * p_columns + right,
                                                  up * p_columns + right, up * p_columns + column};
      std::size_t absent = 4, missing = 0;
      if (!p_missing.empty())
        for (std::size_t i = 0; i < 4; ++i)
          if (p_missing[corners[i]]) {
            absent = i;
            ++missing;
          }
      if (missing == 0) {
        add(corners[0], corners[1], corners[2]);
        add(corners[0], corners[2], corners[3]);
      } else if (missing == 1) {
        add(corners[(absent + 1) % 4], corners[(absent + 2) % 4], corners[(absent + 3) % 4]);
      }
    }
  return indices;
}

void CheckOptions(const SurfaceMesh::Options& p_options, const std::array<std::size_t, 2>& p_size) {
  const auto isFinite = [](const Vector3& p_vector) {
    return std::isfinite(p_vector.x) && std::isfinite(p_vector.y) && std::isfinite(p_vector.z);
  };
  if (!isFinite(p_options.origin) || !isFinite(p_options.scale) || p_options.scale.x == 0 || p_options.scale.y == 0)
    throw std::invalid_argument("SurfaceMesh: expected a finite origin, and a finite scale that is not 0 in x and y");
  for (const std::size_t count : p_size)
    if (count < 2 || p_options.halo > (count - 2) / 2)
      throw std::invalid_argument("SurfaceMesh: expected two rows and columns at least beside a halo of " +
                                  std::to_string(p_options.halo) + ", got " + std::to_string(p_size[0]) +
                                  " columns and " + std::to_string(p_size[1]) + " rows");
}

} // namespace

SurfaceMesh::SurfaceMesh(const Array1& p_x, const Array1& p_y, const Array1& p_heights, const Array1& p_values,
                         const Options& p_options) {
  const std::size_t count = NodeCount("SurfaceMesh", {p_x.Count(), p_y.Count(), 1});
  RequireCount("SurfaceMesh: heights", p_heights.Count(), count);
  RequireCount("SurfaceMesh: values", p_values.Count() == 0 ? count : p_values.Count(), count);
  CheckOptions(p_options, {p_x.Count(), p_y.Count()});
  if (count > std::numeric_limits<unsigned int>::max())
    throw std::invalid_argument("SurfaceMesh: expected 2^32 - 1 nodes at most, got " + std::to_string(count));
  const std::vector<float> given = FloatValues(p_values.Count() == 0 ? p_heights : p_values);
  std::vector<double> z = Values(p_heights);
  for (double& height : z)
    height = (height - p_options.origin.z) * p_options.scale.z;
  const Heights heights(ScaledNodes("SurfaceMesh: x", p_x, p_options.origin.x, p_options.scale.x),
                        ScaledNodes("SurfaceMesh: y", p_y, p_options.origin.y, p_options.scale.y), std::move(z));

  const std::size_t halo = p_options.halo;
  columns = heights.Columns() - 2 * halo;
  rows = heights.Rows() - 2 * halo;
  positions.reserve(columns * rows);
  normals.reserve(columns * rows);
  values.reserve(columns * rows);
  std::vector<std::size_t> holes;
  for (std::size_t row = halo; row < halo + rows; ++row)
    for (std::size_t column = halo; column < halo + columns; ++column) {
      const Vector3 position(heights.X(column), heights.Y(row), heights.At(column, row));
      const bool isHole = !std::isfinite(position.z);
      if (isHole)
        holes.push_back(positions.size());
      else
        bounds += position;
      positions.push_back(Rounded(position));
      normals.push_back(isHole ? Vector(0, 0, 1) : Rounded(heights.Normal(column, row)));
      values.push_back(isHole ? std::numeric_limits<float>::quiet_NaN() : given[row * heights.Columns() + column]);
    }
  missing = holes.size();
  std::vector<bool> isMissing;
  if (missing > 0)
    isMissing.resize(positions.size());
  for (const std::size_t hole : holes) {
    isMissing[hole] = true;
    positions[hole].z = bounds.Empty() ? 0 : static_cast<float>(bounds.Min().z);
  }
  const bool mirrored = (heights.X(1) < heights.X(0)) != (heights.Y(1) < heights.Y(0));
  std::size_t step = 1;
  do {
    indices.push_back(GridIndices(columns, rows, step, mirrored, isMissing));
    step *= 2;
  } while (indices.size() < p_options.levels && step / 2 + 1 < std::max(columns, rows));
}

std::vector<Ogl::VertexData> SurfaceMesh::TakeData() {
  Ogl::VertexData none, shared;
  none.PrimitiveType() = Ogl::VertexBuffer::Triangles;
  shared.SetVertices(std::move(positions));
  shared.SetNormals(std::move(normals));
  shared.SetTexCoords(std::move(values));
  shared.PrimitiveType() = Ogl::VertexBuffer::Triangles;
  std::vector<Ogl::VertexData> levels(indices.size(), shared);
  for (std::size_t i = 0; i < levels.size(); ++i)
    if (indices[i].empty())
      levels[i] = none; // without indices, all vertices would be drawn
    else
      levels[i].SetIndices(std::move(indices[i]));
  positions = normals = {};
  values = {};
  indices = {};
  return levels;
}

} // namespace Vek::Chart::Scene
