#pragma once

#include "platform/Export.h"
#include "platform/data/StreamWriter.h"
#include "platform/interface/ISupportedInterface.h"

#include <boost/shared_array.hpp>

#include <cstdint>

namespace Vek::Chart::DataInterface {

/// The type of the scalars in a block of raw bytes.
enum FloatPrecision : std::uint32_t {
  SinglePrecision, ///< float
  DoublePrecision, ///< double
};

/// Tells how many elements an attribute has.
class VEK_PLATFORM_API ElementCount : public virtual SupportedInterface::ISupportedInterface {
public:
  /// The number of elements, not of scalars.
  virtual std::uint32_t Count() const = 0;
};

// The attributes below are arrays of `Count()` elements with one to four components each, with two ways out: all bytes
// at once, or pushed through a writer. The order of the virtual operations is part of the interfaces.

/// One floating-point number a vertex.
class VEK_PLATFORM_API VertexAttribute1 : public ElementCount {
public:
  /// The bytes of all scalars, element after element, in the machine's byte order; `p_precision` then says which type
  /// they have. A source that keeps no such block yields an empty array and leaves the argument as it is; the caller
  /// then asks for `Write`.
  virtual boost::shared_array<const char> Attribute1(FloatPrecision& p_precision) const = 0;
  /// Pushes all elements through the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<1>& p_writer) const = 0;
};

/// Two floating-point numbers a vertex.
class VEK_PLATFORM_API VertexAttribute2 : public ElementCount {
public:
  /// As VertexAttribute1::Attribute1, two scalars an element.
  virtual boost::shared_array<const char> Attribute2(FloatPrecision& p_precision) const = 0;
  /// Pushes all elements through the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<2>& p_writer) const = 0;
};

/// Three floating-point numbers a vertex.
class VEK_PLATFORM_API VertexAttribute3 : public ElementCount {
public:
  /// As VertexAttribute1::Attribute1, three scalars an element.
  virtual boost::shared_array<const char> Attribute3(FloatPrecision& p_precision) const = 0;
  /// Pushes all elements through the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<3>& p_writer) const = 0;
};

/// Four floating-point numbers a vertex.
class VEK_PLATFORM_API VertexAttribute4 : public ElementCount {
public:
  /// As VertexAttribute1::Attribute1, four scalars an element.
  virtual boost::shared_array<const char> Attribute4(FloatPrecision& p_precision) const = 0;
  /// Pushes all elements through the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<4>& p_writer) const = 0;
};

/// One truth value a vertex, as a byte that is 0 or 1.
class VEK_PLATFORM_API VertexAttribute1B : public ElementCount {
public:
  /// The bytes of all elements; a source that keeps no such block yields an empty array.
  virtual boost::shared_array<const char> Attribute1B() const = 0;
  /// Pushes all elements through the writer, in order, in one or more calls.
  virtual void Write(BoolAttributeStreamWriter<1>& p_writer) const = 0;
};

} // namespace Vek::Chart::DataInterface
