#include "library/private/io/LineBlocks.h"

#include <cstring>
#include <memory>
#include <string_view>

namespace Vek::Chart::Library::Private {

namespace {

constexpr std::size_t WindowSize = std::size_t(1) << 20;

/// Where the lines of the text end that are complete: behind its last line feed, 0 without one.
std::size_t EndOfLines(std::string_view p_text) {
  return p_text.rfind('\n') + 1;
}

} // namespace

std::uint64_t RemainingBytes(std::istream& p_stream) {
  std::streambuf* const buffer = p_stream.good() ? p_stream.rdbuf() : nullptr;
  if (buffer == nullptr)
    return 0;
  // Straight from the buffer: a failed seek leaves the stream's state alone.
  const std::streamoff here = buffer->pubseekoff(0, std::ios::cur, std::ios::in);
  if (here < 0)
    return 0;
  const std::streamoff end = buffer->pubseekoff(0, std::ios::end, std::ios::in);
  buffer->pubseekoff(here, std::ios::beg, std::ios::in);
  return end > here ? std::uint64_t(end - here) : 0;
}

void ReadLineBlocks(std::istream& p_stream,
                    const std::function<void(const char* p_first, const char* p_last)>& p_receive) {
  std::size_t size = WindowSize;
  std::unique_ptr<char[]> window(new char[size]);
  std::size_t kept = 0; // of the line that the last window cut
  // One character stays free for the line feed that the last line may lack.
  while (p_stream.read(window.get() + kept, std::streamsize(size - 1 - kept)) || p_stream.gcount() > 0) {
    const std::size_t filled = kept + std::size_t(p_stream.gcount());
    const std::size_t fresh = EndOfLines({window.get() + kept, filled - kept});
    const std::size_t lines = fresh == 0 ? 0 : kept + fresh;
    if (lines != 0)
      p_receive(window.get(), window.get() + lines);
    kept = filled - lines;
    if (kept <= size / 2) {
      std::memmove(window.get(), window.get() + lines, kept);
      continue;
    }
    std::unique_ptr<char[]> larger(new char[2 * size]);
    std::memcpy(larger.get(), window.get() + lines, kept);
    window = std::move(larger);
    size *= 2;
  }
  if (kept == 0 || p_stream.bad())
    return;
  window[kept] = '\n';
  p_receive(window.get(), window.get() + kept + 1);
}

} // namespace Vek::Chart::Library::Private
