#pragma once

#include "library/private/memory/HugePages.h"
#include "platform/utility/Threads.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
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

  /// Moves the elements of a large array into memory of `p_capacity` of them. MoveOut then returns this memory, unless
  /// more elements are appended than it has room for, or so few that much of it would stay unused. Without effect on an
  /// array of that size and where there is no memory.
  void Gather(std::size_t p_capacity) {
    if (_blocks.empty() || p_capacity < _size)
      return;
    std::vector<T> all;
    std::vector<T*> chunks;
    try {
      ReserveLarge(all, p_capacity);
      for (std::size_t first = 0; first < _size; first += ChunkSize)
        chunks.push_back(all.data() + first);
    } catch (const std::exception&) {
      return;
    }
    CopyTo(all);
    Clear();
    _size = _capacity = all.size();
    _chunks = std::move(chunks);
    _gathered = std::move(all);
  }

  /// Returns all elements, in memory of at least `p_capacity` of them, and empties the array. Each chunk is freed as
  /// soon as it is copied; a single one is kept for the next elements.
  std::vector<T> MoveOut(std::size_t p_capacity = 0) {
    constexpr std::size_t LeastShareUnused = 8;
    std::vector<T> all;
    const std::size_t room = _gathered.capacity();
    if (_blocks.empty() && room != 0 && room >= p_capacity && room - _size <= _size / LeastShareUnused) {
      _gathered.resize(_size);
      all = std::move(_gathered);
    } else {
      ReserveLarge(all, std::max(_size, p_capacity));
      CopyTo(all);
    }
    if (_chunks.size() > 1 || room != 0)
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

  // Gathered memory is made available in such steps, while it is in a cache.
  static constexpr std::size_t Step = (std::size_t{1} << 16) / sizeof(T);

  /// Appends all elements to a vector that has room for them, and frees the chunks if there are several.
  void CopyTo(std::vector<T>& p_all) {
    const std::size_t others = _chunks.size() - _blocks.size(); // chunks that are in no block
    for (std::size_t chunk = 0; chunk < _chunks.size(); ++chunk) {
      const T* const first = _chunks[chunk];
      p_all.insert(p_all.end(), first, first + std::min(ChunkSize, _size - chunk * ChunkSize));
      if (chunk + 1 == others)
        std::vector<T>().swap(_gathered);
      if (chunk >= others && _chunks.size() > 1)
        _blocks[chunk - others].reset();
    }
  }

  /// The number of elements that fit behind the last one, at least 1 and at most p_wanted.
  std::size_t Room(std::size_t p_wanted) {
    if (_size == _capacity)
      AddRoom(p_wanted);
    return std::min(p_wanted, _capacity - _size);
  }

  void AddRoom(std::size_t p_wanted) {
    if (_blocks.empty() && _size < _gathered.capacity()) {
      const std::size_t chunkEnd = (_size / ChunkSize + 1) * ChunkSize;
      _gathered.resize(std::min({_gathered.capacity(), _size + Step, chunkEnd}));
      if (_size % ChunkSize == 0)
        _chunks.push_back(_gathered.data() + _size);
      _capacity = _gathered.size();
      return;
    }
    if (_blocks.empty() && _gathered.empty() && _size + p_wanted <= MostSmall) {
      const std::size_t capacity = std::min(std::max({_size + p_wanted, 2 * _size, std::size_t{64}}), MostSmall);
      std::unique_ptr<unsigned char[]> larger(new unsigned char[capacity * sizeof(T)]);
      MoveTo(larger.get());
      _small = std::move(larger);
      _capacity = capacity;
      return;
    }
    _blocks.reserve(_blocks.size() + 1);
    PageBlock block = NewPageBlock();
    if (!_gathered.empty() && _size % ChunkSize != 0 && _blocks.empty()) // the last chunk goes on in the block
      MoveLast(block.get());
    else if (_blocks.empty() && _gathered.empty())
      MoveTo(block.get());
    else
      _chunks.push_back(static_cast<T*>(block.get()));
    _blocks.push_back(std::move(block));
    _small.reset();
    _capacity = _chunks.size() * ChunkSize;
  }

  void MoveLast(void* p_memory) {
    std::memcpy(p_memory, static_cast<const void*>(_chunks.back()), _size % ChunkSize * sizeof(T));
    _chunks.back() = static_cast<T*>(p_memory);
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
  std::vector<T> _gathered;                // the first chunks of a gathered array, with room for more
  std::vector<PageBlock> _blocks;          // the other chunks
  std::size_t _size = 0;
  std::size_t _capacity = 0; // of all chunks
};

} // namespace Vek::Chart::Library::Private
