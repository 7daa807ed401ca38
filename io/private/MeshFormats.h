#pragma once

#include "io/Progress.h"
#include "io/ReadMesh.h"

#include <string>
#include <string_view>

namespace Vek::Chart::Io::Private {

/// Gives a mesh without normals those of its triangles.
void AddNormals(Mesh& p_mesh);

/// Gives each side of an edge vertices of its own where the triangles beside it differ by more than an angle, so that
/// AddNormals smooths only within the sides. Colours and texture coordinates are repeated.
void SplitCreases(Mesh& p_mesh, double p_degrees);

/// Readers of whole files in memory; see ReadMesh.
Mesh ReadPly(std::string_view p_file, const std::string& p_name, const Progress& p_progress);
Mesh ReadStl(std::string_view p_file, const std::string& p_name, const Progress& p_progress);
Mesh ReadGltf(std::string_view p_file, const std::string& p_name, const Progress& p_progress);
/// Whether a file starts as binary glTF or as JSON.
bool IsGltf(std::string_view p_start);
/// Whether a file is binary STL by its size, or text STL by its words.
bool IsBinaryStl(std::string_view p_file);
bool IsTextStl(std::string_view p_file);

} // namespace Vek::Chart::Io::Private
