#include "library/private/io/ObjNormals.h"

#include <algorithm>

namespace Vek::Chart::Library::Private {

void ObjNormals::GiveOwn(const std::uint32_t* p_vertices, std::size_t p_count, std::size_t p_vertexCount) {
  if (_isSeparate) {
    for (std::size_t i = 0; i < p_count; ++i)
      Give(p_vertices[i], p_vertices[i], p_vertexCount);
    return;
  }
  _isGiven.resize(p_vertexCount);
  for (std::size_t i = 0; i < p_count; ++i)
    _isGiven[p_vertices[i]] = 1;
}

void ObjNormals::Store(std::uint32_t p_vertex, std::uint32_t p_normal) {
  if (!_isSeparate)
    Separate();
  _ofVertices.Grow(_isGiven.size());
  _ofVertices[p_vertex] = _ofFile[p_normal];
}

/// Copies what the vertices have so far. The vertex that is about to take another normal is overwritten.
void ObjNormals::Separate() {
  _isSeparate = true;
  _ofVertices.Grow(_isGiven.size());
  for (std::size_t i = 0; i < std::min(_isGiven.size(), _ofFile.Size()); ++i)
    if (_isGiven[i] != 0)
      _ofVertices[i] = _ofFile[i];
}

std::vector<ObjNormals::Attribute> ObjNormals::MoveOut(std::size_t p_vertexCount) {
  if (_ofFile.Size() == 0)
    return {};
  _isGiven.resize(p_vertexCount);
  if (!_isSeparate && _ofFile.Size() > p_vertexCount)
    Separate(); // without memory for those that no vertex takes
  if (_isSeparate) {
    _ofFile.Clear();
    _ofVertices.Grow(p_vertexCount);
    return _ofVertices.MoveOut();
  }
  std::vector<Attribute> normals = _ofFile.MoveOut(p_vertexCount);
  normals.resize(p_vertexCount);
  for (std::size_t i = 0; i < p_vertexCount; ++i)
    if (_isGiven[i] == 0)
      normals[i] = {};
  return normals;
}

} // namespace Vek::Chart::Library::Private
