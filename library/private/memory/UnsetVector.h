#pragma once

#include "library/private/memory/HugePages.h"

#include <boost/iterator/iterator_facade.hpp>

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// A vector of uninitialised elements in untouched memory, whose pages (huge ones where it is large) are taken when
/// they are written. T needs a constructor from Unset that leaves its members uninitialised.
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
