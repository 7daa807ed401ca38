#include "library/ReadTextArray.h"

#include "library/private/io/Printable.h"
#include "library/private/io/TextArraySource.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <utility>

namespace Vek::Chart::Library {

namespace {

using Private::TextSource;

/// The word in front, as "nan" or "inf" with any sign and in any case.
std::optional<float> Unusual(std::string_view p_word) {
  std::string word(p_word);
  std::transform(word.begin(), word.end(), word.begin(),
                 [](char p_c) { return static_cast<char>(p_c >= 'A' && p_c <= 'Z' ? p_c + 32 : p_c); });
  const bool negative = !word.empty() && word.front() == '-';
  if (!word.empty() && (negative || word.front() == '+'))
    word.erase(0, 1);
  using Limits = std::numeric_limits<float>;
  if (word == "nan")
    return Limits::quiet_NaN();
  if (word == "inf" || word == "infinity")
    return negative ? -Limits::infinity() : Limits::infinity();
  return {};
}

class Reader {
public:
  Reader(std::istream& p_stream, const std::string& p_name, const TextArrayOptions& p_options)
      : _source(p_stream)
      , _name(p_name)
      , _options(p_options)
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
  std::vector<T> Integers() const;
  [[noreturn]] void Fail(const std::string& p_expected, std::string_view p_found) const {
    if (_source.Failed())
      throw TextArrayError(_name, "reading failed");
    throw TextArrayError(_name, _source.Line(), p_expected, p_found);
  }
  std::string NextWord();
  /// Keeps a number if its channel is one that is kept.
  void Append(float p_number) {
    _voxel[_channel] = p_number;
    if (++_channel < _voxel.size())
      return;
    _channel = 0;
    for (const std::size_t kept : _kept)
      _numbers.push_back(_voxel[kept]);
  }

  TextSource _source;
  const std::string& _name;
  const TextArrayOptions& _options;
  const std::uint64_t _bytes; ///< of the file
  TextArray _array;
  std::uint64_t _count = 0;
  std::uint64_t _read = 0;
  std::vector<std::size_t> _kept;
  std::vector<float> _voxel; ///< of all channels
  std::size_t _channel = 0;
  std::vector<float> _numbers;
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
}

/// Reads plain numbers up to the first other one, or to the end of the window.
void Reader::ReadPlain() {
  const std::string_view text = _source.Prepare(0);
  const char* const last = text.data() + text.size();
  const char* at = text.data();
  std::uint64_t read = _read;
  for (; read < _count; ++read) {
    float value = 0;
    const char* const end = Private::PlainNumber(Private::SkipBlanks(at, last), last, value);
    if (end == nullptr || end == last || !Private::Scan::IsBlank(*end))
      break;
    Append(value);
    at = end;
  }
  _read = read;
  _source.Take(static_cast<std::size_t>(at - text.data()));
}

/// The characters up to the next blank, at most 40. Takes blanks in front.
std::string Reader::NextWord() {
  _source.TakeBlanks();
  const std::string_view text = _source.Prepare(64).substr(0, 40);
  return std::string(text.begin(), std::find_if(text.begin(), text.end(), Private::Scan::IsBlank));
}

void Reader::ReadAny() {
  const std::string word = NextWord();
  float number = 0;
  if (const std::optional<float> unusual = Unusual(word)) {
    number = *unusual;
    _source.Take(word.size());
  } else if (std::string failed; !Private::ReadNumber(_source, number, failed)) {
    Fail("number " + std::to_string(_read + 1) + " of " + std::to_string(_count),
         word.empty() ? "the end of the file" : word);
  } else if (const std::string_view next = _source.Prepare(1); !next.empty() && !Private::Scan::IsBlank(next.front())) {
    Fail("a blank behind a number", word);
  }
  Append(number);
  ++_read;
}

void Reader::ReportProgress() {
  const double share = _bytes == 0 ? 0.0 : double(_source.Position()) / double(_bytes);
  if (_options.progress && !_options.progress(std::min(1.0, share)))
    throw TextArrayError(_name, "cancelled");
}

void Reader::ReadNumbers() {
  _numbers.reserve(std::size_t(_count) / _voxel.size() * _kept.size());
  constexpr std::uint64_t ReportEvery = std::uint64_t{1} << 18;
  for (std::uint64_t reported = 0; _read < _count;) {
    ReadPlain();
    if (_read < _count)
      ReadAny();
    if (_read - reported >= ReportEvery || reported == 0) {
      ReportProgress();
      reported = _read;
    }
  }
  if (const std::string word = NextWord(); !word.empty())
    Fail("the end of the file behind " + std::to_string(_count) + " numbers", word);
}

/// The range of the options, or that of the finite numbers; {0, 0} without any.
void Reader::FindRange() {
  float least = std::numeric_limits<float>::infinity();
  float most = -least;
  for (const float number : _numbers)
    if (std::isfinite(number)) {
      least = std::min(least, number);
      most = std::max(most, number);
    }
  _array.range = least <= most ? std::array<float, 2>{least, most} : std::array<float, 2>{0, 0};
  if (!_options.range)
    return;
  const auto [low, high] = *_options.range;
  if (_options.precision != TextArrayOptions::Float32) {
    _array.range = *_options.range;
    return;
  }
  for (float& number : _numbers)
    number = number < low ? low : number > high ? high : number;
  _array.range = {std::clamp(_array.range[0], low, high), std::clamp(_array.range[1], low, high)};
}

template <class T>
std::vector<T> Reader::Integers() const {
  constexpr double Most = std::numeric_limits<T>::max();
  const double low = _array.range[0];
  const double extent = double(_array.range[1]) - low;
  std::vector<T> integers;
  integers.reserve(_numbers.size());
  for (const float number : _numbers) {
    const double scaled = extent > 0 ? (double(number) - low) / extent * Most : 0;
    integers.push_back(static_cast<T>(scaled > 0 ? std::min(scaled, Most) + 0.5 : 0)); // NaN: 0
  }
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
    _array.values = Integers<std::uint8_t>();
  else if (_options.precision == TextArrayOptions::Bits16)
    _array.values = Integers<std::uint16_t>();
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

TextArray ReadTextArray(std::istream& p_stream, const std::string& p_name, const TextArrayOptions& p_options) {
  return Reader(p_stream, p_name, p_options).Read();
}

TextArray ReadTextArray(const std::string& p_path, const TextArrayOptions& p_options) {
  errno = 0;
  std::ifstream file(p_path, std::ios::binary);
  if (!file)
    throw TextArrayError(p_path, std::string("cannot be opened: ") + std::strerror(errno));
  return ReadTextArray(file, p_path, p_options);
}

} // namespace Vek::Chart::Library
