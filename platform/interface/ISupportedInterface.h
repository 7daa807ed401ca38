#pragma once

#include "platform/Export.h"
#include "platform/interface/AnyInterface.h"
#include "platform/interface/InterfaceID.h"

#include <boost/shared_ptr.hpp>

namespace Vek::SupportedInterface {

/// The base of all objects that can be queried for interfaces. Interfaces and their implementations derive from it
/// virtually, so that an object with several interfaces contains it once.
class VEK_PLATFORM_API ISupportedInterface {
public:
  virtual ~ISupportedInterface();

  /// Whether the object implements that interface.
  virtual bool IsSupportedInterface(const InterfaceID& p_id) const = 0;
  /// This object under that interface. Throws UnknownInterface, made from the id, if it does not implement it.
  virtual AnyInterface QuerySupportedInterface(const InterfaceID& p_id) = 0;

protected:
  ISupportedInterface() = default;
  /// For objects that can be copied.
  ISupportedInterface(const ISupportedInterface&) = default;
  /// Copy assignment.
  ISupportedInterface& operator=(const ISupportedInterface&) = default;
};

/// The object under the interface W, with shared ownership; empty for a null object or one that does not implement W.
template <class W>
boost::shared_ptr<W> QueryInterface(const boost::shared_ptr<ISupportedInterface>& p_object) {
  const InterfaceID id = InterfaceID::Of<W>();
  if (!p_object || !p_object->IsSupportedInterface(id))
    return {};
  return boost::shared_ptr<W>(p_object, &p_object->QuerySupportedInterface(id).Get<W>());
}

} // namespace Vek::SupportedInterface
