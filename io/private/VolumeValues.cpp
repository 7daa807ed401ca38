#include "io/private/VolumeValues.h"

#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/ValueRange.h"
#include "io/private/Words.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace Vek::Chart::Io::Private {

namespace {

constexpr std::size_t BlockBytes = std::size_t{1} << 18; // stays in the cache

/// Calls p_call with a value of the type.
template <class Call>
void WithType(Stored p_type, const Call& p_call) {
  switch (p_type) {
  case Stored::UInt8:
    return p_call(std::uint8_t());
  case Stored::Int8:
    return p_call(std::int8_t());
  case Stored::UInt16:
    return p_call(std::uint16_t());
  case Stored::Int16:
    return p_call(std::int16_t());
  case Stored::UInt32:
    return p_call(std::uint32_t());
  case Stored::Int32:
    return p_call(std::int32_t());
  case Stored::Float32:
    return p_call(float());
  case Stored::Float64:
    return p_call(double());
  case Stored::UInt64:
    return p_call(std::uint64_t());
  case Stored::Int64:
    return p_call(std::int64_t());
  }
}

/// Where values of a type come from, block by block.
template <class T>
class Values {
public:
  virtual ~Values() = default;
  /// No more values than this follow.
  virtual std::uint64_t Most() const = 0;
  virtual void Skip(std::uint64_t p_count) = 0;
  virtual void Read(T* p_values, std::size_t p_count) = 0;
  /// Makes numbers of what was read; in any thread.
  virtual void Arrange(T* p_values, std::size_t p_count) const = 0;
};

/// Values as they lie in memory, in either byte order.
template <class T>
class BinaryValues final : public Values<T> {
public:
  BinaryValues(ByteSource& p_source, const ValueFormat& p_format, const std::string& p_name)
      : _source(p_source)
      , _reverse(IsForeign(p_format.bigEndian))
      , _name(p_name) {}

  std::uint64_t Most() const override {
    const std::uint64_t bytes = _source.MostLeft();
    return bytes == ByteSource::Unknown ? bytes : bytes / sizeof(T);
  }
  void Skip(std::uint64_t p_count) override {
    if (!_source.Skip(p_count * sizeof(T)))
      throw FileError(_name, "the file ends within its values");
  }
  void Read(T* p_values, std::size_t p_count) override {
    const std::size_t bytes = _source.Read(reinterpret_cast<char*>(p_values), p_count * sizeof(T));
    if (bytes < p_count * sizeof(T))
      throw FileError(_name, "expected " + std::to_string(_read + p_count) +
                                 " values or more, got the end of the file after " +
                                 std::to_string(_read + bytes / sizeof(T)));
    _read += p_count;
  }
  void Arrange(T* p_values, std::size_t p_count) const override {
    if (_reverse && sizeof(T) > 1)
      std::transform(p_values, p_values + p_count, p_values, Reversed<T>);
  }

private:
  ByteSource& _source;
  const bool _reverse;
  const std::string& _name;
  std::uint64_t _read = 0;
};

/// Values that are written as text. Those next to 0 are rounded.
template <class T>
class TextValues final : public Values<T> {
public:
  TextValues(ByteSource& p_source, const std::string& p_name, std::size_t p_line)
      : _source(p_source)
      , _name(p_name)
      , _line(p_line) {}

  /// A digit and a separator each, but for the last one.
  std::uint64_t Most() const override {
    const std::uint64_t bytes = _source.MostLeft();
    return bytes == ByteSource::Unknown ? bytes : bytes / 2 + 1;
  }
  void Skip(std::uint64_t p_count) override {
    for (T value; p_count != 0; --p_count)
      Read(&value, 1);
  }
  void Read(T* p_values, std::size_t p_count) override {
    std::generate(p_values, p_values + p_count, [&] { return Number(Word()); });
  }
  void Arrange(T*, std::size_t) const override {}

private:
  static constexpr std::size_t LongestWord = 1024;

  static bool IsSeparator(char p_character) {
    return p_character == ' ' || (p_character >= '\t' && p_character <= '\r') || p_character == ',';
  }
  std::string_view Word() {
    for (;;) {
      const std::string_view text = _source.Peek(1);
      if (text.empty() || !IsSeparator(text.front()))
        break;
      _line += text.front() == '\n' ? 1 : 0;
      _source.Skip(1);
    }
    const std::string_view text = _source.Peek(LongestWord);
    const std::size_t end = std::size_t(std::find_if(text.begin(), text.end(), IsSeparator) - text.begin());
    _word.assign(text, 0, end);
    _source.Skip(end);
    return _word;
  }
  T Number(std::string_view p_word) const {
    if (p_word.empty())
      throw FileError(_name, _line, "a number", "the end of the file");
    const std::string_view digits = p_word.substr(p_word.front() == '+' ? 1 : 0);
    if (const std::optional<T> value = Parsed<T>(digits))
      return *value;
    if constexpr (std::is_same_v<T, float>) // below the range of floats
      if (const std::optional<double> wide = Parsed<double>(digits); wide && std::abs(*wide) < 1)
        return static_cast<float>(*wide);
    throw FileError(_name, _line, std::is_integral_v<T> ? "an integer of the file's type" : "a number", p_word);
  }

  PeekSource _source;
  const std::string& _name;
  std::size_t _line;
  std::string _word;
};

/// A block of values, and the numbers that are kept of it if they are not the values themselves.
template <class T, class Kept>
struct ValueBlock {
  std::vector<T> values;
  std::vector<Kept> numbers;
  std::size_t count = 0;
  ValueRange range;
};

/// Reads p_count values and appends them as numbers of the type Kept. The source is read in the calling thread.
template <class T, class Kept>
void Append(Values<T>& p_source, std::uint64_t p_count, const ValueFormat& p_format, Utility::Threads p_threads,
            ValueRange& p_range, std::vector<Kept>& p_kept) {
  constexpr std::uint64_t WorthThreads = std::uint64_t{1} << 20; // bytes
  const bool converts = !std::is_same_v<T, Kept> || p_format.Scaled();
  const Utility::Threads threads = p_count < WorthThreads / sizeof(T) ? Utility::Threads() : p_threads;
  const ValueRange none = p_range.None();
  std::vector<ValueBlock<T, Kept>> blocks(2 * std::size_t(threads.Count()), ValueBlock<T, Kept>{{}, {}, 0, none});
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    ValueBlock<T, Kept>& block = blocks[p_slot];
    block.count = std::size_t(std::min<std::uint64_t>(p_count, BlockBytes / sizeof(T)));
    p_count -= block.count;
    block.values.resize(std::max(block.values.size(), block.count));
    p_source.Read(block.values.data(), block.count);
    return block.count != 0;
  };
  steps.work = [&](std::size_t p_slot) {
    ValueBlock<T, Kept>& block = blocks[p_slot];
    p_source.Arrange(block.values.data(), block.count);
    block.range = none;
    if (converts) {
      block.numbers.resize(block.count);
      std::transform(block.values.data(), block.values.data() + block.count, block.numbers.data(), [&](T p_value) {
        return static_cast<Kept>(p_format.slope * double(p_value) + p_format.intercept);
      });
      block.range.Add(block.numbers.data(), block.count);
    } else {
      block.range.Add(block.values.data(), block.count);
    }
  };
  steps.join = [&](std::size_t p_slot) {
    const ValueBlock<T, Kept>& block = blocks[p_slot];
    p_range.Add(block.range);
    if (converts) {
      p_kept.insert(p_kept.end(), block.numbers.begin(), block.numbers.end());
      return;
    }
    if constexpr (std::is_same_v<T, Kept>)
      p_kept.insert(p_kept.end(), block.values.data(), block.values.data() + block.count);
  };
  Utility::RunBlocks(threads, blocks.size(), steps);
}

/// Values of channel after channel to values of voxel after voxel.
template <class T>
std::vector<T> Interleaved(const std::vector<T>& p_planes, std::size_t p_channels) {
  std::vector<T> voxels(p_planes.size());
  const std::size_t count = p_planes.size() / p_channels;
  for (std::size_t channel = 0; channel < p_channels; ++channel)
    for (std::size_t i = 0; i < count; ++i)
      voxels[i * p_channels + channel] = p_planes[channel * count + i];
  return voxels;
}

template <class T, class Kept>
void Read(Values<T>& p_source, const ValueFormat& p_format, const ValueLayout& p_layout, std::size_t p_step,
          const std::string& p_name, Utility::Threads p_threads, Volume& p_volume) {
  const std::uint64_t count = CountValues(p_layout, p_name);
  if (p_step >= p_layout.steps)
    throw FileError(p_name,
                    "expected a step below " + std::to_string(p_layout.steps) + ", got " + std::to_string(p_step));
  // Products of more than any memory are beyond any file as well.
  const std::uint64_t most = p_source.Most();
  if (most / p_layout.steps < count)
    throw FileError(p_name, "expected " + std::to_string(p_layout.steps) + " × " + std::to_string(count) +
                                " values, got a file that holds at most " + std::to_string(most));
  ValueRange range(p_volume.noData);
  std::vector<Kept> values;
  const std::uint64_t parts = p_layout.stepsWithinChannels ? p_layout.channels : 1;
  const std::uint64_t partCount = count / parts;
  if (most != ByteSource::Unknown)
    values.reserve(std::size_t(count));
  for (std::uint64_t part = 0; part < parts; ++part) {
    p_source.Skip((part == 0 ? p_step : p_layout.steps - 1) * partCount);
    Append(p_source, partCount, p_format, p_threads, range, values);
  }
  if (p_layout.planar && p_layout.channels > 1)
    values = Interleaved(values, std::size_t(p_layout.channels));
  for (std::size_t axis = 0; axis < 3; ++axis)
    p_volume.size[axis] = std::size_t(p_layout.size[axis]);
  p_volume.channels = std::size_t(p_layout.channels);
  p_volume.range = range.Limits();
  p_volume.values = std::move(values);
}

/// Reads values of type T from the source as the format wants them kept.
template <class T>
void ReadAs(Values<T>& p_source, const ValueFormat& p_format, const ValueLayout& p_layout, std::size_t p_step,
            const std::string& p_name, Utility::Threads p_threads, Volume& p_volume) {
  constexpr bool Wide = sizeof(T) > 4 || (sizeof(T) == 4 && std::is_integral_v<T>);
  using Scaled = std::conditional_t<Wide, double, float>;
  using Kept = std::conditional_t<sizeof(T) == 8, double, T>;
  if (p_format.Scaled())
    Read<T, Scaled>(p_source, p_format, p_layout, p_step, p_name, p_threads, p_volume);
  else
    Read<T, Kept>(p_source, p_format, p_layout, p_step, p_name, p_threads, p_volume);
}

} // namespace

std::uint64_t ValueFormat::Bytes() const {
  std::uint64_t bytes = 0;
  WithType(type, [&bytes](auto p_value) { bytes = sizeof p_value; });
  return bytes;
}

std::uint64_t CountValues(const ValueLayout& p_layout, const std::string& p_name) {
  constexpr std::uint64_t Most = std::numeric_limits<std::ptrdiff_t>::max() / 8;
  std::uint64_t count = 1;
  for (const std::uint64_t size : {p_layout.channels, p_layout.size[0], p_layout.size[1], p_layout.size[2]}) {
    if (size == 0)
      throw FileError(p_name, "expected sizes of 1 or more, got 0");
    if (count > Most / size)
      throw FileError(p_name, "the sizes exceed any memory");
    count *= size;
  }
  if (p_layout.steps == 0 || p_layout.steps > Most / count)
    throw FileError(p_name, "expected steps of 1 or more that fit a file, got " + std::to_string(p_layout.steps));
  return count;
}

void ReadValues(ByteSource& p_source, const ValueFormat& p_format, const ValueLayout& p_layout, std::size_t p_step,
                const std::string& p_name, Utility::Threads p_threads, Volume& p_volume) {
  p_volume.steps = p_layout.steps;
  WithType(p_format.type, [&](auto p_value) {
    BinaryValues<decltype(p_value)> values(p_source, p_format, p_name);
    ReadAs(values, p_format, p_layout, p_step, p_name, p_threads, p_volume);
  });
}

void ReadTextValues(ByteSource& p_source, const ValueFormat& p_format, const ValueLayout& p_layout, std::size_t p_step,
                    const std::string& p_name, std::size_t p_line, Volume& p_volume) {
  p_volume.steps = p_layout.steps;
  WithType(p_format.type, [&](auto p_value) {
    TextValues<decltype(p_value)> values(p_source, p_name, p_line);
    ReadAs(values, p_format, p_layout, p_step, p_name, Utility::Threads(), p_volume);
  });
}

} // namespace Vek::Chart::Io::Private
