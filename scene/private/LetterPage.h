#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QImage>
#include <QPoint>
#include <QSize>

#include <cstddef>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// A texture of one channel with the coverage of many images, packed in shelves: rows as high as the first image of
/// each. Images are a texel apart from each other.
///
/// The texel at texture coordinates (0, 0) is covered, so that what is drawn with these is filled.
class LetterPage {
public:
  /// A page for an image and further ones, within the device's largest texture; none if the image does not fit.
  static boost::shared_ptr<LetterPage> Make(const QSize& p_image, int p_largestTexture);

  /// The lower left texel of the alpha of an image, which takes its rows from below; none if there is no room.
  std::optional<QPoint> Add(const QImage& p_image);

  /// Binds the texture on the active unit, enabled there, to modulate the current colour. What was added is uploaded
  /// first. False after a report if GL makes no texture; the next call tries again.
  bool Bind(const Utility::Scoped<Rgl>& p_gl);

  /// Texels of a row.
  int Width() const { return _width; }
  /// Rows so far; they grow.
  int Height() const { return _height; }
  /// The most texels that there will be.
  std::size_t MostTexels() const { return static_cast<std::size_t>(_width) * static_cast<std::size_t>(_mostHeight); }

private:
  struct Shelf {
    int bottom = 0, height = 0, used = 0;
  };

  LetterPage(int p_width, int p_mostHeight);
  Shelf* ShelfFor(const QSize& p_size);
  bool Upload(const Utility::Scoped<Rgl>& p_gl);

  int _width, _mostHeight;
  int _height = 0;
  std::vector<Shelf> _shelves;
  std::vector<unsigned char> _texels; ///< from below
  bool _isUploaded = false;
  boost::shared_ptr<Ogl::Texture> _texture;
};

} // namespace Vek::Chart::Scene::Private
