#include "io/private/NrrdWords.h"

#include <algorithm>
#include <utility>

namespace Vek::Chart::Io::Private {

namespace {

// Keywords have no blanks.
struct TypeName {
  std::string_view name;
  Stored type;
};
constexpr TypeName TypeNames[] = {
    {"signedchar", Stored::Int8},
    {"int8", Stored::Int8},
    {"int8_t", Stored::Int8},
    {"uchar", Stored::UInt8},
    {"unsignedchar", Stored::UInt8},
    {"uint8", Stored::UInt8},
    {"uint8_t", Stored::UInt8},
    {"short", Stored::Int16},
    {"shortint", Stored::Int16},
    {"signedshort", Stored::Int16},
    {"signedshortint", Stored::Int16},
    {"int16", Stored::Int16},
    {"int16_t", Stored::Int16},
    {"ushort", Stored::UInt16},
    {"unsignedshort", Stored::UInt16},
    {"unsignedshortint", Stored::UInt16},
    {"uint16", Stored::UInt16},
    {"uint16_t", Stored::UInt16},
    {"int", Stored::Int32},
    {"signedint", Stored::Int32},
    {"int32", Stored::Int32},
    {"int32_t", Stored::Int32},
    {"uint", Stored::UInt32},
    {"unsignedint", Stored::UInt32},
    {"uint32", Stored::UInt32},
    {"uint32_t", Stored::UInt32},
    {"longlong", Stored::Int64},
    {"longlongint", Stored::Int64},
    {"signedlonglong", Stored::Int64},
    {"signedlonglongint", Stored::Int64},
    {"int64", Stored::Int64},
    {"int64_t", Stored::Int64},
    {"ulonglong", Stored::UInt64},
    {"unsignedlonglong", Stored::UInt64},
    {"unsignedlonglongint", Stored::UInt64},
    {"uint64", Stored::UInt64},
    {"uint64_t", Stored::UInt64},
    {"float", Stored::Float32},
    {"double", Stored::Float64},
};

constexpr std::pair<std::string_view, NrrdHeader::Encoding> EncodingNames[] = {
    {"raw", NrrdHeader::Encoding::Raw},  {"ascii", NrrdHeader::Encoding::Text}, {"text", NrrdHeader::Encoding::Text},
    {"txt", NrrdHeader::Encoding::Text}, {"hex", NrrdHeader::Encoding::Hex},    {"gzip", NrrdHeader::Encoding::Gzip},
    {"gz", NrrdHeader::Encoding::Gzip},
};

struct SpaceName {
  std::string_view shortName;
  NrrdSpace space;
};
constexpr SpaceName SpaceNames[] = {
    {"ras", {"right-anterior-superior", 3}},
    {"las", {"left-anterior-superior", 3}},
    {"lps", {"left-posterior-superior", 3}},
    {"rast", {"right-anterior-superior-time", 4}},
    {"last", {"left-anterior-superior-time", 4}},
    {"lpst", {"left-posterior-superior-time", 4}},
    {"", {"scanner-xyz", 3}},
    {"", {"scanner-xyz-time", 4}},
    {"", {"3d-right-handed", 3}},
    {"", {"3d-left-handed", 3}},
    {"", {"3d-right-handed-time", 4}},
    {"", {"3d-left-handed-time", 4}},
};

} // namespace

std::string Keyword(std::string_view p_text) {
  std::string word;
  for (const char c : p_text)
    if (c != ' ' && c != '\t')
      word += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  return word;
}

std::string_view TakeWord(std::string_view& p_text) {
  p_text = Trimmed(p_text);
  if (p_text.empty())
    return {};
  const char closing = p_text.front() == '"' ? '"' : p_text.front() == '(' ? ')' : ' ';
  std::size_t end = closing == ' ' ? p_text.find_first_of(" \t") : p_text.find(closing, 1);
  end = end == std::string_view::npos ? p_text.size() : end + (closing == ' ' ? 0 : 1);
  const std::string_view word = p_text.substr(0, end);
  p_text.remove_prefix(end);
  return word;
}

std::string Unquoted(std::string_view p_word) {
  const bool quoted = p_word.size() >= 2 && p_word.front() == '"' && p_word.back() == '"';
  return std::string(quoted ? p_word.substr(1, p_word.size() - 2) : p_word);
}

std::optional<Stored> NrrdType(const std::string& p_keyword) {
  for (const TypeName& row : TypeNames)
    if (row.name == p_keyword)
      return row.type;
  return {};
}

std::optional<NrrdHeader::Encoding> NrrdEncoding(const std::string& p_keyword) {
  for (const auto& [name, encoding] : EncodingNames)
    if (name == p_keyword)
      return encoding;
  return {};
}

std::optional<NrrdSpace> FindNrrdSpace(const std::string& p_keyword) {
  for (const SpaceName& row : SpaceNames)
    if (row.space.name == p_keyword || (!row.shortName.empty() && row.shortName == p_keyword))
      return row.space;
  return {};
}

NrrdHeader::Role NrrdRole(const std::string& p_keyword) {
  constexpr std::string_view Steps[] = {"time", "list"};
  constexpr std::string_view Nothing[] = {"???", "none", "stub", "scalar"};
  if (p_keyword == "domain" || p_keyword == "space")
    return NrrdHeader::Role::Grid;
  if (std::find(std::begin(Steps), std::end(Steps), p_keyword) != std::end(Steps))
    return NrrdHeader::Role::Steps;
  if (std::find(std::begin(Nothing), std::end(Nothing), p_keyword) != std::end(Nothing))
    return NrrdHeader::Role::Unknown;
  return NrrdHeader::Role::Components; // vectors, colours, matrices
}

} // namespace Vek::Chart::Io::Private
