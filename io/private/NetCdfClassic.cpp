// The classic formats (CDF-1, CDF-2 and CDF-5) as "The NetCDF Classic Format Specification" of Unidata describes them.
// Read without a library: libnetcdf 4.9.0 crashes on damaged headers of CDF-5.

#include "io/private/NetCdf.h"

#include "io/FileError.h"
#include "io/private/Bytes.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace Vek::Chart::Io::Private {

namespace {

constexpr std::array<std::size_t, 12> TypeSizes{0, 1, 1, 2, 4, 4, 8, 1, 2, 4, 8, 8};

std::size_t SizeOf(NetCdfType p_type) {
  return TypeSizes[static_cast<std::size_t>(p_type)];
}

template <class Number>
void Convert(const char* p_bytes, std::size_t p_count, double* p_values) {
  for (std::size_t i = 0; i < p_count; ++i)
    p_values[i] = static_cast<double>(Load<Number>(p_bytes + i * sizeof(Number), true));
}

/// Numbers of a file, which has them in big-endian order.
void Convert(NetCdfType p_type, const char* p_bytes, std::size_t p_count, double* p_values) {
  switch (p_type) {
  case NetCdfType::Byte:
    return Convert<std::int8_t>(p_bytes, p_count, p_values);
  case NetCdfType::Short:
    return Convert<std::int16_t>(p_bytes, p_count, p_values);
  case NetCdfType::Int:
    return Convert<std::int32_t>(p_bytes, p_count, p_values);
  case NetCdfType::Float:
    return Convert<float>(p_bytes, p_count, p_values);
  case NetCdfType::Double:
    return Convert<double>(p_bytes, p_count, p_values);
  case NetCdfType::UByte:
    return Convert<std::uint8_t>(p_bytes, p_count, p_values);
  case NetCdfType::UShort:
    return Convert<std::uint16_t>(p_bytes, p_count, p_values);
  case NetCdfType::UInt:
    return Convert<std::uint32_t>(p_bytes, p_count, p_values);
  case NetCdfType::Int64:
    return Convert<std::int64_t>(p_bytes, p_count, p_values);
  case NetCdfType::UInt64:
    return Convert<std::uint64_t>(p_bytes, p_count, p_values);
  case NetCdfType::Char:
  case NetCdfType::Unknown:
    break;
  }
}

class ClassicFile : public NetCdfFile {
public:
  ClassicFile(std::istream& p_stream, const std::string& p_name)
      : NetCdfFile(p_name)
      , _stream(p_stream)
      , _start(p_stream.tellg()) {
    p_stream.seekg(0, std::ios::end);
    const std::streamoff size = p_stream.tellg() - _start;
    p_stream.seekg(_start);
    if (!p_stream || size < 0)
      throw FileError(p_name, "reading failed");
    _size = std::uint64_t(size);
    ReadHeader();
    FindRecords();
  }

private:
  struct Place {
    std::uint64_t begin = 0; // of the first value
    bool hasRecords = false; // whether the first dimension is that of the records
  };

  // The header.

  std::string Bytes(std::uint64_t p_count) {
    if (p_count > _size - _at)
      throw FileError(_name, "byte " + std::to_string(_at) + ": expected " + std::to_string(p_count) +
                                 " bytes of the header, got the end of the file");
    std::string bytes(std::size_t(p_count), '\0');
    _stream.read(bytes.data(), std::streamsize(p_count));
    if (std::uint64_t(_stream.gcount()) != p_count)
      throw FileError(_name, "reading failed");
    _at += p_count;
    return bytes;
  }
  template <class T>
  T Number() {
    return Load<T>(Bytes(sizeof(T)).data(), true);
  }
  /// A count or a position, of 4 or 8 bytes.
  std::uint64_t Count(bool p_isLong) { return p_isLong ? Number<std::uint64_t>() : Number<std::uint32_t>(); }
  std::uint64_t Count() { return Count(_version == 5); }
  void SkipPadding() { Bytes(std::min((4 - _at % 4) % 4, _size - _at)); }
  std::string String() {
    std::string string = Bytes(Count());
    SkipPadding();
    return string;
  }
  [[noreturn]] void Fail(const std::string& p_expected, std::uint64_t p_found) const {
    throw FileError(_name,
                    "byte " + std::to_string(_at) + ": expected " + p_expected + ", got " + std::to_string(p_found));
  }
  /// The number of elements of a list with that tag; an absent one has none.
  std::uint64_t ListSize(std::uint64_t p_tag, const char* p_what) {
    const std::uint32_t tag = Number<std::uint32_t>();
    const std::uint64_t count = Count();
    if (tag != p_tag && (tag != 0 || count != 0))
      Fail(std::string("a list of ") + p_what, tag);
    return count;
  }
  NetCdfType Type() {
    const std::uint32_t type = Number<std::uint32_t>();
    if (type < 1 || type > (_version == 5 ? 11u : 6u))
      Fail("a type of values", type);
    return static_cast<NetCdfType>(type);
  }

  std::vector<NetCdfAttribute> Attributes() {
    std::vector<NetCdfAttribute> attributes;
    for (std::uint64_t left = ListSize(12, "attributes"); left != 0; --left) {
      NetCdfAttribute& attribute = attributes.emplace_back();
      attribute.name = String();
      const NetCdfType type = attribute.type = Type();
      const std::uint64_t count = Count();
      if (count > _size) // so that the product below does not wrap
        Fail("an attribute within the file", count);
      const std::string bytes = Bytes(count * SizeOf(type));
      SkipPadding();
      if (type == NetCdfType::Char) {
        attribute.text = bytes.substr(0, bytes.find_last_not_of('\0') + 1);
      } else {
        attribute.numbers.resize(std::size_t(count));
        Convert(type, bytes.data(), std::size_t(count), attribute.numbers.data());
      }
    }
    return attributes;
  }

  void ReadVariable() {
    NetCdfVariable& variable = _variables.emplace_back();
    Place& place = _places.emplace_back();
    variable.name = String();
    for (std::uint64_t left = Count(); left != 0; --left) {
      const std::uint64_t dimension = Count();
      if (dimension >= _dimensions.size())
        Fail("a dimension below " + std::to_string(_dimensions.size()), dimension);
      if (dimension == _recordDimension && !variable.dimensions.empty())
        Fail("the dimension of records in front of the others", dimension);
      place.hasRecords |= dimension == _recordDimension;
      variable.dimensions.push_back(std::size_t(dimension));
    }
    variable.attributes = Attributes();
    variable.type = Type();
    Count(); // the size, which large variables do not have: it is computed instead
    place.begin = Count(_version != 1);
  }

  void ReadHeader() {
    const std::string magic = Bytes(std::min<std::uint64_t>(4, _size));
    if (!IsClassicNetCdf(magic))
      throw FileError(_name, "expected a NetCDF file, got another one");
    _version = magic[3];
    _records = Count();
    for (std::uint64_t left = ListSize(10, "dimensions"); left != 0; --left) {
      std::string name = String();
      const std::uint64_t size = Count();
      if (size == 0 && _recordDimension == None)
        _recordDimension = _dimensions.size();
      _dimensions.push_back({std::move(name), std::size_t(size)});
    }
    Attributes();
    for (std::uint64_t left = ListSize(11, "variables"); left != 0; --left)
      ReadVariable();
  }

  /// The values of a variable, of one record if it has records; at most 2^60.
  std::uint64_t ValuesOf(std::size_t p_variable) const {
    std::uint64_t values = 1;
    const auto& dimensions = _variables[p_variable].dimensions;
    for (std::size_t i = _places[p_variable].hasRecords ? 1 : 0; i < dimensions.size(); ++i) {
      const std::uint64_t size = _dimensions[dimensions[i]].size;
      values = size != 0 && values > (std::uint64_t(1) << 56) / size ? std::uint64_t(1) << 56 : values * size;
    }
    return values;
  }

  /// Sets the number and the size of records. They are not padded if there is only one variable with records.
  void FindRecords() {
    std::uint64_t first = _size;
    std::size_t withRecords = 0;
    for (std::size_t i = 0; i < _variables.size(); ++i) {
      if (!_places[i].hasRecords)
        continue;
      ++withRecords;
      first = std::min(first, _places[i].begin);
      const std::uint64_t bytes = ValuesOf(i) * SizeOf(_variables[i].type);
      _recordSize += (bytes + 3) / 4 * 4;
      if (_recordSize > std::uint64_t(1) << 62)
        throw FileError(_name, "variable \"" + _variables[i].name + "\": larger than the file");
    }
    if (withRecords == 1)
      for (std::size_t i = 0; i < _variables.size(); ++i)
        if (_places[i].hasRecords)
          _recordSize = ValuesOf(i) * SizeOf(_variables[i].type);
    const std::uint64_t streaming = _version == 5 ? ~std::uint64_t(0) : 0xFFFFFFFFu;
    if (_records == streaming)
      _records = _recordSize == 0 ? 0 : (_size - first) / _recordSize;
    else if (_recordSize != 0 && _records > _size / _recordSize)
      throw FileError(_name, "expected " + std::to_string(_records) + " records of " + std::to_string(_recordSize) +
                                 " bytes, got a file of " + std::to_string(_size) + " bytes");
    if (_recordDimension != None)
      _dimensions[_recordDimension].size = std::size_t(_records);
  }

  // The values.

  bool HasRoom(const NetCdfVariable& p_variable, std::size_t p_values) const override {
    const std::uint64_t values = ValuesOf(std::size_t(&p_variable - _variables.data()));
    return std::max<std::uint64_t>(values, p_values) <= _size / std::max<std::size_t>(SizeOf(p_variable.type), 1);
  }

  void ReadBlock(std::size_t p_variable, const std::vector<std::size_t>& p_first,
                 const std::vector<std::size_t>& p_count, std::vector<double>& p_values,
                 const Progress& p_progress) const override {
    const NetCdfVariable& variable = _variables[p_variable];
    const Place& place = _places[p_variable];
    const std::size_t dimensions = variable.dimensions.size(), valueSize = SizeOf(variable.type);
    // The bytes between neighbours along each dimension. Those of whole rows lie together: they are one run.
    std::vector<std::uint64_t> strides(dimensions, valueSize);
    std::size_t outer = dimensions;
    std::size_t run = 1;
    for (std::size_t i = dimensions; i-- > 0;) {
      const std::uint64_t below =
          i + 1 < dimensions ? strides[i + 1] * _dimensions[variable.dimensions[i + 1]].size : valueSize;
      strides[i] = i == 0 && place.hasRecords ? _recordSize : below;
      if (outer == i + 1 && strides[i] == run * valueSize) {
        run *= p_count[i];
        outer = i;
      }
    }
    std::vector<std::size_t> index = p_first;
    for (std::size_t done = 0; done < p_values.size(); done += run) {
      std::uint64_t at = place.begin;
      for (std::size_t i = 0; i < dimensions; ++i)
        at += index[i] * strides[i];
      ReadRun(variable, at, run, p_values.data() + done, p_progress, double(done) / double(p_values.size()),
              double(run) / double(p_values.size()));
      for (std::size_t i = outer; i-- > 0;) {
        if (++index[i] < p_first[i] + p_count[i])
          break;
        index[i] = p_first[i];
      }
    }
  }

  void ReadRun(const NetCdfVariable& p_variable, std::uint64_t p_at, std::size_t p_count, double* p_values,
               const Progress& p_progress, double p_share, double p_part) const {
    const std::size_t valueSize = SizeOf(p_variable.type);
    if (p_at > _size || p_count > (_size - p_at) / valueSize)
      throw FileError(_name, "variable \"" + p_variable.name + "\": byte " + std::to_string(p_at) + ": expected " +
                                 std::to_string(p_count) + " values, got the end of the file");
    constexpr std::size_t Block = 1u << 17;
    std::vector<char> bytes(std::min(p_count, Block) * valueSize);
    _stream.clear();
    _stream.seekg(_start + std::streamoff(p_at));
    for (std::size_t done = 0; done < p_count;) {
      const std::size_t count = std::min(p_count - done, Block);
      _stream.read(bytes.data(), std::streamsize(count * valueSize));
      if (std::size_t(_stream.gcount()) != count * valueSize)
        throw FileError(_name, "reading failed");
      Convert(p_variable.type, bytes.data(), count, p_values + done);
      done += count;
      Report(p_progress, _name, p_share + p_part * double(done) / double(p_count));
    }
  }

  static constexpr std::size_t None = ~std::size_t(0);
  std::istream& _stream;
  std::istream::pos_type _start;
  std::uint64_t _size = 0; // of the file in bytes
  std::uint64_t _at = 0;   // in the header
  int _version = 1;
  std::uint64_t _records = 0;
  std::uint64_t _recordSize = 0;
  std::size_t _recordDimension = None;
  std::vector<Place> _places; // of the variables
};

} // namespace

std::unique_ptr<NetCdfFile> OpenClassicNetCdf(std::istream& p_stream, const std::string& p_name) {
  return std::make_unique<ClassicFile>(p_stream, p_name);
}

} // namespace Vek::Chart::Io::Private
