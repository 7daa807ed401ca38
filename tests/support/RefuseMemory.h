#pragma once

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace Vek::Test {

/// While it lives, allocations of `p_bytes` and more throw std::bad_alloc. Replaces operator new: one source of a
/// program may include it.
class RefuseMemory {
public:
  explicit RefuseMemory(std::size_t p_bytes) { Limit() = p_bytes; }
  ~RefuseMemory() { Limit() = std::numeric_limits<std::size_t>::max(); }
  RefuseMemory(const RefuseMemory&) = delete;
  RefuseMemory& operator=(const RefuseMemory&) = delete;

  static std::size_t& Limit() {
    static std::size_t limit = std::numeric_limits<std::size_t>::max();
    return limit;
  }
};

} // namespace Vek::Test

void* operator new(std::size_t p_size) {
  if (void* const memory = p_size < Vek::Test::RefuseMemory::Limit() ? std::malloc(p_size != 0 ? p_size : 1) : nullptr)
    return memory;
  throw std::bad_alloc();
}
void operator delete(void* p_memory) noexcept {
  std::free(p_memory);
}
void operator delete(void* p_memory, std::size_t) noexcept {
  std::free(p_memory);
}
