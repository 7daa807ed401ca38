#include "io/Formats.h"

#include <sstream>

namespace Vek::Chart::Io {

const std::vector<Format>& Formats() {
  static const std::vector<Format> Formats{
      {Format::Meshes, "OBJ", "obj", "Io::ReadMesh",
       "positions, vertex colours, normals, texture coordinates, faces of any number of corners, lines, points, "
       "groups, smoothing groups, materials and the names of their textures",
       "curves and surfaces, texture coordinates of lines", "", true},
      {Format::Meshes, "PLY", "ply", "Io::ReadMesh",
       "text and binary of either byte order: positions, normals, texture coordinates and colours of vertices; faces "
       "of any number of corners, triangle strips, edges, points; lists of any integer type; the texture named in a "
       "comment",
       "colours and texture coordinates of faces, other elements", "", true},
      {Format::Meshes, "STL", "stl", "Io::ReadMesh",
       "text, and binary also with \"solid\" at its start: triangles, with corners at one position as one vertex; "
       "names of solids",
       "normals and colours of triangles", "", true},
      {Format::Meshes, "glTF", "gltf glb", "Io::ReadMesh",
       "version 2.0, with data in the file or beside it: positions, normals, texture coordinates, vertex colours, "
       "triangles, lines and points, transforms of nodes, base colours and their textures",
       "animations, skins, morph targets, cameras, lights, further maps of materials, transforms of textures, "
       "compressed meshes",
       "libassimp-dev", VEK_WITH_ASSIMP != 0},
      {Format::Volumes, "NetCDF", "nc cdf", "Io::ReadVolume",
       "classic formats: a variable on a grid, even or not, at one time, as for vector fields", "curvilinear grids", "",
       true},
      {Format::Volumes, "NetCDF-4", "nc nc4", "Io::ReadVolume", "as NetCDF, compressed or not",
       "groups, structures, curvilinear grids", "libnetcdf-dev", VEK_WITH_NETCDF != 0},
      {Format::Volumes, "TextArray", "txt", "Io::ReadVolume", "numbers of all channels as floats, nan and inf", "", "",
       true},
      {Format::Volumes, "NRRD", "nrrd nhdr", "Io::ReadVolume",
       "integers of 8 to 64 bits, float and double, raw, as text or hexadecimal; up to three axes of a grid, channels "
       "before or behind them, steps; header attached or detached, several files of values; spacing, origin, "
       "directions",
       "bzip2, blocks, measurement frames", "", true},
      {Format::Volumes, "NRRD, compressed", "nrrd nhdr", "Io::ReadVolume", "as NRRD, by gzip", "", "zlib1g-dev",
       VEK_WITH_ZLIB != 0},
      {Format::Volumes, "NIfTI", "nii hdr img", "Io::ReadVolume",
       "NIfTI-1 and NIfTI-2, in one file or two: integers of 8 to 64 bits, float, double, RGB and RGBA; sform and "
       "qform, scl_slope and scl_inter, cal_min and cal_max, steps of time, channels",
       "complex values, extensions, dimensions 6 and 7", "", true},
      {Format::Volumes, "NIfTI, compressed", "nii.gz", "Io::ReadVolume", "as NIfTI, by gzip", "", "zlib1g-dev",
       VEK_WITH_ZLIB != 0},
      {Format::Volumes, "raw", "raw", "Io::ReadVolume", "values with size, type, channels and byte order given", "", "",
       true},
      {Format::Vectors, "NetCDF", "nc cdf", "Io::ReadVectorField",
       "classic formats, by the CF conventions: winds and flows on regular and rectilinear grids of two or three "
       "dimensions, in any order of axes; units, scale_factor, add_offset, _FillValue, missing_value, valid ranges, "
       "steps of time",
       "curvilinear grids", "", true},
      {Format::Vectors, "NetCDF-4", "nc nc4", "Io::ReadVectorField", "as NetCDF, compressed or not",
       "groups, structures, curvilinear grids", "libnetcdf-dev", VEK_WITH_NETCDF != 0},
      {Format::Vectors, "CSV", "csv tsv txt dat", "Io::ReadVectorField",
       "nodes in any order with columns of positions and components, or of direction and speed; regular grids with a "
       "first line \"# dims\"",
       "steps of time", "", true},
      {Format::Heights, "NetCDF", "nc cdf grd", "Io::ReadHeights",
       "classic formats: a variable at one time and level, as for vector fields", "curvilinear grids", "", true},
      {Format::Heights, "NetCDF-4", "nc nc4 grd", "Io::ReadHeights", "as NetCDF, compressed or not",
       "groups, structures, curvilinear grids", "libnetcdf-dev", VEK_WITH_NETCDF != 0},
      {Format::Heights, "height grid", "txt", "Io::ReadHeights",
       "a first line \"nx ny x0 dx y0 dy\", then the heights row by row", "", "", true},
      {Format::Heights, "ESRI ASCII grid", "asc", "Io::ReadHeights",
       "centres or corners of cells, square or not, heights with their NODATA_value", "map projections", "", true},
      {Format::Heights, "CSV", "csv tsv txt dat", "Io::ReadHeights",
       "nodes in any order with columns of positions and heights", "", "", true},
      {Format::Tables, "CSV", "csv tsv txt dat", "Io::ReadTable",
       "cells separated by commas, semicolons, tabs, bars or blanks; quoted cells, comments, missing cells, names of "
       "columns, decimal commas, times by ISO 8601",
       "UTF-16", "", true},
      {Format::Images, "Radiance", "hdr pic", "Io::ReadImage",
       "RGBE and XYZE, all run codes; EXPOSURE, PRIMARIES and all eight orientations on request",
       "COLORCORR, PIXASPECT", "", true},
      {Format::Images, "PFM", "pfm", "Io::ReadImage", "one or three channels, either byte order", "", "", true},
      {Format::Images, "OpenEXR", "exr", "Io::ReadImage",
       "all channels of the first part as floats; scanlines and tiles, all compressions",
       "deep images, channels of fewer pixels such as chroma", "libopenexr-dev", VEK_WITH_OPENEXR != 0},
  };
  return Formats;
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
