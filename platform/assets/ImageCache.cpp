#include "platform/assets/ImageCache.h"

#include "platform/debug/Check.h"

#include <utility>

namespace Vek::Chart::Assets {

ImageCache::ImageCache() = default;
ImageCache::~ImageCache() = default;

const QImage& ImageCache::Image(const vekfile::filepath& p_file) {
  const auto found = _images.find(p_file.str());
  if (found != _images.end())
    return found->second;
  QImage image;
  if (p_file.valid())
    image.load(QString::fromStdString(p_file.str()));
  const QImage& kept = _images.emplace(p_file.str(), std::move(image)).first->second;
  if (kept.isNull())
    vekdebug::warn("Assets::ImageCache::Image: cannot read \"" + p_file.str() + "\"");
  return kept;
}

void ImageCache::Clear() {
  _images.clear();
}

} // namespace Vek::Chart::Assets
