#pragma once

#include "platform/types/Range.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

using Range = Types::MinMax_Base<double>;

/// The smallest number of 1, 2, 2.5 and 5 × 10^n that is not below `p_least`, a finite number above 0.
double RoundStep(double p_least);
/// The number of 1, 2 and 5 × 10^n whose ratio to `p_number`, a finite number above 0, is nearest to 1.
double NearestRound(double p_number);

/// Extends a range to round limits: multiples of a step of which up to `p_steps` make the range; on a logarithmic scale
/// of more than a decade, 1, 2 or 5 × 10^n. A range of one value is extended to both sides. The limits of a logarithmic
/// scale stay above 0 if those of the range are.
Range RoundOutward(const Range& p_range, bool p_logarithmic, int p_steps);

/// The finite values of a plot in brief, positive ones alone on a logarithmic scale.
struct ValueSummary {
  Range all;               ///< smallest and largest; empty if there are none
  Range most;              ///< quantiles of 2 % and 98 %
  std::size_t missing = 0; ///< NaN
  bool hasBelow = false;   ///< values that have no logarithm, or −infinity
  bool hasAbove = false;   ///< +infinity
};
ValueSummary Summarize(const std::vector<double>& p_values, bool p_logarithmic);

/// The range of colours for values: all, rounded outward; where their span (on a logarithmic scale, its logarithm)
/// exceeds four times that of the quantiles, the quantiles, so that single values do not take all colours. Without
/// values, 0 to 1, or 1 to 10 on a logarithmic scale.
Range DefaultRange(const ValueSummary& p_summary, bool p_logarithmic);

} // namespace Vek::Chart::Scene::Private
