#include "platform/file/FilePath.h"

#include <filesystem>
#include <system_error>

namespace vekfile {

filepath::filepath(const std::string& p_path)
    : _path(p_path) {}

filepath::filepath(const char* p_path)
    : _path(p_path == nullptr ? "" : p_path) {}

bool filepath::valid() const {
  return !_path.empty() && _path.find('\0') == std::string::npos;
}

filepath operator+(const filepath& p_directory, const filepath& p_name) {
  if (p_directory._path.empty())
    return p_name;
  const std::size_t first = p_name._path.find_first_not_of('/');
  if (first == std::string::npos) // empty, too
    return p_directory;
  const std::size_t end = p_directory._path.find_last_not_of('/') + 1; // 0 for the root folder
  return p_directory._path.substr(0, end) + '/' + p_name._path.substr(first);
}

bool fileexists(const filepath& p_path) {
  std::error_code error;
  return p_path.valid() && std::filesystem::exists(p_path.str(), error);
}

} // namespace vekfile
