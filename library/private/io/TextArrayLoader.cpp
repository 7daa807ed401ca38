#include "library/private/io/TextArrayLoader.h"

#include "library/private/io/TextArraySource.h"
#include "library/private/memory/HugePages.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <fstream>
#include <memory>
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
  return static_cast<unsigned char>(scaled > 0.0 ? std::min(scaled, 255.0) : 0.0); // not a number: 0
}

/// Reads the numbers of a file and converts those of the first channel to voxels, scaled by the largest of all.
///
/// Numbers are converted soon after they are read, while they are in the cache, with the largest so far; those before
/// the last change of the largest are converted once more at the end.
class NumberReader {
public:
  NumberReader(TextSource& p_source, std::size_t p_count, std::size_t p_channels, unsigned char* p_voxels);

  /// Reads all numbers; a failed one and those after it are 0. Reports each failure, up to a limit.
  void Read(std::string_view p_path);

private:
  void ReadPlain();
  bool ReadAny();
  void ReportFailures(std::string_view p_path) const;
  void Append(float p_number) {
    _numbers[_read++] = p_number;
    _maximum = p_number > _maximum ? p_number : _maximum;
  }
  void ConvertNew();
  void Convert(std::size_t p_first, std::size_t p_last);

  TextSource& _source;
  const std::size_t _count;
  const std::size_t _channels;
  unsigned char* const _voxels;
  std::unique_ptr<float[]> _numbers; ///< not initialised
  std::size_t _read = 0;
  float _maximum = -1e10f;
  std::string _failed; ///< the start of the number that failed

  std::size_t _converted = 0;
  std::size_t _settled = 0; ///< from here on converted with _convertedMaximum
  float _convertedMaximum = _maximum;
};

NumberReader::NumberReader(TextSource& p_source, std::size_t p_count, std::size_t p_channels, unsigned char* p_voxels)
    : _source(p_source)
    , _count(p_count)
    , _channels(p_channels)
    , _voxels(p_voxels) {
  // No more than the file can hold: a number takes a digit and a separator.
  const std::size_t most = std::min(p_count, static_cast<std::size_t>(p_source.Remaining(2 * p_count) / 2 + 1));
  _numbers.reset(new float[most]);
  AdviseHugePages(_numbers.get(), most * sizeof(float));
}

/// Reads plain numbers up to the first other one, or to the end of the window.
void NumberReader::ReadPlain() {
  const std::string_view text = _source.Prepare(0);
  const char* const last = text.data() + text.size();
  const char* at = text.data();
  // Locals, since the compiler would write the members for each number.
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
  _source.Take(static_cast<std::size_t>(at - text.data()));
}

/// Reads a number of any kind, as a stream does. False when it fails.
bool NumberReader::ReadAny() {
  float number = 0.0f;
  const bool read = ReadNumber(_source, number, _failed);
  Append(number);
  return read;
}

void NumberReader::Read(std::string_view p_path) {
  constexpr std::size_t WorthConverting = 4096;
  bool good = true;
  while (good && _read < _count) {
    ReadPlain();
    if (_read < _count)
      good = ReadAny();
    if (_read - _converted >= WorthConverting)
      ConvertNew();
  }
  if (!good)
    ReportFailures(p_path);
  if (_read < _count && _maximum < 0.0f) // missing numbers are 0
    _maximum = 0.0f;
  ConvertNew();
  Convert(0, _settled);
}

/// Reports the number that failed and those after it, up to a limit that is enough for a cut file.
void NumberReader::ReportFailures(std::string_view p_path) const {
  constexpr std::size_t MostReports = 1000;
  const std::size_t first = _read - 1;
  const std::size_t last = std::min(_count, first + MostReports);
  for (std::size_t index = first; index != last; ++index)
    VEK_ENSURE_AT(false, "file", Signature::Load, {p_path, _source.Line(), _failed, index, _count});
}

void NumberReader::ConvertNew() {
  if (_maximum != _convertedMaximum)
    _settled = _converted;
  _convertedMaximum = _maximum;
  Convert(_converted, _read);
  _converted = _read;
}

void NumberReader::Convert(std::size_t p_first, std::size_t p_last) {
  const float scale = static_cast<float>(1.0 / static_cast<double>(_maximum));
  if (_channels == 1) {
    std::transform(_numbers.get() + p_first, _numbers.get() + p_last, _voxels + p_first,
                   [scale](float p_value) { return ToByte(p_value, scale); });
    return;
  }
  for (std::size_t i = (p_first + _channels - 1) / _channels; i * _channels < p_last; ++i)
    _voxels[i] = ToByte(_numbers[i * _channels], scale);
}

void Load(std::istream& p_stream, std::string_view p_path, const NewVolume& p_newVolume) {
  TextSource source(p_stream);
  const TextArrayHeader file(source);
  const std::string& header = file.word;
  VEK_ENSURE_AT(header == "TextArray", "header == \"TextArray\"", Signature::Load, {p_path, 0, header});
  if (!file.HasSizes()) {
    VEK_SENTRY_AT(Signature::Load, NoSizes, {p_path, source.Line()});
    return;
  }
  const std::uint64_t count = file.CountNumbers();
  if (count == 0) {
    VEK_SENTRY_AT(Signature::Load, SizesOverflow, {p_path, source.Line()});
    return;
  }
  const std::uint64_t leastBytes = 2 * count - 1; // a digit each, and separators
  if (count > std::uint64_t{1} << 26 && source.Remaining(leastBytes) < leastBytes) {
    VEK_SENTRY_AT(Signature::Load, FileTooShort, {p_path, source.Line(), {}, {}, count});
    return;
  }
  unsigned char* const voxels = p_newVolume(static_cast<std::uint64_t>(file.s0), static_cast<std::uint64_t>(file.s1),
                                            static_cast<std::uint64_t>(file.s2));
  const std::size_t channels = static_cast<std::size_t>(file.channels);
  NumberReader(source, static_cast<std::size_t>(count), channels, voxels).Read(p_path);
  VEK_ENSURE_AT(channels == 1, "channels == 1", Signature::Load, {p_path, 0, {}, {}, channels});
}

} // namespace

void LoadTextArray(const vekfile::filepath& p_filename, const NewVolume& p_newVolume) {
  const vekdebug::detail where{p_filename.str()};
  VEK_ENSURE_AT(p_filename.valid(), "p_filename.valid()", Signature::Load, where);
  VEK_ENSURE_AT(vekfile::fileexists(p_filename), "vekfile::fileexists(p_filename)", Signature::Load, where);
  std::ifstream file(p_filename.str());
  Load(file, p_filename.str(), p_newVolume);
}

void LoadTextArray(std::istream& p_stream, const NewVolume& p_newVolume) {
  Load(p_stream, {}, p_newVolume);
}

} // namespace Vek::Chart::Library::Private
