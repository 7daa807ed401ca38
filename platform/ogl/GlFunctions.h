#pragma once

#include "platform/Export.h"
#include "platform/ogl/GlTypes.h"

namespace Vek::Chart::Ogl {

/// All GL and GLU functions that the project calls, as pointers. A table is filled with the native functions
/// (`NativeGl`), with recording ones (`RecordingGl`), or by a host engine with its own. `Rgl` reports pointers that are
/// null.
struct GlFunctions {
#define VEK_GL(p_result, p_name, p_parameters, p_arguments) p_result(*p_name) p_parameters = nullptr;
#include "platform/ogl/GlFunctionList.h"
};

/// The functions of the GL context that is current at each call. A function that this context lacks is reported by name
/// at its first call and does nothing.
VEK_PLATFORM_API const GlFunctions& NativeGl();

} // namespace Vek::Chart::Ogl
