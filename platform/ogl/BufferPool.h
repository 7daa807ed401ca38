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

/// The expected use of a buffer's contents.
struct BufferUsage {
  /// How often the contents change.
  enum Kind : unsigned int {
    Default = 0, ///< written once, drawn often
    Dynamic = 1, ///< written repeatedly, drawn often
    Stream = 2,  ///< written once, drawn a few times
  };
};

/// The untyped part of a buffer: a GL name and its size in bytes. Deletes the GL buffer with its last holder; the
/// context that made it, or one that shares objects with it, must be current then.
class VEK_PLATFORM_API BufferStorage {
public:
  /// Makes a buffer of `p_bytes` uninitialised bytes in the current context. The array-buffer binding stays.
  BufferStorage(boost::shared_ptr<const GlFunctions> p_gl, std::size_t p_bytes, BufferUsage::Kind p_usage);
  ~BufferStorage();
  BufferStorage(const BufferStorage&) = delete;
  BufferStorage& operator=(const BufferStorage&) = delete;

  /// The GL name of the buffer; 0 if GL failed to make one.
  unsigned int Name() const { return _name; }
  /// The size in bytes.
  std::size_t Bytes() const { return _bytes; }
  /// The functions of the context that made the buffer.
  const GlFunctions& Gl() const { return *_gl; }
  /// True if the contents are undefined because the first mapping failed, or GL lost the last one. The next mapping
  /// that succeeds sets it to false.
  bool ContentsLost() const { return _contents == Lost; }

private:
  friend class MappedRange;
  enum Contents { Unset, Written, Lost };

  boost::shared_ptr<const GlFunctions> _gl;
  unsigned int _name = 0;
  std::size_t _bytes = 0;
  Contents _contents = Unset;
};

/// A handle to a GPU buffer of `Count()` records of type T. Copies share the buffer. A default-constructed handle, and
/// one that the pool returns after a report, is empty: count 0, name 0.
template <class T>
class Buffer {
public:
  Buffer() = default; ///< empty
  /// `p_count` records in `p_storage`, which must have room for them (unchecked).
  Buffer(boost::shared_ptr<BufferStorage> p_storage, std::size_t p_count)
      : _storage(std::move(p_storage))
      , _count(p_count) {}

  /// The number of records.
  std::size_t Count() const { return _count; }
  /// The GL name of the buffer; 0 for an empty handle.
  unsigned int Name() const { return _storage ? _storage->Name() : 0; }
  /// The memory; null for an empty handle.
  const boost::shared_ptr<BufferStorage>& Storage() const { return _storage; }

private:
  boost::shared_ptr<BufferStorage> _storage;
  std::size_t _count = 0;
};

/// A byte range of a buffer, mapped for writing; the untyped part of `BufferPool::WriteArray`.
class VEK_PLATFORM_API MappedRange {
public:
  /// Binds the buffer to `p_target` and maps the byte range. Maps nothing if the range does not lie within the buffer.
  MappedRange(boost::shared_ptr<BufferStorage> p_storage, std::size_t p_offset, std::size_t p_bytes, GlEnum p_target);
  /// Unmaps and binds the buffer that was bound to the target before (array, element array, pixel pack and unpack
  /// buffers; none for other targets). Contents lost by GL are reported as a warning. Throws nothing, whatever the sink
  /// throws.
  ~MappedRange();
  MappedRange(const MappedRange&) = delete;
  MappedRange& operator=(const MappedRange&) = delete;
  /// The first mapped byte; null if nothing is mapped.
  void* Data() const { return _data; }

private:
  boost::shared_ptr<BufferStorage> _storage;
  GlEnum _target;
  unsigned int _previous = 0;
  void* _data = nullptr;
};

/// Makes GPU buffers in one context.
class VEK_PLATFORM_API BufferPool {
public:
  /// A pool that calls these functions. Applications use Rgl::GetBufferPool.
  explicit BufferPool(boost::shared_ptr<const GlFunctions> p_gl)
      : _gl(std::move(p_gl)) {}

  /// Makes a buffer of `p_count` uninitialised records. The array-buffer binding stays. Returns an empty handle after
  /// these reports:
  /// - "p_count != 0 && "Trying to allocate a buffer of 0 bytes!"";
  /// - "p_count <= max_size / sizeof(T)" if the number of bytes overflows;
  /// - "storage->Name() != 0" if GL failed to make a buffer.
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
    const boost::shared_ptr<BufferStorage> storage(new BufferStorage(_gl, p_count * sizeof(T), p_usage));
    if (!VEK_ENSURE(storage->Name() != 0, signature()))
      return {};
    return {storage, p_count};
  }

  /// Records of a buffer, mapped for writing. The buffer stays bound to the target while the array lives. The old
  /// contents of the range are lost. The array is empty (count 0, null data) if the range does not lie within the
  /// buffer or GL fails to map it.
  template <class T>
  class WriteArray {
  public:
    /// Maps `p_count` records from record `p_first` on through the binding `p_target`, for example RGL_ARRAY_BUFFER.
    WriteArray(const Buffer<T>& p_buffer, std::size_t p_first, std::size_t p_count, GlEnum p_target)
        : _range(p_buffer.Storage(), InRange(p_buffer, p_first, p_count) ? p_first * sizeof(T) : 0,
                 InRange(p_buffer, p_first, p_count) ? p_count * sizeof(T) : 0, p_target)
        , _count(_range.Data() == nullptr ? 0 : p_count) {}

    /// The first mapped record, in write-only memory; null if nothing is mapped.
    T* Data() const { return static_cast<T*>(_range.Data()); }
    /// The number of mapped records.
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
