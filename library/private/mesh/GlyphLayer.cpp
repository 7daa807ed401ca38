#include "library/private/mesh/GlyphLayer.h"

#include "library/private/memory/StreamedArray.h"

#include <boost/functional/hash.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <unordered_map>

namespace Vek::Chart::Library::Private {

namespace {

using Types::Vector3_Base;
using Bits = std::array<std::uint64_t, 3>;

struct BitsHash {
  std::size_t operator()(const Bits& p_bits) const { return boost::hash_range(p_bits.begin(), p_bits.end()); }
};

Bits BitsOf(const Vector3_Base<double>& p_vector) {
  Bits bits;
  static_assert(sizeof bits == sizeof p_vector);
  std::memcpy(bits.data(), &p_vector, sizeof bits);
  return bits;
}

/// One array of the target; none if it is null.
template <class T>
class Output {
public:
  Output(T* p_data, bool p_pastCaches) {
    if (p_data != nullptr)
      _stream.emplace(p_data, p_pastCaches);
  }
  explicit operator bool() const { return _stream.has_value(); }

  /// Calls p_write(first, n, memory) for pieces of `p_elements` elements of `p_scalars` scalars each.
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

/// Copies the first three floats of records of four. The fourth is copied too where the next record overwrites it.
void Gather(const std::vector<float>& p_records, const unsigned int* p_index, std::size_t p_count, float* p_out) {
  const float* const records = p_records.data();
  for (std::size_t i = 0; i + 1 < p_count; ++i)
    std::memcpy(p_out + 3 * i, records + 4 * std::size_t(p_index[i]), 4 * sizeof(float));
  std::memcpy(p_out + 3 * (p_count - 1), records + 4 * std::size_t(p_index[p_count - 1]), 3 * sizeof(float));
}

/// True if products of three such numbers and a coordinate of a glyph stay finite; false for NaN.
bool IsModerate(double p_number) {
  return std::abs(p_number) < 1e75;
}
bool IsModerate(const Vector3_Base<double>& p_vector) {
  return IsModerate(p_vector.x) && IsModerate(p_vector.y) && IsModerate(p_vector.z);
}
bool IsModerate(const Types::Matrix3& p_matrix) {
  return IsModerate(p_matrix.Row(0)) && IsModerate(p_matrix.Row(1)) && IsModerate(p_matrix.Row(2));
}

/// True if a record of four floats that is used has a NaN among its first three.
bool HasNaN(const std::vector<float>& p_records, const std::vector<unsigned int>& p_indexOf) {
  return std::any_of(p_indexOf.begin(), p_indexOf.end(), [&p_records](unsigned int p_index) {
    const float* const record = p_records.data() + 4 * std::size_t(p_index);
    return std::isnan(record[0]) || std::isnan(record[1]) || std::isnan(record[2]);
  });
}

} // namespace

DistinctVectors DistinctVectors::Of(const std::vector<Vector3_Base<double>>& p_list) {
  std::unordered_map<Bits, unsigned int, BitsHash> known;
  std::vector<Vector3_Base<double>> distinct;
  std::vector<unsigned int> indexOf;
  indexOf.reserve(p_list.size());
  for (const Vector3_Base<double>& vector : p_list) {
    const auto [entry, isNew] = known.try_emplace(BitsOf(vector), static_cast<unsigned int>(distinct.size()));
    if (isNew)
      distinct.push_back(vector);
    indexOf.push_back(entry->second);
  }
  return {VectorColumns(distinct), std::move(indexOf)};
}

GlyphLayer::GlyphLayer(const std::vector<Vector3_Base<double>>& p_vertices,
                       const std::vector<Vector3_Base<double>>& p_normals, const std::vector<unsigned int>& p_indices,
                       const GlyphInstances& p_instances)
    : _points(DistinctVectors::Of(p_vertices))
    , _directions(DistinctVectors::Of(p_normals))
    , _indices(p_indices)
    , _instances(p_instances) {
  const bool isShiftModerate = IsModerate(_instances.shift);
  for (std::size_t k = 0; k < _instances.count; ++k) {
    if (k % BlockSize == 0)
      _writtenBefore.push_back(_count);
    const double factor = _instances.sizes[k] * _instances.scale;
    if (factor <= 0.0)
      continue;
    const bool isHarmless = isShiftModerate && IsModerate(factor) && IsModerate(_instances.positions[k]) &&
                            IsModerate(_instances.rotations[k]);
    if (isHarmless || !GivesNaN(k, factor))
      ++_count;
    else
      _notANumber.push_back(k);
  }
}

bool GlyphLayer::GivesNaN(std::size_t p_instance, double p_factor) const {
  const Types::Matrix3& rotation = _instances.rotations[p_instance];
  std::vector<float> records(4 * std::max(_points.vectors.Count(), _directions.vectors.Count()));
  PlacePoints(_points.vectors, {rotation, _instances.positions[p_instance], _instances.shift, p_factor},
              records.data());
  if (HasNaN(records, _points.indexOf))
    return true;
  RotateDirections(_directions.vectors, rotation, records.data());
  return HasNaN(records, _directions.indexOf);
}

void GlyphLayer::Write(const GlyphTarget& p_target, Utility::Threads p_threads) const {
  const std::size_t floats = (p_target.vertices != nullptr ? 3 : 0) + (p_target.normals != nullptr ? 3 : 0);
  const std::size_t bytes = _count * (floats * VertexCount() + _indices.size()) * sizeof(float);
  if (p_threads.Count() == 1 || _count * VertexCount() < WorthThreads)
    return WriteRange(0, _instances.count, p_target, IsWorthStreaming(bytes, 1));
  const bool pastCaches = IsWorthStreaming(bytes, p_threads.Count());
  Utility::RunBlocks(p_threads, _writtenBefore.size(), [&](std::size_t p_block) {
    const std::size_t first = p_block * BlockSize, vertices = _writtenBefore[p_block] * VertexCount();
    const auto from = [](auto* p_array, std::size_t p_scalars) {
      return p_array == nullptr ? nullptr : p_array + p_scalars;
    };
    WriteRange(first, std::min(first + BlockSize, _instances.count),
               {from(p_target.vertices, 3 * vertices), from(p_target.normals, 3 * vertices),
                from(p_target.texCoords, vertices), from(p_target.indices, _writtenBefore[p_block] * _indices.size()),
                p_target.firstVertex + static_cast<unsigned int>(vertices)},
               pastCaches);
  });
}

void GlyphLayer::WriteRange(std::size_t p_begin, std::size_t p_end, const GlyphTarget& p_target,
                            bool p_pastCaches) const {
  std::vector<float> placed(4 * _points.vectors.Count());
  std::vector<float> rotated(4 * _directions.vectors.Count());
  Output<float> vertices(p_target.vertices, p_pastCaches);
  Output<float> normals(p_target.normals, p_pastCaches);
  Output<float> texCoords(_instances.texCoords == nullptr ? nullptr : p_target.texCoords, p_pastCaches);
  Output<unsigned int> indices(p_target.indices, p_pastCaches);
  unsigned int base = p_target.firstVertex;
  auto skipped = std::lower_bound(_notANumber.begin(), _notANumber.end(), p_begin);

  for (std::size_t k = p_begin; k < p_end; ++k) {
    const double factor = _instances.sizes[k] * _instances.scale;
    if (skipped != _notANumber.end() && *skipped == k) {
      ++skipped;
      continue;
    }
    if (factor <= 0.0)
      continue;
    if (vertices) {
      PlacePoints(_points.vectors, {_instances.rotations[k], _instances.positions[k], _instances.shift, factor},
                  placed.data());
      vertices.ForPieces(VertexCount(), 3, [&](std::size_t p_first, std::size_t p_count, float* p_out) {
        Gather(placed, _points.indexOf.data() + p_first, p_count, p_out);
      });
    }
    if (normals) {
      RotateDirections(_directions.vectors, _instances.rotations[k], rotated.data());
      normals.ForPieces(VertexCount(), 3, [&](std::size_t p_first, std::size_t p_count, float* p_out) {
        Gather(rotated, _directions.indexOf.data() + p_first, p_count, p_out);
      });
    }
    if (texCoords) {
      const float value = static_cast<float>(_instances.texCoords[k]);
      texCoords.ForPieces(VertexCount(), 1, [value](std::size_t, std::size_t p_count, float* p_out) {
        std::fill_n(p_out, p_count, value);
      });
    }
    if (indices)
      indices.ForPieces(_indices.size(), 1, [&](std::size_t p_first, std::size_t p_count, unsigned int* p_out) {
        for (std::size_t i = 0; i < p_count; ++i)
          p_out[i] = _indices[p_first + i] + base;
      });
    base += static_cast<unsigned int>(VertexCount());
  }
}

} // namespace Vek::Chart::Library::Private
