#include "library/private/mesh/GlyphLayer.h"

#include "library/private/memory/StreamedArray.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <unordered_map>

namespace Vek::Chart::Library::Private {

namespace {

using Types::Vector3_Base;
using Bits = std::array<std::uint64_t, 3>;

struct BitsHash {
  std::size_t operator()(const Bits& p_bits) const {
    std::uint64_t hash = 0;
    for (const std::uint64_t word : p_bits)
      hash = (hash ^ word ^ (hash >> 29)) * 0x9E3779B97F4A7C15u;
    return static_cast<std::size_t>(hash ^ (hash >> 32));
  }
};

Bits BitsOf(const Vector3_Base<double>& p_vector) {
  Bits bits;
  static_assert(sizeof bits == sizeof p_vector);
  std::memcpy(bits.data(), &p_vector, sizeof bits);
  return bits;
}

/// Layers of more bytes than this go past the caches.
constexpr std::size_t CachedBytes = std::size_t(1) << 20;

/// One attribute of the target, if it is wanted.
template <class T>
class Output {
public:
  explicit Output(const VectorSymbol::Target<T>& p_target) {
    if (p_target.data != nullptr)
      _stream.emplace(p_target.data, p_target.count * sizeof(T) > CachedBytes);
  }
  explicit operator bool() const { return _stream.has_value(); }

  /// Calls p_write(first, n, memory) for pieces of a run of `p_elements` elements of `p_scalars` scalars each.
  template <class Write>
  void ForPieces(std::size_t p_elements, std::size_t p_scalars, Write p_write) {
    const std::size_t most = StreamedArray<T>::Capacity / 4 / p_scalars;
    for (std::size_t first = 0; first < p_elements; first += most) {
      const std::size_t n = std::min(most, p_elements - first);
      p_write(first, n, _stream->Take(n * p_scalars));
    }
  }

private:
  std::optional<StreamedArray<T>> _stream;
};

/// Copies three floats each of records of four. The fourth goes along where the next record will replace it.
void Gather(const std::vector<float>& p_records, const unsigned int* p_index, std::size_t p_count, float* p_out) {
  const float* const records = p_records.data();
  for (std::size_t i = 0; i + 1 < p_count; ++i)
    std::memcpy(p_out + 3 * i, records + 4 * std::size_t(p_index[i]), 4 * sizeof(float));
  std::memcpy(p_out + 3 * (p_count - 1), records + 4 * std::size_t(p_index[p_count - 1]), 3 * sizeof(float));
}

} // namespace

DistinctVectors DistinctVectors::Of(const std::vector<Vector3_Base<double>>& p_list) {
  std::unordered_map<Bits, unsigned int, BitsHash> known;
  std::vector<Vector3_Base<double>> distinct;
  std::vector<unsigned int> indexOf;
  indexOf.reserve(p_list.size());
  for (const Vector3_Base<double>& vector : p_list) {
    const auto [place, is_new] = known.try_emplace(BitsOf(vector), static_cast<unsigned int>(distinct.size()));
    if (is_new)
      distinct.push_back(vector);
    indexOf.push_back(place->second);
  }
  return {VectorColumns(distinct), std::move(indexOf)};
}

GlyphLayer::GlyphLayer(const std::vector<Vector3_Base<double>>& p_vertices,
                       const std::vector<Vector3_Base<double>>& p_normals, const std::vector<unsigned int>& p_indices)
    : _points(DistinctVectors::Of(p_vertices))
    , _directions(DistinctVectors::Of(p_normals))
    , _indices(p_indices) {}

void GlyphLayer::Write(const VectorSymbol::Instances& p_instances, double p_shift, double p_scale,
                       const VectorSymbol::LayerMemory& p_memory) const {
  const std::size_t vertexCount = _points.indexOf.size();
  std::vector<float> placed(4 * _points.vectors.Count());
  std::vector<float> rotated(4 * _directions.vectors.Count());
  Output<float> vertices(p_memory.vertices);
  Output<float> normals(p_memory.normals);
  Output<float> texCoords(p_memory.texCoords);
  Output<unsigned int> indices(p_memory.indices);
  unsigned int base = p_memory.firstVertex;

  for (std::size_t k = 0; k < p_instances.count; ++k) {
    const double factor = p_instances.sizes[k] * p_scale;
    if (factor <= 0.0)
      continue;
    if (vertices) {
      PlacePoints(_points.vectors, {p_instances.rotations[k], p_instances.positions[k], p_shift, factor},
                  placed.data());
      vertices.ForPieces(vertexCount, 3, [&](std::size_t p_first, std::size_t p_count, float* p_out) {
        Gather(placed, _points.indexOf.data() + p_first, p_count, p_out);
      });
    }
    if (normals) {
      RotateDirections(_directions.vectors, p_instances.rotations[k], rotated.data());
      normals.ForPieces(vertexCount, 3, [&](std::size_t p_first, std::size_t p_count, float* p_out) {
        Gather(rotated, _directions.indexOf.data() + p_first, p_count, p_out);
      });
    }
    if (texCoords && p_instances.texCoords != nullptr) {
      const float value = static_cast<float>(p_instances.texCoords[k]);
      texCoords.ForPieces(vertexCount, 1, [value](std::size_t, std::size_t p_count, float* p_out) {
        std::fill_n(p_out, p_count, value);
      });
    }
    if (indices)
      indices.ForPieces(_indices.size(), 1, [&](std::size_t p_first, std::size_t p_count, unsigned int* p_out) {
        for (std::size_t i = 0; i < p_count; ++i)
          p_out[i] = _indices[p_first + i] + base;
      });
    base += static_cast<unsigned int>(vertexCount);
  }
}

} // namespace Vek::Chart::Library::Private
