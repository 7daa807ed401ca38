#include "library/private/memory/SharedArray.h"

#include "library/private/memory/HugePages.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace Vek::Chart::Library::Private {

namespace {

// A block begins with the control block of the shared pointer; the data follow.
constexpr std::size_t HeaderBytes = 64;
constexpr std::size_t HugePageBytes = std::size_t(2) << 20;
constexpr std::size_t SmallestHugeBlock = 2 * HugePageBytes;

void* NewBlock(std::size_t p_bytes) {
  const bool huge = p_bytes >= SmallestHugeBlock;
  const std::size_t wholePages = (p_bytes + HugePageBytes - 1) / HugePageBytes * HugePageBytes;
  void* const block = huge ? std::aligned_alloc(HugePageBytes, wholePages) : std::malloc(p_bytes);
  if (block == nullptr)
    throw std::bad_alloc();
  if (huge)
    AdviseHugePages(block, wholePages);
  return block;
}

/// Places the control block into the header, and frees the whole block with it.
template <class T>
struct HeaderAllocator {
  using value_type = T;
  void* block;

  explicit HeaderAllocator(void* p_block)
      : block(p_block) {}
  template <class Other>
  HeaderAllocator(const HeaderAllocator<Other>& p_other) // NOLINT: allocators convert into each other
      : block(p_other.block) {}

  T* allocate(std::size_t) {
    static_assert(sizeof(T) <= HeaderBytes);
    return static_cast<T*>(block);
  }
  void deallocate(T*, std::size_t) { std::free(block); }

  template <class Other>
  bool operator==(const HeaderAllocator<Other>& p_other) const {
    return block == p_other.block;
  }
  template <class Other>
  bool operator!=(const HeaderAllocator<Other>& p_other) const {
    return block != p_other.block;
  }
};

/// The type by which IsReusable recognises the memory; the allocator frees it.
struct SharedMemoryMark {
  void operator()(void*) const {}
};

} // namespace

boost::shared_ptr<void> NewSharedMemory(std::size_t p_bytes) {
  if (p_bytes > std::numeric_limits<std::size_t>::max() - HeaderBytes - HugePageBytes)
    throw std::bad_alloc();
  void* const block = NewBlock(HeaderBytes + p_bytes);
  return boost::shared_ptr<void>(static_cast<char*>(block) + HeaderBytes, SharedMemoryMark(),
                                 HeaderAllocator<char>(block));
}

bool IsReusable(const boost::shared_ptr<const void>& p_memory) {
  return p_memory.use_count() == 1 && boost::get_deleter<SharedMemoryMark>(p_memory) != nullptr;
}

} // namespace Vek::Chart::Library::Private
