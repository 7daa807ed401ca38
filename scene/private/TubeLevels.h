#pragma once

#include "scene/TubeMesh.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The stations of lines, which shaders make tubes or ribbons of, in blocks of segments. A block is drawn with each
/// segment, or with longer ones in place of several; it has the error of each of these levels.
///
/// Memory: 36 bytes a station, and about 6 for the blocks.
class TubeLevels {
public:
  using Vector = Types::Vector3_Base<double>;
  static constexpr std::size_t BlockSize = 32; ///< segments
  static constexpr std::size_t Coarser = 9;    ///< levels with longer segments
  /// The segments that one of each level takes the place of.
  static constexpr std::array<std::uint32_t, Coarser + 1> Steps{1, 2, 3, 4, 6, 8, 12, 16, 24, 32};
  /// An error for each of them.
  using Errors = std::array<float, Coarser>;

  /// As shaders read it.
  struct Station {
    std::array<float, 3> position{};
    float radius = 0;
    std::array<float, 4> rotation{}; ///< of the frame of the section: a quaternion, the real part last
  };
  /// Segments of a line, up to BlockSize.
  struct Block {
    std::uint32_t first = 0; ///< station
    std::uint32_t line = 0;
    std::uint32_t segments = 0;
    float length = 0;
    Vector center; ///< of a sphere around the block
    double reach = 0;
    double radius = 0; ///< the largest one of the tube
    Vector axis;       ///< of a cone that has all directions of the line
    double spread = 0; ///< its half angle, in radians
    Errors errors{};   ///< in units of the positions: the largest distance of a station from the tube that is drawn
  };
  /// An end of a piece of a line.
  struct Cap {
    std::uint32_t station = 0;
    std::uint32_t line = 0;
    bool isStart = false;
  };
  /// The errors of values: as they are, and of their logarithms.
  struct ValueErrors {
    Errors linear{}, logarithmic{};
  };

  /// Adds a line; its points are counted in all lines. Those that a tube leaves out (see `TubeMesh`) have no station.
  void Add(const std::vector<TubeMesh::Point>& p_line);
  /// Adds all of these, on all cores; the number of threads does not change the result.
  void Add(const std::vector<std::vector<TubeMesh::Point>>& p_lines);

  const std::vector<Station>& Stations() const { return _stations; }
  const std::vector<Block>& Blocks() const { return _blocks; }
  const std::vector<Cap>& Caps() const { return _caps; }
  std::uint32_t LineCount() const { return _lines; }
  /// The point of each station.
  const std::vector<std::uint32_t>& Points() const { return _points; }

  /// The errors of each block, for the values of stations as they are stored in GPU memory.
  std::vector<ValueErrors> ErrorsOf(const std::vector<float>& p_values) const;
  /// The station that lies nearest to a position, of those that a drawn segment may have in place of the one it ends
  /// with.
  std::uint32_t Nearest(std::uint32_t p_station, const Vector& p_position) const;

private:
  void Append(const TubeLevels& p_lines);
  void AddBlock(std::uint32_t p_first, std::uint32_t p_segments);

  std::vector<Station> _stations;
  std::vector<std::uint32_t> _points;
  std::vector<Block> _blocks;
  std::vector<Cap> _caps;
  std::uint32_t _lines = 0, _pointCount = 0;
};

} // namespace Vek::Chart::Scene::Private
