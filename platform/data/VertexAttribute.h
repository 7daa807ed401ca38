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

/// Provides the number of elements of an attribute.
class VEK_PLATFORM_API ElementCount : public virtual SupportedInterface::ISupportedInterface {
public:
  /// The number of elements, not of scalars.
  virtual std::uint32_t Count() const = 0;
};

// The attributes below are arrays of `Count()` elements of one to four components. They are read either as a block of
// bytes or through a writer. The order of the virtual operations is part of the interfaces.

/// One floating-point number a vertex.
class VEK_PLATFORM_API VertexAttribute1 : public ElementCount {
public:
  /// The bytes of all scalars, element after element, in the machine's byte order; `p_precision` receives their type. A
  /// source without such a block returns an empty array and leaves the argument unchanged; the caller then calls
  /// `Write`.
  virtual boost::shared_array<const char> Attribute1(FloatPrecision& p_precision) const = 0;
  /// Passes all elements to the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<1>& p_writer) const = 0;
};

/// Two floating-point numbers a vertex.
class VEK_PLATFORM_API VertexAttribute2 : public ElementCount {
public:
  /// Like VertexAttribute1::Attribute1, with two scalars an element.
  virtual boost::shared_array<const char> Attribute2(FloatPrecision& p_precision) const = 0;
  /// Passes all elements to the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<2>& p_writer) const = 0;
};

/// Three floating-point numbers a vertex.
class VEK_PLATFORM_API VertexAttribute3 : public ElementCount {
public:
  /// Like VertexAttribute1::Attribute1, with three scalars an element.
  virtual boost::shared_array<const char> Attribute3(FloatPrecision& p_precision) const = 0;
  /// Passes all elements to the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<3>& p_writer) const = 0;
};

/// Four floating-point numbers a vertex.
class VEK_PLATFORM_API VertexAttribute4 : public ElementCount {
public:
  /// Like VertexAttribute1::Attribute1, with four scalars an element.
  virtual boost::shared_array<const char> Attribute4(FloatPrecision& p_precision) const = 0;
  /// Passes all elements to the writer, in order, in one or more calls.
  virtual void Write(FloatAttributeStreamWriter<4>& p_writer) const = 0;
};

/// One Boolean value a vertex, as a byte that is 0 or 1.
class VEK_PLATFORM_API VertexAttribute1B : public ElementCount {
public:
  /// The bytes of all elements; a source without such a block returns an empty array.
  virtual boost::shared_array<const char> Attribute1B() const = 0;
  /// Passes all elements to the writer, in order, in one or more calls.
  virtual void Write(BoolAttributeStreamWriter<1>& p_writer) const = 0;
};

} // namespace Vek::Chart::DataInterface
