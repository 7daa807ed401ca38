#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// Replaces operator new and delete of a program by those that count the bytes that they take. To be included once.

namespace Vek::Bench {

/// Of all that is allocated by new now, and the most since the last `Reset`.
struct CountedBytes {
  std::atomic<std::size_t> now = 0;
  std::atomic<std::size_t> peak = 0;
  void Reset() { peak = now.load(); }

  /// What `p_call` had at its peak beyond what was there before.
  template <class Call>
  double PeakOf(const Call& p_call) {
    const std::size_t before = now;
    Reset();
    p_call();
    return static_cast<double>(peak - before);
  }
};
inline CountedBytes countedBytes;

/// What malloc of glibc takes for a block: a size before it, and whole units of 16 bytes, two at least.
constexpr std::size_t BytesOfBlock(std::size_t p_size) {
  return p_size <= 24 ? 32 : (p_size + 8 + 15) / 16 * 16;
}

} // namespace Vek::Bench

void* operator new(std::size_t p_size) {
  auto* const block = static_cast<std::max_align_t*>(std::malloc(p_size + sizeof(std::max_align_t)));
  if (block == nullptr)
    throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(block) = p_size;
  Vek::Bench::CountedBytes& counted = Vek::Bench::countedBytes;
  const std::size_t now = counted.now += Vek::Bench::BytesOfBlock(p_size);
  for (std::size_t peak = counted.peak; now > peak && !counted.peak.compare_exchange_weak(peak, now);) {
  }
  return block + 1;
}
void operator delete(void* p_memory) noexcept {
  if (p_memory == nullptr)
    return;
  auto* const block = static_cast<std::max_align_t*>(p_memory) - 1;
  Vek::Bench::countedBytes.now -= Vek::Bench::BytesOfBlock(*reinterpret_cast<std::size_t*>(block));
  std::free(block);
}
void* operator new[](std::size_t p_size) {
  return operator new(p_size);
}
void operator delete[](void* p_memory) noexcept {
  operator delete(p_memory);
}
void operator delete(void* p_memory, std::size_t) noexcept {
  operator delete(p_memory);
}
void operator delete[](void* p_memory, std::size_t) noexcept {
  operator delete(p_memory);
}
