#pragma once

#include "library/ObjScene.h"

#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Library::Private {

class ObjWarnings;

/// The path of a file that a file names: relative to its folder, absolute, or, where neither exists, of that name in
/// the folder. Backslashes separate folders, too. Empty where there is no such regular file.
std::string FindBeside(const std::string& p_path, std::string_view p_name);

/// The materials of a file (MTL). Faults are warnings; the line that has one is left out.
std::vector<ObjScene::Material> ReadObjMaterials(const std::string& p_path, ObjWarnings& p_warnings);

} // namespace Vek::Chart::Library::Private
