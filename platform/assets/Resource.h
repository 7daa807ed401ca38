#pragma once

#include "platform/Export.h"
#include "platform/file/FilePath.h"

#include <string>

namespace Vek::Chart::Assets {

/// Finds the files of an application's resources by name. A host with another order of files overrides the look-up.
class VEK_PLATFORM_API Resource {
public:
  /// Resources in a folder; an empty path is the current folder.
  explicit Resource(const vekfile::filepath& p_folder);
  virtual ~Resource();

  /// The file of the image of that name: the folder, the name and ".png". Whether there is such a file is not looked
  /// at.
  virtual vekfile::filepath ImageFile(const std::string& p_name) const;

private:
  vekfile::filepath _folder;
};

} // namespace Vek::Chart::Assets
