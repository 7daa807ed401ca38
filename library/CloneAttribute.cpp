#include "library/CloneAttribute.h"

#include "library/StreamWriter.h"
#include "library/private/memory/GrowingDataWriter.h"
#include "library/private/memory/OneInterface.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"
#include "platform/debug/Check.h"
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
using SupportedInterface::ISupportedInterface;

namespace Signature {
#define VEK_SOURCE "class boost::shared_ptr<class Vek::SupportedInterface::ISupportedInterface>"
#define VEK_ACCESSOR "const class boost::shared_array<char const > __cdecl `anonymous-namespace'::Cloned"
#define VEK_FLOATS(p_n)                                                                                                \
  constexpr const char* Attribute##p_n = VEK_ACCESSOR "VertexAttribute" #p_n "::Attribute" #p_n                        \
                                                      "(enum Vek::Chart::DataInterface::FloatPrecision &) const";
VEK_FLOATS(1)
VEK_FLOATS(2)
VEK_FLOATS(3)
VEK_FLOATS(4)
constexpr const char* Attribute1B = VEK_ACCESSOR "VertexAttribute1B::Attribute1B(void) const";
constexpr const char* Indices =
    VEK_ACCESSOR "VertexIndex::Indices(enum Vek::Chart::DataInterface::VertexIndex::IndexType &) const";
constexpr const char* CloneAttribute =
    VEK_SOURCE " __cdecl Vek::Chart::Library::CloneAttribute(const " VEK_SOURCE " &)";
} // namespace Signature

template <class E>
using Elements = boost::shared_ptr<std::vector<E>>;

/// The common part of all clones: the interface W over a vector of elements E that never changes.
template <class W, class E>
class Clone : public Private::OneInterface<W> {
public:
  explicit Clone(const Elements<E>& p_attributes)
      : _attributes(p_attributes) {}

  std::uint32_t Count() const override { return static_cast<std::uint32_t>(_attributes->size()); }

protected:
  template <class Writer>
  void WriteAll(Writer& p_writer) const {
    const typename E::value_type* const scalars = _attributes->empty() ? nullptr : _attributes->front().data();
    p_writer.Write(scalars, std::uint64_t{_attributes->size()} * E::static_size);
  }

private:
  Elements<E> _attributes;
};

/// Clones of float attributes also have quantity and unit.
template <class W, unsigned int N>
class FloatClone : public Private::WithUnit<Clone<W, boost::array<float, N>>> {
public:
  using Private::WithUnit<Clone<W, boost::array<float, N>>>::WithUnit;
  void Write(FloatAttributeStreamWriter<N>& p_writer) const override { this->WriteAll(p_writer); }
};

/// A clone has no raw bytes: the caller falls back to `Write`.
boost::shared_array<const char> NoBytes(const char* p_signature, int p_line) {
  VEK_SENTRY(p_signature, p_line);
  return {};
}

// The six clone classes, each with its own signatures and lines.
#define VEK_FLOAT_CLONE(p_n, p_line)                                                                                   \
  class ClonedVertexAttribute##p_n : public FloatClone<VertexAttribute##p_n, p_n> {                                    \
  public:                                                                                                              \
    using FloatClone::FloatClone;                                                                                      \
    boost::shared_array<const char> Attribute##p_n(FloatPrecision&) const override {                                   \
      return NoBytes(Signature::Attribute##p_n, p_line);                                                               \
    }                                                                                                                  \
  };
VEK_FLOAT_CLONE(1, 132)
VEK_FLOAT_CLONE(2, 177)
VEK_FLOAT_CLONE(3, 222)
VEK_FLOAT_CLONE(4, 267)

class ClonedVertexAttribute1B : public Clone<VertexAttribute1B, boost::array<unsigned char, 1>> {
public:
  using Clone::Clone;
  boost::shared_array<const char> Attribute1B() const override { return NoBytes(Signature::Attribute1B, 93); }
  void Write(BoolAttributeStreamWriter<1>& p_writer) const override { WriteAll(p_writer); }
};

class ClonedVertexIndex : public Clone<VertexIndex, boost::array<unsigned int, 1>> {
public:
  using Clone::Clone;
  boost::shared_array<const char> Indices(IndexType&) const override { return NoBytes(Signature::Indices, 310); }
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

/// The writer that a source fills.
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

/// Quantity and unit of the source; empty strings where it has none.
QuantityUnitPair UnitOf(const boost::shared_ptr<ISupportedInterface>& p_source) {
  const boost::shared_ptr<QuantityUnit> unit = SupportedInterface::QueryInterface<QuantityUnit>(p_source);
  return unit ? unit->GetQuantityUnit() : QuantityUnitPair();
}

using Result = boost::shared_ptr<ISupportedInterface>;

/// Clones the source if it supports W; empty otherwise.
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
    VEK_SENTRY(Signature::CloneAttribute, 500);
  return clone;
}

} // namespace Vek::Chart::Library
