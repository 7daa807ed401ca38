#pragma once

#include "platform/Export.h"
#include "platform/debug/Logger.h"

namespace Vek::Chart::Utility {

/// The logger that receives all reports of the library.
VEK_PLATFORM_API vekdebug::logger& GetLogger();

} // namespace Vek::Chart::Utility
