#pragma once

namespace Vek::Chart::Ogl {

/// Calls `p_report` where no exception may leave, in a destructor for example. What the sink throws is dropped.
template <class Report>
void ReportQuietly(Report p_report) noexcept {
  try {
    p_report();
  } catch (...) { // NOLINT: the sink has had the report
  }
}

} // namespace Vek::Chart::Ogl
