#pragma once

#include "io/private/ByteSource.h"
#include "io/private/VolumeValues.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Vek::Chart::Io::Private {

/// The header of an NRRD file.
struct NrrdHeader {
  using Vector = Volume::Vector;
  enum class Encoding { Raw, Text, Hex, Gzip };
  enum class Role { Unknown, Grid, Components, Steps }; ///< what an axis is

  struct Axis {
    std::uint64_t size = 0;
    Role role = Role::Unknown;
    bool nodes = false;              ///< the samples are nodes, not cells
    std::optional<double> spacing;   ///< along the axis
    std::optional<double> least;     ///< position of its start
    std::optional<double> most;      ///< position of its end
    std::optional<Vector> direction; ///< from one sample to the next
    std::string unit;
  };

  ValueFormat format;
  Encoding encoding = Encoding::Raw;
  std::vector<Axis> axes;
  std::size_t spaceDimension = 0; ///< 0 without space
  std::string space;
  Vector origin{0, 0, 0};
  std::string spaceUnit;
  std::string sampleUnit;
  std::string content;
  std::uint64_t lineSkip = 0;
  std::int64_t byteSkip = 0;          ///< -1: the values are the last bytes of the file
  std::vector<std::string> dataFiles; ///< empty if the values follow
  std::size_t lines = 0;              ///< of the header

  /// Reads a header up to the empty line behind it, or up to the end of the file. Throws FileError with the line of a
  /// fault.
  NrrdHeader(PeekSource& p_source, const std::string& p_name);
};

} // namespace Vek::Chart::Io::Private
