#include "library/ReadTextArray.h"

#include "library/private/io/ConvertFloats.h"
#include "library/private/io/Printable.h"
#include "library/private/io/TextArraySource.h"
#include "library/private/memory/HugePages.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <utility>

namespace Vek::Chart::Library {

namespace {

using Private::TextSource;

constexpr std::size_t LongestWord = 40; // of a message
constexpr Private::Words Words = Private::Words::NumbersOrNaN;

/// The range of the finite numbers of a list; empty without any. Of zeros, which differ in sign, the first one counts.
struct FiniteRange {
  float least = std::numeric_limits<float>::infinity();
  float most = -std::numeric_limits<float>::infinity();

  void Add(const FiniteRange& p_next) {
    least = std::min(least, p_next.least);
    most = std::max(most, p_next.most);
  }

  /// In several lanes, since a comparison waits for the one before.
  void Add(const float* p_numbers, std::size_t p_count) {
    constexpr float Largest = std::numeric_limits<float>::max(), Infinity = std::numeric_limits<float>::infinity();
    std::array<float, 16> lows, highs;
    lows.fill(Infinity);
    highs.fill(-Infinity);
    const auto add = [&](std::size_t p_lane, float p_number) {
      const float low = p_number < -Largest ? Infinity : p_number; // NaN is below and above nothing
      const float high = p_number > Largest ? -Infinity : p_number;
      lows[p_lane] = low < lows[p_lane] ? low : lows[p_lane];
      highs[p_lane] = high > highs[p_lane] ? high : highs[p_lane];
    };
    const std::size_t whole = p_count / lows.size() * lows.size();
    for (std::size_t i = 0; i < whole; i += lows.size())
      for (std::size_t lane = 0; lane < lows.size(); ++lane)
        add(lane, p_numbers[i + lane]);
    for (std::size_t i = whole; i < p_count; ++i)
      add(0, p_numbers[i]);
    const auto first = [&](float p_value) {
      return p_value == 0.0f ? *std::find(p_numbers, p_numbers + p_count, p_value) : p_value;
    };
    Add({first(*std::min_element(lows.begin(), lows.end())), first(*std::max_element(highs.begin(), highs.end()))});
  }
};

class Reader {
public:
  Reader(std::istream& p_stream, const Private::PositionedFile* p_file, const std::string& p_name,
         const TextArrayOptions& p_options, Utility::Threads p_threads)
      : _source(p_stream, p_file)
      , _name(p_name)
      , _options(p_options)
      , _threads(p_threads)
      , _bytes(_source.RemainingByClaim()) {}

  TextArray Read();

private:
  void ReadHeader();
  void ReadNumbers();
  void ReadPlain();
  void ReadAny();
  void ReportProgress();
  void FindRange();
  template <class T>
  std::vector<T> TakeIntegers();
  [[noreturn]] void Fail(const std::string& p_expected, std::string_view p_found) const {
    if (_source.Failed())
      throw TextArrayError(_name, "reading failed");
    throw TextArrayError(_name, _source.Line(), p_expected, p_found);
  }
  std::string NextWord();
  void Add(const float* p_numbers, std::size_t p_count, const FiniteRange* p_range = nullptr);

  TextSource _source;
  const std::string& _name;
  const TextArrayOptions& _options;
  const Utility::Threads _threads;
  const std::uint64_t _bytes; ///< of the file
  TextArray _array;
  std::uint64_t _count = 0;
  std::uint64_t _read = 0;
  std::uint64_t _reported = 0;
  std::vector<std::size_t> _kept;
  bool _keepsAll = false;
  std::vector<float> _voxel; ///< of all channels
  std::size_t _channel = 0;
  std::vector<float> _numbers;
  FiniteRange _range; ///< of the numbers that are kept
};

void Reader::ReadHeader() {
  const Private::TextArrayHeader header(_source);
  if (header.word != "TextArray")
    Fail("TextArray", header.word.empty() ? "the end of the file" : header.word);
  if (!header.HasSizes())
    Fail("four sizes of 1 or more behind TextArray", header.complete ? "a size below 1" : "something else");
  _count = header.CountNumbers();
  if (_count == 0)
    Fail("sizes that fit into memory", std::to_string(header.s0) + " x " + std::to_string(header.channels) + " x " +
                                           std::to_string(header.s1) + " x " + std::to_string(header.s2));
  const std::uint64_t least = 2 * _count - 1; // a digit each, and separators
  if (const std::uint64_t left = _source.Remaining(least); left < least)
    Fail(std::to_string(_count) + " numbers", std::to_string(left) + " bytes");
  _array.size = {std::size_t(header.s0), std::size_t(header.s1), std::size_t(header.s2)};
  _voxel.resize(std::size_t(header.channels));
  for (const std::size_t channel : _options.channels)
    if (channel >= _voxel.size())
      throw std::invalid_argument(_name + ": expected a channel below " + std::to_string(_voxel.size()) + ", got " +
                                  std::to_string(channel));
  _kept = _options.channels;
  for (std::size_t i = 0; _options.channels.empty() && i < _voxel.size(); ++i)
    _kept.push_back(i);
  _array.channels = _kept.size();
  _keepsAll = _options.channels.empty();
}

/// Keeps those numbers whose channels are kept. `p_range` is that of all numbers, where it is known.
void Reader::Add(const float* p_numbers, std::size_t p_count, const FiniteRange* p_range) {
  const std::size_t before = _numbers.size();
  if (_keepsAll)
    _numbers.insert(_numbers.end(), p_numbers, p_numbers + p_count);
  else
    for (std::size_t i = 0; i < p_count; ++i) {
      _voxel[_channel] = p_numbers[i];
      _channel = _channel + 1 == _voxel.size() ? 0 : _channel + 1;
      if (_channel == 0)
        for (const std::size_t kept : _kept)
          _numbers.push_back(_voxel[kept]);
    }
  if (_keepsAll && p_range != nullptr)
    _range.Add(*p_range);
  else
    _range.Add(_numbers.data() + before, _numbers.size() - before);
  constexpr std::uint64_t ReportEvery = std::uint64_t{1} << 18;
  const bool isFirst = _read == 0;
  _read += p_count;
  if (isFirst || _read - _reported >= ReportEvery) {
    ReportProgress();
    _reported = _read;
  }
}

/// Reads numbers up to the first word that is none, or to the end of the window.
void Reader::ReadPlain() {
  std::array<float, 4096> numbers;
  const std::string_view text = _source.Prepare(0);
  const char* at = text.data();
  for (std::size_t count = numbers.size(); count == numbers.size();) {
    const std::uint64_t most = std::min<std::uint64_t>(numbers.size(), _count - _read);
    const Private::FloatTexts read =
        Private::ReadFloatTexts(at, text.data() + text.size(), numbers.data(), std::size_t(most), Words);
    count = read.count;
    at = read.end;
    if (count != 0)
      Add(numbers.data(), count);
  }
  _source.Take(static_cast<std::size_t>(at - text.data()));
}

/// The characters up to the next blank, at most LongestWord. Takes blanks in front.
std::string Reader::NextWord() {
  _source.TakeBlanks();
  const std::string_view text = _source.Prepare(64).substr(0, LongestWord);
  return std::string(text.begin(), std::find_if(text.begin(), text.end(), Private::Scan::IsBlank));
}

void Reader::ReadAny() {
  const std::string word = NextWord();
  float number = 0;
  // At the end of a window or of the file.
  const std::string ended = word + ' ' + std::string(Private::FloatTextsSlack, ' ');
  const char* const last = ended.data() + word.size() + 1;
  if (word.size() < LongestWord && Private::ReadFloatTexts(ended.data(), last, &number, 1, Words).count == 1) {
    _source.Take(word.size());
  } else if (std::string failed; !Private::ReadNumber(_source, number, failed)) {
    Fail("number " + std::to_string(_read + 1) + " of " + std::to_string(_count),
         word.empty() ? "the end of the file" : word);
  } else if (const std::string_view next = _source.Prepare(1); !next.empty() && !Private::Scan::IsBlank(next.front())) {
    Fail("a blank behind a number", word);
  }
  Add(&number, 1);
}

void Reader::ReportProgress() {
  const double share = _bytes == 0 ? 0.0 : double(_source.Position()) / double(_bytes);
  if (_options.progress && !_options.progress(std::min(1.0, share)))
    throw TextArrayError(_name, "cancelled");
}

void Reader::ReadNumbers() {
  Private::ReserveLarge(_numbers, std::size_t(_count) / _voxel.size() * _kept.size());
  struct Block {
    std::vector<float> numbers;
    FiniteRange range;
  };
  std::vector<Block> blocks(TextSource::FloatSlots(_threads));
  const auto take = [&](std::size_t p_slot, const float* p_numbers, std::size_t p_count) {
    Block& block = blocks[p_slot];
    block.numbers.assign(p_numbers, p_numbers + p_count);
    block.range = {};
    if (_keepsAll)
      block.range.Add(p_numbers, p_count);
  };
  const auto join = [&](std::size_t p_slot) {
    const Block& block = blocks[p_slot];
    Add(block.numbers.data(), block.numbers.size(), &block.range);
  };
  _source.TakeFloats(_threads, _count, Words, {take, join});
  while (_read < _count) {
    ReadPlain();
    if (_read < _count)
      ReadAny();
  }
  if (const std::string word = NextWord(); !word.empty())
    Fail("the end of the file behind " + std::to_string(_count) + " numbers", word);
}

/// The range of the options, or that of the finite numbers; {0, 0} without any.
void Reader::FindRange() {
  const auto [least, most] = _range;
  _array.range = least <= most ? std::array<float, 2>{least, most} : std::array<float, 2>{0, 0};
  if (!_options.range)
    return;
  const float low = (*_options.range)[0], high = (*_options.range)[1];
  if (_options.precision != TextArrayOptions::Float32) {
    _array.range = *_options.range;
    return;
  }
  constexpr std::size_t BlockSize = std::size_t{1} << 15;
  Utility::RunRanges(_threads, _numbers.size(), BlockSize, [&](std::size_t p_first, std::size_t p_last) {
    for (std::size_t i = p_first; i < p_last; ++i)
      _numbers[i] = _numbers[i] < low ? low : _numbers[i] > high ? high : _numbers[i];
  });
  _array.range = {std::clamp(_array.range[0], low, high), std::clamp(_array.range[1], low, high)};
}

/// Uses the numbers up.
template <class T>
std::vector<T> Reader::TakeIntegers() {
  constexpr double Most = std::numeric_limits<T>::max();
  const double low = _array.range[0];
  const double extent = double(_array.range[1]) - low;
  std::vector<T> integers;
  Private::ReserveConverted(integers, _numbers.size());
  const auto convert = [=](const float* p_numbers, std::size_t p_count, T* p_integers) {
    std::transform(p_numbers, p_numbers + p_count, p_integers, [=](float p_number) {
      const double scaled = extent > 0 ? (double(p_number) - low) / extent * Most : 0;
      return static_cast<T>(scaled > 0 ? std::min(scaled, Most) + 0.5 : 0); // NaN: 0
    });
  };
  Private::ConvertFloats({{_numbers.data(), 0, _numbers.size()}}, 1, _threads, integers, convert);
  return integers;
}

TextArray Reader::Read() {
  if (const auto& range = _options.range;
      range && !(std::isfinite((*range)[1] - (*range)[0]) && (*range)[0] < (*range)[1]))
    throw std::invalid_argument(_name + ": expected a finite range that is not empty, got " +
                                std::to_string((*range)[0]) + " to " + std::to_string((*range)[1]));
  ReadHeader();
  ReadNumbers();
  FindRange();
  if (_options.precision == TextArrayOptions::Bits8)
    _array.values = TakeIntegers<std::uint8_t>();
  else if (_options.precision == TextArrayOptions::Bits16)
    _array.values = TakeIntegers<std::uint16_t>();
  else
    _array.values = std::move(_numbers);
  return std::move(_array);
}

} // namespace

TextArrayError::TextArrayError(const std::string& p_path, const std::string& p_reason)
    : std::runtime_error(p_path + ": " + p_reason) {}

TextArrayError::TextArrayError(const std::string& p_path, std::uint64_t p_line, const std::string& p_expected,
                               std::string_view p_found)
    : std::runtime_error(p_path + ":" + std::to_string(p_line) + ": expected " + p_expected + ", got \"" +
                         Private::Printable(p_found) + "\"") {}

bool IsTextArray(std::string_view p_start) {
  constexpr std::string_view Word = "TextArray";
  const auto first = std::find_if_not(p_start.begin(), p_start.end(), Private::Scan::IsBlank);
  p_start.remove_prefix(std::size_t(first - p_start.begin()));
  return p_start.substr(0, Word.size()) == Word &&
         (p_start.size() == Word.size() || Private::Scan::IsBlank(p_start[Word.size()]));
}

TextArray ReadTextArray(std::istream& p_stream, const std::string& p_name, const TextArrayOptions& p_options,
                        Utility::Threads p_threads) {
  return Reader(p_stream, nullptr, p_name, p_options, p_threads).Read();
}

TextArray ReadTextArray(const std::string& p_path, const TextArrayOptions& p_options, Utility::Threads p_threads) {
  errno = 0;
  std::ifstream file(p_path, std::ios::binary);
  if (!file)
    throw TextArrayError(p_path, std::string("cannot be opened: ") + std::strerror(errno));
  const Private::PositionedFile positioned(p_path);
  return Reader(file, &positioned, p_path, p_options, p_threads).Read();
}

} // namespace Vek::Chart::Library
