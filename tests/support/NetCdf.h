#pragma once

#include "tests/support/Test.h"

/// The bytes of a NetCDF file that ncgen, of the package netcdf-bin, makes of a text.
inline std::string NetCdf(const std::string& p_text, const std::string& p_kind = "classic") {
  const TempFolder folder;
  const std::string from = folder.Write("a.cdl", "netcdf a {\n" + p_text + "}\n"), to = folder.File("a.nc");
  EXPECT_EQ(std::system(("ncgen -k '" + p_kind + "' -o " + to + " " + from).c_str()), 0) << p_text;
  std::ostringstream bytes;
  bytes << std::ifstream(to, std::ios::binary).rdbuf();
  return bytes.str();
}

/// Numbers with blanks between them; "?" for NaN.
inline std::ostream& operator<<(std::ostream& p_out, const std::vector<double>& p_numbers) {
  for (std::size_t i = 0; i < p_numbers.size(); ++i)
    (std::isnan(p_numbers[i]) ? p_out << (i ? " ?" : "?") : p_out << (i ? " " : "") << p_numbers[i]);
  return p_out;
}
