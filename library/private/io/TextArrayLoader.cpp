#include "library/private/io/TextArrayLoader.h"

#include "library/private/io/ConvertFloats.h"
#include "library/private/io/FloatBytes.h"
#include "library/private/io/FloatTexts.h"
#include "library/private/io/TextArraySource.h"
#include "library/private/memory/HugePages.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Vek::Chart::Library::Private {

namespace {

namespace Signature {
constexpr const char* Load = "class boost::shared_ptr<class Vek::Chart::Library::VolumeImage> __cdecl "
                             "Vek::Chart::Library::Private::TextArrayLoader::Load(const class vekfile::filepath &,"
                             "enum Vek::Chart::Library::VolumeImage::DataPrecision)";
} // namespace Signature

// Lines that reports name.
constexpr int NoSizes = 161;
constexpr int SizesOverflow = 217;
constexpr int FileTooShort = 221;

/// The largest of numbers, and of -1e10; the first of equal ones, since zeros differ in sign. In several lanes, since a
/// comparison waits for the one before.
float Largest(const float* p_numbers, std::size_t p_count) {
  constexpr float Least = -1e10f;
  std::array<float, 32> lanes;
  lanes.fill(Least);
  const std::size_t whole = p_count / lanes.size() * lanes.size();
  for (std::size_t i = 0; i < whole; i += lanes.size())
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
      const float number = p_numbers[i + lane]; // the compiler does not vectorise std::max, which takes references
      lanes[lane] = lanes[lane] < number ? number : lanes[lane];
    }
  float largest = *std::max_element(lanes.begin(), lanes.end());
  for (std::size_t i = whole; i < p_count; ++i)
    largest = std::max(largest, p_numbers[i]);
  return largest == 0.0f ? *std::find(p_numbers, p_numbers + p_count, largest) : largest;
}

/// Memory that takes pages when it is written, aligned to huge pages.
using FloatMemory = std::unique_ptr<float[], void (*)(void*)>;

FloatMemory NewFloats(std::size_t p_count) {
  const std::size_t bytes = p_count * sizeof(float);
  const std::size_t wholePages = (bytes + PageBlockBytes - 1) / PageBlockBytes * PageBlockBytes;
  void* const memory = bytes < PageBlockBytes ? std::malloc(bytes) : std::aligned_alloc(PageBlockBytes, wholePages);
  if (memory == nullptr)
    throw std::bad_alloc();
  AdviseHugePages(memory, bytes);
  return {static_cast<float*>(memory), &std::free};
}

/// Reads the numbers of a file and converts those of the first channel to voxels, scaled by the largest of all.
class NumberReader {
public:
  NumberReader(TextSource& p_source, std::size_t p_count, std::size_t p_channels, Utility::Threads p_threads)
      : _source(p_source)
      , _count(p_count)
      , _channels(p_channels)
      , _threads(p_threads)
      // No more than the file can hold: a number takes a digit and a separator. Behind them is room for blocks that are
      // given back.
      , _size(std::min(p_count, static_cast<std::size_t>(p_source.Remaining(2 * p_count) / 2 + 1)))
      , _numbers(NewFloats(_size + TextSource::FloatSlots(p_threads) * TextSource::MostFloats)) {}

  /// Reads all numbers; a failed one and those after it are 0. Reports each failure, up to a limit.
  void Read(std::string_view p_path);
  /// Appends the voxels to `p_voxels`, and frees the memory of the numbers piece by piece; once, at the end.
  void Convert(std::vector<unsigned char>& p_voxels);

private:
  void ReadBlocks();
  void ReadPlain();
  bool ReadAny();
  void ReportFailures(std::string_view p_path) const;
  /// Counts numbers that were written at `p_numbers`, of which `p_largest` is the largest.
  void Add(float* p_numbers, std::size_t p_count, float p_largest) {
    if (p_largest > _maximum)
      _maximum = p_largest;
    if (!_pieces.empty() && _pieces.back().numbers + _pieces.back().count == p_numbers)
      _pieces.back().count += p_count;
    else
      _pieces.push_back({p_numbers, _read, p_count});
    _read += p_count;
  }
  /// Counts numbers that were written behind the others.
  void Add(std::size_t p_count) {
    float* const numbers = _numbers.get() + _used;
    Add(numbers, p_count, Largest(numbers, p_count));
    _used += p_count;
  }

  TextSource& _source;
  const std::size_t _count;
  const std::size_t _channels;
  const Utility::Threads _threads;
  const std::size_t _size; ///< of the numbers
  FloatMemory _numbers;
  std::atomic<std::size_t> _used = 0; ///< of the memory
  std::vector<FloatPiece> _pieces;
  std::size_t _read = 0;
  float _maximum = -1e10f;
  std::string _failed; ///< the start of the number that failed
};

/// Each block goes where there is room, since its place in the file is not known before all in front of it are read.
void NumberReader::ReadBlocks() {
  struct Block {
    float* numbers = nullptr;
    std::size_t count = 0;
    float largest = 0;
  };
  std::vector<Block> blocks(TextSource::FloatSlots(_threads));
  // One thread takes the next huge page while others write to the one before; else all would prepare it.
  constexpr std::size_t PageFloats = PageBlockBytes / sizeof(float);
  const auto populate = [&](std::size_t p_page) {
    const std::size_t first = p_page * PageFloats;
    if (first < _size)
      PopulatePages(_numbers.get() + first, std::min(PageFloats, _size - first) * sizeof(float));
  };
  const auto take = [&](std::size_t p_slot, const float* p_numbers, std::size_t p_count) {
    const std::size_t first = _used.fetch_add(p_count);
    const std::size_t page = (first + p_count) / PageFloats;
    if (first == 0)
      populate(0);
    if (first == 0 || first / PageFloats != page)
      populate(page + 1);
    blocks[p_slot] = {_numbers.get() + first, p_count, Largest(p_numbers, p_count)};
    std::copy_n(p_numbers, p_count, blocks[p_slot].numbers);
  };
  const auto join = [&](std::size_t p_slot) {
    const Block& block = blocks[p_slot];
    Add(block.numbers, block.count, block.largest);
  };
  _source.TakeFloats(_threads, _count, Words::Numbers, {take, join});
}

/// Reads numbers up to the first that is no whole word, or to the end of the window.
void NumberReader::ReadPlain() {
  constexpr std::size_t Cached = 16384;
  const std::string_view text = _source.Prepare(0);
  const char* at = text.data();
  for (std::size_t count = Cached; count == Cached;) {
    const FloatTexts read = ReadFloatTexts(at, text.data() + text.size(), _numbers.get() + _used,
                                           std::min(_count - _read, Cached), Words::Numbers);
    count = read.count;
    at = read.end;
    Add(count);
  }
  _source.Take(static_cast<std::size_t>(at - text.data()));
}

/// Reads a number of any kind, as a stream does. False when it fails.
bool NumberReader::ReadAny() {
  const bool read = ReadNumber(_source, _numbers[_used], _failed);
  Add(1);
  return read;
}

void NumberReader::Read(std::string_view p_path) {
  ReadBlocks();
  bool good = true;
  while (good && _read < _count) {
    ReadPlain();
    if (_read < _count)
      good = ReadAny();
  }
  if (!good)
    ReportFailures(p_path);
  if (_read < _count && _maximum < 0.0f) // missing numbers are 0
    _maximum = 0.0f;
}

/// Reports the number that failed and those after it, up to a limit that is enough for a cut file.
void NumberReader::ReportFailures(std::string_view p_path) const {
  constexpr std::size_t MostReports = 1000;
  const std::size_t first = _read - 1;
  const std::size_t last = std::min(_count, first + MostReports);
  for (std::size_t index = first; index != last; ++index)
    VEK_ENSURE_AT(false, "file", Signature::Load, {p_path, _source.Line(), _failed, index, _count});
}

void NumberReader::Convert(std::vector<unsigned char>& p_voxels) {
  const float scale = static_cast<float>(1.0 / static_cast<double>(_maximum));
  const auto convert = [scale](const float* p_numbers, std::size_t p_count, unsigned char* p_bytes) {
    BytesFromFloats(p_numbers, p_count, scale, p_bytes);
  };
  ConvertFloats(std::move(_pieces), _channels, _threads, p_voxels, convert);
}

std::optional<TextVolume> Load(std::istream& p_stream, const PositionedFile* p_file, std::string_view p_path,
                               Utility::Threads p_threads) {
  TextSource source(p_stream, p_file);
  const TextArrayHeader file(source);
  const std::string& header = file.word;
  VEK_ENSURE_AT(header == "TextArray", "header == \"TextArray\"", Signature::Load, {p_path, 0, header});
  if (!file.HasSizes()) {
    VEK_SENTRY_AT(Signature::Load, NoSizes, {p_path, source.Line()});
    return {};
  }
  const std::uint64_t count = file.CountNumbers();
  if (count == 0) {
    VEK_SENTRY_AT(Signature::Load, SizesOverflow, {p_path, source.Line()});
    return {};
  }
  const std::uint64_t leastBytes = 2 * count - 1; // a digit each, and separators
  if (count > std::uint64_t{1} << 26 && source.Remaining(leastBytes) < leastBytes) {
    VEK_SENTRY_AT(Signature::Load, FileTooShort, {p_path, source.Line(), {}, {}, count});
    return {};
  }
  const std::size_t channels = static_cast<std::size_t>(file.channels);
  const std::size_t voxels = static_cast<std::size_t>(count) / channels;
  TextVolume volume{
      {static_cast<std::uint64_t>(file.s0), static_cast<std::uint64_t>(file.s1), static_cast<std::uint64_t>(file.s2)},
      {}};
  ReserveConverted(volume.voxels, voxels);
  {
    NumberReader numbers(source, static_cast<std::size_t>(count), channels, p_threads);
    numbers.Read(p_path);
    numbers.Convert(volume.voxels);
  }
  volume.voxels.resize(voxels);
  VEK_ENSURE_AT(channels == 1, "channels == 1", Signature::Load, {p_path, 0, {}, {}, channels});
  return volume;
}

} // namespace

std::optional<TextVolume> LoadTextArray(const vekfile::filepath& p_filename, Utility::Threads p_threads) {
  const vekdebug::detail where{p_filename.str()};
  VEK_ENSURE_AT(p_filename.valid(), "p_filename.valid()", Signature::Load, where);
  VEK_ENSURE_AT(vekfile::fileexists(p_filename), "vekfile::fileexists(p_filename)", Signature::Load, where);
  std::ifstream file(p_filename.str());
  const PositionedFile positioned(p_filename.str());
  return Load(file, &positioned, p_filename.str(), p_threads);
}

std::optional<TextVolume> LoadTextArray(std::istream& p_stream, Utility::Threads p_threads) {
  return Load(p_stream, nullptr, {}, p_threads);
}

} // namespace Vek::Chart::Library::Private
