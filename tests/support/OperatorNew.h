#pragma once

// Replaces operator new: one source of a program may include it.

#include "tests/support/FaultyGl.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace Vek::Test {

/// While it lives, allocations of `p_bytes` and more throw std::bad_alloc. Also counts all allocations.
class RefuseMemory {
public:
  explicit RefuseMemory(std::size_t p_bytes) { limit = p_bytes; }
  ~RefuseMemory() { limit = std::numeric_limits<std::size_t>::max(); }
  RefuseMemory(const RefuseMemory&) = delete;
  RefuseMemory& operator=(const RefuseMemory&) = delete;

  static constexpr std::size_t Large = 10000; ///< smaller allocations are those of objects, not of data
  inline static std::atomic<std::size_t> limit = std::numeric_limits<std::size_t>::max();
  inline static std::atomic<std::size_t> all = 0;   ///< the allocations so far
  inline static std::atomic<std::size_t> large = 0; ///< those of Large bytes and more
  inline static std::atomic<std::size_t> bytes = 0; ///< of all, released or not

  /// Null where the allocation is to fail. `p_caller`: an address in the code that asks for memory.
  static void* Allocate(std::size_t p_bytes, const void* p_caller) {
    ++all;
    large += p_bytes >= Large ? 1 : 0;
    bytes += p_bytes;
    return p_bytes < limit ? FailingAllocations::Allocate(p_bytes, p_caller) : nullptr;
  }
};

} // namespace Vek::Test

void* operator new(std::size_t p_bytes) {
  if (void* const memory = Vek::Test::RefuseMemory::Allocate(p_bytes, __builtin_return_address(0)))
    return memory;
  throw std::bad_alloc();
}
// These two would otherwise call the first one from the standard library's code.
void* operator new[](std::size_t p_bytes) {
  if (void* const memory = Vek::Test::RefuseMemory::Allocate(p_bytes, __builtin_return_address(0)))
    return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t p_bytes, const std::nothrow_t&) noexcept {
  return Vek::Test::RefuseMemory::Allocate(p_bytes, __builtin_return_address(0));
}
void operator delete(void* p_memory) noexcept {
  std::free(p_memory);
}
void operator delete(void* p_memory, std::size_t) noexcept {
  std::free(p_memory);
}
void operator delete[](void* p_memory) noexcept {
  std::free(p_memory);
}
void operator delete[](void* p_memory, std::size_t) noexcept {
  std::free(p_memory);
}
