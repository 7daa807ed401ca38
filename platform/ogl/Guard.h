#pragma once

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <utility>

namespace Vek::Chart::Ogl {

/// A guard that calls `p_release` when its last holder lets go of it, or at once when there is no memory for it.
/// `p_release` must not throw, and moving it neither.
template <class Release>
boost::shared_ptr<void> MakeGuard(Release p_release) {
  struct Guard {
    explicit Guard(Release&& p_moved)
        : release(std::move(p_moved)) {}
    ~Guard() { release(); }
    Release release;
  };
  try {
    return boost::make_shared<Guard>(std::move(p_release));
  } catch (...) {
    p_release(); // not moved from: memory comes first
    throw;
  }
}

} // namespace Vek::Chart::Ogl
