#pragma once

#include "platform/Export.h"
#include "platform/file/FilePath.h"

#include <string>

namespace Vek::Chart::Assets {

/// Finds the resource files of an application by name. Hosts with another folder layout override the look-up.
class VEK_PLATFORM_API Resource {
public:
  /// Looks in a folder; an empty path is the current folder.
  explicit Resource(const vekfile::filepath& p_folder);
  virtual ~Resource();

  /// The path of an image: the folder, the name and ".png". The file need not exist.
  virtual vekfile::filepath ImageFile(const std::string& p_name) const;

private:
  vekfile::filepath _folder;
};

} // namespace Vek::Chart::Assets
