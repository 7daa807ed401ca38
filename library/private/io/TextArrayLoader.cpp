#include "library/private/io/TextArrayLoader.h"

#include "library/private/io/ByteSource.h"
#include "library/private/memory/HugePages.h"
#include "library/private/io/NumberText.h"
#include "platform/debug/Check.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <fstream>
#include <limits>
#include <locale>
#include <memory>
#include <string>

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
    constexpr std::uint64_t Most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float);
    std::uint64_t count = 1;
    for (const std::int32_t size : {s0, channels, s1, s2}) {
      if (count > Most / static_cast<std::uint64_t>(size))
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
  while (p_first != p_last && Scan::IsBlank(*p_first))
    ++p_first;
  return p_first;
}

unsigned char ToByte(float p_value, float p_scale) {
  const double scaled = static_cast<double>(p_value * p_scale) * 255.0;
  return static_cast<unsigned char>(scaled > 0.0 ? std::min(scaled, 255.0) : 0.0); // not a number: 0
}

/// Turns the numbers of a file into voxels: those of the first channel, by the largest of all. Numbers become bytes as
/// soon as they are read, by the largest so far, while the processor still has them in its cache. Only those in front
/// of the last change of the largest are converted again at the end.
class Voxels {
public:
  Voxels(ByteSource& p_source, std::size_t p_count, std::size_t p_channels, unsigned char* p_bytes);

  /// Reads the numbers. As soon as one fails, those behind it are 0; each that fails is reported, up to a number that
  /// says enough about a file that was cut.
  void Read();

private:
  void ReadPlain();
  void Append(float p_number) {
    _numbers[_read++] = p_number;
    _maximum = p_number > _maximum ? p_number : _maximum;
  }
  void ConvertNew();
  void Convert(std::size_t p_first, std::size_t p_last);

  ByteSource& _source;
  const std::size_t _count;
  const std::size_t _channels;
  unsigned char* const _bytes;
  std::unique_ptr<float[]> _numbers; ///< not initialised
  std::size_t _read = 0;
  float _maximum = -1e10f;

  std::size_t _converted = 0;
  std::size_t _settled = 0; ///< from here on, by the largest so far
  float _convertedMaximum = _maximum;
};

/// The value of a plain number that is all there in the text, and the place behind it; null otherwise.
const char* PlainNumber(const char* p_first, const char* p_last, float& p_value) {
  if (p_last - p_first >= 8)
    if (const char* const end = Scan::TinyFloat(p_first, p_value))
      return end;
  const char* const end = Scan::ShortFloat(p_first, p_last, p_value);
  return end == nullptr || end == p_last || *end == 'e' || *end == 'E' ? nullptr : end;
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

Voxels::Voxels(ByteSource& p_source, std::size_t p_count, std::size_t p_channels, unsigned char* p_bytes)
    : _source(p_source)
    , _count(p_count)
    , _channels(p_channels)
    , _bytes(p_bytes) {
  // No more than the file's bytes allow: two for each number, a digit and what stands between.
  const std::size_t most = std::min(p_count, static_cast<std::size_t>(p_source.Remaining(2 * p_count) / 2 + 1));
  _numbers.reset(new float[most]);
  AdviseHugePages(_numbers.get(), most * sizeof(float));
}

/// Reads plain numbers as long as they are all there in the window, and stops in front of the first one that is not.
void Voxels::ReadPlain() {
  const char* const first = Text(_source);
  const char* const last = first + _source.Prepare(0);
  const char* at = first;
  // Kept apart from the members, which the compiler would write for each number.
  std::size_t read = _read;
  float maximum = _maximum;
  while (read < _count) {
    float value;
    const char* const end = PlainNumber(SkipBlanks(at, last), last, value);
    if (end == nullptr)
      break;
    _numbers[read++] = value;
    maximum = value > maximum ? value : maximum;
    at = end;
  }
  _read = read;
  _maximum = maximum;
  _source.Take(static_cast<std::size_t>(at - first));
}

void Voxels::Read() {
  constexpr std::size_t MostReports = 1000;
  constexpr std::size_t WorthConverting = 4096;
  bool good = true;
  while (good && _read < _count) {
    ReadPlain();
    if (_read < _count) {
      float number;
      good = ReadNumber(_source, number);
      Append(number);
    }
    if (_read - _converted >= WorthConverting)
      ConvertNew();
  }
  if (!good)
    for (std::size_t failed = std::min(_count - _read + 1, MostReports); failed != 0; --failed)
      VEK_ENSURE_TEXT(false, "file", LoadSignature);
  if (_read < _count && _maximum < 0.0f) // numbers that are missing are 0
    _maximum = 0.0f;
  ConvertNew();
  Convert(0, _settled);
}

void Voxels::ConvertNew() {
  if (_maximum != _convertedMaximum)
    _settled = _converted;
  _convertedMaximum = _maximum;
  Convert(_converted, _read);
  _converted = _read;
}

void Voxels::Convert(std::size_t p_first, std::size_t p_last) {
  const float scale = static_cast<float>(1.0 / static_cast<double>(_maximum));
  if (_channels == 1) {
    std::transform(_numbers.get() + p_first, _numbers.get() + p_last, _bytes + p_first,
                   [scale](float p_value) { return ToByte(p_value, scale); });
    return;
  }
  for (std::size_t i = (p_first + _channels - 1) / _channels; i * _channels < p_last; ++i)
    _bytes[i] = ToByte(_numbers[i * _channels], scale);
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

  auto volume =
      boost::make_shared<VolumeImage>(VolumeImage::Byte1, static_cast<std::uint64_t>(file.s0),
                                      static_cast<std::uint64_t>(file.s1), static_cast<std::uint64_t>(file.s2));
  const std::size_t channels = static_cast<std::size_t>(file.channels);
  Voxels(source, static_cast<std::size_t>(count), channels, volume->Bytes().data()).Read();
  VEK_ENSURE(channels == 1, LoadSignature);
  return volume;
}

} // namespace Vek::Chart::Library::Private
