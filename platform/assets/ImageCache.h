#pragma once

#include "platform/Export.h"
#include "platform/file/FilePath.h"

#include <QImage>

#include <map>
#include <string>

namespace Vek::Chart::Assets {

/// Reads image files and keeps what was read. Used by one thread at a time.
class VEK_PLATFORM_API ImageCache {
public:
  ImageCache();
  ~ImageCache();
  ImageCache(const ImageCache&) = delete;
  ImageCache& operator=(const ImageCache&) = delete;

  /// The image in that file, read when it is first asked for. The reference stays valid until `Clear` or the end of the
  /// cache.
  ///
  /// A file that is missing or holds no image that can be read is a null image, which is kept like any other, so that a
  /// bad file costs one warning and not one for each frame:
  /// "WARNING: Assets::ImageCache::Image: cannot read " followed by the path in double quotes.
  const QImage& Image(const vekfile::filepath& p_file);

  /// Forgets all images: each is read anew when it is next asked for.
  void Clear();

private:
  std::map<std::string, QImage> _images;
};

} // namespace Vek::Chart::Assets
