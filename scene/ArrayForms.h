#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

namespace Vek::Chart::Scene {

/// The type of the numbers of an array.
enum class NumberType : unsigned char {
  Int8,   ///< signed, 8 bits
  UInt8,  ///< unsigned, 8 bits
  Int16,  ///< signed, 16 bits
  UInt16, ///< unsigned, 16 bits
  Int32,  ///< signed, 32 bits
  UInt32, ///< unsigned, 32 bits
  Int64,  ///< signed, 64 bits
  UInt64, ///< unsigned, 64 bits
  Float,  ///< single precision
  Double, ///< double precision
};

/// How `Array1` and `Array3` recognise, at compile time, what they are made from.
namespace ArrayForms {

/// Whether T is a number: an integer of up to 64 bits, float or double; not a bool or a character.
template <class T>
constexpr bool IsNumber =
    std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> && !std::is_same_v<T, wchar_t> &&
    !std::is_same_v<T, char16_t> && !std::is_same_v<T, char32_t> && !std::is_same_v<T, long double>;

/// The type of a number, by its size and sign.
template <class T>
constexpr NumberType TypeOf() {
  static_assert(IsNumber<T>);
  constexpr int Log2 = sizeof(T) == 1 ? 0 : sizeof(T) == 2 ? 1 : sizeof(T) == 4 ? 2 : 3;
  if constexpr (std::is_floating_point_v<T>)
    return Log2 == 2 ? NumberType::Float : NumberType::Double;
  else
    return static_cast<NumberType>(2 * Log2 + (std::is_signed_v<T> ? 0 : 1));
}

/// Whether `Expression<T>` is a type.
template <template <class> class Expression, class T, class = void>
constexpr bool IsValid = false;
/// It is.
template <template <class> class Expression, class T>
constexpr bool IsValid<Expression, T, std::void_t<Expression<T>>> = true;

/// A constant T, for the expressions below.
template <class T>
const T& A();

// Contiguous containers and C arrays.

/// What std::data points to, if there is std::size as well.
template <class C>
using DataReference = decltype(static_cast<void>(std::size(A<C>())), *std::data(A<C>()));

/// The type of the elements; void where C is no container.
template <class C, class = void>
struct ElementOf {
  using Type = void; ///< none
};
/// The type of the elements of a container.
template <class C>
struct ElementOf<C, std::void_t<DataReference<C>>> {
  using Type = std::remove_cv_t<std::remove_reference_t<DataReference<C>>>; ///< without const
};
/// The type of the elements; void where C is no container.
template <class C>
using Element = typename ElementOf<C>::Type;

// Matrices, as Eigen has them.

/// What `data` points to, if there are sizes and strides as well.
template <class M>
using MatrixReference =
    decltype(static_cast<void>(A<M>().rows() + A<M>().cols() + A<M>().innerStride() + A<M>().outerStride()),
             *A<M>().data());
/// Eigen's constant for the order of the numbers.
template <class M>
using RowMajorFlag = decltype(M::IsRowMajor);

/// Whether M is a matrix of numbers: it has `data`, `rows`, `cols`, `innerStride` and `outerStride`.
template <class M>
constexpr bool IsMatrix() {
  if constexpr (IsValid<MatrixReference, M>)
    return IsNumber<std::decay_t<MatrixReference<M>>>;
  else
    return false;
}

/// Whether the rows of a matrix are contiguous; its columns are if it has no constant of that name.
template <class M>
constexpr bool IsRowMajor() {
  if constexpr (IsValid<RowMajorFlag, M>)
    return static_cast<bool>(M::IsRowMajor);
  else
    return false;
}

// Elements of three numbers.

///@{
/// The ways to the numbers of an element, and to their number.
template <class E>
using Indexed = decltype(A<E>()[0]);
template <class E>
using Fields = decltype(A<E>().x + A<E>().y + A<E>().z);
template <class E>
using Getters = decltype(A<E>().x() + A<E>().y() + A<E>().z());
template <class E>
using TupleSize = decltype(std::tuple_size<E>::value);
template <class E>
using SizeFlag = decltype(E::SizeAtCompileTime);
template <class E>
using Sized = decltype(static_cast<void>(A<E>().data()), static_cast<void>(A<E>().size()));
///@}

/// The number of components of a type that can be indexed; 0 if it is not constant, as for a vector, and 3 if the type
/// does not have it.
template <class E>
constexpr int Extent() {
  if constexpr (std::is_array_v<E>)
    return static_cast<int>(std::extent_v<E>);
  else if constexpr (std::is_pointer_v<E>)
    return 0;
  else if constexpr (IsValid<TupleSize, E>)
    return static_cast<int>(std::tuple_size<E>::value);
  else if constexpr (IsValid<SizeFlag, E>)
    return static_cast<int>(E::SizeAtCompileTime);
  else
    return IsValid<Sized, E> ? 0 : 3;
}

/// Component I of an element: `e[I]`, else `e.x`, else `e.x()`; nothing for elements that have none of them.
template <int I, class E>
decltype(auto) Component([[maybe_unused]] const E& p_element) {
  if constexpr (IsValid<Indexed, E>) {
    if constexpr (Extent<E>() == 3)
      return p_element[I];
  } else if constexpr (IsValid<Fields, E>) {
    if constexpr (I == 0)
      return (p_element.x);
    else if constexpr (I == 1)
      return (p_element.y);
    else
      return (p_element.z);
  } else if constexpr (IsValid<Getters, E>) {
    if constexpr (I == 0)
      return p_element.x();
    else if constexpr (I == 1)
      return p_element.y();
    else
      return p_element.z();
  }
}

/// What `Component` returns: a reference into the element, or a copy.
template <int I, class E>
using ComponentResult = decltype(Component<I>(A<E>()));
/// The type of a component.
template <int I, class E>
using ComponentType = std::decay_t<ComponentResult<I, E>>;

/// Whether E has three numbers at constant positions: `Component` returns references, or E is as large as three copies.
template <class E>
constexpr bool IsTriple() {
  if constexpr (std::is_void_v<E>) {
    return false;
  } else if constexpr (IsNumber<ComponentType<0, E>> && IsNumber<ComponentType<1, E>> &&
                       IsNumber<ComponentType<2, E>>) {
    constexpr std::size_t Packed = 3 * sizeof(ComponentType<0, E>);
    return std::is_lvalue_reference_v<ComponentResult<0, E>> ? sizeof(E) >= Packed : sizeof(E) == Packed;
  } else {
    return false;
  }
}

/// Component I of an element, by address.
template <int I, class E>
const ComponentType<I, E>* ComponentAddress(const E& p_element) {
  if constexpr (std::is_lvalue_reference_v<ComponentResult<I, E>>)
    return std::addressof(Component<I>(p_element));
  else
    return reinterpret_cast<const ComponentType<I, E>*>(std::addressof(p_element)) + I;
}

/// False, for static_assert.
template <class>
constexpr bool Never = false;

} // namespace ArrayForms
} // namespace Vek::Chart::Scene
