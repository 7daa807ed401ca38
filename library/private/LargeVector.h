#pragma once

#include "library/private/HugePages.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// A vector of value-initialised elements in one allocation, in huge pages where it is large and the system has them.
template <class T>
std::vector<T> LargeVector(std::size_t p_count) {
  std::vector<T> elements;
  ReserveLarge(elements, p_count);
  elements.resize(p_count);
  return elements;
}

} // namespace Vek::Chart::Library::Private
