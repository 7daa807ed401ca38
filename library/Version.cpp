#include "library/Version.h"

namespace Vek::Chart::Library {

Utility::VersionNo Version() {
  return {VEK_VERSION_MAJOR, VEK_VERSION_MINOR, VEK_VERSION_PATCH};
}

} // namespace Vek::Chart::Library
