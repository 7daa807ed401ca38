#include "fuzz/FuzzTarget.h"
#include "library/HdrImage.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

using namespace Vek::Chart::Library;

namespace {

/// Whether a line may be a resolution that is accepted but slow.
bool IsSlow(const std::string& p_text) {
  std::istringstream text(p_text);
  for (std::string line; std::getline(text, line);) {
    std::istringstream words(line);
    std::string axis;
    std::int64_t height = 0; // parsed like the reader does: "655e" is 655
    std::int64_t width = 0;
    words >> axis >> height >> axis >> width;
    const double pixels = static_cast<double>(height) * static_cast<double>(width);
    const double leastBytes = std::max(4 * static_cast<double>(height), pixels / 64);
    const bool refused = pixels > Vek::Fuzz::RefusedClaim && leastBytes > static_cast<double>(p_text.size());
    if (pixels > Vek::Fuzz::SlowClaim && !refused)
      return true;
  }
  return false;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
  if (IsSlow(input.str()))
    return 0;
  try {
    const HdrImage image(input);
    const std::size_t count = static_cast<std::size_t>(image.Width()) * static_cast<std::size_t>(image.Height());
    if (image.Pixels().size() != count)
      std::abort();
    for (const HdrImage::Rgb32F& pixel : image.Pixels())
      if (!(pixel.red >= 0 && pixel.green >= 0 && pixel.blue >= 0))
        std::abort();
    std::ostringstream map;
    image.SaveAsPFM(map);
  } catch (const std::out_of_range&) { // documented
  } catch (const std::length_error&) {
  }
  return 0;
}
