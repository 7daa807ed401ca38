#include "library/private/color/ColorAtlasImpl.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <limits>

namespace Vek::Chart::Library::Private {

namespace {

/// `p_used`, rounded up to a power of two when that is below `p_max`.
int PaddedSize(unsigned int p_used, int p_max) {
  const unsigned int max = static_cast<unsigned int>(p_max);
  unsigned int size = p_used;
  if (p_used < max)
    for (size = 1; size < p_used && size < max; size *= 2) {
    }
  return static_cast<int>(std::min(size, max));
}

} // namespace

ImageBuilder::ImageBuilder(int p_maxWidth, int p_maxHeight)
    : _maxWidth(std::max(p_maxWidth, 1))
    , _maxHeight(std::max(p_maxHeight, 1)) {}

bool ImageBuilder::Contains(Pixel p_pixel) const {
  return p_pixel.x < static_cast<unsigned int>(_maxWidth) && p_pixel.y < static_cast<unsigned int>(_maxHeight);
}

std::size_t ImageBuilder::IndexOf(Pixel p_pixel) const {
  return static_cast<std::size_t>(p_pixel.y) * Width() + p_pixel.x;
}

void ImageBuilder::Grow(Pixel p_pixel) {
  const std::size_t index = IndexOf(p_pixel);
  if (index >= _texels.size()) {
    _texels.resize(index + 1);
    _written.resize(index + 1);
  }
  _extentY = std::max(_extentY, p_pixel.y);
  _extentX = _extentY != 0 ? Width() - 1 : std::max(_extentX, p_pixel.x);
}

void ImageBuilder::WriteUniquePixel(Pixel p_pixel, QRgb p_color) {
  Grow(p_pixel);
  const std::size_t index = IndexOf(p_pixel);
  const bool pixelEntryAlreadyExists = _written[index];
  if (!VEK_ENSURE_TEXT(!pixelEntryAlreadyExists,
                       "!pixelEntryAlreadyExists && \"Error: coordinate has already been written to!\"",
                       "void __cdecl Vek::Chart::Library::Private::ImageBuilder::WriteUniquePixel(const class "
                       "Vek::Chart::Ogl::Vec2<unsigned int> &,const class QColor &)"))
    return;
  _texels[index] = p_color;
  _written[index] = true;
}

void ImageBuilder::OverwritePixel(Pixel p_pixel, QRgb p_color) {
  Grow(p_pixel);
  const std::size_t index = IndexOf(p_pixel);
  _texels[index] = p_color;
  _written[index] = true;
}

QRgb ImageBuilder::ColorOf(Pixel p_pixel) const {
  const std::size_t index = IndexOf(p_pixel);
  const bool pixelEntryExistsInMap = Contains(p_pixel) && index < _written.size() && _written[index];
  if (!VEK_ENSURE_TEXT(pixelEntryExistsInMap,
                       "pixelEntryExistsInMap && \"Error: cannot find colour for specified coordinate!\"",
                       "const class QColor &__cdecl Vek::Chart::Library::Private::ImageBuilder::Pixel(const class "
                       "Vek::Chart::Ogl::Vec2<unsigned int> &) const"))
    return qRgba(0, 0, 0, 0);
  return _texels[index];
}

QImage ImageBuilder::CreateImage(QRgb p_background) const {
  struct {
    int width;
    int height;
  } const size = {PaddedSize(_extentX + 1, _maxWidth), PaddedSize(_extentY + 1, _maxHeight)};
  const char* const signature =
      "class QImage __cdecl Vek::Chart::Library::Private::ImageBuilder::CreateImage(const class QColor &) const";
  VEK_ENSURE(size.width <= MaxWidth(), signature);
  VEK_ENSURE(size.height <= MaxHeight(), signature);

  QImage image(size.width, size.height, QImage::Format_ARGB32);
  if (image.isNull())
    return image;
  image.fill(p_background);
  for (int y = 0; y < size.height; ++y) {
    QRgb* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
    const std::size_t start = static_cast<std::size_t>(y) * Width();
    const std::size_t end = std::min(start + static_cast<std::size_t>(size.width), _texels.size());
    for (std::size_t index = start; index < end; ++index)
      if (_written[index])
        row[index - start] = _texels[index];
  }
  return image;
}

} // namespace Vek::Chart::Library::Private
