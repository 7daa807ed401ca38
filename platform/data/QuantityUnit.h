#pragma once

#include "platform/Export.h"
#include "platform/interface/ISupportedInterface.h"

#include <string>

namespace Vek::Chart::DataInterface {

/// A physical quantity and the unit that its values are given in, as texts for people ("velocity", "m/s").
struct QuantityUnitPair {
  std::string quantity; ///< such as "velocity"
  std::string unit;     ///< such as "m/s"
};

///@{
/// Compares both texts byte by byte.
inline bool operator==(const QuantityUnitPair& p_a, const QuantityUnitPair& p_b) {
  return p_a.quantity == p_b.quantity && p_a.unit == p_b.unit;
}
inline bool operator!=(const QuantityUnitPair& p_a, const QuantityUnitPair& p_b) {
  return !(p_a == p_b);
}
///@}

/// Tells what the values of an attribute measure.
class VEK_PLATFORM_API QuantityUnit : public virtual SupportedInterface::ISupportedInterface {
public:
  /// The quantity and unit of all values; empty texts where they are not known.
  virtual QuantityUnitPair GetQuantityUnit() const = 0;
};

} // namespace Vek::Chart::DataInterface
