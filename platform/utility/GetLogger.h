#pragma once

#include "platform/Export.h"
#include "platform/debug/Logger.h"

namespace Vek::Chart::Utility {

/// The logger that the whole library reports to.
VEK_PLATFORM_API vekdebug::logger& GetLogger();

} // namespace Vek::Chart::Utility
