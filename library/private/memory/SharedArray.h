#pragma once

#include "platform/ogl/VertexData.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <utility>

namespace Vek::Chart::Library::Private {

/// Uninitialised memory in one allocation with its reference count. Large blocks use huge pages, since small pages take
/// longer to fault in than to fill. Throws std::bad_alloc.
boost::shared_ptr<void> NewSharedMemory(std::size_t p_bytes);

/// Whether the memory comes from NewSharedMemory and has a single owner, so that it may be overwritten.
bool IsReusable(const boost::shared_ptr<const void>& p_memory);

/// An array that is being written: its memory as vertex data hold it, and its scalars.
template <class T>
struct SharedArray {
  boost::shared_ptr<const void> memory;
  T* data = nullptr;
};

/// `p_count` elements of `p_components` scalars: the memory of `p_old` if it has this layout and is reusable, new
/// memory otherwise. Changes reference counts as rarely as possible: they are a large part of the work for small
/// glyphs.
template <class T>
SharedArray<T> ReuseOrNew(const Ogl::VertexData::Array& p_old, std::size_t p_count, unsigned int p_components,
                          Ogl::VertexData::ComponentType p_type) {
  const bool fits = p_old.count == p_count && p_old.components == p_components && p_old.type == p_type;
  if (fits && IsReusable(p_old.data))
    return {p_old.data, static_cast<T*>(const_cast<void*>(p_old.data.get()))};
  boost::shared_ptr<void> memory = NewSharedMemory(p_count * p_components * sizeof(T));
  T* const data = static_cast<T*>(memory.get());
  return {std::move(memory), data};
}

} // namespace Vek::Chart::Library::Private
