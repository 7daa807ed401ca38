#pragma once

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Core {

/// The shared pointer of the engine's core.
template <class T>
using Ptr = boost::shared_ptr<T>;

} // namespace Vek::Chart::Core
