#include "io/private/VolumeFormats.h"

#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/Grid.h"
#include "io/private/VolumeValues.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace Vek::Chart::Io::Private {

namespace {

using Vector = Volume::Vector;

constexpr std::size_t HeaderBytes1 = 348;
constexpr std::size_t HeaderBytes2 = 540;

/// The numbers of a header in either byte order.
class Fields {
public:
  Fields(std::string_view p_bytes, bool p_bigEndian)
      : _bytes(p_bytes)
      , _bigEndian(p_bigEndian) {}

  template <class T>
  T Get(std::size_t p_at) const {
    return Load<T>(_bytes.data() + p_at, _bigEndian);
  }
  /// A float of the first version is a double of the second one.
  double Real(bool p_second, std::size_t p_at1, std::size_t p_at2) const {
    return p_second ? Get<double>(p_at2) : double(Get<float>(p_at1));
  }
  std::string Text(std::size_t p_at, std::size_t p_count) const {
    const std::string_view text = _bytes.substr(p_at, p_count);
    const std::string_view cut = text.substr(0, text.find('\0'));
    const std::size_t last = cut.find_last_not_of(" \t\r\n");
    return std::string(cut.substr(0, last == std::string_view::npos ? 0 : last + 1));
  }

private:
  std::string_view _bytes;
  bool _bigEndian;
};

/// 1 or 2; 0 if the bytes are no header.
int VersionOf(std::string_view p_start, bool& p_bigEndian) {
  if (p_start.size() < HeaderBytes1)
    return 0;
  for (const bool bigEndian : {false, true}) {
    const Fields fields(p_start, bigEndian);
    p_bigEndian = bigEndian;
    const std::string_view magic1 = p_start.substr(344, 4);
    const std::string_view magic2 = p_start.substr(4, 4);
    using namespace std::string_view_literals;
    if (fields.Get<std::int32_t>(0) == int(HeaderBytes1) && (magic1 == "n+1\0"sv || magic1 == "ni1\0"sv))
      return 1;
    if (fields.Get<std::int32_t>(0) == int(HeaderBytes2) && (magic2 == "n+2\0"sv || magic2 == "ni2\0"sv))
      return 2;
  }
  return 0;
}

/// What the codes of value types mean.
struct TypeRow {
  int code;
  Stored type;
  std::uint64_t channels;
};
constexpr TypeRow TypeRows[] = {
    {2, Stored::UInt8, 1},    {4, Stored::Int16, 1},    {8, Stored::Int32, 1},     {16, Stored::Float32, 1},
    {64, Stored::Float64, 1}, {128, Stored::UInt8, 3},  {256, Stored::Int8, 1},    {512, Stored::UInt16, 1},
    {768, Stored::UInt32, 1}, {1024, Stored::Int64, 1}, {1280, Stored::UInt64, 1}, {2304, Stored::UInt8, 4},
};

class Header {
public:
  Header(std::string_view p_bytes, const std::string& p_name);

  ValueFormat format;
  ValueLayout layout;
  bool valuesFollow = true; ///< in the same file
  std::uint64_t offset = 0; ///< of the values

  /// Sets what is known about the volume besides its values.
  void Describe(Volume& p_volume) const;

private:
  [[noreturn]] void Fail(std::size_t p_at, const std::string& p_expected, const std::string& p_found) const {
    throw FileError(_name, "byte " + std::to_string(p_at) + ": expected " + p_expected + ", got " + p_found);
  }
  void ReadSizes();
  void ReadType();
  void ReadOffset();
  double Size(std::size_t p_axis) const { // of a voxel
    return _fields.Real(_second, 76 + 4 * p_axis, 104 + 8 * p_axis);
  }
  bool PlaceByMatrix(Volume& p_volume) const;
  bool PlaceByQuaternion(Volume& p_volume) const;
  void PlaceBySize(Volume& p_volume) const;

  const std::string& _name;
  bool _bigEndian = false;
  const bool _second;
  const Fields _fields;
};

Header::Header(std::string_view p_bytes, const std::string& p_name)
    : _name(p_name)
    , _second(VersionOf(p_bytes, _bigEndian) == 2)
    , _fields(p_bytes, _bigEndian) {
  valuesFollow = p_bytes[_second ? 5 : 345] == '+';
  format.bigEndian = _bigEndian;
  ReadSizes();
  ReadType();
  ReadOffset();
}

void Header::ReadSizes() {
  const auto dimension = [&](std::size_t p_index) {
    return _second ? _fields.Get<std::int64_t>(16 + 8 * p_index) : _fields.Get<std::int16_t>(40 + 2 * p_index);
  };
  const std::size_t at = _second ? 16 : 40;
  const std::int64_t count = dimension(0);
  if (count < 1 || count > 7)
    Fail(at, "1 to 7 dimensions", std::to_string(count));
  std::uint64_t sizes[8] = {0, 1, 1, 1, 1, 1, 1, 1};
  for (std::size_t i = 1; i <= std::size_t(count); ++i) {
    if (dimension(i) < 1)
      Fail(at + i * (_second ? 8 : 2), "a size of 1 or more", std::to_string(dimension(i)));
    sizes[i] = std::uint64_t(dimension(i));
  }
  layout.size = {sizes[1], sizes[2], sizes[3]};
  layout.steps = sizes[4];
  layout.channels = sizes[5];
  layout.planar = layout.stepsWithinChannels = true;
  if (sizes[6] != 1 || sizes[7] != 1)
    Fail(at, "three dimensions, steps and channels",
         "sizes of " + std::to_string(sizes[4]) + " x " + std::to_string(sizes[5]) + " x " + std::to_string(sizes[6]) +
             " x " + std::to_string(sizes[7]) + " behind them");
}

void Header::ReadType() {
  const std::size_t at = _second ? 12 : 70;
  const int code = _fields.Get<std::int16_t>(at);
  const auto row =
      std::find_if(std::begin(TypeRows), std::end(TypeRows), [&](const TypeRow& p_row) { return p_row.code == code; });
  if (row == std::end(TypeRows))
    Fail(at, "values that are integers, floats or colours", "type " + std::to_string(code));
  format.type = row->type;
  if (row->channels != 1) {
    if (layout.channels != 1)
      Fail(at, "numbers as channels", "colours");
    layout.channels = row->channels;
    layout.planar = layout.stepsWithinChannels = false;
    return;
  }
  const double slope = _fields.Real(_second, 112, 176);
  const double intercept = _fields.Real(_second, 116, 184);
  if (slope != 0 && std::isfinite(slope) && std::isfinite(intercept)) {
    format.slope = slope;
    format.intercept = intercept;
  }
}

void Header::ReadOffset() {
  const std::size_t at = _second ? 168 : 108;
  const double claimed = _second ? double(_fields.Get<std::int64_t>(168)) : double(_fields.Get<float>(108));
  if (!(claimed >= 0 && claimed < 1e15))
    Fail(at, "the position of the values", std::to_string(claimed));
  const std::uint64_t least = valuesFollow ? (_second ? HeaderBytes2 : HeaderBytes1) + 4 : 0;
  offset = std::max(least, std::uint64_t(claimed));
}

bool Header::PlaceByMatrix(Volume& p_volume) const {
  const int code = _second ? _fields.Get<std::int32_t>(348) : _fields.Get<std::int16_t>(254);
  if (code <= 0)
    return false;
  std::array<Vector, 3> steps;
  Vector origin;
  for (std::size_t row = 0; row < 3; ++row)
    for (std::size_t column = 0; column < 4; ++column) {
      const double number = _fields.Real(_second, 280 + 16 * row + 4 * column, 400 + 32 * row + 8 * column);
      (column < 3 ? steps[column] : origin)[row] = number;
    }
  for (const Vector& step : steps)
    if (const double length = std::hypot(step[0], step[1], step[2]); !(length > 0) || !std::isfinite(length))
      return false;
  SetSteps(steps, p_volume);
  p_volume.origin = origin;
  return true;
}

/// The rotation of a unit quaternion a + bi + cj + dk, of which the file has b, c and d; a is not negative.
bool Header::PlaceByQuaternion(Volume& p_volume) const {
  const int code = _second ? _fields.Get<std::int32_t>(344) : _fields.Get<std::int16_t>(252);
  if (code <= 0)
    return false;
  const std::size_t at1 = 256, at2 = 352;
  double b = _fields.Real(_second, at1, at2);
  double c = _fields.Real(_second, at1 + 4, at2 + 8);
  double d = _fields.Real(_second, at1 + 8, at2 + 16);
  double square = b * b + c * c + d * d;
  if (!std::isfinite(square))
    return false;
  if (square > 1) { // rounded
    const double length = std::sqrt(square);
    b /= length;
    c /= length;
    d /= length;
    square = 1;
  }
  const double a = std::sqrt(1 - square);
  const double side = Size(0) < 0 ? -1 : 1; // of the third axis
  PlaceBySize(p_volume);
  p_volume.orientation = {
      {{a * a + b * b - c * c - d * d, 2 * (b * c + a * d), 2 * (b * d - a * c)},
       {2 * (b * c - a * d), a * a + c * c - b * b - d * d, 2 * (c * d + a * b)},
       {side * 2 * (b * d + a * c), side * 2 * (c * d - a * b), side * (a * a + d * d - b * b - c * c)}}};
  p_volume.origin = {_fields.Real(_second, 268, 376), _fields.Real(_second, 272, 384), _fields.Real(_second, 276, 392)};
  return true;
}

void Header::PlaceBySize(Volume& p_volume) const {
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (const double size = std::abs(Size(axis + 1)); size > 0 && std::isfinite(size))
      p_volume.spacing[axis] = size;
}

void Header::Describe(Volume& p_volume) const {
  const bool placed = PlaceByMatrix(p_volume) || PlaceByQuaternion(p_volume);
  const bool finite =
      std::all_of(p_volume.origin.begin(), p_volume.origin.end(), [](double p_x) { return std::isfinite(p_x); });
  if (!finite)
    p_volume.origin = {0, 0, 0};
  if (placed)
    p_volume.space = "right-anterior-superior";
  else
    PlaceBySize(p_volume);
  const double most = _fields.Real(_second, 124, 192), least = _fields.Real(_second, 128, 200); // cal_max, cal_min
  if (std::isfinite(least) && std::isfinite(most) && least < most)
    p_volume.displayRange = {{least, most}};
  constexpr const char* Units[] = {"", "m", "mm", "µm"};
  const int unit = (_second ? _fields.Get<std::int32_t>(500) : _fields.Get<std::uint8_t>(123)) & 7;
  p_volume.lengthUnit = unit < 4 ? Units[unit] : "";
  p_volume.name = _second ? _fields.Text(508, 16) : _fields.Text(328, 16);
}

/// The name of the file with the values, beside a header's file.
std::string NameOfValues(const std::string& p_name) {
  std::string name = p_name.substr(p_name.find_last_of('/') + 1);
  if (name.size() > 3 && name.compare(name.size() - 3, 3, ".gz") == 0)
    name.resize(name.size() - 3);
  return name.substr(0, name.find_last_of('.')) + ".img";
}

} // namespace

bool IsNifti(std::string_view p_start) {
  bool bigEndian = false;
  return VersionOf(p_start, bigEndian) != 0;
}

Volume ReadNifti(PeekSource& p_source, const std::string& p_name, const VolumeOptions& p_options,
                 Utility::Threads p_threads) {
  std::string bytes(p_source.Peek(HeaderBytes2));
  bool bigEndian = false;
  const int version = VersionOf(bytes, bigEndian);
  if (version == 0)
    throw FileError(p_name, "expected the header of a NIfTI file, got " + std::to_string(bytes.size()) +
                                " bytes of something else");
  if (version == 2 && bytes.size() < HeaderBytes2)
    throw FileError(p_name, "the file ends within its header");
  const Header header(bytes, p_name);
  Volume volume;
  volume.noData = p_options.noData;
  header.Describe(volume);
  const auto read = [&](ByteSource& p_values, const std::string& p_path) {
    if (!p_values.Skip(header.offset))
      throw FileError(p_path,
                      "expected values from byte " + std::to_string(header.offset) + ", got the end of the file");
    ReadValues(p_values, header.format, header.layout, p_options.step, p_path, p_threads, volume);
    char last = 0; // behind the values, gzip has a check sum
    if (p_options.step + 1 == header.layout.steps)
      p_values.Read(&last, 1);
  };
  if (header.valuesFollow) {
    read(p_source, p_name);
    return volume;
  }
  const auto readBeside = [&](const std::string& p_other) {
    WithFileBeside(p_name, p_other, p_options.progress, [&](ByteSource& p_file, const std::string& p_path) {
      PeekSource file(p_file);
      const std::unique_ptr<ByteSource> unpacked = IsGzip(file.Peek(2)) ? OpenGzip(file, p_path) : nullptr;
      read(unpacked ? *unpacked : file, p_path);
    });
  };
  const std::string name = NameOfValues(p_name);
  readBeside(ExistsBeside(p_name, name) || !ExistsBeside(p_name, name + ".gz") ? name : name + ".gz");
  return volume;
}

} // namespace Vek::Chart::Io::Private
