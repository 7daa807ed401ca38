#pragma once

#include "library/ColorAtlas.h"
#include "platform/ogl/Vec.h"
#include "platform/types/Range.h"

#include <QColor>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace Vek::Chart::Library::Private {

class ImageBuilder;

/// A tree of colours and their instances, as the layout reads it. A colour is addressed by its slot, which is its
/// number from 0 on. Ids are the numbers by which the tree itself refers to its colours.
struct AtlasTree {
  /// No colour.
  static constexpr std::uint32_t NoSlot = 0xFFFFFFFF;

  struct Color {
    const ColorAtlas::ChildIds* children = nullptr;
    QRgb color = 0;
    unsigned int parent = 0; ///< its id
    bool topLevel = false;   ///< whether it lies under the root
    bool instanced = false;  ///< whether its sub-tree is followed by copies
  };
  struct Instance {
    unsigned int id = 0;
    const std::map<unsigned int, QColor>* replacements = nullptr; ///< by the id of the colour replaced
    bool placed = false;                                          ///< whether an earlier layout gave it an offset
  };
  /// The instances of one colour, in `instances`.
  struct Copies {
    std::uint32_t slot = NoSlot;
    std::size_t first = 0;
    std::size_t end = 0; ///< one past the last of them
  };

  std::size_t count = 0;                  ///< of colours
  std::function<Color(std::uint32_t)> at; ///< the colour of a slot; not a list, which took as much as the tree
  ColorAtlas::ChildIds plainRoots;        ///< the ids of the top-level colours without instances
  ColorAtlas::ChildIds instancedRoots;    ///< the ids of those with instances
  std::vector<Copies> copies;             ///< by slot, in ascending order
  std::vector<Instance> instances;        ///< those of one colour in the order of their ids
  /// By id; NoSlot where the id is not that of a colour.
  const std::vector<std::uint32_t>* slotById = nullptr;
  /// The slot that an id stands for that is not in `slotById`. Reports unknown ids, and returns NoSlot for them.
  std::function<std::uint32_t(unsigned int)> findSlot;

  /// The slot of the colour with that id, or NoSlot.
  std::uint32_t ColorSlot(unsigned int p_id) const { return p_id < slotById->size() ? (*slotById)[p_id] : NoSlot; }
};

/// Where a tree lies in the image.
struct AtlasLayout {
  using Run = Span<unsigned int>;
  /// Whether a run has texels; that of a colour outside of the tree has none.
  static bool HasTexels(const Run& p_run) { return p_run.first <= p_run.last; }

  /// By slot: the texels of the colour and of its sub-tree, counted row by row.
  std::vector<Run> runs;
  /// By position in `instances`: from the colour to the copy, in texels; components are to be read as signed numbers.
  std::vector<std::optional<Ogl::Vec2<unsigned int>>> offsets;
};

/// Lays out a tree of colours: numbers them so that every sub-tree is one run of indices, maps the indices to texels,
/// and copies the runs of instanced colours. The tree is read only.
class ColorAtlasImpl {
public:
  /// The tree must outlive this object.
  explicit ColorAtlasImpl(const AtlasTree& p_tree)
      : _tree(p_tree) {}

  /// Numbers the sub-trees of the plain top-level colours, then those of the instanced ones. Returns how many colours
  /// there are in them.
  std::size_t NumberColors();
  /// Writes the texels of every numbered colour and of every instance's copy. Called once, after NumberColors.
  AtlasLayout MapColors(ImageBuilder& p_image);

private:
  class SpanBuilder;
  class CoordinateMapper;
  class InstanceCoordinateMapper;

  template <class Visitor>
  void Walk(const ColorAtlas::ChildIds& p_roots, Visitor& p_visitor) const;
  std::uint32_t SlotOf(unsigned int p_id) const;

  const AtlasTree& _tree;
  std::vector<Span<unsigned int>> _spans; ///< by slot: the indices of the sub-tree, until they are mapped to texels
};

} // namespace Vek::Chart::Library::Private
