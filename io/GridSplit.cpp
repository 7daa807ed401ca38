#include "io/GridSplit.h"

#include <algorithm>
#include <vector>

namespace Vek::Chart::Io {

GridSplit::GridSplit(const Sizes& p_cells, int p_blocks)
    : _cells(p_cells) {
  std::vector<std::size_t> factors; // ascending
  auto rest = static_cast<std::size_t>(std::max(p_blocks, 1));
  for (std::size_t factor = 2; rest > 1; ++factor)
    for (; rest % factor == 0; rest /= factor)
      factors.push_back(factor);
  for (; !factors.empty(); factors.pop_back()) {
    const auto length = [&](std::size_t p_axis) {
      return static_cast<double>(_cells[p_axis]) / static_cast<double>(_blocks[p_axis]);
    };
    std::size_t longest = 2; // slabs along z are contiguous in files
    for (const std::size_t axis : {1, 0})
      longest = length(axis) > length(longest) ? axis : longest;
    _blocks[longest] *= factors.back();
  }
}

GridSplit::Block GridSplit::At(int p_block) const {
  Block block;
  auto rest = static_cast<std::size_t>(p_block);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::size_t at = rest % _blocks[axis];
    rest /= _blocks[axis];
    block.first[axis] = _cells[axis] * at / _blocks[axis];
    block.count[axis] = _cells[axis] * (at + 1) / _blocks[axis] - block.first[axis];
  }
  return block;
}

} // namespace Vek::Chart::Io
