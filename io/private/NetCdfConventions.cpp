// What attributes and names of variables mean, by the CF conventions 1.10 and the habits of older files.

#include "io/private/NetCdfGrid.h"

#include "io/FileError.h"

#include <algorithm>
#include <array>
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

/// X for "degrees_east", "degree_E" and "degreesE", Y for those of the north, otherwise Unknown.
NetCdfRole RoleOfUnit(const std::string& p_unit) {
  const std::string unit = Lower(p_unit);
  const std::size_t start = std::min(unit.find_first_not_of("s_ ", 6), unit.size());
  const std::string direction = unit.compare(0, 6, "degree") == 0 ? unit.substr(start) : "";
  if (direction == "e" || direction == "east")
    return NetCdfRole::X;
  return direction == "n" || direction == "north" ? NetCdfRole::Y : NetCdfRole::Unknown;
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

/// Whether the limits of valid values are those of unpacked values: where they have the type of the scale, and not that
/// of the packed values ("NetCDF Users' Guide", Attribute Conventions).
bool HasUnpackedRange(const NetCdfVariable& p_variable) {
  const auto isReal = [](NetCdfType p_type) { return p_type == NetCdfType::Float || p_type == NetCdfType::Double; };
  bool isUnpacked = false;
  for (const char* const name : {"valid_range", "valid_min", "valid_max"})
    isUnpacked |= isReal(p_variable.Type(name));
  return isUnpacked && !isReal(p_variable.type) &&
         (isReal(p_variable.Type("scale_factor")) || isReal(p_variable.Type("add_offset")));
}

double FirstOr(const std::vector<double>& p_numbers, double p_default) {
  return p_numbers.empty() ? p_default : p_numbers[0];
}

} // namespace

bool IsPressure(const std::string& p_unit) {
  constexpr std::array<std::string_view, 9> Units{"pa",  "hpa",      "kpa",       "mb", "mbar",
                                                  "bar", "millibar", "millibars", "db"};
  return IsOneOf(Lower(p_unit), Units);
}

NetCdfRole RoleOfName(const std::string& p_name) {
  constexpr std::array<std::string_view, 4> XNames{"lon", "longitude", "x", "easting"};
  constexpr std::array<std::string_view, 4> YNames{"lat", "latitude", "y", "northing"};
  constexpr std::array<std::string_view, 8> ZNames{"z",      "lev",      "level", "depth",
                                                   "height", "altitude", "plev",  "deptht"};
  const std::string name = Lower(p_name);
  if (name == "time")
    return NetCdfRole::Time;
  if (IsOneOf(name, XNames))
    return NetCdfRole::X;
  if (IsOneOf(name, YNames))
    return NetCdfRole::Y;
  return IsOneOf(name, ZNames) ? NetCdfRole::Z : NetCdfRole::Unknown;
}

NetCdfRole RoleOf(const NetCdfVariable& p_coordinate) {
  const std::string axis = Lower(p_coordinate.Text("axis")), unit = p_coordinate.Text("units");
  const std::string standard = p_coordinate.Text("standard_name");
  constexpr std::array<std::string_view, 3> XStandard{"longitude", "projection_x_coordinate", "grid_longitude"};
  constexpr std::array<std::string_view, 3> YStandard{"latitude", "projection_y_coordinate", "grid_latitude"};
  constexpr std::array<std::string_view, 4> ZStandard{"height", "altitude", "depth", "air_pressure"};
  if (axis == "t" || standard == "time" || unit.find(" since ") != std::string::npos)
    return NetCdfRole::Time;
  if (standard == "realization")
    return NetCdfRole::Other;
  if (axis == "x" || IsOneOf(standard, XStandard) || RoleOfUnit(unit) == NetCdfRole::X)
    return NetCdfRole::X;
  if (axis == "y" || IsOneOf(standard, YStandard) || RoleOfUnit(unit) == NetCdfRole::Y)
    return NetCdfRole::Y;
  if (axis == "z" || IsOneOf(standard, ZStandard) || !p_coordinate.Text("positive").empty() || IsPressure(unit))
    return NetCdfRole::Z;
  return RoleOfName(p_coordinate.name);
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
  const double scale = FirstOr(p_variable.Numbers("scale_factor"), 1);
  const double offset = FirstOr(p_variable.Numbers("add_offset"), 0);
  const std::vector<double>& range = p_variable.Numbers("valid_range");
  double least = range.size() == 2 ? range[0] : FirstOr(p_variable.Numbers("valid_min"), -infinity);
  double most = range.size() == 2 ? range[1] : FirstOr(p_variable.Numbers("valid_max"), infinity);
  const bool isUnpacked = HasUnpackedRange(p_variable);
  if (!isUnpacked) {
    least = stored(least);
    most = stored(most);
  }
  for (double& value : p_values) {
    const double found = stored(value), unpacked = found * scale + offset;
    const double limited = isUnpacked ? unpacked : found;
    const bool isMissing = std::find(missing.begin(), missing.end(), found) != missing.end();
    value = !isMissing && limited >= least && limited <= most ? unpacked : std::numeric_limits<double>::quiet_NaN();
  }
}

std::vector<const NetCdfVariable*> GridVariables(const NetCdfFile& p_file) {
  std::vector<const NetCdfVariable*> found;
  for (const NetCdfVariable& variable : p_file.Variables()) {
    const bool isNumeric = variable.type != NetCdfType::Char && variable.type != NetCdfType::Unknown;
    const auto& variables = p_file.Variables();
    const bool isPart = std::any_of(variables.begin(), variables.end(), [&](const NetCdfVariable& p_other) {
      return p_other.Text("bounds") == variable.name || p_other.Text("edges") == variable.name;
    });
    if (isNumeric && !isPart && variable.dimensions.size() >= 2 &&
        RoleOfUnit(variable.Text("units")) == NetCdfRole::Unknown)
      found.push_back(&variable);
  }
  return found;
}

std::vector<std::string> NamesOfGrids(const NetCdfFile& p_file) {
  std::vector<std::string> names;
  for (const NetCdfVariable* const variable : GridVariables(p_file))
    names.push_back(variable->name);
  return names;
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
