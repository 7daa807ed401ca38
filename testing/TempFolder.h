#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <stdlib.h>

namespace Vek::Test {

/// An empty folder of its own for files that a test makes; gone with everything in it at the end.
class TempFolder {
public:
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vek-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
      throw std::runtime_error("Cannot make a folder " + name);
    _path = name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return _path; }
  /// The path of a file in the folder, whether it exists or not.
  std::string File(const std::string& p_name) const { return (_path / p_name).string(); }
  /// Writes a file with these bytes and returns its path.
  std::string Write(const std::string& p_name, const std::string& p_bytes) const {
    std::ofstream(File(p_name), std::ios::binary) << p_bytes;
    return File(p_name);
  }

private:
  std::filesystem::path _path;
};

} // namespace Vek::Test
