#pragma once

#include "library/Export.h"
#include "platform/utility/VersionNo.h"

namespace Vek::Chart::Library {

/// The version of the loaded library, which may be newer than the headers that a program was built with.
///
/// \snippet HostSnippets.cpp Version
/// \ingroup host
VEK_LIBRARY_API Utility::VersionNo Version();

} // namespace Vek::Chart::Library
