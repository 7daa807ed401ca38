#pragma once

#include "platform/file/FilePath.h"
#include "platform/utility/Threads.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <vector>

namespace Vek::Chart::Library::Private {

// The loader of TextArray files; VolumeImage::LoadFromFile describes the format and the reports.

/// Voxels of one byte each.
struct TextVolume {
  std::array<std::uint64_t, 3> sizes{};
  std::vector<unsigned char> voxels;
};

/// None when the extents are refused.
std::optional<TextVolume> LoadTextArray(const vekfile::filepath& p_filename, Utility::Threads p_threads);
/// As above, from a stream.
std::optional<TextVolume> LoadTextArray(std::istream& p_stream, Utility::Threads p_threads);

} // namespace Vek::Chart::Library::Private
