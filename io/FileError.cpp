#include "io/FileError.h"

namespace Vek::Chart::Io {

namespace {

/// Without control characters, which would change the line that the message is printed in.
std::string Printable(std::string_view p_found) {
  constexpr std::size_t Longest = 40;
  std::string text(p_found.substr(0, Longest));
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ')
      c = ' ';
  return p_found.size() <= Longest ? text : text + "...";
}

} // namespace

FileError::FileError(const std::string& p_path, const std::string& p_reason)
    : std::runtime_error(p_path + ": " + p_reason) {}

FileError::FileError(const std::string& p_path, std::size_t p_line, const std::string& p_expected,
                     std::string_view p_found)
    : std::runtime_error(p_path + ":" + std::to_string(p_line) + ": expected " + p_expected + ", got \"" +
                         Printable(p_found) + "\"") {}

} // namespace Vek::Chart::Io
