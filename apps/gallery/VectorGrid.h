#pragma once

#include "apps/gallery/Loading.h"
#include "scene/VectorField.h"

#include <istream>
#include <string>

namespace Vek::Chart::Gallery {

/// Reads a grid of vectors: a first line "# dims nx ny nz origin x y z spacing dx dy dz" (the last two may be left out:
/// 0 0 0 and 1 1 1), then a table of comma-separated values with a header that names the columns u, v and w, one row a
/// node, x fastest, then y. Further columns are ignored. Throws InputError for anything else.
Scene::VectorField ReadVectorGrid(std::istream& p_stream, const std::string& p_name);
/// Reads a file likewise.
Scene::VectorField ReadVectorGridFile(const std::string& p_path, Loading& p_loading);

} // namespace Vek::Chart::Gallery
