#include "library/private/color/ColorAtlasImpl.h"

#include "library/private/color/ImageBuilder.h"
#include "platform/debug/Check.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <utility>

namespace Vek::Chart::Library::Private {

namespace {

using Pixel = ImageBuilder::Pixel;
using IndexSpan = Span<unsigned int>;

namespace Signature {
#define VEK_ATLAS "Vek::Chart::Library::Private::ColorAtlasImpl::"
#define VEK_PIXEL "class Vek::Chart::Ogl::Vec2<unsigned int>"
#define VEK_SPAN "class Vek::Chart::Types::Span<unsigned int>"
#define VEK_CALL "operator ()(class " VEK_ATLAS "AtlasTraversalState &,class " VEK_ATLAS "AtlasTraversalState *)"
constexpr const char* SpanBuilderCall = "void __cdecl " VEK_ATLAS "SpanBuilder::" VEK_CALL;
constexpr const char* WriteColor = "void __cdecl " VEK_ATLAS "CoordinateMapper::WriteColor(unsigned int,const struct "
                                   "Vek::Chart::Library::ColorAtlas::ColorNode &,const " VEK_SPAN " &)";
constexpr const char* MapSpan = "void __cdecl " VEK_ATLAS "CoordinateMapper::MapSpan(unsigned int,struct "
                                "Vek::Chart::Library::ColorAtlas::ColorNode &,const " VEK_SPAN " &)";
constexpr const char* InstanceMapperCall = "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::" VEK_CALL;
constexpr const char* ProcessInstances =
    "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::ProcessInstances(unsigned int,const " VEK_SPAN " &)";
constexpr const char* CopyColors =
    "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::CopyColors(const " VEK_SPAN " &,const " VEK_PIXEL " &)";
constexpr const char* NextPixel = VEK_PIXEL " __cdecl " VEK_ATLAS "InstanceCoordinateMapper::NextPixel(const " VEK_PIXEL
                                            " &,const class Vek::Chart::Types::Size &,unsigned int) const";
constexpr const char* OverwritePixelSpan =
    "void __cdecl " VEK_ATLAS "InstanceCoordinateMapper::OverwritePixelSpan(const " VEK_PIXEL
    " &,const class QColor &,unsigned int)";
} // namespace Signature

/// The texel of an index: row by row.
Pixel PixelOf(std::uint64_t p_index, const ImageBuilder& p_image) {
  return {static_cast<unsigned int>(p_index % p_image.MaxWidth()),
          static_cast<unsigned int>(p_index / p_image.MaxWidth())};
}

constexpr IndexSpan NoSpan(1, 0);

unsigned int LengthOf(const IndexSpan& p_span) {
  return p_span.last - p_span.first + 1;
}

} // namespace

std::uint32_t ColorAtlasImpl::SlotOf(unsigned int p_id) const {
  const std::uint32_t known = _tree.ColorSlot(p_id);
  const std::uint32_t slot = known != AtlasTree::NoSlot ? known : _tree.findSlot(p_id);
  return slot < _tree.count ? slot : AtlasTree::NoSlot; // a sink may add colours meanwhile
}

/// Visits the colours of the roots' sub-trees depth first, parents before children. `Enter` returns false to leave out
/// what lies below a slot; otherwise `Leave` runs after the slot's whole sub-tree. The levels are kept on a stack of
/// our own, since a tree may be a million levels deep.
template <class Visitor>
void ColorAtlasImpl::Walk(const ColorAtlas::ChildIds& p_roots, Visitor& p_visitor) const {
  struct Level {
    std::uint32_t owner; ///< the slot whose children these are; NoSlot for the roots
    std::uint32_t next;  ///< the child to visit next
  };
  const auto idsOf = [&](const Level& p_level) {
    return p_level.owner == AtlasTree::NoSlot ? &p_roots : _tree.at(p_level.owner).children;
  };
  std::deque<Level> above; // does not move: the stack may be as long as the tree
  Level level{AtlasTree::NoSlot, 0};
  for (const ColorAtlas::ChildIds* ids = &p_roots;;) {
    if (level.next == ids->size()) {
      if (above.empty())
        return;
      p_visitor.Leave(level.owner);
      level = above.back();
      above.pop_back();
      ids = idsOf(level);
      continue;
    }
    const std::uint32_t slot = SlotOf((*ids)[level.next++]);
    if (slot == AtlasTree::NoSlot || !p_visitor.Enter(slot))
      continue;
    if (_tree.at(slot).children->empty()) {
      p_visitor.Leave(slot);
      continue;
    }
    above.push_back(level);
    level = {slot, 0};
    ids = idsOf(level);
  }
}

/// Gives each colour the next index; the span of a colour ends with the last index of its sub-tree.
class ColorAtlasImpl::SpanBuilder {
public:
  explicit SpanBuilder(ColorAtlasImpl& p_impl)
      : _spans(p_impl._spans) {}

  bool Enter(std::uint32_t p_slot) {
    // A colour that was numbered already is in the tree twice, or above itself.
    if (!VEK_ENSURE_TEXT(!AtlasLayout::HasTexels(_spans[p_slot]), "query.second", Signature::SpanBuilderCall))
      return false;
    _spans[p_slot] = IndexSpan(_next, _next);
    ++_next;
    return true;
  }

  void Leave(std::uint32_t p_slot) { _spans[p_slot].last = _next - 1; }
  std::size_t Count() const { return _next; }

private:
  std::vector<IndexSpan>& _spans;
  unsigned int _next = 0;
};

/// Writes each colour at the texel of its index. The indices of the placed colours become their texels.
class ColorAtlasImpl::CoordinateMapper {
public:
  CoordinateMapper(const AtlasTree& p_tree, ImageBuilder& p_image, AtlasLayout& p_layout, std::vector<bool>& p_placed)
      : _tree(p_tree)
      , _image(p_image)
      , _layout(p_layout)
      , _placed(p_placed) {}

  bool Enter(std::uint32_t p_slot) { return Place(p_slot, _layout.runs[p_slot]); }
  void Leave(std::uint32_t) {}

protected:
  /// False when the colour had been placed before.
  bool Place(std::uint32_t p_slot, const IndexSpan& p_span) {
    const Pixel pixelCoordFirst = PixelOf(p_span.first, _image);
    if (VEK_ENSURE_TEXT(pixelCoordFirst.y < _image.MaxHeight(), "pixelCoordFirst.y < _image.MaxHeight()",
                        Signature::WriteColor))
      _image.WriteUniquePixel(pixelCoordFirst, _tree.at(p_slot).color);
    if (!VEK_ENSURE_TEXT(!_placed[p_slot], "query.second && \"Coordinate p_spans must not have already been added\"",
                         Signature::MapSpan))
      return false;
    _placed[p_slot] = true;
    _layout.runs[p_slot] = p_span;
    return true;
  }

  const AtlasTree& _tree;
  ImageBuilder& _image;
  AtlasLayout& _layout;
  std::vector<bool>& _placed; ///< by slot
};

/// Writes colours as CoordinateMapper does, and after the sub-tree of an instanced colour its copies. Copies take
/// indices of their own, so everything behind them moves on by a growing shift.
class ColorAtlasImpl::InstanceCoordinateMapper : private CoordinateMapper {
public:
  using CoordinateMapper::CoordinateMapper;

  bool Enter(std::uint32_t p_slot) {
    const AtlasTree::Color current = _tree.at(p_slot);
    IndexSpan span = Unshifted(p_slot);
    span = {span.first + _shift, span.last + _shift};
    if (current.instanced) {
      VEK_ENSURE_TEXT(current.topLevel, "current.parent == _atlas.RootAtlasId()", Signature::InstanceMapperCall);
      MoveToNextRow(span);
    }
    if (!Place(p_slot, span))
      return false;
    if (_shifts.empty() || _shifts.back().shift != _shift)
      _shifts.push_back({span.first, _shift});
    return true;
  }

  void Leave(std::uint32_t p_slot) {
    if (_tree.at(p_slot).instanced)
      ProcessInstances(p_slot, _layout.runs[p_slot]);
  }

private:
  /// A colour of a copy that is replaced, with its sub-tree.
  struct Replacement {
    std::uint32_t slot;
    QRgb color;
  };
  /// The shift of all colours that were placed from a texel on.
  struct Shift {
    unsigned int first;
    unsigned int shift;
  };

  /// The indices of a colour, before they were shifted.
  IndexSpan Unshifted(std::uint32_t p_slot) const {
    const IndexSpan& run = _layout.runs[p_slot];
    if (!_placed[p_slot] || _shifts.empty())
      return run;
    auto found = _shifts.end() - 1; // most often that of the current sub-tree
    if (run.first < found->first)
      found = std::upper_bound(_shifts.begin(), found, run.first,
                               [](unsigned int p_first, const Shift& p_shift) { return p_first < p_shift.first; });
    else
      ++found;
    const unsigned int shift = found == _shifts.begin() ? 0 : (found - 1)->shift;
    return {run.first - shift, run.last - shift};
  }

  /// A span of at most half a row that would be broken over two rows starts on the next one.
  void MoveToNextRow(IndexSpan& p_span) {
    const Pixel first = PixelOf(p_span.first, _image);
    const Pixel last = PixelOf(p_span.last, _image);
    if (static_cast<double>(LengthOf(p_span)) > std::floor(_image.MaxWidth() * 0.5) || first.y == last.y)
      return;
    const unsigned int rest = _image.MaxWidth() - first.x;
    _shift += rest;
    p_span.first += rest;
    p_span.last += rest;
  }

  void ProcessInstances(std::uint32_t p_slot, const IndexSpan& p_span);
  void CopyColors(const IndexSpan& p_span, std::uint64_t p_start);
  std::size_t DepthOf(std::uint32_t p_slot) const;
  std::vector<Replacement> ReplacementsOf(const AtlasTree::Instance& p_instance, const IndexSpan& p_unshifted,
                                          std::uint64_t p_start) const;
  void ReplaceColors(const AtlasTree::Instance& p_instance, const IndexSpan& p_unshifted, std::uint64_t p_start);
  void ReportOutside(std::uint64_t p_first, std::uint64_t p_end) const;
  void OverwritePixelSpan(std::uint64_t p_start, QRgb p_color, std::uint64_t p_count);

  unsigned int _shift = 0;
  std::vector<Shift> _shifts; ///< in ascending order, as colours are placed in the order of their indices
};

void ColorAtlasImpl::InstanceCoordinateMapper::ProcessInstances(std::uint32_t p_slot, const IndexSpan& p_span) {
  const std::int64_t width = _image.MaxWidth();
  const std::int64_t length = LengthOf(p_span);
  const Pixel first = PixelOf(p_span.first, _image);
  const Pixel last = PixelOf(p_span.last, _image);
  const std::int64_t rows = static_cast<std::int64_t>(last.y) - first.y + 1;
  // Half a row is not short enough here, although MoveToNextRow moves spans of exactly half a row: both are meant.
  const bool oneRow = first.y == last.y && length < width / 2;

  const auto copies = std::lower_bound(
      _tree.copies.begin(), _tree.copies.end(), p_slot,
      [](const AtlasTree::Copies& p_copies, std::uint32_t p_other) { return p_copies.slot < p_other; });
  if (!VEK_ENSURE_TEXT(copies != _tree.copies.end() && copies->slot == p_slot, "dataIt != _instanceData.end()",
                       Signature::ProcessInstances))
    return;
  const IndexSpan unshifted = Unshifted(p_slot);
  std::int64_t dx = 0;
  std::int64_t dy = 0;
  for (std::size_t i = copies->first; i < copies->end; ++i) {
    if (!oneRow) { // as many rows lower, in the same columns
      _shift += static_cast<unsigned int>(width * rows);
      dy += rows;
    } else if (first.x + dx + 2 * length >= width) { // at the left of the next row
      _shift += static_cast<unsigned int>(width - dx - first.x);
      dx = -static_cast<std::int64_t>(first.x);
      dy += rows;
    } else { // behind the one before
      _shift += static_cast<unsigned int>(length);
      dx += length;
    }
    const std::uint64_t start = static_cast<std::uint64_t>((first.y + dy) * width + first.x + dx);
    CopyColors(p_span, start);
    ReplaceColors(_tree.instances[i], unshifted, start);
    VEK_ENSURE_TEXT(!_tree.instances[i].placed, "!instance.Defined()", Signature::ProcessInstances);
    _layout.offsets[i] = {static_cast<unsigned int>(dx), static_cast<unsigned int>(dy)};
  }
}

void ColorAtlasImpl::InstanceCoordinateMapper::CopyColors(const IndexSpan& p_span, std::uint64_t p_start) {
  for (std::uint64_t i = 0, length = LengthOf(p_span); i < length; ++i) {
    const Pixel destPixel = PixelOf(p_start + i, _image);
    if (VEK_ENSURE_TEXT(destPixel.y < _image.MaxHeight(), "destPixel.y < _image.MaxHeight()", Signature::CopyColors))
      _image.WriteUniquePixel(destPixel, _image.ColorOf(PixelOf(p_span.first + i, _image)));
  }
}

/// How far a colour lies below a top-level one.
std::size_t ColorAtlasImpl::InstanceCoordinateMapper::DepthOf(std::uint32_t p_slot) const {
  std::size_t depth = 0; // a host may have made circles of parents
  for (; p_slot < _tree.count && !_tree.at(p_slot).topLevel && depth < _tree.count; ++depth)
    p_slot = _tree.ColorSlot(_tree.at(p_slot).parent);
  return depth;
}

/// The replacements of an instance. Those of deeper colours come last, where something is to be reported: the order of
/// others is not seen.
std::vector<ColorAtlasImpl::InstanceCoordinateMapper::Replacement>
ColorAtlasImpl::InstanceCoordinateMapper::ReplacementsOf(const AtlasTree::Instance& p_instance,
                                                         const IndexSpan& p_unshifted, std::uint64_t p_start) const {
  std::vector<Replacement> replacements;
  replacements.reserve(p_instance.replacements->size());
  const std::uint64_t end = p_start + LengthOf(p_unshifted);
  bool isReported = end >= std::uint64_t{_image.MaxWidth()} * _image.MaxHeight();
  for (const auto& [id, color] : *p_instance.replacements) {
    const std::uint32_t slot = _tree.ColorSlot(id);
    replacements.push_back({slot, color.rgba()});
    if (slot >= _placed.size() || !_placed[slot])
      isReported = true;
    else if (const IndexSpan span = Unshifted(slot); span.first < p_unshifted.first || span.last > p_unshifted.last)
      isReported = true;
  }
  if (!isReported)
    return replacements;
  std::vector<std::pair<std::size_t, Replacement>> deep;
  for (const Replacement& replacement : replacements)
    deep.emplace_back(DepthOf(replacement.slot), replacement);
  std::stable_sort(deep.begin(), deep.end(), [](const auto& p_a, const auto& p_b) { return p_a.first < p_b.first; });
  std::transform(deep.begin(), deep.end(), replacements.begin(), [](const auto& p_deep) { return p_deep.second; });
  return replacements;
}

/// Paints the runs of the replaced colours over a copy. Sub-trees are nested or apart, so a sweep over the runs in the
/// order of their starts paints each texel once, with the deepest replacement that covers it.
void ColorAtlasImpl::InstanceCoordinateMapper::ReplaceColors(const AtlasTree::Instance& p_instance,
                                                             const IndexSpan& p_unshifted, std::uint64_t p_start) {
  struct Run {
    std::uint64_t first;
    std::uint64_t end;
    QRgb color;
  };
  std::vector<Run> runs;
  const unsigned int base = p_unshifted.first;
  for (const auto& [slot, color] : ReplacementsOf(p_instance, p_unshifted, p_start)) {
    const bool placed = slot < _placed.size() && _placed[slot];
    if (!VEK_ENSURE_TEXT(placed, "node.coords.Defined()", Signature::ProcessInstances))
      continue;
    const IndexSpan subcolor = Unshifted(slot);
    if (VEK_ENSURE(subcolor.first >= base, Signature::ProcessInstances) &&
        VEK_ENSURE_TEXT(subcolor.last <= p_unshifted.last, "subcolor.last <= last", Signature::ProcessInstances)) {
      runs.push_back({subcolor.first - base, std::uint64_t{subcolor.last} - base + 1, color});
      ReportOutside(p_start + runs.back().first, p_start + runs.back().end);
    }
  }
  std::sort(runs.begin(), runs.end(), [](const Run& p_a, const Run& p_b) { return p_a.first < p_b.first; });

  std::vector<Run> open; // the runs around the position of the sweep, the deepest last
  std::uint64_t position = 0;
  const auto sweepTo = [&](std::uint64_t p_end) {
    for (; !open.empty() && position < p_end;) {
      const std::uint64_t end = std::min(p_end, open.back().end);
      OverwritePixelSpan(p_start + position, open.back().color, end - position);
      position = end;
      while (!open.empty() && open.back().end <= position)
        open.pop_back();
    }
    position = std::max(position, p_end);
  };
  for (const Run& run : runs) {
    sweepTo(run.first);
    open.push_back(run);
  }
  if (!open.empty())
    sweepTo(open.front().end);
}

/// Reports the texels of a run that lie below the image. Each texel is checked when it is reached and when it is
/// written, and so is the one behind the run: a run that ends with the last texel of the image is reported, too.
void ColorAtlasImpl::InstanceCoordinateMapper::ReportOutside(std::uint64_t p_first, std::uint64_t p_end) const {
  constexpr const char* Expression = "next.y < _image.MaxHeight()";
  const std::uint64_t size = std::uint64_t{_image.MaxWidth()} * _image.MaxHeight();
  for (std::uint64_t next = std::max(p_first, size); next <= p_end; ++next) {
    vekdebug::fail_ensure(Expression, Signature::NextPixel);
    if (next != p_end)
      vekdebug::fail_ensure(Expression, Signature::OverwritePixelSpan);
  }
}

void ColorAtlasImpl::InstanceCoordinateMapper::OverwritePixelSpan(std::uint64_t p_start, QRgb p_color,
                                                                  std::uint64_t p_count) {
  for (std::uint64_t i = 0; i < p_count; ++i) {
    const Pixel next = PixelOf(p_start + i, _image);
    if (next.y < _image.MaxHeight())
      _image.OverwritePixel(next, p_color);
  }
}

std::size_t ColorAtlasImpl::NumberColors() {
  _spans.assign(_tree.count, NoSpan);
  SpanBuilder builder(*this);
  Walk(_tree.plainRoots, builder);
  Walk(_tree.instancedRoots, builder);
  return builder.Count();
}

AtlasLayout ColorAtlasImpl::MapColors(ImageBuilder& p_image) {
  AtlasLayout layout;
  layout.runs = std::move(_spans);
  layout.offsets.resize(_tree.instances.size());
  std::vector<bool> placed(_tree.count);
  CoordinateMapper plain(_tree, p_image, layout, placed);
  Walk(_tree.plainRoots, plain);
  InstanceCoordinateMapper instanced(_tree, p_image, layout, placed);
  Walk(_tree.instancedRoots, instanced);
  return layout;
}

} // namespace Vek::Chart::Library::Private
