#include "platform/assets/ImageCache.h"

#include "platform/debug/Check.h"

#include <QFile>
#include <QImageReader>

#include <cstdio>
#include <utility>

namespace Vek::Chart::Assets {

namespace {

/// Opens the file by the bytes of its path, which need not be valid in Qt's encoding of file names.
QImage ReadImage(const vekfile::filepath& p_path) {
  const QString name = QString::fromStdString(p_path.str());
  if (QFile::encodeName(name).toStdString() == p_path.str())
    return QImage(name);
  std::FILE* const opened = std::fopen(p_path.str().c_str(), "rb");
  QFile file(name); // the name serves for its extension only
  if (opened == nullptr || !file.open(opened, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
    return QImage();
  return QImageReader(&file).read();
}

} // namespace

ImageCache::ImageCache() = default;
ImageCache::~ImageCache() = default;

const QImage& ImageCache::Image(const vekfile::filepath& p_file) {
  const auto found = _images.find(p_file.str());
  if (found != _images.end())
    return found->second;
  QImage image = p_file.valid() ? ReadImage(p_file) : QImage();
  const QImage& kept = _images.emplace(p_file.str(), std::move(image)).first->second;
  if (kept.isNull())
    vekdebug::warn("Assets::ImageCache::Image: cannot read \"" + p_file.str() + "\"");
  return kept;
}

void ImageCache::Clear() {
  _images.clear();
}

} // namespace Vek::Chart::Assets
