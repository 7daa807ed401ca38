#pragma once

namespace Vek::Chart::Types {

/// An angle, kept in radians.
class Angle {
public:
  static constexpr double Pi = 3.14159265358979323846; ///< half a turn, in radians

  constexpr Angle() = default; ///< zero
  /// An angle in radians; not reduced to one turn.
  static constexpr Angle FromRadians(double p_radians) { return Angle(p_radians); }
  /// An angle in degrees; not reduced to one turn.
  static constexpr Angle FromDegrees(double p_degrees) { return Angle(p_degrees * Pi / 180.0); }

  /// In radians.
  constexpr double Radians() const { return _radians; }
  /// In degrees.
  constexpr double Degrees() const { return _radians * 180.0 / Pi; }

private:
  explicit constexpr Angle(double p_radians)
      : _radians(p_radians) {}
  double _radians = 0;
};

} // namespace Vek::Chart::Types
