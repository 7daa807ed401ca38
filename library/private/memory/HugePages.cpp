#include "library/private/memory/HugePages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Vek::Chart::Library::Private {

namespace {

#if defined(__linux__)
/// Only pages entirely inside.
void AdvisePages(void* p_memory, std::size_t p_bytes, std::uintptr_t p_pageSize, int p_advice) {
  const auto address = reinterpret_cast<std::uintptr_t>(p_memory);
  const std::uintptr_t first = (address + p_pageSize - 1) / p_pageSize * p_pageSize;
  const std::uintptr_t last = (address + p_bytes) / p_pageSize * p_pageSize;
  if (first < last)
    madvise(reinterpret_cast<void*>(first), last - first, p_advice);
}
#endif

} // namespace

void AdviseHugePages([[maybe_unused]] void* p_memory, [[maybe_unused]] std::size_t p_bytes) {
#if defined(__linux__)
  AdvisePages(p_memory, p_bytes, std::uintptr_t(1) << 21, MADV_HUGEPAGE);
#endif
}

void ReleasePages([[maybe_unused]] void* p_memory, [[maybe_unused]] std::size_t p_bytes) {
#if defined(__linux__)
  AdvisePages(p_memory, p_bytes, static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE)), MADV_DONTNEED);
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
