#pragma once

#include <gtest/gtest.h>

#include <stdio.h>
#include <string>

namespace Vek::Test {

/// What a program prints, and its errors. A program that fails, for example because it is not installed, fails the
/// test.
inline std::string Output(const std::string& p_command) {
  std::string output;
  FILE* const pipe = ::popen((p_command + " 2>&1").c_str(), "r");
  char block[4096];
  for (std::size_t count; (count = fread(block, 1, sizeof block, pipe)) != 0;)
    output.append(block, count);
  EXPECT_EQ(::pclose(pipe), 0) << p_command << '\n' << output;
  return output;
}

} // namespace Vek::Test
