#pragma once

#include "io/Export.h"
#include "io/Progress.h"
#include "io/SampleFile.h"
#include "library/ObjScene.h"

#include <istream>
#include <optional>
#include <string>

namespace Vek::Chart::Io {

/// A mesh of any file: positions, normals, texture coordinates, colours, indices, groups and materials in plain arrays.
/// The arrays are those of an OBJ file; what a format lacks is empty.
///
/// \ingroup files
using Mesh = Library::ObjScene;

/// How a mesh is read.
/// \ingroup files
struct MeshOptions {
  /// In degrees, 0 to 180: in a PLY or STL file without normals, the surface has an edge between triangles at a larger
  /// angle, and is smooth elsewhere. By default 30 for STL, which are mostly machine parts, and 180, smooth everywhere,
  /// for PLY, which are mostly scans.
  std::optional<double> creaseAngle;
};

/// Reads a mesh from an OBJ, PLY, STL or glTF file, recognised by its content, otherwise by the ending of its name.
///
/// - OBJ: as Library::ReadObjScene.
/// - PLY, as text or binary with either byte order (G. Turk, "The PLY polygon file format", 1994): the positions,
///   normals, texture coordinates and colours of vertices; faces of any number of corners, divided by
///   Library::TriangulatePolygon; triangle strips; edges as lines. Numbers and lists may be of any type. Colours of
///   integers are divided by the largest one of their type. A comment "TextureFile NAME" becomes a material. Vertices
///   without faces and edges are points. Colours and texture coordinates of faces are not read, which is a warning.
/// - STL, as text or binary, also binary files that start with "solid": the triangles, whose corners at one position
///   become one vertex. Each "solid" is a group. Normals and colours of the file are not read.
///
/// - glTF 2.0, as .gltf or .glb, in a build with Assimp (package libassimp-dev): positions, normals, the first texture
///   coordinates and colours of vertices, triangles, lines and points, with the transforms of their nodes; a group for
///   each mesh of a node, whose name is that of the object. Materials have the base colour with its texture, which may
///   lie in the file (`diffuseImage`), and the emission. Colours are linear, as in the file. Animations, skins, morph
///   targets, cameras, lights and compressed meshes are not read.
///
/// Normals that a file lacks are those of Library::ComputeNormals; see MeshOptions for edges.
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
///@{
/// Likewise, with options.
/// \ingroup files
VEK_IO_API Mesh ReadMesh(const std::string& p_path, const MeshOptions& p_options, const Progress& p_progress = {});
VEK_IO_API Mesh ReadMesh(std::istream& p_stream, const std::string& p_name, const MeshOptions& p_options,
                         const Progress& p_progress = {});
///@}

} // namespace Vek::Chart::Io
