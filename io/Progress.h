#pragma once

#include <functional>

namespace Vek::Chart::Io {

/// Called now and then by a reader with the share of its work that is done, 0 to 1; returns false to cancel. A reader
/// that is cancelled throws FileError ("path: cancelled").
/// \ingroup files
using Progress = std::function<bool(double p_share)>;

} // namespace Vek::Chart::Io
