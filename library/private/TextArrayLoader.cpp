#include "library/private/TextArrayLoader.h"

#include "library/private/ByteSource.h"
#include "library/private/HugePages.h"
#include "library/private/NumberText.h"
#include "platform/debug/Check.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <fstream>
#include <limits>
#include <locale>
#include <string>
#include <vector>

namespace Vek::Chart::Library::Private {

namespace {

const char* const LoadSignature = "class boost::shared_ptr<class Vek::Chart::Library::VolumeImage> __cdecl "
                                  "Vek::Chart::Library::Private::TextArrayLoader::Load(const class vekfile::filepath &,"
                                  "enum Vek::Chart::Library::VolumeImage::DataPrecision)";

// Places in the loader that are reported.
constexpr int NoSizes = 161;
constexpr int SizesOverflow = 217;
constexpr int FileTooShort = 221;

/// The first line, as it stands in the file: the word and the extents of channels and voxels.
struct Header {
  std::string word;
  std::int32_t s0 = 0;
  std::int32_t channels = 0;
  std::int32_t s1 = 0;
  std::int32_t s2 = 0;
  bool complete = false;

  explicit Header(std::istream& p_stream) {
    const std::locale before = p_stream.imbue(std::locale::classic());
    complete = static_cast<bool>(p_stream >> word >> s0 >> channels >> s1 >> s2);
    p_stream.imbue(before);
  }

  bool HasSizes() const { return complete && std::min({s0, channels, s1, s2}) >= 1; }

  /// How many numbers follow; 0 when those are more than memory could ever hold.
  std::uint64_t CountNumbers() const {
    constexpr std::uint64_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float);
    std::uint64_t count = 1;
    for (const std::int32_t size : {s0, channels, s1, s2}) {
      if (count > most / static_cast<std::uint64_t>(size))
        return 0;
      count *= static_cast<std::uint64_t>(size);
    }
    return count;
  }
};

const char* Text(const ByteSource& p_source) {
  return reinterpret_cast<const char*>(p_source.Data());
}

const char* SkipBlanks(const char* p_first, const char* p_last) {
  while (p_first != p_last && (*p_first == ' ' || (*p_first >= '\t' && *p_first <= '\r')))
    ++p_first;
  return p_first;
}

/// Reads plain numbers as long as they are all there in the window, at most p_count in all, and stops in front of the
/// first one that is not.
void ReadPlainNumbers(ByteSource& p_source, std::size_t p_count, std::vector<float>& p_numbers) {
  const char* const first = Text(p_source);
  const char* const last = first + p_source.Prepare(0);
  const char* at = first;
  while (p_numbers.size() < p_count) {
    float number;
    const char* const end = Scan::ShortFloat(SkipBlanks(at, last), last, number);
    if (end == nullptr || end == last || *end == 'e' || *end == 'E')
      break;
    p_numbers.push_back(number);
    at = end;
  }
  p_source.Take(static_cast<std::size_t>(at - first));
}

/// Reads a number of any kind. False when there is none, or none that can be read; p_number is then what a stream would
/// make of it.
bool ReadNumber(ByteSource& p_source, float& p_number) {
  p_number = 0.0f;
  while (const std::size_t available = p_source.Prepare(1)) {
    const std::size_t blanks =
        static_cast<std::size_t>(SkipBlanks(Text(p_source), Text(p_source) + available) - Text(p_source));
    p_source.Take(blanks);
    if (blanks < available)
      break;
  }
  std::size_t length = 0;
  for (std::size_t wanted = 1;; wanted = 2 * length) {
    const std::size_t available = p_source.Prepare(wanted);
    length = FloatTextLength({Text(p_source), available});
    if (length < available || available < wanted)
      break;
  }
  const bool taken = StreamFloatFromText({Text(p_source), length}, p_number);
  p_source.Take(length);
  return taken;
}

/// Reads p_count numbers. As soon as one fails, those behind it are 0, and are left out. Each that fails is reported,
/// up to a number that says enough about a file that was cut.
std::vector<float> ReadNumbers(ByteSource& p_source, std::size_t p_count) {
  constexpr std::size_t mostReports = 1000;
  std::vector<float> numbers;
  // No more than the bytes allow: two for each number, a digit and what stands between.
  ReserveLarge(numbers, static_cast<std::size_t>(p_source.Remaining(2 * p_count) / 2 + 1));
  bool good = true;
  while (good && numbers.size() < p_count) {
    ReadPlainNumbers(p_source, p_count, numbers);
    if (numbers.size() == p_count)
      break;
    float number;
    good = ReadNumber(p_source, number);
    numbers.push_back(number);
  }
  if (!good)
    for (std::size_t failed = std::min(p_count - numbers.size() + 1, mostReports); failed != 0; --failed)
      VEK_ENSURE_TEXT(false, "file", LoadSignature);
  return numbers;
}

/// The value that is mapped to 255; a number that is missing counts as 0.
float Maximum(const std::vector<float>& p_numbers, std::size_t p_count) {
  float maximum = -1e10f;
  for (const float number : p_numbers)
    maximum = number > maximum ? number : maximum;
  return p_numbers.size() < p_count && maximum < 0.0f ? 0.0f : maximum;
}

unsigned char ToByte(float p_value, float p_scale) {
  const double scaled = static_cast<double>(p_value * p_scale) * 255.0;
  return static_cast<unsigned char>(scaled > 0.0 ? std::min(scaled, 255.0) : 0.0); // not a number: 0
}

} // namespace

boost::shared_ptr<VolumeImage> LoadTextArray(const vekfile::filepath& p_filename) {
  VEK_ENSURE(p_filename.valid(), LoadSignature);
  VEK_ENSURE(vekfile::fileexists(p_filename), LoadSignature);
  std::ifstream file(p_filename.str());
  return LoadTextArray(file);
}

boost::shared_ptr<VolumeImage> LoadTextArray(std::istream& p_stream) {
  const Header file(p_stream);
  const std::string& header = file.word;
  VEK_ENSURE(header == "TextArray", LoadSignature);
  if (!file.HasSizes()) {
    VEK_SENTRY(LoadSignature, NoSizes);
    return {};
  }
  const std::uint64_t count = file.CountNumbers();
  if (count == 0) {
    VEK_SENTRY(LoadSignature, SizesOverflow);
    return {};
  }
  ByteSource source(p_stream);
  const std::uint64_t leastBytes = 2 * count - 1; // a digit each, and something between
  if (count > std::uint64_t{1} << 26 && source.Remaining(leastBytes) < leastBytes) {
    VEK_SENTRY(LoadSignature, FileTooShort);
    return {};
  }

  const std::vector<float> numbers = ReadNumbers(source, static_cast<std::size_t>(count));
  const std::size_t channels = static_cast<std::size_t>(file.channels);
  VEK_ENSURE(channels == 1, LoadSignature);
  auto volume =
      boost::make_shared<VolumeImage>(VolumeImage::Byte1, static_cast<std::uint64_t>(file.s0),
                                      static_cast<std::uint64_t>(file.s1), static_cast<std::uint64_t>(file.s2));
  // The first channel; voxels whose numbers are missing stay 0.
  const float scale = static_cast<float>(1.0 / static_cast<double>(Maximum(numbers, static_cast<std::size_t>(count))));
  unsigned char* voxel = volume->Bytes().data();
  for (std::size_t i = 0; i < numbers.size(); i += channels)
    *voxel++ = ToByte(numbers[i], scale);
  return volume;
}

} // namespace Vek::Chart::Library::Private
