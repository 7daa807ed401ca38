#pragma once

#include "io/Export.h"

#include <array>
#include <cstddef>

namespace Vek::Chart::Io {

/// A grid divided into blocks: as many as processes, along the axes that make them most like cubes.
///
/// The number of blocks is divided into its prime factors; each one, the largest first, divides the axis along which
/// the blocks are longest. An axis with fewer cells than blocks along it leaves some blocks empty.
///
/// \snippet ParallelSnippets.cpp GridSplit
/// \ingroup files
class VEK_IO_API GridSplit {
public:
  using Sizes = std::array<std::size_t, 3>; ///< along x, y and z

  /// Cells from `first` on along each axis.
  struct Block {
    Sizes first{}; ///< the first cell
    Sizes count{}; ///< cells; 0 along an axis for an empty block

    /// Whether there is no cell.
    bool Empty() const { return count[0] == 0 || count[1] == 0 || count[2] == 0; }
  };

  /// Divides a grid of so many cells into `p_blocks`, at least 1.
  GridSplit(const Sizes& p_cells, int p_blocks);

  /// Blocks along each axis.
  const Sizes& Blocks() const { return _blocks; }
  /// A block by its number, from 0, the first axis fastest.
  Block At(int p_block) const;

private:
  Sizes _cells, _blocks{1, 1, 1};
};

} // namespace Vek::Chart::Io
