#include "platform/interface/ISupportedInterface.h"

namespace Vek::SupportedInterface {

ISupportedInterface::~ISupportedInterface() = default;

} // namespace Vek::SupportedInterface
