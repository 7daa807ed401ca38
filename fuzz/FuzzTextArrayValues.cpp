#include "fuzz/FuzzTarget.h"
#include "library/ReadTextArray.h"

#include <cstdlib>

using namespace Vek::Chart::Library;

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  if (p_size == 0)
    return 0;
  TextArrayOptions options; // chosen by the first byte
  options.precision = static_cast<TextArrayOptions::Precision>(p_bytes[0] % 3);
  if (p_bytes[0] & 16)
    options.range = {{-1, 5}};
  if (p_bytes[0] & 32)
    options.channels = {0, 0};
  std::istringstream input = Vek::Fuzz::Input(p_bytes + 1, p_size - 1);
  try {
    const TextArray array = ReadTextArray(input, "fuzz.txt", options);
    const std::size_t count = std::visit([](const auto& p_values) { return p_values.size(); }, array.values);
    if (count == 0 || count != array.size[0] * array.size[1] * array.size[2] * array.channels)
      std::abort();
  } catch (const TextArrayError&) { // documented
  }
  return 0;
}
