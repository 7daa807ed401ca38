#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Vek::Chart::Library::Private {

/// A vector of value-initialised elements in one allocation. Large ones ask for huge pages, since touching many small
/// new pages costs more than what is then done with them.
template <class T>
std::vector<T> LargeVector(std::size_t p_count) {
  std::vector<T> elements;
  elements.reserve(p_count);
#ifdef __linux__
  constexpr std::uintptr_t Worthwhile = std::uintptr_t{8} << 20;
  const std::uintptr_t page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  const std::uintptr_t start = (reinterpret_cast<std::uintptr_t>(elements.data()) + page - 1) / page * page;
  const std::uintptr_t end = reinterpret_cast<std::uintptr_t>(elements.data() + p_count);
  if (end > start + Worthwhile)
    ::madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE); // only a hint: failure changes nothing
#endif
  elements.resize(p_count);
  return elements;
}

} // namespace Vek::Chart::Library::Private
