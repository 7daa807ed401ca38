#pragma once

#include "io/Formats.h"

#include <algorithm>
#include <string_view>

namespace Vek::Test {

/// Whether this build has the library that reads files of a format.
inline bool Reads(std::string_view p_format) {
  const auto& formats = Chart::Io::Formats();
  return std::any_of(formats.begin(), formats.end(),
                     [&](const Chart::Io::Format& p_row) { return p_row.name == p_format && p_row.isAvailable; });
}

} // namespace Vek::Test
