#pragma once

#include "examples/scene/Instances.h"

#include "library/SymbolRegistry.h"

#include <string>

namespace Vek::Chart::Gallery {

/// Loads an OBJ file of the user's into the registry. Throws InputError when it is not a model of triangles or lines
/// that the library reads without a report.
Mesh LoadModelFile(Library::SymbolRegistry& p_registry, const std::string& p_path);

} // namespace Vek::Chart::Gallery
