#include "library/private/io/TextArraySource.h"

#include <algorithm>
#include <limits>
#include <locale>
#include <sstream>

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
