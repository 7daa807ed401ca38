#pragma once

#include "platform/Export.h"
#include "platform/debug/Check.h"
#include "platform/debug/TypeName.h"
#include "platform/ogl/GlFunctions.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Vek::Chart::Ogl {

/// How a buffer's contents will be used.
struct BufferUsage {
  /// How often the contents change.
  enum Kind : unsigned int {
    Default = 0, ///< written once, drawn often
    Dynamic = 1, ///< written again and again
    Stream = 2,  ///< written once, drawn a few times
  };
};

/// The untyped part of a buffer: a GL name and its size in bytes. Deletes the name with its last holder, which must
/// happen while the context that made it, or one that shares with it, is current.
class VEK_PLATFORM_API BufferStorage {
public:
  /// A new buffer of `p_bytes` uninitialised bytes in the context that is current; the array-buffer binding stays.
  BufferStorage(boost::shared_ptr<const GlFunctions> p_gl, std::size_t p_bytes, BufferUsage::Kind p_usage);
  ~BufferStorage();
  BufferStorage(const BufferStorage&) = delete;
  BufferStorage& operator=(const BufferStorage&) = delete;

  /// The name of the buffer in GL; 0 when GL made none.
  unsigned int Name() const { return _name; }
  /// Its size.
  std::size_t Bytes() const { return _bytes; }
  /// The functions of the context that made it.
  const GlFunctions& Gl() const { return *_gl; }

private:
  boost::shared_ptr<const GlFunctions> _gl;
  unsigned int _name = 0;
  std::size_t _bytes = 0;
};

/// A handle to a GPU buffer of `Count()` records of type T. Copies share the buffer. A default-constructed handle, and
/// one that the pool refused to make, is empty: count 0, name 0.
template <class T>
class Buffer {
public:
  Buffer() = default; ///< empty
  /// `p_count` records in a storage that has room for them, which is not checked.
  Buffer(boost::shared_ptr<BufferStorage> p_storage, std::size_t p_count)
      : _storage(std::move(p_storage))
      , _count(p_count) {}

  /// Records.
  std::size_t Count() const { return _count; }
  /// The name of the buffer in GL; 0 for an empty handle.
  unsigned int Name() const { return _storage ? _storage->Name() : 0; }
  /// The memory; empty for an empty handle.
  const boost::shared_ptr<BufferStorage>& Storage() const { return _storage; }

private:
  boost::shared_ptr<BufferStorage> _storage;
  std::size_t _count = 0;
};

/// Memory of a buffer mapped for writing; untyped half of `BufferPool::WriteArray`.
class VEK_PLATFORM_API MappedRange {
public:
  /// Binds the buffer to `p_target` and maps the byte range; a range that does not lie within the buffer maps nothing.
  MappedRange(boost::shared_ptr<BufferStorage> p_storage, std::size_t p_offset, std::size_t p_bytes, GlEnum p_target);
  /// Unmaps, and leaves no buffer bound to the target.
  ~MappedRange();
  MappedRange(const MappedRange&) = delete;
  MappedRange& operator=(const MappedRange&) = delete;
  /// Null when nothing is mapped.
  void* Data() const { return _data; }

private:
  boost::shared_ptr<BufferStorage> _storage;
  GlEnum _target;
  void* _data = nullptr;
};

/// Makes GPU buffers in one context.
class VEK_PLATFORM_API BufferPool {
public:
  /// A pool that calls these functions. Applications take the one of Rgl::GetBufferPool.
  explicit BufferPool(boost::shared_ptr<const GlFunctions> p_gl)
      : _gl(std::move(p_gl)) {}

  /// A new buffer of `p_count` uninitialised records; the array-buffer binding stays. A count of 0 reports
  /// "p_count != 0 && "Trying to allocate a buffer of 0 bytes!"" and yields an empty handle; so does, with the report
  /// "p_count <= …", a count whose bytes cannot be counted.
  template <class T>
  Buffer<T> CreateBuffer(std::size_t p_count, BufferUsage::Kind p_usage) {
    static_assert(std::is_trivially_copyable_v<T>);
    const auto signature = [] {
      const std::string element = vekdebug::TypeName<T>::Text();
      return "class Vek::Chart::Ogl::Buffer<" + element + (element.back() == '>' ? " " : "") +
             "> __cdecl Vek::Chart::Ogl::BufferPool::CreateBuffer(unsigned __int64,enum "
             "Vek::Chart::Ogl::BufferUsage::Kind)";
    };
    if (!VEK_ENSURE_TEXT(p_count != 0, "p_count != 0 && \"Trying to allocate a buffer of 0 bytes!\"", signature()))
      return {};
    if (!VEK_ENSURE_TEXT(p_count <= static_cast<std::size_t>(std::numeric_limits<GlSize>::max()) / sizeof(T),
                         "p_count <= max_size / sizeof(T)", signature()))
      return {};
    return {boost::shared_ptr<BufferStorage>(new BufferStorage(_gl, p_count * sizeof(T), p_usage)), p_count};
  }

  /// Records of a buffer mapped for writing, from record `p_first` on. While it lives the buffer is bound to the
  /// target; its end unmaps it. The old contents of the range are lost. When the range does not lie within the buffer,
  /// or GL cannot map it, the array has count 0 and no data.
  template <class T>
  class WriteArray {
  public:
    /// Maps `p_count` records from record `p_first` on, through the binding `p_target` (RGL_ARRAY_BUFFER, for example).
    WriteArray(const Buffer<T>& p_buffer, std::size_t p_first, std::size_t p_count, GlEnum p_target)
        : _range(p_buffer.Storage(), InRange(p_buffer, p_first, p_count) ? p_first * sizeof(T) : 0,
                 InRange(p_buffer, p_first, p_count) ? p_count * sizeof(T) : 0, p_target)
        , _count(_range.Data() == nullptr ? 0 : p_count) {}

    /// The first mapped record; write-only memory. Null when nothing is mapped.
    T* Data() const { return static_cast<T*>(_range.Data()); }
    /// How many records are mapped.
    std::size_t Count() const { return _count; }

  private:
    static bool InRange(const Buffer<T>& p_buffer, std::size_t p_first, std::size_t p_count) {
      return p_first <= p_buffer.Count() && p_count <= p_buffer.Count() - p_first;
    }
    MappedRange _range;
    std::size_t _count;
  };

private:
  boost::shared_ptr<const GlFunctions> _gl;
};

} // namespace Vek::Chart::Ogl
