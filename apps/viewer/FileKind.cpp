#include "apps/viewer/Document.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <locale>
#include <sstream>
#include <string_view>

namespace Vek::Chart::Viewer {

using Kind = Io::Format::Kind;
using Kinds = std::vector<Kind>;

namespace {

bool StartsWith(std::string_view p_text, std::string_view p_start, std::size_t p_offset = 0) {
  return p_text.size() >= p_offset && p_text.substr(p_offset, p_start.size()) == p_start;
}

std::string Lower(std::string p_text) {
  std::transform(p_text.begin(), p_text.end(), p_text.begin(),
                 [](char p_char) { return static_cast<char>(std::tolower(static_cast<unsigned char>(p_char))); });
  return p_text;
}

/// Formats that begin with certain bytes.
struct Magic {
  std::string_view bytes;
  Kinds kinds;
  std::size_t offset = 0;
};

const std::vector<Magic>& Magics() {
  const Kinds grids{Kind::Vectors, Kind::Volumes, Kind::Heights};
  static const std::vector<Magic> Magics{
      {"#?", {Kind::Images}},
      {"PF\n", {Kind::Images}},
      {"Pf\n", {Kind::Images}},
      {"\x76\x2f\x31\x01", {Kind::Images}},
      {"TextArray", {Kind::Volumes}},
      {"NRRD0", {Kind::Volumes}},
      {"\x1f\x8b", {Kind::Volumes}},
      {std::string_view("n+1\0", 4), {Kind::Volumes}, 344},
      {std::string_view("ni1\0", 4), {Kind::Volumes}, 344},
      {std::string_view("n+2\0", 4), {Kind::Volumes}, 4},
      {std::string_view("ni2\0", 4), {Kind::Volumes}, 4},
      {"CDF", grids},
      {"\x89HDF", grids},
      {"ply\n", {Kind::Meshes}},
      {"ply\r", {Kind::Meshes}},
      {"glTF", {Kind::Meshes}},
      {"# dims", {Kind::Vectors}},
  };
  return Magics;
}

/// A header of 80 bytes, a number of triangles, and 50 bytes for each of them.
bool IsBinaryStl(const std::string& p_begin, std::uintmax_t p_size) {
  constexpr std::size_t Header = 80, Triangle = 50;
  std::uint32_t count = 0;
  if (p_begin.size() < Header + sizeof count)
    return false;
  std::memcpy(&count, p_begin.data() + Header, sizeof count); // on machines with little-endian integers
  return count > 0 && p_size == Header + sizeof count + std::uintmax_t{Triangle} * count;
}

/// The first line that is no comment, which ends in LF or CR.
std::string FirstLine(const std::string& p_begin) {
  for (std::size_t at = 0; at < p_begin.size();) {
    const std::size_t end = std::min(p_begin.find_first_of("\r\n", at), p_begin.size());
    const std::string line = p_begin.substr(at, end - at);
    const std::size_t first = line.find_first_not_of(" \t");
    if (first != std::string::npos && line[first] != '#')
      return line.substr(first);
    at = end + 1;
  }
  return {};
}

/// Whether a line is a statement that OBJ files have.
bool LooksLikeObj(const std::string& p_line) {
  static const std::vector<std::string> Statements{"v", "vn", "vt", "f", "o", "g", "s", "l", "mtllib", "usemtl", "p"};
  std::istringstream words(p_line);
  std::string word;
  words >> word;
  return std::find(Statements.begin(), Statements.end(), word) != Statements.end();
}

/// "nx ny x0 dx y0 dy".
bool LooksLikeHeights(const std::string& p_line) {
  std::istringstream line(p_line);
  line.imbue(std::locale::classic());
  int columns = 0, rows = 0;
  double number = 0;
  std::string rest;
  return line >> columns >> rows >> number >> number >> number >> number && !(line >> rest) && columns > 0 && rows > 0;
}

/// The first line of an ESRI ASCII grid: "ncols 5", in any case, or another line of its header.
bool LooksLikeEsriGrid(const std::string& p_line) {
  std::istringstream line(Lower(p_line));
  line.imbue(std::locale::classic());
  std::string word, rest;
  double number = 0;
  line >> word;
  return (word == "ncols" || word == "nrows" || word.rfind("xll", 0) == 0 || word.rfind("yll", 0) == 0) &&
         line >> number && !(line >> rest);
}

/// Words of the first line of a table, without units.
std::vector<std::string> ColumnsOf(std::string p_line) {
  for (char& letter : p_line)
    letter = letter == ',' || letter == ';' || letter == '\t' || letter == '"' ? ' ' : letter;
  std::istringstream words(Lower(p_line));
  std::vector<std::string> columns;
  for (std::string word; words >> word;)
    columns.push_back(word);
  return columns;
}

bool HasVectors(const std::vector<std::string>& p_columns) {
  const auto has = [&](const char* p_name) {
    return std::find(p_columns.begin(), p_columns.end(), p_name) != p_columns.end();
  };
  return (has("u") && has("v")) || (has("dir") && has("speed"));
}

/// By the longest suffix of the formats that the name ends with.
Kinds KindsOfName(const std::string& p_path) {
  const std::string path = Lower(p_path);
  Kinds kinds;
  std::size_t longest = 0;
  for (const Io::Format& format : Io::Formats()) {
    std::istringstream suffixes{std::string(format.suffixes)};
    for (std::string suffix; suffixes >> suffix;) {
      const std::string ending = "." + suffix;
      if (path.size() <= ending.size() || path.compare(path.size() - ending.size(), ending.size(), ending) != 0 ||
          ending.size() < longest)
        continue;
      if (ending.size() > longest)
        kinds.clear();
      longest = ending.size();
      if (std::find(kinds.begin(), kinds.end(), format.kind) == kinds.end())
        kinds.push_back(format.kind);
    }
  }
  return kinds;
}

bool IsText(const std::string& p_begin) {
  return !p_begin.empty() && p_begin.find('\0') == std::string::npos;
}

} // namespace

bool IsRaw(const std::string& p_path) {
  const std::string path = Lower(p_path);
  const auto endsWith = [&](std::string_view p_ending) {
    return path.size() > p_ending.size() && path.compare(path.size() - p_ending.size(), p_ending.size(), p_ending) == 0;
  };
  return endsWith(".raw") || endsWith(".raw.gz");
}

std::vector<Kind> KindsOf(const std::string& p_path, const std::string& p_begin, std::uintmax_t p_size) {
  const std::string begin = p_begin.substr(std::min(p_begin.find_first_not_of(" \t\r\n"), p_begin.size()));
  for (const Magic& magic : Magics())
    if (StartsWith(begin, magic.bytes, magic.offset))
      return magic.kinds;
  const std::string line = FirstLine(begin);
  if (IsBinaryStl(p_begin, p_size) || (StartsWith(begin, "solid") && begin.find("facet") != std::string::npos) ||
      (StartsWith(begin, "{") && KindsOfName(p_path) == Kinds{Kind::Meshes}) || LooksLikeObj(line))
    return {Kind::Meshes};
  const Kinds named = KindsOfName(p_path);
  if (!IsText(p_begin) || StartsWith(begin, "{"))
    return named;
  if (LooksLikeHeights(line) || LooksLikeEsriGrid(line))
    return {Kind::Heights};
  if (HasVectors(ColumnsOf(line)))
    return {Kind::Vectors, Kind::Tables};
  const bool isTable = std::find(named.begin(), named.end(), Kind::Tables) != named.end();
  return isTable ? Kinds{Kind::Tables} : named;
}

} // namespace Vek::Chart::Viewer
