#pragma once

#include "algorithms/InterpretArray.h"
#include "platform/data/StreamWriter.h"
#include "platform/debug/Check.h"
#include "platform/debug/ContainerTypeName.h"
#include "platform/interface/AnyInterface.h"
#include "platform/interface/UnknownInterface.h"

#include <boost/array.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Writers that store the scalars of a source in a container, converted to the container's element type.
///
/// Elements beyond the end of the container are reported and dropped; the write position advances all the same.
namespace Vek::Chart::Library {

namespace ContainerOperations {
/// The container keeps its size.
class StaticContainer;
} // namespace ContainerOperations

/// Supports queries for the writer interface W only; others throw UnknownInterface.
template <class W>
class StreamWriterInterfaceImpl : public W {
public:
  /// True for the id of W only.
  bool IsSupportedInterface(const SupportedInterface::InterfaceID& p_id) const override { return p_id == ID(); }
  /// The writer as a W; throws UnknownInterface for any other id.
  SupportedInterface::AnyInterface QuerySupportedInterface(const SupportedInterface::InterfaceID& p_id) override {
    if (p_id != ID())
      throw SupportedInterface::UnknownInterface(p_id);
    return SupportedInterface::AnyInterface::Of<W>(*this);
  }

private:
  static const SupportedInterface::InterfaceID& ID() {
    static const SupportedInterface::InterfaceID Id = SupportedInterface::InterfaceID::Of<W>();
    return Id;
  }
};

/// The base of data writers, which store elements E in a container.
template <class E, class Container>
class DataWriterBase {
public:
  virtual ~DataWriterBase() = default;
};

template <class E, class Container, class Operations>
class ContainerDataWriter;

/// Stores elements in a vector, one after the other. The vector keeps its size and must outlive the writer.
template <class E>
class ContainerDataWriter<E, std::vector<E>, ContainerOperations::StaticContainer>
    : public DataWriterBase<E, std::vector<E>> {
public:
  /// Starts at the first element.
  explicit ContainerDataWriter(std::vector<E>& p_dest)
      : _dest(&p_dest) {}

  /// Converts the whole elements among `p_scalarCount` scalars and advances by as many. Elements that do not fit are
  /// reported and dropped; an empty source is reported.
  template <class S>
  void WriteData(const S* p_data, std::uint64_t p_scalarCount) {
    using Source = DataInterface::Array<S, 0>;
    Algorithms::InterpretArray<Source, Source>::template CopyArrayToWithOffset<E>(Source(p_data, p_scalarCount), *_dest,
                                                                                  _currentIndex);
    _currentIndex += p_scalarCount / Algorithms::TupleTraits<E>::Count;
  }

  /// Advances by that many elements. A position past the end is reported.
  void AdvanceWriteIndex(std::uint64_t p_offsetInDestinationTypeUnits) {
    // The sum of the expression may wrap, the comparison here cannot.
    const bool fits = _currentIndex <= _dest->size() && p_offsetInDestinationTypeUnits <= _dest->size() - _currentIndex;
    VEK_ENSURE_TEXT(fits, "_currentIndex + p_offsetInDestinationTypeUnits <= _dest.size()", AdvanceSignature());
    _currentIndex += p_offsetInDestinationTypeUnits;
  }

  /// The position of the next write, in elements.
  std::uint64_t CurrentIndex() const { return _currentIndex; }

private:
  static std::string AdvanceSignature() {
    return "void __cdecl Vek::Chart::Library::ContainerDataWriter<" + vekdebug::TypeName<E>::Text() + "," +
           vekdebug::TypeName<std::vector<E>>::Text() +
           ",class Vek::Chart::Library::ContainerOperations::StaticContainer>::AdvanceWriteIndex(const unsigned "
           "__int64)";
  }

  std::vector<E>* _dest;
  std::uint64_t _currentIndex = 0;
};

/// The common part of all writers: a data writer and its position.
template <class Writer>
class StreamWriterBaseImpl {
public:
  /// The position of the next write, in destination elements.
  std::uint64_t CurrentIndex() const { return _writer.CurrentIndex(); }

protected:
  /// Passes the container on to the data writer.
  template <class Container>
  explicit StreamWriterBaseImpl(Container& p_dest)
      : _writer(p_dest) {}
  /// Advances the write position by that many elements.
  void SkipElements(std::uint64_t p_count) { _writer.AdvanceWriteIndex(p_count); }

  Writer _writer; ///< stores the elements
};

/// A writer of Boolean values over a data writer.
template <unsigned int N, class Writer>
class BoolStreamWriterBase : public StreamWriterInterfaceImpl<DataInterface::BoolAttributeStreamWriter<N>>,
                             public StreamWriterBaseImpl<Writer> {
public:
  using StreamWriterBaseImpl<Writer>::StreamWriterBaseImpl;
  void Skip(std::uint64_t p_count) override { this->SkipElements(p_count); }
  void Write(const unsigned char* p_data, std::uint64_t p_scalarCount) override {
    this->_writer.WriteData(p_data, p_scalarCount);
  }
  void Write(const bool* p_data, std::uint64_t p_scalarCount) override {
    this->_writer.WriteData(p_data, p_scalarCount);
  }
};

/// A writer of floating-point numbers over a data writer.
template <unsigned int N, class Writer>
class FloatStreamWriterBase : public StreamWriterInterfaceImpl<DataInterface::FloatAttributeStreamWriter<N>>,
                              public StreamWriterBaseImpl<Writer> {
public:
  using StreamWriterBaseImpl<Writer>::StreamWriterBaseImpl;
  void Skip(std::uint64_t p_count) override { this->SkipElements(p_count); }
  void Write(const double* p_data, std::uint64_t p_scalarCount) override {
    this->_writer.WriteData(p_data, p_scalarCount);
  }
  void Write(const float* p_data, std::uint64_t p_scalarCount) override {
    this->_writer.WriteData(p_data, p_scalarCount);
  }
};

/// A writer of unsigned integers over a data writer.
template <unsigned int N, class Writer>
class IntegerStreamWriterBase : public StreamWriterInterfaceImpl<DataInterface::IntegerAttributeStreamWriter<N>>,
                                public StreamWriterBaseImpl<Writer> {
public:
  using StreamWriterBaseImpl<Writer>::StreamWriterBaseImpl;
  void Skip(std::uint64_t p_count) override { this->SkipElements(p_count); }
  void Write(const unsigned int* p_data, std::uint64_t p_scalarCount) override {
    this->_writer.WriteData(p_data, p_scalarCount);
  }
  void Write(const unsigned short* p_data, std::uint64_t p_scalarCount) override {
    this->_writer.WriteData(p_data, p_scalarCount);
  }
  void Write(const unsigned char* p_data, std::uint64_t p_scalarCount) override {
    this->_writer.WriteData(p_data, p_scalarCount);
  }
};

/// The kind of writer for an element type.
template <class E, class Writer>
struct StreamWriterKind;
/// Bytes: Boolean values.
template <class Writer>
struct StreamWriterKind<boost::array<unsigned char, 1>, Writer> {
  using Base = BoolStreamWriterBase<1, Writer>; ///< the writer class
};
/// Floats: floating-point numbers.
template <std::size_t N, class Writer>
struct StreamWriterKind<boost::array<float, N>, Writer> {
  using Base = FloatStreamWriterBase<N, Writer>; ///< the writer class
};
/// Unsigned integers.
template <std::size_t N, class Writer>
struct StreamWriterKind<boost::array<unsigned int, N>, Writer> {
  using Base = IntegerStreamWriterBase<N, Writer>; ///< the writer class
};

template <class Container, class Operations, class E>
class ContainerStreamWriter;

/// Stores the vertex data of a source in a vector, converted to its elements E: boost::array<unsigned char, 1>,
/// boost::array<float, 1 to 4> or boost::array<unsigned int, 1 to 4>. The vector keeps its size.
///
/// \snippet DataSnippets.cpp ContainerStreamWriter
/// \ingroup data
template <class E>
class ContainerStreamWriter<std::vector<E>, ContainerOperations::StaticContainer, E> final
    : public StreamWriterKind<E, ContainerDataWriter<E, std::vector<E>, ContainerOperations::StaticContainer>>::Base {
  using Base =
      typename StreamWriterKind<E, ContainerDataWriter<E, std::vector<E>, ContainerOperations::StaticContainer>>::Base;

public:
  /// Starts at the first element of the vector, which must outlive the writer.
  explicit ContainerStreamWriter(std::vector<E>& p_destination)
      : Base(p_destination) {}
};

} // namespace Vek::Chart::Library
