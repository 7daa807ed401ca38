#pragma once

#include <optional>
#include <string_view>

namespace Vek::Chart::Io::Private {

/// The seconds from 1970-01-01 00:00 UTC to a time in the extended format of ISO 8601, of the years 0000 to 9999:
/// "2024-05" (the first of the month), "2024-05-01", "2024-05-01T12:30", "2024-05-01 12:30:15.25+02:00". A time is in
/// UTC unless "±hh:mm", "±hhmm" or "±hh" ends it; "Z" and "UTC" may. A leap second counts as the one after it. None for
/// another text.
std::optional<double> ParseTime(std::string_view p_text);

} // namespace Vek::Chart::Io::Private
