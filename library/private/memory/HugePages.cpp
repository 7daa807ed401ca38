#include "library/private/memory/HugePages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace Vek::Chart::Library::Private {

void AdviseHugePages([[maybe_unused]] void* p_memory, [[maybe_unused]] std::size_t p_bytes) {
#if defined(__linux__)
  constexpr std::uintptr_t PageSize = std::uintptr_t(1) << 21;
  // Only pages entirely inside, so that no additional memory is taken.
  const auto address = reinterpret_cast<std::uintptr_t>(p_memory);
  const std::uintptr_t first = (address + PageSize - 1) / PageSize * PageSize;
  const std::uintptr_t last = (address + p_bytes) / PageSize * PageSize;
  if (first < last)
    madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}

void ClearMemory(void* p_memory, std::size_t p_bytes) {
  static constexpr std::array<unsigned char, 4096> Zeros{};
  unsigned char* at = static_cast<unsigned char*>(p_memory);
  for (std::size_t left = p_bytes; left != 0;) {
    const std::size_t part = std::min(left, Zeros.size());
    if (std::memcmp(at, Zeros.data(), part) != 0)
      std::memset(at, 0, part);
    at += part;
    left -= part;
  }
}

} // namespace Vek::Chart::Library::Private
