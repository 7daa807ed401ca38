#pragma once

#include "platform/Export.h"

#include <string>
#include <typeindex>
#include <typeinfo>

namespace Vek::SupportedInterface {

/// Identifies an interface by its run-time type information. Ids of the same interface are equal, also across shared
/// libraries. The order is total, but differs from run to run.
class VEK_PLATFORM_API InterfaceID {
public:
  /// The id of the interface with that type information.
  explicit InterfaceID(const std::type_info& p_interface)
      : _interface(p_interface) {}
  /// The id of the interface W.
  template <class W>
  static InterfaceID Of() {
    return InterfaceID(typeid(W));
  }

  /// The qualified name of the interface, for messages.
  std::string Name() const;

  ///@{
  /// Compares the types; the order is that of `std::type_index`.
  friend bool operator==(const InterfaceID& p_a, const InterfaceID& p_b) { return p_a._interface == p_b._interface; }
  friend bool operator!=(const InterfaceID& p_a, const InterfaceID& p_b) { return p_a._interface != p_b._interface; }
  friend bool operator<(const InterfaceID& p_a, const InterfaceID& p_b) { return p_a._interface < p_b._interface; }
  ///@}

private:
  std::type_index _interface;
};

} // namespace Vek::SupportedInterface
