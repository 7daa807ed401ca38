#pragma once

#include "platform/ogl/Vec.h"
#include "platform/types/Range.h"

#include <QColor>
#include <QImage>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace Vek::Chart::Library::Private {

class ImageBuilder;

/// A tree of colours and their instances, as the layout reads it. A colour is addressed by its slot, which is its
/// position in `colors`. Ids are the numbers by which the tree itself refers to its colours.
struct AtlasTree {
  /// No colour.
  static constexpr std::uint32_t NoSlot = 0xFFFFFFFF;

  struct Color {
    const std::vector<unsigned int>* children = nullptr; ///< ids
    QRgb color = 0;
    bool topLevel = false;         ///< whether it lies under the root
    bool instanced = false;        ///< whether its sub-tree is followed by copies
    std::size_t firstInstance = 0; ///< its instances in `instances`
    std::size_t endInstance = 0;   ///< one past the last of them
  };
  struct Instance {
    unsigned int id = 0;
    const std::map<unsigned int, QColor>* replacements = nullptr; ///< by the id of the colour replaced
    bool placed = false;                                          ///< whether an earlier layout gave it an offset
  };

  std::vector<Color> colors;
  std::vector<unsigned int> plainRoots;     ///< the ids of the top-level colours without instances
  std::vector<unsigned int> instancedRoots; ///< the ids of those with instances
  /// The instances of one colour after those of another; those of one colour in the order of their ids.
  std::vector<Instance> instances;
  /// By id; NoSlot where the id is not that of a colour.
  const std::vector<std::uint32_t>* slotById = nullptr;
  /// The slot that an id stands for that is not in `slotById`. Reports unknown ids, and returns NoSlot for them.
  std::function<std::uint32_t(unsigned int)> findSlot;

  /// The slot of the colour with that id, or NoSlot.
  std::uint32_t ColorSlot(unsigned int p_id) const { return p_id < slotById->size() ? (*slotById)[p_id] : NoSlot; }
};

/// Where a tree lies in the image.
struct AtlasLayout {
  /// By slot: the texels of the colour and of its sub-tree, counted row by row.
  std::vector<std::optional<Span<unsigned int>>> runs;
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

  /// Numbers the sub-trees of the plain top-level colours, then those of the instanced ones.
  void NumberColors();
  /// Writes the texels of every numbered colour and of every instance's copy.
  AtlasLayout MapColors(ImageBuilder& p_image) const;

private:
  class SpanBuilder;
  class CoordinateMapper;
  class InstanceCoordinateMapper;

  template <class Visitor>
  void Walk(const std::vector<unsigned int>& p_roots, Visitor& p_visitor) const;
  std::uint32_t SlotOf(unsigned int p_id) const;

  const AtlasTree& _tree;
  std::vector<std::optional<Span<unsigned int>>> _spans; ///< by slot: the indices of the sub-tree
};

} // namespace Vek::Chart::Library::Private
