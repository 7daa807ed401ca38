#include "io/ReadMesh.h"

#include "io/FileError.h"
#include "io/private/Input.h"
#include "io/private/MeshFormats.h"
#include "io/private/PlyHeader.h"
#include "io/private/Words.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <string_view>

namespace Vek::Chart::Io {

namespace {

enum class MeshFormat { Unknown, Obj, Ply, Stl, Gltf };

/// Whether the first line that is neither blank nor a comment is one of an OBJ file.
bool StartsAsObj(std::string_view p_start) {
  const std::string noName;
  Private::Words words(p_start, noName, Private::MarkSize(p_start));
  std::string_view word = words.Next();
  for (; !word.empty() && word.front() == '#'; word = words.Next())
    words.RestOfLine();
  constexpr std::string_view Keywords[] = {"v", "vn", "vt", "f", "l", "p", "g", "o", "s", "mtllib", "usemtl"};
  return std::find(std::begin(Keywords), std::end(Keywords), word) != std::end(Keywords);
}

MeshFormat FormatByName(const std::string& p_name) {
  constexpr std::array<std::pair<std::string_view, MeshFormat>, 5> Endings{{{".obj", MeshFormat::Obj},
                                                                            {".ply", MeshFormat::Ply},
                                                                            {".stl", MeshFormat::Stl},
                                                                            {".gltf", MeshFormat::Gltf},
                                                                            {".glb", MeshFormat::Gltf}}};
  for (const auto& [ending, format] : Endings)
    if (ending == Private::Suffix(p_name))
      return format;
  return MeshFormat::Unknown;
}

Mesh ReadObj(std::istream& p_stream, const std::string& p_name, const Progress& p_progress) {
  try {
    return Library::ReadObjScene(p_stream, p_name, p_progress, Utility::Threads::All());
  } catch (const Library::ObjError& error) {
    if (error.Line() != 0)
      throw FileError(p_name, error.Line(), error.Expected(), error.Found());
    throw FileError(p_name, error.Reason());
  }
}

/// Completes the normals of a file that has none.
Mesh WithNormals(Mesh p_mesh, double p_creaseAngle) {
  constexpr double Smooth = 180;
  if (!p_mesh.normals.empty())
    return p_mesh;
  if (p_creaseAngle < Smooth)
    Private::SplitCreases(p_mesh, p_creaseAngle);
  Private::AddNormals(p_mesh);
  return p_mesh;
}

/// A file of which only the whole, or its name, gives the format away. Binary STL files have no mark but their size.
Mesh ReadWhole(const std::string& p_file, const std::string& p_name, const MeshOptions& p_options,
               const Progress& p_progress) {
  constexpr double StlCreases = 30, PlyCreases = 180;
  if (p_file.empty())
    throw FileError(p_name, "expected OBJ, PLY, STL or glTF, got an empty file");
  MeshFormat format = FormatByName(p_name);
  if (Private::IsPly(p_file))
    format = MeshFormat::Ply;
  else if (Private::IsGltf(p_file))
    format = MeshFormat::Gltf;
  else if (Private::IsBinaryStl(p_file) || Private::IsTextStl(p_file))
    format = MeshFormat::Stl;
  if (format == MeshFormat::Ply)
    return WithNormals(Private::ReadPly(p_file, p_name, p_progress), p_options.creaseAngle.value_or(PlyCreases));
  if (format == MeshFormat::Stl)
    return WithNormals(Private::ReadStl(p_file, p_name, p_progress), p_options.creaseAngle.value_or(StlCreases));
  if (format == MeshFormat::Gltf)
    return Private::ReadGltf(p_file, p_name, p_progress);
  if (format == MeshFormat::Unknown && !Private::IsUtf16(p_file))
    throw FileError(p_name, 1, "OBJ, PLY, STL or glTF", p_file.substr(0, p_file.find_first_of("\n\r")));
  std::istringstream stream(p_file);
  return ReadObj(stream, p_name, p_progress);
}

} // namespace

Mesh ReadMesh(std::istream& p_stream, const std::string& p_name, const MeshOptions& p_options,
              const Progress& p_progress) {
  constexpr std::size_t StartSize = 4096;
  Private::Restarted input(p_stream, p_name, StartSize);
  const std::string& start = input.Start();
  const bool isText = start.find('\0') == std::string::npos && !Private::IsPly(start) && !Private::IsTextStl(start);
  if (!isText || !StartsAsObj(start))
    return ReadWhole(Private::ReadAll(input.Stream(), p_name), p_name, p_options, p_progress);
  return ReadObj(input.Stream(), p_name, p_progress); // in blocks
}

Mesh ReadMesh(const std::string& p_path, const MeshOptions& p_options, const Progress& p_progress) {
  std::ifstream file = Private::OpenFile(p_path);
  return ReadMesh(file, p_path, p_options, p_progress);
}

Mesh ReadMesh(std::istream& p_stream, const std::string& p_name, const Progress& p_progress) {
  return ReadMesh(p_stream, p_name, MeshOptions(), p_progress);
}

Mesh ReadMesh(const std::string& p_path, const Progress& p_progress) {
  return ReadMesh(p_path, MeshOptions(), p_progress);
}

} // namespace Vek::Chart::Io
