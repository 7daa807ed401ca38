#include "scene/Isosurface.h"

#include "scene/private/CubeCases.h"
#include "scene/private/GridAxis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Vector3 = Types::Vector3_Base<double>;

Types::Vector3_Base<float> Rounded(const Vector3& p_vector) {
  return {static_cast<float>(p_vector.x), static_cast<float>(p_vector.y), static_cast<float>(p_vector.z)};
}

struct Volume {
  std::array<std::vector<double>, 3> axes; // in units of the scene
  std::vector<float> values;

  std::size_t Count(std::size_t p_axis) const { return axes[p_axis].size(); }
  std::size_t Step(std::size_t p_axis) const { return p_axis == 0 ? 1 : p_axis == 1 ? Count(0) : Count(0) * Count(1); }
  double SlopeAlong(std::size_t p_axis, std::size_t p_index, std::size_t p_node) const {
    constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double>& axis = axes[p_axis];
    const float* const at = values.data() + p_node;
    const std::size_t step = Step(p_axis);
    const bool first = p_index == 0, last = p_index + 1 == axis.size();
    return Slope(first ? NaN : *(at - step), *at, last ? NaN : *(at + step),
                 first ? 1 : axis[p_index] - axis[p_index - 1], last ? 1 : axis[p_index + 1] - axis[p_index]);
  }
  bool IsMirrored() const {
    bool mirrored = false;
    for (const std::vector<double>& axis : axes)
      mirrored = mirrored != (axis[1] < axis[0]);
    return mirrored;
  }
};

/// A vertex in the plane of nodes between two slabs, with the number of its edge.
struct BorderVertex {
  std::size_t edge;
  std::uint32_t vertex;
};

/// The part of a surface in some layers of cells. Vertices at its first plane of nodes may be those of the slab below.
struct Slab {
  std::vector<Isosurface::Vector> positions;
  std::vector<Isosurface::Vector> normals;
  std::vector<std::uint32_t> indices;
  Types::BoundingBox_Base<double> bounds;
  std::vector<BorderVertex> lower; // those at its first and its last plane, by their edges
  std::vector<BorderVertex> upper;

  // In the whole surface: the number of the first vertex that is not of the slab below, those of the first vertices,
  // and the offset to those of the others.
  std::size_t start = 0;
  std::vector<std::uint32_t> firstNumbers;
  std::size_t shared = 0; // vertices of the slab below
  std::size_t firstIndex = 0;

  std::size_t End() const { return start + positions.size() - shared; }
  std::uint32_t NumberOf(std::size_t p_vertex) const {
    return p_vertex < firstNumbers.size() ? firstNumbers[p_vertex]
                                          : static_cast<std::uint32_t>(start + p_vertex - shared);
  }
  void NumberVertices(const Slab& p_below);
  void CopyTo(Slab& p_whole) const;
};

[[noreturn]] void RefuseVertices() {
  throw std::invalid_argument("Isosurface: expected a surface of 2^32 vertices at most");
}

/// Numbers the vertices that the slab below does not have, from the end of that slab.
void Slab::NumberVertices(const Slab& p_below) {
  constexpr std::uint32_t Own = std::numeric_limits<std::uint32_t>::max();
  start = p_below.End();
  firstIndex = p_below.firstIndex + p_below.indices.size();
  auto below = p_below.upper.begin();
  for (const BorderVertex& vertex : lower) {
    firstNumbers.resize(std::max<std::size_t>(firstNumbers.size(), vertex.vertex + 1), Own);
    while (below != p_below.upper.end() && below->edge < vertex.edge)
      ++below;
    if (below == p_below.upper.end() || below->edge != vertex.edge)
      continue;
    firstNumbers[vertex.vertex] = p_below.NumberOf(below->vertex);
    ++shared;
  }
  if (End() > Own)
    RefuseVertices();
  std::size_t next = start;
  for (std::uint32_t& number : firstNumbers)
    number = number == Own ? static_cast<std::uint32_t>(next++) : number;
}

void Slab::CopyTo(Slab& p_whole) const {
  for (std::size_t i = 0; i < positions.size(); ++i)
    if (const std::uint32_t number = NumberOf(i); number >= start) {
      p_whole.positions[number] = positions[i];
      p_whole.normals[number] = normals[i];
    }
  for (std::size_t i = 0; i < indices.size(); ++i)
    p_whole.indices[firstIndex + i] = NumberOf(indices[i]);
}

/// Adds the surface of one level to a slab, layer of cells by layer of cells.
///
/// Each plane of nodes and each layer between two has slots for the vertices on its edges. A slot holds the number of
/// its vertex plus one. Slots are never cleared: numbers that were given before the plane's first layer are stale.
class LevelSurface {
public:
  LevelSurface(const Volume& p_volume, float p_level, Slab& p_slab)
      : _volume(p_volume)
      , _level(p_level)
      , _slab(p_slab)
      , _columns(p_volume.Count(0))
      , _mirrored(p_volume.IsMirrored()) {
    for (Plane& plane : _planes) {
      plane.above.resize(p_volume.Step(2));
      plane.vertices[0].resize(p_volume.Step(2));
      plane.vertices[1].resize(p_volume.Step(2));
    }
    _upright.resize(p_volume.Step(2));
  }

  void Add(std::size_t p_firstLayer, std::size_t p_lastLayer) {
    _firstPlane = p_firstLayer;
    _lastPlane = p_lastLayer;
    Classify(p_firstLayer, _planes[1]);
    _planes[1].firstVertex = _slab.positions.size();
    for (std::size_t layer = p_firstLayer; layer < p_lastLayer; ++layer) {
      std::swap(_planes[0], _planes[1]);
      Classify(layer + 1, _planes[1]);
      _planes[1].firstVertex = _layerFirstVertex = _slab.positions.size();
      for (std::size_t row = 0; row + 1 < _volume.Count(1); ++row)
        AddRow(row, layer);
    }
    const auto byEdge = [](const BorderVertex& p_a, const BorderVertex& p_b) { return p_a.edge < p_b.edge; };
    std::sort(_slab.lower.begin(), _slab.lower.end(), byEdge);
    std::sort(_slab.upper.begin(), _slab.upper.end(), byEdge);
  }

private:
  struct Plane {
    std::vector<std::uint8_t> above; // 1 for each node above the level
    std::array<std::vector<std::uint32_t>, 2>
        vertices; // slots of the edges along x and y, by the node at their lower end
    std::size_t firstVertex = 0;
  };

  void Classify(std::size_t p_layer, Plane& p_plane) const {
    const float* const values = _volume.values.data() + p_layer * p_plane.above.size();
    for (std::size_t i = 0; i < p_plane.above.size(); ++i)
      p_plane.above[i] = values[i] >= _level ? 1 : 0;
  }

  /// Visits the cells of a row whose corners are not all on the same side of the level.
  void AddRow(std::size_t p_row, std::size_t p_layer) {
    const std::size_t cells = _columns - 1;
    const std::uint8_t* const a = _planes[0].above.data() + p_row * _columns;
    const std::uint8_t* const b = a + _columns;
    const std::uint8_t* const c = _planes[1].above.data() + p_row * _columns;
    const std::uint8_t* const d = c + _columns;
    _cases.resize((cells + 7) / 8 * 8);
    for (std::size_t i = 0; i < cells; ++i)
      _cases[i] = static_cast<std::uint8_t>(a[i] | a[i + 1] << 1 | b[i] << 2 | b[i + 1] << 3 | c[i] << 4 |
                                            c[i + 1] << 5 | d[i] << 6 | d[i + 1] << 7);
    for (std::size_t block = 0; block < cells; block += 8) {
      std::uint64_t eight = 0;
      std::memcpy(&eight, _cases.data() + block, 8);
      if (eight == 0 || eight == ~std::uint64_t{0})
        continue;
      for (std::size_t i = block; i < std::min(block + 8, cells); ++i)
        if (_cases[i] != 0 && _cases[i] != 255)
          AddCell(_cases[i], {i, p_row, p_layer});
    }
  }

  void AddCell(std::size_t p_case, const std::array<std::size_t, 3>& p_cell) {
    const std::size_t node = p_cell[0] + _volume.Step(1) * p_cell[1] + _volume.Step(2) * p_cell[2];
    const auto cornerStep = [&](std::size_t p_corner) {
      return (p_corner & 1U) + (p_corner >> 1U & 1U) * _volume.Step(1) + (p_corner >> 2U) * _volume.Step(2);
    };
    for (std::size_t corner = 0; corner < 8; ++corner)
      if (!std::isfinite(_volume.values[node + cornerStep(corner)]))
        return;
    const CubeCases::Triangles& triangles = CubeCases::Table()[p_case];
    for (std::size_t i = 0; i < 3U * triangles.count; i += 3)
      for (const std::size_t corner : {i, _mirrored ? i + 2 : i + 1, _mirrored ? i + 1 : i + 2})
        _slab.indices.push_back(VertexOn(triangles.edges[corner], p_cell));
  }

  std::uint32_t VertexOn(std::size_t p_edge, std::array<std::size_t, 3> p_cell) {
    const std::size_t axis = p_edge / 4, corner = CubeCases::EdgeStarts[p_edge];
    p_cell[0] += corner & 1U;
    p_cell[1] += corner >> 1U & 1U;
    Plane& plane = _planes[corner >> 2U];
    const std::size_t inPlane = p_cell[0] + _columns * p_cell[1];
    std::uint32_t& slot = axis == 2 ? _upright[inPlane] : plane.vertices[axis][inPlane];
    if (slot <= (axis == 2 ? _layerFirstVertex : plane.firstVertex)) {
      p_cell[2] += corner >> 2U;
      AddVertex(axis, p_cell);
      slot = static_cast<std::uint32_t>(_slab.positions.size());
      if (axis != 2 && (p_cell[2] == _firstPlane || p_cell[2] == _lastPlane))
        (p_cell[2] == _firstPlane ? _slab.lower : _slab.upper).push_back({2 * inPlane + axis, slot - 1});
    }
    return slot - 1;
  }

  void AddVertex(std::size_t p_axis, const std::array<std::size_t, 3>& p_index) {
    if (_slab.positions.size() >= std::numeric_limits<std::uint32_t>::max())
      RefuseVertices();
    const std::size_t node = p_index[0] + _volume.Step(1) * p_index[1] + _volume.Step(2) * p_index[2];
    std::array<std::size_t, 3> end = p_index;
    ++end[p_axis];
    const std::size_t endNode = node + _volume.Step(p_axis);
    const double first = _volume.values[node], second = _volume.values[endNode];
    const double share = (_level - first) / (second - first);
    const auto at = [&](const std::array<std::size_t, 3>& p_i) {
      return Vector3(_volume.axes[0][p_i[0]], _volume.axes[1][p_i[1]], _volume.axes[2][p_i[2]]);
    };
    const auto gradient = [&](const std::array<std::size_t, 3>& p_i, std::size_t p_node) {
      return Vector3(_volume.SlopeAlong(0, p_i[0], p_node), _volume.SlopeAlong(1, p_i[1], p_node),
                     _volume.SlopeAlong(2, p_i[2], p_node));
    };
    const Vector3 position = at(p_index) + (at(end) - at(p_index)) * share;
    const Vector3 ascent = gradient(p_index, node) * (1 - share) + gradient(end, endNode) * share;
    _slab.positions.push_back(Rounded(position));
    _slab.normals.push_back(Rounded(Normalize(-ascent)));
    _slab.bounds += position;
  }

  const Volume& _volume;
  float _level;
  Slab& _slab;
  std::size_t _columns;
  bool _mirrored; // the axes form a left-handed system
  std::array<Plane, 2> _planes;
  std::vector<std::uint32_t> _upright; // slots of the edges along z, by the node at their lower end
  std::size_t _layerFirstVertex = 0;
  std::vector<std::uint8_t> _cases;
  std::size_t _firstPlane = 0; // of the slab
  std::size_t _lastPlane = 0;
};

/// Adds the surface of one level. Slabs are made side by side, then joined in their order.
void AddLevel(const Volume& p_volume, float p_level, Utility::Threads p_threads, Slab& p_whole) {
  constexpr std::size_t WorthThreads = 100000, SlabLayers = 8;
  const std::size_t layers = p_volume.Count(2) - 1;
  if (p_threads.Count() == 1 || p_volume.values.size() < WorthThreads)
    return LevelSurface(p_volume, p_level, p_whole).Add(0, layers);
  std::vector<Slab> slabs((layers + SlabLayers - 1) / SlabLayers);
  Utility::RunBlocks(p_threads, slabs.size(), [&](std::size_t p_slab) {
    const std::size_t first = p_slab * SlabLayers;
    LevelSurface(p_volume, p_level, slabs[p_slab]).Add(first, std::min(first + SlabLayers, layers));
  });
  const Slab* below = &p_whole;
  for (Slab& slab : slabs) {
    slab.NumberVertices(*below);
    below = &slab;
    p_whole.bounds += slab.bounds;
  }
  p_whole.positions.resize(below->End());
  p_whole.normals.resize(below->End());
  p_whole.indices.resize(below->firstIndex + below->indices.size());
  Utility::RunBlocks(p_threads, slabs.size(), [&](std::size_t p_slab) {
    slabs[p_slab].CopyTo(p_whole);
    slabs[p_slab] = {};
  });
}

} // namespace

Isosurface::Isosurface(const Array1& p_x, const Array1& p_y, const Array1& p_z, const Array1& p_values,
                       const Array1& p_levels, const Options& p_options, Utility::Threads p_threads) {
  const std::array<double, 6> numbers = {p_options.origin.x, p_options.origin.y, p_options.origin.z,
                                         p_options.scale.x,  p_options.scale.y,  p_options.scale.z};
  for (std::size_t i = 0; i < numbers.size(); ++i)
    if (!std::isfinite(numbers[i]) || (i >= 3 && numbers[i] == 0))
      throw std::invalid_argument("Isosurface: expected a finite origin, and a finite scale that is not 0");
  Volume volume{
      {AxisNodes("Isosurface: x", p_x, 2), AxisNodes("Isosurface: y", p_y, 2), AxisNodes("Isosurface: z", p_z, 2)}, {}};
  RequireCount("Isosurface: values", p_values.Count(),
               NodeCount("Isosurface", {p_x.Count(), p_y.Count(), p_z.Count()}));
  volume.values = FloatValues(p_values);
  for (std::size_t i = 0; i < 3; ++i)
    for (double& node : volume.axes[i])
      node = (node - numbers[i]) * numbers[i + 3];
  Slab whole;
  for (const float level : FloatValues(p_levels)) {
    if (std::isfinite(level))
      AddLevel(volume, level, p_threads, whole);
    values.resize(whole.positions.size(), level);
  }
  positions = std::move(whole.positions);
  normals = std::move(whole.normals);
  indices = std::move(whole.indices);
  bounds = whole.bounds;
}

Ogl::VertexData Isosurface::TakeData() {
  Ogl::VertexData data;
  data.SetVertices(std::move(positions));
  data.SetNormals(std::move(normals));
  data.SetTexCoords(std::move(values));
  data.SetIndices(std::move(indices));
  data.PrimitiveType() = Ogl::VertexBuffer::Triangles;
  positions = normals = {};
  values = {};
  indices = {};
  return data;
}

} // namespace Vek::Chart::Scene
