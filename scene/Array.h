#pragma once

#include "platform/data/VertexAttribute.h"
#include "platform/types/Geometry.h"
#include "platform/types/Range.h"
#include "platform/types/Vector.h"
#include "scene/ArrayForms.h"
#include "scene/Export.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

/// Numbers of the caller: pointer, count, stride and type. The parts of a chart take their data as this.
///
/// Made, also implicitly, from
/// - a contiguous container of numbers (std::vector, std::array, QVector, a C array, …);
/// - a container of structures and a pointer to their member;
/// - a pointer, a count and a stride in bytes, which may be 0 (one number for all) or negative;
/// - a matrix with one row or column and `data`, `rows`, `cols`, `innerStride`, `outerStride`, as those of Eigen;
/// - a `DataInterface::VertexAttribute1`.
///
/// Numbers are float, double, or integers of 8 to 64 bits. NaN stands for a missing number. Any other type is refused
/// when it is compiled. That makes functions of an Array1 and of an Array3 ambiguous if they have one name.
///
/// An array is a view: it owns nothing (but the block of a `VertexAttribute1`), and must not outlive the numbers. Parts
/// read it during the call and keep nothing of it, so that a temporary is a valid argument.
///
/// Errors: std::invalid_argument for a null pointer with a count, and for a matrix with several rows and columns.
///
/// \snippet DataSnippets.cpp Array
/// \ingroup data
class VEK_SCENE_API Array1 {
public:
  Array1() = default; ///< empty

  /// The numbers of a container, a matrix or a `VertexAttribute1`.
  template <class Source>
  Array1(const Source& p_source); // NOLINT: implicit, so that parts take containers
  /// `p_count` numbers, the next one `p_stride` bytes after the last one.
  template <class T>
  Array1(const T* p_first, std::size_t p_count, std::ptrdiff_t p_stride = sizeof(T))
      : Array1(p_first, p_count, p_stride, ArrayForms::TypeOf<T>(), {}) {}
  /// One member of all structures of a container.
  template <class Container, class Struct, class T>
  Array1(const Container& p_container, T Struct::*p_member);
  /// The same number, `p_count` times.
  static Array1 Constant(double p_number, std::size_t p_count);

  /// The numbers from `p_first` on, `p_count` of them or as many as there are.
  Array1 Part(std::size_t p_first, std::size_t p_count) const;
  /// The number of numbers.
  std::size_t Count() const { return _count; }
  /// The address of the first number; null if there is none.
  const void* Data() const { return _data; }
  /// From a number to the next one, in bytes.
  std::ptrdiff_t Stride() const { return _stride; }
  /// The type of the numbers.
  NumberType Type() const { return _type; }

private:
  friend class Array3;
  Array1(const void* p_first, std::size_t p_count, std::ptrdiff_t p_stride, NumberType p_type,
         boost::shared_ptr<const void> p_owner);
  static Array1 OfAttribute(const DataInterface::VertexAttribute1& p_source);

  const void* _data = nullptr;
  std::size_t _count = 0;
  std::ptrdiff_t _stride = 0;
  NumberType _type = NumberType::Double;
  boost::shared_ptr<const void> _owner; // of the block of an attribute, or of a constant
};

/// Points or vectors of the caller, as three arrays of equal length.
///
/// Made, also implicitly, from
/// - a contiguous container of elements with three numbers: `e[0]`, else `e.x`, else `e.x()` (std::array<double, 3>,
///   QVector3D, a structure of three floats, …). The numbers must lie in the element; if they are returned as copies,
///   the element must consist of them alone;
/// - a container of structures and pointers to three of their members;
/// - a pointer to such elements, or to numbers of which three are a point, a count and a stride in bytes;
/// - three sources of an `Array1`; the third may be one number for all;
/// - a matrix of n × 3 or 3 × n numbers, as those of Eigen; 3 × 3 could be both and is refused;
/// - a `DataInterface::VertexAttribute3`.
///
/// A view like `Array1`. A point with a number that is not finite is missing.
///
/// Errors: std::invalid_argument for arrays of different lengths, a null pointer with a count, a matrix of another
/// size, and elements with numbers elsewhere.
///
/// \snippet DataSnippets.cpp Array
/// \ingroup data
class VEK_SCENE_API Array3 {
public:
  Array3() = default; ///< empty

  /// The points of a container, a matrix or a `VertexAttribute3`.
  template <class Source>
  Array3(const Source& p_source); // NOLINT: implicit, so that parts take containers
  /// `p_count` points, the next one `p_stride` bytes after the last one. `E` is a number or an element.
  template <class E>
  Array3(const E* p_first, std::size_t p_count,
         std::ptrdiff_t p_stride = ArrayForms::IsNumber<E> ? 3 * sizeof(E) : sizeof(E));
  /// Three members of all structures of a container.
  template <class Container, class Struct, class X, class Y, class Z>
  Array3(const Container& p_container, X Struct::*p_x, Y Struct::*p_y, Z Struct::*p_z)
      : Array3(Array1(p_container, p_x), Array1(p_container, p_y), Array1(p_container, p_z)) {}
  /// Three arrays.
  Array3(const Array1& p_x, const Array1& p_y, const Array1& p_z);
  /// Points of one height.
  Array3(const Array1& p_x, const Array1& p_y, double p_z)
      : Array3(p_x, p_y, Array1::Constant(p_z, p_x.Count())) {}

  /// The points from `p_first` on, `p_count` of them or as many as there are.
  Array3 Part(std::size_t p_first, std::size_t p_count) const {
    return {_x.Part(p_first, p_count), _y.Part(p_first, p_count), _z.Part(p_first, p_count)};
  }
  /// The number of points.
  std::size_t Count() const { return _x.Count(); }
  ///@{
  /// The components.
  const Array1& X() const { return _x; }
  const Array1& Y() const { return _y; }
  const Array1& Z() const { return _z; }
  ///@}

private:
  template <class E>
  static Array3 OfElements(const E* p_first, std::size_t p_count, std::ptrdiff_t p_stride);
  template <class Matrix>
  static Array3 OfMatrix(const Matrix& p_matrix);
  static Array3 OfAttribute(const DataInterface::VertexAttribute3& p_source);

  Array1 _x, _y, _z;
};

// What is in an array. All functions read each number once.

/// All numbers, as double.
VEK_SCENE_API std::vector<double> Values(const Array1& p_array);
/// All numbers, rounded to float.
VEK_SCENE_API std::vector<float> FloatValues(const Array1& p_array);
/// All points, as double.
VEK_SCENE_API std::vector<Types::Vector3_Base<double>> Points(const Array3& p_array);
/// All points relative to an origin, which is subtracted in double before the rounding to float, so that points far
/// from zero keep their distances.
VEK_SCENE_API std::vector<Types::Vector3_Base<float>> FloatPoints(const Array3& p_array,
                                                                  const Types::Vector3_Base<double>& p_origin = {});

/// The smallest and the largest finite number; empty if there is none.
VEK_SCENE_API Types::MinMax_Base<double> FiniteRange(const Array1& p_array);
/// The box around all points that are not missing; empty if there is none.
VEK_SCENE_API Types::BoundingBox_Base<double> FiniteBounds(const Array3& p_array);
/// How many numbers are NaN.
VEK_SCENE_API std::size_t CountMissing(const Array1& p_array);
/// How many points have a number that is not finite.
VEK_SCENE_API std::size_t CountMissingPoints(const Array3& p_array);

/// Throws std::invalid_argument unless both counts are equal: "sizes: expected 7 elements, got 5".
VEK_SCENE_API void RequireCount(const std::string& p_name, std::size_t p_count, std::size_t p_expected);

// Definitions.

namespace ArrayForms {

/// Throws std::invalid_argument: "Array1: expected …, got … x …".
[[noreturn]] VEK_SCENE_API void RefuseMatrix(const char* p_expected, std::size_t p_rows, std::size_t p_columns);
/// Throws std::invalid_argument, since an element does not contain its numbers.
[[noreturn]] VEK_SCENE_API void RefuseElement();

/// From a row and from a column of a matrix to the next one, in bytes.
template <class Matrix>
std::pair<std::ptrdiff_t, std::ptrdiff_t> ByteStrides(const Matrix& p_matrix) {
  constexpr auto Size = static_cast<std::ptrdiff_t>(sizeof(*p_matrix.data()));
  const std::ptrdiff_t inner = p_matrix.innerStride() * Size;
  const std::ptrdiff_t outer = p_matrix.outerStride() * Size;
  return IsRowMajor<Matrix>() ? std::pair(outer, inner) : std::pair(inner, outer);
}

/// Whether component I lies in the element, or is read there as `Component` returns it.
template <int I, class E>
bool ContainsComponent(const E& p_element) {
  const auto* const address = ComponentAddress<I>(p_element);
  if constexpr (std::is_lvalue_reference_v<ComponentResult<I, E>>) {
    const auto begin = reinterpret_cast<std::uintptr_t>(std::addressof(p_element));
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return at - begin <= sizeof(E) - sizeof(*address); // a difference below zero wraps to a large one
  } else {
    const ComponentType<I, E> returned = Component<I>(p_element);
    return std::memcmp(address, &returned, sizeof(returned)) == 0;
  }
}

} // namespace ArrayForms

template <class Source>
Array1::Array1(const Source& p_source) {
  if constexpr (std::is_base_of_v<DataInterface::VertexAttribute1, Source>) {
    *this = OfAttribute(p_source);
  } else if constexpr (ArrayForms::IsMatrix<Source>()) {
    const auto rows = static_cast<std::size_t>(p_source.rows()), columns = static_cast<std::size_t>(p_source.cols());
    if (rows > 1 && columns > 1)
      ArrayForms::RefuseMatrix("Array1: expected a matrix with one row or one column", rows, columns);
    const auto [row, column] = ArrayForms::ByteStrides(p_source);
    *this = Array1(p_source.data(), rows * columns, rows > 1 ? row : column);
  } else if constexpr (ArrayForms::IsNumber<ArrayForms::Element<Source>>) {
    *this = Array1(std::data(p_source), std::size(p_source));
  } else {
    static_assert(ArrayForms::Never<Source>,
                  "An Array1 is made from: a contiguous container of numbers; a container of structures and a pointer "
                  "to a member; a pointer, a count and a stride in bytes; a matrix with data, rows, cols, innerStride "
                  "and outerStride; a DataInterface::VertexAttribute1. Numbers are float, double and integers.");
  }
}

template <class Container, class Struct, class T>
Array1::Array1(const Container& p_container, T Struct::*p_member) {
  const auto* const first = std::data(p_container);
  if (std::size(p_container) != 0)
    *this = Array1(std::addressof(first->*p_member), std::size(p_container), sizeof(*first));
}

template <class Source>
Array3::Array3(const Source& p_source) {
  if constexpr (std::is_base_of_v<DataInterface::VertexAttribute3, Source>)
    *this = OfAttribute(p_source);
  else if constexpr (ArrayForms::IsMatrix<Source>())
    *this = OfMatrix(p_source);
  else if constexpr (ArrayForms::IsTriple<ArrayForms::Element<Source>>())
    *this = OfElements(std::data(p_source), std::size(p_source), sizeof(*std::data(p_source)));
  else
    static_assert(ArrayForms::Never<Source>,
                  "An Array3 is made from: a contiguous container of elements with three numbers, e[0], e.x or e.x(); "
                  "a container of structures and pointers to three members; a pointer, a count and a stride in bytes; "
                  "three arrays; a matrix with data, rows, cols, innerStride and outerStride; a "
                  "DataInterface::VertexAttribute3. Numbers are float, double and integers.");
}

template <class E>
Array3::Array3(const E* p_first, std::size_t p_count, std::ptrdiff_t p_stride) {
  if constexpr (ArrayForms::IsNumber<E>) {
    const Array1 x(p_first, p_count, p_stride);
    if (p_count != 0)
      *this = Array3(x, Array1(p_first + 1, p_count, p_stride), Array1(p_first + 2, p_count, p_stride));
  } else {
    static_assert(ArrayForms::IsTriple<E>(), "The elements of an Array3 have three numbers: e[0], e.x or e.x().");
    *this = OfElements(p_first, p_count, p_stride);
  }
}

template <class E>
Array3 Array3::OfElements(const E* p_first, std::size_t p_count, std::ptrdiff_t p_stride) {
  using namespace ArrayForms;
  if (p_first == nullptr || p_count == 0)
    return Array3(static_cast<const ComponentType<0, E>*>(nullptr), p_count);
  if (!(ContainsComponent<0>(*p_first) && ContainsComponent<1>(*p_first) && ContainsComponent<2>(*p_first)))
    RefuseElement();
  return {Array1(ComponentAddress<0>(*p_first), p_count, p_stride),
          Array1(ComponentAddress<1>(*p_first), p_count, p_stride),
          Array1(ComponentAddress<2>(*p_first), p_count, p_stride)};
}

template <class Matrix>
Array3 Array3::OfMatrix(const Matrix& p_matrix) {
  const auto rows = static_cast<std::size_t>(p_matrix.rows()), columns = static_cast<std::size_t>(p_matrix.cols());
  if ((rows == 3) == (columns == 3))
    ArrayForms::RefuseMatrix("Array3: expected a matrix of n x 3 or 3 x n numbers, n not 3", rows, columns);
  const auto [row, column] = ArrayForms::ByteStrides(p_matrix);
  const std::ptrdiff_t component = rows == 3 ? row : column;
  const std::ptrdiff_t point = rows == 3 ? column : row;
  const std::size_t count = rows == 3 ? columns : rows;
  const auto* const first = p_matrix.data();
  const auto at = [&](int p_index) {
    if (count == 0)
      return Array1();
    const char* const address = reinterpret_cast<const char*>(first) + p_index * component;
    return Array1(reinterpret_cast<decltype(first)>(address), count, point);
  };
  return {at(0), at(1), at(2)};
}

} // namespace Vek::Chart::Scene
