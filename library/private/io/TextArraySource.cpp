#include "library/private/io/TextArraySource.h"

#include "library/private/io/BlockSizes.h"

#include <algorithm>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <vector>

namespace Vek::Chart::Library::Private {

namespace {

// Bounds that no real file reaches; a file of another kind may have no blank at all.
constexpr std::size_t LongestHeader = std::size_t{1} << 16;
constexpr std::size_t LongestNumber = std::size_t{1} << 22;

/// The number of line feeds. Counts in bytes, block by block, since the compiler vectorises that best.
std::uint64_t CountLineFeeds(const unsigned char* p_bytes, std::size_t p_count) {
  constexpr std::size_t Block = 192; // below 256
  std::uint64_t all = 0;
  for (std::size_t first = 0; first < p_count; first += Block) {
    unsigned char count = 0;
    for (std::size_t i = first; i < std::min(first + Block, p_count); ++i)
      count = static_cast<unsigned char>(count + (p_bytes[i] == '\n' ? 1 : 0));
    all += count;
  }
  return all;
}

} // namespace

void TextSource::Take(std::size_t p_count) {
  _line += CountLineFeeds(_bytes.Data(), p_count);
  _bytes.Take(p_count);
}

void TextSource::TakeBlanks() {
  for (std::string_view text; !(text = Prepare(1)).empty();) {
    const char* const end = SkipBlanks(text.data(), text.data() + text.size());
    const std::size_t blanks = static_cast<std::size_t>(end - text.data());
    Take(blanks);
    if (blanks < text.size())
      break;
  }
}

namespace {

/// Smaller than those of other files: numbers take as much memory besides.
constexpr std::size_t FloatBlockBytes = std::min(BlockBytes, std::size_t{1} << 15);

/// A block of text that ends with a blank, and its numbers.
struct FloatBlock {
  std::unique_ptr<unsigned char[]> text; // neither is initialised
  std::unique_ptr<float[]> numbers;
  std::size_t size = 0;
  std::size_t count = 0;
  std::uint64_t lines = 0;
  bool isWhole = false; ///< all words are numbers

  void Work(Words p_words) {
    const char* const first = reinterpret_cast<const char*>(text.get());
    const FloatTexts read = ReadFloatTexts(first, first + size, numbers.get(), size, p_words);
    count = read.count;
    isWhole = SkipBlanks(read.end, first + size) == first + size;
    lines = CountLineFeeds(text.get(), size);
  }
};

} // namespace

void TextSource::TakeFloats(Utility::Threads p_threads, std::uint64_t p_most, Words p_words,
                            const std::function<void(const float*, std::size_t)>& p_numbers) {
  const auto threads = static_cast<std::size_t>(p_threads.Count());
  if (threads == 1 || RemainingByClaim() < WorthThreads)
    return;
  std::vector<FloatBlock> blocks(2 * threads);
  std::basic_string<unsigned char> rest;   // of the last block: the word that goes on in the next one
  std::basic_string<unsigned char> unread; // blocks that are given back
  bool stopped = false;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    FloatBlock& block = blocks[p_slot];
    if (!block.text) {
      block.text.reset(new unsigned char[FloatBlockBytes + FloatTextsSlack]);
      block.numbers.reset(new float[FloatBlockBytes]);
    }
    std::copy(rest.begin(), rest.end(), block.text.get());
    const std::size_t got = stopped ? 0 : _bytes.Read(block.text.get() + rest.size(), FloatBlockBytes - rest.size());
    const std::size_t size = rest.size() + got;
    for (block.size = size; block.size != 0 && !Scan::IsBlank(static_cast<char>(block.text[block.size - 1]));)
      --block.size;
    rest.assign(block.text.get() + block.size, block.text.get() + size);
    return block.size != 0 && got != 0;
  };
  steps.work = [&](std::size_t p_slot) { blocks[p_slot].Work(p_words); };
  steps.join = [&](std::size_t p_slot) {
    const FloatBlock& block = blocks[p_slot];
    stopped = stopped || !block.isWhole || block.count > p_most;
    if (stopped) {
      unread.append(block.text.get(), block.size);
      return;
    }
    p_numbers(block.numbers.get(), block.count);
    p_most -= block.count;
    _line += block.lines;
  };
  Utility::RunBlocks(p_threads, blocks.size(), steps);
  unread += rest;
  _bytes.Unread(unread.data(), unread.size());
}

TextArrayHeader::TextArrayHeader(TextSource& p_source) {
  const std::string_view text = p_source.Prepare(LongestHeader + 1);
  std::istringstream stream{std::string(text.substr(0, LongestHeader))};
  stream.imbue(std::locale::classic());
  complete = static_cast<bool>(stream >> word >> s0 >> channels >> s1 >> s2);
  const bool cut = stream.eof() && text.size() > LongestHeader;
  complete = complete && !cut;
  if (complete)
    p_source.Take(stream.eof() ? text.size() : static_cast<std::size_t>(stream.tellg()));
}

bool TextArrayHeader::HasSizes() const {
  return complete && std::min({s0, channels, s1, s2}) >= 1;
}

std::uint64_t TextArrayHeader::CountNumbers() const {
  constexpr std::uint64_t Most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float);
  std::uint64_t count = 1;
  for (const std::int32_t size : {s0, channels, s1, s2}) {
    if (count > Most / static_cast<std::uint64_t>(size))
      return 0;
    count *= static_cast<std::uint64_t>(size);
  }
  return count;
}

bool ReadNumber(TextSource& p_source, float& p_value, std::string& p_failed) {
  p_source.TakeBlanks();
  std::string_view text;
  std::size_t length = 0;
  bool whole = false;
  for (std::size_t wanted = 1; !whole && wanted <= LongestNumber; wanted = 2 * length) {
    text = p_source.Prepare(wanted);
    length = FloatTextLength(text);
    whole = length < text.size() || text.size() < wanted;
  }
  p_value = 0.0f;
  const bool read = whole && StreamFloatFromText(text.substr(0, length), p_value);
  if (!read)
    p_failed = text.substr(0, 40);
  p_source.Take(length);
  return read;
}

} // namespace Vek::Chart::Library::Private
