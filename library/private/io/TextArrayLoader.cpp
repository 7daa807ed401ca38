#include "library/private/io/TextArrayLoader.h"

#include "library/private/io/ConvertFloats.h"
#include "library/private/io/TextArraySource.h"
#include "library/private/memory/HugePages.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <string_view>

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

unsigned char ToByte(float p_value, float p_scale) {
  const double scaled = static_cast<double>(p_value * p_scale) * 255.0;
  return static_cast<unsigned char>(std::min(std::max(0.0, scaled), 255.0)); // not a number: 0
}

/// The largest of numbers, and of -1e10. In several lanes, since a comparison waits for the one before.
float Largest(const float* p_numbers, std::size_t p_count) {
  std::array<float, 32> lanes;
  lanes.fill(-1e10f);
  const std::size_t whole = p_count / lanes.size() * lanes.size();
  for (std::size_t i = 0; i < whole; i += lanes.size())
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
      lanes[lane] = std::max(lanes[lane], p_numbers[i + lane]);
  float largest = *std::max_element(lanes.begin(), lanes.end());
  for (std::size_t i = whole; i < p_count; ++i)
    largest = std::max(largest, p_numbers[i]);
  return largest;
}

/// Memory that takes pages when it is written, aligned to huge pages.
using FloatMemory = std::unique_ptr<float[], void (*)(void*)>;

FloatMemory NewFloats(std::size_t p_count) {
  constexpr std::size_t HugePage = std::size_t{1} << 21;
  const std::size_t bytes = p_count * sizeof(float);
  const std::size_t wholePages = (bytes + HugePage - 1) / HugePage * HugePage;
  void* const memory = bytes < HugePage ? std::malloc(bytes) : std::aligned_alloc(HugePage, wholePages);
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
      // No more than the file can hold: a number takes a digit and a separator.
      , _numbers(NewFloats(std::min(p_count, static_cast<std::size_t>(p_source.Remaining(2 * p_count) / 2 + 1)))) {}

  /// Reads all numbers; a failed one and those after it are 0. Reports each failure, up to a limit.
  void Read(std::string_view p_path);
  /// Appends the voxels to `p_voxels`, and frees the memory of the numbers piece by piece; once, at the end.
  void Convert(std::vector<unsigned char>& p_voxels);

private:
  void ReadPlain();
  bool ReadAny();
  void ReportFailures(std::string_view p_path) const;
  /// Counts numbers that were written behind the others.
  void Add(std::size_t p_count) {
    const float* const first = _numbers.get() + _read;
    if (const float maximum = Largest(first, p_count); maximum > _maximum)
      _maximum = *std::find(first, first + p_count, maximum); // the first one: zeros differ in sign
    _read += p_count;
  }

  TextSource& _source;
  const std::size_t _count;
  const std::size_t _channels;
  const Utility::Threads _threads;
  FloatMemory _numbers;
  std::size_t _read = 0;
  float _maximum = -1e10f;
  std::string _failed; ///< the start of the number that failed
};

/// Reads numbers up to the first that is no whole word, or to the end of the window.
void NumberReader::ReadPlain() {
  constexpr std::size_t Cached = 16384;
  const std::string_view text = _source.Prepare(0);
  const char* at = text.data();
  for (std::size_t count = Cached; count == Cached;) {
    const FloatTexts read = ReadFloatTexts(at, text.data() + text.size(), _numbers.get() + _read,
                                           std::min(_count - _read, Cached), Words::Numbers);
    count = read.count;
    at = read.end;
    Add(count);
  }
  _source.Take(static_cast<std::size_t>(at - text.data()));
}

/// Reads a number of any kind, as a stream does. False when it fails.
bool NumberReader::ReadAny() {
  const bool read = ReadNumber(_source, _numbers[_read], _failed);
  Add(1);
  return read;
}

void NumberReader::Read(std::string_view p_path) {
  _source.TakeFloats(_threads, _count, Words::Numbers, [this](const float* p_numbers, std::size_t p_count) {
    std::copy_n(p_numbers, p_count, _numbers.get() + _read);
    Add(p_count);
  });
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
  ConvertFloats(_numbers.get(), _read, _channels, _threads, p_voxels,
                [scale](float p_value) { return ToByte(p_value, scale); });
}

std::optional<TextVolume> Load(std::istream& p_stream, std::string_view p_path, Utility::Threads p_threads) {
  TextSource source(p_stream);
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
  return Load(file, p_filename.str(), p_threads);
}

std::optional<TextVolume> LoadTextArray(std::istream& p_stream, Utility::Threads p_threads) {
  return Load(p_stream, {}, p_threads);
}

} // namespace Vek::Chart::Library::Private
