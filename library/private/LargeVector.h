#pragma once

#include "library/private/HugePages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Library::Private {

/// A vector of value-initialised elements in one allocation, in huge pages where it is large and the system has them.
///
/// They are copied block by block, which is as fast as memory; a vector makes small elements one by one, arrays of one
/// byte ten times as slowly.
template <class T>
std::vector<T> LargeVector(std::size_t p_count) {
  static_assert(std::is_trivially_copyable_v<T>);
  static const std::array<T, 1 + 16384 / sizeof(T)> block{};
  std::vector<T> elements;
  ReserveLarge(elements, p_count);
  while (elements.size() < p_count) {
    const std::size_t count = std::min(block.size(), p_count - elements.size());
    elements.insert(elements.end(), block.data(), block.data() + count);
  }
  return elements;
}

} // namespace Vek::Chart::Library::Private
