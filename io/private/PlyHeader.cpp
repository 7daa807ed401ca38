#include "io/private/PlyHeader.h"

#include "io/private/Words.h"

#include <algorithm>

namespace Vek::Chart::Io::Private {

namespace {

struct NamedType {
  std::string_view name;
  PlyType type;
};
constexpr NamedType Types[] = {
    {"char", {PlyType::Signed, 1}},     {"int8", {PlyType::Signed, 1}},     {"uchar", {PlyType::Unsigned, 1}},
    {"uint8", {PlyType::Unsigned, 1}},  {"short", {PlyType::Signed, 2}},    {"int16", {PlyType::Signed, 2}},
    {"ushort", {PlyType::Unsigned, 2}}, {"uint16", {PlyType::Unsigned, 2}}, {"int", {PlyType::Signed, 4}},
    {"int32", {PlyType::Signed, 4}},    {"uint", {PlyType::Unsigned, 4}},   {"uint32", {PlyType::Unsigned, 4}},
    {"int64", {PlyType::Signed, 8}},    {"uint64", {PlyType::Unsigned, 8}}, {"float", {PlyType::Float, 4}},
    {"float32", {PlyType::Float, 4}},   {"double", {PlyType::Float, 8}},    {"float64", {PlyType::Float, 8}},
};

PlyType ReadType(Words& p_words) {
  const std::string_view word = p_words.Next();
  for (const NamedType& type : Types)
    if (type.name == word)
      return type.type;
  p_words.Fail("a type of numbers");
}

PlyHeader::Encoding ReadEncoding(Words& p_words) {
  constexpr std::string_view Names[] = {"ascii", "binary_little_endian", "binary_big_endian"};
  const auto name = std::find(std::begin(Names), std::end(Names), p_words.Next());
  if (name == std::end(Names))
    p_words.Fail("ascii, binary_little_endian or binary_big_endian");
  p_words.Next(); // the version
  return static_cast<PlyHeader::Encoding>(name - std::begin(Names));
}

std::uint64_t ReadCount(Words& p_words) {
  const std::optional<std::uint64_t> count = Parsed<std::uint64_t>(p_words.Next());
  if (!count)
    p_words.Fail("a number of elements");
  return *count;
}

PlyProperty ReadProperty(Words& p_words) {
  PlyProperty property;
  property.isList = p_words.Peek() == "list";
  if (property.isList) {
    p_words.Next();
    property.countType = ReadType(p_words);
    if (property.countType.kind == PlyType::Float)
      p_words.Fail("a type of integers");
  }
  property.type = ReadType(p_words);
  property.name = p_words.Next();
  return property;
}

bool IsComment(std::string_view p_keyword) {
  return p_keyword == "comment" || p_keyword == "obj_info";
}

void ReadComment(Words& p_words, PlyHeader& p_header) {
  p_words.Next();
  const std::string_view rest = p_words.RestOfLine();
  constexpr std::string_view TextureFile = "TextureFile ";
  if (rest.substr(0, TextureFile.size()) == TextureFile)
    p_header.textureFile = rest.substr(TextureFile.size());
}

/// Moves behind the line end of the last line of the header: what is read as one elsewhere may be data.
std::size_t DataStart(std::string_view p_file, std::size_t p_at) {
  const std::size_t firstEnd = p_file.find_first_of("\n\r"); // behind "ply"
  const bool twoBytes = p_file.substr(firstEnd, 2) == "\r\n";
  const std::size_t end = std::min(p_file.find_first_of("\n\r", p_at), p_file.size());
  return std::min(end + (twoBytes && p_file.substr(end, 2) == "\r\n" ? 2 : 1), p_file.size());
}

} // namespace

bool IsPly(std::string_view p_file) {
  return p_file.size() > 3 && p_file.substr(0, 3) == "ply" && IsBlank(p_file[3]);
}

PlyHeader ReadPlyHeader(std::string_view p_file, const std::string& p_name) {
  PlyHeader header;
  Words words(p_file, p_name);
  words.Take("ply");
  while (IsComment(words.Peek()))
    ReadComment(words, header);
  words.Take("format");
  header.encoding = ReadEncoding(words);
  for (std::string_view keyword; (keyword = words.Peek()) != "end_header";) {
    if (IsComment(keyword)) {
      ReadComment(words, header);
      continue;
    }
    words.Next();
    if (keyword == "element") {
      PlyElement& element = header.elements.emplace_back();
      element.name = words.Next();
      element.count = ReadCount(words);
    } else if (keyword == "property" && !header.elements.empty()) {
      header.elements.back().properties.push_back(ReadProperty(words));
    } else if (header.elements.empty() && keyword != "property" && !keyword.empty()) {
      words.RestOfLine(); // a comment of old versions of Blender, which left the word out
      ++header.skippedLines;
    } else {
      words.Fail("element, property, comment, obj_info or end_header");
    }
  }
  words.Next();
  header.size = DataStart(p_file, words.Position());
  return header;
}

} // namespace Vek::Chart::Io::Private
