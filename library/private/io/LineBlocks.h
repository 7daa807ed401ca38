#pragma once

#include "library/private/io/BlockSizes.h"
#include "library/private/io/ByteSource.h"
#include "platform/utility/Threads.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Lines of a file, each with its line feed.
struct LineBlock {
  std::unique_ptr<unsigned char[]> text; ///< not initialised
  std::size_t size = 0;

  const char* First() const { return reinterpret_cast<const char*>(text.get()); }
  const char* Last() const { return First() + size; }
};

/// Where the lines of a text end: behind its last line feed, 0 without any.
inline std::size_t WholeLines(std::string_view p_text) {
  return p_text.rfind('\n') + 1;
}

/// Works on the lines of a source on several threads: p_work(block) in any of them, then p_join(block) in the calling
/// thread, in order. `Block` has a LineBlock `lines`. Ends in front of a line longer than a block, and of characters
/// behind the last line feed. `p_wholeLines(text)` is the size of the lines at the start of a text that belong
/// together. A short source is left alone. After an exception the source has lost the blocks that were read ahead.
template <class Block, class Work, class Join, class Whole = std::size_t (*)(std::string_view)>
void RunLineBlocks(ByteSource& p_source, Utility::Threads p_threads, Work p_work, Join p_join,
                   Whole p_wholeLines = &WholeLines) {
  const auto threads = static_cast<std::size_t>(p_threads.Count());
  if (threads == 1 || p_source.RemainingByClaim() < WorthThreads)
    return;
  std::vector<Block> blocks(2 * threads);
  std::basic_string<unsigned char> rest; // of the last block: the line that goes on in the next one
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    LineBlock& lines = blocks[p_slot].lines;
    if (!lines.text)
      lines.text.reset(new unsigned char[BlockBytes + ByteSource::Slack]);
    std::copy(rest.begin(), rest.end(), lines.text.get());
    const std::size_t size = rest.size() + p_source.Read(lines.text.get() + rest.size(), BlockBytes - rest.size());
    lines.size = size == rest.size() ? 0 : p_wholeLines({lines.First(), size});
    rest.assign(lines.text.get() + lines.size, lines.text.get() + size);
    return lines.size != 0;
  };
  steps.work = [&](std::size_t p_slot) { p_work(blocks[p_slot]); };
  steps.join = [&](std::size_t p_slot) { p_join(blocks[p_slot]); };
  Utility::RunBlocks(p_threads, blocks.size(), steps);
  p_source.Unread(rest.data(), rest.size());
}

} // namespace Vek::Chart::Library::Private
