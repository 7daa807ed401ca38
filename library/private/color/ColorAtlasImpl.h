#pragma once

#include "library/ColorAtlas.h"

#include <QImage>
#include <QRgb>

#include <cstdint>
#include <vector>

namespace Vek::Chart::Library::Private {

/// The texels of an atlas while it is laid out: a growing picture of at most MaxWidth × MaxHeight texels, kept row by
/// row. Texels outside it are reported by the callers, never written.
class ImageBuilder {
public:
  using Pixel = ColorCoords::Pixel;

  /// Sizes below 1 count as 1.
  ImageBuilder(int p_maxWidth, int p_maxHeight);

  int MaxWidth() const { return _maxWidth; }
  int MaxHeight() const { return _maxHeight; }
  unsigned int Width() const { return static_cast<unsigned int>(_maxWidth); }
  bool Contains(Pixel p_pixel) const;

  /// Writes a texel that must not have been written before; one that was keeps its colour and is reported.
  void WriteUniquePixel(Pixel p_pixel, QRgb p_color);
  void OverwritePixel(Pixel p_pixel, QRgb p_color);
  /// The colour of a texel; transparent, and reported, where none was written.
  QRgb ColorOf(Pixel p_pixel) const;

  /// The picture: as large as the texels used, rounded up to powers of two and capped at the largest size.
  QImage CreateImage(QRgb p_background) const;

private:
  std::size_t IndexOf(Pixel p_pixel) const;
  void Grow(Pixel p_pixel);

  int _maxWidth;
  int _maxHeight;
  unsigned int _extentX = 0; ///< the largest coordinates written
  unsigned int _extentY = 0;
  std::vector<QRgb> _texels;
  std::vector<bool> _written;
};

/// Lays out the colours of an atlas: numbers them so that every sub-tree is one run of indices, maps the indices to
/// texels, and copies the runs of instanced colours. One object serves one build.
class ColorAtlasImpl {
public:
  explicit ColorAtlasImpl(ColorAtlas& p_atlas)
      : _atlas(p_atlas) {}

  /// Numbers the sub-trees of the plain top-level colours, then those of the instanced ones.
  void NumberColors();
  /// Writes every colour's texel and every instance's copy, and records where they are.
  void MapColors(ImageBuilder& p_image);

private:
  template <class Visitor>
  void Walk(const std::vector<unsigned int>& p_roots, Visitor& p_visitor) const;

  class SpanBuilder;
  class CoordinateMapper;
  class InstanceCoordinateMapper;

  ColorAtlas& _atlas;
};

} // namespace Vek::Chart::Library::Private
