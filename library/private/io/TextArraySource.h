#pragma once

#include "library/private/io/ByteSource.h"
#include "library/private/io/FloatTexts.h"
#include "library/private/io/NumberText.h"
#include "platform/utility/Threads.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace Vek::Chart::Library::Private {

// What the readers of TextArray files share.

/// The bytes of a file, with the line that is read.
class TextSource {
public:
  explicit TextSource(std::istream& p_stream)
      : _bytes(p_stream) {}

  /// At least `p_count` characters, fewer only at the end of the file.
  std::string_view Prepare(std::size_t p_count) {
    const std::size_t available = _bytes.Prepare(p_count);
    return {reinterpret_cast<const char*>(_bytes.Data()), available};
  }
  void Take(std::size_t p_count);
  void TakeBlanks();
  /// Takes words and the blanks behind them on several threads, and calls p_numbers with those of each block in the
  /// calling thread, in order. Ends in front of the first word that is no number, in front of a block that has more
  /// than are left of `p_most`, at a word longer than a block, and in front of the last word of the file if there is no
  /// blank behind it. A short file is left alone.
  void TakeFloats(Utility::Threads p_threads, std::uint64_t p_most, Words p_words,
                  const std::function<void(const float*, std::size_t)>& p_numbers);
  std::uint64_t Remaining(std::uint64_t p_limit) { return _bytes.Remaining(p_limit); }
  std::uint64_t RemainingByClaim() const { return _bytes.RemainingByClaim(); }
  std::uint64_t Position() const { return _bytes.Position(); }
  bool Failed() const { return _bytes.Failed(); }
  /// The line of the next character, from 1.
  std::uint64_t Line() const { return _line; }

private:
  ByteSource _bytes;
  std::uint64_t _line = 1;
};

/// The word and the extents of channels and voxels, as `std::istream >>` reads them.
struct TextArrayHeader {
  std::string word;
  std::int32_t s0 = 0;
  std::int32_t channels = 0;
  std::int32_t s1 = 0;
  std::int32_t s2 = 0;
  bool complete = false;

  explicit TextArrayHeader(TextSource& p_source);

  bool HasSizes() const;
  /// The number of values; 0 when they exceed any memory.
  std::uint64_t CountNumbers() const;
};

inline const char* SkipBlanks(const char* p_first, const char* p_last) {
  while (p_first != p_last && Scan::IsBlank(*p_first))
    ++p_first;
  return p_first;
}

/// Takes a number of any kind, as a stream does. False when it fails, with the start of what was found.
bool ReadNumber(TextSource& p_source, float& p_value, std::string& p_failed);

} // namespace Vek::Chart::Library::Private
