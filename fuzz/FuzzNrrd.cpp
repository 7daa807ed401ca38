#include "fuzz/FuzzVolume.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  return Vek::Fuzz::ReadVolume(p_bytes, p_size, "fuzz.nrrd");
}
