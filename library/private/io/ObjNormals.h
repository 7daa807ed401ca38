#pragma once

#include "library/private/memory/ChunkedArray.h"
#include "platform/ogl/Vec.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Library::Private {

/// The normals of an OBJ file, and which of them each vertex takes: the first that a corner gives it.
///
/// In most files vertex i takes normal i. As long as that holds, the normals of the file are those of the vertices, and
/// are kept once.
class ObjNormals {
public:
  using Attribute = Ogl::Attribute<Ogl::Vec3<float>>;

  /// The number of normals of the file so far.
  std::size_t Size() const { return _ofFile.Size(); }
  void Append(const Attribute& p_normal) { _ofFile.Append(p_normal); }
  /// Normals that lie behind each other as floats.
  void AppendBytes(const float* p_first, std::size_t p_count) { _ofFile.AppendBytes(p_first, p_count); }

  /// Gives a vertex that normal unless it has one. Both exist: the vertex is one of `p_vertexCount` so far.
  void Give(std::uint32_t p_vertex, std::uint32_t p_normal, std::size_t p_vertexCount) {
    if (p_vertex >= _isGiven.size())
      _isGiven.resize(p_vertexCount);
    if (_isGiven[p_vertex] != 0)
      return;
    _isGiven[p_vertex] = 1;
    if (_isSeparate || p_vertex != p_normal)
      Store(p_vertex, p_normal);
  }

  /// Gives vertices the normals of their own numbers likewise.
  void GiveOwn(const std::uint32_t* p_vertices, std::size_t p_count, std::size_t p_vertexCount);

  /// As those of the arrays.
  void ReleaseRest() {
    _ofFile.ReleaseRest();
    _ofVertices.ReleaseRest();
  }

  /// The normals of the vertices, (0, 0, 0) where none was given; empty if the file has none. All others are freed.
  std::vector<Attribute> MoveOut(std::size_t p_vertexCount);

private:
  void Store(std::uint32_t p_vertex, std::uint32_t p_normal);
  void Separate();

  ChunkedArray<Attribute> _ofFile;
  ChunkedArray<Attribute> _ofVertices; ///< unless they are those of the file
  std::vector<unsigned char> _isGiven; ///< of each vertex: 0 or 1; bits would have to be read to be set
  bool _isSeparate = false;
};

} // namespace Vek::Chart::Library::Private
