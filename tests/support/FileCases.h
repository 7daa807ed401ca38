#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Vek::Test {

/// A file in memory, the summary or the error that reading it gives, and its name if that matters.
struct FileCase {
  std::string file;
  std::string expected;
  std::string name = {};
};

/// Compares what p_summary(file, name) returns; files without a name have p_name.
template <class Summary>
void CheckFiles(const std::vector<FileCase>& p_cases, const std::string& p_name, const Summary& p_summary) {
  for (const auto& [file, expected, name] : p_cases)
    EXPECT_EQ(p_summary(file, name.empty() ? p_name : name), expected) << file.substr(0, 200);
}

} // namespace Vek::Test
