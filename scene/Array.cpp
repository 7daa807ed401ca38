#include "scene/Array.h"

#include "library/StreamWriter.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace Vek::Chart::Scene {

using Types::Vector3_Base;

Array1::Array1(const void* p_first, std::size_t p_count, std::ptrdiff_t p_stride, NumberType p_type,
               boost::shared_ptr<const void> p_owner)
    : _data(p_count == 0 ? nullptr : p_first)
    , _count(p_count)
    , _stride(p_stride)
    , _type(p_type)
    , _owner(std::move(p_owner)) {
  if (p_first == nullptr && p_count != 0)
    throw std::invalid_argument("Array1: expected the address of " + std::to_string(p_count) +
                                " numbers, got a null pointer");
}

Array1 Array1::Constant(double p_number, std::size_t p_count) {
  const auto number = boost::make_shared<const double>(p_number);
  return {number.get(), p_count, 0, NumberType::Double, number};
}

Array1 Array1::Part(std::size_t p_first, std::size_t p_count) const {
  if (p_first >= _count)
    return {};
  const char* const first = static_cast<const char*>(_data) + static_cast<std::ptrdiff_t>(p_first) * _stride;
  return {first, std::min(p_count, _count - p_first), _stride, _type, _owner};
}

Array3::Array3(const Array1& p_x, const Array1& p_y, const Array1& p_z)
    : _x(p_x)
    , _y(p_y)
    , _z(p_z) {
  if (p_x.Count() != p_y.Count() || p_x.Count() != p_z.Count())
    throw std::invalid_argument("Array3: expected as many y and z as x, got " + std::to_string(p_x.Count()) + " x, " +
                                std::to_string(p_y.Count()) + " y and " + std::to_string(p_z.Count()) + " z");
}

void RequireCount(const std::string& p_name, std::size_t p_count, std::size_t p_expected) {
  if (p_count != p_expected)
    throw std::invalid_argument(p_name + ": expected " + std::to_string(p_expected) + " elements, got " +
                                std::to_string(p_count));
}

void ArrayForms::RefuseMatrix(const char* p_expected, std::size_t p_rows, std::size_t p_columns) {
  throw std::invalid_argument(std::string(p_expected) + ", got " + std::to_string(p_rows) + " x " +
                              std::to_string(p_columns));
}

void ArrayForms::RefuseElement() {
  throw std::invalid_argument("Array3: expected elements that contain their three numbers, got one with numbers "
                              "elsewhere");
}

// Vertex attributes.

namespace {

/// Stores elements of N numbers as double. Elements that are skipped stay as they are, those beyond the end are
/// dropped.
template <unsigned int N>
class DoubleWriter {
public:
  explicit DoubleWriter(std::vector<double>& p_destination)
      : _destination(&p_destination) {}
  template <class S>
  void WriteData(const S* p_data, std::uint64_t p_scalarCount) {
    const std::uint64_t count = p_scalarCount / N, size = _destination->size() / N;
    const std::uint64_t begin = std::min(_index, size);
    std::copy_n(p_data, N * std::min(count, size - begin), _destination->data() + N * begin);
    AdvanceWriteIndex(count);
  }
  void AdvanceWriteIndex(std::uint64_t p_count) { _index += p_count; }
  std::uint64_t CurrentIndex() const { return _index; }

private:
  std::vector<double>* _destination;
  std::uint64_t _index = 0;
};

template <unsigned int N>
class DoubleStreamWriter final : public Library::FloatStreamWriterBase<N, DoubleWriter<N>> {
public:
  explicit DoubleStreamWriter(std::vector<double>& p_destination)
      : Library::FloatStreamWriterBase<N, DoubleWriter<N>>(p_destination) {}
};

/// All numbers of an attribute and their owner.
struct Block {
  const char* data = nullptr;
  DataInterface::FloatPrecision precision = DataInterface::SinglePrecision;
  boost::shared_ptr<const void> owner;
};

/// `p_read` is the operation that returns the bytes. A source without them writes its numbers instead.
template <unsigned int N, class Source, class Read>
Block BlockOf(const Source& p_source, Read p_read) {
  Block block;
  if (const boost::shared_array<const char> bytes = (p_source.*p_read)(block.precision)) {
    block.data = bytes.get();
    block.owner = boost::make_shared<boost::shared_array<const char>>(bytes);
  } else {
    const auto numbers = boost::make_shared<std::vector<double>>(std::size_t(N) * p_source.Count(),
                                                                 std::numeric_limits<double>::quiet_NaN());
    DoubleStreamWriter<N> writer(*numbers);
    p_source.Write(writer);
    block = {reinterpret_cast<const char*>(numbers->data()), DataInterface::DoublePrecision, numbers};
  }
  return block;
}

std::pair<NumberType, std::ptrdiff_t> TypeAndSize(DataInterface::FloatPrecision p_precision) {
  if (p_precision == DataInterface::DoublePrecision)
    return {NumberType::Double, sizeof(double)};
  return {NumberType::Float, sizeof(float)};
}

} // namespace

Array1 Array1::OfAttribute(const DataInterface::VertexAttribute1& p_source) {
  const Block block = BlockOf<1>(p_source, &DataInterface::VertexAttribute1::Attribute1);
  const auto [type, size] = TypeAndSize(block.precision);
  return {block.data, p_source.Count(), size, type, block.owner};
}

Array3 Array3::OfAttribute(const DataInterface::VertexAttribute3& p_source) {
  const Block block = BlockOf<3>(p_source, &DataInterface::VertexAttribute3::Attribute3);
  const auto [type, size] = TypeAndSize(block.precision);
  const std::size_t count = p_source.Count();
  return {Array1(block.data, count, 3 * size, type, block.owner),
          Array1(block.data + size, count, 3 * size, type, block.owner),
          Array1(block.data + 2 * size, count, 3 * size, type, block.owner)};
}

// Reading. The loops have no branches and, for packed numbers, constant strides, so that they run at memory speed.

namespace {

/// Calls `p_function` with a number of the given type.
template <class Function>
auto WithType(NumberType p_type, Function p_function) {
  switch (p_type) {
  case NumberType::Int8:
    return p_function(std::int8_t());
  case NumberType::UInt8:
    return p_function(std::uint8_t());
  case NumberType::Int16:
    return p_function(std::int16_t());
  case NumberType::UInt16:
    return p_function(std::uint16_t());
  case NumberType::Int32:
    return p_function(std::int32_t());
  case NumberType::UInt32:
    return p_function(std::uint32_t());
  case NumberType::Int64:
    return p_function(std::int64_t());
  case NumberType::UInt64:
    return p_function(std::uint64_t());
  case NumberType::Float:
    return p_function(float());
  case NumberType::Double:
    break;
  }
  return p_function(double());
}

/// Number i of an array. The stride is a constant where it is given; numbers need not be aligned.
template <class T, std::ptrdiff_t ConstantStride = 0>
class Reader {
public:
  explicit Reader(const Array1& p_array)
      : _first(static_cast<const char*>(p_array.Data()))
      , _stride(p_array.Stride()) {}
  T operator[](std::size_t p_index) const {
    T number;
    std::memcpy(&number, _first + std::ptrdiff_t(p_index) * (ConstantStride == 0 ? _stride : ConstantStride),
                sizeof(T));
    return number;
  }

private:
  const char* _first;
  std::ptrdiff_t _stride;
};

/// Calls `p_function` with the reader of an array.
template <class Function>
auto WithReader(const Array1& p_array, Function p_function) {
  return WithType(p_array.Type(), [&](auto p_number) {
    using T = decltype(p_number);
    return p_array.Stride() == sizeof(T) ? p_function(Reader<T, sizeof(T)>(p_array)) : p_function(Reader<T>(p_array));
  });
}

/// Whether each point begins where three numbers of the last one end, as in a row of points without gaps.
bool IsPacked(const Array3& p_array, std::size_t p_numberSize) {
  const auto stride = static_cast<std::ptrdiff_t>(3 * p_numberSize);
  return p_array.X().Stride() == stride && p_array.Y().Stride() == stride && p_array.Z().Stride() == stride;
}

/// Calls `p_function` with the readers of three arrays. Arrays of different types are converted to double before.
template <class Function>
auto WithReaders(const Array3& p_array, Function p_function) {
  const Array1 &x = p_array.X(), &y = p_array.Y(), &z = p_array.Z();
  if (x.Type() != y.Type() || x.Type() != z.Type()) {
    const std::vector<double> xs = Values(x), ys = Values(y), zs = Values(z);
    using Double = Reader<double, sizeof(double)>;
    return p_function(Double(xs), Double(ys), Double(zs));
  }
  return WithType(x.Type(), [&](auto p_number) {
    using T = decltype(p_number);
    using Packed = Reader<T, 3 * sizeof(T)>;
    return IsPacked(p_array, sizeof(T)) ? p_function(Packed(x), Packed(y), Packed(z))
                                        : p_function(Reader<T>(x), Reader<T>(y), Reader<T>(z));
  });
}

/// Iterates over the results of a function of an index, from which a vector is made in one pass, without zeros first.
template <class Value, class Function>
class Generator {
public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = Value;
  using difference_type = std::ptrdiff_t;
  using pointer = const Value*;
  using reference = Value;

  Generator(const Function& p_function, std::size_t p_index)
      : _function(&p_function)
      , _index(p_index) {}
  Value operator*() const { return (*_function)(_index); }
  Generator& operator++() {
    ++_index;
    return *this;
  }
  bool operator==(const Generator& p_other) const { return _index == p_other._index; }
  bool operator!=(const Generator& p_other) const { return _index != p_other._index; }
  difference_type operator-(const Generator& p_other) const { return difference_type(_index - p_other._index); }

private:
  const Function* _function;
  std::size_t _index;
};

template <class Value, class Function>
std::vector<Value> Generate(std::size_t p_count, const Function& p_function) {
  using Iterator = Generator<Value, Function>;
  return std::vector<Value>(Iterator(p_function, 0), Iterator(p_function, p_count));
}

template <class T>
std::vector<T> Convert(const Array1& p_array) {
  return WithReader(p_array, [&](auto p_reader) {
    return Generate<T>(p_array.Count(), [=](std::size_t p_index) { return static_cast<T>(p_reader[p_index]); });
  });
}

template <class T>
std::vector<Vector3_Base<T>> Convert(const Array3& p_array, const Vector3_Base<double>& p_origin) {
  return WithReaders(p_array, [&](auto p_x, auto p_y, auto p_z) {
    const Vector3_Base<double> origin = p_origin; // copies, which the stores cannot change
    const std::size_t count = p_array.Count();
    std::vector<Vector3_Base<T>> points(count); // zeros first: faster than points that are built one by one
    Vector3_Base<T>* const out = points.data();
    for (std::size_t i = 0; i < count; ++i)
      out[i] = {static_cast<T>(static_cast<double>(p_x[i]) - origin.x),
                static_cast<T>(static_cast<double>(p_y[i]) - origin.y),
                static_cast<T>(static_cast<double>(p_z[i]) - origin.z)};
    return points;
  });
}

} // namespace

std::vector<double> Values(const Array1& p_array) {
  return Convert<double>(p_array);
}

std::vector<float> FloatValues(const Array1& p_array) {
  return Convert<float>(p_array);
}

std::vector<Vector3_Base<double>> Points(const Array3& p_array) {
  return Convert<double>(p_array, {});
}

std::vector<Vector3_Base<float>> FloatPoints(const Array3& p_array, const Vector3_Base<double>& p_origin) {
  return Convert<float>(p_array, p_origin);
}

namespace {

/// Zero if all numbers are finite, else NaN.
template <class... Numbers>
double ZeroIfFinite(Numbers... p_numbers) {
  return (0.0 + ... + (p_numbers - p_numbers));
}

/// As `range += number`, without branches.
void Grow(double p_number, double& p_min, double& p_max) {
  p_min = p_number < p_min ? p_number : p_min;
  p_max = p_number > p_max ? p_number : p_max;
}

} // namespace

Types::MinMax_Base<double> FiniteRange(const Array1& p_array) {
  return WithReader(p_array, [&](auto p_reader) {
    constexpr std::size_t Lanes = 4; // ranges that do not wait for each other
    Types::MinMax_Base<double> ranges[Lanes];
    const auto add = [&](std::size_t p_index, Types::MinMax_Base<double>& p_range) {
      const auto number = static_cast<double>(p_reader[p_index]);
      Grow(number + ZeroIfFinite(number), p_range.min, p_range.max);
    };
    std::size_t i = 0;
    for (; i + Lanes <= p_array.Count(); i += Lanes)
      for (std::size_t lane = 0; lane < Lanes; ++lane)
        add(i + lane, ranges[lane]);
    for (; i < p_array.Count(); ++i)
      add(i, ranges[0]);
    Types::MinMax_Base<double> all;
    for (const Types::MinMax_Base<double>& range : ranges)
      all = {std::min(all.min, range.min), std::max(all.max, range.max)};
    return all;
  });
}

Types::BoundingBox_Base<double> FiniteBounds(const Array3& p_array) {
  return WithReaders(p_array, [&](auto p_x, auto p_y, auto p_z) {
    Types::MinMax_Base<double> x, y, z;
    for (std::size_t i = 0; i < p_array.Count(); ++i) {
      const Vector3_Base<double> point(static_cast<double>(p_x[i]), static_cast<double>(p_y[i]),
                                       static_cast<double>(p_z[i]));
      const double zero = ZeroIfFinite(point.x, point.y, point.z);
      Grow(point.x + zero, x.min, x.max); // NaN changes nothing
      Grow(point.y + zero, y.min, y.max);
      Grow(point.z + zero, z.min, z.max);
    }
    return Types::BoundingBox_Base<double>({x.min, y.min, z.min}, {x.max, y.max, z.max});
  });
}

std::size_t CountMissing(const Array1& p_array) {
  return WithReader(p_array, [&](auto p_reader) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < p_array.Count(); ++i)
      count += p_reader[i] != p_reader[i] ? 1 : 0;
    return count;
  });
}

std::size_t CountMissingPoints(const Array3& p_array) {
  return WithReaders(p_array, [&](auto p_x, auto p_y, auto p_z) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < p_array.Count(); ++i)
      count += ZeroIfFinite(static_cast<double>(p_x[i]), static_cast<double>(p_y[i]), static_cast<double>(p_z[i])) == 0
                   ? 0
                   : 1;
    return count;
  });
}

} // namespace Vek::Chart::Scene
