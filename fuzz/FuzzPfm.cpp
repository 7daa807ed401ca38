#include "fuzz/FuzzImage.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  return Vek::Fuzz::ReadImage(p_bytes, p_size, "fuzz.pfm");
}
