#include "library/ColorAtlas.h"

#include "library/private/color/ColorAtlasImpl.h"
#include "platform/debug/Check.h"

#include <algorithm>

namespace Vek::Chart::Library {

std::vector<std::pair<ColorCoords::Pixel, ColorCoords::Pixel>> ColorCoords::PixelSpans() const {
  std::vector<std::pair<Pixel, Pixel>> pieces;
  if (!Defined() || _span.first >= _span.last)
    return pieces;
  const std::uint64_t end = std::uint64_t{_span.last} + 1;
  for (std::uint64_t index = _span.first; index < end;) {
    const std::uint64_t next = std::min((index / _width + 1) * _width, end);
    pieces.emplace_back(At(static_cast<unsigned int>(index)), At(static_cast<unsigned int>(next - 1)));
    index = next;
  }
  return pieces;
}

ColorAtlas::ColorAtlas()
    : _rootId(AddColor(Qt::white, NoParent)) {}

unsigned int ColorAtlas::AddColor(const QColor& p_color, unsigned int p_parent) {
  const std::uint32_t slot = static_cast<std::uint32_t>(_nodes.size());
  const unsigned int id = _nextId++;
  _nodes.emplace_back();
  _ids.push_back(id);
  _slots.resize(id + std::size_t{1}, NoSlot);
  _slots[id] = slot;
  _nodes.back().parent = p_parent;
  _nodes.back().color = p_color;
  if (p_parent != NoParent)
    ColorAt(p_parent).children.push_back(id);
  return id;
}

unsigned int ColorAtlas::AddInstance(unsigned int p_instanceOf, const std::map<unsigned int, QColor>& p_colors) {
  ColorNode& instanceOf = ColorAt(p_instanceOf);
  VEK_ENSURE(instanceOf.parent == _rootId,
             "unsigned int __cdecl Vek::Chart::Library::ColorAtlas::AddInstance(unsigned int,const class "
             "std::map<unsigned int,class QColor,struct std::less<unsigned int>,class std::allocator<struct "
             "std::pair<unsigned int const ,class QColor> > > &)");
  const unsigned int id = _nextId++;
  _instances[id] = {p_instanceOf, p_colors, {}};
  if (_instanceData[p_instanceOf].insert(id).second)
    ++instanceOf.instanceCount;
  return id;
}

std::uint32_t ColorAtlas::FindSlot(unsigned int p_id) const {
  const char* const signature = "struct Vek::Chart::Library::ColorAtlas::ColorNode &__cdecl "
                                "Vek::Chart::Library::ColorAtlas::ColorAt(unsigned int)";
  std::uint32_t pos = SlotOf(p_id);
  if (pos != NoSlot)
    return pos;
  const auto instPos = _instances.find(p_id);
  if (!VEK_ENSURE(instPos != _instances.end(), signature))
    return NoSlot;
  pos = SlotOf(instPos->second.instanceOf);
  VEK_ENSURE_TEXT(pos != NoSlot, "pos != _indexMap.end()", signature);
  return pos;
}

ColorAtlas::ColorNode& ColorAtlas::ColorAt(unsigned int p_id) {
  const std::uint32_t slot = FindSlot(p_id);
  return slot == NoSlot ? _unknown = ColorNode() : _nodes[slot];
}

const ColorAtlas::ColorNode& ColorAtlas::ColorAt(unsigned int p_id) const {
  static const ColorNode Unknown;
  const std::uint32_t slot = FindSlot(p_id);
  return slot == NoSlot ? Unknown : _nodes[slot];
}

Ogl::Vec2<float> ColorAtlas::InstanceOffset(unsigned int p_id) const {
  const char* const signature = "class Vek::Chart::Ogl::Vec2<float> __cdecl "
                                "Vek::Chart::Library::ColorAtlas::InstanceOffset(unsigned int) const";
  const auto instanceIt = _instances.find(p_id);
  if (!VEK_ENSURE(instanceIt != _instances.end(), signature))
    return {};
  const Types::Property<Ogl::Vec2<unsigned int>>& instance = instanceIt->second.offset;
  VEK_ENSURE(instance.Defined(), signature);
  const float dx = static_cast<float>(static_cast<int>(instance.Value().x));
  const float dy = static_cast<float>(static_cast<int>(instance.Value().y));
  return {dx * _texelSpace.texel.x, -(dy * _texelSpace.texel.y)};
}

boost::shared_ptr<Library::Texture> ColorAtlas::Texture() const {
  VEK_ENSURE(_map, "class boost::shared_ptr<class Vek::Chart::Library::Texture> __cdecl "
                   "Vek::Chart::Library::ColorAtlas::Texture(void) const");
  return _map;
}

void ColorAtlas::BuildAtlas(Utility::Scoped<Rgl>& p_gl) {
  BuildIndexSpans();
  VEK_ENSURE_TEXT(!_plainRoots.empty() || !_instancedRoots.empty(), "_spans.size() != 0",
                  "void __cdecl Vek::Chart::Library::ColorAtlas::BuildAtlas(class Vek::Chart::Utility::Scoped<class "
                  "Vek::Chart::Ogl::Rgl> &)");
  BuildTexture(p_gl);
}

void ColorAtlas::BuildIndexSpans() {
  _spans.assign(_nodes.size(), {NoParent, NoParent});
  _plainRoots.clear();
  _instancedRoots.clear();
  for (const unsigned int child : ColorAt(_rootId).children)
    (ColorAt(child).instanceCount > 0 ? _instancedRoots : _plainRoots).push_back(child);
  Private::ColorAtlasImpl(*this).NumberColors();
}

void ColorAtlas::BuildTexture(Utility::Scoped<Rgl>& p_gl) {
  for (ColorNode& node : _nodes)
    node.coords = {};
  const int size = p_gl->GetMaxTextureSize();
  Private::ImageBuilder image(size, size);
  Private::ColorAtlasImpl(*this).MapColors(image);
  _atlasImage = image.CreateImage(QColor(Qt::red).rgba());

  const Ogl::Vec2<float> texel{1.0f / static_cast<float>(_atlasImage.width()),
                               1.0f / static_cast<float>(_atlasImage.height())};
  _texelSpace = {texel, {texel.x * 0.5f, texel.y * 0.5f}};

  _map = boost::shared_ptr<Library::Texture>(new Library::Texture(_atlasImage, p_gl));
  _map->minFilter = _map->magFilter = Library::Texture::Nearest;
  _map->wrapS = _map->wrapT = Library::Texture::ClampToEdge;
  _map->environment = Library::Texture::Replace;
  (*_map)(p_gl, RGL_TEXTURE0); // uploads it
  p_gl->ActiveTexture(RGL_TEXTURE0);
  p_gl->Disable(RGL_TEXTURE_2D);
}

} // namespace Vek::Chart::Library
