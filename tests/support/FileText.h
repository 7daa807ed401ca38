#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <iterator>
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

inline std::string BytesOfFile(const std::string& p_path) {
  std::ifstream file(p_path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// An uncompressed OpenEXR file of floats, 3 × 2, with its channels in alphabetical order; pixel i of channel c is
/// 10 · c + i, counted from the top.
inline std::string ExrFile(const std::array<int, 4>& p_window, const std::string& p_channels) {
  std::string file = BytesOf<std::int32_t>({20000630, 2});
  const auto attribute = [&](const char* p_name, const char* p_type, const std::string& p_value) {
    file += std::string(p_name) + '\0' + p_type + '\0' + BytesOf<std::int32_t>({double(p_value.size())}) + p_value;
  };
  std::string channels;
  for (const char channel : p_channels)
    channels += std::string(1, channel) + '\0' + BytesOf<std::int32_t>({2, 0, 1, 1});
  const std::string window =
      BytesOf<std::int32_t>({double(p_window[0]), double(p_window[1]), double(p_window[2]), double(p_window[3])});
  attribute("channels", "chlist", channels + '\0');
  attribute("compression", "compression", std::string(1, '\0'));
  attribute("dataWindow", "box2i", window);
  attribute("displayWindow", "box2i", window);
  attribute("lineOrder", "lineOrder", std::string(1, '\0'));
  attribute("pixelAspectRatio", "float", BytesOf<float>({1}));
  attribute("screenWindowCenter", "v2f", BytesOf<float>({0, 0}));
  attribute("screenWindowWidth", "float", BytesOf<float>({1}));
  file += '\0';
  const std::size_t rowBytes = 12 * p_channels.size();
  for (std::size_t row = 0; row < 2; ++row)
    file += BytesOf<std::uint64_t>({double(file.size() + (2 - row) * 8 + row * (8 + rowBytes))});
  for (int row = 0; row < 2; ++row) {
    file += BytesOf<std::int32_t>({double(p_window[1] + row), double(rowBytes)});
    for (std::size_t c = 0; c < p_channels.size(); ++c)
      for (int x = 0; x < 3; ++x)
        file += BytesOf<float>({10.0 * double(c) + 3 * row + x});
  }
  return file;
}

} // namespace Vek::Test
