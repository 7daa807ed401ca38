#include "io/SampleFile.h"

#include "io/FileError.h"

#include <filesystem>

#include <dlfcn.h>

namespace Vek::Chart::Io {

namespace fs = std::filesystem;

std::string SampleFile(const std::string& p_name) {
  Dl_info loaded{};
  std::error_code error;
  fs::path folder;
  if (dladdr(reinterpret_cast<const void*>(&SampleFile), &loaded) != 0 && loaded.dli_fname != nullptr)
    folder = fs::weakly_canonical(loaded.dli_fname, error);
  while (folder.has_relative_path()) {
    folder = folder.parent_path();
    const fs::path file = folder / VEK_DATA_FOLDER / "data" / p_name;
    if (fs::is_regular_file(file, error))
      return file.string();
  }
  throw FileError(p_name, "no such sample; the package vek-chart-data has them");
}

} // namespace Vek::Chart::Io
