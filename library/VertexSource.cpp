#include "library/VertexSource.h"

#include "library/private/memory/OneInterface.h"

#include <boost/make_shared.hpp>
#include <boost/shared_array.hpp>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Library {

namespace {

using namespace DataInterface;
using Ogl::VertexData;

void CheckArray(const VertexData::Array& p_array) {
  constexpr std::uint32_t Most = std::numeric_limits<std::uint32_t>::max();
  if (p_array.count > Most)
    throw std::invalid_argument("VertexSource: " + std::to_string(p_array.count) + " elements, expected at most " +
                                std::to_string(Most));
  if (!p_array.Empty() && !p_array.data)
    throw std::invalid_argument("VertexSource: a null pointer, expected " + std::to_string(p_array.count) +
                                " elements");
}

/// The common part of all sources: the interface W over an array.
template <class W>
class ArraySource : public Private::OneInterface<W> {
public:
  explicit ArraySource(const VertexData::Array& p_array)
      : _array(p_array) {
    CheckArray(p_array);
  }

  std::uint32_t Count() const override { return static_cast<std::uint32_t>(_array.count); }

protected:
  VertexData::ComponentType Type() const { return _array.type; }
  /// The elements, which live as long as a holder of the result.
  boost::shared_array<const char> Bytes() const {
    if (_array.Empty())
      return {};
    return boost::shared_array<const char>(_array.As<char>(), [owner = _array.data](const char*) {});
  }
  template <class T, class Writer>
  void WriteAs(Writer& p_writer) const {
    if (!_array.Empty())
      p_writer.Write(_array.As<T>(), std::uint64_t{_array.count} * _array.components);
  }

private:
  VertexData::Array _array;
};

/// Sources of floats and doubles also have quantity and unit.
template <class W, unsigned int N>
class FloatSource : public Private::WithUnit<ArraySource<W>> {
public:
  using Private::WithUnit<ArraySource<W>>::WithUnit;

  void Write(FloatAttributeStreamWriter<N>& p_writer) const override {
    if (this->Type() == VertexData::Double)
      this->template WriteAs<double>(p_writer);
    else
      this->template WriteAs<float>(p_writer);
  }

protected:
  boost::shared_array<const char> Floats(FloatPrecision& p_precision) const {
    if (this->Count() != 0)
      p_precision = this->Type() == VertexData::Double ? DoublePrecision : SinglePrecision;
    return this->Bytes();
  }
};

#define VEK_FLOAT_SOURCE(p_n)                                                                                          \
  class Source##p_n final : public FloatSource<VertexAttribute##p_n, p_n> {                                            \
  public:                                                                                                              \
    using FloatSource::FloatSource;                                                                                    \
    boost::shared_array<const char> Attribute##p_n(FloatPrecision& p_precision) const override {                       \
      return Floats(p_precision);                                                                                      \
    }                                                                                                                  \
  };
VEK_FLOAT_SOURCE(1)
VEK_FLOAT_SOURCE(2)
VEK_FLOAT_SOURCE(3)
VEK_FLOAT_SOURCE(4)
#undef VEK_FLOAT_SOURCE

class BoolSource final : public ArraySource<VertexAttribute1B> {
public:
  using ArraySource::ArraySource;
  boost::shared_array<const char> Attribute1B() const override { return Bytes(); }
  void Write(BoolAttributeStreamWriter<1>& p_writer) const override { WriteAs<unsigned char>(p_writer); }
};

class IndexSource final : public ArraySource<VertexIndex> {
public:
  using ArraySource::ArraySource;
  boost::shared_array<const char> Indices(IndexType& p_type) const override {
    if (Count() != 0)
      p_type = Type() == VertexData::UnsignedInt     ? UnsignedInt
               : Type() == VertexData::UnsignedShort ? UnsignedShort
                                                     : UnsignedByte;
    return Bytes();
  }
  void Write(IntegerAttributeStreamWriter<1>& p_writer) const override {
    if (Type() == VertexData::UnsignedInt)
      WriteAs<unsigned int>(p_writer);
    else if (Type() == VertexData::UnsignedShort)
      WriteAs<unsigned short>(p_writer);
    else
      WriteAs<unsigned char>(p_writer);
  }
};

} // namespace

void VertexSource::MakeSource(const Array& p_array, const Unit& p_unit, boost::shared_ptr<VertexAttribute1>& p_source) {
  p_source = boost::make_shared<Source1>(p_array, p_unit);
}
void VertexSource::MakeSource(const Array& p_array, const Unit& p_unit, boost::shared_ptr<VertexAttribute2>& p_source) {
  p_source = boost::make_shared<Source2>(p_array, p_unit);
}
void VertexSource::MakeSource(const Array& p_array, const Unit& p_unit, boost::shared_ptr<VertexAttribute3>& p_source) {
  p_source = boost::make_shared<Source3>(p_array, p_unit);
}
void VertexSource::MakeSource(const Array& p_array, const Unit& p_unit, boost::shared_ptr<VertexAttribute4>& p_source) {
  p_source = boost::make_shared<Source4>(p_array, p_unit);
}
void VertexSource::MakeSource(const Array& p_array, const Unit&, boost::shared_ptr<VertexAttribute1B>& p_source) {
  p_source = boost::make_shared<BoolSource>(p_array);
}
void VertexSource::MakeSource(const Array& p_array, const Unit&, boost::shared_ptr<VertexIndex>& p_source) {
  p_source = boost::make_shared<IndexSource>(p_array);
}

} // namespace Vek::Chart::Library
