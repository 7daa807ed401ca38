#pragma once

#include <fstream>
#include <string>

namespace Vek::Bench {

/// A line of /proc/self/status in bytes; 0 where there is none.
inline double MemoryBytes(const std::string& p_name) {
  std::ifstream status("/proc/self/status");
  std::string name;
  double kibibytes = 0.0;
  while (status >> name) {
    if (name == p_name + ":" && status >> kibibytes)
      return 1024.0 * kibibytes;
  }
  return 0.0;
}

} // namespace Vek::Bench
