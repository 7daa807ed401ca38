#pragma once

#include "scene/Export.h"
#include "scene/VectorField.h"

#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/utility/Threads.h"

#include <boost/function.hpp>

#include <random>
#include <vector>

namespace Vek::Chart::Scene {

/// Positions along a field, in the order of the flow.
using Streamline = std::vector<Types::Vector3_Base<double>>;

/// Traces the streamlines of a vector field: single ones through given seeds, or many at even distances.
///
/// Integration: the direction of the field is followed by the Runge-Kutta pair of orders 3 and 2 of Bogacki and
/// Shampine (A 3(2) pair of Runge-Kutta formulas, Applied Mathematics Letters 2, 1989). The difference of the pair
/// controls the step. The speed does not matter: steps are lengths.
///
/// Ends: a line ends where the field does, at a missing node, where the field is too slow, where it turns back within
/// a step (a sink), after its length, and where a termination criterion is met. All its points lie within the field;
/// the last one is as near to the border as the smallest step.
///
/// Spacing: lines end where they come near to other lines or to themselves, as proposed by Jobard and Lefer (Creating
/// evenly-spaced streamlines of arbitrary density, Visualization in Scientific Computing 1997).
///
/// Units: all lengths have the unit of the field's positions. Results depend on the arguments only.
///
/// Errors: the constructors, `Spaced` and `Filled` throw std::invalid_argument for a field that is empty, and for
/// lengths and distances out of their ranges. Exceptions of the field and of the other functions pass through.
///
/// \snippet SceneFieldSnippets.cpp StreamlineTracer
/// \image html parts/StreamlineTracer.png
/// \ingroup plots
class VEK_SCENE_API StreamlineTracer {
public:
  /// A position or a vector.
  using Vector = Types::Vector3_Base<double>;
  /// Writes the vector at a position; false outside of the field.
  using Field = boost::function<bool(const Vector& p_position, Vector& p_vector)>;
  /// Whether a line that is `p_arc` long ends before a position. The distance is measured from the seed.
  using TerminationCriterion = boost::function<bool(const Vector& p_position, double p_arc)>;

  /// How a line is integrated.
  struct VEK_SCENE_API Options {
    double length = 100;        ///< of a line in each direction, finite and at least 0
    double largestStep = 1;     ///< largest distance of points, finite; also the first step
    double smallestStep = 1e-4; ///< above 0, at most `largestStep`
    double tolerance = 1e-4;    ///< largest error of the position at the end of a step, above 0
    double stagnation = 1e-6;   ///< lines end where vectors are not longer; in the unit of the vectors, at least 0
    /// Ends all tracing when it returns true; asked before each step. A single line ends there; of several lines, those
    /// before are returned.
    boost::function<bool()> isCancelled;

    Options() = default;
    /// Suits a field: length two diagonals of its box; steps from a ten-thousandth to the half of a cell
    /// (`VectorField::CellSize`); tolerance a thousandth of a cell; stagnation a millionth of the largest speed.
    explicit Options(const VectorField& p_field);
  };

  /// How far apart lines are kept.
  struct VEK_SCENE_API Spacing {
    double seeds = 1;    ///< least distance of a seed from all lines before, above 0
    double lines = 0.5;  ///< lines end nearer to another one or to themselves; above 0, at most `seeds`
    double shortest = 2; ///< shorter lines are left out

    Spacing() = default;
    /// From its three numbers.
    Spacing(double p_seeds, double p_lines, double p_shortest)
        : seeds(p_seeds)
        , lines(p_lines)
        , shortest(p_shortest) {}
    /// Seeds 1/40 of the diagonal of a field's box apart, lines half as far, none shorter than two such distances.
    explicit Spacing(const VectorField& p_field);
  };

  /// Traces a field with `Options(p_field)`. Keeps a reference: the field must outlive the tracer. Lines of a layer
  /// stay in the layer, whatever the vectors' components across it are.
  explicit StreamlineTracer(const VectorField& p_field);
  /// As above, with other options.
  StreamlineTracer(const VectorField& p_field, const Options& p_options);
  /// Traces a function, for example a projected or an analytic field.
  StreamlineTracer(const Field& p_field, const Options& p_options);

  ///@{
  /// The line that starts at a seed (`Downstream`) or passes through it (`Through`). Empty where the seed is outside or
  /// the field is too slow there.
  Streamline Downstream(const Vector& p_seed, const TerminationCriterion& p_terminates = {}) const;
  Streamline Through(const Vector& p_seed, const TerminationCriterion& p_terminates = {}) const;
  ///@}
  ///@{
  /// As above for several seeds: one line for each, in their order. The lines do not depend on the number of threads;
  /// 16 seeds and fewer start none. With more than one, the field and the other functions are called by all at once.
  std::vector<Streamline> Downstream(const std::vector<Vector>& p_seeds, const TerminationCriterion& p_terminates = {},
                                     Utility::Threads p_threads = {}) const;
  std::vector<Streamline> Through(const std::vector<Vector>& p_seeds, const TerminationCriterion& p_terminates = {},
                                  Utility::Threads p_threads = {}) const;
  ///@}

  /// Evenly spaced lines through those seeds that are far enough from all lines before; earlier seeds take precedence.
  /// `p_before` are lines that exist already; they come first in the result.
  std::vector<Streamline> Spaced(const std::vector<Vector>& p_seeds, const Spacing& p_spacing,
                                 std::vector<Streamline> p_before = {}) const;
  /// Fills a box with evenly spaced lines, for a `VectorField` its `Bounds()`. Seeds are taken beside the lines that
  /// exist, at the distance of seeds: on both sides in a box without extent along one axis (a layer), on four sides in
  /// space. When these are used up, the points of a lattice with that distance are tried. Seeds lie in the box; lines
  /// end where the field does. Throws std::invalid_argument as well for a box that is empty, not finite, or larger than
  /// 2^24 points of the lattice.
  std::vector<Streamline> Filled(const Types::BoundingBox_Base<double>& p_bounds, const Spacing& p_spacing,
                                 std::vector<Streamline> p_before = {}) const;

  /// The length of a polyline.
  static double ArcLength(const Streamline& p_line);
  /// Shuffles seeds, equally with every standard library.
  static void Shuffle(std::vector<Vector>& p_seeds, std::mt19937& p_random);

private:
  Field _field;
  Options _options;
};

} // namespace Vek::Chart::Scene
