#pragma once

#include "platform/Export.h"
#include "platform/data/StreamWriter.h"
#include "platform/interface/ISupportedInterface.h"

#include <boost/shared_array.hpp>

#include <cstdint>

namespace Vek::Chart::DataInterface {

/// The indices of vertices that make up primitives. The order of the virtual operations is part of the interface.
class VEK_PLATFORM_API VertexIndex : public virtual SupportedInterface::ISupportedInterface {
public:
  /// The type of the indices in a block of raw bytes.
  enum IndexType : std::uint32_t {
    UnsignedByte,  ///< unsigned char
    UnsignedShort, ///< unsigned short
    UnsignedInt,   ///< unsigned int
  };

  /// The number of indices.
  virtual std::uint32_t Count() const = 0;
  /// The bytes of all indices in the machine's byte order; says in its argument which type they have. A source that
  /// keeps no such block yields an empty array and leaves the argument as it is; the caller then asks for `Write`.
  virtual boost::shared_array<const char> Indices(IndexType& p_type) const = 0;
  /// Pushes all indices through the writer, in order, in one or more calls.
  virtual void Write(IntegerAttributeStreamWriter<1>& p_writer) const = 0;
};

} // namespace Vek::Chart::DataInterface
