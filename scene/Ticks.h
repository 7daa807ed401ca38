#pragma once

#include "scene/Export.h"

#include <QString>

#include <cstddef>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

/// Ticks of an axis or a colour bar: values and their strings.
///
/// Values lie within the range that they were made for, its ends included, without repetition, in the order from its
/// first end to its second: descending for a range given as (10, 0). A string is empty where a tick is minor. All other
/// strings differ from each other, except for longitudes 360° apart.
///
/// All strings of one list have the same number of decimals, the fewest that tell the ticks apart. They parse back to
/// the value within the last shown digit. The minus sign is U+2212, the decimal separator a point in every locale.
/// What all strings have in common is taken out of them and belongs beside the title, once (`Note()`): a power of ten
/// if the largest value lies outside of 1e-5 to 1e6 (a multiple of three), an offset if all values have one sign and
/// the strings get shorter by four digits or more. A value is its string × 10^n + offset.
///
/// A range with an end that is NaN or infinite has no ticks, nor has one for which 0 ticks are asked for. A range of
/// one value has that one. Ranges of every other size, from neighbouring doubles to the whole range of double, have
/// ticks. At most 1000 labelled ticks are made. Nothing throws unless noted.
///
/// Steps of 1, 2, 2.5 and 5: with 1, 2 and 5 alone (Heckbert, "Nice Numbers for Graph Labels", Graphics Gems, 1990) one
/// range in thirty has fewer than three ticks where six are allowed.
///
/// \snippet SceneLegendSnippets.cpp Ticks
/// \ingroup legends
class VEK_SCENE_API Ticks {
public:
  /// What an angle in degrees is.
  enum class Angle {
    Plain,     ///< "−45°"
    Longitude, ///< "60° W", from 180° W to 180° E whatever the turn; "0°" and "180°"
    Latitude,  ///< "45.5° N"; "0°"
  };

  /// No ticks.
  Ticks() = default;
  /// Own ticks, as they are. Throws std::invalid_argument if the lengths differ.
  Ticks(std::vector<double> p_values, std::vector<QString> p_strings, QString p_note = QString());

  /// At most `p_most` multiples of 1, 2, 2.5 or 5 × 10^n.
  static Ticks Linear(double p_low, double p_high, std::size_t p_most);
  /// Ticks of a logarithmic range above 0; none otherwise. From two decades on at most `p_most` powers of ten, every
  /// k-th if there are more, the rest minor; if all have strings, so are 2 to 9 times those. From one decade on 1, 2
  /// and 5 times powers of ten (1 and 3 times, or powers alone, if those are too many). Below one decade as `Linear`.
  static Ticks Logarithmic(double p_low, double p_high, std::size_t p_most);
  /// At most `p_most` multiples of 1, 2, 5, 10, 15, 30, 45, 60, 90, 180 or 360 degrees, or below one degree of 1, 2 or
  /// 5 × 10^n.
  static Ticks Degrees(double p_low, double p_high, std::size_t p_most, Angle p_angle = Angle::Plain);
  /// At most `p_most` round times. Values are seconds since 1970-01-01 00:00 UTC, without leap seconds, as `time_t` and
  /// `QDateTime::toSecsSinceEpoch` count them; for days, times 86400. The calendar is the Gregorian one, also before
  /// 1582; the year 0 is the one before the year 1.
  ///
  /// Steps: 1, 2 or 5 × 10^n years; 1, 2, 3, 4 or 6 months; 1, 2, 4, 7 or 14 days, from the first of each month on, the
  /// last of which may take longer; 1, 2, 3, 4, 6 or 12 hours; 1, 2, 5, 10, 15 or 30 minutes or seconds; 1, 2 or 5 ×
  /// 10^n seconds down to a nanosecond. There are none 10^15 seconds, some 30 million years, from 1970 on.
  ///
  /// Strings are the shortest that distinguish the ticks, as ISO 8601 writes them. What all ticks share is the note:
  /// "Jan", "Apr", "Jul" of "2021"; "Mar 31", "Apr 2" of "2021"; "1", "8", "15" of "2021-03"; "06:00", "12:00" of
  /// "2021-03-14"; "15.0 s", "15.5 s" of "2021-03-14 12:30"; otherwise complete ones: "2020-12", "2021-03". A value is
  /// its string and the note together.
  static Ticks Dates(double p_low, double p_high, std::size_t p_most);
  /// The bounds of classes, which are finite and ascending; equal ones count once. Each string is within a thousandth
  /// of the narrower class beside its bound, so decimals may differ. At most `p_most` have strings, every k-th if there
  /// are more.
  static Ticks OfBounds(const std::vector<double>& p_bounds, std::size_t p_most);

  /// Where the ticks are, in the units of the range.
  const std::vector<double>& Values() const& { return _values; }
  /// A copy, so that a loop over a temporary's values is safe.
  std::vector<double> Values() && { return std::move(_values); }
  /// One string for each value; empty for a minor tick.
  const std::vector<QString>& Strings() const& { return _strings; }
  /// A copy, so that a loop over a temporary's strings is safe.
  std::vector<QString> Strings() && { return std::move(_strings); }
  /// The power of ten and the offset of all strings, to be shown once beside the title: "×10⁻⁶", "+ 120000",
  /// "×10⁻⁹ + 1.5"; of dates, the year, month, day or minute; empty mostly.
  const QString& Note() const { return _note; }

  /// A value as a string of its own for a read-out, complete (no part of it in `Note()`), with the precision of the
  /// ticks and `p_moreDigits` further digits: "2.5 m/s", "2.5×10⁻⁸ m/s", "45.5° N". NaN is "no data". A unit is
  /// appended after a space. Dates have no digits but parts, from the year to the second, which are not rounded:
  /// "2021-03", "2021-03-14", "2021-03-14 12:30".
  QString Format(double p_value, const QString& p_unit = QString(), int p_moreDigits = 0) const;

private:
  enum class Style { Significant, Decimals, Degrees, Dates };

  std::vector<double> _values;
  std::vector<QString> _strings;
  QString _note;
  Style _style = Style::Significant;
  int _digits = 6;   ///< of Significant: how many; of Dates: see DateString; else the power of ten of the last digit
  int _exponent = 0; ///< of Decimals: the power of ten that all values share
  Angle _angle = Angle::Plain;
};

} // namespace Vek::Chart::Scene
