#pragma once

#include "platform/ogl/Vec.h"
#include "platform/types/Vector.h"

#include <boost/array.hpp>

#include <QVector2D>
#include <QVector3D>
#include <QVector4D>

#include <array>
#include <cstddef>

namespace Vek::Chart::Ogl {

/// The scalar type and the number of scalars of an element type of vertex arrays, which has no padding: a number (but
/// not bool), std::array, boost::array, Types::Vector2_Base to Vector4_Base, Vec1 to Vec3 or an Attribute of them, or
/// QVector2D to QVector4D. Specialise it for a record of your own.
template <class E>
struct VertexElement {
  static_assert(sizeof(E) == 0,
                "an element is a number, std::array, boost::array, Types::Vector2_Base to Vector4_Base, Ogl::Vec1 to "
                "Vec3, Ogl::Attribute, QVector2D to QVector4D, or a type with its own Ogl::VertexElement");
};

/// Implementation of VertexElement.
template <class E, class T, std::size_t N>
struct VertexElementOf {
  static_assert(sizeof(E) == N * sizeof(T), "an element has no padding");
  using Scalar = T;                                                   ///< the type of a component
  static constexpr unsigned int Count = static_cast<unsigned int>(N); ///< number of components
};

///@{
/// An element type.
template <>
struct VertexElement<float> : VertexElementOf<float, float, 1> {};
template <>
struct VertexElement<double> : VertexElementOf<double, double, 1> {};
template <>
struct VertexElement<unsigned char> : VertexElementOf<unsigned char, unsigned char, 1> {};
template <>
struct VertexElement<unsigned short> : VertexElementOf<unsigned short, unsigned short, 1> {};
template <>
struct VertexElement<unsigned int> : VertexElementOf<unsigned int, unsigned int, 1> {};
template <class T, std::size_t N>
struct VertexElement<std::array<T, N>> : VertexElementOf<std::array<T, N>, T, N> {};
template <class T, std::size_t N>
struct VertexElement<boost::array<T, N>> : VertexElementOf<boost::array<T, N>, T, N> {};
template <class T>
struct VertexElement<Types::Vector2_Base<T>> : VertexElementOf<Types::Vector2_Base<T>, T, 2> {};
template <class T>
struct VertexElement<Types::Vector3_Base<T>> : VertexElementOf<Types::Vector3_Base<T>, T, 3> {};
template <class T>
struct VertexElement<Types::Vector4_Base<T>> : VertexElementOf<Types::Vector4_Base<T>, T, 4> {};
template <class T>
struct VertexElement<Vec1<T>> : VertexElementOf<Vec1<T>, T, 1> {};
template <class T>
struct VertexElement<Vec2<T>> : VertexElementOf<Vec2<T>, T, 2> {};
template <class T>
struct VertexElement<Vec3<T>> : VertexElementOf<Vec3<T>, T, 3> {};
template <class R>
struct VertexElement<Attribute<R>> : VertexElement<R> {};
template <>
struct VertexElement<QVector2D> : VertexElementOf<QVector2D, float, 2> {};
template <>
struct VertexElement<QVector3D> : VertexElementOf<QVector3D, float, 3> {};
template <>
struct VertexElement<QVector4D> : VertexElementOf<QVector4D, float, 4> {};
///@}

} // namespace Vek::Chart::Ogl
