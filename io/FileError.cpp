#include "io/FileError.h"

#include "io/private/Words.h"

namespace Vek::Chart::Io {

FileError::FileError(const std::string& p_path, const std::string& p_reason)
    : std::runtime_error(p_path + ": " + p_reason) {}

FileError::FileError(const std::string& p_path, std::size_t p_line, const std::string& p_expected,
                     std::string_view p_found)
    : std::runtime_error(p_path + ":" + std::to_string(p_line) + ": expected " + p_expected + ", got \"" +
                         Private::Printable(p_found) + "\"") {}

} // namespace Vek::Chart::Io
