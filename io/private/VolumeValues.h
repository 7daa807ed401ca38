#pragma once

#include "io/Volume.h"
#include "io/private/ByteSource.h"
#include "platform/utility/Threads.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Vek::Chart::Io::Private {

/// The types of values in files: those of a volume, in its order, and wider ones.
enum class Stored { UInt8, Int8, UInt16, Int16, UInt32, Int32, Float32, Float64, UInt64, Int64 };

/// How the values of a file are encoded, and what they mean.
struct ValueFormat {
  Stored type = Stored::UInt8;
  bool bigEndian = false;
  double slope = 1; ///< number = slope × value + intercept
  double intercept = 0;

  std::uint64_t Bytes() const;
  /// Whether numbers are not the values themselves.
  bool Scaled() const { return slope != 1 || intercept != 0; }
};

/// Where the values of a volume lie among those of a file that has it at several steps.
struct ValueLayout {
  std::array<std::uint64_t, 3> size{1, 1, 1};
  std::uint64_t channels = 1;
  bool planar = false; ///< channel by channel, instead of voxel by voxel
  std::uint64_t steps = 1;
  bool stepsWithinChannels = false; ///< the first channel of all steps comes first, then the second one
};

/// The number of values of one step. Throws FileError where it exceeds any memory.
std::uint64_t CountValues(const ValueLayout& p_layout, const std::string& p_name);

/// Reads values and appends them to those of a volume, with its sizes, channels and range. Values become numbers of
/// their type; 64-bit integers become doubles, scaled ones floats, or doubles if a float would not do.
///
/// Throws FileError where the source has fewer values, before memory is taken if that is known then.
void ReadValues(ByteSource& p_source, const ValueFormat& p_format, const ValueLayout& p_layout, std::size_t p_step,
                const std::string& p_name, Utility::Threads p_threads, Volume& p_volume);

/// Likewise, of numbers that are written as text, separated by white space and commas. `p_line` is the first one's
/// line.
void ReadTextValues(ByteSource& p_source, const ValueFormat& p_format, const ValueLayout& p_layout, std::size_t p_step,
                    const std::string& p_name, std::size_t p_line, Utility::Threads p_threads, Volume& p_volume);

} // namespace Vek::Chart::Io::Private
