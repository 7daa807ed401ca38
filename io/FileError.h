#pragma once

#include "io/Export.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Vek::Chart::Io {

/// A file that cannot be read. The text is one line: "path: reason" or "path:line: expected …, got …".
/// \ingroup files
class VEK_IO_API FileError : public std::runtime_error {
public:
  /// "path: reason".
  FileError(const std::string& p_path, const std::string& p_reason);
  /// "path:line: expected …, got "…"". Lines count from 1; what was found is cut after 40 bytes.
  FileError(const std::string& p_path, std::size_t p_line, const std::string& p_expected, std::string_view p_found);
  /// The text of an error of a lower layer.
  explicit FileError(const std::runtime_error& p_error)
      : std::runtime_error(p_error) {}
};

} // namespace Vek::Chart::Io
