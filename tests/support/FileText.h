#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <sstream>
#include <string>

// Files built in memory, and summaries of what they yield.

namespace Vek::Test {

/// The bytes of numbers of a type.
template <class T>
std::string BytesOf(std::initializer_list<double> p_values, bool p_bigEndian = false) {
  std::string bytes;
  for (const double value : p_values) {
    const T number = static_cast<T>(value);
    std::string one(reinterpret_cast<const char*>(&number), sizeof number);
    if (p_bigEndian)
      std::reverse(one.begin(), one.end());
    bytes += one;
  }
  return bytes;
}

/// Numbers to three digits behind a name; empty without any.
template <class List>
std::string Rounded(const char* p_name, const List& p_numbers) {
  std::ostringstream text;
  for (const double number : p_numbers)
    text << ' ' << std::round(number * 1000) / 1000 + 0.0;
  return text.str().empty() ? "" : p_name + text.str();
}

} // namespace Vek::Test
