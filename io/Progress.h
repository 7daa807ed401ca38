#pragma once

#include <functional>

namespace Vek::Chart::Io {

/// Called now and then with the share of the file that was read, 0 to 1; returns false to cancel.
/// \ingroup files
using Progress = std::function<bool(double p_share)>;

} // namespace Vek::Chart::Io
