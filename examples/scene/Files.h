#pragma once

#include <fstream>
#include <string>

namespace Vek::Chart::Gallery {

/// Opens a file for reading; throws InputError "file: cannot be opened …" when it is missing, a folder, or not
/// readable.
std::ifstream OpenInput(const std::string& p_path);

/// The last part of a path.
std::string FileName(const std::string& p_path);

} // namespace Vek::Chart::Gallery
