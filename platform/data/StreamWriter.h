#pragma once

#include "platform/Export.h"
#include "platform/interface/ISupportedInterface.h"

#include <cstdint>

/// The interfaces by which sources provide vertex data: a source passes runs of scalars to a writer, which converts and
/// stores them.
namespace Vek::Chart::DataInterface {

/// The base of all writers. A writer has a write position, counted in destination elements from 0. Writers are never
/// deleted through this interface.
///
/// The order of the virtual operations is part of the interface: `Skip` first, then the typed writes of the kind in the
/// order of their declaration. `p_scalarCount` counts scalars, not elements: a write to a writer of N components stores
/// p_scalarCount / N elements and advances by as many; scalars left over are ignored. The scalars are read during the
/// call only.
class VEK_PLATFORM_API StreamWriterBase {
public:
  /// Advances the write position by `p_count` elements without writing them.
  virtual void Skip(std::uint64_t p_count) = 0;

protected:
  StreamWriterBase() = default;
  /// For writers that can be copied.
  StreamWriterBase(const StreamWriterBase&) = default;
  /// Copy assignment.
  StreamWriterBase& operator=(const StreamWriterBase&) = default;
  ~StreamWriterBase() = default;
};

/// Takes Boolean values: bytes that are 0 or 1, or bools.
class VEK_PLATFORM_API BoolStreamWriter : public StreamWriterBase {
public:
  ///@{
  /// Stores `p_scalarCount` values and advances the write position.
  virtual void Write(const unsigned char* p_data, std::uint64_t p_scalarCount) = 0;
  virtual void Write(const bool* p_data, std::uint64_t p_scalarCount) = 0;
  ///@}

protected:
  ~BoolStreamWriter() = default;
};

/// Takes floating-point numbers of either precision.
class VEK_PLATFORM_API FloatStreamWriter : public StreamWriterBase {
public:
  ///@{
  /// Stores `p_scalarCount` numbers and advances the write position.
  virtual void Write(const double* p_data, std::uint64_t p_scalarCount) = 0;
  virtual void Write(const float* p_data, std::uint64_t p_scalarCount) = 0;
  ///@}

protected:
  ~FloatStreamWriter() = default;
};

/// Takes unsigned integers of 32, 16 or 8 bits.
class VEK_PLATFORM_API IntegerStreamWriter : public StreamWriterBase {
public:
  ///@{
  /// Stores `p_scalarCount` integers and advances the write position.
  virtual void Write(const unsigned int* p_data, std::uint64_t p_scalarCount) = 0;
  virtual void Write(const unsigned short* p_data, std::uint64_t p_scalarCount) = 0;
  virtual void Write(const unsigned char* p_data, std::uint64_t p_scalarCount) = 0;
  ///@}

protected:
  ~IntegerStreamWriter() = default;
};

/// A writer of one kind for elements of N components, 1 to 4.
template <unsigned int N, class Kind>
class VEK_PLATFORM_API AttributeStreamWriter : public Kind, public virtual SupportedInterface::ISupportedInterface {
  static_assert(N >= 1 && N <= 4);

public:
  /// The number of scalars in one destination element.
  unsigned int Components() const { return N; }
};

///@{
/// The destination of a source of Boolean values, of floating-point numbers or of indices. Writers support queries for
/// it.
template <unsigned int N>
class VEK_PLATFORM_API BoolAttributeStreamWriter : public AttributeStreamWriter<N, BoolStreamWriter> {
  static_assert(N == 1, "Boolean values have one component");
};
template <unsigned int N>
class VEK_PLATFORM_API FloatAttributeStreamWriter : public AttributeStreamWriter<N, FloatStreamWriter> {};
template <unsigned int N>
class VEK_PLATFORM_API IntegerAttributeStreamWriter : public AttributeStreamWriter<N, IntegerStreamWriter> {};
///@}

} // namespace Vek::Chart::DataInterface
