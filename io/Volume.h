#pragma once

#include "io/Export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Vek::Chart::Io {

/// A volume: values on a grid of voxels, in the type of the file, with the place of the grid in the world. What
/// `ReadVolume` returns.
///
/// Layout: the value of channel c of voxel (i, j, k) has the index c + channels · (i + size[0] · (j + size[1] · k)), so
/// that the channels of a voxel are adjacent and i varies fastest. The centre of the voxel lies at origin + i ·
/// spacing[0] · orientation[0] + j · spacing[1] · orientation[1] + k · spacing[2] · orientation[2]. Along an axis with
/// uneven steps, such as the depths of an ocean, offsets take the place of index · spacing.
///
/// A plain value: any field may be changed. Its functions expect as many values as sizes and channels need.
///
/// \ingroup files
struct VEK_IO_API Volume {
  /// The type of the values, in the order of the alternatives of `Values`.
  enum Type {
    UInt8,   ///< 0 to 255
    Int8,    ///< -128 to 127
    UInt16,  ///< 0 to 65535
    Int16,   ///< -32768 to 32767
    UInt32,  ///< 0 to 2³² - 1
    Int32,   ///< -2³¹ to 2³¹ - 1
    Float32, ///< single precision
    Float64, ///< double precision
  };
  /// The values in one of these types; `std::visit` or `std::get` reach them without a copy.
  using Values = std::variant<std::vector<std::uint8_t>, std::vector<std::int8_t>, std::vector<std::uint16_t>,
                              std::vector<std::int16_t>, std::vector<std::uint32_t>, std::vector<std::int32_t>,
                              std::vector<float>, std::vector<double>>;
  using Vector = std::array<double, 3>; ///< x, y, z

  Values values;                         ///< size[0] · size[1] · size[2] · channels of them
  std::array<std::size_t, 3> size{};     ///< voxels along the three axes, the fastest first
  std::size_t channels = 1;              ///< values of a voxel: 3 for a vector, for example
  std::vector<std::string> channelNames; ///< one for each channel, or empty
  Vector spacing{1, 1, 1};               ///< distance between neighbouring centres along each axis; above 0
  /// For an axis with uneven steps, the distance of each centre from the first one: ascending from 0, with the mean
  /// step in `spacing`. Empty for even steps.
  std::array<std::vector<double>, 3> offsets;
  Vector origin{0, 0, 0}; ///< the centre of voxel (0, 0, 0)
  /// For each axis, the direction in which its index grows: unit vectors, not necessarily perpendicular.
  std::array<Vector, 3> orientation{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  /// The positions along the axes of the whole grid, where this is a region of it; otherwise empty.
  std::array<std::vector<double>, 3> wholeAxes;
  std::array<std::string, 3> axisNames; ///< such as "lon", "lat", "depth"; empty where not known
  std::array<std::string, 3> axisUnits; ///< such as "degrees_east"; empty where not known or the same as `lengthUnit`
  std::string lengthUnit;               ///< of spacing and origin: "mm", for example; empty where not known
  std::string space;                    ///< what x, y and z are: "right-anterior-superior", for example, or empty
  std::array<double, 2> range{0, 0};    ///< smallest and largest present value of all channels; 0, 0 without any
  std::optional<std::array<double, 2>> displayRange; ///< the range that the file suggests for display
  std::optional<double> noData;                      ///< the value that means "no data"; NaN and infinities always do
  std::string unit;                                  ///< of the values, or empty
  std::string name;                                  ///< of the volume, as the file has it, or empty
  std::size_t steps = 1;                             ///< of time in the file, one of which was read
  std::vector<std::string> times;     ///< of all steps: "1987-01-17 12:00"; empty for a file without dates
  std::vector<std::string> variables; ///< all of a file that has several, each of which can be read as a grid

  /// The type of the values.
  Type ValueType() const { return Type(values.index()); }
  /// The number of values.
  std::size_t Count() const;
  /// All values as bytes, in the machine's order, without a copy.
  const void* Data() const;
  /// The bytes of one value: 1, 2, 4 or 8.
  std::size_t ValueBytes() const;
  /// Whether the axes run along x, y and z.
  bool IsAxisAligned() const;
  /// The distance of an index along an axis from the first centre: between centres by linear interpolation.
  double Offset(std::size_t p_axis, double p_index) const;
  /// The centre of a voxel; fractions and positions outside of the grid are allowed.
  Vector Position(double p_i, double p_j, double p_k) const;
  /// A value as a number, NaN where there is no data. Throws std::invalid_argument for a voxel or channel that does not
  /// exist.
  double Value(std::size_t p_i, std::size_t p_j, std::size_t p_k, std::size_t p_channel = 0) const;
  /// The values of a channel, rounded to float, NaN where there is no data. Throws std::invalid_argument for a channel
  /// that does not exist.
  std::vector<float> Floats(std::size_t p_channel = 0) const;
  /// The smallest and the largest of the values that are present; {0, 0} without any.
  std::array<double, 2> FindRange() const;
};

} // namespace Vek::Chart::Io
