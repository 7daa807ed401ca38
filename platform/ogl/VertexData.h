#pragma once

#include "platform/Export.h"
#include "platform/ogl/GlTypes.h"
#include "platform/ogl/VertexBuffer.h"
#include "platform/ogl/VertexElement.h"
#include "platform/types/Property.h"
#include "platform/utility/Scope.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vek::Chart::Ogl {

class Rgl;

/// Geometry in CPU memory: positions, normals, texture coordinates and indices, each an array with shared ownership,
/// and the primitive type of the indices, or of the vertices if there are no indices.
///
/// \snippet HostSnippets.cpp VertexData
/// \ingroup host
class VEK_PLATFORM_API VertexData {
public:
  /// The type of a scalar, with the value of the GL enumerant.
  enum ComponentType : GlEnum {
    UnsignedByte = 0x1401,  ///< 8 bits
    UnsignedShort = 0x1403, ///< 16 bits
    UnsignedInt = 0x1405,   ///< 32 bits
    Float = 0x1406,         ///< single precision
    Double = 0x140A         ///< double precision
  };

  /// `count` elements of `components` scalars each, tightly packed. Empty (null data, count 0) by default.
  struct Array {
    boost::shared_ptr<const void> data; ///< the scalars; shared
    std::size_t count = 0;              ///< number of elements
    unsigned int components = 0;        ///< scalars per element
    ComponentType type = Float;         ///< type of the scalars

    /// True if there are no elements.
    bool Empty() const { return count == 0; }
    /// The scalars; `type` must stand for T.
    template <class T>
    const T* As() const {
      return static_cast<const T*>(data.get());
    }
  };

  /// No arrays.
  VertexData();

  /// The elements of a vector, as listed for `VertexElement`. They are not copied if the vector is moved in.
  template <class E>
  static Array MakeArray(std::vector<E> p_elements) {
    if (p_elements.empty())
      return {};
    const auto elements = boost::make_shared<const std::vector<E>>(std::move(p_elements));
    return {boost::shared_ptr<const void>(elements, elements->data()), elements->size(), Components<E>(),
            TypeOf<ScalarOf<E>>()};
  }
  /// `p_count` elements of the caller, which must outlive all holders of the array.
  template <class E>
  static Array MakeArray(const E* p_elements, std::size_t p_count) {
    return {boost::shared_ptr<const void>(boost::shared_ptr<void>(), p_elements), p_count, Components<E>(),
            TypeOf<ScalarOf<E>>()};
  }

  ///@{
  /// Replaces one array. A null pointer or a count of 0 removes it.
  void SetVertices(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                   ComponentType p_type);
  void SetNormals(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                  ComponentType p_type);
  void SetTexCoords(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                    ComponentType p_type);
  ///@}
  /// Replaces the indices: unsigned integers, one component per element. A null pointer or a count of 0 removes them.
  void SetIndices(const boost::shared_ptr<const void>& p_data, std::size_t p_count, ComponentType p_type);

  ///@{
  /// Replaces one array by the elements of a vector, which is not copied if it is moved in. An empty vector removes the
  /// array. Elements are those of `VertexElement`, of floats or doubles: positions of 2 to 4 components, normals of 3,
  /// texture coordinates of 1 to 4. Other elements do not compile.
  template <class E>
  void SetVertices(std::vector<E> p_elements) {
    static_assert(IsReal<E>() && Components<E>() >= 2 && Components<E>() <= 4, "2 to 4 floats or doubles a position");
    _vertices = MakeArray(std::move(p_elements));
  }
  template <class E>
  void SetNormals(std::vector<E> p_elements) {
    static_assert(IsReal<E>() && Components<E>() == 3, "3 floats or doubles a normal");
    _normals = MakeArray(std::move(p_elements));
  }
  template <class E>
  void SetTexCoords(std::vector<E> p_elements) {
    static_assert(IsReal<E>() && Components<E>() >= 1 && Components<E>() <= 4,
                  "1 to 4 floats or doubles a texture coordinate");
    _texCoords = MakeArray(std::move(p_elements));
  }
  ///@}
  /// Replaces the indices by those of a vector of unsigned char, unsigned short or unsigned int, likewise.
  template <class E>
  void SetIndices(std::vector<E> p_indices) {
    static_assert(!IsReal<E>() && Components<E>() == 1, "unsigned char, unsigned short or unsigned int");
    _indices = MakeArray(std::move(p_indices));
  }

  ///@{
  /// One array.
  const Array& Vertices() const { return _vertices; }
  const Array& Normals() const { return _normals; }
  const Array& TexCoords() const { return _texCoords; }
  const Array& Indices() const { return _indices; }
  ///@}

  ///@{
  /// The primitive type; not defined in a new object. Assigning the first value or a different one marks it defined
  /// and changed.
  Types::Property<VertexBuffer::PrimitiveType>& PrimitiveType() { return _primitiveType; }
  const Types::Property<VertexBuffer::PrimitiveType>& PrimitiveType() const { return _primitiveType; }
  ///@}

  /// Draws with GL's fixed vertex attributes: positions, normals, and texture coordinates on the active client texture
  /// unit. Restores the client state that it changes. Other client arrays stay enabled as the caller has set them. No
  /// vertex array object may be bound.
  ///
  /// Positions must have 2 to 4 components, normals 3, texture coordinates 1 to 4, all of type Float or Double. Reports
  /// and draws nothing if this does not hold, there are no positions, the primitive type is undecided, another array is
  /// shorter than the positions, or an index is out of range.
  void Draw(Utility::Scoped<Rgl>& p_gl) const;
  /// Draws `p_instances` instances in one call, which a vertex shader distinguishes; 0 draws nothing. Also reports a
  /// device without instancing.
  void Draw(Utility::Scoped<Rgl>& p_gl, unsigned int p_instances) const;

private:
  template <class E>
  using ScalarOf = typename VertexElement<E>::Scalar;
  template <class E>
  static constexpr bool IsReal() {
    return std::is_floating_point_v<ScalarOf<E>>;
  }
  template <class E>
  static constexpr unsigned int Components() {
    return VertexElement<E>::Count;
  }
  template <class T>
  static constexpr ComponentType TypeOf() {
    static_assert(std::is_same_v<T, float> || std::is_same_v<T, double> || std::is_same_v<T, unsigned char> ||
                  std::is_same_v<T, unsigned short> || std::is_same_v<T, unsigned int>);
    if constexpr (std::is_floating_point_v<T>)
      return std::is_same_v<T, float> ? Float : Double;
    else
      return sizeof(T) == 1 ? UnsignedByte : sizeof(T) == 2 ? UnsignedShort : UnsignedInt;
  }
  Array _vertices;
  Array _normals;
  Array _texCoords;
  Array _indices;
  Types::Property<VertexBuffer::PrimitiveType> _primitiveType;
};

} // namespace Vek::Chart::Ogl
