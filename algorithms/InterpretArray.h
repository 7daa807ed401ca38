#pragma once

#include "algorithms/Array.h"
#include "algorithms/Export.h"
#include "platform/debug/Check.h"
#include "platform/debug/ContainerTypeName.h"
#include "platform/debug/TypeName.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/Vec.h"

#include <boost/array.hpp>
#include <boost/function.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

/// Type name used in report signatures.
template <class T>
struct vekdebug::TypeName<Vek::Chart::Ogl::BufferPool::WriteArray<T>> {
  /// The name.
  static std::string Text() { return "class Vek::Chart::Ogl::BufferPool::WriteArray<" + TypeName<T>::Text() + " >"; }
};

/// Flat arrays of scalars, read as sequences of tuples.
///
/// A source of scalars S is read as tuples D of N components: tuple i consists of the scalars i·N to i·N + N − 1, each
/// converted to the component type U of D. Scalars after the last whole tuple are ignored. Integers are zero-extended,
/// doubles rounded to the nearest float (infinity beyond its range), floats copied; a bool is copied as its byte,
/// whatever its value.
///
/// \snippet DataSnippets.cpp InterpretArray
namespace Vek::Chart::Algorithms {

/// Describes a tuple type: `Count` components of type `Scalar`, without padding.
template <class D>
struct TupleTraits;
/// A boost::array.
template <class U, std::size_t N>
struct TupleTraits<boost::array<U, N>> {
  using Scalar = U;                       ///< the type of a component
  static constexpr std::size_t Count = N; ///< number of components
};
/// One component, x.
template <class U>
struct TupleTraits<Ogl::Vec1<U>> {
  using Scalar = U;                       ///< the type of a component
  static constexpr std::size_t Count = 1; ///< number of components
};
/// Three components: x, y, z.
template <class U>
struct TupleTraits<Ogl::Vec3<U>> {
  using Scalar = U;                       ///< the type of a component
  static constexpr std::size_t Count = 3; ///< number of components
};

/// Converts `p_count` consecutive scalars. Both arrays hold that many and do not overlap.
template <class S, class U>
void ConvertScalars(const S* p_source, const std::uint64_t p_count, U* p_dest) {
  // A bool is copied as its byte: reading a byte that is neither 0 nor 1 as a bool would be undefined.
  static_assert(std::is_same_v<S, U> || (std::is_same_v<S, bool> && std::is_same_v<U, unsigned char>));
  if (p_count != 0)
    std::memcpy(p_dest, p_source, p_count * sizeof(U));
}
///@{
/// Converts to another type: to the nearest float, infinite beyond its range; integers are zero-extended.
VEK_ALGORITHMS_API void ConvertScalars(const double* p_source, std::uint64_t p_count, float* p_dest);
VEK_ALGORITHMS_API void ConvertScalars(const unsigned char* p_source, std::uint64_t p_count, unsigned int* p_dest);
VEK_ALGORITHMS_API void ConvertScalars(const unsigned short* p_source, std::uint64_t p_count, unsigned int* p_dest);
///@}

/// Converts the scalars of `p_count` consecutive tuples.
template <class D, class S>
void ConvertTuples(const S* p_source, const std::uint64_t p_count, D* p_dest) {
  using Traits = TupleTraits<D>;
  static_assert(sizeof(D) == Traits::Count * sizeof(typename Traits::Scalar) && std::is_trivially_copyable_v<D>,
                "tuples without gaps");
  ConvertScalars(p_source, p_count * Traits::Count, reinterpret_cast<typename Traits::Scalar*>(p_dest));
}

/// Reads single tuples of a flat array, which must outlive it.
template <class S, class D>
class VEK_ALGORITHMS_API InterpretedArrayConverter {
public:
  /// `p_count` is the number of tuples.
  InterpretedArrayConverter(const S* p_data, const std::uint64_t p_count)
      : _data(p_data)
      , _count(p_count) {}

  /// Tuple `p_index`. An index past the end reports "p_index < _count" and yields zeros.
  D operator()(const std::uint64_t p_index) const {
    D tuple{};
    if (VEK_ENSURE(p_index < _count, CallSignature()))
      ConvertTuples(_data + p_index * TupleTraits<D>::Count, 1, &tuple);
    return tuple;
  }

private:
  static std::string CallSignature() {
    const std::string tuple = vekdebug::TypeName<D>::Text();
    return tuple + " __cdecl Vek::Chart::Algorithms::InterpretedArrayConverter<" + vekdebug::TypeName<S>::Text() + "," +
           tuple + " >::operator ()(const unsigned __int64) const";
  }

  const S* _data;
  std::uint64_t _count;
};

/// Copies arrays of scalars as tuples. The two types are those of the argument and of the view that is read.
template <class Source, class View>
class InterpretArray;

/// Copies an array of scalars S.
template <class S>
class VEK_ALGORITHMS_API InterpretArray<DataInterface::Array<S, 0>, DataInterface::Array<S, 0>> {
public:
  /// The source of a copy.
  using Source = DataInterface::Array<S, 0>;

  /// A source as a sequence of tuples D. The data of the source must outlive it.
  template <class D>
  class Tuples {
  public:
    /// An empty source is reported by its element access as "p_index < _count".
    explicit Tuples(const Source& p_source)
        : _data(&p_source[0])
        , _count(p_source.size() / TupleTraits<D>::Count)
        , _read(InterpretedArrayConverter<S, D>(_data, _count)) {}

    /// The number of whole tuples.
    std::uint64_t size() const { return _count; }
    /// Tuple `p_index`; as InterpretedArrayConverter.
    D operator[](const std::size_t p_index) const { return _read(p_index); }
    /// The first scalar.
    const S* Data() const { return _data; }

  private:
    const S* _data;
    std::uint64_t _count;
    boost::function<D(std::size_t)> _read;
  };

  /// Writes all tuples of the source to `p_destArray` from element `p_destArrayOffset` on. `Container` is
  /// std::vector<D> or Ogl::BufferPool::WriteArray<Ogl::Attribute<D>>; its size stays as it is.
  ///
  /// An empty source is reported as "p_index < _count", and nothing is written. If the tuples do not fit behind the
  /// offset, "sourceArray.size() + p_destArrayOffset <= p_destArray.size()" is reported and those that fit are written;
  /// for a WriteArray each of the others is reported as "p_index < _count".
  template <class D, class Container>
  static void CopyArrayToWithOffset(const Source& p_sourceArray, Container& p_destArray,
                                    const std::uint64_t p_destArrayOffset) {
    const Tuples<D> sourceArray(p_sourceArray);
    const std::uint64_t size = Size(p_destArray);
    const std::uint64_t room = p_destArrayOffset < size ? size - p_destArrayOffset : 0;
    const std::uint64_t fitting = std::min(sourceArray.size(), room);
    // The sum of the expression may wrap, the comparison here cannot.
    VEK_ENSURE_TEXT(p_destArrayOffset <= size && sourceArray.size() <= room,
                    "sourceArray.size() + p_destArrayOffset <= p_destArray.size()", (CopySignature<D, Container>()));
    if (fitting != 0)
      ConvertTuples(sourceArray.Data(), fitting, First<D>(p_destArray) + p_destArrayOffset);
    if (fitting < sourceArray.size())
      Refuse(sourceArray, fitting, p_destArray, p_destArrayOffset);
  }

private:
  template <class D>
  static std::uint64_t Size(const std::vector<D>& p_dest) {
    return p_dest.size();
  }
  template <class T>
  static std::uint64_t Size(const Ogl::BufferPool::WriteArray<T>& p_dest) {
    return p_dest.Count();
  }

  template <class D>
  static D* First(std::vector<D>& p_dest) {
    return p_dest.data();
  }
  template <class D, class T>
  static D* First(Ogl::BufferPool::WriteArray<T>& p_dest) {
    static_assert(sizeof(T) == sizeof(D) && std::is_base_of_v<D, T>, "an attribute is its record");
    return p_dest.Data();
  }

  // Reports the tuples from p_first on, which do not fit.
  template <class D>
  static void Refuse(const Tuples<D>&, std::uint64_t, std::vector<D>&, std::uint64_t) {}
  template <class D, class T>
  static void Refuse(const Tuples<D>& p_source, const std::uint64_t p_first, Ogl::BufferPool::WriteArray<T>& p_dest,
                     const std::uint64_t p_offset) {
    DataInterface::Array<T, 2> dest(p_dest.Data(), p_dest.Count());
    for (std::uint64_t i = p_first; i < p_source.size(); ++i) {
      const bool wraps = i > std::numeric_limits<std::uint64_t>::max() - p_offset;
      dest[wraps ? std::numeric_limits<std::uint64_t>::max() : p_offset + i] = p_source[i];
    }
  }

  template <class D, class Container>
  static std::string CopySignature() {
    const std::string source = vekdebug::TypeName<Source>::Text();
    const std::string container = vekdebug::TypeName<Container>::Text();
    return "void __cdecl Vek::Chart::Algorithms::InterpretArray<" + source + "," + source +
           " >::CopyArrayToWithOffset<" + vekdebug::TypeName<D>::Text() + "," + container + " >(const " + source +
           " &," + container + " &,const unsigned __int64)";
  }
};

// The instances in the library: source scalar, component and number of components of the tuples of a vector; source
// scalar and record of a GPU buffer.
// clang-format off
#define VEK_INTERPRET_ARRAY_INSTANCES(p_vector, p_buffer)                                                              \
  p_vector(bool, unsigned char, 1) p_vector(unsigned char, unsigned char, 1)                                           \
  p_vector(float, float, 1) p_vector(float, float, 2) p_vector(float, float, 3) p_vector(float, float, 4)              \
  p_vector(double, float, 1) p_vector(double, float, 2) p_vector(double, float, 3) p_vector(double, float, 4)          \
  p_vector(unsigned char, unsigned int, 1) p_vector(unsigned short, unsigned int, 1)                                   \
  p_vector(unsigned int, unsigned int, 1)                                                                              \
  p_buffer(float, Vec3<float>) p_buffer(double, Vec3<float>)                                                           \
  p_buffer(unsigned char, Vec1<unsigned int>) p_buffer(unsigned short, Vec1<unsigned int>)                             \
  p_buffer(unsigned int, Vec1<unsigned int>)
// clang-format on

#define VEK_EXTERN_TO_VECTOR(S, U, N)                                                                                  \
  extern template class VEK_ALGORITHMS_API InterpretedArrayConverter<S, boost::array<U, N>>;                           \
  extern template void                                                                                                 \
  InterpretArray<DataInterface::Array<S, 0>, DataInterface::Array<S, 0>>::CopyArrayToWithOffset<boost::array<U, N>>(   \
      const DataInterface::Array<S, 0>&, std::vector<boost::array<U, N>>&, std::uint64_t);
#define VEK_EXTERN_TO_BUFFER(S, D)                                                                                     \
  extern template class VEK_ALGORITHMS_API InterpretedArrayConverter<S, Ogl::D>;                                       \
  extern template void                                                                                                 \
  InterpretArray<DataInterface::Array<S, 0>, DataInterface::Array<S, 0>>::CopyArrayToWithOffset<Ogl::D>(               \
      const DataInterface::Array<S, 0>&, Ogl::BufferPool::WriteArray<Ogl::Attribute<Ogl::D>>&, std::uint64_t);
VEK_INTERPRET_ARRAY_INSTANCES(VEK_EXTERN_TO_VECTOR, VEK_EXTERN_TO_BUFFER)
#undef VEK_EXTERN_TO_VECTOR
#undef VEK_EXTERN_TO_BUFFER

} // namespace Vek::Chart::Algorithms
