#pragma once

// Replaces operator new and delete: one source of a program may include it.

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace Vek::Bench {

/// Bytes that operator new has given out, those of GL left out: present and largest.
struct LiveMemory {
  inline static std::atomic<std::size_t> present{0};
  inline static std::atomic<std::size_t> largest{0};

  /// What `p_call` had at its peak beyond what was there before.
  template <class Call>
  static double PeakOf(const Call& p_call) {
    const std::size_t before = present;
    largest = before;
    p_call();
    return static_cast<double>(largest - before);
  }
  static void* Allocate(std::size_t p_bytes) {
    void* const memory = std::malloc(p_bytes != 0 ? p_bytes : 1);
    if (memory == nullptr)
      throw std::bad_alloc();
    const std::size_t now = present += malloc_usable_size(memory);
    for (std::size_t peak = largest; peak < now && !largest.compare_exchange_weak(peak, now);) {
    }
    return memory;
  }
  static void Free(void* p_memory) {
    present -= malloc_usable_size(p_memory);
    std::free(p_memory);
  }
};

} // namespace Vek::Bench

void* operator new(std::size_t p_bytes) {
  return Vek::Bench::LiveMemory::Allocate(p_bytes);
}
void operator delete(void* p_memory) noexcept {
  Vek::Bench::LiveMemory::Free(p_memory);
}
void operator delete(void* p_memory, std::size_t) noexcept {
  Vek::Bench::LiveMemory::Free(p_memory);
}
