#pragma once

#include "scene/private/LetterPage.h"

#include "platform/ogl/Rgl.h"
#include "platform/ogl/TextImage.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QPoint>
#include <QSize>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The strings of one context as images on pages (see LetterPage). The page that was not drawn for the longest time is
/// dropped when there would be too many texels; it lives on in what has yet to be drawn with it.
class LetterCache {
public:
  /// The image of a string.
  struct Entry {
    boost::shared_ptr<LetterPage> page;
    QPoint corner; ///< the lower left texel
    QSize size;    ///< in texels
  };

  /// Texels of all pages together.
  explicit LetterCache(std::size_t p_mostTexels)
      : _mostTexels(p_mostTexels) {}

  /// The string in that format, whose colours are not used; null if there is none, which is reported with the
  /// signature. Valid until the next call.
  const Entry* Get(const Utility::Scoped<Rgl>& p_gl, const QString& p_text, const Ogl::TextFormat& p_format,
                   const char* p_signature);

private:
  using Key = std::tuple<QString, int, int, bool, QString>; ///< string, size, outline, weight, family
  struct Page {
    boost::shared_ptr<LetterPage> page;
    std::uint64_t lastUse = 0;
  };

  const Entry* Insert(const Utility::Scoped<Rgl>& p_gl, const Key& p_key, const Ogl::TextFormat& p_format,
                      const char* p_signature);
  void MakeRoom(std::size_t p_texels);

  std::size_t _mostTexels;
  std::map<Key, Entry> _entries;
  std::vector<Page> _pages;
  std::uint64_t _uses = 0;
};

} // namespace Vek::Chart::Scene::Private
