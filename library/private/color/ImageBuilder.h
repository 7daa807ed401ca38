#pragma once

#include "platform/ogl/Vec.h"

#include <QImage>
#include <QRgb>

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// The texels of an atlas while it is laid out: an image that grows up to MaxWidth × MaxHeight texels, kept row by row.
/// Callers check that a pixel lies inside before they write it.
class ImageBuilder {
public:
  /// A column and a row, from the upper left.
  using Pixel = Ogl::Vec2<unsigned int>;

  /// Sizes below 1 count as 1.
  ImageBuilder(int p_maxWidth, int p_maxHeight);

  unsigned int MaxWidth() const { return _maxWidth; }
  unsigned int MaxHeight() const { return _maxHeight; }

  /// Takes memory for that many texels in advance, as far as the largest image has them.
  void Reserve(std::size_t p_texels);
  /// Writes a texel. One that was written before is reported and keeps its colour.
  void WriteUniquePixel(Pixel p_pixel, QRgb p_color);
  /// Writes a texel, whether it was written before or not.
  void OverwritePixel(Pixel p_pixel, QRgb p_color);
  /// The colour of a texel; transparent, and reported, where none was written.
  QRgb ColorOf(Pixel p_pixel) const;

  /// The image: as large as the texels used, rounded up to powers of two and capped at the largest size. Throws
  /// std::bad_alloc where there is no memory for it. Frees the texels: the builder is used up.
  QImage TakeImage(QRgb p_background);

private:
  std::size_t IndexOf(Pixel p_pixel) const;
  void Grow(Pixel p_pixel);

  unsigned int _maxWidth;
  unsigned int _maxHeight;
  unsigned int _extentX = 0; ///< the largest coordinates written
  unsigned int _extentY = 0;
  std::vector<QRgb> _texels;
  std::vector<bool> _written;
};

} // namespace Vek::Chart::Library::Private
