#pragma once

#include "platform/Export.h"
#include "platform/ogl/GlTypes.h"
#include "platform/ogl/VertexBuffer.h"
#include "platform/types/Property.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>

namespace Vek::Chart::Ogl {

class Rgl;

/// Geometry in CPU memory, ready to be drawn: positions, normals, texture coordinates and indices, each an array handed
/// over with shared ownership, and what the vertices (or the indices, when there are some) describe.
class VEK_PLATFORM_API VertexData {
public:
  /// The type of a scalar; the values are GL's.
  enum ComponentType : GlEnum {
    UnsignedByte = 0x1401,  ///< 8 bits
    UnsignedShort = 0x1403, ///< 16 bits
    UnsignedInt = 0x1405,   ///< 32 bits
    Float = 0x1406,         ///< single precision
    Double = 0x140A         ///< double precision
  };

  /// `count` elements of `components` scalars each, tightly packed. Empty (null data, count 0) until set.
  struct Array {
    boost::shared_ptr<const void> data; ///< the scalars, with shared ownership
    std::size_t count = 0;              ///< elements
    unsigned int components = 0;        ///< scalars an element
    ComponentType type = Float;         ///< of the scalars

    /// Whether there are no elements.
    bool Empty() const { return count == 0; }
    /// The scalars; T must be the type that `type` names.
    template <class T>
    const T* As() const {
      return static_cast<const T*>(data.get());
    }
  };

  /// No arrays; nothing is drawn.
  VertexData();

  ///@{
  /// Replaces one array. An array without elements, or a null pointer, removes it.
  void SetVertices(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                   ComponentType p_type);
  void SetNormals(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                  ComponentType p_type);
  void SetTexCoords(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                    ComponentType p_type);
  ///@}
  /// Replaces the indices: one component an element, unsigned integers. None, or a null pointer, removes them.
  void SetIndices(const boost::shared_ptr<const void>& p_data, std::size_t p_count, ComponentType p_type);

  ///@{
  /// One array, as it was set.
  const Array& Vertices() const { return _vertices; }
  const Array& Normals() const { return _normals; }
  const Array& TexCoords() const { return _texCoords; }
  const Array& Indices() const { return _indices; }
  ///@}

  ///@{
  /// What is drawn; not set in a new object. Assigning a different value, or the first one, marks it changed and set.
  Types::Property<VertexBuffer::PrimitiveType>& PrimitiveType() { return _primitiveType; }
  const Types::Property<VertexBuffer::PrimitiveType>& PrimitiveType() const { return _primitiveType; }
  ///@}

  /// Draws from the arrays with GL's fixed vertex attributes: positions, normals, and texture coordinates on the active
  /// client texture unit. Restores the client state that it changes. Nothing is drawn, and the reason reported, when
  /// there are no positions, the primitive type is not decided, another array is shorter than the positions, or an
  /// index names none.
  /// Positions have 2 to 4 components, normals 3, texture coordinates 1 to 4, all of type Float or Double; other types
  /// are reported as well. Arrays of other attributes take part as the caller has set them. No vertex array object may
  /// be bound.
  void Draw(Utility::Scoped<Rgl>& p_gl) const;
  /// The same, `p_instances` times in one call; a vertex shader tells the instances apart. 0 draws nothing. A device
  /// without instancing is reported.
  void Draw(Utility::Scoped<Rgl>& p_gl, unsigned int p_instances) const;

private:
  Array _vertices;
  Array _normals;
  Array _texCoords;
  Array _indices;
  Types::Property<VertexBuffer::PrimitiveType> _primitiveType;
};

} // namespace Vek::Chart::Ogl
