#pragma once

#include "tests/support/ErrorOf.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <random>
#include <string>

namespace Vek::Test {

/// The peak of resident memory since the last call, in bytes over the memory at that time; 0 where the system has none.
class PeakMemory {
public:
  PeakMemory() {
    std::ofstream("/proc/self/clear_refs") << 5;
    _before = Bytes("VmRSS:");
  }
  double Grown() const { return Bytes("VmHWM:") - _before; }

private:
  static double Bytes(const std::string& p_name) {
    std::ifstream status("/proc/self/status");
    double kibibytes = 0;
    for (std::string name; status >> name;)
      if (name == p_name && status >> kibibytes)
        return 1024 * kibibytes;
    return 0;
  }
  double _before;
};

/// Calls a reader with every truncation and 200 mutations of a file. Each must succeed or throw Error, in at most 2
/// seconds and within 16 MB and 64 times the file.
template <class Error, class Read>
void CheckDamage(const std::string& p_file, const Read& p_read) {
  const auto check = [&](const std::string& p_bytes, const std::string& p_name) {
    const PeakMemory memory;
    const auto start = std::chrono::steady_clock::now();
    ErrorOf<Error>([&] { p_read(p_bytes); });
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << p_name;
#ifndef VEK_SANITIZED // which keeps freed memory
    EXPECT_LT(memory.Grown(), 16e6 + 64.0 * double(p_bytes.size())) << p_name;
#endif
  };
  for (std::size_t size = 0; size < p_file.size(); ++size)
    check(p_file.substr(0, size), "truncated to " + std::to_string(size));
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    std::string bytes = p_file;
    for (std::uint32_t changes = 1 + random() % 4; changes != 0; --changes) {
      const std::size_t at = random() % bytes.size();
      if (random() % 4 == 0)
        bytes.insert(at, bytes.substr(random() % bytes.size(), random() % 20));
      else
        bytes[at] = static_cast<char>(random() % 2 == 0 ? random() : "0123456789-+./\n# "[random() % 17]);
    }
    check(bytes, "mutation " + std::to_string(seed));
  }
}

} // namespace Vek::Test
