#include "apps/gallery/VolumeFile.h"

#include "apps/gallery/ReportCounter.h"
#include "apps/gallery/TextTable.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

using Library::VolumeImage;

/// Hands out the words of a text one after the other.
template <class Receiver>
void ForEachWord(std::istream& p_stream, Receiver p_receive) {
  constexpr std::string_view Blanks = " \t\r\n\v\f";
  std::vector<char> window(1 << 16);
  std::string rest; // from the last word on, which the window may have cut
  while (p_stream.read(window.data(), static_cast<std::streamsize>(window.size())) || p_stream.gcount() > 0) {
    rest.append(window.data(), static_cast<std::size_t>(p_stream.gcount()));
    std::string_view text = rest;
    for (;;) {
      text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
      const std::size_t end = text.find_first_of(Blanks);
      if (end == std::string_view::npos)
        break;
      p_receive(text.substr(0, end));
      text.remove_prefix(end);
    }
    rest = std::string(text);
  }
  if (!rest.empty())
    p_receive(rest);
}

/// The largest number of a text volume, which the bytes of the VolumeImage are relative to.
double LargestNumber(std::istream& p_stream) {
  constexpr int HeaderWords = 5; // "TextArray" and the sizes
  int words = 0;
  double largest = 0;
  ForEachWord(p_stream, [&](std::string_view p_word) {
    double value = 0;
    if (words < HeaderWords)
      ++words;
    else if (ParseNumber(p_word, value))
      largest = std::max(largest, value);
  });
  return largest;
}

} // namespace

Scene::ValueScale VolumeFile::Scale() const {
  Scene::ValueScale scale;
  scale.lower = low / 255.0;
  scale.upper = high / 255.0;
  return scale;
}

VolumeFile VolumeFile::Read(const std::string& p_path, Loading& p_loading) {
  const double begin = p_loading.Progress();
  VolumeFile file;
  {
    const std::unique_ptr<std::istream> stream = p_loading.Stage(begin + 0.6 * (1 - begin)).Open(p_path);
    const ReportCounter reports;
    file.image = VolumeImage::LoadFromStream(*stream, VolumeImage::TextArray);
    p_loading.CheckCancelled(); // which the reader takes for the end of the file
    if (!file.image || reports.Others() != 0)
      throw InputError(p_path + ": expected a volume \"TextArray nx 1 ny nz\" and its nx * ny * nz numbers");
  }
  file.largest = LargestNumber(*p_loading.Stage(1).Open(p_path));

  std::array<double, 256> counts{};
  for (const unsigned char byte : file.image->Bytes())
    ++counts[byte];
  double total = 0;
  for (std::size_t i = 1; i < counts.size(); ++i)
    total += counts[i];
  const auto below = [&](double p_share) {
    double sum = 0;
    for (std::size_t i = 1; i < counts.size(); ++i)
      if ((sum += counts[i]) >= p_share * total)
        return static_cast<int>(i);
    return 255;
  };
  file.low = below(0.02);
  file.high = std::max(below(0.98), file.low + 1);
  return file;
}

} // namespace Vek::Chart::Gallery
