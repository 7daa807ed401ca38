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

/// The buffer that is bound to a target; 0 for targets other than these.
unsigned int BoundBuffer(const GlFunctions& p_gl, GlEnum p_target) {
  constexpr std::pair<GlEnum, GlEnum> Bindings[] = {
      {RGL_ARRAY_BUFFER, RGL_ARRAY_BUFFER_BINDING},
      {RGL_ELEMENT_ARRAY_BUFFER, RGL_ELEMENT_ARRAY_BUFFER_BINDING},
      {RGL_PIXEL_PACK_BUFFER, RGL_PIXEL_PACK_BUFFER_BINDING},
      {RGL_PIXEL_UNPACK_BUFFER, RGL_PIXEL_UNPACK_BUFFER_BINDING},
  };
  int name = 0;
  for (const auto& [target, binding] : Bindings)
    if (target == p_target)
      p_gl.GetIntegerv(binding, &name);
  return static_cast<unsigned int>(name);
}

} // namespace

BufferStorage::BufferStorage(boost::shared_ptr<const GlFunctions> p_gl, std::size_t p_bytes, BufferUsage::Kind p_usage)
    : _gl(std::move(p_gl))
    , _bytes(p_bytes) {
  const unsigned int previous = BoundBuffer(*_gl, RGL_ARRAY_BUFFER);
  _gl->GenBuffers(1, &_name);
  if (_name == 0)
    return;
  _gl->BindBuffer(RGL_ARRAY_BUFFER, _name);
  _gl->BufferData(RGL_ARRAY_BUFFER, static_cast<GlSize>(_bytes), nullptr, UsageToken(p_usage));
  _gl->BindBuffer(RGL_ARRAY_BUFFER, previous);
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
  _previous = BoundBuffer(gl, _target);
  gl.BindBuffer(_target, _storage->Name());
  _data = gl.MapBufferRange(_target, static_cast<GlSize>(p_offset), static_cast<GlSize>(p_bytes),
                            RGL_MAP_WRITE_BIT | RGL_MAP_INVALIDATE_RANGE_BIT);
  if (_data != nullptr)
    return;
  gl.BindBuffer(_target, _previous);
  if (_storage->_contents == BufferStorage::Unset)
    _storage->_contents = BufferStorage::Lost;
}

MappedRange::~MappedRange() {
  if (_data == nullptr)
    return;
  const GlFunctions& gl = _storage->Gl();
  gl.BindBuffer(_target, _storage->Name()); // another buffer may be bound by now
  const bool isKept = gl.UnmapBuffer(_target) != RGL_FALSE;
  gl.BindBuffer(_target, _previous);
  _storage->_contents = isKept ? BufferStorage::Written : BufferStorage::Lost;
  try {
    if (!isKept)
      vekdebug::warn("The contents of a mapped buffer were lost.");
  } catch (...) { // of a sink: nothing may leave a destructor
  }
}

} // namespace Vek::Chart::Ogl
