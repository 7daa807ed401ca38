#pragma once

#include "platform/file/FilePath.h"

#include <cstdint>
#include <functional>
#include <iosfwd>

namespace Vek::Chart::Library::Private {

// The loader of TextArray files; VolumeImage::LoadFromFile describes the format and the reports.

/// Makes a volume of these extents and returns its voxels, one byte each, which stay valid during the load.
using NewVolume = std::function<unsigned char*(std::uint64_t p_size0, std::uint64_t p_size1, std::uint64_t p_size2)>;

/// Calls `p_newVolume` once the extents are accepted, and not at all when they are refused.
void LoadTextArray(const vekfile::filepath& p_filename, const NewVolume& p_newVolume);
/// As above, from a stream.
void LoadTextArray(std::istream& p_stream, const NewVolume& p_newVolume);

} // namespace Vek::Chart::Library::Private
