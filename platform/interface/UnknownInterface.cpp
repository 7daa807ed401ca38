#include "platform/interface/UnknownInterface.h"

namespace Vek::SupportedInterface {

UnknownInterface::UnknownInterface(const InterfaceID& p_id)
    : std::runtime_error("unknown interface " + p_id.Name())
    , _id(p_id) {}

UnknownInterface::~UnknownInterface() = default;

} // namespace Vek::SupportedInterface
