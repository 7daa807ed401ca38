#pragma once

#include "platform/debug/Logger.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

/// Runs one input; the entry point that libFuzzer calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size);

namespace Vek::Fuzz {

/// Swallows all reports: broken inputs are what this is about.
inline void Silence() {
  struct Nothing : vekdebug::sink {
    void write(const vekdebug::report&) override {}
  };
  static const std::shared_ptr<vekdebug::sink> Previous =
      vekdebug::logger::instance().set_sink(std::make_shared<Nothing>());
}

inline std::istringstream Input(const std::uint8_t* p_bytes, std::size_t p_size) {
  Silence();
  return std::istringstream(std::string(reinterpret_cast<const char*>(p_bytes), p_size));
}

/// Claims of a file are believed up to 2^26 elements, which is right, but slow to repeat millions of times.
constexpr double SlowClaim = 1e6;
constexpr double RefusedClaim = 67108864;

} // namespace Vek::Fuzz
