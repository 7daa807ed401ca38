#pragma once

#include "platform/Export.h"
#include "platform/data/StreamWriter.h"
#include "platform/interface/ISupportedInterface.h"

#include <boost/shared_array.hpp>

#include <cstdint>

namespace Vek::Chart::DataInterface {

/// The vertex indices of primitives. The order of the virtual operations is part of the interface.
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
  /// The bytes of all indices in the machine's byte order; `p_type` receives their type. A source without such a block
  /// returns an empty array and leaves the argument unchanged; the caller then calls `Write`.
  virtual boost::shared_array<const char> Indices(IndexType& p_type) const = 0;
  /// Passes all indices to the writer, in order, in one or more calls.
  virtual void Write(IntegerAttributeStreamWriter<1>& p_writer) const = 0;
};

} // namespace Vek::Chart::DataInterface
