#include "platform/core/TimeStamp.h"

#include <atomic>

namespace Vek::Chart::Core {

TimeStamp::TimeStamp() {
  static std::atomic<std::uint64_t> next{1};
  _count = next.fetch_add(1, std::memory_order_relaxed);
}

} // namespace Vek::Chart::Core
