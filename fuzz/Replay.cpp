// Runs the inputs of folders and files once, without a fuzzer.

#include "fuzz/FuzzTarget.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;

int main(int p_count, char** p_arguments) {
  std::vector<fs::path> files;
  for (int i = 1; i < p_count; ++i) {
    if (!fs::is_directory(p_arguments[i])) {
      files.emplace_back(p_arguments[i]);
      continue;
    }
    for (const auto& entry : fs::directory_iterator(p_arguments[i]))
      files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& path : files) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    std::cout << path.filename().string() << std::endl; // flushed: the last name printed is the one that crashes
    if (!file)
      return 1;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::cout << files.size() << " inputs" << std::endl;
  return files.empty() ? 1 : 0; // nothing ran, nothing was tested
}
