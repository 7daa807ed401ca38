#pragma once

#include "library/Export.h"
#include "platform/file/FilePath.h"
#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexBuffer.h"
#include "platform/types/Geometry.h"
#include "platform/utility/Threads.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace Vek::Chart::Library {

/// A polygon model in memory: positions, normals, and named groups of indices into them. LoadPolygonObjFile reads one
/// from a Wavefront OBJ file.
///
/// All arrays are held by shared ownership. A copy of a model shares the group list and both arrays with its source, so
/// a change through one is seen through the other; primitive type and bounds are copied. Several threads may read a
/// model at once as long as none changes it.
///
/// \snippet GlyphSnippets.cpp ObjModel
/// \image html symbols.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API ObjModel {
public:
  /// A part of the model.
  struct ObjGroup {
    std::string name; ///< empty for the default group
    /// Zero-based indices into the model's vertices: three for a triangle, two for a line segment. Indices of a loaded
    /// group are unchecked: those past the end of the vertices were reported when they were read.
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
  /// Copy assignment; shares groups and arrays with `p_other`.
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
  /// The shared array of normals itself: empty, or one for each vertex, (0, 0, 0) where no face gave one.
  boost::shared_ptr<VertexArray> Normals() const { return _normals; }
  /// Replaces the array of positions, which is shared with the caller. The bounds stay as they are.
  void SetVertices(const boost::shared_ptr<VertexArray>& p_vertices) { _vertices = p_vertices; }
  /// Replaces the array of normals, which is shared with the caller.
  void SetNormals(const boost::shared_ptr<VertexArray>& p_normals) { _normals = p_normals; }

  /// The bounding box of all positions, in double precision.
  const Types::BoundingBox_Base<double>& Bounds() const { return _bounds; }
  /// Sets the bounds, which are not compared with the positions.
  void SetBoundingBox(const Types::BoundingBox_Base<double>& p_bounds) { _bounds = p_bounds; }

  /// The primitives that the indices of all groups describe: Triangles, LineSegments, or Undecided as long as there are
  /// none.
  Ogl::VertexBuffer::PrimitiveType PrimitiveType() const { return _primitiveType; }
  /// Sets the primitive type; the indices stay as they are.
  void SetPrimitiveType(Ogl::VertexBuffer::PrimitiveType p_type) { _primitiveType = p_type; }

private:
  Ogl::VertexBuffer::PrimitiveType _primitiveType = Ogl::VertexBuffer::Undecided;
  boost::shared_ptr<GroupList> _groups;
  boost::shared_ptr<VertexArray> _vertices;
  boost::shared_ptr<VertexArray> _normals;
  Types::BoundingBox_Base<double> _bounds;
};

/// Reads a model from a Wavefront OBJ file: positions (v), normals (vn), triangles (f), line segments (l) and groups
/// (g); other keywords are ignored.
///
/// - Lines are trimmed of white space and split at every single blank. Tabs do not split. Two blanks in a row have
///   an empty part between them: a file with doubled blanks behind the keyword (`v  1 2 3`), as common exporters
///   write them, throws.
/// - A corner is a, a/b, a//c or a/b/c: position a and normal c, counted from 1. Texture coordinates are not read.
/// - Faces are not triangulated: of a larger face the first three corners are read. Relative (negative) indices are not
///   resolved.
/// - The first f or l line decides the primitive type; later lines of the other kind still add their indices.
/// - A vertex takes the normal of the first corner in the file that gives it one; vertices are never duplicated. The
///   k-th corner of a group takes the group's k-th normal, so either all corners of a group should have normals, or
///   none.
/// - Bounds grow by the numbers as read, in double precision; the arrays hold them narrowed to float.
/// - Every g line begins a new group, even if its name was used before. Indices above the first g line go to
///   the default group.
///
/// Reports, with path and line in their details:
/// - A line with too few or too many parts ("parts.size() == 4", for l "parts.size() == 3"): missing coordinates are 0,
///   missing corners are left out.
/// - An index outside the elements read so far ("0 <= vertexIndex < vertices->size()", "0 <= normalIndex <
///   sourceNormals->size()"): it is stored as read, minus 1, as unsigned number. It takes part in the choice of normals
///   only if its element exists at the end of the group.
/// - A warning for a file that cannot be opened, which gives an empty model; for a read error and for a line
///   longer than 64 MiB, which both end the model with the lines before.
///
/// Throws an exception derived from boost::bad_lexical_cast for a part that is no number, by the rules of
/// boost::lexical_cast to double and int under the classic locale, whatever the process's locale is. Throws
/// std::out_of_range for a g line without name. Their messages end with path, line and the characters found.
///
/// \ingroup glyphs
VEK_LIBRARY_API boost::shared_ptr<ObjModel> LoadPolygonObjFile(const vekfile::filepath& p_path);

/// LoadPolygonObjFile from a stream, which is read to its end. Reports show no path.
///
/// \ingroup glyphs
VEK_LIBRARY_API boost::shared_ptr<ObjModel> LoadPolygonObj(std::istream& p_stream);

///@{
/// As above, on several threads, with the same model, reports and exceptions; only a stream that fails may be reported
/// before lines in front of the failure. Files below 1 MiB start no thread.
///
/// \ingroup glyphs
VEK_LIBRARY_API boost::shared_ptr<ObjModel> LoadPolygonObjFile(const vekfile::filepath& p_path,
                                                               Utility::Threads p_threads);
VEK_LIBRARY_API boost::shared_ptr<ObjModel> LoadPolygonObj(std::istream& p_stream, Utility::Threads p_threads);
///@}

} // namespace Vek::Chart::Library
