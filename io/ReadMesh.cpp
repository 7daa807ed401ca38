#include "io/ReadMesh.h"

#include "io/FileError.h"
#include "io/private/MeshText.h"
#include "io/private/PlyHeader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <vector>

namespace Vek::Chart::Io {

namespace {

enum class Format { Unknown, Obj, Ply, Stl };

std::string ReadAll(std::istream& p_stream, const std::string& p_name) {
  std::string text;
  std::vector<char> block(std::size_t(1) << 20);
  while (p_stream.read(block.data(), std::streamsize(block.size())) || p_stream.gcount() > 0)
    text.append(block.data(), std::size_t(p_stream.gcount()));
  if (p_stream.bad())
    throw FileError(p_name, "reading failed");
  return text;
}

std::string Ending(const std::string& p_name) {
  std::string ending = std::filesystem::path(p_name).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char p_c) { return static_cast<char>(p_c >= 'A' && p_c <= 'Z' ? p_c + 32 : p_c); });
  return ending;
}

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

bool IsUtf16(std::string_view p_start) {
  return p_start.substr(0, 2) == "\xFF\xFE" || p_start.substr(0, 2) == "\xFE\xFF";
}

Format FormatByName(const std::string& p_name) {
  constexpr std::array<std::pair<std::string_view, Format>, 3> Endings{
      {{".obj", Format::Obj}, {".ply", Format::Ply}, {".stl", Format::Stl}}};
  for (const auto& [ending, format] : Endings)
    if (ending == Ending(p_name))
      return format;
  return Format::Unknown;
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
  Format format = FormatByName(p_name);
  if (Private::IsPly(p_file))
    format = Format::Ply;
  else if (Private::IsBinaryStl(p_file) || Private::IsTextStl(p_file))
    format = Format::Stl;
  if (format == Format::Ply)
    return Private::ReadPly(p_file, p_name, p_progress);
  if (format == Format::Stl)
    return Private::ReadStl(p_file, p_name, p_progress);
  if (format == Format::Unknown && !IsUtf16(p_file))
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
    return ReadWhole(start + ReadAll(p_stream, p_name), p_name, p_progress);
  // OBJ files are read in blocks; for that, the stream goes back to its start.
  p_stream.clear();
  if (p_stream.seekg(-std::streamoff(start.size()), std::ios::cur))
    return ReadObj(p_stream, p_name, p_progress);
  p_stream.clear();
  std::istringstream whole(start + ReadAll(p_stream, p_name));
  return ReadObj(whole, p_name, p_progress);
}

Mesh ReadMesh(const std::string& p_path, const Progress& p_progress) {
  std::error_code ignored;
  if (std::filesystem::is_directory(p_path, ignored))
    throw FileError(p_path, "expected a file, got a folder");
  errno = 0;
  std::ifstream file(p_path, std::ios::binary);
  if (!file)
    throw FileError(p_path, std::string("cannot be opened: ") + std::strerror(errno));
  return ReadMesh(file, p_path, p_progress);
}

} // namespace Vek::Chart::Io
