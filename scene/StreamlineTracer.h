#pragma once

#include "scene/Export.h"

#include "platform/types/Vector.h"

#include <boost/function.hpp>

#include <cstddef>
#include <map>
#include <random>
#include <tuple>
#include <vector>

namespace Vek::Chart::Scene {

/// The vector at a place; false beyond the border of the field.
using FlowFunction =
    boost::function<bool(const Types::Vector3_Base<double>& p_place, Types::Vector3_Base<double>& p_vector)>;
/// Whether a line may go on to a place, having come `p_arc` far.
using GoOnFunction = boost::function<bool(const Types::Vector3_Base<double>& p_place, double p_arc)>;

/// How a streamline is followed. Lengths are those of the field's places.
struct VEK_SCENE_API TraceOptions {
  double length = 100;    ///< where a line ends at the latest, in each direction
  double largestStep = 1; ///< between points of the line; also the first step
  double smallestStep = 1e-4;
  double tolerance = 1e-4;  ///< of a step's place
  double stagnation = 1e-6; ///< a vector that is no longer than this has no direction: the line ends
};

/// A line along a field, in the order of the flow.
using Streamline = std::vector<Types::Vector3_Base<double>>;

/// Follows the direction of the field from a seed by the Runge-Kutta pair of Bogacki and Shampine (orders 3 and 2),
/// whose difference controls the step. Every point of the line lies within the field; the last one is as near to the
/// border as the smallest step. A line also ends at stagnation, after `p_options.length`, and where `p_goOn`, if there
/// is one, forbids the next point. Empty when the seed itself is outside or stagnant.
///
/// `TraceDownstream` starts at the seed, `TraceBoth` goes through it.
VEK_SCENE_API Streamline TraceDownstream(const FlowFunction& p_flow, const Types::Vector3_Base<double>& p_seed,
                                         const TraceOptions& p_options, const GoOnFunction& p_goOn = {});
VEK_SCENE_API Streamline TraceBoth(const FlowFunction& p_flow, const Types::Vector3_Base<double>& p_seed,
                                   const TraceOptions& p_options, const GoOnFunction& p_goOn = {});

/// The length of a polyline.
VEK_SCENE_API double ArcLength(const Streamline& p_line);

/// Brings seeds into an order without order; the same one with every standard library.
VEK_SCENE_API void Shuffle(std::vector<Types::Vector3_Base<double>>& p_seeds, std::mt19937& p_random);

/// How far apart streamlines are kept.
struct VEK_SCENE_API Spacing {
  double seeds = 1;    ///< from a seed to every line before
  double lines = 0.5;  ///< where a line ends before another one, or an earlier part of itself; not above `seeds`
  double shortest = 2; ///< lines that turn out shorter are dropped
};

/// Streamlines through those seeds that are far enough from every line before; seeds that come first have the best
/// chances. `p_before` are lines that stand already; they come first in the result.
VEK_SCENE_API std::vector<Streamline> SpacedStreamlines(const FlowFunction& p_flow,
                                                        const std::vector<Types::Vector3_Base<double>>& p_seeds,
                                                        const Spacing& p_spacing, const TraceOptions& p_options,
                                                        std::vector<Streamline> p_before = {});

} // namespace Vek::Chart::Scene
