#pragma once

#include "apps/gallery/Picture.h"

#include <filesystem>

namespace Vek::Chart::Gallery {

/// The folder with the files that the pictures show: data/, symbols/ and sprites/. It is `p_chosen` where that is not
/// empty. Otherwise it is share/vek-chart-library below the nearest folder above the program `p_program` that has it:
/// <prefix>/share/vek-chart-library for an installed program, and a link in the build tree for one just built, so that
/// both may be moved. Throws std::runtime_error with all the places that it looked at.
std::filesystem::path DataFolder(const std::filesystem::path& p_chosen, const std::filesystem::path& p_program);

/// The program that runs, as it was started.
std::filesystem::path ThisProgram();

/// Names the files of such a folder where `p_inputs` names none.
void FillFromFolder(Inputs& p_inputs, const std::filesystem::path& p_folder);

} // namespace Vek::Chart::Gallery
