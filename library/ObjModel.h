#pragma once

#include "library/Export.h"
#include "platform/file/FilePath.h"
#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexBuffer.h"
#include "platform/types/Geometry.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace Vek::Chart::Library {

/// A polygon model in memory, read from a Wavefront OBJ file by LoadPolygonObjFile: positions, normals, and named
/// groups of indices into them.
///
/// All arrays are held by shared ownership. A copy of a model shares the group list and both arrays with its source, so
/// a change through one is seen through the other; primitive type and bounds are copied. A model that nobody changes
/// may be read from several threads.
///
/// \snippet GlyphSnippets.cpp ObjModel
/// \image html symbols.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API ObjModel {
public:
  /// A part of the model.
  struct ObjGroup {
    std::string name; ///< empty for the default group
    /// Zero-based indices into the model's vertices: three for a triangle, two for a line segment. A loaded group holds
    /// what its file says; an index past the end of the vertices was reported when it was read.
    std::vector<std::uint32_t> indices;
  };
  /// The groups in the order of the file.
  using GroupList = std::vector<boost::shared_ptr<ObjGroup>>;
  /// Positions or normals, three floats each.
  using VertexArray = std::vector<Ogl::Attribute<Ogl::Vec3<float>>>;

  /// An undecided primitive type, no vertices, no normals, empty bounds, and the default group.
  ObjModel();
  /// Shares groups and arrays with `p_other`.
  ObjModel(const ObjModel& p_other);
  /// As the copy.
  ObjModel& operator=(const ObjModel& p_other);
  ~ObjModel();

  /// Appends a group without name and indices and returns it.
  boost::shared_ptr<ObjGroup> AddGroup();
  /// The first group; empty only after the caller emptied the list.
  boost::shared_ptr<ObjGroup> DefaultGroup() const;
  /// The shared list itself.
  boost::shared_ptr<GroupList> Groups() const { return _groups; }

  /// The shared array of positions itself.
  boost::shared_ptr<VertexArray> Vertices() const { return _vertices; }
  /// The shared array of normals itself: empty, or one for each vertex; zero for a vertex that no face gave a normal.
  boost::shared_ptr<VertexArray> Normals() const { return _normals; }
  /// Takes another array, shared with whoever hands it over. The bounds stay as they are.
  void SetVertices(const boost::shared_ptr<VertexArray>& p_vertices) { _vertices = p_vertices; }
  /// Takes another array, shared with whoever hands it over.
  void SetNormals(const boost::shared_ptr<VertexArray>& p_normals) { _normals = p_normals; }

  /// The box around all positions, in double precision.
  const Types::BoundingBox_Base<double>& Bounds() const { return _bounds; }
  /// Sets the bounds, which are not held against the positions.
  void SetBoundingBox(const Types::BoundingBox_Base<double>& p_bounds) { _bounds = p_bounds; }

  /// What the indices of all groups describe: Triangles, LineSegments, or Undecided while nothing is drawn.
  Ogl::VertexBuffer::PrimitiveType PrimitiveType() const { return _primitiveType; }
  /// Sets what the indices describe; the indices stay as they are.
  void SetPrimitiveType(Ogl::VertexBuffer::PrimitiveType p_type) { _primitiveType = p_type; }

private:
  Ogl::VertexBuffer::PrimitiveType _primitiveType = Ogl::VertexBuffer::Undecided;
  boost::shared_ptr<GroupList> _groups;
  boost::shared_ptr<VertexArray> _vertices;
  boost::shared_ptr<VertexArray> _normals;
  Types::BoundingBox_Base<double> _bounds;
};

/// Reads a model from a Wavefront OBJ file, of which it takes positions (v), normals (vn), triangles (f), line segments
/// (l) and groups (g); all else is ignored.
///
/// - Lines are trimmed of white space and split at every single blank. Tabs do not split, and two blanks in a row hold
///   an empty part.
/// - A corner is a, a/b, a//c or a/b/c: position a and normal c, counted from 1. Texture coordinates are not read.
/// Faces
///   are not triangulated: of a larger one the first three corners are taken. Relative (negative) indices are not
///   resolved.
/// - The first f or l line decides the primitive type; later lines of the other kind still add their indices.
/// - A vertex takes the normal of the first corner that gives it one, in the whole file; vertices are never duplicated.
///   The k-th corner of a group takes the group's k-th normal, so a group should give all of its corners normals, or
///   none.
/// - Bounds grow by the numbers as read, in double precision; the arrays hold them narrowed to float.
/// - Every g line begins a group of its own, also one whose name was there before. Indices in front of the first g line
///   go to the default group.
///
/// A file that cannot be opened gives an empty model, and nothing is read after a failure; neither is reported.
/// Reported are a line with too few or too many parts ("parts.size() == 4", for l "parts.size() == 3"), an index
/// outside what was read so far ("0 <= vertexIndex < vertices->size()", "0 <= normalIndex < sourceNormals->size()").
/// Such a line is read on: missing coordinates are 0, missing corners are left out, and an index is stored as read,
/// minus 1, as unsigned number. An index outside the array gives no vertex a normal.
///
/// Throws boost::bad_lexical_cast for a part that is no number, by the rules of boost::lexical_cast to double and int
/// under the classic locale, whatever the process's locale is; std::out_of_range for a g line without name.
///
/// \ingroup glyphs
VEK_LIBRARY_API boost::shared_ptr<ObjModel> LoadPolygonObjFile(const vekfile::filepath& p_path);

/// As LoadPolygonObjFile, from a stream, which is read to its end.
///
/// \ingroup glyphs
VEK_LIBRARY_API boost::shared_ptr<ObjModel> LoadPolygonObj(std::istream& p_stream);

} // namespace Vek::Chart::Library
