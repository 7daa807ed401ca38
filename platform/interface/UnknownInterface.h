#pragma once

#include "platform/Export.h"
#include "platform/interface/InterfaceID.h"

#include <stdexcept>

namespace Vek::SupportedInterface {

/// Thrown when an object is asked for an interface that it does not implement. `what()` is "unknown interface " and the
/// name of that interface.
class VEK_PLATFORM_API UnknownInterface : public std::runtime_error {
public:
  /// Made from the id that was asked for.
  explicit UnknownInterface(const InterfaceID& p_id);
  ~UnknownInterface() override;

  /// The interface that was asked for.
  const InterfaceID& ID() const { return _id; }

private:
  InterfaceID _id;
};

} // namespace Vek::SupportedInterface
