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

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace Vek::Chart::Library {

namespace Private {
class ColorAtlasImpl;
}

/// Where the sub-tree of a colour lies in the atlas image: one run of texels that goes on at the left of the next row
/// when a row is full. Pixels count from the left and from the top row of the image.
///
/// \ingroup colours
class VEK_LIBRARY_API ColorCoords {
public:
  /// A column and a row of the atlas image, from its upper left.
  using Pixel = Ogl::Vec2<unsigned int>;

  /// Not placed yet.
  ColorCoords() = default;
  /// The run of the indices of `p_span` in rows of `p_width` texels; p_width must not be 0.
  ColorCoords(const Span<unsigned int>& p_span, unsigned int p_width)
      : _span(p_span)
      , _width(p_width) {}

  /// True once the layout has placed the colour.
  bool Defined() const { return _width != 0; }
  /// The texel of the colour itself; (0, 0) when not defined.
  Pixel First() const { return Defined() ? At(_span.first) : Pixel{}; }
  /// The pieces of the run, first and last pixel of each, one per row, in order. A colour without children covers its
  /// own texel only and has no pieces.
  std::vector<std::pair<Pixel, Pixel>> PixelSpans() const;

private:
  Pixel At(unsigned int p_index) const { return {p_index % _width, p_index / _width}; }

  Span<unsigned int> _span;
  unsigned int _width = 0;
};

/// Packs many colours into one small texture, so that a whole scene can be drawn with one bound texture and texture
/// coordinates per vertex.
///
/// Colours form a tree under an invisible root. A top-level colour may be instanced: an instance is a copy of the
/// colour's whole sub-tree in which some colours are replaced. Every colour and every instance has an id; colours
/// become texture coordinates, instances become an offset that moves the coordinates of the instanced sub-tree onto the
/// copy:
///
/// Broken preconditions are reported through the logger, and the operation goes on without the part that cannot be
/// done: unknown ids yield an empty node, replacements outside the instanced sub-tree are left out, texels beyond the
/// largest texture are not written. Copies share the texture and nothing else.
///
/// Building takes time linear in the number of texels, for trees of any depth. Rendering thread only.
///
/// \snippet ColorSnippets.cpp ColorAtlas
/// \image html atlas.jpg
/// \ingroup colours
class VEK_LIBRARY_API ColorAtlas {
public:
  /// Stands for "no parent".
  static constexpr unsigned int NoParent = 0xFFFFFFFF;

  /// A colour of the tree, as it was added.
  struct ColorNode {
    unsigned int parent = NoParent;     ///< the parent's id
    std::vector<unsigned int> children; ///< ids, in the order in which they were added
    QColor color = Qt::white;           ///< its own, before any replacement
    ColorCoords coords;                 ///< defined by BuildAtlas
    unsigned int instanceCount = 0;     ///< how many instances were made of this colour
  };

  /// What turns pixels of the atlas image into texture coordinates: (pixel × texel + centre). The first row of the
  /// image is the top of the texture, at t = 1.
  struct TexelSpace {
    Ogl::Vec2<float> texel;  ///< 1 / width and 1 / height of the image
    Ogl::Vec2<float> centre; ///< half of that: from a texel's corner to its centre
  };

  /// An atlas with the root alone: white, id 0, without a texel of its own.
  ColorAtlas();

  /// Adds a colour under `p_parent` (`RootAtlasId()` for a top-level colour; `NoParent` for one that is not laid out)
  /// and returns its id. Ids count up from 1 over colours and instances together.
  unsigned int AddColor(const QColor& p_color, unsigned int p_parent);
  /// Adds an instance of a top-level colour and returns its id. `p_colors` replaces colours of the sub-tree, keyed by
  /// colour id; a replacement covers the colour and everything below it, and a deeper one wins.
  unsigned int AddInstance(unsigned int p_instanceOf, const std::map<unsigned int, QColor>& p_colors);

  /// The node of a colour, or of the colour that an instance is made of. References stay valid while colours are added.
  /// An unknown id is reported and yields an empty node that belongs to no colour.
  ColorNode& ColorAt(unsigned int p_id);
  /// The same for an atlas that must not change.
  const ColorNode& ColorAt(unsigned int p_id) const;

  /// What to add to the texture coordinates of the instanced sub-tree; the second component is negated, since rows
  /// count downwards and t upwards. Valid after BuildAtlas.
  Ogl::Vec2<float> InstanceOffset(unsigned int p_id) const;

  /// The id of the root, which is the parent of all top-level colours.
  unsigned int RootAtlasId() const { return _rootId; }
  /// How pixels become texture coordinates. Valid after BuildAtlas.
  const TexelSpace& TexelCoordSpace() const { return _texelSpace; }
  /// The laid-out picture; texels that no colour uses are red. Null before the first BuildAtlas.
  const QImage& AtlasImage() const { return _atlasImage; }
  /// The texture of the last BuildAtlas; empty, and reported, before the first.
  boost::shared_ptr<Library::Texture> Texture() const;

  /// Lays out all colours and instances, draws the image and uploads it as a new texture. May be called again after
  /// more colours or instances were added.
  void BuildAtlas(Utility::Scoped<Rgl>& p_gl);

private:
  friend class Private::ColorAtlasImpl;

  struct Instance {
    unsigned int instanceOf = NoParent;
    std::map<unsigned int, QColor> colors;
    Types::Property<Ogl::Vec2<unsigned int>> offset; ///< in texels; to be read as signed numbers
  };
  static constexpr std::uint32_t NoSlot = 0xFFFFFFFF;

  std::uint32_t SlotOf(unsigned int p_id) const { return p_id < _slots.size() ? _slots[p_id] : NoSlot; }
  std::uint32_t FindSlot(unsigned int p_id) const;
  void BuildIndexSpans();
  void BuildTexture(Utility::Scoped<Rgl>& p_gl);

  boost::shared_ptr<Library::Texture> _map;
  std::deque<ColorNode> _nodes;
  std::vector<unsigned int> _ids;    ///< by slot
  std::vector<std::uint32_t> _slots; ///< by id: the place in _nodes, NoSlot for the id of an instance
  unsigned int _nextId = 0;
  unsigned int _rootId = 0;
  std::map<unsigned int, std::set<unsigned int>> _instanceData; ///< by colour id: the ids of its instances
  std::map<unsigned int, Instance> _instances;
  std::vector<Span<unsigned int>> _spans; ///< by slot; `first` is NoParent where the colour is not numbered
  std::vector<unsigned int> _plainRoots;
  std::vector<unsigned int> _instancedRoots;
  QImage _atlasImage;
  TexelSpace _texelSpace;
  ColorNode _unknown; ///< what an unknown id yields
};

} // namespace Vek::Chart::Library
