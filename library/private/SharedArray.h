#pragma once

#include "platform/ogl/VertexData.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>

namespace Vek::Chart::Library::Private {

/// `p_bytes` of uninitialised memory in one allocation with its reference count, aligned to 64. Large blocks ask for
/// huge pages, since touching many small new pages costs more than writing them. Throws std::bad_alloc.
boost::shared_ptr<void> NewSharedMemory(std::size_t p_bytes);

/// Whether the memory is from NewSharedMemory and nobody else holds it, so that it may be written again.
bool IsReusable(const boost::shared_ptr<const void>& p_memory);

/// An array of `p_count` elements of `p_components` scalars: the memory of `p_old` if it has this form and is
/// reusable, else new memory.
template <class T>
boost::shared_ptr<T> ReuseOrNew(const Ogl::VertexData::Array& p_old, std::size_t p_count, unsigned int p_components,
                                Ogl::VertexData::ComponentType p_type) {
  const bool fits = p_old.count == p_count && p_old.components == p_components && p_old.type == p_type;
  const boost::shared_ptr<void> memory = fits && IsReusable(p_old.data)
                                             ? boost::const_pointer_cast<void>(p_old.data)
                                             : NewSharedMemory(p_count * p_components * sizeof(T));
  return boost::static_pointer_cast<T>(memory);
}

} // namespace Vek::Chart::Library::Private
