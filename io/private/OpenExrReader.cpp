#include "io/private/ImageFormats.h"

#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/Input.h"

#if VEK_WITH_OPENEXR
#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfCompression.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfIO.h>
#include <OpenEXR/ImfInputFile.h>
#endif

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Io::Private {

#if VEK_WITH_OPENEXR

namespace {

/// A file in memory.
class MemoryStream : public Imf::IStream {
public:
  MemoryStream(std::string_view p_bytes, const std::string& p_name)
      : Imf::IStream(p_name.c_str())
      , _bytes(p_bytes) {}

  bool read(char p_to[], int p_count) override {
    if (p_count < 0 || std::size_t(p_count) > _bytes.size() - _at)
      throw std::runtime_error("the file ends early");
    std::memcpy(p_to, _bytes.data() + _at, std::size_t(p_count));
    _at += std::size_t(p_count);
    return _at < _bytes.size();
  }
  std::uint64_t tellg() override { return _at; }
  void seekg(std::uint64_t p_at) override { _at = std::size_t(std::min<std::uint64_t>(p_at, _bytes.size())); }
  void clear() override {}

private:
  std::string_view _bytes;
  std::size_t _at = 0;
};

/// The bytes of the values of types that always have as many. The library reads that many, whatever the file claims.
struct TypeSize {
  std::string_view type;
  std::size_t bytes;
};
constexpr TypeSize TypeSizes[] = {
    {"box2f", 16},
    {"box2i", 16},
    {"chromaticities", 32},
    {"compression", 1},
    {"deepImageState", 1},
    {"double", 8},
    {"envmap", 1},
    {"float", 4},
    {"int", 4},
    {"keycode", 28},
    {"lineOrder", 1},
    {"m33d", 72},
    {"m33f", 36},
    {"m44d", 128},
    {"m44f", 64},
    {"rational", 8},
    {"tiledesc", 9},
    {"timecode", 8},
    {"v2d", 16},
    {"v2f", 8},
    {"v2i", 8},
    {"v3d", 24},
    {"v3f", 12},
    {"v3i", 12},
};

/// Whether a value has the size that its type or its content need.
bool HasItsSize(std::string_view p_type, std::string_view p_value) {
  if (p_type == "preview")
    return p_value.size() >= 8 && p_value.size() == 8 + 4 * std::uint64_t{LoadLittle<std::uint32_t>(p_value)} *
                                                            std::uint64_t{LoadLittle<std::uint32_t>(p_value.substr(4))};
  if (p_type == "chlist") { // names, each with 16 bytes behind its zero, and a zero
    std::size_t at = 0;
    while (at < p_value.size() && p_value[at] != '\0')
      at = std::min(p_value.find('\0', at), p_value.size()) + 17;
    return at + 1 == p_value.size();
  }
  const auto row = std::find_if(std::begin(TypeSizes), std::end(TypeSizes),
                                [&](const TypeSize& p_row) { return p_row.type == p_type; });
  return row == std::end(TypeSizes) || row->bytes == p_value.size();
}

/// Compares the sizes that the first header claims with that of the file, since the library believes them: it takes
/// memory for the positions of all blocks, and for a block.
void CheckClaims(std::string_view p_file, const std::string& p_name) {
  std::string_view rest = p_file.substr(std::min<std::size_t>(8, p_file.size()));
  const auto word = [&] {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    const std::string_view found = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return found;
  };
  std::uint64_t width = 1, height = 1, channels = 1, tileWidth = 0, tileHeight = 0;
  for (std::string_view name; !(name = word()).empty();) {
    const std::string_view type = word();
    const std::size_t size = rest.size() < 4 ? SIZE_MAX : LoadLittle<std::uint32_t>(rest);
    if (size > rest.size() - std::min<std::size_t>(4, rest.size()))
      throw FileError(p_name, "the file ends within its header");
    const std::string_view value = rest.substr(4, size);
    rest.remove_prefix(4 + size);
    if (!HasItsSize(type, value))
      throw FileError(p_name, "the value \"" + std::string(name.substr(0, 40)) + "\" of the header has " +
                                  std::to_string(size) + " bytes, which its type does not have");
    const auto extent = [&](std::size_t p_first) { // of a window, modulo 2^32
      return std::uint64_t{LoadLittle<std::uint32_t>(value.substr(p_first + 8)) -
                           LoadLittle<std::uint32_t>(value.substr(p_first))} +
             1;
    };
    if (name == "dataWindow" && size == 16) {
      width = extent(0);
      height = extent(4);
    } else if (name == "tiles" && size == 9) {
      tileWidth = LoadLittle<std::uint32_t>(value);
      tileHeight = LoadLittle<std::uint32_t>(value.substr(4));
    } else if (name == "channels") {
      channels = size / 18 + 1; // each has 18 bytes or more
    }
  }
  constexpr std::uint64_t MostRowsOfBlock = 256;
  constexpr std::uint64_t MostExpansion = 1032; // of deflate
  const bool tiled = tileWidth != 0 && tileHeight != 0;
  const std::uint64_t blocks =
      tiled ? ((width - 1) / tileWidth + 1) * ((height - 1) / tileHeight + 1) : (height - 1) / MostRowsOfBlock + 1;
  const std::uint64_t blockPixels = tiled ? std::max(width, tileWidth) * tileHeight : width;
  const std::uint64_t most = (std::uint64_t{4} << 20) + MostExpansion * p_file.size();
  if (blocks > p_file.size() / 8 || blockPixels > most / 4 / channels)
    throw FileError(p_name, "expected " + std::to_string(width) + " x " + std::to_string(height) +
                                " pixels, got a file of " + std::to_string(p_file.size()) + " bytes");
}

/// Red, green, blue and opacity first, then the others by name.
std::vector<std::string> ChannelsOf(const Imf::ChannelList& p_list, const std::string& p_name) {
  std::vector<std::string> names;
  for (const char* const color : {"R", "G", "B", "A"})
    if (p_list.findChannel(color) != nullptr)
      names.emplace_back(color);
  const std::size_t colors = names.size();
  for (auto channel = p_list.begin(); channel != p_list.end(); ++channel) {
    if (channel.channel().xSampling != 1 || channel.channel().ySampling != 1)
      throw FileError(p_name, std::string("expected channels of all pixels, got \"") + channel.name() +
                                  "\" of every second one");
    if (std::find(names.begin(), names.begin() + std::ptrdiff_t(colors), channel.name()) ==
        names.begin() + std::ptrdiff_t(colors))
      names.emplace_back(channel.name());
  }
  constexpr std::size_t Most = 1024;
  if (names.empty() || names.size() > Most)
    throw FileError(p_name, "expected 1 to 1024 channels, got " + std::to_string(names.size()));
  return names;
}

/// Reads row after row, since a damaged file may claim a size that it does not have.
void ReadRows(Imf::InputFile& p_file, const Imath::Box2i& p_window, const std::string& p_name,
              const ImageOptions& p_options, Image& p_image) {
  const std::size_t rowNumbers = p_image.width * p_image.channels;
  std::vector<float> row(rowNumbers);
  const std::size_t stride = p_image.channels * sizeof(float);
  for (int y = p_window.min.y; y <= p_window.max.y; ++y) {
    Imf::FrameBuffer buffer;
    for (std::size_t i = 0; i < p_image.channels; ++i)
      buffer.insert(p_image.channelNames[i],
                    Imf::Slice::Make(Imf::FLOAT, row.data() + i, Imath::V2i(p_window.min.x, y),
                                     std::int64_t(p_image.width), 1, stride, rowNumbers * sizeof(float)));
    p_file.setFrameBuffer(buffer);
    p_file.readPixels(y);
    p_image.pixels.insert(p_image.pixels.end(), row.begin(), row.end());
    const double share = double(y - p_window.min.y + 1) / double(p_image.height);
    if (p_options.progress && !p_options.progress(share))
      throw FileError(p_name, "cancelled");
  }
  for (std::size_t low = 0, high = p_image.height - 1; low < high; ++low, --high)
    std::swap_ranges(p_image.pixels.begin() + std::ptrdiff_t(low * rowNumbers),
                     p_image.pixels.begin() + std::ptrdiff_t((low + 1) * rowNumbers),
                     p_image.pixels.begin() + std::ptrdiff_t(high * rowNumbers));
}

} // namespace

Image ReadOpenExr(std::string_view p_file, const std::string& p_name, const ImageOptions& p_options) {
  try {
    CheckClaims(p_file, p_name);
    MemoryStream stream(p_file, p_name);
    Imf::InputFile file(stream, 0); // without threads
    const Imath::Box2i window = file.header().dataWindow();
    Image image;
    image.width = std::size_t(std::int64_t{window.max.x} - window.min.x + 1);
    image.height = std::size_t(std::int64_t{window.max.y} - window.min.y + 1);
    image.channelNames = ChannelsOf(file.header().channels(), p_name);
    image.channels = image.channelNames.size();
    ReadRows(file, window, p_name, p_options, image);
    return image;
  } catch (const FileError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw FileError(p_name, error.what());
  }
}

#else

Image ReadOpenExr(std::string_view, const std::string& p_name, const ImageOptions&) {
  FailWithout("OpenEXR", p_name);
}

#endif

} // namespace Vek::Chart::Io::Private
