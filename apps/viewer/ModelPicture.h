#pragma once

#include "apps/gallery/Loading.h"
#include "apps/gallery/Picture.h"

#include <memory>
#include <string>

namespace Vek::Chart::Viewer {

/// One model from an OBJ file of the user's, seen from the front, coloured by height. Models have y up; what the
/// library reports about the file goes to the sink, and the model is shown as far as it was read. Throws InputError
/// when nothing of it can be drawn, Cancelled, and what reading throws.
std::unique_ptr<Gallery::Picture> LoadModelPicture(const std::string& p_path, Gallery::Loading& p_loading);
/// Likewise, a mesh of another format; see Io::ReadMesh. Those of glTF have y up, others z.
std::unique_ptr<Gallery::Picture> LoadMeshPicture(const std::string& p_path, Gallery::Loading& p_loading);

} // namespace Vek::Chart::Viewer
