#include "examples/scene/Files.h"

#include "examples/scene/TextTable.h"

#include <filesystem>

namespace Vek::Chart::Gallery {

std::ifstream OpenInput(const std::string& p_path) {
  std::error_code error;
  if (!std::filesystem::exists(p_path, error))
    throw InputError(p_path + ": no such file");
  // A folder opens as a stream and fails only when it is read.
  if (std::filesystem::is_directory(p_path, error))
    throw InputError(p_path + ": expected a file, got a folder");
  std::ifstream stream(p_path, std::ios::binary);
  if (!stream)
    throw InputError(p_path + ": cannot be opened for reading");
  return stream;
}

std::string FileName(const std::string& p_path) {
  return std::filesystem::path(p_path).filename().string();
}

} // namespace Vek::Chart::Gallery
