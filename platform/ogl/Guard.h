#pragma once

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <utility>

namespace Vek::Chart::Ogl {

/// A guard that calls `p_release` with its last holder's end, or at once if there is no memory for the guard. Neither
/// `p_release` nor moving it may throw.
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
    p_release(); // not moved from: the allocation comes first
    throw;
  }
}

} // namespace Vek::Chart::Ogl
