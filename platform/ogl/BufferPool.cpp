#include "platform/ogl/BufferPool.h"

#include "platform/ogl/GlTokens.h"

#include <utility>

namespace Vek::Chart::Ogl {
namespace {

GlEnum UsageToken(BufferUsage::Kind p_usage) {
  switch (p_usage) {
  case BufferUsage::Dynamic:
    return RGL_DYNAMIC_DRAW;
  case BufferUsage::Stream:
    return RGL_STREAM_DRAW;
  case BufferUsage::Default:
    break;
  }
  return RGL_STATIC_DRAW;
}

} // namespace

BufferStorage::BufferStorage(boost::shared_ptr<const GlFunctions> p_gl, std::size_t p_bytes, BufferUsage::Kind p_usage)
    : _gl(std::move(p_gl))
    , _bytes(p_bytes) {
  int previous = 0;
  _gl->GetIntegerv(RGL_ARRAY_BUFFER_BINDING, &previous);
  _gl->GenBuffers(1, &_name);
  _gl->BindBuffer(RGL_ARRAY_BUFFER, _name);
  _gl->BufferData(RGL_ARRAY_BUFFER, static_cast<GlSize>(_bytes), nullptr, UsageToken(p_usage));
  _gl->BindBuffer(RGL_ARRAY_BUFFER, static_cast<unsigned int>(previous));
}

BufferStorage::~BufferStorage() {
  if (_name != 0)
    _gl->DeleteBuffers(1, &_name);
}

MappedRange::MappedRange(boost::shared_ptr<BufferStorage> p_storage, std::size_t p_offset, std::size_t p_bytes,
                         GlEnum p_target)
    : _storage(std::move(p_storage))
    , _target(p_target) {
  if (!_storage || p_bytes == 0 || p_offset > _storage->Bytes() || p_bytes > _storage->Bytes() - p_offset)
    return;
  const GlFunctions& gl = _storage->Gl();
  gl.BindBuffer(_target, _storage->Name());
  _data = gl.MapBufferRange(_target, static_cast<GlSize>(p_offset), static_cast<GlSize>(p_bytes),
                            RGL_MAP_WRITE_BIT | RGL_MAP_INVALIDATE_RANGE_BIT);
  if (_data == nullptr)
    gl.BindBuffer(_target, 0);
}

MappedRange::~MappedRange() {
  if (_data == nullptr)
    return;
  const GlFunctions& gl = _storage->Gl();
  // Something else may have been bound to the target meanwhile.
  gl.BindBuffer(_target, _storage->Name());
  if (gl.UnmapBuffer(_target) == RGL_FALSE)
    vekdebug::warn("The contents of a mapped buffer were lost.");
  gl.BindBuffer(_target, 0);
}

} // namespace Vek::Chart::Ogl
