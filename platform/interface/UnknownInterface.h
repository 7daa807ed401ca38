#pragma once

#include "platform/Export.h"
#include "platform/interface/InterfaceID.h"

#include <stdexcept>

namespace Vek::SupportedInterface {

/// Thrown when an object is queried for an interface that it does not implement. `what()` is "unknown interface " and
/// the name of the interface.
class VEK_PLATFORM_API UnknownInterface : public std::runtime_error {
public:
  /// With the id that was queried.
  explicit UnknownInterface(const InterfaceID& p_id);
  ~UnknownInterface() override;

  /// The interface that was queried.
  const InterfaceID& ID() const { return _id; }

private:
  InterfaceID _id;
};

} // namespace Vek::SupportedInterface
