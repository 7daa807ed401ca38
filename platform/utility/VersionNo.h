#pragma once

namespace Vek::Chart::Utility {

/// A version number, ordered by its parts from left to right.
struct VersionNo {
  int major_part = 0; ///< changes with the interface
  int minor_part = 0; ///< grows with additions
  int patch_part = 0; ///< grows with repairs

  constexpr VersionNo() = default; ///< 0.0.0
  /// From its parts.
  constexpr VersionNo(int p_major, int p_minor, int p_patch)
      : major_part(p_major)
      , minor_part(p_minor)
      , patch_part(p_patch) {}
};

///@{
/// Compares part by part, from left to right.
constexpr bool operator<(const VersionNo& p_a, const VersionNo& p_b) {
  if (p_a.major_part != p_b.major_part)
    return p_a.major_part < p_b.major_part;
  if (p_a.minor_part != p_b.minor_part)
    return p_a.minor_part < p_b.minor_part;
  return p_a.patch_part < p_b.patch_part;
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
