#pragma once

namespace Vek::Chart::Utility {

/// A version number, ordered by its parts from left to right.
struct VersionNo {
  int majorPart = 0; ///< incremented by incompatible changes
  int minorPart = 0; ///< incremented by additions
  int patchPart = 0; ///< incremented by fixes

  constexpr VersionNo() = default; ///< 0.0.0
  /// From its parts.
  constexpr VersionNo(int p_major, int p_minor, int p_patch)
      : majorPart(p_major)
      , minorPart(p_minor)
      , patchPart(p_patch) {}
};

///@{
/// Compares part by part, from left to right.
constexpr bool operator<(const VersionNo& p_a, const VersionNo& p_b) {
  if (p_a.majorPart != p_b.majorPart)
    return p_a.majorPart < p_b.majorPart;
  if (p_a.minorPart != p_b.minorPart)
    return p_a.minorPart < p_b.minorPart;
  return p_a.patchPart < p_b.patchPart;
}
constexpr bool operator>(const VersionNo& p_a, const VersionNo& p_b) {
  return p_b < p_a;
}
constexpr bool operator>=(const VersionNo& p_a, const VersionNo& p_b) {
  return !(p_a < p_b);
}
constexpr bool operator<=(const VersionNo& p_a, const VersionNo& p_b) {
  return !(p_b < p_a);
}
constexpr bool operator==(const VersionNo& p_a, const VersionNo& p_b) {
  return !(p_a < p_b) && !(p_b < p_a);
}
constexpr bool operator!=(const VersionNo& p_a, const VersionNo& p_b) {
  return !(p_a == p_b);
}
///@}

} // namespace Vek::Chart::Utility
