#pragma once

#include "library/Export.h"
#include "platform/utility/Threads.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Vek::Chart::Library {

/// A TextArray file as numbers: the value of channel c of voxel (x, y, z) has the index c + channels · (x + size[0] ·
/// (y + size[1] · z)).
/// \ingroup files
struct VEK_LIBRARY_API TextArray {
  /// Bytes, 16-bit integers or floats, as the options want.
  std::variant<std::vector<std::uint8_t>, std::vector<std::uint16_t>, std::vector<float>> values;
  std::array<std::size_t, 3> size{}; ///< voxels along the three axes, the fastest first
  std::size_t channels = 0;          ///< those that were kept
  std::array<float, 2> range{0, 0};  ///< the numbers of 0 and of the largest integer; of floats the extremes
};

/// What of a TextArray file is kept, and how.
/// \ingroup files
struct VEK_LIBRARY_API TextArrayOptions {
  /// The type of the values.
  enum Precision {
    Bits8,   ///< 0 to 255
    Bits16,  ///< 0 to 65535
    Float32, ///< as in the file
  };
  Precision precision = Float32; ///< of the values
  /// The numbers that become 0 and the largest integer; those between are rounded to the nearest integer, those beyond
  /// are clamped, as floats are; NaN becomes 0. Without it: the smallest and the largest finite number of the channels
  /// that are kept.
  std::optional<std::array<float, 2>> range;
  std::vector<std::size_t> channels;            ///< those that are kept, in this order, from 0; all without any
  std::function<bool(double p_share)> progress; ///< called with the share that was read, 0 to 1; false cancels
};

/// A TextArray file that cannot be read. The text is one line: "path: reason" or "path:line: expected …, got "…"".
/// \ingroup files
class VEK_LIBRARY_API TextArrayError : public std::runtime_error {
public:
  /// "path: reason".
  TextArrayError(const std::string& p_path, const std::string& p_reason);
  /// "path:line: expected …, got "…"". Lines count from 1; what was found is cut after 40 bytes.
  TextArrayError(const std::string& p_path, std::uint64_t p_line, const std::string& p_expected,
                 std::string_view p_found);
};

/// Whether a file that begins so is a TextArray file.
/// \ingroup files
VEK_LIBRARY_API bool IsTextArray(std::string_view p_start);

/// Reads a TextArray file, the format of VolumeImage::LoadFromFile, with its values as they are or in a chosen range.
/// Numbers may also be "nan" and "inf".
///
/// Throws TextArrayError for a file that cannot be opened or read, another first word, sizes that are missing or below
/// 1, more numbers than the file has bytes for (before memory is taken), something that is no number, fewer or more
/// numbers than the sizes need, and if the progress cancels; std::invalid_argument for a channel that the file does not
/// have, and for a range that is empty or not finite.
///
/// The result does not depend on the number of threads; files below 1 MiB start none.
///
/// \snippet FileSnippets.cpp ReadTextArray
/// \ingroup files
VEK_LIBRARY_API TextArray ReadTextArray(const std::string& p_path, const TextArrayOptions& p_options = {},
                                        Utility::Threads p_threads = {});
/// Likewise, from a stream; `p_name` takes the place of the path in messages.
/// \ingroup files
VEK_LIBRARY_API TextArray ReadTextArray(std::istream& p_stream, const std::string& p_name,
                                        const TextArrayOptions& p_options = {}, Utility::Threads p_threads = {});

} // namespace Vek::Chart::Library
