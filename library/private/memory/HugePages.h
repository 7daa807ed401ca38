#pragma once

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Asks the system to back memory that nobody has touched yet with huge pages: new small pages cost more time than
/// filling them. A hint; it does nothing for less than some megabytes and where the system has no such pages.
void AdviseHugePages(void* p_memory, std::size_t p_bytes);

/// Sets memory to 0, but leaves alone what is 0 already: new memory of the system is, and takes no pages until it is
/// written.
void ClearMemory(void* p_memory, std::size_t p_bytes);

/// Reserves memory for a vector that will be filled with that many elements.
template <class T>
void ReserveLarge(std::vector<T>& p_vector, std::size_t p_count) {
  if (p_count <= p_vector.capacity())
    return;
  p_vector.reserve(p_count);
  AdviseHugePages(p_vector.data(), p_count * sizeof(T));
}

} // namespace Vek::Chart::Library::Private
