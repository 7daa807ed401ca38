#pragma once

#include "io/ReadImage.h"
#include "io/private/ByteSource.h"

#include <string>
#include <string_view>

namespace Vek::Chart::Io::Private {

// Readers of images, one a format; see ReadImage.

Image ReadRadiance(std::string_view p_file, const std::string& p_name, const ImageOptions& p_options);
Image ReadPfm(PeekSource& p_source, const std::string& p_name);
/// Throws FileError in builds without OpenEXR.
Image ReadOpenExr(std::string_view p_file, const std::string& p_name, const ImageOptions& p_options);

} // namespace Vek::Chart::Io::Private
