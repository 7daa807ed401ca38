#pragma once

#include "io/Export.h"
#include "io/Progress.h"
#include "io/SampleFile.h"
#include "library/ObjScene.h"

#include <istream>
#include <string>

namespace Vek::Chart::Io {

/// A mesh of any file: positions, normals, texture coordinates, colours, indices, groups and materials in plain arrays.
/// The arrays are those of an OBJ file; what a format lacks is empty.
///
/// \ingroup files
using Mesh = Library::ObjScene;

/// Reads a mesh from an OBJ, PLY or STL file, recognised by its content, otherwise by the ending of its name.
///
/// - OBJ: as Library::ReadObjScene.
/// - PLY, as text or binary with either byte order (G. Turk, "The PLY polygon file format", 1994): the positions,
///   normals, texture coordinates and colours of vertices; faces of any number of corners, divided by
///   Library::TriangulatePolygon; triangle strips; edges as lines. Numbers and lists may be of any type. Colours of
///   integers are divided by the largest one of their type. A comment "TextureFile NAME" becomes a material. Vertices
///   without faces and edges are points. Colours and texture coordinates of faces are not read.
/// - STL, as text or binary, also binary files that start with "solid": the triangles, whose corners at one position
///   become one vertex. Each "solid" is a group. Normals and colours of the file are not read.
///
/// Normals that a PLY or STL file lacks are those of Library::ComputeNormals.
///
/// Throws FileError for a file that cannot be opened or read, is of no known format, ends too early, claims more than
/// it contains, or has something other than expected; its text names the line, or the byte of a binary file. Also if
/// p_progress cancels. What was left out is listed in `warnings`.
///
/// \snippet FileSnippets.cpp ReadMesh
/// \ingroup files
VEK_IO_API Mesh ReadMesh(const std::string& p_path, const Progress& p_progress = {});
/// Likewise, from a stream; `p_name` takes the place of the path in messages, in the recognition by name, and in the
/// search for materials and textures.
/// \ingroup files
VEK_IO_API Mesh ReadMesh(std::istream& p_stream, const std::string& p_name, const Progress& p_progress = {});

} // namespace Vek::Chart::Io
