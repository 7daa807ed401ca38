#include "library/private/color/ImageBuilder.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <new>

namespace Vek::Chart::Library::Private {

namespace {

namespace Signature {
constexpr const char* WriteUniquePixel =
    "void __cdecl Vek::Chart::Library::Private::ImageBuilder::WriteUniquePixel(const class "
    "Vek::Chart::Ogl::Vec2<unsigned int> &,const class QColor &)";
constexpr const char* Pixel = "const class QColor &__cdecl Vek::Chart::Library::Private::ImageBuilder::Pixel(const "
                              "class Vek::Chart::Ogl::Vec2<unsigned int> &) const";
} // namespace Signature

/// `p_used`, rounded up to a power of two and capped at `p_max`.
int PaddedSize(unsigned int p_used, unsigned int p_max) {
  unsigned int size = 1;
  while (size < p_used && size < p_max)
    size *= 2;
  return static_cast<int>(std::min(size, p_max));
}

} // namespace

ImageBuilder::ImageBuilder(int p_maxWidth, int p_maxHeight)
    : _maxWidth(static_cast<unsigned int>(std::max(p_maxWidth, 1)))
    , _maxHeight(static_cast<unsigned int>(std::max(p_maxHeight, 1))) {}

std::size_t ImageBuilder::IndexOf(Pixel p_pixel) const {
  return static_cast<std::size_t>(p_pixel.y) * _maxWidth + p_pixel.x;
}

void ImageBuilder::Reserve(std::size_t p_texels) {
  const std::size_t most = std::size_t{_maxWidth} * _maxHeight;
  _texels.reserve(std::min(p_texels, most));
  _written.reserve(std::min(p_texels, most));
}

void ImageBuilder::Grow(Pixel p_pixel) {
  const std::size_t index = IndexOf(p_pixel);
  if (index >= _texels.size()) {
    _texels.resize(index + 1);
    _written.resize(index + 1);
  }
  _extentY = std::max(_extentY, p_pixel.y);
  _extentX = _extentY != 0 ? _maxWidth - 1 : std::max(_extentX, p_pixel.x);
}

void ImageBuilder::WriteUniquePixel(Pixel p_pixel, QRgb p_color) {
  Grow(p_pixel);
  const bool pixelEntryAlreadyExists = _written[IndexOf(p_pixel)];
  if (VEK_ENSURE_TEXT(!pixelEntryAlreadyExists,
                      "!pixelEntryAlreadyExists && \"Error: coordinate has already been written to!\"",
                      Signature::WriteUniquePixel))
    OverwritePixel(p_pixel, p_color);
}

void ImageBuilder::OverwritePixel(Pixel p_pixel, QRgb p_color) {
  Grow(p_pixel);
  const std::size_t index = IndexOf(p_pixel);
  _texels[index] = p_color;
  _written[index] = true;
}

QRgb ImageBuilder::ColorOf(Pixel p_pixel) const {
  const std::size_t index = IndexOf(p_pixel);
  const bool pixelEntryExistsInMap = index < _written.size() && _written[index];
  if (!VEK_ENSURE_TEXT(pixelEntryExistsInMap,
                       "pixelEntryExistsInMap && \"Error: cannot find colour for specified coordinate!\"",
                       Signature::Pixel))
    return qRgba(0, 0, 0, 0);
  return _texels[index];
}

QImage ImageBuilder::TakeImage(QRgb p_background) {
  QImage image(PaddedSize(_extentX + 1, _maxWidth), PaddedSize(_extentY + 1, _maxHeight), QImage::Format_ARGB32);
  if (image.isNull())
    throw std::bad_alloc();
  image.fill(p_background);
  for (int y = 0; y < image.height(); ++y) {
    QRgb* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
    const std::size_t start = IndexOf({0, static_cast<unsigned int>(y)});
    const std::size_t end = std::min(start + static_cast<std::size_t>(image.width()), _texels.size());
    for (std::size_t index = start; index < end; ++index)
      if (_written[index])
        row[index - start] = _texels[index];
  }
  _texels = {};
  _written = {};
  return image;
}

} // namespace Vek::Chart::Library::Private
