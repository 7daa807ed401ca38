#pragma once

#include <boost/shared_ptr.hpp>

#include <utility>

namespace Vek::Chart::Ogl {

/// A guard that calls `p_release` when its last holder lets go of it. `p_release` must not throw.
template <class Release>
boost::shared_ptr<void> MakeGuard(Release p_release) {
  // The pointer only has to differ from null, so that a held guard tests as true.
  static char held;
  return {static_cast<void*>(&held), [release = std::move(p_release)](void*) { release(); }};
}

} // namespace Vek::Chart::Ogl
