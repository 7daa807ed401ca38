#pragma once

#include "platform/debug/Check.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// A GL buffer that follows an array in CPU memory: it is uploaded when it is asked for another array than before.
class GpuArray {
public:
  /// Uploads the elements of `p_source`, written by `p_write(void*)`, unless it was uploaded last; frees the buffer if
  /// there are none. The source is held, so that no other array can have its address. False, after a report, if GL
  /// makes or maps no buffer; the next call tries again.
  template <class T, class Write>
  bool Update(const Ogl::Rgl& p_gl, const boost::shared_ptr<const std::vector<T>>& p_source, Write&& p_write,
              const char* p_signature) {
    if (p_source == nullptr || p_source->empty()) {
      *this = {};
      return true;
    }
    if (p_source == _source)
      return true;
    const std::size_t bytes = p_source->size() * sizeof(T);
    Ogl::Buffer<unsigned char> buffer = _buffer.Count() == bytes ? _buffer : Ogl::Buffer<unsigned char>();
    *this = {}; // a buffer that cannot be mapped may have no memory, so that the next call makes another one
    if (buffer.Count() == 0)
      buffer = p_gl.GetBufferPool().CreateBuffer<unsigned char>(bytes, Ogl::BufferUsage::Default);
    if (buffer.Count() == 0)
      return false; // reported by the pool
    {
      const Ogl::BufferPool::WriteArray<unsigned char> mapped(buffer, 0, bytes, RGL_ARRAY_BUFFER);
      if (!VEK_ENSURE_TEXT(mapped.Count() == bytes, "mapped.Count() == bytes", p_signature))
        return false;
      p_write(mapped.Data());
    }
    if (buffer.Storage()->ContentsLost())
      return false; // reported by the mapping
    _buffer = std::move(buffer);
    _source = p_source;
    return true;
  }
  /// Likewise, in the order of the array.
  template <class T>
  bool Update(const Ogl::Rgl& p_gl, const boost::shared_ptr<const std::vector<T>>& p_source, const char* p_signature) {
    const auto copy = [&](void* p_to) { std::memcpy(p_to, p_source->data(), p_source->size() * sizeof(T)); };
    return Update(p_gl, p_source, copy, p_signature);
  }
  /// The next update uploads.
  void Forget() { _source.reset(); }

  /// Whether there is anything in it.
  explicit operator bool() const { return _source != nullptr; }
  /// The buffer; null without one.
  const boost::shared_ptr<Ogl::BufferStorage>& Storage() const { return _buffer.Storage(); }
  /// The name of the buffer in GL; 0 without one.
  unsigned int Name() const { return _buffer.Name(); }

private:
  boost::shared_ptr<const void> _source;
  Ogl::Buffer<unsigned char> _buffer;
};

} // namespace Vek::Chart::Scene::Private
