#pragma once

#include "platform/Export.h"
#include "platform/file/FilePath.h"

#include <QImage>

#include <map>
#include <string>

namespace Vek::Chart::Assets {

/// Reads image files and keeps the images. For one thread at a time.
class VEK_PLATFORM_API ImageCache {
public:
  ImageCache();
  ~ImageCache();
  ImageCache(const ImageCache&) = delete;
  ImageCache& operator=(const ImageCache&) = delete;

  /// The image in a file, read at the first call with its path. The reference stays valid until `Clear` or the end of
  /// the cache. Paths need not be UTF-8.
  ///
  /// A missing or unreadable file gives a null image, which is kept too: one warning per file, not one per frame. Its
  /// text is "WARNING: Assets::ImageCache::Image: cannot read " followed by the path in double quotes.
  const QImage& Image(const vekfile::filepath& p_file);

  /// Removes all images; each is read again at the next call with its path.
  void Clear();

private:
  std::map<std::string, QImage> _images;
};

} // namespace Vek::Chart::Assets
