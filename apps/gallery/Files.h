#pragma once

#include <string>

namespace Vek::Chart::Gallery {

/// The last part of a path.
std::string FileName(const std::string& p_path);

} // namespace Vek::Chart::Gallery
