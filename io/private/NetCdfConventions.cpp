// What attributes and names of variables mean, by the CF conventions 1.10 and the habits of older files.

#include "io/private/NetCdfGrid.h"

#include "io/FileError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace Vek::Chart::Io::Private {

namespace {

std::string Lower(std::string p_text) {
  std::transform(p_text.begin(), p_text.end(), p_text.begin(),
                 [](unsigned char p_c) { return static_cast<char>(p_c >= 'A' && p_c <= 'Z' ? p_c + 32 : p_c); });
  return p_text;
}

template <std::size_t Count>
bool IsOneOf(const std::string& p_word, const std::array<std::string_view, Count>& p_words) {
  return std::find(p_words.begin(), p_words.end(), p_word) != p_words.end();
}

/// "east" of "degrees_east", "degree_E" and "degreesE"; empty for other units.
std::string DirectionOf(const std::string& p_unit) {
  const std::string unit = Lower(p_unit);
  if (unit.compare(0, 6, "degree") != 0)
    return {};
  const std::size_t start = unit.find_first_not_of("s_", 6);
  const std::string rest = start == std::string::npos ? "" : unit.substr(start);
  return rest == "e" ? "east" : rest == "n" ? "north" : rest;
}

/// The value of a variable without _FillValue where nothing was written; NaN if its type has none.
double DefaultFill(NetCdfType p_type) {
  switch (p_type) {
  case NetCdfType::Short:
    return -32767;
  case NetCdfType::Int:
    return -2147483647;
  case NetCdfType::Float:
  case NetCdfType::Double:
    return 9.9692099683868690e+36;
  case NetCdfType::UShort:
    return 65535;
  case NetCdfType::UInt:
    return 4294967295.0;
  default:
    return std::numeric_limits<double>::quiet_NaN();
  }
}

/// The values of integers that a file declares to be unsigned.
double UnsignedRange(const NetCdfVariable& p_variable) {
  if (Lower(p_variable.Text("_Unsigned")) != "true")
    return 0;
  switch (p_variable.type) {
  case NetCdfType::Byte:
    return 256;
  case NetCdfType::Short:
    return 65536;
  case NetCdfType::Int:
    return 4294967296.0;
  default:
    return 0;
  }
}

double FirstOr(const std::vector<double>& p_numbers, double p_default) {
  return p_numbers.empty() ? p_default : p_numbers[0];
}

/// Days since 1970-01-01 of a date of the Gregorian calendar (H. Hinnant, "chrono-Compatible Low-Level Date
/// Algorithms").
long long DaysOf(long long p_year, int p_month, int p_day) {
  const long long year = p_year - (p_month <= 2);
  const long long era = (year >= 0 ? year : year - 399) / 400;
  const long long yearOfEra = year - era * 400;
  const long long dayOfYear = (153 * (p_month + (p_month > 2 ? -3 : 9)) + 2) / 5 + p_day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

std::string DateOf(double p_seconds) {
  const double minutes = std::round(p_seconds / 60);
  const long long day = static_cast<long long>(std::floor(minutes / 1440));
  const int minute = static_cast<int>(minutes - double(day) * 1440);
  const long long shifted = day + 719468;
  const long long era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
  const long long dayOfEra = shifted - era * 146097;
  const long long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const long long month = (5 * dayOfYear + 2) / 153;
  const int number = static_cast<int>(month < 10 ? month + 3 : month - 9);
  char text[64];
  std::snprintf(text, sizeof text, "%04lld-%02d-%02d %02d:%02d", yearOfEra + era * 400 + (number <= 2), number,
                static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1), minute / 60, minute % 60);
  return text;
}

/// The seconds of a unit of time; 0 for months, years and others, whose lengths vary.
double SecondsOf(const std::string& p_unit) {
  constexpr std::array<std::string_view, 4> Seconds{"second", "seconds", "sec", "s"};
  constexpr std::array<std::string_view, 3> Minutes{"minute", "minutes", "min"};
  constexpr std::array<std::string_view, 5> Hours{"hour", "hours", "hr", "hrs", "h"};
  constexpr std::array<std::string_view, 3> Days{"day", "days", "d"};
  const std::string unit = Lower(p_unit);
  return IsOneOf(unit, Seconds)   ? 1
         : IsOneOf(unit, Minutes) ? 60
         : IsOneOf(unit, Hours)   ? 3600
         : IsOneOf(unit, Days)    ? 86400
                                  : 0;
}

} // namespace

bool IsPressure(const std::string& p_unit) {
  constexpr std::array<std::string_view, 9> Units{"pa",  "hpa",      "kpa",       "mb", "mbar",
                                                  "bar", "millibar", "millibars", "db"};
  return IsOneOf(Lower(p_unit), Units);
}

NetCdfRole RoleOf(const NetCdfVariable& p_coordinate) {
  const std::string axis = Lower(p_coordinate.Text("axis")), unit = p_coordinate.Text("units");
  const std::string standard = p_coordinate.Text("standard_name"), name = Lower(p_coordinate.name);
  constexpr std::array<std::string_view, 3> XStandard{"longitude", "projection_x_coordinate", "grid_longitude"};
  constexpr std::array<std::string_view, 3> YStandard{"latitude", "projection_y_coordinate", "grid_latitude"};
  constexpr std::array<std::string_view, 4> ZStandard{"height", "altitude", "depth", "air_pressure"};
  constexpr std::array<std::string_view, 4> XNames{"lon", "longitude", "x", "easting"};
  constexpr std::array<std::string_view, 4> YNames{"lat", "latitude", "y", "northing"};
  constexpr std::array<std::string_view, 8> ZNames{"z",      "lev",      "level", "depth",
                                                   "height", "altitude", "plev",  "deptht"};
  if (axis == "t" || standard == "time" || unit.find(" since ") != std::string::npos || name == "time")
    return NetCdfRole::Time;
  if (standard == "realization")
    return NetCdfRole::Other;
  if (axis == "x" || IsOneOf(standard, XStandard) || DirectionOf(unit) == "east")
    return NetCdfRole::X;
  if (axis == "y" || IsOneOf(standard, YStandard) || DirectionOf(unit) == "north")
    return NetCdfRole::Y;
  if (axis == "z" || IsOneOf(standard, ZStandard) || !p_coordinate.Text("positive").empty() || IsPressure(unit))
    return NetCdfRole::Z;
  if (IsOneOf(name, XNames))
    return NetCdfRole::X;
  if (IsOneOf(name, YNames))
    return NetCdfRole::Y;
  return IsOneOf(name, ZNames) ? NetCdfRole::Z : NetCdfRole::Unknown;
}

void Unpack(const NetCdfVariable& p_variable, std::vector<double>& p_values) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double unsignedRange = UnsignedRange(p_variable);
  const auto stored = [&](double p_value) {
    if (p_value < 0)
      p_value += unsignedRange;
    // An attribute of doubles means the nearest value that the variable can have.
    return p_variable.type == NetCdfType::Float ? double(float(p_value)) : p_value;
  };
  std::vector<double> missing = p_variable.Numbers("_FillValue");
  if (missing.empty())
    missing.push_back(DefaultFill(p_variable.type));
  const std::vector<double>& further = p_variable.Numbers("missing_value");
  missing.insert(missing.end(), further.begin(), further.end());
  for (double& value : missing)
    value = stored(value);
  const std::vector<double>& range = p_variable.Numbers("valid_range");
  const double least = stored(range.size() == 2 ? range[0] : FirstOr(p_variable.Numbers("valid_min"), -infinity));
  const double most = stored(range.size() == 2 ? range[1] : FirstOr(p_variable.Numbers("valid_max"), infinity));
  const double scale = FirstOr(p_variable.Numbers("scale_factor"), 1);
  const double offset = FirstOr(p_variable.Numbers("add_offset"), 0);
  for (double& value : p_values) {
    const double found = stored(value);
    const bool isMissing = std::find(missing.begin(), missing.end(), found) != missing.end();
    value = !isMissing && found >= least && found <= most ? found * scale + offset
                                                          : std::numeric_limits<double>::quiet_NaN();
  }
}

std::vector<std::string> TimeStrings(const NetCdfVariable& p_coordinate, const std::vector<double>& p_values) {
  const std::string& unit = p_coordinate.Text("units");
  const std::string calendar = Lower(p_coordinate.Text("calendar"));
  constexpr std::array<std::string_view, 4> Usual{"", "standard", "gregorian", "proleptic_gregorian"};
  const std::size_t since = unit.find(" since ");
  const double length = since == std::string::npos ? 0 : SecondsOf(unit.substr(0, since));
  long long year = 0;
  int month = 1, day = 1, hour = 0, minute = 0;
  constexpr std::size_t SinceSize = 7;
  const std::string date = since == std::string::npos ? "" : unit.substr(since + SinceSize, 40);
  const int parts = std::sscanf(date.c_str(), "%6lld-%2d-%2d%*[ T]%2d:%2d", &year, &month, &day, &hour, &minute);
  const bool isDate = parts >= 3 && month >= 1 && month <= 12 && day >= 1 && day <= 31;
  const double start = isDate ? double(DaysOf(year, month, day)) * 86400 + hour * 3600.0 + minute * 60.0 : 0;
  std::vector<std::string> times;
  for (const double value : p_values) {
    const double seconds = start + value * length;
    char number[64];
    std::snprintf(number, sizeof number, "%.10g", value);
    constexpr double Most = 1e14; // within the years that are printed
    times.push_back(isDate && length > 0 && IsOneOf(calendar, Usual) && std::abs(seconds) < Most
                        ? DateOf(seconds)
                        : number + (unit.empty() ? "" : ' ' + unit));
  }
  return times;
}

std::vector<const NetCdfVariable*> GridVariables(const NetCdfFile& p_file) {
  std::vector<const NetCdfVariable*> found;
  for (const NetCdfVariable& variable : p_file.Variables()) {
    const bool isNumeric = variable.type != NetCdfType::Char && variable.type != NetCdfType::Unknown;
    const auto& variables = p_file.Variables();
    const bool isPart = std::any_of(variables.begin(), variables.end(), [&](const NetCdfVariable& p_other) {
      return p_other.Text("bounds") == variable.name || p_other.Text("edges") == variable.name;
    });
    if (isNumeric && !isPart && variable.dimensions.size() >= 2 && DirectionOf(variable.Text("units")).empty())
      found.push_back(&variable);
  }
  return found;
}

namespace {

/// The other components of a variable on the same grid, if there is a second one: those whose name differs by the word.
std::vector<std::string> Partners(const std::vector<const NetCdfVariable*>& p_variables, const NetCdfVariable& p_first,
                                  std::string (*p_name)(const NetCdfVariable&), std::size_t p_at,
                                  const std::array<std::string_view, 3>& p_words) {
  std::vector<std::string> components{p_first.name};
  for (std::size_t i = 1; i < 3; ++i) {
    std::string name = p_name(p_first);
    name.replace(p_at, p_words[0].size(), p_words[i]);
    const auto partner = std::find_if(p_variables.begin(), p_variables.end(), [&](const NetCdfVariable* p_other) {
      return p_name(*p_other) == name && p_other->dimensions == p_first.dimensions &&
             p_other->Text("units") == p_first.Text("units");
    });
    if (partner != p_variables.end())
      components.push_back((*partner)->name);
    else if (i == 1)
      return {};
  }
  return components;
}

std::string StandardName(const NetCdfVariable& p_variable) {
  return p_variable.Text("standard_name");
}
std::string LowerName(const NetCdfVariable& p_variable) {
  return Lower(p_variable.name);
}

} // namespace

std::vector<std::string> FindComponents(const NetCdfFile& p_file) {
  const std::vector<const NetCdfVariable*> variables = GridVariables(p_file);
  constexpr std::array<std::array<std::string_view, 3>, 3> Standard{
      {{"eastward", "northward", "upward"}, {"x_", "y_", "z_"}, {"x_", "y_", "upward_"}}};
  constexpr std::array<std::array<std::string_view, 3>, 2> Letters{{{"u", "v", "w"}, {"x", "y", "z"}}};
  for (const auto& words : Standard)
    for (const NetCdfVariable* const variable : variables)
      if (const std::size_t at = StandardName(*variable).find(words[0]); at != std::string::npos)
        if (auto components = Partners(variables, *variable, StandardName, at, words); !components.empty())
          return components;
  for (const auto& letters : Letters)
    for (const NetCdfVariable* const variable : variables) {
      const std::string name = LowerName(*variable);
      for (std::size_t at = name.find(letters[0]); at != std::string::npos; at = name.find(letters[0], at + 1))
        if (auto components = Partners(variables, *variable, LowerName, at, letters); !components.empty())
          return components;
    }
  std::string names;
  for (const NetCdfVariable* const variable : variables)
    names += (names.empty() ? "" : ", ") + variable->name;
  throw FileError(p_file.Name(), "expected the components of vectors, such as u and v, got " +
                                     (names.empty() ? "no variables on a grid" : "the variables " + names));
}

} // namespace Vek::Chart::Io::Private
