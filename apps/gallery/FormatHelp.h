#pragma once

#include <string>

namespace Vek::Chart::Gallery {

/// The formats of files that the libraries of this build read, as the last part of a help text.
std::string FormatHelp();

} // namespace Vek::Chart::Gallery
