#include "apps/gallery/Files.h"

#include <filesystem>

namespace Vek::Chart::Gallery {

std::string FileName(const std::string& p_path) {
  return std::filesystem::path(p_path).filename().string();
}

} // namespace Vek::Chart::Gallery
