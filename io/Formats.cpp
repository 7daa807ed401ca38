#include "io/Formats.h"

#include <sstream>

namespace Vek::Chart::Io {

const std::vector<Format>& Formats() {
  static const std::vector<Format> formats{
      {Format::Meshes, "OBJ", "obj", "Io::ReadMesh",
       "positions, vertex colours, normals, texture coordinates, faces of any number of corners, lines, points, "
       "groups, "
       "smoothing groups, materials and the names of their textures",
       "curves and surfaces, texture coordinates of lines", "", true},
      {Format::Meshes, "PLY", "ply", "Io::ReadMesh",
       "text and binary of either byte order: positions, normals, texture coordinates and colours of vertices; faces "
       "of "
       "any number of corners, triangle strips, edges, points; lists of any integer type; the texture named in a "
       "comment",
       "colours and texture coordinates of faces, other elements", "", true},
      {Format::Meshes, "STL", "stl", "Io::ReadMesh",
       "text, and binary also with \"solid\" at its start: triangles, with corners at one position as one vertex; "
       "names "
       "of solids",
       "normals and colours of triangles", "", true},
      {Format::Tables, "CSV", "csv tsv txt dat", "Io::ReadTable",
       "cells separated by commas, semicolons, tabs or blanks; quoted cells, comments, missing cells, names of "
       "columns, "
       "decimal commas",
       "UTF-16", "", true},
  };
  return formats;
}

std::string_view KindName(Format::Kind p_kind) {
  constexpr std::string_view Names[] = {"Meshes", "Volumes", "Vector fields", "Height grids", "Tables", "Images"};
  return Names[p_kind];
}

std::string FilePatterns(Format::Kind p_kind) {
  std::string patterns;
  for (const Format& format : Formats()) {
    if (format.kind != p_kind || !format.isAvailable)
      continue;
    std::istringstream suffixes{std::string(format.suffixes)};
    for (std::string suffix; suffixes >> suffix;)
      if ((patterns + ' ').find("*." + suffix + ' ') == std::string::npos)
        patterns += (patterns.empty() ? "*." : " *.") + suffix;
  }
  return patterns;
}

} // namespace Vek::Chart::Io
