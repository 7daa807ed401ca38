#include "library/private/io/TextArrayLoader.h"

#include "library/private/io/ByteSource.h"
#include "library/private/io/NumberText.h"
#include "library/private/memory/HugePages.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
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

// Bounds that no real file reaches; a file of another kind may have no blank at all.
constexpr std::size_t LongestHeader = std::size_t{1} << 16;
constexpr std::size_t LongestNumber = std::size_t{1} << 22;

/// The number of line feeds. Counts in bytes, block by block, since the compiler vectorises that best.
std::uint64_t CountLineFeeds(const unsigned char* p_bytes, std::size_t p_count) {
  constexpr std::size_t Block = 192; // below 256
  std::uint64_t all = 0;
  for (std::size_t first = 0; first < p_count; first += Block) {
    unsigned char count = 0;
    for (std::size_t i = first; i < std::min(first + Block, p_count); ++i)
      count = static_cast<unsigned char>(count + (p_bytes[i] == '\n' ? 1 : 0));
    all += count;
  }
  return all;
}

/// The bytes of a file, with the line that is read.
class TextSource {
public:
  explicit TextSource(std::istream& p_stream)
      : _bytes(p_stream) {}

  /// At least `p_count` characters, fewer only at the end of the file.
  std::string_view Prepare(std::size_t p_count) {
    const std::size_t available = _bytes.Prepare(p_count);
    return {reinterpret_cast<const char*>(_bytes.Data()), available};
  }
  void Take(std::size_t p_count) {
    _line += CountLineFeeds(_bytes.Data(), p_count);
    _bytes.Take(p_count);
  }
  std::uint64_t Remaining(std::uint64_t p_limit) { return _bytes.Remaining(p_limit); }
  /// The line of the next character, from 1.
  std::uint64_t Line() const { return _line; }

private:
  ByteSource _bytes;
  std::uint64_t _line = 1;
};

/// The word and the extents of channels and voxels, as `std::istream >>` reads them.
struct Header {
  std::string word;
  std::int32_t s0 = 0;
  std::int32_t channels = 0;
  std::int32_t s1 = 0;
  std::int32_t s2 = 0;
  bool complete = false;

  explicit Header(TextSource& p_source) {
    const std::string_view text = p_source.Prepare(LongestHeader + 1);
    std::istringstream stream{std::string(text.substr(0, LongestHeader))};
    stream.imbue(std::locale::classic());
    complete = static_cast<bool>(stream >> word >> s0 >> channels >> s1 >> s2);
    const bool cut = stream.eof() && text.size() > LongestHeader;
    complete = complete && !cut;
    if (complete)
      p_source.Take(stream.eof() ? text.size() : static_cast<std::size_t>(stream.tellg()));
  }

  bool HasSizes() const { return complete && std::min({s0, channels, s1, s2}) >= 1; }

  /// The number of values; 0 when they exceed any memory.
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

const char* SkipBlanks(const char* p_first, const char* p_last) {
  while (p_first != p_last && Scan::IsBlank(*p_first))
    ++p_first;
  return p_first;
}

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

/// Reads a plain number that ends within the text; returns the position after it, or null.
const char* PlainNumber(const char* p_first, const char* p_last, float& p_value) {
  if (p_last - p_first >= 8)
    if (const char* const end = Scan::TinyFloat(p_first, p_value))
      return end;
  const char* const end = Scan::ShortFloat(p_first, p_last, p_value);
  return end == nullptr || end == p_last || *end == 'e' || *end == 'E' ? nullptr : end;
}

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
  for (std::string_view text; !(text = _source.Prepare(1)).empty();) {
    const char* const number = SkipBlanks(text.data(), text.data() + text.size());
    const std::size_t blanks = static_cast<std::size_t>(number - text.data());
    _source.Take(blanks);
    if (blanks < text.size())
      break;
  }
  std::string_view text;
  std::size_t length = 0;
  bool whole = false;
  for (std::size_t wanted = 1; !whole && wanted <= LongestNumber; wanted = 2 * length) {
    text = _source.Prepare(wanted);
    length = FloatTextLength(text);
    whole = length < text.size() || text.size() < wanted;
  }
  float number = 0.0f;
  const bool read = whole && StreamFloatFromText(text.substr(0, length), number);
  if (!read)
    _failed = text.substr(0, 40);
  _source.Take(length);
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
  const Header file(source);
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
