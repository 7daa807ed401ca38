#pragma once

#include "apps/parallel/FieldOptions.h"

#include "parallel/Compositor.h"

#include <QImage>

namespace Vek::Chart::Apps {

/// Draws a field of a NetCDF file, of which each process reads and draws a block. Collective; the image is that of
/// process 0. Throws Parallel::ProcessError in all processes if one fails.
QImage DrawField(const Parallel::Compositor& p_compositor, const FieldOptions& p_options);

} // namespace Vek::Chart::Apps
