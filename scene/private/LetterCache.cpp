#include "scene/private/LetterCache.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

const LetterCache::Entry* LetterCache::Get(const Utility::Scoped<Rgl>& p_gl, const QString& p_text,
                                           const Ogl::TextFormat& p_format, const char* p_signature) {
  const Key key{p_text, p_format.size, p_format.outlineWidth, p_format.bold, p_format.family};
  const auto found = _entries.find(key);
  const Entry* const entry = found != _entries.end() ? &found->second : Insert(p_gl, key, p_format, p_signature);
  if (entry != nullptr)
    for (Page& page : _pages)
      if (page.page == entry->page)
        page.lastUse = ++_uses;
  return entry;
}

const LetterCache::Entry* LetterCache::Insert(const Utility::Scoped<Rgl>& p_gl, const Key& p_key,
                                              const Ogl::TextFormat& p_format, const char* p_signature) {
  const QString& text = std::get<0>(p_key);
  const QSize size = Ogl::TextImageSize(text, p_format);
  const std::string pixels = std::to_string(size.width()) + " x " + std::to_string(size.height());
  const int limit = p_gl->GetMaxTextureSize();
  const boost::shared_ptr<LetterPage> newPage = LetterPage::Make(size, limit);
  if (!VEK_ENSURE_TEXT(newPage != nullptr,
                       "largest <= GL_MAX_TEXTURE_SIZE && \"" + pixels + " texels, the limit is " +
                           std::to_string(limit) + "\"",
                       p_signature))
    return nullptr;
  const QImage image = Ogl::TextImage(text, p_format);
  if (!VEK_ENSURE_TEXT(!image.isNull(), "!image.isNull() && \"" + pixels + " pixels\"", p_signature))
    return nullptr;
  const auto insert = [&](const boost::shared_ptr<LetterPage>& p_page, const QPoint& p_corner) {
    return &_entries.insert_or_assign(p_key, Entry{p_page, p_corner, size}).first->second;
  };
  for (const Page& page : _pages)
    if (const auto corner = page.page->Add(image))
      return insert(page.page, *corner);
  const auto corner = newPage->Add(image);
  if (!VEK_ENSURE_TEXT(corner.has_value(), "corner.has_value()", p_signature)) // no memory for a second image
    return nullptr;
  MakeRoom(newPage->MostTexels());
  _pages.push_back({newPage, 0});
  return insert(newPage, *corner);
}

void LetterCache::MakeRoom(std::size_t p_texels) {
  const auto texels = [&] {
    std::size_t sum = p_texels;
    for (const Page& page : _pages)
      sum += page.page->MostTexels();
    return sum;
  };
  while (!_pages.empty() && texels() > _mostTexels) {
    const auto oldest = std::min_element(_pages.begin(), _pages.end(),
                                         [](const Page& p_a, const Page& p_b) { return p_a.lastUse < p_b.lastUse; });
    for (auto entry = _entries.begin(); entry != _entries.end();)
      entry = entry->second.page == oldest->page ? _entries.erase(entry) : std::next(entry);
    _pages.erase(oldest);
  }
}

} // namespace Vek::Chart::Scene::Private
