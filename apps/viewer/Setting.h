#pragma once

#include "platform/types/Range.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <variant>
#include <vector>

namespace Vek::Chart::Viewer {

/// Something about a chart that can be changed: a row of the settings panel.
struct Setting {
  using Range = Types::MinMax_Base<double>;
  /// On or off; one of `choices`; a number; or a range that is empty where it is automatic.
  using Value = std::variant<bool, int, double, std::optional<Range>>;

  QString group;                           ///< title of the rows around it
  QString name;                            ///< unique in its group
  Value value;                             ///< as it is
  std::function<void(const Value&)> apply; ///< changes the chart
  QStringList choices{};                   ///< of an int
  double low = 0, high = 1;                ///< of a double, unless they change
  std::function<Range()> limits{};         ///< those that change
  bool isWhole = false;                    ///< whether a double has no decimals
  QString unit{};                          ///< of a double
  std::function<Range()> current{};        ///< of a range: what the automatic one is
  std::function<bool()> isOffered{};       ///< whether it has an effect at present; empty for always
  bool rebuilds = false;                   ///< whether plots are made anew, which need all other settings again
  /// Whether the file has to be read again, with the value as the step or level, or for another variable.
  enum class Reading { None, Time, Level, Variable } reading = Reading::None;

  /// The least and the largest number.
  Range Limits() const { return limits ? limits() : Range(low, high); }
};

} // namespace Vek::Chart::Viewer
