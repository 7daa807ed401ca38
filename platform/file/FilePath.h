#pragma once

#include "platform/Export.h"

#include <string>

namespace vekfile {

/// A path of a file or folder, as the bytes that the operating system takes (usually UTF-8).
class VEK_PLATFORM_API filepath {
public:
  /// An empty, invalid path.
  filepath() = default;
  ///@{
  /// The path of these bytes; a null pointer is the empty path.
  filepath(const std::string& p_path); // NOLINT: implicit, so that strings serve as paths
  filepath(const char* p_path);        // NOLINT: as above
  ///@}

  /// The bytes.
  const std::string& str() const { return _path; }
  /// True when the path is not empty and holds no zero byte.
  bool valid() const;

  /// Joins a directory and a name by exactly one separator. If one is empty, the result is the other.
  friend VEK_PLATFORM_API filepath operator+(const filepath& p_directory, const filepath& p_name);
  ///@{
  /// Compares byte by byte; "a/b" and "a//b" differ.
  friend bool operator==(const filepath& p_a, const filepath& p_b) { return p_a._path == p_b._path; }
  friend bool operator!=(const filepath& p_a, const filepath& p_b) { return !(p_a == p_b); }
  ///@}

private:
  std::string _path;
};

/// True when the path is valid and names a file or folder that exists and is accessible.
VEK_PLATFORM_API bool fileexists(const filepath& p_path);

} // namespace vekfile
