#include "io/private/IsoTime.h"

#include "io/private/Words.h"

#include "platform/utility/Calendar.h"

#include <cstdint>

namespace Vek::Chart::Io::Private {

namespace {

bool IsDigit(char p_character) {
  return p_character >= '0' && p_character <= '9';
}

/// Takes parts from the front of a text.
class Scanner {
public:
  explicit Scanner(std::string_view p_text)
      : _rest(p_text) {}

  bool AtEnd() const { return _rest.empty(); }
  bool Take(std::string_view p_word) {
    if (_rest.substr(0, p_word.size()) != p_word)
      return false;
    _rest.remove_prefix(p_word.size());
    return true;
  }
  /// A number of so many digits, within bounds; none otherwise.
  std::optional<int> Take(std::size_t p_digits, int p_least, int p_most) {
    if (_rest.size() < p_digits)
      return {};
    int number = 0;
    for (const char digit : _rest.substr(0, p_digits)) {
      if (!IsDigit(digit))
        return {};
      number = 10 * number + (digit - '0');
    }
    if (number < p_least || number > p_most)
      return {};
    _rest.remove_prefix(p_digits);
    return number;
  }
  /// What digits behind a decimal point are worth; 0 without them.
  double TakeFraction() {
    std::size_t length = _rest.substr(0, 1) == "." ? 1 : 0;
    while (length > 0 && length < _rest.size() && IsDigit(_rest[length]))
      ++length;
    if (length < 2)
      return 0;
    const double fraction = Parsed<double>(_rest.substr(0, length)).value_or(0);
    _rest.remove_prefix(length);
    return fraction;
  }

private:
  std::string_view _rest;
};

/// "2024-05-01", or "2024-05" at the end.
std::optional<std::int64_t> TakeDay(Scanner& p_scanner) {
  const auto year = p_scanner.Take(4, 0, 9999);
  if (!year || !p_scanner.Take("-"))
    return {};
  const auto month = p_scanner.Take(2, 1, 12);
  if (!month)
    return {};
  const std::int64_t first = Utility::DayOf({*year, *month, 1});
  if (p_scanner.AtEnd())
    return first;
  const std::int64_t next = Utility::DayOfMonth(Utility::MonthOf({*year, *month, 1}) + 1);
  if (!p_scanner.Take("-"))
    return {};
  const auto day = p_scanner.Take(2, 1, static_cast<int>(next - first));
  return day ? std::optional(first + *day - 1) : std::nullopt;
}

/// The seconds of "12:30", "12:30:15" and "12:30:15.25".
std::optional<double> TakeTimeOfDay(Scanner& p_scanner) {
  const auto hour = p_scanner.Take(2, 0, 23);
  if (!hour || !p_scanner.Take(":"))
    return {};
  const auto minute = p_scanner.Take(2, 0, 59);
  if (!minute)
    return {};
  const double seconds = 3600 * *hour + 60 * *minute;
  if (!p_scanner.Take(":"))
    return seconds;
  constexpr int LeapSecond = 60;
  const auto second = p_scanner.Take(2, 0, LeapSecond);
  return second ? std::optional(seconds + *second + p_scanner.TakeFraction()) : std::nullopt;
}

/// The seconds by which a time is ahead of UTC, from all that is left of a text.
std::optional<double> TakeZone(Scanner& p_scanner) {
  if (p_scanner.AtEnd())
    return 0;
  p_scanner.Take(" ");
  if (p_scanner.Take("Z") || p_scanner.Take("UTC"))
    return p_scanner.AtEnd() ? std::optional(0.0) : std::nullopt;
  const bool isEast = p_scanner.Take("+");
  if (!isEast && !p_scanner.Take("-"))
    return {};
  const auto hours = p_scanner.Take(2, 0, 23);
  const bool hasMinutes = p_scanner.Take(":") || !p_scanner.AtEnd();
  const auto minutes = hasMinutes ? p_scanner.Take(2, 0, 59) : 0;
  if (!hours || !minutes || !p_scanner.AtEnd())
    return {};
  const double seconds = 3600 * *hours + 60 * *minutes;
  return isEast ? seconds : -seconds;
}

} // namespace

std::optional<double> ParseTime(std::string_view p_text) {
  Scanner scanner(p_text);
  const std::optional<std::int64_t> day = TakeDay(scanner);
  if (!day)
    return {};
  const auto start = static_cast<double>(*day * Utility::DaySeconds);
  if (scanner.AtEnd())
    return start;
  if (!scanner.Take("T") && !scanner.Take(" "))
    return {};
  const std::optional<double> time = TakeTimeOfDay(scanner);
  const std::optional<double> zone = time ? TakeZone(scanner) : std::nullopt;
  return zone ? std::optional(start + *time - *zone) : std::nullopt;
}

} // namespace Vek::Chart::Io::Private
