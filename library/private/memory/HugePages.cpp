#include "library/private/memory/HugePages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <new>

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
  AdvisePages(p_memory, p_bytes, PageBlockBytes, MADV_HUGEPAGE);
#endif
}

void PopulatePages([[maybe_unused]] void* p_memory, [[maybe_unused]] std::size_t p_bytes) {
#if defined(__linux__) && defined(MADV_POPULATE_WRITE)
  AdvisePages(p_memory, p_bytes, static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE)), MADV_POPULATE_WRITE);
#endif
}

void ReleasePages([[maybe_unused]] void* p_memory, [[maybe_unused]] std::size_t p_bytes) {
#if defined(__linux__)
  AdvisePages(p_memory, p_bytes, static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE)), MADV_DONTNEED);
#endif
}

#if defined(__linux__)
PageBlock NewPageBlock() {
  const auto map = [](std::size_t p_bytes) {
    void* const memory = mmap(nullptr, p_bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
      throw std::bad_alloc();
    return static_cast<unsigned char*>(memory);
  };
  const auto rest = [](const unsigned char* p_memory) {
    return reinterpret_cast<std::uintptr_t>(p_memory) % PageBlockBytes;
  };
  unsigned char* memory = map(PageBlockBytes);
  if (rest(memory) != 0) { // not by chance, nor by a recent system: the aligned part of a larger one
    munmap(memory, PageBlockBytes);
    unsigned char* const larger = map(2 * PageBlockBytes);
    const std::size_t head = (PageBlockBytes - rest(larger)) % PageBlockBytes;
    memory = larger + head;
    if (head != 0)
      munmap(larger, head);
    munmap(memory + PageBlockBytes, PageBlockBytes - head);
  }
  PageBlock block(memory);
  AdviseHugePages(memory, PageBlockBytes);
  return block;
}

void FreePageBlock::operator()(void* p_memory) const noexcept {
  munmap(p_memory, PageBlockBytes);
}
#else
PageBlock NewPageBlock() {
  return PageBlock(::operator new(PageBlockBytes));
}

void FreePageBlock::operator()(void* p_memory) const noexcept {
  ::operator delete(p_memory);
}
#endif

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
