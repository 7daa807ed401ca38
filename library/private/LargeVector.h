#pragma once

#include "library/private/HugePages.h"

#include <boost/iterator/iterator_facade.hpp>

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

/// As LargeVector, but without touching the memory: its pages are taken from the system when they are written. `Unset`
/// is a type of T's that it can be made from, and whose constructor leaves the members alone.
template <class T, class Unset>
std::vector<T> UnsetVector(std::size_t p_count) {
  struct Counter : boost::iterator_facade<Counter, const Unset, boost::random_access_traversal_tag> {
    explicit Counter(std::size_t p_at)
        : at(p_at) {}
    const Unset& dereference() const { return unset; }
    bool equal(const Counter& p_other) const { return at == p_other.at; }
    void increment() { ++at; }
    void decrement() { --at; }
    void advance(std::ptrdiff_t p_by) { at += static_cast<std::size_t>(p_by); }
    std::ptrdiff_t distance_to(const Counter& p_other) const { return static_cast<std::ptrdiff_t>(p_other.at - at); }
    std::size_t at;
    Unset unset;
  };
  std::vector<T> elements(Counter(0), Counter(p_count));
  AdviseHugePages(elements.data(), p_count * sizeof(T));
  return elements;
}

} // namespace Vek::Chart::Library::Private
