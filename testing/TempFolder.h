#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <stdlib.h>

namespace Vek::Chart::Testing {

/// An empty folder below the system's folder for temporary files, for the files of one test. The destructor removes it
/// with everything in it.
///
/// \snippet HostSnippets.cpp ReportCapture
/// \ingroup testing
class TempFolder {
public:
  /// Throws std::runtime_error if the folder cannot be made.
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vek-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
      throw std::runtime_error("Cannot make a folder like " + name);
    _path = name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  /// The path of the folder.
  const std::filesystem::path& Path() const { return _path; }
  /// The path of a file in the folder, whether it exists or not.
  std::string File(const std::string& p_name) const { return (_path / p_name).string(); }
  /// Writes a file with these bytes and returns its path. Throws std::runtime_error if it cannot be written.
  std::string Write(const std::string& p_name, const std::string& p_bytes) const {
    std::ofstream file(File(p_name), std::ios::binary);
    if (!(file << p_bytes).flush())
      throw std::runtime_error("Cannot write " + File(p_name));
    return File(p_name);
  }

private:
  std::filesystem::path _path;
};

} // namespace Vek::Chart::Testing
