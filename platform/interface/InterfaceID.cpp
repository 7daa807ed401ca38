#include "platform/interface/InterfaceID.h"

#include <boost/core/demangle.hpp>

namespace Vek::SupportedInterface {

std::string InterfaceID::Name() const {
  return boost::core::demangle(_interface.name());
}

} // namespace Vek::SupportedInterface
