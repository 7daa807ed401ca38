#include "fuzz/FuzzTarget.h"
#include "library/VolumeImage.h"

#include <cstdlib>

using namespace Vek::Chart::Library;

namespace {

/// Whether the sizes are accepted but slow.
bool IsSlow(const std::string& p_text) {
  std::istringstream text(p_text);
  std::string word;
  double count = 1;
  text >> word;
  for (int i = 0; i < 4; ++i) {
    std::int64_t size = 0;
    text >> size;
    count *= static_cast<double>(size);
  }
  return count > Vek::Fuzz::SlowClaim && count <= Vek::Fuzz::RefusedClaim;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
  if (IsSlow(input.str()))
    return 0;
  const auto volume = VolumeImage::LoadFromStream(input, VolumeImage::TextArray);
  if (volume == nullptr)
    return 0;
  const std::size_t count = static_cast<std::size_t>(volume->Height()) * static_cast<std::size_t>(volume->Width()) *
                            static_cast<std::size_t>(volume->Depth());
  if (count == 0 || volume->Bytes().size() != count || volume->Channels() != 1)
    std::abort();
  return 0;
}
