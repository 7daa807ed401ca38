#pragma once

#include <cstdint>
#include <functional>
#include <istream>

namespace Vek::Chart::Library::Private {

/// The bytes from the place of reading to the end of a stream; 0 where the stream cannot tell. A claim of the file
/// system: less or more may follow.
std::uint64_t RemainingBytes(std::istream& p_stream);

/// Reads a stream to its end through one reused buffer of about 1 MiB, and hands out blocks of whole lines in order.
///
/// No block is empty, and each ends in a line feed, also the last one, where the stream may lack it. The buffer
/// grows only for a line that is longer. When reading fails, what was not handed out by then is dropped.
void ReadLineBlocks(std::istream& p_stream,
                    const std::function<void(const char* p_first, const char* p_last)>& p_receive);

} // namespace Vek::Chart::Library::Private
