#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Vek::Chart::Library::Private {

/// The first 40 bytes of something in a file, without control characters, which would change the line that a message is
/// printed in.
inline std::string Printable(std::string_view p_found) {
  constexpr std::size_t Longest = 40;
  std::string text(p_found.substr(0, Longest));
  std::replace_if(
      text.begin(), text.end(), [](unsigned char p_c) { return p_c < ' '; }, ' ');
  return p_found.size() <= Longest ? text : text + "...";
}

} // namespace Vek::Chart::Library::Private
