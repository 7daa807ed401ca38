#pragma once

#include "io/Export.h"
#include "io/Volume.h"
#include "library/VoxelTexture.h"

namespace Vek::Chart::Io {

/// A 3-D texture of a volume: values of 8 and 16 bits without sign and floats as they are, without a copy of them; all
/// others as floats, which hold integers up to 2^24 exactly. Values that mean "no data" are uploaded as they are.
///
/// Throws std::invalid_argument for more than four channels, and for fewer values than the sizes need; see
/// Library::VoxelTexture for what is reported.
///
/// \ingroup files
VEK_IO_API Library::VoxelTexture MakeTexture(const Volume& p_volume, Utility::Scoped<Rgl>& p_gl);

} // namespace Vek::Chart::Io
