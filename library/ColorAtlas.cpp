#include "library/ColorAtlas.h"

#include "library/private/color/ColorAtlasImpl.h"
#include "library/private/color/ImageBuilder.h"
#include "platform/debug/Check.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace Vek::Chart::Library {

namespace {

namespace Signature {
#define VEK_ATLAS "Vek::Chart::Library::ColorAtlas::"
constexpr const char* AddInstance =
    "unsigned int __cdecl " VEK_ATLAS
    "AddInstance(unsigned int,const class std::map<unsigned int,class QColor,struct std::less<unsigned int>,class "
    "std::allocator<struct std::pair<unsigned int const ,class QColor> > > &)";
constexpr const char* ColorAt = "struct " VEK_ATLAS "ColorNode &__cdecl " VEK_ATLAS "ColorAt(unsigned int)";
constexpr const char* ConstColorAt =
    "const struct " VEK_ATLAS "ColorNode &__cdecl " VEK_ATLAS "ColorAt(unsigned int) const";
constexpr const char* InstanceOffset =
    "class Vek::Chart::Ogl::Vec2<float> __cdecl " VEK_ATLAS "InstanceOffset(unsigned int) const";
constexpr const char* TexCoord =
    "class Vek::Chart::Ogl::Vec2<float> __cdecl " VEK_ATLAS "TexCoord(unsigned int,unsigned int) const";
constexpr const char* Texture =
    "class boost::shared_ptr<class Vek::Chart::Library::Texture> __cdecl " VEK_ATLAS "Texture(void) const";
constexpr const char* BuildAtlas = "void __cdecl " VEK_ATLAS "BuildAtlas(class Vek::Chart::Utility::Scoped<class "
                                   "Vek::Chart::Ogl::Rgl> &)";
} // namespace Signature

/// The texture of an atlas image, uploaded.
boost::shared_ptr<Texture> Upload(const QImage& p_image, Utility::Scoped<Rgl>& p_gl) {
  const auto map = boost::make_shared<Texture>(p_image, p_gl);
  map->minFilter = map->magFilter = Texture::Nearest;
  map->wrapS = map->wrapT = Texture::ClampToEdge;
  map->environment = Texture::Replace;
  (*map)(p_gl, RGL_TEXTURE0);
  p_gl->ActiveTexture(RGL_TEXTURE0);
  p_gl->Disable(RGL_TEXTURE_2D);
  return map;
}

} // namespace

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

void ColorAtlas::ChildIds::push_back(unsigned int p_id) {
  if (_count == std::numeric_limits<std::uint32_t>::max())
    throw std::length_error("list<T> too long");
  const bool isPowerOfTwo = (_count & (_count - 1)) == 0;
  if (_count != 0 && isPowerOfTwo) { // there is no room
    std::unique_ptr<unsigned int[]> ids(new unsigned int[std::size_t{2} * _count]);
    std::copy(begin(), end(), ids.get());
    _ids = std::move(ids);
  }
  (_count == 0 ? _single : _ids[_count]) = p_id;
  ++_count;
}

ColorAtlas::ColorAtlas()
    : _rootId(AddColor(Qt::white, NoParent)) {}

unsigned int ColorAtlas::AddColor(const QColor& p_color, unsigned int p_parent) {
  ColorNode node;
  node.parent = p_parent;
  node.color = p_color;
  _slots.resize(_nextId + std::size_t{1}, NoSlot);
  _nodes.push_back(std::move(node));
  const unsigned int id = _nextId++;
  _slots[id] = static_cast<std::uint32_t>(_nodes.size() - 1);
  if (p_parent != NoParent)
    ColorAt(p_parent).children.push_back(id);
  return id;
}

unsigned int ColorAtlas::AddInstance(unsigned int p_instanceOf, const std::map<unsigned int, QColor>& p_colors) {
  ColorNode& instanceOf = ColorAt(p_instanceOf);
  VEK_ENSURE(instanceOf.parent == _rootId, Signature::AddInstance);
  const unsigned int id = _nextId++;
  _instances.emplace(id, Instance{p_instanceOf, p_colors, {}});
  if (_instanceData[p_instanceOf].insert(id).second)
    ++instanceOf.instanceCount;
  return id;
}

std::uint32_t ColorAtlas::FindSlot(unsigned int p_id, const char* p_signature) const {
  std::uint32_t pos = SlotOf(p_id);
  if (pos != NoSlot)
    return pos;
  const auto instPos = _instances.find(p_id);
  if (!VEK_ENSURE(instPos != _instances.end(), p_signature))
    return NoSlot;
  pos = SlotOf(instPos->second.instanceOf);
  VEK_ENSURE_TEXT(pos != NoSlot, "pos != _indexMap.end()", p_signature);
  return pos;
}

ColorAtlas::ColorNode& ColorAtlas::ColorAt(unsigned int p_id) {
  const std::uint32_t slot = FindSlot(p_id, Signature::ColorAt);
  return slot == NoSlot ? _unknown = ColorNode() : _nodes[slot];
}

const ColorAtlas::ColorNode& ColorAtlas::ColorAt(unsigned int p_id) const {
  static const ColorNode Unknown;
  const std::uint32_t slot = FindSlot(p_id, Signature::ConstColorAt);
  return slot == NoSlot ? Unknown : _nodes[slot];
}

Ogl::Vec2<float> ColorAtlas::InstanceOffset(unsigned int p_id) const {
  const auto instanceIt = _instances.find(p_id);
  if (!VEK_ENSURE(instanceIt != _instances.end(), Signature::InstanceOffset))
    return {};
  const Types::Property<Ogl::Vec2<unsigned int>>& instance = instanceIt->second.offset;
  VEK_ENSURE(instance.Defined(), Signature::InstanceOffset);
  const float dx = static_cast<float>(static_cast<int>(instance.Value().x));
  const float dy = static_cast<float>(static_cast<int>(instance.Value().y));
  return {dx * _texelSpace.texel.x, -(dy * _texelSpace.texel.y)};
}

std::optional<Ogl::Vec2<float>> ColorAtlas::CentreOf(std::uint32_t p_slot) const {
  if (p_slot == NoSlot || !VEK_ENSURE_TEXT(_nodes[p_slot].coords.Defined(), "coords.Defined()", Signature::TexCoord))
    return {};
  const ColorCoords::Pixel pixel = _nodes[p_slot].coords.First();
  return Ogl::Vec2<float>{static_cast<float>(pixel.x) * _texelSpace.texel.x + _texelSpace.centre.x,
                          1 - (static_cast<float>(pixel.y) * _texelSpace.texel.y + _texelSpace.centre.y)};
}

Ogl::Vec2<float> ColorAtlas::TexCoord(unsigned int p_id) const {
  const std::optional<Ogl::Vec2<float>> centre = CentreOf(FindSlot(p_id, Signature::TexCoord));
  if (!centre || SlotOf(p_id) != NoSlot)
    return centre.value_or(Ogl::Vec2<float>());
  const Ogl::Vec2<float> offset = InstanceOffset(p_id);
  return {centre->x + offset.x, centre->y + offset.y};
}

Ogl::Vec2<float> ColorAtlas::TexCoord(unsigned int p_color, unsigned int p_instance) const {
  const std::uint32_t slot = FindSlot(p_color, Signature::TexCoord);
  const std::optional<Ogl::Vec2<float>> centre = CentreOf(slot);
  const auto instance = _instances.find(p_instance);
  const std::uint32_t instanceOf = instance == _instances.end() ? NoSlot : SlotOf(instance->second.instanceOf);
  if (!centre || (instanceOf != NoSlot && !VEK_ENSURE_TEXT(_nodes[instanceOf].coords.Covers(_nodes[slot].coords),
                                                           "instanceOf.coords.Covers(coords)", Signature::TexCoord)))
    return centre.value_or(Ogl::Vec2<float>());
  const Ogl::Vec2<float> offset = InstanceOffset(p_instance);
  return {centre->x + offset.x, centre->y + offset.y};
}

boost::shared_ptr<Library::Texture> ColorAtlas::Texture() const {
  VEK_ENSURE(_map, Signature::Texture);
  return _map;
}

void ColorAtlas::BuildAtlas(Utility::Scoped<Rgl>& p_gl) {
  const Private::AtlasTree tree = Tree();
  Private::ColorAtlasImpl impl(tree);
  const std::size_t count = impl.NumberColors();
  VEK_ENSURE_TEXT(!tree.plainRoots.empty() || !tree.instancedRoots.empty(), "_spans.size() != 0",
                  Signature::BuildAtlas);

  const int size = p_gl->GetMaxTextureSize();
  Private::ImageBuilder builder(size, size);
  builder.Reserve(count); // copies of instances take more
  const Private::AtlasLayout layout = impl.MapColors(builder);
  QImage image = builder.TakeImage(QColor(Qt::red).rgba());
  boost::shared_ptr<Library::Texture> map = Upload(image, p_gl);

  // Nothing below throws: a build that failed before has changed nothing.
  for (std::size_t slot = 0; slot < layout.runs.size(); ++slot)
    _nodes[slot].coords = ColorCoords(layout.runs[slot], layout.HasTexels(layout.runs[slot]) ? builder.MaxWidth() : 0);
  for (std::size_t i = 0; i < layout.offsets.size(); ++i)
    if (layout.offsets[i])
      _instances.find(tree.instances[i].id)->second.offset = *layout.offsets[i];
  const Ogl::Vec2<float> texel{1.0f / static_cast<float>(image.width()), 1.0f / static_cast<float>(image.height())};
  _texelSpace = {texel, {texel.x * 0.5f, texel.y * 0.5f}};
  _atlasImage.swap(image);
  _map.swap(map);
}

Private::AtlasTree ColorAtlas::Tree() {
  Private::AtlasTree tree;
  tree.slotById = &_slots;
  tree.findSlot = [this](unsigned int p_id) { return FindSlot(p_id, Signature::ColorAt); };
  tree.count = _nodes.size();
  tree.at = [this](std::uint32_t p_slot) {
    const ColorNode& node = _nodes[p_slot];
    return Private::AtlasTree::Color{&node.children, node.color.rgba(), node.parent, node.parent == _rootId,
                                     node.instanceCount > 0};
  };
  for (const unsigned int child : ColorAt(_rootId).children)
    (ColorAt(child).instanceCount > 0 ? tree.instancedRoots : tree.plainRoots).push_back(child);

  for (const auto& [instanceOf, ids] : _instanceData) {
    const std::uint32_t slot = SlotOf(instanceOf);
    if (slot == NoSlot)
      continue;
    const std::size_t first = tree.instances.size();
    for (const unsigned int id : ids) {
      const Instance& instance = _instances.find(id)->second;
      tree.instances.push_back({id, &instance.colors, instance.offset.Defined()});
    }
    tree.copies.push_back({slot, first, tree.instances.size()});
  }
  return tree;
}

} // namespace Vek::Chart::Library
