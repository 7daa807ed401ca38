#include "io/private/VolumeValues.h"

#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/TextValues.h"
#include "io/private/ValueRange.h"

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

/// Values as they lie in memory, in either byte order.
template <class T>
class BinaryValues {
public:
  BinaryValues(ByteSource& p_source, const ValueFormat& p_format, const std::string& p_name)
      : _source(p_source)
      , _reverse(IsForeign(p_format.bigEndian))
      , _name(p_name) {}

  /// No more values than this follow.
  std::uint64_t Most() const {
    const std::uint64_t bytes = _source.MostLeft();
    return bytes == ByteSource::Unknown ? bytes : bytes / sizeof(T);
  }
  void Skip(std::uint64_t p_count) {
    if (!_source.Skip(p_count * sizeof(T)))
      throw FileError(_name, "the file ends within its values");
  }
  void Read(T* p_values, std::size_t p_count) {
    const std::size_t bytes = _source.Read(reinterpret_cast<char*>(p_values), p_count * sizeof(T));
    if (bytes < p_count * sizeof(T))
      throw FileError(_name, "expected " + std::to_string(_read + p_count) +
                                 " values or more, got the end of the file after " +
                                 std::to_string(_read + bytes / sizeof(T)));
    _read += p_count;
  }
  /// Makes numbers of what was read; in any thread.
  void Arrange(T* p_values, std::size_t p_count) const {
    if (_reverse && sizeof(T) > 1)
      std::transform(p_values, p_values + p_count, p_values, Reversed<T>);
  }

private:
  ByteSource& _source;
  const bool _reverse;
  const std::string& _name;
  std::uint64_t _read = 0;
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
void Append(BinaryValues<T>& p_source, std::uint64_t p_count, const ValueFormat& p_format, Utility::Threads p_threads,
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

/// The values that are read of a file, in parts that lie evenly among all: the channels, or a single part.
struct Parts {
  Parts(const ValueLayout& p_layout, std::size_t p_step, std::uint64_t p_most, const std::string& p_name);

  std::uint64_t parts = 1;
  std::uint64_t size = 0;  ///< values of a part
  std::uint64_t first = 0; ///< the first value of the first part
  std::uint64_t stride = 0;

  std::uint64_t Count() const { return parts * size; }
  std::uint64_t End() const { return first + (parts - 1) * stride + size; }
};

Parts::Parts(const ValueLayout& p_layout, std::size_t p_step, std::uint64_t p_most, const std::string& p_name) {
  const std::uint64_t count = CountValues(p_layout, p_name);
  if (p_step >= p_layout.steps)
    throw FileError(p_name,
                    "expected a step below " + std::to_string(p_layout.steps) + ", got " + std::to_string(p_step));
  // Products of more than any memory are beyond any file as well.
  if (p_most / p_layout.steps < count)
    throw FileError(p_name, "expected " + std::to_string(p_layout.steps) + " × " + std::to_string(count) +
                                " values, got a file that holds at most " + std::to_string(p_most));
  parts = p_layout.stepsWithinChannels ? p_layout.channels : 1;
  size = count / parts;
  first = p_step * size;
  stride = p_layout.steps * size;
}

/// Calls p_call(first, last) for what parts have of some values, counted from these.
template <class Call>
void ForEachShared(const Parts& p_parts, std::uint64_t p_first, std::size_t p_count, const Call& p_call) {
  const std::uint64_t last = p_first + p_count;
  std::uint64_t part = p_first < p_parts.first ? 0 : (p_first - p_parts.first) / p_parts.stride;
  for (; part < p_parts.parts; ++part) {
    const std::uint64_t begin = p_parts.first + part * p_parts.stride;
    const std::uint64_t from = std::max(begin, p_first), to = std::min(begin + p_parts.size, last);
    if (begin >= last)
      return;
    if (from < to)
      p_call(std::size_t(from - p_first), std::size_t(to - p_first));
  }
}

/// Gives the values to the volume.
template <class Kept>
void Finish(std::vector<Kept> p_values, const ValueRange& p_range, const ValueLayout& p_layout, Volume& p_volume) {
  if (p_layout.planar && p_layout.channels > 1)
    p_values = Interleaved(p_values, std::size_t(p_layout.channels));
  for (std::size_t axis = 0; axis < 3; ++axis)
    p_volume.size[axis] = std::size_t(p_layout.size[axis]);
  p_volume.channels = std::size_t(p_layout.channels);
  p_volume.range = p_range.Limits();
  p_volume.values = std::move(p_values);
}

/// Calls p_read with a value of the type of the file and one of the type of the numbers that are kept.
template <class Read>
void WithTypes(const ValueFormat& p_format, const Read& p_read) {
  WithType(p_format.type, [&](auto p_value) {
    using T = decltype(p_value);
    constexpr bool Wide = sizeof(T) > 4 || (sizeof(T) == 4 && std::is_integral_v<T>);
    if (p_format.Scaled())
      p_read(p_value, std::conditional_t<Wide, double, float>());
    else
      p_read(p_value, std::conditional_t<sizeof(T) == 8, double, T>());
  });
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
  WithTypes(p_format, [&](auto p_value, auto p_kept) {
    BinaryValues<decltype(p_value)> source(p_source, p_format, p_name);
    const Parts parts(p_layout, p_step, source.Most(), p_name);
    ValueRange range(p_volume.noData);
    std::vector<decltype(p_kept)> values;
    if (source.Most() != ByteSource::Unknown)
      values.reserve(std::size_t(parts.Count()));
    source.Skip(parts.first);
    for (std::uint64_t part = 0; part < parts.parts; ++part) {
      if (part != 0)
        source.Skip(parts.stride - parts.size);
      Append(source, parts.size, p_format, p_threads, range, values);
    }
    Finish(std::move(values), range, p_layout, p_volume);
  });
}

void ReadTextValues(ByteSource& p_source, const ValueFormat& p_format, const ValueLayout& p_layout, std::size_t p_step,
                    const std::string& p_name, std::size_t p_line, Utility::Threads p_threads, Volume& p_volume) {
  p_volume.steps = p_layout.steps;
  WithTypes(p_format, [&](auto p_value, auto p_kept) {
    using T = decltype(p_value);
    using Kept = decltype(p_kept);
    TextValues<T> source(p_source, p_name, p_line);
    const Parts parts(p_layout, p_step, source.Most(), p_name);
    ValueRange range(p_volume.noData);
    std::vector<Kept> values;
    if (source.Most() != ByteSource::Unknown)
      values.reserve(std::size_t(parts.Count()));
    source.ForEach(parts.End(), p_threads, [&](const T* p_values, std::size_t p_count, std::uint64_t p_first) {
      ForEachShared(parts, p_first, p_count, [&](std::size_t p_from, std::size_t p_to) {
        const std::size_t before = values.size();
        std::transform(p_values + p_from, p_values + p_to, std::back_inserter(values), [&](T p_number) {
          return p_format.Scaled() ? static_cast<Kept>(p_format.slope * double(p_number) + p_format.intercept)
                                   : static_cast<Kept>(p_number);
        });
        range.Add(values.data() + before, values.size() - before);
      });
    });
    Finish(std::move(values), range, p_layout, p_volume);
  });
}

} // namespace Vek::Chart::Io::Private
