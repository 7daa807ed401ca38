#include "library/CloneAttribute.h"

#include "library/StreamWriter.h"
#include "library/private/memory/GrowingDataWriter.h"
#include "platform/data/QuantityUnit.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"
#include "platform/debug/Check.h"
#include "platform/interface/UnknownInterface.h"
#include "platform/utility/GetLogger.h"

#include <boost/array.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_array.hpp>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace Vek::Chart::Library {

namespace {

using namespace DataInterface;
using SupportedInterface::AnyInterface;
using SupportedInterface::InterfaceID;
using SupportedInterface::ISupportedInterface;

template <class E>
using Elements = boost::shared_ptr<std::vector<E>>;

/// The part that all clones share: the interface W over a vector of elements E that is never changed.
template <class W, class E>
class Clone : public W {
public:
  Clone(const Elements<E>& p_attributes, const char* p_constructor)
      : _attributes(p_attributes) {
    VEK_ENSURE(_attributes, p_constructor);
  }

  std::uint32_t Count() const override { return _attributes ? static_cast<std::uint32_t>(_attributes->size()) : 0; }

  bool IsSupportedInterface(const InterfaceID& p_id) const override { return p_id == InterfaceID::Of<W>(); }
  AnyInterface QuerySupportedInterface(const InterfaceID& p_id) override {
    if (p_id == InterfaceID::Of<W>())
      return AnyInterface::Of<W>(*this);
    throw SupportedInterface::UnknownInterface(p_id);
  }

protected:
  template <class Writer>
  void WriteAll(Writer& p_writer) const {
    if (_attributes && !_attributes->empty())
      p_writer.Write(_attributes->front().data(), std::uint64_t{_attributes->size()} * E::static_size);
    else
      p_writer.Write(static_cast<const typename E::value_type*>(nullptr), 0);
  }

private:
  Elements<E> _attributes;
};

/// Clones of float attributes also tell quantity and unit.
template <class W, unsigned int N>
class FloatClone : public Clone<W, boost::array<float, N>>, public QuantityUnit {
  using Base = Clone<W, boost::array<float, N>>;

public:
  FloatClone(const Elements<boost::array<float, N>>& p_attributes, QuantityUnitPair p_unit, const char* p_constructor)
      : Base(p_attributes, p_constructor)
      , _unit(std::move(p_unit)) {}

  void Write(FloatAttributeStreamWriter<N>& p_writer) const override { this->WriteAll(p_writer); }
  QuantityUnitPair GetQuantityUnit() const override { return _unit; }

  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<QuantityUnit>() || Base::IsSupportedInterface(p_id);
  }
  AnyInterface QuerySupportedInterface(const InterfaceID& p_id) override {
    if (p_id == InterfaceID::Of<QuantityUnit>())
      return AnyInterface::Of<QuantityUnit>(*this);
    return Base::QuerySupportedInterface(p_id);
  }

private:
  QuantityUnitPair _unit;
};

/// A clone does not serve raw bytes: the caller falls back to `Write`.
boost::shared_array<const char> NoBytes(const std::string& p_accessor, int p_line) {
  VEK_SENTRY("const class boost::shared_array<char const > __cdecl `anonymous-namespace'::" + p_accessor + " const",
             p_line);
  return {};
}

#define VEK_ELEMENTS(p_type, p_count)                                                                                  \
  "const class boost::shared_ptr<class std::vector<class boost::array<" p_type "," p_count                             \
  ">,class std::allocator<class boost::array<" p_type "," p_count "> > > > &"

// The six clone classes. Each names itself in its reports.
#define VEK_FLOAT_CLONE(p_n, p_line)                                                                                   \
  class ClonedVertexAttribute##p_n : public FloatClone<VertexAttribute##p_n, p_n> {                                    \
  public:                                                                                                              \
    ClonedVertexAttribute##p_n(const Elements<boost::array<float, p_n>>& p_attributes, QuantityUnitPair p_unit)        \
        : FloatClone(p_attributes, std::move(p_unit),                                                                  \
                     "__cdecl `anonymous-namespace'::ClonedVertexAttribute" #p_n "::ClonedVertexAttribute" #p_n        \
                     "(" VEK_ELEMENTS("float", #p_n) ",class Vek::Chart::DataInterface::QuantityUnitPair)") {}         \
    boost::shared_array<const char> Attribute##p_n(FloatPrecision&) const override {                                   \
      return NoBytes("ClonedVertexAttribute" #p_n "::Attribute" #p_n                                                   \
                     "(enum Vek::Chart::DataInterface::FloatPrecision &)",                                             \
                     p_line);                                                                                          \
    }                                                                                                                  \
  };
VEK_FLOAT_CLONE(1, 132)
VEK_FLOAT_CLONE(2, 177)
VEK_FLOAT_CLONE(3, 222)
VEK_FLOAT_CLONE(4, 267)

class ClonedVertexAttribute1B : public Clone<VertexAttribute1B, boost::array<unsigned char, 1>> {
public:
  explicit ClonedVertexAttribute1B(const Elements<boost::array<unsigned char, 1>>& p_attributes)
      : Clone(p_attributes, "__cdecl `anonymous-namespace'::ClonedVertexAttribute1B::ClonedVertexAttribute1B"
                            "(" VEK_ELEMENTS("unsigned char", "1") ")") {}
  boost::shared_array<const char> Attribute1B() const override {
    return NoBytes("ClonedVertexAttribute1B::Attribute1B(void)", 93);
  }
  void Write(BoolAttributeStreamWriter<1>& p_writer) const override { WriteAll(p_writer); }
};

class ClonedVertexIndex : public Clone<VertexIndex, boost::array<unsigned int, 1>> {
public:
  explicit ClonedVertexIndex(const Elements<boost::array<unsigned int, 1>>& p_attributes)
      : Clone(p_attributes, "__cdecl `anonymous-namespace'::ClonedVertexIndex::ClonedVertexIndex"
                            "(" VEK_ELEMENTS("unsigned int", "1") ")") {}
  boost::shared_array<const char> Indices(IndexType&) const override {
    return NoBytes("ClonedVertexIndex::Indices(enum Vek::Chart::DataInterface::VertexIndex::IndexType &)", 310);
  }
  void Write(IntegerAttributeStreamWriter<1>& p_writer) const override { WriteAll(p_writer); }
};

/// Describes a clone on the debug channel. `p_unit` is null for data without quantity and unit.
void LogClone(const char* p_type, std::uint32_t p_count, std::size_t p_elementBytes, const QuantityUnitPair* p_unit) {
  vekdebug::dbgostream& out = Utility::GetLogger().dout("DataRepository");
  if (!out.active())
    return;
  out << "Library::CloneAttribute:" << std::endl;
  out << "    type = " << p_type << std::endl;
  out << "    count = " << std::to_string(p_count) << std::endl;
  if (p_unit != nullptr) {
    out << "    quantity = " << p_unit->quantity << std::endl;
    out << "    unit = " << p_unit->unit << std::endl;
  }
  out << "    bytes = " << std::to_string(std::uint64_t{p_count} * p_elementBytes) << std::endl;
}

/// What a source writes its elements to.
template <class E>
class CloneWriter final : public StreamWriterKind<E, Private::GrowingDataWriter<E>>::Base {
  using Base = typename StreamWriterKind<E, Private::GrowingDataWriter<E>>::Base;

public:
  using Destination = typename Private::GrowingDataWriter<E>::Destination;
  explicit CloneWriter(const Destination& p_dest)
      : Base(p_dest) {}
  void Finish() { this->_writer.Finish(); }
};

/// Lets the source write all its elements into a new vector.
template <class E, class W>
Elements<E> CopyElements(const W& p_source, std::uint32_t p_count) {
  const Elements<E> elements = boost::make_shared<std::vector<E>>();
  if (p_count != 0) {
    CloneWriter<E> writer({*elements, p_count});
    p_source.Write(writer);
    writer.Finish();
  }
  return elements;
}

/// What the source says of quantity and unit; two empty texts when it says nothing.
QuantityUnitPair UnitOf(const boost::shared_ptr<ISupportedInterface>& p_source) {
  const boost::shared_ptr<QuantityUnit> unit = SupportedInterface::QueryInterface<QuantityUnit>(p_source);
  return unit ? unit->GetQuantityUnit() : QuantityUnitPair();
}

using Result = boost::shared_ptr<ISupportedInterface>;

/// Clones the source as a W when it is one.
template <class W, unsigned int N, class Cloned>
Result CloneFloats(const boost::shared_ptr<ISupportedInterface>& p_source, const char* p_type) {
  using E = boost::array<float, N>;
  const boost::shared_ptr<W> source = SupportedInterface::QueryInterface<W>(p_source);
  if (!source)
    return {};
  const std::uint32_t count = source->Count();
  const QuantityUnitPair unit = UnitOf(p_source);
  LogClone(p_type, count, sizeof(E), &unit);
  return boost::make_shared<Cloned>(CopyElements<E>(*source, count), unit);
}

template <class W, class E, class Cloned>
Result ClonePlain(const boost::shared_ptr<ISupportedInterface>& p_source, const char* p_type) {
  const boost::shared_ptr<W> source = SupportedInterface::QueryInterface<W>(p_source);
  if (!source)
    return {};
  const std::uint32_t count = source->Count();
  LogClone(p_type, count, sizeof(E), nullptr);
  return boost::make_shared<Cloned>(CopyElements<E>(*source, count));
}

} // namespace

boost::shared_ptr<ISupportedInterface> CloneAttribute(const boost::shared_ptr<ISupportedInterface>& p_source) {
  Result clone = CloneFloats<VertexAttribute1, 1, ClonedVertexAttribute1>(p_source, "VertexAttribute1");
  if (!clone)
    clone = ClonePlain<VertexAttribute1B, boost::array<unsigned char, 1>, ClonedVertexAttribute1B>(p_source,
                                                                                                   "VertexAttribute1B");
  if (!clone)
    clone = CloneFloats<VertexAttribute2, 2, ClonedVertexAttribute2>(p_source, "VertexAttribute2");
  if (!clone)
    clone = CloneFloats<VertexAttribute3, 3, ClonedVertexAttribute3>(p_source, "VertexAttribute3");
  if (!clone)
    clone = CloneFloats<VertexAttribute4, 4, ClonedVertexAttribute4>(p_source, "VertexAttribute4");
  if (!clone)
    clone = ClonePlain<VertexIndex, boost::array<unsigned int, 1>, ClonedVertexIndex>(p_source, "VertexIndex");
  if (!clone)
    VEK_SENTRY("class boost::shared_ptr<class Vek::SupportedInterface::ISupportedInterface> __cdecl "
               "Vek::Chart::Library::CloneAttribute(const class boost::shared_ptr<class "
               "Vek::SupportedInterface::ISupportedInterface> &)",
               500);
  return clone;
}

} // namespace Vek::Chart::Library
