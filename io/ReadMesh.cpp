#include "io/ReadMesh.h"

#include "io/FileError.h"
#include "io/private/Input.h"
#include "io/private/MeshText.h"
#include "io/private/PlyHeader.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <string_view>

namespace Vek::Chart::Io {

namespace {

enum class MeshFormat { Unknown, Obj, Ply, Stl };

/// Whether the first line that is neither blank nor a comment is one of an OBJ file.
bool StartsAsObj(std::string_view p_start) {
  if (p_start.substr(0, 3) == "\xEF\xBB\xBF")
    p_start.remove_prefix(3);
  const std::string noName;
  Private::Words words(p_start, noName);
  std::string_view word = words.Next();
  for (; !word.empty() && word.front() == '#'; word = words.Next())
    words.RestOfLine();
  constexpr std::string_view Keywords[] = {"v", "vn", "vt", "f", "l", "p", "g", "o", "s", "mtllib", "usemtl"};
  return std::find(std::begin(Keywords), std::end(Keywords), word) != std::end(Keywords);
}

MeshFormat FormatByName(const std::string& p_name) {
  constexpr std::array<std::pair<std::string_view, MeshFormat>, 3> Endings{
      {{".obj", MeshFormat::Obj}, {".ply", MeshFormat::Ply}, {".stl", MeshFormat::Stl}}};
  for (const auto& [ending, format] : Endings)
    if (ending == Private::Suffix(p_name))
      return format;
  return MeshFormat::Unknown;
}

Mesh ReadObj(std::istream& p_stream, const std::string& p_name, const Progress& p_progress) {
  try {
    return Library::ReadObjScene(p_stream, p_name, p_progress);
  } catch (const Library::ObjError& error) {
    if (error.Line() != 0)
      throw FileError(p_name, error.Line(), error.Expected(), error.Found());
    throw FileError(p_name, error.Reason());
  }
}

/// A file of which only the whole, or its name, gives the format away. Binary STL files have no mark but their size.
Mesh ReadWhole(const std::string& p_file, const std::string& p_name, const Progress& p_progress) {
  if (p_file.empty())
    throw FileError(p_name, "expected OBJ, PLY or STL, got an empty file");
  MeshFormat format = FormatByName(p_name);
  if (Private::IsPly(p_file))
    format = MeshFormat::Ply;
  else if (Private::IsBinaryStl(p_file) || Private::IsTextStl(p_file))
    format = MeshFormat::Stl;
  if (format == MeshFormat::Ply)
    return Private::ReadPly(p_file, p_name, p_progress);
  if (format == MeshFormat::Stl)
    return Private::ReadStl(p_file, p_name, p_progress);
  if (format == MeshFormat::Unknown && !Private::IsUtf16(p_file))
    throw FileError(p_name, 1, "OBJ, PLY or STL", p_file.substr(0, p_file.find_first_of("\n\r")));
  std::istringstream stream(p_file);
  return ReadObj(stream, p_name, p_progress);
}

} // namespace

Mesh ReadMesh(std::istream& p_stream, const std::string& p_name, const Progress& p_progress) {
  constexpr std::streamsize StartSize = 4096;
  std::string start(StartSize, '\0');
  p_stream.read(start.data(), StartSize);
  start.resize(std::size_t(p_stream.gcount()));
  if (p_stream.bad())
    throw FileError(p_name, "reading failed");
  const bool isText = start.find('\0') == std::string::npos && !Private::IsPly(start) && !Private::IsTextStl(start);
  if (!isText || !StartsAsObj(start))
    return ReadWhole(start + Private::ReadAll(p_stream, p_name), p_name, p_progress);
  // OBJ files are read in blocks; for that, the stream goes back to its start.
  p_stream.clear();
  if (p_stream.seekg(-std::streamoff(start.size()), std::ios::cur))
    return ReadObj(p_stream, p_name, p_progress);
  p_stream.clear();
  std::istringstream whole(start + Private::ReadAll(p_stream, p_name));
  return ReadObj(whole, p_name, p_progress);
}

Mesh ReadMesh(const std::string& p_path, const Progress& p_progress) {
  std::ifstream file = Private::OpenFile(p_path);
  return ReadMesh(file, p_path, p_progress);
}

} // namespace Vek::Chart::Io
