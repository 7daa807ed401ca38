#pragma once

#include "apps/gallery/Loading.h"

#include "library/ObjModel.h"

#include <boost/shared_ptr.hpp>

#include <string>

namespace Vek::Chart::Gallery {

/// Reads an OBJ file of the user's. Throws InputError when it is not a model of triangles or lines that the library
/// reads without a report.
boost::shared_ptr<const Library::ObjModel> ReadModelFile(const std::string& p_path, Loading& p_loading);

} // namespace Vek::Chart::Gallery
