#pragma once

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace Vek::Test {

/// While it lives, allocations of `p_bytes` and more throw std::bad_alloc. Replaces operator new, which also counts:
/// one source of a program may include it.
class RefuseMemory {
public:
  explicit RefuseMemory(std::size_t p_bytes) { limit = p_bytes; }
  ~RefuseMemory() { limit = std::numeric_limits<std::size_t>::max(); }
  RefuseMemory(const RefuseMemory&) = delete;
  RefuseMemory& operator=(const RefuseMemory&) = delete;

  static constexpr std::size_t Large = 10000; ///< smaller allocations are those of objects, not of data
  inline static std::size_t limit = std::numeric_limits<std::size_t>::max();
  inline static std::size_t all = 0;   ///< the allocations so far
  inline static std::size_t large = 0; ///< those of Large bytes and more
  inline static std::size_t bytes = 0; ///< of all, released or not
};

} // namespace Vek::Test

void* operator new(std::size_t p_size) {
  using Vek::Test::RefuseMemory;
  ++RefuseMemory::all;
  RefuseMemory::large += p_size >= RefuseMemory::Large ? 1 : 0;
  RefuseMemory::bytes += p_size;
  if (void* const memory = p_size < RefuseMemory::limit ? std::malloc(p_size != 0 ? p_size : 1) : nullptr)
    return memory;
  throw std::bad_alloc();
}
void operator delete(void* p_memory) noexcept {
  std::free(p_memory);
}
void operator delete(void* p_memory, std::size_t) noexcept {
  std::free(p_memory);
}
