#pragma once

#include "apps/gallery/Loading.h"
#include "apps/gallery/Picture.h"
#include "apps/viewer/ShownPicture.h"

#include <QStringList>

#include <string>

namespace Vek::Chart::Viewer {

/// The kinds of files that can be shown, told apart by how they begin and, where that says nothing, by their names.
enum class FileKind : int { Model, Mesh, Picture, Volume, Wind, Quakes, Flow, Unknown };

/// The kind of a file of that name that begins with these bytes.
FileKind KindOf(const std::string& p_name, const std::string& p_begin);

/// The picture that shows a file of the user's, with all else as `p_inputs` has it. Reads the beginning of the file.
/// Throws InputError when it cannot, or when that is of no known kind.
ShownPicture FilePicture(const std::string& p_path, const Gallery::Inputs& p_inputs, Gallery::Loading& p_loading);

/// What a dialog that opens files offers.
QStringList FileFilters();

} // namespace Vek::Chart::Viewer
