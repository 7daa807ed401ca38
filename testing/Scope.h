#pragma once

#include "platform/ogl/Rgl.h"

namespace Vek::Test {

using Scope = Chart::Utility::Scoped<Chart::Rgl>;

} // namespace Vek::Test
