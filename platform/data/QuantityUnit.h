#pragma once

#include "platform/Export.h"
#include "platform/interface/ISupportedInterface.h"

#include <string>

namespace Vek::Chart::DataInterface {

/// A physical quantity and the unit that its values are given in, as strings for display ("velocity", "m/s").
struct QuantityUnitPair {
  std::string quantity; ///< such as "velocity"
  std::string unit;     ///< such as "m/s"
};

///@{
/// Compares both strings byte by byte.
inline bool operator==(const QuantityUnitPair& p_a, const QuantityUnitPair& p_b) {
  return p_a.quantity == p_b.quantity && p_a.unit == p_b.unit;
}
inline bool operator!=(const QuantityUnitPair& p_a, const QuantityUnitPair& p_b) {
  return !(p_a == p_b);
}
///@}

/// Provides the quantity and unit of an attribute.
class VEK_PLATFORM_API QuantityUnit : public virtual SupportedInterface::ISupportedInterface {
public:
  /// The quantity and unit of all values; empty strings where they are unknown.
  virtual QuantityUnitPair GetQuantityUnit() const = 0;
};

} // namespace Vek::Chart::DataInterface
