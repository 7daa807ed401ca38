#include "platform/utility/GetLogger.h"

namespace Vek::Chart::Utility {

vekdebug::logger& GetLogger() {
  return vekdebug::logger::instance();
}

} // namespace Vek::Chart::Utility
