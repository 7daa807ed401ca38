#pragma once

#include "io/private/NrrdHeader.h"
#include "io/private/Words.h"

#include <optional>
#include <string>
#include <string_view>

// The words that NRRD headers are made of, by the "Definition of NRRD File Format" (G. Kindlmann, 2005).

namespace Vek::Chart::Io::Private {

/// In small letters, without blanks: fields are also written without theirs.
std::string Keyword(std::string_view p_text);
/// The next word of a text, which it takes: up to a blank, or in double quotes, or a vector in parentheses.
std::string_view TakeWord(std::string_view& p_text);
std::string Unquoted(std::string_view p_word);

/// What the keyword of a type, an encoding or a space means; none for another keyword.
std::optional<Stored> NrrdType(const std::string& p_keyword);
std::optional<NrrdHeader::Encoding> NrrdEncoding(const std::string& p_keyword);
struct NrrdSpace {
  std::string_view name;
  std::size_t dimension;
};
std::optional<NrrdSpace> FindNrrdSpace(const std::string& p_keyword);
/// What an axis with the keyword of a kind is.
NrrdHeader::Role NrrdRole(const std::string& p_keyword);

} // namespace Vek::Chart::Io::Private
