#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Asks the system for huge pages behind untouched memory, since small pages take longer to fault in than to fill. A
/// hint: it has no effect below a few megabytes and on systems without huge pages.
void AdviseHugePages(void* p_memory, std::size_t p_bytes);

/// The size and alignment of a huge page.
constexpr std::size_t PageBlockBytes = std::size_t{1} << 21;

struct FreePageBlock {
  void operator()(void* p_memory) const noexcept;
};
/// Owns PageBlockBytes of memory that goes back to the system as soon as it is freed: an allocator may keep it.
using PageBlock = std::unique_ptr<void, FreePageBlock>;
/// Uninitialised memory, in a huge page where there are any. Throws std::bad_alloc.
PageBlock NewPageBlock();

/// Takes the whole pages of memory now, as they are, so that several threads that write next do not all prepare the
/// same page. A hint; it has no effect on systems without such a call.
void PopulatePages(void* p_memory, std::size_t p_bytes);

/// Gives the whole pages of memory back that is not read again, before it is freed.
void ReleasePages(void* p_memory, std::size_t p_bytes);

/// Gives the whole pages behind the elements of a vector back, which a huge page may have taken with them. The memory
/// stays reserved.
template <class T>
void ReleaseRest(std::vector<T>& p_vector) {
  ReleasePages(p_vector.data() + p_vector.size(), (p_vector.capacity() - p_vector.size()) * sizeof(T));
}

/// Sets memory to 0 without writing to what is 0 already: fresh memory is 0 and takes no pages until it is written.
void ClearMemory(void* p_memory, std::size_t p_bytes);

/// Reserves memory for p_count elements, with huge pages where that helps. The first `p_small` elements keep small
/// ones, which take memory only as they are written.
template <class T>
void ReserveLarge(std::vector<T>& p_vector, std::size_t p_count, std::size_t p_small = 0) {
  if (p_count <= p_vector.capacity())
    return;
  p_vector.reserve(p_count);
  if (p_small < p_count)
    AdviseHugePages(p_vector.data() + p_small, (p_count - p_small) * sizeof(T));
}

} // namespace Vek::Chart::Library::Private
