#include "scene/private/LetterPage.h"

#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <cstring>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr const char* Signature = "Vek::Chart::Scene::Private::LetterPage::Bind";
constexpr int UsualWidth = 2048, LeastHeight = 64, UsualHeight = 512;
constexpr int Covered = 2; ///< texels of the covered corner, in both directions
constexpr int Gap = 1;

/// The smallest power of two from a least one on, as old devices need it.
int PowerOfTwo(int p_least, int p_extent) {
  int power = p_least;
  while (power < p_extent)
    power *= 2;
  return power;
}

} // namespace

boost::shared_ptr<LetterPage> LetterPage::Make(const QSize& p_image, int p_largestTexture) {
  constexpr int Largest = 1 << 14; // what GL has to take from version 4.1 on
  const int largest = p_largestTexture < 1 ? Largest : std::min(p_largestTexture, Largest);
  const int width = p_image.width() + Gap, height = p_image.height() + Covered + 2 * Gap;
  if (width > largest || height > largest)
    return {};
  return boost::shared_ptr<LetterPage>(new LetterPage(std::min(PowerOfTwo(UsualWidth, width), largest),
                                                      std::min(PowerOfTwo(UsualHeight, height), largest)));
}

LetterPage::LetterPage(int p_width, int p_mostHeight)
    : _width(p_width)
    , _mostHeight(p_mostHeight) {}

/// One that the image leaves less than a quarter of empty, or a new one.
LetterPage::Shelf* LetterPage::ShelfFor(const QSize& p_size) {
  const auto found = std::find_if(_shelves.begin(), _shelves.end(), [&](const Shelf& p_shelf) {
    return p_size.height() <= p_shelf.height && 4 * p_size.height() >= 3 * p_shelf.height &&
           p_size.width() <= _width - p_shelf.used;
  });
  if (found != _shelves.end())
    return &*found;
  const int bottom = _shelves.empty() ? Covered + Gap : _shelves.back().bottom + _shelves.back().height + Gap;
  if (p_size.width() > _width || p_size.height() > _mostHeight - bottom)
    return nullptr;
  _shelves.push_back({bottom, p_size.height(), 0});
  return &_shelves.back();
}

std::optional<QPoint> LetterPage::Add(const QImage& p_image) {
  const QImage image = p_image.convertToFormat(QImage::Format_ARGB32);
  Shelf* const shelf = image.isNull() ? nullptr : ShelfFor(image.size());
  if (shelf == nullptr)
    return {};
  const auto width = static_cast<std::size_t>(_width);
  if (shelf->bottom + shelf->height > _height) {
    const int height = std::min(PowerOfTwo(LeastHeight, shelf->bottom + shelf->height), _mostHeight);
    _texels.resize(width * static_cast<std::size_t>(height));
    _height = height; // last, since there may be no memory
    for (std::size_t row = 0; row < Covered; ++row)
      std::fill_n(_texels.begin() + static_cast<std::ptrdiff_t>(row * width), Covered, 0xFF);
  }
  const QPoint place(shelf->used, shelf->bottom);
  for (int y = 0; y < image.height(); ++y) {
    const auto* const from = reinterpret_cast<const QRgb*>(image.constScanLine(image.height() - 1 - y));
    unsigned char* const to =
        &_texels[static_cast<std::size_t>(place.y() + y) * width + static_cast<std::size_t>(place.x())];
    std::transform(from, from + image.width(), to,
                   [](QRgb p_texel) { return static_cast<unsigned char>(qAlpha(p_texel)); });
  }
  shelf->used += image.width() + Gap;
  _isUploaded = false;
  return place;
}

bool LetterPage::Bind(const Utility::Scoped<Rgl>& p_gl) {
  if (_isUploaded)
    p_gl->Bind(_texture, Rgl::Sampler2D);
  else if (!Upload(p_gl))
    return false;
  p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, static_cast<int>(RGL_MODULATE));
  p_gl->Enable(RGL_TEXTURE_2D);
  return true;
}

bool LetterPage::Upload(const Utility::Scoped<Rgl>& p_gl) {
  p_gl->CheckError(std::string("before ") + Signature);
  const bool isNew = !_texture;
  const boost::shared_ptr<Ogl::Texture> texture = isNew ? p_gl->GenTexture() : _texture;
  if (!texture) { // the texels would go into the host's texture
    p_gl->CheckError(Signature);
    return false;
  }
  p_gl->Bind(texture, Rgl::Sampler2D);
  {
    const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
    p_gl->TexImage2D(RGL_TEXTURE_2D, 0, RGL_ALPHA8, _width, _height, 0, RGL_ALPHA, RGL_UNSIGNED_BYTE, _texels.data());
  }
  if (!p_gl->CheckError(Signature)) {
    _texture.reset();
    return false;
  }
  if (isNew) {
    for (const Ogl::GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
      p_gl->TexParameteri(RGL_TEXTURE_2D, filter, static_cast<int>(RGL_LINEAR));
    for (const Ogl::GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T})
      p_gl->TexParameteri(RGL_TEXTURE_2D, wrap, static_cast<int>(RGL_CLAMP_TO_EDGE));
  }
  _texture = texture;
  _isUploaded = true;
  return true;
}

} // namespace Vek::Chart::Scene::Private
