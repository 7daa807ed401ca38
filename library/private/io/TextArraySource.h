#pragma once

#include "library/private/io/ByteSource.h"
#include "library/private/io/FloatTexts.h"
#include "library/private/io/NumberText.h"
#include "library/private/io/PositionedFile.h"
#include "platform/utility/Threads.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace Vek::Chart::Library::Private {

// What the readers of TextArray files share.

/// What is done with the numbers of blocks of text, each in a slot.
struct FloatSteps {
  /// Takes the numbers, which are lost afterwards, in any thread.
  std::function<void(std::size_t p_slot, const float* p_numbers, std::size_t p_count)> take;
  /// Joins what was taken, in the calling thread, in the order of the blocks.
  std::function<void(std::size_t p_slot)> join;
};

/// The bytes of a file, with the line that is read.
class TextSource {
public:
  /// `p_file` is the file of the stream, if it is one that is open; it must outlive the source.
  explicit TextSource(std::istream& p_stream, const PositionedFile* p_file = nullptr)
      : _bytes(p_stream)
      , _file(p_file) {}

  /// At least `p_count` characters, fewer only at the end of the file.
  std::string_view Prepare(std::size_t p_count) {
    const std::size_t available = _bytes.Prepare(p_count);
    return {reinterpret_cast<const char*>(_bytes.Data()), available};
  }
  void Take(std::size_t p_count);
  void TakeBlanks();
  /// The number of slots, which is also the largest number of blocks that are not joined, and the largest number of
  /// numbers in one. There are enough to go on while one thread takes a huge page, which lasts as long as a few blocks.
  static std::size_t FloatSlots(Utility::Threads p_threads) { return 8 * static_cast<std::size_t>(p_threads.Count()); }
  static const std::size_t MostFloats;
  /// Takes words and the blanks around them on several threads. Ends in front of the first word that is no number, in
  /// front of a block that has more than are left of `p_most`, at a very long word, and in front of the last word of
  /// the file if there is no blank behind it. A short file is left alone.
  void TakeFloats(Utility::Threads p_threads, std::uint64_t p_most, Words p_words, const FloatSteps& p_steps);
  std::uint64_t Remaining(std::uint64_t p_limit) { return _bytes.Remaining(p_limit); }
  std::uint64_t RemainingByClaim() const { return _bytes.RemainingByClaim(); }
  /// The number of bytes taken so far.
  std::uint64_t Position() const { return _bytes.Position() + _ahead; }
  bool Failed() const { return _bytes.Failed(); }
  /// The line of the next character, from 1.
  std::uint64_t Line() const { return _line; }

private:
  void TakeFromFile(Utility::Threads p_threads, std::uint64_t p_most, Words p_words, const FloatSteps& p_steps);
  void TakeFromStream(Utility::Threads p_threads, std::uint64_t p_most, Words p_words, const FloatSteps& p_steps);

  ByteSource _bytes;
  const PositionedFile* _file;
  std::uint64_t _ahead = 0; ///< bytes of blocks that were taken and are not skipped yet
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
