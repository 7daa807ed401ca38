#pragma once

#include "library/Export.h"
#include "library/StreamWriter.h"
#include "platform/data/QuantityUnit.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"
#include "platform/interface/ISupportedInterface.h"
#include "platform/interface/UnknownInterface.h"
#include "platform/ogl/VertexData.h"
#include "platform/ogl/VertexElement.h"

#include <boost/array.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vek::Chart::Library {

/// The interface of a source of elements of that many scalars.
template <class Scalar, unsigned int Count>
struct VertexSourceInterface {
  static_assert(Count == 0, "1 to 4 floats or doubles, one unsigned char (Boolean), or one unsigned int (index)");
};
/// For elements of one float.
template <>
struct VertexSourceInterface<float, 1> {
  using Type = DataInterface::VertexAttribute1; ///< the interface
};
/// For elements of two floats.
template <>
struct VertexSourceInterface<float, 2> {
  using Type = DataInterface::VertexAttribute2; ///< the interface
};
/// For elements of three floats.
template <>
struct VertexSourceInterface<float, 3> {
  using Type = DataInterface::VertexAttribute3; ///< the interface
};
/// For elements of four floats.
template <>
struct VertexSourceInterface<float, 4> {
  using Type = DataInterface::VertexAttribute4; ///< the interface
};
/// For elements of doubles, which are stored as floats.
template <unsigned int Count>
struct VertexSourceInterface<double, Count> : VertexSourceInterface<float, Count> {};
/// For elements of one unsigned char.
template <>
struct VertexSourceInterface<unsigned char, 1> {
  using Type = DataInterface::VertexAttribute1B; ///< the interface
};
/// For elements of one unsigned int.
template <>
struct VertexSourceInterface<unsigned int, 1> {
  using Type = DataInterface::VertexIndex; ///< the interface
};

/// Vertex data in memory as sources: objects with the interfaces of DataInterface.
///
/// Attributes have elements of 1 to 4 floats or doubles, as listed for Ogl::VertexElement, or of one unsigned char,
/// which are Boolean values of 0 and 1. Float attributes also have quantity and unit. Indices are unsigned char,
/// unsigned short or unsigned int. Sources provide their bytes as they are, and write all scalars in one call, none if
/// they are empty. They may be read from several threads.
///
/// Throws std::invalid_argument for more than 2^32 - 1 elements and for a null pointer to elements.
///
/// \snippet DataSnippets.cpp VertexSource
/// \ingroup data
struct VEK_LIBRARY_API VertexSource {
  /// The interface of an attribute of elements E.
  template <class E>
  using Attribute =
      typename VertexSourceInterface<typename Ogl::VertexElement<E>::Scalar, Ogl::VertexElement<E>::Count>::Type;

  /// An attribute that owns its elements; a vector that is moved in is not copied.
  template <class E>
  static boost::shared_ptr<Attribute<E>> Of(std::vector<E> p_elements,
                                            const DataInterface::QuantityUnitPair& p_unit = {}) {
    static_assert(!std::is_same_v<Attribute<E>, DataInterface::VertexIndex>, "OfIndices makes a source of indices");
    return Make<Attribute<E>>(Ogl::VertexData::MakeArray(std::move(p_elements)), p_unit);
  }
  /// An attribute of `p_count` elements of the caller, which must stay as long as the attribute and its bytes.
  template <class E>
  static boost::shared_ptr<Attribute<E>> View(const E* p_elements, std::size_t p_count,
                                              const DataInterface::QuantityUnitPair& p_unit = {}) {
    static_assert(!std::is_same_v<Attribute<E>, DataInterface::VertexIndex>, "ViewIndices makes a source of indices");
    return Make<Attribute<E>>(Ogl::VertexData::MakeArray(p_elements, p_count), p_unit);
  }
  /// Indices, owned by the source.
  template <class E>
  static boost::shared_ptr<DataInterface::VertexIndex> OfIndices(std::vector<E> p_indices) {
    static_assert(std::is_unsigned_v<E> && sizeof(E) <= 4, "unsigned char, unsigned short or unsigned int");
    return Make<DataInterface::VertexIndex>(Ogl::VertexData::MakeArray(std::move(p_indices)), {});
  }
  /// `p_count` indices of the caller, which must stay as long as the source and its bytes.
  template <class E>
  static boost::shared_ptr<DataInterface::VertexIndex> ViewIndices(const E* p_indices, std::size_t p_count) {
    static_assert(std::is_unsigned_v<E> && sizeof(E) <= 4, "unsigned char, unsigned short or unsigned int");
    return Make<DataInterface::VertexIndex>(Ogl::VertexData::MakeArray(p_indices, p_count), {});
  }

private:
  template <class W>
  static boost::shared_ptr<W> Make(const Ogl::VertexData::Array& p_array,
                                   const DataInterface::QuantityUnitPair& p_unit) {
    boost::shared_ptr<W> source;
    MakeSource(p_array, p_unit, source);
    return source;
  }
  using Array = Ogl::VertexData::Array;
  using Unit = DataInterface::QuantityUnitPair;
  static void MakeSource(const Array&, const Unit&, boost::shared_ptr<DataInterface::VertexAttribute1>& p_source);
  static void MakeSource(const Array&, const Unit&, boost::shared_ptr<DataInterface::VertexAttribute2>& p_source);
  static void MakeSource(const Array&, const Unit&, boost::shared_ptr<DataInterface::VertexAttribute3>& p_source);
  static void MakeSource(const Array&, const Unit&, boost::shared_ptr<DataInterface::VertexAttribute4>& p_source);
  static void MakeSource(const Array&, const Unit&, boost::shared_ptr<DataInterface::VertexAttribute1B>& p_source);
  static void MakeSource(const Array&, const Unit&, boost::shared_ptr<DataInterface::VertexIndex>& p_source);
};

/// All elements of a source, converted as ContainerStreamWriter does. E has 1 to 4 floats, one unsigned char (Boolean
/// values) or one unsigned int (indices), as listed for Ogl::VertexElement, and decides about the interface: three
/// floats are those of a VertexAttribute3.
///
/// Elements that the source does not write are 0; those beyond its Count() are reported and dropped. Exceptions of the
/// source and std::bad_alloc pass through.
///
/// \snippet DataSnippets.cpp VertexSource
/// \ingroup data
template <class E>
std::vector<E> Elements(const VertexSource::Attribute<E>& p_source) {
  using Element = Ogl::VertexElement<E>;
  using Tuple = boost::array<typename Element::Scalar, Element::Count>;
  std::vector<Tuple> tuples(p_source.Count());
  if (!tuples.empty()) {
    ContainerStreamWriter<std::vector<Tuple>, ContainerOperations::StaticContainer, Tuple> writer(tuples);
    p_source.Write(writer);
  }
  if constexpr (std::is_same_v<E, Tuple>) {
    return tuples;
  } else {
    static_assert(std::is_trivially_copyable_v<E>, "elements are copied as bytes");
    std::vector<E> elements(tuples.size());
    if (!tuples.empty())
      std::memcpy(static_cast<void*>(elements.data()), tuples.data(), tuples.size() * sizeof(E));
    return elements;
  }
}
/// As above, of an object that is queried for the interface. Throws UnknownInterface for a null object and for one that
/// does not implement it.
template <class E>
std::vector<E> Elements(const boost::shared_ptr<SupportedInterface::ISupportedInterface>& p_source) {
  using Source = VertexSource::Attribute<E>;
  const boost::shared_ptr<Source> source = SupportedInterface::QueryInterface<Source>(p_source);
  if (!source)
    throw SupportedInterface::UnknownInterface(SupportedInterface::InterfaceID::Of<Source>());
  return Elements<E>(*source);
}

} // namespace Vek::Chart::Library
