#pragma once

#include "library/private/memory/HugePages.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// A growing array that never moves its elements, so that its memory stays close to its size, and that is converted to
/// a vector of exactly that size at the end.
template <class T>
class ChunkedArray {
public:
  std::size_t Size() const { return _size; }
  const T& operator[](std::size_t p_index) const { return _chunks[p_index / ChunkSize][p_index % ChunkSize]; }
  T& operator[](std::size_t p_index) { return _chunks[p_index / ChunkSize][p_index % ChunkSize]; }

  void Append(const T& p_element) {
    if (_size == _capacity)
      AddChunk();
    _chunks.back().push_back(p_element);
    ++_size;
  }

  void Append(const T* p_first, std::size_t p_count) {
    for (std::size_t done = 0; done < p_count;) {
      if (_size == _capacity)
        AddChunk();
      const std::size_t part = std::min(ChunkSize - _size % ChunkSize, p_count - done);
      _chunks.back().insert(_chunks.back().end(), p_first + done, p_first + done + part);
      _size += part;
      done += part;
    }
  }

  /// Appends elements of the value T() up to that size.
  void Grow(std::size_t p_size) {
    while (_size < p_size) {
      if (_size == _capacity)
        AddChunk();
      const std::size_t part = std::min(ChunkSize - _size % ChunkSize, p_size - _size);
      _chunks.back().resize(_chunks.back().size() + part);
      _size += part;
    }
  }

  /// Returns all elements, in memory of at least `p_capacity` of them, and empties the array. Each chunk is freed as
  /// soon as it is copied; a single one is kept for the next elements.
  std::vector<T> MoveOut(std::size_t p_capacity = 0) {
    std::vector<T> all;
    ReserveLarge(all, std::max(_size, p_capacity));
    for (std::vector<T>& chunk : _chunks) {
      all.insert(all.end(), chunk.begin(), chunk.end());
      if (_chunks.size() > 1)
        Free(chunk);
      else
        chunk.clear();
    }
    if (_chunks.size() > 1)
      Clear();
    _size = 0;
    return all;
  }

  /// Empties the array.
  void Clear() {
    for (std::vector<T>& chunk : _chunks)
      Free(chunk);
    _chunks.clear();
    _size = _capacity = 0;
  }

private:
  static constexpr std::size_t ChunkSize = std::size_t(1) << 16;

  // The allocator may keep the memory: the peak counts what it keeps.
  static void Free(std::vector<T>& p_chunk) {
    ReleasePages(p_chunk.data(), p_chunk.capacity() * sizeof(T));
    std::vector<T>().swap(p_chunk);
  }

  // The first chunk grows like any vector, since many arrays stay small.
  void AddChunk() {
    _chunks.emplace_back();
    _capacity += ChunkSize;
    if (_chunks.size() > 1)
      _chunks.back().reserve(ChunkSize);
  }

  std::vector<std::vector<T>> _chunks;
  std::size_t _size = 0;
  std::size_t _capacity = 0; // of all chunks, once they are full
};

} // namespace Vek::Chart::Library::Private
