#include "apps/gallery/DataFolder.h"

#include <sys/auxv.h>

#include <stdexcept>

namespace Vek::Chart::Gallery {

namespace fs = std::filesystem;

namespace {

bool IsDataFolder(const fs::path& p_folder) {
  std::error_code error;
  return fs::is_directory(p_folder / "data", error) && fs::is_directory(p_folder / "symbols", error) &&
         fs::is_directory(p_folder / "sprites", error);
}

/// A file that belongs to the gallery, and the input that it is for.
struct Shipped {
  std::string Inputs::*input;
  const char* file;
};

constexpr Shipped ShippedFiles[] = {
    {&Inputs::winds, "data/noaa_navy_winds_1987-01.csv"},
    {&Inputs::relief, "data/etopo60.txt"},
    {&Inputs::quakes, "data/earthquakes.csv"},
    {&Inputs::salinity, "data/ocean_salinity.txt"},
    {&Inputs::head, "data/ct_head.nrrd"},
    {&Inputs::hdr, "data/venice_sunset.hdr"},
    {&Inputs::symbols, "symbols"},
    {&Inputs::sprites, "sprites"},
};

} // namespace

fs::path DataFolder(const fs::path& p_chosen, const fs::path& p_program) {
  constexpr const char* Needed = "no folder with data/, symbols/ and sprites/";
  if (!p_chosen.empty()) {
    if (!IsDataFolder(p_chosen))
      throw std::runtime_error(p_chosen.string() + ": " + Needed);
    return p_chosen;
  }
  std::error_code error;
  const fs::path program = fs::weakly_canonical(p_program, error);
  std::string places;
  for (fs::path folder = program; folder != folder.parent_path();) {
    folder = folder.parent_path();
    const fs::path candidate = folder / VEK_DATA_FOLDER;
    if (IsDataFolder(candidate))
      return candidate;
    places += (places.empty() ? "" : ", ") + candidate.string();
  }
  throw std::runtime_error(std::string(Needed) + " was found; looked at " + places +
                           "; --data FOLDER names one elsewhere");
}

fs::path ThisProgram() {
  // The name that the kernel was given holds in a chroot without /proc as well.
  const auto name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  return name == nullptr ? fs::path() : fs::absolute(name);
}

void FillFromFolder(Inputs& p_inputs, const fs::path& p_folder) {
  p_inputs.folder = (p_folder / "").string();
  for (const auto& [input, file] : ShippedFiles)
    if ((p_inputs.*input).empty())
      p_inputs.*input = (p_folder / file).string();
}

} // namespace Vek::Chart::Gallery
