#pragma once

#include "library/private/memory/HugePages.h"
#include "platform/utility/Threads.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Of the threads that may move arrays of together so many bytes out, as many as keep the peak of memory low: each
/// needs up to two blocks of pages beside the elements.
inline Utility::Threads ThreadsToMoveOut(Utility::Threads p_threads, std::size_t p_bytes) {
  constexpr std::size_t MostShare = 8;
  const std::size_t most = p_bytes / (2 * PageBlockBytes * MostShare);
  return Utility::Threads(static_cast<int>(std::min(most, static_cast<std::size_t>(p_threads.Count()))));
}

/// A growing array that, once it is large, never moves its elements, so that its memory stays close to its size, and
/// that is converted to a vector of exactly that size at the end.
template <class T>
class ChunkedArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
  std::size_t Size() const { return _size; }
  const T& operator[](std::size_t p_index) const { return _chunks[p_index / ChunkSize][p_index % ChunkSize]; }
  T& operator[](std::size_t p_index) { return _chunks[p_index / ChunkSize][p_index % ChunkSize]; }

  void Append(const T& p_element) {
    if (_size == _capacity)
      AddRoom(1);
    new (_chunks.back() + _size % ChunkSize) T(p_element);
    ++_size;
  }

  void Append(const T* p_first, std::size_t p_count) { AppendBytes(p_first, p_count); }

  /// Elements that lie behind each other in memory of another type.
  void AppendBytes(const void* p_memory, std::size_t p_count) {
    const auto* from = static_cast<const unsigned char*>(p_memory);
    for (std::size_t left = p_count; left != 0;) {
      const std::size_t part = Room(left);
      std::memcpy(static_cast<void*>(_chunks.back() + _size % ChunkSize), from, part * sizeof(T));
      _size += part;
      from += part * sizeof(T);
      left -= part;
    }
  }

  /// Appends elements of a value up to that size.
  void Grow(std::size_t p_size, const T& p_value = T()) {
    while (_size < p_size) {
      const std::size_t part = Room(p_size - _size);
      T* const first = _chunks.back() + _size % ChunkSize;
      std::uninitialized_fill(first, first + part, p_value);
      _size += part;
    }
  }

  /// Gives the pages behind the last element back, until elements are appended.
  void ReleaseRest() {
    if (!_blocks.empty())
      ReleasePages(_chunks.back() + ChunkSize - (_capacity - _size), (_capacity - _size) * sizeof(T));
  }

  /// Returns all elements, in memory of at least `p_capacity` of them, and empties the array. Each chunk is freed as
  /// soon as it is copied; a single one is kept for the next elements.
  std::vector<T> MoveOut(std::size_t p_capacity = 0) {
    std::vector<T> all;
    ReserveLarge(all, std::max(_size, p_capacity));
    for (std::size_t chunk = 0; chunk < _chunks.size(); ++chunk) {
      const T* const first = _chunks[chunk];
      all.insert(all.end(), first, first + std::min(ChunkSize, _size - chunk * ChunkSize));
      if (_chunks.size() > 1)
        _blocks[chunk].reset();
    }
    if (_chunks.size() > 1)
      Clear();
    _size = 0;
    return all;
  }

  /// Empties the array.
  void Clear() { *this = ChunkedArray(); }

private:
  static constexpr std::size_t ChunkSize = PageBlockBytes / sizeof(T);
  // Many arrays stay small: up to this size, they grow like a vector.
  static constexpr std::size_t MostSmall = (std::size_t{1} << 18) / sizeof(T);

  /// The number of elements that fit behind the last one, at least 1 and at most p_wanted.
  std::size_t Room(std::size_t p_wanted) {
    if (_size == _capacity)
      AddRoom(p_wanted);
    return std::min(p_wanted, _capacity - _size);
  }

  void AddRoom(std::size_t p_wanted) {
    if (_blocks.empty() && _size + p_wanted <= MostSmall) {
      const std::size_t capacity = std::min(std::max({_size + p_wanted, 2 * _size, std::size_t{64}}), MostSmall);
      std::unique_ptr<unsigned char[]> larger(new unsigned char[capacity * sizeof(T)]);
      MoveTo(larger.get());
      _small = std::move(larger);
      _capacity = capacity;
      return;
    }
    _blocks.reserve(_blocks.size() + 1);
    PageBlock block = NewPageBlock();
    if (_blocks.empty())
      MoveTo(block.get());
    else
      _chunks.push_back(static_cast<T*>(block.get()));
    _blocks.push_back(std::move(block));
    _small.reset();
    _capacity = _blocks.size() * ChunkSize;
  }

  /// Moves all elements, which are in one chunk.
  void MoveTo(void* p_memory) {
    T* const chunk = static_cast<T*>(p_memory);
    if (_chunks.empty())
      _chunks.push_back(chunk);
    if (_size != 0)
      std::memcpy(p_memory, static_cast<const void*>(_chunks[0]), _size * sizeof(T));
    _chunks[0] = chunk;
  }

  std::vector<T*> _chunks;
  std::unique_ptr<unsigned char[]> _small; // the only chunk of a small array
  std::vector<PageBlock> _blocks;          // the chunks of others
  std::size_t _size = 0;
  std::size_t _capacity = 0; // of all chunks
};

} // namespace Vek::Chart::Library::Private
