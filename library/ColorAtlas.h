#pragma once

#include "library/Export.h"
#include "library/Texture.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/Vec.h"
#include "platform/types/Property.h"
#include "platform/types/Range.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QColor>
#include <QImage>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace Vek::Chart::Library {

namespace Private {
struct AtlasTree;
}

/// The texels of a colour's sub-tree in the atlas image: one run that continues at the left of the next row when a row
/// is full. Columns count from the left, rows from the top of the image.
///
/// \ingroup colours
class VEK_LIBRARY_API ColorCoords {
public:
  /// A column and a row of the atlas image, from its upper left.
  using Pixel = Ogl::Vec2<unsigned int>;

  /// Not defined.
  ColorCoords() = default;
  /// The run of the indices of `p_span` in rows of `p_width` texels. A width of 0 makes an undefined one.
  ColorCoords(const Span<unsigned int>& p_span, unsigned int p_width)
      : _span(p_span)
      , _width(p_width) {}

  /// Whether the layout has placed the colour.
  bool Defined() const { return _width != 0; }
  /// The texel of the colour itself; (0, 0) where not defined.
  Pixel First() const { return Defined() ? At(_span.first) : Pixel{}; }
  /// The pieces of the run in order, one a row: the first and the last pixel of each. Empty for a colour without
  /// children, which covers its own texel only.
  std::vector<std::pair<Pixel, Pixel>> PixelSpans() const;

  /// Whether the texel of `p_other` is that of this colour or lies in its run; false if one of them is not defined.
  bool Covers(const ColorCoords& p_other) const {
    return Defined() && p_other.Defined() && _span.first <= p_other._span.first && p_other._span.first <= _span.last;
  }

private:
  Pixel At(unsigned int p_index) const { return {p_index % _width, p_index / _width}; }

  Span<unsigned int> _span;
  unsigned int _width = 0;
};

/// Packs many colours into one small texture, so that a whole scene can be drawn with one bound texture and texture
/// coordinates per vertex.
///
/// Colours form a tree under an invisible root. A top-level colour may be instanced: an instance is a copy of the
/// colour's whole sub-tree in which some colours are replaced. Every colour and every instance has an id. A colour's id
/// yields texture coordinates. An instance's id yields an offset, which moves the coordinates of the instanced sub-tree
/// to those of the copy.
///
/// Errors: broken preconditions are reported, and the operation goes on without the part that cannot be done. Unknown
/// ids yield an empty node, replacements outside of the instanced sub-tree are left out, texels beyond the largest
/// texture are not written. An exception (out of memory, or from the sink of the reports) leaves the result of the last
/// build as it was.
///
/// Ownership: the atlas owns its texture; its last holder must release it while the context that made it is current.
/// Copies of an atlas share the texture and nothing else.
///
/// Building takes time linear in the number of texels, for trees of any depth. Rendering thread only.
///
/// \snippet ColorSnippets.cpp ColorAtlas
/// \image html atlas.jpg
/// \ingroup colours
class VEK_LIBRARY_API ColorAtlas {
public:
  /// The parent of a colour that has none.
  static constexpr unsigned int NoParent = 0xFFFFFFFF;

  /// A list of ids. A single one lies in the list itself, since a million lists with memory of their own would take 32
  /// megabytes more.
  class ChildIds {
  public:
    ChildIds() = default;
    /// Copies the ids.
    ChildIds(const ChildIds& p_other) {
      for (const unsigned int id : p_other)
        push_back(id);
    }
    /// Leaves an empty list.
    ChildIds(ChildIds&& p_other) noexcept { Swap(p_other); }
    /// Copies or moves the ids.
    ChildIds& operator=(ChildIds p_other) noexcept {
      Swap(p_other);
      return *this;
    }

    /// The number of ids.
    std::size_t size() const { return _count; }
    /// Whether there are none.
    bool empty() const { return _count == 0; }
    /// The first id.
    const unsigned int* begin() const { return _count == 1 ? &_single : _ids.get(); }
    /// Behind the last id.
    const unsigned int* end() const { return begin() + _count; }
    /// An id by its number, which must be below `size()`.
    unsigned int operator[](std::size_t p_i) const { return begin()[p_i]; }
    /// Appends an id. Throws std::length_error for more than 2^32 - 1.
    void push_back(unsigned int p_id);

  private:
    void Swap(ChildIds& p_other) noexcept {
      std::swap(_count, p_other._count);
      std::swap(_single, p_other._single);
      _ids.swap(p_other._ids);
    }

    std::uint32_t _count = 0;
    unsigned int _single = 0;             ///< of one
    std::unique_ptr<unsigned int[]> _ids; ///< of several; room for the next power of two
  };

  /// A colour of the tree, as it was added.
  struct ColorNode {
    unsigned int parent = NoParent; ///< id of the parent
    ChildIds children;              ///< in the order in which they were added
    QColor color = Qt::white;       ///< its own, before any replacement
    ColorCoords coords;             ///< set by BuildAtlas
    unsigned int instanceCount = 0; ///< number of instances of this colour
  };

  /// Converts pixels of the atlas image to texture coordinates: s = x × texel.x + centre.x,
  /// t = 1 - (y × texel.y + centre.y), since the first row of the image is the top of the texture.
  struct TexelSpace {
    Ogl::Vec2<float> texel;  ///< 1 / width and 1 / height of the image
    Ogl::Vec2<float> centre; ///< half of that: from a texel's corner to its centre
  };

  /// An atlas with the root only, which is white, has the id 0 and no texel.
  ColorAtlas();

  /// Adds a colour under `p_parent` and returns its id: `RootAtlasId()` makes a top-level colour, `NoParent` one that
  /// is not laid out. Ids count up from 1 over colours and instances together. An unknown parent is reported; the
  /// colour is not laid out.
  unsigned int AddColor(const QColor& p_color, unsigned int p_parent);
  /// Adds an instance of a top-level colour and returns its id. `p_colors` has the replacements by colour id. One
  /// covers the colour and everything below it; a deeper one wins. A colour that is not at the top level is reported as
  /// "instanceOf.parent == _rootId".
  unsigned int AddInstance(unsigned int p_instanceOf, const std::map<unsigned int, QColor>& p_colors);

  /// The node of a colour, or of the colour that an instance is made of. References stay valid while colours are added.
  /// An unknown id is reported and yields an empty node, which is overwritten by the next unknown id.
  ColorNode& ColorAt(unsigned int p_id);
  /// Read-only access.
  const ColorNode& ColorAt(unsigned int p_id) const;

  /// The offset to be added to the texture coordinates of the instanced sub-tree. The second component is negated,
  /// since rows count downwards and t upwards. Valid after BuildAtlas; before, it is reported as "instance.Defined()"
  /// and 0. An unknown id is reported and yields 0.
  Ogl::Vec2<float> InstanceOffset(unsigned int p_id) const;

  /// The texture coordinate of a colour: the centre of its texel in the texture of the last BuildAtlas. The id of an
  /// instance yields the coordinate of the top-level colour in that copy. Reported as "coords.Defined()" is a colour
  /// that was not laid out; an unknown id is reported as by ColorAt. Both yield (0, 0), the lower left corner of the
  /// texture.
  Ogl::Vec2<float> TexCoord(unsigned int p_id) const;
  /// The texture coordinate of a colour in the copy `p_instance`, which is that of the colour plus the instance's
  /// offset. A colour outside the instanced sub-tree is reported as "instanceOf.coords.Covers(coords)", an unknown
  /// instance as by InstanceOffset. Both yield the coordinate of the colour itself.
  Ogl::Vec2<float> TexCoord(unsigned int p_color, unsigned int p_instance) const;

  /// The id of the root, the parent of all top-level colours.
  unsigned int RootAtlasId() const { return _rootId; }
  /// Converts pixels to texture coordinates. Valid after BuildAtlas.
  const TexelSpace& TexelCoordSpace() const { return _texelSpace; }
  /// The image of all colours; texels that no colour uses are red. Null before the first BuildAtlas.
  const QImage& AtlasImage() const { return _atlasImage; }
  /// The texture of the last BuildAtlas; empty, and reported as "_map", before the first.
  boost::shared_ptr<Library::Texture> Texture() const;

  /// Lays out all colours and instances, makes the image and uploads it as a new texture. May be called again after
  /// colours or instances were added; instances that had an offset already are reported as "!instance.Defined()" and
  /// get their new one. Leaves unit 0 active, with the texture bound and 2-D texturing disabled.
  void BuildAtlas(Utility::Scoped<Rgl>& p_gl);

private:
  struct Instance {
    unsigned int instanceOf = NoParent;
    std::map<unsigned int, QColor> colors;
    Types::Property<Ogl::Vec2<unsigned int>> offset; ///< in texels; to be read as signed numbers
  };
  static constexpr std::uint32_t NoSlot = 0xFFFFFFFF;

  std::uint32_t SlotOf(unsigned int p_id) const { return p_id < _slots.size() ? _slots[p_id] : NoSlot; }
  std::uint32_t FindSlot(unsigned int p_id, const char* p_signature) const;
  std::optional<Ogl::Vec2<float>> CentreOf(std::uint32_t p_slot) const;
  Private::AtlasTree Tree();

  boost::shared_ptr<Library::Texture> _map;
  std::deque<ColorNode> _nodes;
  std::vector<std::uint32_t> _slots; ///< by id: the position in _nodes; NoSlot for the id of an instance
  unsigned int _nextId = 0;
  unsigned int _rootId = 0;
  std::map<unsigned int, std::set<unsigned int>> _instanceData; ///< by colour id: the ids of its instances
  std::map<unsigned int, Instance> _instances;
  QImage _atlasImage;
  TexelSpace _texelSpace;
  ColorNode _unknown; ///< the node of unknown ids
};

} // namespace Vek::Chart::Library
