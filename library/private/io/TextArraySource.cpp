#include "library/private/io/TextArraySource.h"

#include "library/private/io/BlockSizes.h"

#include <algorithm>
#include <array>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

namespace Vek::Chart::Library::Private {

namespace {

// Bounds that no real file reaches; a file of another kind may have no blank at all.
constexpr std::size_t LongestHeader = std::size_t{1} << 16;
constexpr std::size_t LongestNumber = std::size_t{1} << 22;

/// The number of line feeds. Counts in bytes, by blocks of constant size, since the compiler vectorises that best.
std::uint64_t CountLineFeeds(const unsigned char* p_bytes, std::size_t p_count) {
  constexpr std::size_t Block = 192; // below 256
  const unsigned char* const end = p_bytes + p_count;
  std::uint64_t all = 0;
  for (; static_cast<std::size_t>(end - p_bytes) >= Block; p_bytes += Block) {
    unsigned char count = 0;
    for (std::size_t i = 0; i < Block; ++i)
      count = static_cast<unsigned char>(count + (p_bytes[i] == '\n' ? 1 : 0));
    all += count;
  }
  return all + static_cast<std::uint64_t>(std::count(p_bytes, end, '\n'));
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
/// Of a word that goes on behind its block.
constexpr std::size_t LongestEnd = 128;
constexpr std::size_t MostInBlock = (FloatBlockBytes + LongestEnd) / 2 + 1; // a digit and a blank each

/// What was found in a block of text.
struct FloatBlock {
  std::uint64_t offset = 0;              ///< in the file
  std::unique_ptr<unsigned char[]> text; ///< of a stream; not initialised
  std::size_t size = 0;
  std::size_t count = 0; ///< of numbers
  std::uint64_t lines = 0;
  bool isWhole = false; ///< all words are numbers

  /// Reads the numbers of [p_first, p_last), which starts with a word or a blank.
  template <class Take>
  void Read(const unsigned char* p_first, const unsigned char* p_last, Words p_words, const Take& p_take) {
    std::array<float, MostInBlock> numbers; // not initialised
    const char* const first = reinterpret_cast<const char*>(p_first);
    const char* const last = reinterpret_cast<const char*>(p_last);
    const FloatTexts read = ReadFloatTexts(first, last, numbers.data(), numbers.size(), p_words);
    count = read.count;
    isWhole = SkipBlanks(read.end, last) == last;
    p_take(numbers.data(), count);
  }

  /// Reads the words of a file that start in the block.
  template <class Take>
  void ReadFile(const PositionedFile& p_file, bool p_isFirst, Words p_words, const Take& p_take) {
    // With the character in front, which decides where the first word starts.
    std::array<unsigned char, 1 + FloatBlockBytes + LongestEnd + FloatTextsSlack> bytes; // not initialised
    bytes[0] = ' ';
    const std::size_t front = p_isFirst ? 0 : 1;
    const std::size_t got = p_file.Read(offset - front, bytes.data() + 1 - front, size + LongestEnd + front);
    const unsigned char* const start = bytes.data() + 1;
    const unsigned char* const end = bytes.data() + 1 - front + got;
    const auto nextBlank = [end](const unsigned char* p_at) {
      return std::find_if(p_at, end, [](unsigned char p_c) { return Scan::IsBlank(static_cast<char>(p_c)); });
    };
    isWhole = false;
    if (start + size > end) // the file has become shorter
      return;
    const unsigned char* const first = nextBlank(start - 1);
    const unsigned char* const last = nextBlank(start + size - 1);
    if (last == end || first == end)
      return;
    lines = CountLineFeeds(start, size);
    size = std::max(size, static_cast<std::size_t>(last - start));
    Read(first, last + 1, p_words, p_take);
  }
};

} // namespace

const std::size_t TextSource::MostFloats = MostInBlock;

void TextSource::TakeFloats(Utility::Threads p_threads, std::uint64_t p_most, Words p_words,
                            const FloatSteps& p_steps) {
  if (p_threads.Count() == 1 || RemainingByClaim() < WorthThreads)
    return;
  if (_file != nullptr && _file->IsOpen())
    TakeFromFile(p_threads, p_most, p_words, p_steps);
  else
    TakeFromStream(p_threads, p_most, p_words, p_steps);
}

/// Each thread reads its own blocks of the file.
void TextSource::TakeFromFile(Utility::Threads p_threads, std::uint64_t p_most, Words p_words,
                              const FloatSteps& p_steps) {
  std::vector<FloatBlock> blocks(FloatSlots(p_threads));
  const std::uint64_t first = Position();
  const std::uint64_t last = first + RemainingByClaim();
  std::uint64_t next = first;
  bool stopped = false;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    FloatBlock& block = blocks[p_slot];
    block.offset = next;
    block.size = stopped ? 0 : static_cast<std::size_t>(std::min<std::uint64_t>(last - next, FloatBlockBytes));
    next += block.size;
    return block.size != 0;
  };
  steps.work = [&](std::size_t p_slot) {
    FloatBlock& block = blocks[p_slot];
    block.ReadFile(*_file, block.offset == first, p_words,
                   [&](const float* p_numbers, std::size_t p_count) { p_steps.take(p_slot, p_numbers, p_count); });
  };
  steps.join = [&](std::size_t p_slot) {
    const FloatBlock& block = blocks[p_slot];
    stopped = stopped || !block.isWhole || block.count > p_most;
    if (stopped)
      return;
    _ahead = block.offset + block.size - first;
    p_most -= block.count;
    _line += block.lines;
    p_steps.join(p_slot);
  };
  Utility::RunBlocks(p_threads, blocks.size(), steps);
  _bytes.Skip(std::exchange(_ahead, 0));
}

/// The calling thread reads the stream.
void TextSource::TakeFromStream(Utility::Threads p_threads, std::uint64_t p_most, Words p_words,
                                const FloatSteps& p_steps) {
  std::vector<FloatBlock> blocks(FloatSlots(p_threads));
  std::basic_string<unsigned char> rest;   // of the last block: the word that goes on in the next one
  std::basic_string<unsigned char> unread; // blocks that are given back
  bool stopped = false;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    FloatBlock& block = blocks[p_slot];
    if (!block.text)
      block.text.reset(new unsigned char[FloatBlockBytes + FloatTextsSlack]);
    std::copy(rest.begin(), rest.end(), block.text.get());
    const std::size_t got = stopped ? 0 : _bytes.Read(block.text.get() + rest.size(), FloatBlockBytes - rest.size());
    const std::size_t size = rest.size() + got;
    for (block.size = size; block.size != 0 && !Scan::IsBlank(static_cast<char>(block.text[block.size - 1]));)
      --block.size;
    rest.assign(block.text.get() + block.size, block.text.get() + size);
    return block.size != 0 && got != 0;
  };
  steps.work = [&](std::size_t p_slot) {
    FloatBlock& block = blocks[p_slot];
    block.lines = CountLineFeeds(block.text.get(), block.size);
    block.Read(block.text.get(), block.text.get() + block.size, p_words,
               [&](const float* p_numbers, std::size_t p_count) { p_steps.take(p_slot, p_numbers, p_count); });
  };
  steps.join = [&](std::size_t p_slot) {
    const FloatBlock& block = blocks[p_slot];
    stopped = stopped || !block.isWhole || block.count > p_most;
    if (stopped) {
      unread.append(block.text.get(), block.size);
      return;
    }
    p_most -= block.count;
    _line += block.lines;
    p_steps.join(p_slot);
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
