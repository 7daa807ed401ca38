#pragma once

#include "platform/Export.h"

#include <cstdint>

namespace Vek::Chart::Core {

/// Marks a state, for example of a scene: each default-constructed stamp differs from all others; copies are equal.
/// Thread-safe.
class VEK_PLATFORM_API TimeStamp {
public:
  TimeStamp();

  ///@{
  /// Compares the moments.
  friend bool operator==(const TimeStamp& p_a, const TimeStamp& p_b) { return p_a._count == p_b._count; }
  friend bool operator!=(const TimeStamp& p_a, const TimeStamp& p_b) { return !(p_a == p_b); }
  ///@}

private:
  std::uint64_t _count;
};

} // namespace Vek::Chart::Core
